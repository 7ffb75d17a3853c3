// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "WindowEditor.h"

#include "Rounding.h"

#include <QCursor>
#include <QMouseEvent>
#include <QPainter>
#include <QVarLengthArray>

#include <algorithm>

namespace kiv::cam::ui {

namespace {

// v to the nearest multiple of step.
int snap(int value, int step)
{
    return roundToInt(double(value) / step) * step;
}

} // namespace

WindowEditor::WindowEditor(QQuickItem* parent) : EditorItem(parent)
{
}

void WindowEditor::setIsSubWindow(bool isSubWindow)
{
    SetAndRepaint(m_isSubWindow, isSubWindow, &WindowEditor::isSubWindowChanged);
}

void WindowEditor::setFullSize(QSize size)
{
    SetAndRepaint(m_fullSize, size, &WindowEditor::fullSizeChanged);
}

void WindowEditor::setSubWindowPosition(QPoint position)
{
    SetAndRepaint(m_subWindowPosition, position, &WindowEditor::subWindowPositionChanged);
}

void WindowEditor::setWindow(QRect window)
{
    if (window == m_window)
        return;
    if (window.x() < 0 || window.y() < 0 || window.width() <= 0 || window.height() <= 0)
        return;
    if (m_centeredOnly)
        window.moveTo(CenteredOrigin(window.size()));
    const bool wasValid = isWindowValid();
    m_window = window;
    emit windowChanged();
    if (isWindowValid() != wasValid)
        emit isWindowValidChanged();
    update();
}

// The sizes and the increments take effect with the next drag; they repaint nothing, and
// announce no change of validity.
void WindowEditor::setMinSize(QSize size)
{
    if (StoreSize(m_minSize, size))
        emit minSizeChanged();
}

void WindowEditor::setMaxSize(QSize size)
{
    if (StoreSize(m_maxSize, size))
        emit maxSizeChanged();
}

void WindowEditor::setIncrement(QPoint increment)
{
    if (StoreIncrement(m_increment, increment))
        emit incrementChanged();
}

void WindowEditor::setOffsetIncrement(QPoint increment)
{
    if (StoreIncrement(m_offsetIncrement, increment))
        emit offsetIncrementChanged();
}

void WindowEditor::resetOffsetIncrement()
{
    if (m_offsetIncrement.isNull())
        return;
    m_offsetIncrement = QPoint();
    emit offsetIncrementChanged();
}

QPoint WindowEditor::OffsetStep() const
{
    return m_offsetIncrement.isNull() ? m_increment : m_offsetIncrement;
}

int WindowEditor::Fit(int room, int step) const
{
    if (m_offsetIncrement.isNull())
        return room;
    return room - room % step;
}

bool WindowEditor::isWindowValid() const
{
    const QRect& w = m_window;
    if (m_centeredOnly && w.topLeft() != CenteredOrigin(w.size()))
        return false;
    const QPoint offsetStep = OffsetStep();
    return w.width() >= m_minSize.width() && w.height() >= m_minSize.height()
        && qint64(w.x()) + w.width() <= m_maxSize.width()
        && qint64(w.y()) + w.height() <= m_maxSize.height() && w.x() % offsetStep.x() == 0
        && w.width() % m_increment.x() == 0 && w.y() % offsetStep.y() == 0
        && w.height() % m_increment.y() == 0;
}

void WindowEditor::setCenteredOnly(bool centeredOnly)
{
    if (centeredOnly == m_centeredOnly)
        return;
    const bool wasValid = isWindowValid();
    m_centeredOnly = centeredOnly;
    emit centeredOnlyChanged();
    if (isWindowValid() != wasValid)
        emit isWindowValidChanged();
    update();
}

QPoint WindowEditor::CenteredOrigin(QSize size) const
{
    const int cx = (m_maxSize.width() - size.width()) / 2;
    const int cy = (m_maxSize.height() - size.height()) / 2;
    const QPoint step = OffsetStep();
    return {cx - cx % step.x(), cy - cy % step.y()};
}

QSize WindowEditor::AreaSize() const
{
    if (!m_isSubWindow)
        return m_maxSize;
    return m_maxSize.expandedTo(m_fullSize);
}

QPointF WindowEditor::Scale() const
{
    const QSize area = AreaSize();
    const QRectF item = boundingRect();
    return {item.width() / area.width(), item.height() / area.height()};
}

QPoint WindowEditor::RealToVisible(QPoint real) const
{
    const QPointF scale = Scale();
    const QPointF shift = m_isSubWindow ? QPointF(m_subWindowPosition) : QPointF();
    return {roundToInt((real.x() + shift.x()) * scale.x()),
        roundToInt((real.y() + shift.y()) * scale.y())};
}

QRect WindowEditor::RealToVisible(const QRect& real) const
{
    const QPointF scale = Scale();
    return {RealToVisible(real.topLeft()),
        QSize(roundToInt(real.width() * scale.x()), roundToInt(real.height() * scale.y()))};
}

QPoint WindowEditor::VisibleToReal(QPoint visible) const
{
    const QSize area = AreaSize();
    const QRectF item = boundingRect();
    QPoint real(roundToInt(visible.x() * double(area.width()) / item.width()),
        roundToInt(visible.y() * double(area.height()) / item.height()));
    if (m_isSubWindow)
        real -= m_subWindowPosition;
    return real;
}

QRect WindowEditor::GetCPRect(ControlPoint cp) const
{
    // In 64 bits and bounded, so that a window reaching the end of int still has handles.
    const qint64 x = m_window.x();
    const qint64 y = m_window.y();
    const qint64 w = m_window.width();
    const qint64 h = m_window.height();
    qint64 left = 0;
    qint64 top = 0;
    switch (cp) {
    case None:
        return {};
    case Top:
        left = x + w / 2 - 5;
        top = y - 5;
        break;
    case Left:
        left = x - 5;
        top = y + h / 2 - 5;
        break;
    case Bottom:
        left = x + w / 2 - 5;
        top = y + h - 5;
        break;
    case Right:
        left = x + w - 5;
        top = y + h / 2 - 5;
        break;
    case TopLeft:
        left = x - 5;
        top = y - 5;
        break;
    case BottomRight:
        left = x + w - 5;
        top = y + h - 5;
        break;
    case TopRight:
        left = x + w - 5;
        top = y - 5;
        break;
    case BottomLeft:
        left = x - 5;
        top = y + h - 5;
        break;
    case Move:
        return m_window;
    }
    return {boundedInt(double(left)), boundedInt(double(top)), 10, 10};
}

WindowEditor::ControlPoint WindowEditor::CPHitTest(QPoint visible) const
{
    for (int i = Top; i <= Move; ++i) {
        const auto cp = static_cast<ControlPoint>(i);
        if (cp == Move && m_centeredOnly)
            continue;
        QRect area = RealToVisible(GetCPRect(cp));
        // Handles stay big enough to catch however small the window is drawn.
        if (area.width() < 10) {
            area.moveLeft(area.left() - (10 - area.width()) / 2);
            area.setWidth(10);
        }
        if (area.height() < 10) {
            area.moveTop(area.top() - (10 - area.height()) / 2);
            area.setHeight(10);
        }
        if (area.contains(visible))
            return cp;
    }
    return None;
}

Qt::CursorShape WindowEditor::CursorForControlPoint(ControlPoint cp)
{
    switch (cp) {
    case None:
        break;
    case Top:
    case Bottom:
        return Qt::SizeVerCursor;
    case Left:
    case Right:
        return Qt::SizeHorCursor;
    case TopLeft:
    case BottomRight:
        return Qt::SizeFDiagCursor;
    case TopRight:
    case BottomLeft:
        return Qt::SizeBDiagCursor;
    case Move:
        return Qt::SizeAllCursor;
    }
    return Qt::ArrowCursor;
}

// Only the left button reaches the item (see EditorItem).
void WindowEditor::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    forceActiveFocus();
    const QPoint position = roundPoint(event->position());
    m_activeCP = CPHitTest(position);
    if (m_activeCP == None)
        return;
    StartTracking();
    m_windowAtPress = m_window;
    m_pressPoint = VisibleToReal(position);
    grabMouse();
}

void WindowEditor::mouseMoveEvent(QMouseEvent* event)
{
    if (!tracking()) {
        event->ignore();
        return;
    }
    event->accept();
    QPoint d = VisibleToReal(roundPoint(event->position())) - m_pressPoint;
    // A centred window grows on both sides at once.
    if (m_centeredOnly)
        d *= 2;

    // Always from the window at press, so that snapping never accumulates.
    QRect r = m_windowAtPress;
    switch (m_activeCP) {
    case None:
        return;
    case Top:
        r.setTop(r.top() + d.y());
        break;
    case Left:
        r.setLeft(r.left() + d.x());
        break;
    case Bottom:
        r.setBottom(r.bottom() + d.y());
        break;
    case Right:
        r.setRight(r.right() + d.x());
        break;
    case TopLeft:
        r.setTopLeft(r.topLeft() + d);
        break;
    case BottomRight:
        r.setBottomRight(r.bottomRight() + d);
        break;
    case TopRight:
        r.setTopRight(r.topRight() + d);
        break;
    case BottomLeft:
        r.setBottomLeft(r.bottomLeft() + d);
        break;
    case Move:
        r.translate(d);
        break;
    }
    r = r.normalized();

    const int maxWidth = m_maxSize.width();
    const int maxHeight = m_maxSize.height();
    const int minWidth = m_minSize.width();
    const int minHeight = m_minSize.height();
    const QPoint offsetStep = OffsetStep();
    if (m_centeredOnly) {
        r.setWidth(std::min(maxWidth, std::max(minWidth, snap(r.width(), m_increment.x()))));
        r.setHeight(std::min(maxHeight, std::max(minHeight, snap(r.height(), m_increment.y()))));
        r.moveTo(CenteredOrigin(r.size()));
    } else if (m_activeCP == Move) {
        r.moveLeft(snap(r.left(), offsetStep.x()));
        r.moveTop(snap(r.top(), offsetStep.y()));
        if (r.left() < 0)
            r.moveLeft(0);
        if (r.top() < 0)
            r.moveTop(0);
        if (r.left() + r.width() > maxWidth)
            r.moveLeft(Fit(maxWidth - r.width(), offsetStep.x()));
        if (r.top() + r.height() > maxHeight)
            r.moveTop(Fit(maxHeight - r.height(), offsetStep.y()));
    } else {
        // Onto the sensor before snapping: moving a snapped left or top edge to 0 would change
        // the size by offset steps, which need not be size steps.
        if (r.x() < 0)
            r.setX(0);
        if (r.y() < 0)
            r.setY(0);
        r.setX(snap(r.x(), offsetStep.x()));
        r.setY(snap(r.y(), offsetStep.y()));
        r.setWidth(snap(r.width(), m_increment.x()));
        r.setHeight(snap(r.height(), m_increment.y()));
        if (r.x() + r.width() > maxWidth)
            r.setWidth(Fit(maxWidth - r.x(), m_increment.x()));
        if (r.y() + r.height() > maxHeight)
            r.setHeight(Fit(maxHeight - r.y(), m_increment.y()));
        if (r.width() < minWidth) {
            if (minWidth + r.x() > maxWidth)
                r.setX(Fit(maxWidth - minWidth, offsetStep.x()));
            r.setWidth(minWidth);
        }
        if (r.height() < minHeight) {
            // The minimum width, not height, decides here; the window stays as it always did.
            if (minWidth + r.y() > maxHeight)
                r.setY(Fit(maxHeight - minHeight, offsetStep.y()));
            r.setHeight(minHeight);
        }
    }
    setWindow(r);
}

void WindowEditor::hoverMoveEvent(QHoverEvent* event)
{
    const ControlPoint cp = CPHitTest(roundPoint(event->position()));
    if (cp == None)
        unsetCursor();
    else
        setCursor(CursorForControlPoint(cp));
}

void WindowEditor::paint(QPainter* painter)
{
    const QRect target = boundingRect().toAlignedRect();
    const QSize area = AreaSize();
    const QRect source
        = Preview().SourceRect(area.width() == area.height(), double(area.width()) / area.height());
    Preview().Draw(painter, target, source, hFlip(), vFlip());

    if (m_isSubWindow) {
        // Shade what lies outside the sub-window's sensor.
        const QRect sensor = RealToVisible(QRect(QPoint(0, 0), m_maxSize));
        const QColor shade(0, 0, 0, 128);
        const int right = sensor.left() + sensor.width();
        const int bottom = sensor.top() + sensor.height();
        const QRect bands[] = {
            QRect(QPoint(target.left(), target.top()), QPoint(target.right(), sensor.top() - 1)),
            QRect(QPoint(target.left(), sensor.top()), QPoint(sensor.left() - 1, bottom - 1)),
            QRect(QPoint(right, sensor.top()), QPoint(target.right(), bottom - 1)),
            QRect(QPoint(target.left(), bottom), QPoint(target.right(), target.bottom())),
        };
        for (const QRect& band : bands) {
            if (!band.isEmpty())
                painter->fillRect(band, shade);
        }
    }

    const QRect w = RealToVisible(m_window);
    painter->fillRect(w, QColor(0, 128, 0, 128));
    painter->setPen(QColor(0, 192, 0, 255));
    painter->drawRect(w.adjusted(0, 0, -1, -1));

    // Handle marks: at each corner a bracket outside it and a small L inside it pointing back,
    // at the middle of each edge a stroke outside and one inside. (ox, oy) points outward.
    QVarLengthArray<QLine, 24> lines;
    const auto corner = [&lines](QPoint c, int ox, int oy) {
        const QPoint outer = c + QPoint(5 * ox, 5 * oy);
        lines.append({outer, outer - QPoint(0, 10 * oy)});
        lines.append({outer, outer - QPoint(10 * ox, 0)});
        const QPoint inner = c - QPoint(5 * ox, 5 * oy);
        lines.append({inner, inner + QPoint(2 * ox, 0)});
        lines.append({inner, inner + QPoint(0, 2 * oy)});
    };
    corner(w.topLeft(), -1, -1);
    corner(w.topRight(), 1, -1);
    corner(w.bottomLeft(), -1, 1);
    corner(w.bottomRight(), 1, 1);
    const QPoint m = w.center();
    for (const int y : {w.top() - 5, w.top() + 5, w.bottom() + 5, w.bottom() - 5})
        lines.append({QPoint(m.x() - 5, y), QPoint(m.x() + 5, y)});
    for (const int x : {w.left() - 5, w.left() + 5, w.right() + 5, w.right() - 5})
        lines.append({QPoint(x, m.y() - 5), QPoint(x, m.y() + 5)});
    painter->drawLines(lines.constData(), int(lines.size()));
}

} // namespace kiv::cam::ui
