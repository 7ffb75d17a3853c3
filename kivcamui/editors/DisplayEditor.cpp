// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DisplayEditor.h"

#include "Rounding.h"

#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>

#include <algorithm>

namespace kiv::cam::ui {

namespace {

// part / whole of length, truncated, exactly.
int shareOf(int length, int part, int whole)
{
    return boundedInt(double(qint64(length) * part / whole));
}

} // namespace

DisplayEditor::DisplayEditor(QQuickItem* parent) : EditorItem(parent)
{
}

void DisplayEditor::setOffsetType(EOFFSET_TYPE type)
{
    SetAndRepaint(m_offsetType, type, &DisplayEditor::offsetTypeChanged);
}

void DisplayEditor::setShowNtscLines(bool show)
{
    SetAndRepaint(m_showNtscLines, show, &DisplayEditor::showNtscLinesChanged);
}

// The limits and the validity are announced whenever something they depend on changes, whether
// or not their own values change.
void DisplayEditor::setWindow(QRect window)
{
    if (window == m_window || window.x() < 0 || window.y() < 0 || window.width() <= 0
        || window.height() <= 0)
        return;
    m_window = window;
    emit windowChanged();
    emit offsetMinChanged();
    emit isValidChanged();
    update();
}

void DisplayEditor::setFpaSize(QSize size)
{
    if (!StoreSize(m_fpaSize, size))
        return;
    emit fpaSizeChanged();
    update();
}

void DisplayEditor::setDisplaySize(QSize size)
{
    if (!StoreSize(m_displaySize, size))
        return;
    emit displaySizeChanged();
    emit offsetMaxChanged();
    emit isValidChanged();
    update();
}

void DisplayEditor::setIncrement(QPoint increment)
{
    if (!StoreIncrement(m_increment, increment))
        return;
    emit incrementChanged();
    emit isValidChanged();
}

void DisplayEditor::setOffset(QPoint offset)
{
    if (offset == m_offset)
        return;
    m_offset = offset;
    emit offsetChanged();
    emit isValidChanged();
    update();
}

void DisplayEditor::setZoom(float zoom)
{
    if (zoom == m_zoom)
        return;
    m_zoom = zoom;
    emit zoomChanged();
    emit offsetMinChanged();
    emit isValidChanged();
    update();
}

QPoint DisplayEditor::offsetMin() const
{
    if (m_zoom > 0) {
        return {-truncToInt(float(m_window.width()) * m_zoom),
            -truncToInt(float(m_window.height()) * m_zoom)};
    }
    return {-m_window.width(), -m_window.height()};
}

QPoint DisplayEditor::offsetMax() const
{
    return {m_displaySize.width(), m_displaySize.height()};
}

bool DisplayEditor::isValid() const
{
    const QPoint min = offsetMin();
    return m_offset.x() >= min.x() && m_offset.y() >= min.y()
        && m_offset.x() <= m_displaySize.width() && m_offset.y() <= m_displaySize.height()
        && m_offset.x() % m_increment.x() == 0 && m_offset.y() % m_increment.y() == 0;
}

QPoint DisplayEditor::RealToVisible(QPoint real) const
{
    const QRectF item = boundingRect();
    return {roundToInt(real.x() * item.width() / m_displaySize.width()),
        roundToInt(real.y() * item.height() / m_displaySize.height())};
}

QRect DisplayEditor::RealToVisible(QPoint topLeft, QSize size) const
{
    const QPoint visibleSize = RealToVisible(QPoint(size.width(), size.height()));
    return {RealToVisible(topLeft), QSize(visibleSize.x(), visibleSize.y())};
}

QPoint DisplayEditor::VisibleToReal(QPoint visible) const
{
    const QRectF item = boundingRect();
    return {roundToInt(visible.x() * double(m_displaySize.width()) / item.width()),
        roundToInt(visible.y() * double(m_displaySize.height()) / item.height())};
}

// The picture can only be dragged when its placement is custom; other presses pass through.
// Only the left button reaches the item (see EditorItem).
void DisplayEditor::mousePressEvent(QMouseEvent* event)
{
    if (m_offsetType != OFFSET_CUSTOM) {
        event->ignore();
        return;
    }
    event->accept();
    forceActiveFocus();
    StartTracking();
    m_offsetAtPress = m_offset;
    m_pressPoint = VisibleToReal(roundPoint(event->position()));
    grabMouse();
}

void DisplayEditor::mouseMoveEvent(QMouseEvent* event)
{
    if (!tracking()) {
        event->ignore();
        return;
    }
    event->accept();
    const QPoint d = VisibleToReal(roundPoint(event->position())) - m_pressPoint;
    const QPoint min = offsetMin();
    const auto place = [](int start, int delta, int step, int low, int high) {
        const qint64 snapped = qint64(roundToInt((double(start) + delta) / step)) * step;
        return int(std::min<qint64>(high, std::max<qint64>(low, snapped)));
    };
    const QPoint offset(
        place(m_offsetAtPress.x(), d.x(), m_increment.x(), min.x(), m_displaySize.width()),
        place(m_offsetAtPress.y(), d.y(), m_increment.y(), min.y(), m_displaySize.height()));
    setOffset(offset);
}

void DisplayEditor::hoverMoveEvent(QHoverEvent* event)
{
    event->accept();
    setCursor(m_offsetType == OFFSET_CUSTOM ? Qt::SizeAllCursor : Qt::ArrowCursor);
}

float DisplayEditor::EffectiveZoom() const
{
    if (m_zoom != 0)
        return m_zoom;
    const float displayWidth = float(m_displaySize.width());
    const float displayHeight = float(m_displaySize.height());
    const float width = float(m_window.width());
    const float height = float(m_window.height());
    float h1 = displayWidth * height / width;
    float w1 = displayHeight * width / height;
    if (w1 > displayWidth)
        w1 = displayWidth;
    else
        h1 = std::min(displayHeight, h1);
    return (h1 / height + w1 / width) / 2;
}

void DisplayEditor::paint(QPainter* painter)
{
    // The window's share of the preview, as the window editor would show the whole sensor.
    const bool square = m_fpaSize.width() == m_fpaSize.height();
    const QRect full = Preview().SourceRect(square, double(m_window.width()) / m_window.height());
    const QRect source(full.left() + shareOf(full.width(), m_window.x(), m_fpaSize.width()),
        full.top() + shareOf(full.height(), m_window.y(), m_fpaSize.height()),
        shareOf(full.width(), m_window.width(), m_fpaSize.width()),
        shareOf(full.height(), m_window.height(), m_fpaSize.height()));

    // The picture on the display; centring does not change the stored offset.
    const float z = EffectiveZoom();
    const QSize size(
        truncToInt(float(m_window.width()) * z), truncToInt(float(m_window.height()) * z));
    QPoint topLeft = m_offsetType == OFFSET_SAME_AS_FPA ? m_window.topLeft() : m_offset;
    if (m_offsetType == OFFSET_CENTERED) {
        topLeft = {m_displaySize.width() / 2 - size.width() / 2,
            m_displaySize.height() / 2 - size.height() / 2};
    }

    const QRect target = RealToVisible(topLeft, size);
    Preview().Draw(painter, target, source, hFlip(), vFlip());
    const QColor green(0, 192, 0, 255);
    painter->setPen(green);
    painter->drawRect(target);

    // Where an NTSC display's picture ends, at fixed display lines whatever displaySize is.
    if (m_showNtscLines) {
        QPen dashed(green);
        dashed.setStyle(Qt::DashLine);
        painter->setPen(dashed);
        const auto line = [this, painter](int y) {
            painter->drawLine(RealToVisible(QPoint(0, y)), RealToVisible(QPoint(640, y)));
        };
        if (m_offsetType == OFFSET_CENTERED) {
            line(16);
            line(496);
        } else {
            line(480);
        }
    }
}

} // namespace kiv::cam::ui
