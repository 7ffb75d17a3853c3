// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QImage>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <functional>

// A window on the offscreen platform that shows one editor item at its top-left corner, as a
// host would, with helpers that drive the mouse through the window. The item counts its paints.
template <typename Editor> class EditorScene {
public:
    class CountingEditor : public Editor {
    public:
        void paint(QPainter* painter) override
        {
            ++paints;
            Editor::paint(painter);
        }
        int paints = 0;
    };

    // The cursor of the window's content, which the window shows wherever the item has no
    // cursor of its own: an item's unset cursor is told apart from an arrow it sets.
    static constexpr Qt::CursorShape NoItemCursor = Qt::CrossCursor;

    // The window leaves room around the item for drags that go past it.
    explicit EditorScene(QSize itemSize)
    {
        window.setColor(Qt::black);
        window.contentItem()->setCursor(NoItemCursor);
        window.resize(itemSize + QSize(160, 120));
        editor = new CountingEditor;
        editor->setParentItem(window.contentItem());
        editor->setParent(window.contentItem());
        editor->setSize(itemSize);
    }

    [[nodiscard]] bool show()
    {
        window.show();
        return QTest::qWaitForWindowExposed(&window);
    }
    // Renders one frame; an item that asked for a repaint is painted in it.
    [[nodiscard]] bool renderFrame()
    {
        QSignalSpy frames(&window, &QQuickWindow::frameSwapped);
        window.update();
        return frames.wait(2000);
    }
    // How many times the item is painted in the frame after change; -1 when no frame came.
    int paintsAfter(const std::function<void()>& change)
    {
        if (!renderFrame() || editor->paints == 0)
            return -1;
        const int before = editor->paints;
        change();
        return renderFrame() ? editor->paints - before : -1;
    }
    QImage grab() { return window.grabWindow(); }

    void press(QPoint at) { QTest::mousePress(&window, Qt::LeftButton, {}, at); }
    void move(QPoint to) { QTest::mouseMove(&window, to); }
    void release(QPoint at) { QTest::mouseRelease(&window, Qt::LeftButton, {}, at); }
    void drag(QPoint from, QPoint to)
    {
        press(from);
        move(to);
        release(to);
    }
    // The cursor the window shows after hovering at a point: the item's own, or NoItemCursor
    // where it has none. The mouse first goes next to the point, as a move to where the mouse
    // already is would not reach the item.
    Qt::CursorShape hoverCursor(QPoint at)
    {
        move(at + QPoint(1, 1));
        move(at);
        return window.cursor().shape();
    }
    // The cursor the item was left with, as the window shows it over the item at a point while
    // the item does not answer the hover: its own, or NoItemCursor when it unset it.
    Qt::CursorShape cursorLeftOn(QPoint at)
    {
        editor->setAcceptHoverEvents(false);
        const Qt::CursorShape shape = hoverCursor(at);
        editor->setAcceptHoverEvents(true);
        return shape;
    }

    QQuickWindow window;
    CountingEditor* editor;
};

// Data rows h, v: the three flips, and if asked no flip too.
inline void addFlipRows(bool withPlain)
{
    QTest::addColumn<bool>("h");
    QTest::addColumn<bool>("v");
    if (withPlain)
        QTest::newRow("plain") << false << false;
    QTest::newRow("horizontal") << true << false;
    QTest::newRow("vertical") << false << true;
    QTest::newRow("both") << true << true;
}

// What a colour drawn over a pixel gives, each channel rounded.
inline QColor blended(QColor under, QColor over)
{
    const double a = over.alphaF();
    return QColor::fromRgbF(over.redF() * a + under.redF() * (1 - a),
        over.greenF() * a + under.greenF() * (1 - a), over.blueF() * a + under.blueF() * (1 - a));
}

// Whether two colours agree within the rounding of 8-bit blending.
inline bool closeTo(QColor actual, QColor expected, int tolerance = 2)
{
    return qAbs(actual.red() - expected.red()) <= tolerance
        && qAbs(actual.green() - expected.green()) <= tolerance
        && qAbs(actual.blue() - expected.blue()) <= tolerance;
}

inline QString describe(QColor colour)
{
    return QStringLiteral("(%1, %2, %3)").arg(colour.red()).arg(colour.green()).arg(colour.blue());
}
