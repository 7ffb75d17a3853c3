// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EditorScene.h"
#include "SignalLog.h"

#include <kivcamui/editors/WindowEditor.h>

#include <QImage>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <utility>

using kiv::cam::ui::EditorItem;
using kiv::cam::ui::WindowEditor;

namespace {

using Scene = EditorScene<WindowEditor>;

// The usual scene: a 640 x 512 sensor shown 1:1 on a 640 x 512 item, window (100, 100, 200, 100),
// so that item pixels are sensor pixels. Its handles' centres:
const QPoint top(200, 100), left(100, 150), bottom(200, 200), right(300, 150), topLeft(100, 100),
    bottomRight(300, 200), topRight(300, 100), bottomLeft(100, 200), inside(150, 130);

void setUpSensor(Scene& scene, QRect window = QRect(100, 100, 200, 100))
{
    scene.editor->setMaxSize(QSize(640, 512));
    scene.editor->setWindow(window);
}

// Drags each handle of the window (100, 100, 208, 96), shown 1:1, by small and large amounts,
// past the sensor's edges and past the opposite edge, from that window each time, and calls
// check after each drag with its name.
template <typename Check> void forEachDrag(Scene& scene, Check check)
{
    const std::pair<const char*, QPoint> handles[]
        = {{"Top", QPoint(204, 100)}, {"Left", QPoint(100, 148)}, {"Bottom", QPoint(204, 196)},
            {"Right", QPoint(308, 148)}, {"TopLeft", QPoint(100, 100)},
            {"BottomRight", QPoint(308, 196)}, {"TopRight", QPoint(308, 100)},
            {"BottomLeft", QPoint(100, 196)}, {"Move", QPoint(150, 130)}};
    const QPoint moves[]
        = {QPoint(1, 1), QPoint(3, -2), QPoint(-7, 9), QPoint(13, 5), QPoint(-150, -150),
            QPoint(400, 400), QPoint(250, 150), QPoint(-250, -150), QPoint(208, 96)};
    for (const auto& [name, at] : handles) {
        for (const QPoint by : moves) {
            scene.editor->setWindow(QRect(100, 100, 208, 96));
            scene.drag(at, at + by);
            check(QStringLiteral("%1 by %2, %3").arg(name).arg(by.x()).arg(by.y()));
        }
    }
}

// The validity rows (window, centeredOnly, valid) on a 640 x 512 sensor, minimum 16 x 8.
void checkValidity(QPoint increment, QPoint offsetIncrement)
{
    QFETCH(QRect, window);
    QFETCH(bool, centeredOnly);
    QFETCH(bool, valid);
    WindowEditor editor;
    editor.setMaxSize(QSize(640, 512));
    editor.setMinSize(QSize(16, 8));
    editor.setIncrement(increment);
    editor.setOffsetIncrement(offsetIncrement);
    editor.setWindow(window);
    // Turning centred mode on keeps the window where it is.
    editor.setCenteredOnly(centeredOnly);
    QCOMPARE(editor.window(), window);
    QCOMPARE(editor.isWindowValid(), valid);
}

} // namespace

class tst_WindowEditor : public QObject {
    Q_OBJECT

private slots:
    void defaults()
    {
        const WindowEditor editor;
        QCOMPARE(editor.hFlip(), false);
        QCOMPARE(editor.vFlip(), false);
        QCOMPARE(editor.window(), QRect(0, 0, 320, 256));
        QCOMPARE(editor.minSize(), QSize(1, 1));
        QCOMPARE(editor.maxSize(), QSize(320, 256));
        QCOMPARE(editor.increment(), QPoint(1, 1));
        QCOMPARE(editor.offsetIncrement(), QPoint(0, 0));
        QCOMPARE(editor.tracking(), false);
        QCOMPARE(editor.isWindowValid(), true);
        QCOMPARE(editor.centeredOnly(), false);
        QCOMPARE(editor.isSubWindow(), false);
        QCOMPARE(editor.fullSize(), QSize(320, 256));
        QCOMPARE(editor.subWindowPosition(), QPoint(0, 0));
        QCOMPARE(editor.acceptedMouseButtons(), Qt::MouseButtons(Qt::LeftButton));
        QVERIFY(editor.acceptHoverEvents());
        QVERIFY(editor.keepMouseGrab());
        QVERIFY(editor.hasFocus());
    }

    // Each handle dragged 20 right and 10 down.
    void dragEachControlPoint_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("Top") << top << QRect(100, 110, 200, 90);
        QTest::newRow("Left") << left << QRect(120, 100, 180, 100);
        QTest::newRow("Bottom") << bottom << QRect(100, 100, 200, 110);
        QTest::newRow("Right") << right << QRect(100, 100, 220, 100);
        QTest::newRow("TopLeft") << topLeft << QRect(120, 110, 180, 90);
        QTest::newRow("BottomRight") << bottomRight << QRect(100, 100, 220, 110);
        QTest::newRow("TopRight") << topRight << QRect(100, 110, 220, 90);
        QTest::newRow("BottomLeft") << bottomLeft << QRect(120, 100, 180, 110);
        QTest::newRow("Move") << inside << QRect(120, 110, 200, 100);
    }
    void dragEachControlPoint()
    {
        QFETCH(QPoint, from);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        SignalLog log(scene.editor, &EditorItem::staticMetaObject);

        scene.press(from);
        QVERIFY(scene.editor->tracking());
        QCOMPARE(log.take(), QStringList{"trackingChanged"});
        scene.move(from + QPoint(20, 10));
        QCOMPARE(scene.editor->window(), expected);
        scene.release(from + QPoint(20, 10));
        QVERIFY(!scene.editor->tracking());
        QCOMPARE(log.take(), (QStringList{"windowChanged", "trackingChanged"}));
    }

    void hoverCursors_data()
    {
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<int>("cursor");
        QTest::newRow("Top") << top << int(Qt::SizeVerCursor);
        QTest::newRow("Left") << left << int(Qt::SizeHorCursor);
        QTest::newRow("Bottom") << bottom << int(Qt::SizeVerCursor);
        QTest::newRow("Right") << right << int(Qt::SizeHorCursor);
        QTest::newRow("TopLeft") << topLeft << int(Qt::SizeFDiagCursor);
        QTest::newRow("BottomRight") << bottomRight << int(Qt::SizeFDiagCursor);
        QTest::newRow("TopRight") << topRight << int(Qt::SizeBDiagCursor);
        QTest::newRow("BottomLeft") << bottomLeft << int(Qt::SizeBDiagCursor);
        QTest::newRow("Move") << inside << int(Qt::SizeAllCursor);
        // Just outside the handles' 10 x 10 squares.
        QTest::newRow("None above Top") << QPoint(200, 94) << int(Scene::NoItemCursor);
        QTest::newRow("None outside") << QPoint(500, 400) << int(Scene::NoItemCursor);
    }
    void hoverCursors()
    {
        QFETCH(QPoint, at);
        QFETCH(int, cursor);
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        // From a handle, so that a miss must unset the cursor again.
        QCOMPARE(scene.hoverCursor(QPoint(104, 104)), Qt::SizeFDiagCursor);
        QCOMPARE(int(scene.hoverCursor(at)), cursor);
    }
    void hoverHitsEdgesIncluded()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        // The Top handle covers (195, 95) to (204, 104), both corners included.
        QCOMPARE(scene.hoverCursor(QPoint(195, 95)), Qt::SizeVerCursor);
        QCOMPARE(scene.hoverCursor(QPoint(204, 104)), Qt::SizeVerCursor);
        QCOMPARE(scene.hoverCursor(QPoint(194, 95)), Scene::NoItemCursor);
        QCOMPARE(scene.hoverCursor(QPoint(205, 104)), Qt::SizeAllCursor);
    }
    void edgesBeatCornersAndHandlesBeatMove()
    {
        // In a 10 x 10 window every handle overlaps: the first in the order wins.
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(100, 100, 10, 10));
        QVERIFY(scene.show());
        // Top (100..109, 95..104) before Left (95..104, 100..109) and TopLeft (95..104, 95..104).
        QCOMPARE(scene.hoverCursor(QPoint(102, 102)), Qt::SizeVerCursor);
        // Left before TopLeft and BottomLeft, where Top and Bottom do not reach.
        QCOMPARE(scene.hoverCursor(QPoint(97, 102)), Qt::SizeHorCursor);
        // BottomRight (105..114, 105..114) before TopRight (105..114, 95..104) and Move.
        QCOMPARE(scene.hoverCursor(QPoint(112, 112)), Qt::SizeFDiagCursor);
        // TopRight where only TopRight and Top's far end... Top ends at 109.
        QCOMPARE(scene.hoverCursor(QPoint(112, 97)), Qt::SizeBDiagCursor);
        // BottomLeft where Left ends (Left covers y 100..109).
        QCOMPARE(scene.hoverCursor(QPoint(97, 112)), Qt::SizeBDiagCursor);
    }
    void hoverLeaveUnsetsTheCursor()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        QCOMPARE(scene.hoverCursor(inside), Qt::SizeAllCursor);
        QCOMPARE(scene.hoverCursor(QPoint(700, 580)), Scene::NoItemCursor);
        // Left without a cursor of its own, not with the move cursor.
        QCOMPARE(scene.cursorLeftOn(inside), Scene::NoItemCursor);
    }

    // Increment (4, 2): edges and sizes snap to the nearest step, halves away from zero.
    void dragWithIncrements_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        QTest::addColumn<QRect>("expected");
        // Left 103 snaps to 104 (25.75 steps), keeping the right edge; width 196 is on a step.
        QTest::newRow("Left +3") << left << QPoint(3, 0) << QRect(104, 100, 196, 100);
        // Width 203 is 50.75 steps: 204.
        QTest::newRow("Right +3") << right << QPoint(3, 0) << QRect(100, 100, 204, 100);
        // Height 103 is 51.5 steps: 52 steps, 104.
        QTest::newRow("Bottom +3") << bottom << QPoint(0, 3) << QRect(100, 100, 200, 104);
        // Top 101 is 50.5 steps: 102; the height follows, 98.
        QTest::newRow("Top +1") << top << QPoint(0, 1) << QRect(100, 102, 200, 98);
        // Width 199 is 49.75 steps: 200 again.
        QTest::newRow("Right -1") << right << QPoint(-1, 0) << QRect(100, 100, 200, 100);
        QTest::newRow("Move +3 +1") << inside << QPoint(3, 1) << QRect(104, 102, 200, 100);
        QTest::newRow("Move -2 -1") << inside << QPoint(-2, -1) << QRect(100, 100, 200, 100);
        // Top 97 is 48.5 steps: 49 steps, 98.
        QTest::newRow("Move -3 -3") << inside << QPoint(-3, -3) << QRect(96, 98, 200, 100);
    }
    void dragWithIncrements()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        scene.editor->setIncrement(QPoint(4, 2));
        QVERIFY(scene.show());
        scene.drag(from, from + by);
        QCOMPARE(scene.editor->window(), expected);
        QVERIFY(scene.editor->isWindowValid());
    }

    // A separate offset increment: origins on steps of 4, sizes on steps of 16. The window
    // (100, 100, 208, 96) is valid; its handles' centres, 1:1: Left (100, 148), Top (204, 100),
    // TopLeft (100, 100), BottomRight (308, 196), Right (308, 148), inside (150, 130).
    void dragWithOffsetIncrement_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        QTest::addColumn<QRect>("expected");
        // Left 103 snaps to 104; the width 204 is 12.75 steps: 208, so the right edge follows.
        QTest::newRow("Left +3") << QPoint(100, 148) << QPoint(3, 0) << QRect(104, 100, 208, 96);
        // Left 111 snaps to 112; the width 196 is 12.25 steps: 192.
        QTest::newRow("Left +11") << QPoint(100, 148) << QPoint(11, 0) << QRect(112, 100, 192, 96);
        // Top 103 snaps to 104; the height 92 is 5.75 steps: 96.
        QTest::newRow("Top +3") << QPoint(204, 100) << QPoint(0, 3) << QRect(100, 104, 208, 96);
        // 90 is 22.5 steps of 4: 92; the sizes 216 and 104 are 13.5 and 6.5 steps: 224 and 112.
        QTest::newRow("TopLeft -10 -10")
            << QPoint(100, 100) << QPoint(-10, -10) << QRect(92, 92, 224, 112);
        QTest::newRow("TopLeft -5 -5")
            << QPoint(100, 100) << QPoint(-5, -5) << QRect(96, 96, 208, 96);
        QTest::newRow("BottomRight +10 +10")
            << QPoint(308, 196) << QPoint(10, 10) << QRect(100, 100, 224, 112);
        // 102 is 25.5 steps of 4: 104. 101 is 25.25 steps: 100.
        QTest::newRow("Move +2 +1") << QPoint(150, 130) << QPoint(2, 1) << QRect(104, 100, 208, 96);
        QTest::newRow("Move -6 +6") << QPoint(150, 130) << QPoint(-6, 6) << QRect(96, 108, 208, 96);
        // Past the sensor's left edge the window starts at 0 and spans to 308: 304 on the steps.
        QTest::newRow("Left past the sensor")
            << QPoint(100, 148) << QPoint(-150, 0) << QRect(0, 100, 304, 96);
        QTest::newRow("Top past the sensor")
            << QPoint(204, 100) << QPoint(0, -150) << QRect(100, 0, 208, 192);
        // The room right of 100 is 540: the width stops at 528, on the steps.
        QTest::newRow("Right past the sensor")
            << QPoint(308, 148) << QPoint(400, 0) << QRect(100, 100, 528, 96);
        QTest::newRow("BottomRight past the sensor")
            << QPoint(308, 196) << QPoint(400, 400) << QRect(100, 100, 528, 400);
        QTest::newRow("Move past the right and bottom")
            << QPoint(150, 130) << QPoint(450, 370) << QRect(432, 416, 208, 96);
    }
    void dragWithOffsetIncrement()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(100, 100, 208, 96));
        scene.editor->setIncrement(QPoint(16, 16));
        scene.editor->setOffsetIncrement(QPoint(4, 4));
        QVERIFY(scene.editor->isWindowValid());
        QVERIFY(scene.show());
        SignalLog log(scene.editor, &EditorItem::staticMetaObject);
        scene.drag(from, from + by);
        QCOMPARE(scene.editor->window(), expected);
        QVERIFY(scene.editor->isWindowValid());
        // Valid before and after: only the window's change is announced.
        QCOMPARE(log.take(), (QStringList{"trackingChanged", "windowChanged", "trackingChanged"}));
    }

    // Whatever a handle does, the window lands on a valid one, with offset steps finer and
    // coarser than the size steps.
    void everyDragWithOffsetIncrementIsValid_data()
    {
        QTest::addColumn<QPoint>("offsetIncrement");
        QTest::addColumn<QPoint>("increment");
        QTest::newRow("offset 4, 4, size 16, 16") << QPoint(4, 4) << QPoint(16, 16);
        QTest::newRow("offset 16, 32, size 4, 8") << QPoint(16, 32) << QPoint(4, 8);
    }
    void everyDragWithOffsetIncrementIsValid()
    {
        QFETCH(QPoint, offsetIncrement);
        QFETCH(QPoint, increment);
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        scene.editor->setMinSize(QSize(32, 32));
        scene.editor->setIncrement(increment);
        scene.editor->setOffsetIncrement(offsetIncrement);
        QVERIFY(scene.show());
        forEachDrag(scene, [&](const QString& drag) {
            const QRect w = scene.editor->window();
            QVERIFY2(scene.editor->isWindowValid(),
                qPrintable(drag
                    + QStringLiteral(": (%1, %2, %3, %4)")
                          .arg(w.x())
                          .arg(w.y())
                          .arg(w.width())
                          .arg(w.height())));
        });
    }

    // An offset increment equal to the increment drags exactly as none does.
    void offsetIncrementUnsetChangesNothing_data()
    {
        QTest::addColumn<QPoint>("increment");
        QTest::newRow("1, 1") << QPoint(1, 1);
        QTest::newRow("4, 2") << QPoint(4, 2);
        QTest::newRow("16, 8") << QPoint(16, 8);
    }
    void offsetIncrementUnsetChangesNothing()
    {
        QFETCH(QPoint, increment);
        Scene unset(QSize(640, 512));
        Scene same(QSize(640, 512));
        for (Scene* scene : {&unset, &same}) {
            setUpSensor(*scene);
            scene->editor->setMinSize(QSize(32, 32));
            scene->editor->setIncrement(increment);
            QVERIFY(scene->show());
        }
        same.editor->setOffsetIncrement(increment);
        QList<QRect> windows;
        forEachDrag(unset, [&](const QString&) { windows << unset.editor->window(); });
        QCOMPARE(windows.size(), 81);
        forEachDrag(same, [&](const QString& drag) {
            QVERIFY2(same.editor->window() == windows.takeFirst(), qPrintable(drag));
        });
    }

    void dragCentredWithOffsetIncrement_data()
    {
        QTest::addColumn<QPoint>("offsetIncrement");
        QTest::addColumn<QRect>("expected");
        // Width 228 is 14.25 steps of 16: 224, centred at 208, on the steps of 4.
        QTest::newRow("offset 4") << QPoint(4, 4) << QRect(208, 208, 224, 96);
        // 208 is not on the steps of 32: the window sits at 192.
        QTest::newRow("offset 32") << QPoint(32, 32) << QRect(192, 192, 224, 96);
    }
    void dragCentredWithOffsetIncrement()
    {
        QFETCH(QPoint, offsetIncrement);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(216, 208, 208, 96));
        scene.editor->setIncrement(QPoint(16, 16));
        scene.editor->setOffsetIncrement(offsetIncrement);
        scene.editor->setCenteredOnly(true);
        QVERIFY(scene.show());
        // The Right handle, at (424, 256) before the window is centred on the offset steps.
        const QPoint right = scene.editor->window().topLeft() + QPoint(208, 48);
        scene.drag(right, right + QPoint(10, 0));
        QCOMPARE(scene.editor->window(), expected);
        QVERIFY(scene.editor->isWindowValid());
    }

    void validityWithOffsetIncrement_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<bool>("centeredOnly");
        QTest::addColumn<bool>("valid");
        // Sensor 640 x 512, minimum 16 x 8, increment (16, 16), offset increment (4, 2).
        QTest::newRow("on the steps") << QRect(100, 102, 208, 96) << false << true;
        QTest::newRow("x on an offset step only") << QRect(104, 100, 208, 96) << false << true;
        QTest::newRow("x off the offset steps") << QRect(102, 100, 208, 96) << false << false;
        QTest::newRow("y off the offset steps") << QRect(100, 101, 208, 96) << false << false;
        QTest::newRow("width on an offset step only") << QRect(100, 100, 204, 96) << false << false;
        QTest::newRow("height on an offset step only")
            << QRect(100, 100, 208, 98) << false << false;
        QTest::newRow("to the sensor's edges") << QRect(432, 416, 208, 96) << false << true;
        // (640 - 208) / 2 = 216 and (512 - 96) / 2 = 208: on the offset steps.
        QTest::newRow("centred") << QRect(216, 208, 208, 96) << true << true;
        QTest::newRow("off the centre") << QRect(212, 208, 208, 96) << true << false;
    }
    void validityWithOffsetIncrement() { checkValidity(QPoint(16, 16), QPoint(4, 2)); }

    void setWindowCentresOnTheOffsetSteps()
    {
        WindowEditor editor;
        editor.setMaxSize(QSize(640, 512));
        editor.setIncrement(QPoint(16, 16));
        editor.setOffsetIncrement(QPoint(4, 4));
        editor.setCenteredOnly(true);
        // The centre (216, 210) goes down to the offset steps: (216, 208).
        editor.setWindow(QRect(0, 0, 208, 92));
        QCOMPARE(editor.window(), QRect(216, 208, 208, 92));
    }

    void offsetIncrementAnnouncesNoValidity()
    {
        WindowEditor editor;
        editor.setMaxSize(QSize(640, 512));
        editor.setIncrement(QPoint(16, 16));
        editor.setWindow(QRect(104, 100, 208, 96));
        QVERIFY(!editor.isWindowValid());
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        QSignalSpy changed(&editor, &WindowEditor::offsetIncrementChanged);
        editor.setOffsetIncrement(QPoint(4, 4));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(editor.offsetIncrement(), QPoint(4, 4));
        QVERIFY(editor.isWindowValid());
        QCOMPARE(log.take(), QStringList{"offsetIncrementChanged"});
        // Refused values leave it as it is.
        editor.setOffsetIncrement(QPoint(0, 0));
        editor.setOffsetIncrement(QPoint(-4, 4));
        QCOMPARE(editor.offsetIncrement(), QPoint(4, 4));
        QCOMPARE(changed.count(), 1);
    }

    void resetUnsetsTheOffsetIncrement()
    {
        WindowEditor editor;
        editor.setIncrement(QPoint(16, 16));
        editor.setWindow(QRect(16, 16, 32, 32));
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        // Unset already: no change.
        editor.resetOffsetIncrement();
        QCOMPARE(log.take(), QStringList());
        editor.setOffsetIncrement(QPoint(4, 4));
        editor.setWindow(QRect(20, 16, 32, 32));
        QVERIFY(editor.isWindowValid());
        QCOMPARE(log.take(), (QStringList{"offsetIncrementChanged", "windowChanged"}));
        const QMetaProperty property = editor.metaObject()->property(
            editor.metaObject()->indexOfProperty("offsetIncrement"));
        QVERIFY(property.isResettable());
        QVERIFY(property.reset(&editor));
        QCOMPARE(editor.offsetIncrement(), QPoint(0, 0));
        QCOMPARE(log.take(), QStringList{"offsetIncrementChanged"});
        // The origin is back on the steps of 16.
        QVERIFY(!editor.isWindowValid());
        editor.resetOffsetIncrement();
        QCOMPARE(log.take(), QStringList());
    }

    // A centred window (220, 206, 200, 100) grows on both sides: the drag counts twice.
    void dragCentredOnly_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        QTest::addColumn<QPoint>("increment");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("Right +10")
            << QPoint(420, 256) << QPoint(10, 0) << QPoint(1, 1) << QRect(210, 206, 220, 100);
        QTest::newRow("Left +10") << QPoint(220, 256) << QPoint(10, 0) << QPoint(1, 1)
                                  << QRect(230, 206, 180, 100);
        QTest::newRow("Bottom +5")
            << QPoint(320, 306) << QPoint(0, 5) << QPoint(1, 1) << QRect(220, 201, 200, 110);
        QTest::newRow("TopLeft -10 -10")
            << QPoint(220, 206) << QPoint(-10, -10) << QPoint(1, 1) << QRect(210, 196, 220, 120);
        // Width 214 snaps to 216 on steps of 8; the centre 212 is on a step.
        QTest::newRow("Right +7, increment 8")
            << QPoint(420, 256) << QPoint(7, 0) << QPoint(8, 2) << QRect(208, 206, 216, 100);
        // Width 206 on steps of 4 is 51.5 steps: 208; centre 216 is on a step.
        QTest::newRow("Right +3, increment 4")
            << QPoint(420, 256) << QPoint(3, 0) << QPoint(4, 1) << QRect(216, 206, 208, 100);
        // The centre 215 is not on a step of 2: the window sits at 214.
        QTest::newRow("Right +5, increment 2")
            << QPoint(420, 256) << QPoint(5, 0) << QPoint(2, 1) << QRect(214, 206, 210, 100);
        // Never wider than the sensor nor narrower than the minimum (1).
        QTest::newRow("Right +300")
            << QPoint(420, 256) << QPoint(300, 0) << QPoint(1, 1) << QRect(0, 206, 640, 100);
        QTest::newRow("Right -150")
            << QPoint(420, 256) << QPoint(-150, 0) << QPoint(1, 1) << QRect(270, 206, 100, 100);
    }
    void dragCentredOnly()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        QFETCH(QPoint, increment);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(220, 206, 200, 100));
        scene.editor->setIncrement(increment);
        scene.editor->setCenteredOnly(true);
        QVERIFY(scene.show());
        scene.drag(from, from + by);
        QCOMPARE(scene.editor->window(), expected);
        QVERIFY(scene.editor->isWindowValid());
    }

    // Resizing and moving stay on the sensor (640 x 512) and above the minimum size (100 x 10).
    void dragClamps_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        QTest::addColumn<QRect>("expected");
        const QRect w(100, 100, 200, 100);
        QTest::newRow("left below 0") << w << left << QPoint(-150, 0) << QRect(0, 100, 300, 100);
        QTest::newRow("top below 0") << w << top << QPoint(0, -150) << QRect(100, 0, 200, 200);
        QTest::newRow("right past the sensor")
            << w << right << QPoint(400, 0) << QRect(100, 100, 540, 100);
        QTest::newRow("bottom past the sensor")
            << w << bottom << QPoint(0, 400) << QRect(100, 100, 200, 412);
        QTest::newRow("top-left past both")
            << w << topLeft << QPoint(-150, -150) << QRect(0, 0, 300, 200);
        QTest::newRow("bottom-right past both")
            << w << bottomRight << QPoint(400, 400) << QRect(100, 100, 540, 412);
        QTest::newRow("narrower than the minimum")
            << w << right << QPoint(-150, 0) << QRect(100, 100, 100, 100);
        // 610 + 100 passes 640: the minimum width is kept by moving the window in.
        QTest::newRow("narrower than the minimum at the right side") << QRect(
            560, 100, 80, 100) << QPoint(560, 150) << QPoint(50, 0) << QRect(540, 100, 100, 100);
        QTest::newRow("lower than the minimum")
            << w << bottom << QPoint(0, -95) << QRect(100, 100, 200, 10);
        QTest::newRow("move past the left and top")
            << w << inside << QPoint(-150, -120) << QRect(0, 0, 200, 100);
        QTest::newRow("move past the right and bottom")
            << w << inside << QPoint(450, 370) << QRect(440, 412, 200, 100);
    }
    void dragClamps()
    {
        QFETCH(QRect, window);
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene, window);
        scene.editor->setMinSize(QSize(100, 10));
        QVERIFY(scene.show());
        scene.drag(from, from + by);
        QCOMPARE(scene.editor->window(), expected);
    }

    void dragEdgePastItsOpposite_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        QTest::addColumn<QRect>("expected");
        // The left edge at 350 passes the right edge (299): the window now spans 300..349.
        QTest::newRow("left past right") << left << QPoint(250, 0) << QRect(300, 100, 50, 100);
        QTest::newRow("right past left") << right << QPoint(-250, 0) << QRect(50, 100, 50, 100);
        QTest::newRow("top past bottom") << top << QPoint(0, 150) << QRect(100, 200, 200, 50);
        QTest::newRow("bottom past top") << bottom << QPoint(0, -150) << QRect(100, 50, 200, 50);
        QTest::newRow("top-left past bottom-right")
            << topLeft << QPoint(250, 150) << QRect(300, 200, 50, 50);
        // Onto the opposite edge: an empty width becomes the minimum, 1.
        QTest::newRow("left onto right") << left << QPoint(200, 0) << QRect(300, 100, 1, 100);
    }
    void dragEdgePastItsOpposite()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        QFETCH(QRect, expected);
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        scene.drag(from, from + by);
        QCOMPARE(scene.editor->window(), expected);
    }

    void dragMapsItemPixelsToSensorPixels()
    {
        // A 320 x 256 sensor on a 640 x 512 item: two item pixels per sensor pixel.
        Scene scene(QSize(640, 512));
        scene.editor->setWindow(QRect(50, 50, 100, 50));
        QVERIFY(scene.show());
        // The Right handle (145, 70, 10, 10) shows at (290, 140, 20, 20).
        QCOMPARE(scene.hoverCursor(QPoint(290, 140)), Qt::SizeHorCursor);
        QCOMPARE(scene.hoverCursor(QPoint(309, 159)), Qt::SizeHorCursor);
        QCOMPARE(scene.hoverCursor(QPoint(311, 150)), Scene::NoItemCursor);
        // Pressed at (300, 150), sensor (150, 75); at 311 the sensor x is 155.5, so 156.
        scene.press(QPoint(300, 150));
        scene.move(QPoint(311, 150));
        QCOMPARE(scene.editor->window(), QRect(50, 50, 106, 50));
        scene.move(QPoint(309, 150));
        QCOMPARE(scene.editor->window(), QRect(50, 50, 105, 50));
        scene.release(QPoint(309, 150));
    }

    void dragStartsFromTheWindowAtPress()
    {
        // Half-pixel steps at scale 2 never add up: each move is measured from the press.
        Scene scene(QSize(640, 512));
        scene.editor->setWindow(QRect(48, 50, 100, 50));
        scene.editor->setIncrement(QPoint(4, 1));
        QVERIFY(scene.show());
        QSignalSpy changed(scene.editor, &WindowEditor::windowChanged);
        // The Right handle shows at (286, 140, 20, 20); pressed at sensor x 148.
        scene.press(QPoint(296, 150));
        // Sensor x 149, 149, 150, 150, 151, ...: widths 101, 101, 102 (25.5 steps: 104), ...
        const int widths[] = {100, 100, 104, 104, 104, 104, 104, 104};
        for (int step = 1; step <= 8; ++step) {
            scene.move(QPoint(296 + step, 150));
            QVERIFY2(scene.editor->window() == QRect(48, 50, widths[step - 1], 50),
                qPrintable(QStringLiteral("step %1").arg(step)));
        }
        // Only the one real change was announced.
        QCOMPARE(changed.count(), 1);
        scene.move(QPoint(296, 150));
        QCOMPARE(scene.editor->window(), QRect(48, 50, 100, 50));
        QCOMPARE(changed.count(), 2);
        scene.release(QPoint(296, 150));
    }

    void subWindowMapsThroughItsPosition()
    {
        // A 320 x 256 sub-window at (160, 128) of a 640 x 512 sensor, shown 1:1.
        Scene scene(QSize(640, 512));
        scene.editor->setIsSubWindow(true);
        scene.editor->setFullSize(QSize(640, 512));
        scene.editor->setSubWindowPosition(QPoint(160, 128));
        scene.editor->setWindow(QRect(0, 0, 100, 50));
        QVERIFY(scene.show());
        // The Right handle (95, 20) of the sub-window shows at (255, 148).
        QCOMPARE(scene.hoverCursor(QPoint(255, 148)), Qt::SizeHorCursor);
        QCOMPARE(scene.hoverCursor(QPoint(254, 148)), Qt::SizeAllCursor);
        scene.drag(QPoint(260, 153), QPoint(280, 153));
        QCOMPARE(scene.editor->window(), QRect(0, 0, 120, 50));
        // The sub-window's own size limits it, not the full sensor's.
        scene.drag(QPoint(280, 153), QPoint(600, 153));
        QCOMPARE(scene.editor->window(), QRect(0, 0, 320, 50));
        // The sub-window's sensor starts at item (160, 128): the window cannot leave it.
        scene.drag(QPoint(300, 150), QPoint(100, 50));
        QCOMPARE(scene.editor->window(), QRect(0, 0, 320, 50));
    }

    void releaseEndsTheDrag()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        scene.drag(right, right + QPoint(20, 0));
        QCOMPARE(scene.editor->window(), QRect(100, 100, 220, 100));
        QSignalSpy changed(scene.editor, &WindowEditor::windowChanged);
        scene.move(right + QPoint(60, 0));
        QCOMPARE(changed.count(), 0);
        QCOMPARE(scene.window.mouseGrabberItem(), nullptr);
    }

    void theDragStartsWhereTheTrackingHandlerLeftTheWindow()
    {
        // The press announces tracking before it remembers the window: a handler that moves
        // the window then is where the drag starts, and the mouse is not grabbed yet.
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        QQuickItem* grabberDuringSignal = scene.editor;
        QObject::connect(scene.editor, &WindowEditor::trackingChanged, scene.editor, [&] {
            if (!scene.editor->tracking())
                return;
            grabberDuringSignal = scene.window.mouseGrabberItem();
            scene.editor->setWindow(QRect(100, 100, 240, 100));
        });
        scene.press(right);
        QCOMPARE(grabberDuringSignal, nullptr);
        QCOMPARE(scene.window.mouseGrabberItem(), scene.editor);
        scene.move(right + QPoint(20, 0));
        QCOMPARE(scene.editor->window(), QRect(100, 100, 260, 100));
        scene.release(right + QPoint(20, 0));
    }

    void pressGrabsTheMouse()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        scene.press(right);
        QCOMPARE(scene.window.mouseGrabberItem(), scene.editor);
        // Outside the item the drag goes on.
        scene.move(QPoint(700, 150));
        QCOMPARE(scene.editor->window(), QRect(100, 100, 540, 100));
        scene.release(QPoint(700, 150));
    }

    void lostGrabKeepsTracking()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        QSignalSpy tracking(scene.editor, &WindowEditor::trackingChanged);
        scene.press(right);
        scene.editor->ungrabMouse();
        QCOMPARE(scene.window.mouseGrabberItem(), nullptr);
        QVERIFY(scene.editor->tracking());
        QCOMPARE(tracking.count(), 1);
        scene.release(right);
    }

    void pressOffTheHandlesStartsNothing()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QQuickItem other(scene.window.contentItem());
        other.forceActiveFocus();
        QVERIFY(scene.show());
        QSignalSpy tracking(scene.editor, &WindowEditor::trackingChanged);
        scene.drag(QPoint(500, 400), QPoint(450, 350));
        QCOMPARE(tracking.count(), 0);
        QCOMPARE(scene.editor->window(), QRect(100, 100, 200, 100));
        // The press still takes the focus.
        QVERIFY(scene.editor->hasActiveFocus());
    }

    void setWindowStoresWhatItIsGiven()
    {
        WindowEditor editor;
        editor.setIncrement(QPoint(4, 4));
        QSignalSpy changed(&editor, &WindowEditor::windowChanged);
        editor.setWindow(QRect(3, 5, 1000, 1000));
        QCOMPARE(editor.window(), QRect(3, 5, 1000, 1000));
        QCOMPARE(changed.count(), 1);
        QVERIFY(!editor.isWindowValid());
    }

    void setWindowRefuses_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::newRow("negative x") << QRect(-1, 0, 10, 10);
        QTest::newRow("negative y") << QRect(0, -1, 10, 10);
        QTest::newRow("empty width") << QRect(0, 0, 0, 10);
        QTest::newRow("empty height") << QRect(0, 0, 10, 0);
        QTest::newRow("negative width") << QRect(0, 0, -5, 10);
        QTest::newRow("the same") << QRect(0, 0, 320, 256);
    }
    void setWindowRefuses()
    {
        QFETCH(QRect, window);
        WindowEditor editor;
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        editor.setWindow(window);
        QCOMPARE(editor.window(), QRect(0, 0, 320, 256));
        QCOMPARE(log.take(), QStringList());
    }

    void setWindowCentresInCentredMode()
    {
        WindowEditor editor;
        editor.setMaxSize(QSize(640, 512));
        editor.setIncrement(QPoint(4, 4));
        editor.setCenteredOnly(true);
        // The centre (220, 206) goes down to the steps: (220, 204).
        editor.setWindow(QRect(0, 0, 200, 100));
        QCOMPARE(editor.window(), QRect(220, 204, 200, 100));
        QVERIFY(editor.isWindowValid());
    }

    void validity_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<bool>("centeredOnly");
        QTest::addColumn<bool>("valid");
        // Sensor 640 x 512, minimum 16 x 8, increment (4, 2).
        QTest::newRow("on the steps") << QRect(100, 100, 200, 100) << false << true;
        QTest::newRow("x off the steps") << QRect(102, 100, 200, 100) << false << false;
        QTest::newRow("width off the steps") << QRect(100, 100, 202, 100) << false << false;
        QTest::newRow("y off the steps") << QRect(100, 101, 200, 100) << false << false;
        QTest::newRow("height off the steps") << QRect(100, 100, 200, 101) << false << false;
        QTest::newRow("narrower than the minimum") << QRect(100, 100, 12, 100) << false << false;
        QTest::newRow("lower than the minimum") << QRect(100, 100, 200, 6) << false << false;
        QTest::newRow("at the minimum") << QRect(100, 100, 16, 8) << false << true;
        QTest::newRow("to the sensor's edges") << QRect(440, 412, 200, 100) << false << true;
        QTest::newRow("past the right edge") << QRect(444, 412, 200, 100) << false << false;
        QTest::newRow("past the bottom edge") << QRect(440, 414, 200, 100) << false << false;
        QTest::newRow("whole sensor") << QRect(0, 0, 640, 512) << false << true;
        QTest::newRow("off the centre") << QRect(100, 100, 200, 100) << true << false;
        QTest::newRow("centred") << QRect(220, 206, 200, 100) << true << true;
        // cx = 218: on the steps that is 216.
        QTest::newRow("centred on the steps") << QRect(216, 206, 204, 100) << true << true;
        QTest::newRow("exactly centred, off the steps")
            << QRect(218, 206, 204, 100) << true << false;
    }
    void validity() { checkValidity(QPoint(4, 2), QPoint()); }
    void validityIgnoresTheSubWindow()
    {
        WindowEditor editor;
        editor.setWindow(QRect(0, 0, 320, 256));
        editor.setIsSubWindow(true);
        editor.setFullSize(QSize(100, 100));
        editor.setSubWindowPosition(QPoint(500, 500));
        QVERIFY(editor.isWindowValid());
    }

    void settersAnnounceRealChanges_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("hFlip") << "hFlip" << QVariant(true) << QStringList{"hFlipChanged"};
        QTest::newRow("vFlip") << "vFlip" << QVariant(true) << QStringList{"vFlipChanged"};
        QTest::newRow("window") << "window" << QVariant(QRect(0, 0, 100, 100))
                                << QStringList{"windowChanged"};
        QTest::newRow("window made invalid")
            << "window" << QVariant(QRect(1, 0, 400, 100))
            << QStringList{"windowChanged", "isWindowValidChanged"};
        QTest::newRow("minSize") << "minSize" << QVariant(QSize(2, 3))
                                 << QStringList{"minSizeChanged"};
        QTest::newRow("minSize 0 wide") << "minSize" << QVariant(QSize(0, 3)) << QStringList();
        QTest::newRow("minSize 0 high") << "minSize" << QVariant(QSize(2, 0)) << QStringList();
        // Validity follows the sizes and increment, but they do not announce it.
        QTest::newRow("minSize beyond the window")
            << "minSize" << QVariant(QSize(400, 3)) << QStringList{"minSizeChanged"};
        QTest::newRow("maxSize") << "maxSize" << QVariant(QSize(100, 100))
                                 << QStringList{"maxSizeChanged"};
        QTest::newRow("maxSize negative") << "maxSize" << QVariant(QSize(-1, 100)) << QStringList();
        QTest::newRow("increment")
            << "increment" << QVariant(QPoint(3, 3)) << QStringList{"incrementChanged"};
        QTest::newRow("increment 0") << "increment" << QVariant(QPoint(0, 3)) << QStringList();
        QTest::newRow("increment y 0") << "increment" << QVariant(QPoint(3, 0)) << QStringList();
        QTest::newRow("offsetIncrement")
            << "offsetIncrement" << QVariant(QPoint(4, 2)) << QStringList{"offsetIncrementChanged"};
        QTest::newRow("offsetIncrement 0")
            << "offsetIncrement" << QVariant(QPoint(0, 2)) << QStringList();
        QTest::newRow("offsetIncrement y negative")
            << "offsetIncrement" << QVariant(QPoint(4, -2)) << QStringList();
        QTest::newRow("offsetIncrement (0, 0)")
            << "offsetIncrement" << QVariant(QPoint(0, 0)) << QStringList();
        QTest::newRow("centeredOnly, still valid")
            << "centeredOnly" << QVariant(true) << QStringList{"centeredOnlyChanged"};
        QTest::newRow("isSubWindow")
            << "isSubWindow" << QVariant(true) << QStringList{"isSubWindowChanged"};
        QTest::newRow("fullSize") << "fullSize" << QVariant(QSize(640, 512))
                                  << QStringList{"fullSizeChanged"};
        QTest::newRow("fullSize, any size")
            << "fullSize" << QVariant(QSize(-1, 0)) << QStringList{"fullSizeChanged"};
        QTest::newRow("subWindowPosition") << "subWindowPosition" << QVariant(QPoint(-5, 7))
                                           << QStringList{"subWindowPositionChanged"};
    }
    void settersAnnounceRealChanges()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        QFETCH(QStringList, expected);
        WindowEditor editor;
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        QVERIFY(editor.setProperty(property.toLatin1(), value));
        QCOMPARE(log.take(), expected);
        // Setting it again is no change.
        QVERIFY(editor.setProperty(property.toLatin1(), value));
        QCOMPARE(log.take(), QStringList());
    }
    void signalsCarryTheirProperties()
    {
        const QMetaObject& meta = WindowEditor::staticMetaObject;
        // Its own and those it shares with the other editor.
        for (int i = QQuickPaintedItem::staticMetaObject.propertyCount(); i < meta.propertyCount();
             ++i) {
            const QMetaProperty property = meta.property(i);
            QVERIFY2(property.hasNotifySignal(), property.name());
            QCOMPARE(property.notifySignal().name(), QByteArray(property.name()) + "Changed");
            QCOMPARE(property.isWritable(),
                QByteArray(property.name()) != "tracking"
                    && QByteArray(property.name()) != "isWindowValid");
        }
    }

    // Which setters repaint the item.
    void repaints_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("repaints");
        QTest::newRow("hFlip") << "hFlip" << QVariant(true) << true;
        QTest::newRow("vFlip") << "vFlip" << QVariant(true) << true;
        QTest::newRow("window") << "window" << QVariant(QRect(0, 0, 10, 10)) << true;
        QTest::newRow("centeredOnly") << "centeredOnly" << QVariant(true) << true;
        QTest::newRow("isSubWindow") << "isSubWindow" << QVariant(true) << true;
        QTest::newRow("fullSize") << "fullSize" << QVariant(QSize(640, 512)) << true;
        QTest::newRow("subWindowPosition") << "subWindowPosition" << QVariant(QPoint(1, 1)) << true;
        QTest::newRow("minSize") << "minSize" << QVariant(QSize(2, 2)) << false;
        QTest::newRow("maxSize") << "maxSize" << QVariant(QSize(640, 512)) << false;
        QTest::newRow("increment") << "increment" << QVariant(QPoint(2, 2)) << false;
        QTest::newRow("offsetIncrement") << "offsetIncrement" << QVariant(QPoint(2, 2)) << false;
    }
    void repaints()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        QFETCH(bool, repaints);
        Scene scene(QSize(320, 256));
        QVERIFY(scene.show());
        QCOMPARE(scene.paintsAfter([&] { scene.editor->setProperty(property.toLatin1(), value); }),
            repaints ? 1 : 0);
    }

    // Edge cases.

    void onePixelWindowKeepsTenPixelHandles()
    {
        // A 640 x 512 sensor on a 320 x 256 item: the 1-pixel window is half an item pixel and
        // its handles five; each is widened to 10 x 10 around where it is drawn.
        Scene scene(QSize(320, 256));
        setUpSensor(scene, QRect(300, 200, 1, 1));
        QVERIFY(scene.show());
        QCOMPARE(scene.hoverCursor(QPoint(146, 96)), Qt::SizeVerCursor);
        QCOMPARE(scene.hoverCursor(QPoint(155, 105)), Qt::SizeVerCursor);
        QCOMPARE(scene.hoverCursor(QPoint(145, 100)), Scene::NoItemCursor);
        QCOMPARE(scene.hoverCursor(QPoint(156, 100)), Scene::NoItemCursor);
        QCOMPARE(scene.hoverCursor(QPoint(150, 95)), Scene::NoItemCursor);
        QCOMPARE(scene.hoverCursor(QPoint(150, 106)), Scene::NoItemCursor);
        scene.press(QPoint(155, 105));
        QVERIFY(scene.editor->tracking());
        scene.release(QPoint(155, 105));
    }

    void centredModeNeverHitsMove()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(220, 206, 200, 100));
        scene.editor->setCenteredOnly(true);
        QVERIFY(scene.show());
        QCOMPARE(scene.hoverCursor(QPoint(320, 256)), Scene::NoItemCursor);
        QSignalSpy tracking(scene.editor, &WindowEditor::trackingChanged);
        scene.drag(QPoint(320, 256), QPoint(340, 266));
        QCOMPARE(tracking.count(), 0);
        QCOMPARE(scene.editor->window(), QRect(220, 206, 200, 100));
    }

    void leftEdgeDraggedPastTheRightFlipsThenClamps()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(500, 100, 100, 100));
        scene.editor->setMinSize(QSize(50, 1));
        QVERIFY(scene.show());
        // Left at 640 passes the right edge (599): the window spans 600..639, 40 wide, under
        // the minimum of 50, which does not fit to the right of 600: it moves to 590.
        scene.drag(QPoint(500, 150), QPoint(640, 150));
        QCOMPARE(scene.editor->window(), QRect(590, 100, 50, 100));
    }

    void incrementFourTwoPutsEveryDragOnTheSteps_data()
    {
        QTest::addColumn<QPoint>("from");
        QTest::addColumn<QPoint>("by");
        // The window (3, 0, 8, 8) is drawn 1:1; its handles overlap, so each is pressed where
        // it comes first: Top at (7, 2), Right at (14, 4), Bottom at (7, 11), BottomRight at
        // (14, 11).
        for (const QPoint by : {QPoint(1, 1), QPoint(2, 3), QPoint(5, 1), QPoint(7, 7),
                 QPoint(-1, 2), QPoint(13, 9)}) {
            const QString delta = QStringLiteral(" by %1, %2").arg(by.x()).arg(by.y());
            QTest::newRow(qPrintable("Top" + delta)) << QPoint(7, 2) << by;
            QTest::newRow(qPrintable("Right" + delta)) << QPoint(14, 4) << by;
            QTest::newRow(qPrintable("Bottom" + delta)) << QPoint(7, 11) << by;
            QTest::newRow(qPrintable("BottomRight" + delta)) << QPoint(14, 11) << by;
        }
    }
    void incrementFourTwoPutsEveryDragOnTheSteps()
    {
        QFETCH(QPoint, from);
        QFETCH(QPoint, by);
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(3, 0, 8, 8));
        scene.editor->setIncrement(QPoint(4, 2));
        QVERIFY(!scene.editor->isWindowValid());
        QVERIFY(scene.show());
        scene.press(from);
        QVERIFY(scene.editor->tracking());
        scene.move(from + by);
        scene.release(from + by);
        QCOMPARE(scene.editor->window().x() % 4, 0);
    }

    void centredModeDoesNotMoveTheWindow()
    {
        WindowEditor editor;
        editor.setMaxSize(QSize(640, 512));
        editor.setWindow(QRect(100, 100, 200, 100));
        QVERIFY(editor.isWindowValid());
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        editor.setCenteredOnly(true);
        QCOMPARE(editor.window(), QRect(100, 100, 200, 100));
        QVERIFY(!editor.isWindowValid());
        QCOMPARE(log.take(), (QStringList{"centeredOnlyChanged", "isWindowValidChanged"}));
        editor.setCenteredOnly(false);
        QVERIFY(editor.isWindowValid());
        QCOMPARE(log.take(), (QStringList{"centeredOnlyChanged", "isWindowValidChanged"}));
    }

    void heightClampComparesTheMinimumWidth()
    {
        // Minimum 100 x 10. The bottom edge of (0, 450, 200, 50) dragged up to a height of 5:
        // 100 + 450 passes 512, so the window goes to 512 - 10 = 502, although a 10 high
        // window would have fitted at 450.
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(0, 450, 200, 50));
        scene.editor->setMinSize(QSize(100, 10));
        QVERIFY(scene.show());
        scene.drag(QPoint(100, 500), QPoint(100, 455));
        QCOMPARE(scene.editor->window(), QRect(0, 502, 200, 10));
        // Higher up, 100 + 300 is within 512: the window keeps its top.
        scene.editor->setWindow(QRect(0, 300, 200, 50));
        scene.drag(QPoint(100, 350), QPoint(100, 305));
        QCOMPARE(scene.editor->window(), QRect(0, 300, 200, 10));
    }

    void survivesNonsense()
    {
        // Sizes and positions no sensor has are painted, in the next frame, and hit-tested as
        // far as they go, without a crash or a hang.
        Scene scene(QSize(320, 256));
        QVERIFY(scene.show());
        QCOMPARE(scene.paintsAfter([&] {
            scene.editor->setMaxSize(QSize(INT_MAX, INT_MAX));
            scene.editor->setWindow(QRect(0, 0, INT_MAX, INT_MAX));
        }),
            1);
        QCOMPARE(scene.hoverCursor(QPoint(100, 100)), Qt::SizeAllCursor);
        QCOMPARE(scene.paintsAfter([&] {
            scene.editor->setMaxSize(QSize(1, 1));
            scene.editor->setWindow(QRect(2000000000, 2000000000, 100000000, 100000000));
            scene.editor->setFullSize(QSize(-5, -5));
            scene.editor->setSubWindowPosition(QPoint(2000000000, -2000000000));
            scene.editor->setIsSubWindow(true);
        }),
            1);
        QVERIFY(!scene.editor->isWindowValid());
        QCOMPARE(scene.hoverCursor(QPoint(100, 100)), Scene::NoItemCursor);
        // An item of no size is not painted, and the window goes on rendering.
        scene.editor->setSize(QSizeF(0, 0));
        QVERIFY(scene.renderFrame());
    }

    // Painting, checked on the window's pixels.

    void paintsTheWindowGreenWithAnOutline()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(600, 480, 20, 20));
        QVERIFY(scene.show());
        const QImage plain = scene.grab();
        scene.editor->setWindow(QRect(100, 100, 200, 100));
        const QImage image = scene.grab();
        const QColor fill(0, 128, 0, 128);
        for (const QPoint p : {QPoint(150, 130), QPoint(250, 170), QPoint(102, 102)}) {
            const QColor expected = blended(plain.pixelColor(p), fill);
            QVERIFY2(closeTo(image.pixelColor(p), expected),
                qPrintable(describe(image.pixelColor(p)) + " != " + describe(expected)));
        }
        // The outline lies on the window's own edge pixels.
        const QColor green(0, 192, 0);
        for (const QPoint p : {QPoint(100, 130), QPoint(299, 130), QPoint(150, 100),
                 QPoint(150, 199), QPoint(100, 100), QPoint(299, 199)})
            QCOMPARE(image.pixelColor(p), green);
        for (const QPoint p :
            {QPoint(99, 130), QPoint(300, 130), QPoint(150, 99), QPoint(150, 200)})
            QCOMPARE(image.pixelColor(p), plain.pixelColor(p));
    }

    void paintsTheHandleMarks()
    {
        Scene scene(QSize(640, 512));
        setUpSensor(scene);
        QVERIFY(scene.show());
        const QImage image = scene.grab();
        const QColor green(0, 192, 0);
        // The window is (100, 100) to (299, 199); the middles are x 199 and y 149.
        const QPoint marks[] = {
            // Top-left bracket and small L.
            {95, 95},
            {95, 105},
            {105, 95},
            {105, 105},
            {103, 105},
            {105, 103},
            // Top-right.
            {304, 95},
            {304, 105},
            {294, 95},
            {294, 105},
            {296, 105},
            {294, 103},
            // Bottom-left.
            {95, 204},
            {95, 194},
            {105, 204},
            {105, 194},
            {103, 194},
            {105, 196},
            // Bottom-right.
            {304, 204},
            {304, 194},
            {294, 204},
            {294, 194},
            {296, 194},
            {294, 196},
            // Top edge, both strokes, both ends.
            {194, 95},
            {204, 95},
            {194, 105},
            {204, 105},
            // Bottom edge.
            {194, 204},
            {204, 204},
            {194, 194},
            {204, 194},
            // Left edge.
            {95, 144},
            {95, 154},
            {105, 144},
            {105, 154},
            // Right edge.
            {304, 144},
            {304, 154},
            {294, 144},
            {294, 154},
        };
        for (const QPoint p : marks)
            QVERIFY2(image.pixelColor(p) == green,
                qPrintable(QStringLiteral("%1, %2").arg(p.x()).arg(p.y())));
        // Not beyond the strokes' ends.
        for (const QPoint p : {QPoint(95, 94), QPoint(94, 95), QPoint(102, 105), QPoint(105, 102),
                 QPoint(193, 95), QPoint(205, 95), QPoint(95, 143), QPoint(95, 155)})
            QVERIFY2(image.pixelColor(p) != green,
                qPrintable(QStringLiteral("%1, %2").arg(p.x()).arg(p.y())));
    }

    void shadesOutsideTheSubWindow()
    {
        // A 320 x 256 sub-window at (160, 128) of a 640 x 512 sensor, shown 1:1.
        Scene scene(QSize(640, 512));
        // Without the sub-window, the window drawn where it will be: at (610, 498).
        scene.editor->setMaxSize(QSize(640, 512));
        scene.editor->setWindow(QRect(610, 498, 20, 20));
        QVERIFY(scene.show());
        const QImage plain = scene.grab();
        scene.editor->setMaxSize(QSize(320, 256));
        scene.editor->setFullSize(QSize(640, 512));
        scene.editor->setSubWindowPosition(QPoint(160, 128));
        scene.editor->setWindow(QRect(450, 370, 20, 20));
        scene.editor->setIsSubWindow(true);
        const QImage image = scene.grab();
        const QColor shade(0, 0, 0, 128);
        // Above, left, right and below the sub-window, and at its outer corners.
        for (const QPoint p : {QPoint(300, 50), QPoint(300, 127), QPoint(50, 200), QPoint(159, 200),
                 QPoint(480, 200), QPoint(600, 383), QPoint(300, 384), QPoint(300, 500),
                 QPoint(5, 5), QPoint(635, 505)}) {
            const QColor expected = blended(plain.pixelColor(p), shade);
            QVERIFY2(closeTo(image.pixelColor(p), expected),
                qPrintable(QStringLiteral("%1, %2: ").arg(p.x()).arg(p.y())
                    + describe(image.pixelColor(p)) + " != " + describe(expected)));
        }
        // Inside it, untouched.
        for (const QPoint p : {QPoint(160, 128), QPoint(479, 383), QPoint(300, 200)})
            QCOMPARE(image.pixelColor(p), plain.pixelColor(p));
    }

    void flipsMirrorThePreview_data() { addFlipRows(false); }
    void flipsMirrorThePreview()
    {
        QFETCH(bool, h);
        QFETCH(bool, v);
        // The window sits in the middle; the samples stay clear of it and its mirror image.
        Scene scene(QSize(640, 512));
        setUpSensor(scene, QRect(310, 250, 20, 10));
        QVERIFY(scene.show());
        const QImage plain = scene.grab();
        scene.editor->setHFlip(h);
        scene.editor->setVFlip(v);
        const QImage flipped = scene.grab();
        int differing = 0;
        for (int y = 0; y < 512; y += 7) {
            for (int x = 0; x < 640; x += 5) {
                if (x > 280 && x < 360 && y > 220 && y < 290)
                    continue;
                const QPoint mirror(h ? 639 - x : x, v ? 511 - y : y);
                QCOMPARE(flipped.pixelColor(x, y), plain.pixelColor(mirror));
                differing += flipped.pixelColor(x, y) != plain.pixelColor(x, y);
            }
        }
        QVERIFY(differing > 1000);
    }

    void wideSensorShowsACentredBand()
    {
        // A 640 x 256 sensor: the picture's middle band of that aspect, rows 128 to 383.
        Scene scene(QSize(640, 256));
        setUpSensor(scene, QRect(600, 230, 10, 10));
        scene.editor->setMaxSize(QSize(640, 256));
        QVERIFY(scene.show());
        const QImage picture = QImage(":/kivcamui/images/wspreview.png");
        const QImage image = scene.grab();
        for (const QPoint p :
            {QPoint(0, 0), QPoint(320, 100), QPoint(639, 0), QPoint(10, 255), QPoint(400, 200)})
            QCOMPARE(image.pixelColor(p), picture.pixelColor(p + QPoint(0, 128)));
    }

    void tallSensorShowsOnlyPartOfItsBand()
    {
        // A 256 x 512 sensor: the band needed is 640 wide and 1280 high from x 192, of which
        // only 448 x 512 lies in the picture; it fills 70% of the item's width and 40% of its
        // height, and the rest shows what lies below the item.
        Scene scene(QSize(256, 512));
        setUpSensor(scene, QRect(240, 490, 10, 10));
        scene.editor->setMaxSize(QSize(256, 512));
        QVERIFY(scene.show());
        const QImage image = scene.grab();
        const QColor background(Qt::black);
        // The picture covers 179.2 x 204.8 item pixels: columns 0..178 and rows 0..204.
        for (const QPoint p : {QPoint(100, 100), QPoint(178, 100), QPoint(100, 204)})
            QVERIFY(image.pixelColor(p) != background);
        QCOMPARE(image.pixelColor(179, 100), background);
        QCOMPARE(image.pixelColor(100, 205), background);
        QCOMPARE(image.pixelColor(250, 400), background);
    }
};

QTEST_MAIN(tst_WindowEditor)
#include "tst_windoweditor.moc"
