// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// Figures of the two editors, per call:
//  (a) paint() at an item size of 1920 x 1080, into an image of that size, in the situations
//      a user meets: the first paint after a change of size or flip, and the repaints during a
//      drag (goal: under 2 ms);
//  (b) one mouse-move step of a drag, handed to the item as the window hands it on: the move
//      algorithm and setWindow (or the new offset), and the hover hit test (goal: under 50 us).
// Not a test: run it by hand, e.g.  QT_QPA_PLATFORM=offscreen build/bin/bench_editors

#include <kivcamui/editors/DisplayEditor.h>
#include <kivcamui/editors/WindowEditor.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QQuickWindow>

#include <algorithm>
#include <cstdio>
#include <functional>

using kiv::cam::ui::DisplayEditor;
using kiv::cam::ui::WindowEditor;

namespace {

const QSize itemSize(1920, 1080);

// The cost of one call of step, in microseconds: the mean over a batch of calls, taking the best
// of the batches that fill about half a second, so that other work on the machine counts least.
double perCall(const std::function<void(int)>& step)
{
    step(0);
    QElapsedTimer total;
    total.start();
    double best = 1e300;
    int calls = 0;
    while (total.elapsed() < 500) {
        QElapsedTimer batch;
        batch.start();
        for (int i = 0; i < 10; ++i)
            step(++calls);
        best = std::min(best, double(batch.nsecsElapsed()) / 10 / 1000.0);
    }
    return best;
}

void report(const char* what, double micros)
{
    if (micros >= 1000)
        std::printf("%-64s %8.3f ms\n", what, micros / 1000.0);
    else
        std::printf("%-64s %8.2f us\n", what, micros);
}

// paint() into an image of the item's size and format, as the scene graph's software painter
// does; clearing the image before each call is left out of the figure.
double paintCost(QQuickPaintedItem& item, const std::function<void(int)>& change = {})
{
    QImage image(itemSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    return perCall([&](int call) {
        if (change)
            change(call);
        item.paint(&painter);
    });
}

void send(QObject* receiver, QEvent::Type type, QPointF position)
{
    const Qt::MouseButtons buttons
        = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, position, position, Qt::LeftButton, buttons, {});
    QCoreApplication::sendEvent(receiver, &event);
}

// The cost of a move step of a drag that starts at from and wanders right and down, each step
// to a new place, so that each changes what the item holds.
double dragStepCost(QQuickWindow& window, QQuickItem& item, QPointF from)
{
    send(&window, QEvent::MouseButtonPress, from);
    const double cost = perCall(
        [&](int call) { send(&item, QEvent::MouseMove, from + QPointF(call % 400, call % 300)); });
    send(&window, QEvent::MouseButtonRelease, from);
    return cost;
}

} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    kivcamuiInitPlugin();
    QQuickWindow window;
    window.resize(itemSize);

    std::printf("item %dx%d\n", itemSize.width(), itemSize.height());

    {
        WindowEditor editor(window.contentItem());
        editor.setSize(itemSize);
        editor.setMaxSize(QSize(640, 512));
        editor.setWindow(QRect(0, 0, 640, 512));
        report("WindowEditor paint, window over the whole sensor", paintCost(editor));
        editor.setWindow(QRect(100, 100, 200, 100));
        report("WindowEditor paint, small window", paintCost(editor));
        editor.setHFlip(true);
        editor.setVFlip(true);
        report("WindowEditor paint, flipped", paintCost(editor));
        editor.setIsSubWindow(true);
        editor.setFullSize(QSize(1280, 1024));
        editor.setSubWindowPosition(QPoint(320, 256));
        report("WindowEditor paint, flipped sub-window with shaded bands", paintCost(editor));
        report("WindowEditor paint after each flip change",
            paintCost(editor, [&](int call) { editor.setHFlip(call % 2); }));
        report("WindowEditor paint after each window change (a drag)",
            paintCost(editor,
                [&](int call) { editor.setWindow(QRect(100 + call % 300, 100, 200, 100)); }));
    }

    {
        WindowEditor editor(window.contentItem());
        editor.setSize(itemSize);
        editor.setMaxSize(QSize(640, 512));
        editor.setWindow(QRect(100, 100, 200, 100));
        editor.setIncrement(QPoint(4, 2));
        // Item pixels are three sensor pixels: the right edge's handle is at (900, 316).
        report(
            "WindowEditor drag step (right edge)", dragStepCost(window, editor, QPointF(900, 316)));
        report("WindowEditor drag step (whole window)",
            dragStepCost(window, editor, QPointF(450, 316)));
        editor.setCenteredOnly(true);
        report("WindowEditor drag step (centred, right edge)",
            dragStepCost(window, editor, QPointF(900, 316)));
        editor.setCenteredOnly(false);
        report("WindowEditor hover step (hit test, cursor)", perCall([&](int call) {
            const QPointF at(call % 1900, call % 1000);
            QHoverEvent hover(QEvent::HoverMove, at, at, at);
            QCoreApplication::sendEvent(&editor, &hover);
        }));
    }

    {
        DisplayEditor editor(window.contentItem());
        editor.setSize(itemSize);
        report("DisplayEditor paint, centred at zoom 1", paintCost(editor));
        editor.setZoom(0);
        report("DisplayEditor paint, fit to the display", paintCost(editor));
        editor.setHFlip(true);
        editor.setShowNtscLines(true);
        report("DisplayEditor paint, flipped, NTSC lines", paintCost(editor));
        editor.setOffsetType(DisplayEditor::OFFSET_CUSTOM);
        editor.setZoom(0.5f);
        report("DisplayEditor paint after each offset change (a drag)",
            paintCost(editor, [&](int call) { editor.setOffset(QPoint(call % 300, call % 200)); }));
        report("DisplayEditor paint after each zoom change",
            paintCost(editor, [&](int call) { editor.setZoom(0.5f + float(call % 2) / 4); }));
        editor.setZoom(0.5f);
        editor.setOffset(QPoint(0, 0));
        report("DisplayEditor drag step", dragStepCost(window, editor, QPointF(100, 100)));
    }
    return 0;
}
