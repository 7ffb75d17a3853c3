// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EditorItem.h"

#include <QMouseEvent>

namespace kiv::cam::ui {

EditorItem::EditorItem(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setFocus(true);
    setKeepMouseGrab(true);
    setAcceptHoverEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton);
}

void EditorItem::setHFlip(bool flip)
{
    SetAndRepaint(m_hFlip, flip, &EditorItem::hFlipChanged);
}

void EditorItem::setVFlip(bool flip)
{
    SetAndRepaint(m_vFlip, flip, &EditorItem::vFlipChanged);
}

bool EditorItem::StoreSize(QSize& field, QSize size)
{
    if (size == field || size.width() <= 0 || size.height() <= 0)
        return false;
    field = size;
    return true;
}

bool EditorItem::StoreIncrement(QPoint& field, QPoint increment)
{
    if (increment == field || increment.x() < 1 || increment.y() < 1)
        return false;
    field = increment;
    return true;
}

void EditorItem::StartTracking()
{
    m_tracking = true;
    emit trackingChanged();
}

void EditorItem::mouseReleaseEvent(QMouseEvent* event)
{
    if (!m_tracking) {
        event->ignore();
        return;
    }
    event->accept();
    m_tracking = false;
    emit trackingChanged();
    ungrabMouse();
}

// A lost grab leaves the drag as it is; the next release ends it.
void EditorItem::mouseUngrabEvent()
{
}

void EditorItem::hoverLeaveEvent(QHoverEvent*)
{
    unsetCursor();
}

void EditorItem::focusInEvent(QFocusEvent*)
{
}

void EditorItem::focusOutEvent(QFocusEvent*)
{
}

} // namespace kiv::cam::ui
