// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/editors/EditorItem.h>
#include <kivcamui/kivcamui_export.h>

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

namespace kiv::cam::ui {

// Edits a camera's readout window with the mouse: a rectangle in sensor pixels on a sensor of
// maxSize, drawn over a preview picture that fills the item. The window is moved by dragging it
// and resized by any of its edges and corners, snapping to the increments and kept within the
// minimum and maximum sizes. Properties are in sensor pixels; the item maps them to its own.
// The window's origin snaps to offsetIncrement where the camera has one of its own, and its size
// to increment.
class KIVCAMUI_EXPORT WindowEditor : public EditorItem {
    Q_OBJECT
    Q_PROPERTY(QRect window READ window WRITE setWindow NOTIFY windowChanged)
    Q_PROPERTY(QSize minSize READ minSize WRITE setMinSize NOTIFY minSizeChanged)
    Q_PROPERTY(QSize maxSize READ maxSize WRITE setMaxSize NOTIFY maxSizeChanged)
    Q_PROPERTY(QPoint increment READ increment WRITE setIncrement NOTIFY incrementChanged)
    Q_PROPERTY(QPoint offsetIncrement READ offsetIncrement WRITE setOffsetIncrement RESET
            resetOffsetIncrement NOTIFY offsetIncrementChanged)
    Q_PROPERTY(bool isWindowValid READ isWindowValid NOTIFY isWindowValidChanged)
    Q_PROPERTY(bool centeredOnly READ centeredOnly WRITE setCenteredOnly NOTIFY centeredOnlyChanged)
    Q_PROPERTY(bool isSubWindow READ isSubWindow WRITE setIsSubWindow NOTIFY isSubWindowChanged)
    Q_PROPERTY(QSize fullSize READ fullSize WRITE setFullSize NOTIFY fullSizeChanged)
    Q_PROPERTY(QPoint subWindowPosition READ subWindowPosition WRITE setSubWindowPosition NOTIFY
            subWindowPositionChanged)

public:
    explicit WindowEditor(QQuickItem* parent = nullptr);

    QRect window() const { return m_window; }
    // Stores the window as given, neither snapped nor clamped; in centred mode it is moved to
    // the centre first. Negative origins and empty sizes are ignored.
    void setWindow(QRect window);
    QSize minSize() const { return m_minSize; }
    void setMinSize(QSize size);
    QSize maxSize() const { return m_maxSize; }
    void setMaxSize(QSize size);
    QPoint increment() const { return m_increment; }
    void setIncrement(QPoint increment);
    // (0, 0) while unset, its default: the origin then snaps to increment. Reset unsets it.
    QPoint offsetIncrement() const { return m_offsetIncrement; }
    void setOffsetIncrement(QPoint increment);
    void resetOffsetIncrement();
    bool isWindowValid() const;
    bool centeredOnly() const { return m_centeredOnly; }
    void setCenteredOnly(bool centeredOnly);
    bool isSubWindow() const { return m_isSubWindow; }
    void setIsSubWindow(bool isSubWindow);
    QSize fullSize() const { return m_fullSize; }
    void setFullSize(QSize size);
    QPoint subWindowPosition() const { return m_subWindowPosition; }
    void setSubWindowPosition(QPoint position);

    void paint(QPainter* painter) override;

signals:
    void windowChanged();
    void minSizeChanged();
    void maxSizeChanged();
    void incrementChanged();
    void offsetIncrementChanged();
    void isWindowValidChanged();
    void centeredOnlyChanged();
    void isSubWindowChanged();
    void fullSizeChanged();
    void subWindowPositionChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;

private:
    // The handles, in the order the hit test tries them.
    enum ControlPoint {
        None,
        Top,
        Left,
        Bottom,
        Right,
        TopLeft,
        BottomRight,
        TopRight,
        BottomLeft,
        Move,
    };

    ControlPoint CPHitTest(QPoint visible) const;
    static Qt::CursorShape CursorForControlPoint(ControlPoint cp);
    QRect GetCPRect(ControlPoint cp) const;
    // The sensor area the item shows: the sensor, or in sub-window mode the full sensor.
    QSize AreaSize() const;
    // Item pixels per sensor pixel, across and down.
    QPointF Scale() const;
    QPoint RealToVisible(QPoint real) const;
    QRect RealToVisible(const QRect& real) const;
    QPoint VisibleToReal(QPoint visible) const;
    // The step of the window's origin: offsetIncrement, or increment while that is unset.
    QPoint OffsetStep() const;
    // Where a window of the given size sits when centred on the sensor, on the offset steps.
    QPoint CenteredOrigin(QSize size) const;
    // The room a clamp leaves for an offset or a size, down to its step when the offset has an
    // increment of its own; unset, the room as it always was, on the steps or not.
    int Fit(int room, int step) const;

    QRect m_window{0, 0, 320, 256};
    QSize m_minSize{1, 1};
    QSize m_maxSize{320, 256};
    QPoint m_increment{1, 1};
    QPoint m_offsetIncrement;
    ControlPoint m_activeCP = None;
    QRect m_windowAtPress;
    QPoint m_pressPoint;
    bool m_centeredOnly = false;
    bool m_isSubWindow = false;
    QSize m_fullSize{320, 256};
    QPoint m_subWindowPosition;
};

} // namespace kiv::cam::ui
