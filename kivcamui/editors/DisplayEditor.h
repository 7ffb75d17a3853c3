// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/editors/EditorItem.h>
#include <kivcamui/kivcamui_export.h>

#include <QPoint>
#include <QRect>
#include <QSize>

namespace kiv::cam::ui {

// Shows where a camera's sensor window lands on a video display of displaySize pixels at a
// given zoom, and lets the user drag it about the display when its placement is custom.
// Properties are in display (offset) and sensor (window) pixels; the item shows the display.
class KIVCAMUI_EXPORT DisplayEditor : public EditorItem {
    Q_OBJECT
    Q_PROPERTY(QRect window READ window WRITE setWindow NOTIFY windowChanged)
    Q_PROPERTY(QSize fpaSize READ fpaSize WRITE setFpaSize NOTIFY fpaSizeChanged)
    Q_PROPERTY(QSize displaySize READ displaySize WRITE setDisplaySize NOTIFY displaySizeChanged)
    Q_PROPERTY(QPoint increment READ increment WRITE setIncrement NOTIFY incrementChanged)
    Q_PROPERTY(QPoint offset READ offset WRITE setOffset NOTIFY offsetChanged)
    Q_PROPERTY(QPoint offsetMin READ offsetMin NOTIFY offsetMinChanged)
    Q_PROPERTY(QPoint offsetMax READ offsetMax NOTIFY offsetMaxChanged)
    Q_PROPERTY(bool isValid READ isValid NOTIFY isValidChanged)
    Q_PROPERTY(float zoom READ zoom WRITE setZoom NOTIFY zoomChanged)
    Q_PROPERTY(EOFFSET_TYPE offsetType READ offsetType WRITE setOffsetType NOTIFY offsetTypeChanged)
    Q_PROPERTY(
        bool showNtscLines READ showNtscLines WRITE setShowNtscLines NOTIFY showNtscLinesChanged)

public:
    // Where the picture sits on the display: where the window sits on the sensor, centred, or
    // at offset, where the user can drag it.
    enum EOFFSET_TYPE {
        OFFSET_SAME_AS_FPA = 0,
        OFFSET_CENTERED = 1,
        OFFSET_CUSTOM = 2,
    };
    Q_ENUM(EOFFSET_TYPE)

    explicit DisplayEditor(QQuickItem* parent = nullptr);

    QRect window() const { return m_window; }
    void setWindow(QRect window);
    QSize fpaSize() const { return m_fpaSize; }
    void setFpaSize(QSize size);
    QSize displaySize() const { return m_displaySize; }
    void setDisplaySize(QSize size);
    QPoint increment() const { return m_increment; }
    void setIncrement(QPoint increment);
    QPoint offset() const { return m_offset; }
    // Stored as given; an offset outside the limits or off the increments makes isValid false.
    void setOffset(QPoint offset);
    // How far the picture may be pushed off the display: until only its edge touches it.
    QPoint offsetMin() const;
    QPoint offsetMax() const;
    bool isValid() const;
    // 0 fits the window to the display.
    float zoom() const { return m_zoom; }
    void setZoom(float zoom);
    EOFFSET_TYPE offsetType() const { return m_offsetType; }
    void setOffsetType(EOFFSET_TYPE type);
    bool showNtscLines() const { return m_showNtscLines; }
    void setShowNtscLines(bool show);

    void paint(QPainter* painter) override;

signals:
    void windowChanged();
    void fpaSizeChanged();
    void displaySizeChanged();
    void incrementChanged();
    void offsetChanged();
    void offsetMinChanged();
    void offsetMaxChanged();
    void isValidChanged();
    void zoomChanged();
    void offsetTypeChanged();
    void showNtscLinesChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void hoverMoveEvent(QHoverEvent* event) override;

private:
    QPoint RealToVisible(QPoint real) const;
    // A display rectangle given by its top-left and size, each mapped as a point.
    QRect RealToVisible(QPoint topLeft, QSize size) const;
    QPoint VisibleToReal(QPoint visible) const;
    // The zoom the picture is drawn at: zoom, or for 0 the one that fits the display.
    float EffectiveZoom() const;

    QRect m_window{0, 0, 640, 512};
    QSize m_fpaSize{640, 512};
    QSize m_displaySize{640, 480};
    QPoint m_increment{1, 1};
    QPoint m_offset;
    float m_zoom = 1.0f;
    EOFFSET_TYPE m_offsetType = OFFSET_CENTERED;
    bool m_showNtscLines = false;
    QPoint m_offsetAtPress;
    QPoint m_pressPoint;
};

} // namespace kiv::cam::ui
