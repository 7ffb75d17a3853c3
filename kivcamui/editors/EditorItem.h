// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/editors/PreviewPainter.h>
#include <kivcamui/kivcamui_export.h>

#include <QQuickPaintedItem>

namespace kiv::cam::ui {

// What the window editor and the display editor share: a painted item over the preview picture,
// which the flips mirror, that the user drags with the left button. A drag ("tracking") starts
// in an editor's press handler and ends with the release; a lost grab does not end it.
class KIVCAMUI_EXPORT EditorItem : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(bool hFlip READ hFlip WRITE setHFlip NOTIFY hFlipChanged)
    Q_PROPERTY(bool vFlip READ vFlip WRITE setVFlip NOTIFY vFlipChanged)
    Q_PROPERTY(bool tracking READ tracking NOTIFY trackingChanged)

public:
    bool hFlip() const { return m_hFlip; }
    void setHFlip(bool flip);
    bool vFlip() const { return m_vFlip; }
    void setVFlip(bool flip);
    bool tracking() const { return m_tracking; }

signals:
    void hFlipChanged();
    void vFlipChanged();
    void trackingChanged();

protected:
    explicit EditorItem(QQuickItem* parent);

    // Stores a property's value; if that is a change, announces it and repaints.
    template <typename T, typename Editor>
    void SetAndRepaint(T& field, const T& value, void (Editor::*changed)())
    {
        if (field == value)
            return;
        field = value;
        emit(static_cast<Editor*>(this)->*changed)();
        update();
    }
    // Store a size or an increment when it is one the editors take and a change; say whether
    // they stored it.
    static bool StoreSize(QSize& field, QSize size);
    static bool StoreIncrement(QPoint& field, QPoint increment);
    // Starts a drag: tracking, announced. A handler of trackingChanged() may still change the
    // editor's value; the caller then remembers where the drag starts and grabs the mouse.
    void StartTracking();
    PreviewPainter& Preview() { return m_preview; }

    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseUngrabEvent() override;
    void hoverLeaveEvent(QHoverEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    PreviewPainter m_preview;
    bool m_hFlip = false;
    bool m_vFlip = false;
    bool m_tracking = false;
};

} // namespace kiv::cam::ui
