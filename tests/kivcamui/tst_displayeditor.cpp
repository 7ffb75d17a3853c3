// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "EditorScene.h"
#include "SignalLog.h"

#include <kivcamui/editors/DisplayEditor.h>

#include <QImage>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

using kiv::cam::ui::DisplayEditor;
using kiv::cam::ui::EditorItem;

namespace {

using Scene = EditorScene<DisplayEditor>;

// An item under the editor that takes the presses the editor lets through.
class PressCatcher : public QQuickItem {
public:
    explicit PressCatcher(QQuickItem* parent) : QQuickItem(parent)
    {
        setAcceptedMouseButtons(Qt::LeftButton);
    }
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        ++presses;
        event->accept();
    }
};

const QColor green(0, 192, 0);
const QColor background(Qt::black);

// The item shows a 640 x 480 display 1:1; the picture is a small one, custom placed.
void setUpCustom(Scene& scene, QPoint offset = QPoint(0, 0))
{
    scene.editor->setOffsetType(DisplayEditor::OFFSET_CUSTOM);
    scene.editor->setOffset(offset);
}

} // namespace

class tst_DisplayEditor : public QObject {
    Q_OBJECT

private slots:
    void defaults()
    {
        const DisplayEditor editor;
        QCOMPARE(editor.hFlip(), false);
        QCOMPARE(editor.vFlip(), false);
        QCOMPARE(editor.window(), QRect(0, 0, 640, 512));
        QCOMPARE(editor.fpaSize(), QSize(640, 512));
        QCOMPARE(editor.displaySize(), QSize(640, 480));
        QCOMPARE(editor.increment(), QPoint(1, 1));
        QCOMPARE(editor.offset(), QPoint(0, 0));
        QCOMPARE(editor.offsetMin(), QPoint(-640, -512));
        QCOMPARE(editor.offsetMax(), QPoint(640, 480));
        QCOMPARE(editor.tracking(), false);
        QCOMPARE(editor.isValid(), true);
        QCOMPARE(editor.zoom(), 1.0f);
        QCOMPARE(editor.offsetType(), DisplayEditor::OFFSET_CENTERED);
        QCOMPARE(editor.showNtscLines(), false);
        QCOMPARE(editor.acceptedMouseButtons(), Qt::MouseButtons(Qt::LeftButton));
        QVERIFY(editor.acceptHoverEvents());
        QVERIFY(editor.keepMouseGrab());
        QVERIFY(editor.hasFocus());
    }
    void offsetTypesAreNumbered()
    {
        QCOMPARE(int(DisplayEditor::OFFSET_SAME_AS_FPA), 0);
        QCOMPARE(int(DisplayEditor::OFFSET_CENTERED), 1);
        QCOMPARE(int(DisplayEditor::OFFSET_CUSTOM), 2);
        const QMetaEnum type = QMetaEnum::fromType<DisplayEditor::EOFFSET_TYPE>();
        QCOMPARE(type.name(), "EOFFSET_TYPE");
        QCOMPARE(type.keyCount(), 3);
    }

    void settersAnnounce_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("hFlip") << "hFlip" << QVariant(true) << QStringList{"hFlipChanged"};
        QTest::newRow("vFlip") << "vFlip" << QVariant(true) << QStringList{"vFlipChanged"};
        QTest::newRow("offsetType")
            << "offsetType" << QVariant::fromValue(DisplayEditor::OFFSET_CUSTOM)
            << QStringList{"offsetTypeChanged"};
        QTest::newRow("showNtscLines")
            << "showNtscLines" << QVariant(true) << QStringList{"showNtscLinesChanged"};
        QTest::newRow("window") << "window" << QVariant(QRect(10, 20, 320, 256))
                                << QStringList{
                                       "windowChanged", "offsetMinChanged", "isValidChanged"};
        QTest::newRow("window negative x")
            << "window" << QVariant(QRect(-1, 0, 320, 256)) << QStringList();
        QTest::newRow("window negative y")
            << "window" << QVariant(QRect(0, -1, 320, 256)) << QStringList();
        QTest::newRow("window empty width")
            << "window" << QVariant(QRect(0, 0, 0, 256)) << QStringList();
        QTest::newRow("window empty height")
            << "window" << QVariant(QRect(0, 0, 320, 0)) << QStringList();
        QTest::newRow("fpaSize") << "fpaSize" << QVariant(QSize(320, 256))
                                 << QStringList{"fpaSizeChanged"};
        QTest::newRow("fpaSize empty") << "fpaSize" << QVariant(QSize(0, 256)) << QStringList();
        QTest::newRow("displaySize")
            << "displaySize" << QVariant(QSize(720, 576))
            << QStringList{"displaySizeChanged", "offsetMaxChanged", "isValidChanged"};
        QTest::newRow("displaySize empty")
            << "displaySize" << QVariant(QSize(720, -1)) << QStringList();
        QTest::newRow("increment") << "increment" << QVariant(QPoint(2, 2))
                                   << QStringList{"incrementChanged", "isValidChanged"};
        QTest::newRow("increment 0") << "increment" << QVariant(QPoint(0, 2)) << QStringList();
        QTest::newRow("increment y 0") << "increment" << QVariant(QPoint(2, 0)) << QStringList();
        QTest::newRow("offset") << "offset" << QVariant(QPoint(5, 7))
                                << QStringList{"offsetChanged", "isValidChanged"};
        // Not clamped: stored and reported invalid.
        QTest::newRow("offset out of range") << "offset" << QVariant(QPoint(-10000, 99999))
                                             << QStringList{"offsetChanged", "isValidChanged"};
        QTest::newRow("zoom") << "zoom" << QVariant(2.5f)
                              << QStringList{"zoomChanged", "offsetMinChanged", "isValidChanged"};
        QTest::newRow("zoom fit") << "zoom" << QVariant(0.0f)
                                  << QStringList{
                                         "zoomChanged", "offsetMinChanged", "isValidChanged"};
        QTest::newRow("zoom negative")
            << "zoom" << QVariant(-1.0f)
            << QStringList{"zoomChanged", "offsetMinChanged", "isValidChanged"};
    }
    void settersAnnounce()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        QFETCH(QStringList, expected);
        DisplayEditor editor;
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        QVERIFY(editor.setProperty(property.toLatin1(), value));
        QCOMPARE(log.take(), expected);
        if (!expected.isEmpty())
            QCOMPARE(editor.property(property.toLatin1()), value);
        QVERIFY(editor.setProperty(property.toLatin1(), value));
        QCOMPARE(log.take(), QStringList());
    }
    void offsetTypeLeavesTheOffset()
    {
        DisplayEditor editor;
        editor.setOffset(QPoint(33, 44));
        SignalLog log(&editor, &EditorItem::staticMetaObject);
        editor.setOffsetType(DisplayEditor::OFFSET_SAME_AS_FPA);
        editor.setOffsetType(DisplayEditor::OFFSET_CUSTOM);
        QCOMPARE(editor.offset(), QPoint(33, 44));
        QCOMPARE(log.take(), (QStringList{"offsetTypeChanged", "offsetTypeChanged"}));
    }
    void signalsCarryTheirProperties()
    {
        const QMetaObject& meta = DisplayEditor::staticMetaObject;
        const QList<QByteArray> readOnly{"offsetMin", "offsetMax", "tracking", "isValid"};
        // Its own and those it shares with the other editor.
        for (int i = QQuickPaintedItem::staticMetaObject.propertyCount(); i < meta.propertyCount();
             ++i) {
            const QMetaProperty property = meta.property(i);
            QVERIFY2(property.hasNotifySignal(), property.name());
            QCOMPARE(property.notifySignal().name(), QByteArray(property.name()) + "Changed");
            QCOMPARE(property.isWritable(), !readOnly.contains(property.name()));
        }
        QCOMPARE(
            meta.property(meta.indexOfProperty("zoom")).metaType(), QMetaType::fromType<float>());
    }

    void repaints_data()
    {
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("repaints");
        QTest::newRow("hFlip") << "hFlip" << QVariant(true) << true;
        QTest::newRow("vFlip") << "vFlip" << QVariant(true) << true;
        QTest::newRow("window") << "window" << QVariant(QRect(0, 0, 10, 10)) << true;
        QTest::newRow("fpaSize") << "fpaSize" << QVariant(QSize(10, 10)) << true;
        QTest::newRow("displaySize") << "displaySize" << QVariant(QSize(10, 10)) << true;
        QTest::newRow("offset") << "offset" << QVariant(QPoint(1, 1)) << true;
        QTest::newRow("zoom") << "zoom" << QVariant(0.5f) << true;
        QTest::newRow("offsetType")
            << "offsetType" << QVariant::fromValue(DisplayEditor::OFFSET_CUSTOM) << true;
        QTest::newRow("showNtscLines") << "showNtscLines" << QVariant(true) << true;
        QTest::newRow("increment") << "increment" << QVariant(QPoint(2, 2)) << false;
    }
    void repaints()
    {
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        QFETCH(bool, repaints);
        Scene scene(QSize(320, 240));
        QVERIFY(scene.show());
        QCOMPARE(scene.paintsAfter([&] { scene.editor->setProperty(property.toLatin1(), value); }),
            repaints ? 1 : 0);
    }

    void offsetLimits_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<float>("zoom");
        QTest::addColumn<QPoint>("offsetMin");
        QTest::newRow("zoom 1") << QRect(0, 0, 640, 512) << 1.0f << QPoint(-640, -512);
        QTest::newRow("zoom 0.75") << QRect(0, 0, 640, 512) << 0.75f << QPoint(-480, -384);
        // 153.6 is truncated.
        QTest::newRow("zoom 0.3") << QRect(0, 0, 640, 512) << 0.3f << QPoint(-192, -153);
        QTest::newRow("zoom 2, small window")
            << QRect(100, 100, 33, 17) << 2.0f << QPoint(-66, -34);
        // Fit and nonsense zooms count the window's own size.
        QTest::newRow("zoom 0") << QRect(0, 0, 320, 200) << 0.0f << QPoint(-320, -200);
        QTest::newRow("zoom negative") << QRect(0, 0, 320, 200) << -3.0f << QPoint(-320, -200);
    }
    void offsetLimits()
    {
        QFETCH(QRect, window);
        QFETCH(float, zoom);
        QFETCH(QPoint, offsetMin);
        DisplayEditor editor;
        editor.setWindow(window);
        editor.setZoom(zoom);
        QCOMPARE(editor.offsetMin(), offsetMin);
        QCOMPARE(editor.offsetMax(), QPoint(640, 480));
        editor.setDisplaySize(QSize(720, 576));
        QCOMPARE(editor.offsetMax(), QPoint(720, 576));
    }

    void validity_data()
    {
        QTest::addColumn<QPoint>("offset");
        QTest::addColumn<QPoint>("increment");
        QTest::addColumn<bool>("valid");
        // Window 640 x 512 at zoom 0.5 on a 640 x 480 display: offsetMin (-320, -256).
        QTest::newRow("origin") << QPoint(0, 0) << QPoint(1, 1) << true;
        QTest::newRow("at the minimum") << QPoint(-320, -256) << QPoint(1, 1) << true;
        QTest::newRow("left of the minimum") << QPoint(-321, 0) << QPoint(1, 1) << false;
        QTest::newRow("above the minimum") << QPoint(0, -257) << QPoint(1, 1) << false;
        QTest::newRow("at the maximum") << QPoint(640, 480) << QPoint(1, 1) << true;
        QTest::newRow("right of the maximum") << QPoint(641, 0) << QPoint(1, 1) << false;
        QTest::newRow("below the maximum") << QPoint(0, 481) << QPoint(1, 1) << false;
        QTest::newRow("on the steps") << QPoint(-8, 6) << QPoint(4, 3) << true;
        QTest::newRow("x off the steps") << QPoint(-6, 6) << QPoint(4, 3) << false;
        QTest::newRow("y off the steps") << QPoint(8, 7) << QPoint(4, 3) << false;
    }
    void validity()
    {
        QFETCH(QPoint, offset);
        QFETCH(QPoint, increment);
        QFETCH(bool, valid);
        for (const auto type : {DisplayEditor::OFFSET_SAME_AS_FPA, DisplayEditor::OFFSET_CENTERED,
                 DisplayEditor::OFFSET_CUSTOM}) {
            DisplayEditor editor;
            editor.setZoom(0.5f);
            editor.setIncrement(increment);
            editor.setOffset(offset);
            editor.setOffsetType(type);
            QCOMPARE(editor.isValid(), valid);
        }
    }

    void dragMovesTheCustomPicture()
    {
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        QVERIFY(scene.show());
        SignalLog log(scene.editor, &EditorItem::staticMetaObject);
        scene.press(QPoint(100, 100));
        QVERIFY(scene.editor->tracking());
        QCOMPARE(scene.window.mouseGrabberItem(), scene.editor);
        scene.move(QPoint(130, 90));
        QCOMPARE(scene.editor->offset(), QPoint(30, -10));
        scene.move(QPoint(90, 150));
        QCOMPARE(scene.editor->offset(), QPoint(-10, 50));
        scene.release(QPoint(90, 150));
        QVERIFY(!scene.editor->tracking());
        QCOMPARE(scene.window.mouseGrabberItem(), nullptr);
        QCOMPARE(log.take(),
            (QStringList{"trackingChanged", "offsetChanged", "isValidChanged", "offsetChanged",
                "isValidChanged", "trackingChanged"}));
        // After the release moves change nothing.
        scene.move(QPoint(200, 200));
        QCOMPARE(log.take(), QStringList());
    }
    void theDragStartsWhereTheTrackingHandlerLeftTheOffset()
    {
        // The press announces tracking before it remembers the offset: a handler that moves
        // the picture then is where the drag starts, and the mouse is not grabbed yet.
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        QVERIFY(scene.show());
        QQuickItem* grabberDuringSignal = scene.editor;
        QObject::connect(scene.editor, &DisplayEditor::trackingChanged, scene.editor, [&] {
            if (!scene.editor->tracking())
                return;
            grabberDuringSignal = scene.window.mouseGrabberItem();
            scene.editor->setOffset(QPoint(40, 20));
        });
        scene.press(QPoint(100, 100));
        QCOMPARE(grabberDuringSignal, nullptr);
        QCOMPARE(scene.window.mouseGrabberItem(), scene.editor);
        scene.move(QPoint(130, 90));
        QCOMPARE(scene.editor->offset(), QPoint(70, 10));
        scene.release(QPoint(130, 90));
    }
    void dragSnapsHalvesAwayFromZero()
    {
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        scene.editor->setIncrement(QPoint(4, 4));
        QVERIFY(scene.show());
        // 30 is 7.5 steps: 8 steps; -10 is -2.5 steps: -3 steps.
        scene.drag(QPoint(100, 100), QPoint(130, 90));
        QCOMPARE(scene.editor->offset(), QPoint(32, -12));
        QVERIFY(scene.editor->isValid());
    }
    void dragAnnouncesOnlyChanges()
    {
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        scene.editor->setIncrement(QPoint(10, 10));
        QVERIFY(scene.show());
        QSignalSpy offset(scene.editor, &DisplayEditor::offsetChanged);
        QSignalSpy valid(scene.editor, &DisplayEditor::isValidChanged);
        scene.press(QPoint(100, 100));
        // 0.4 and -0.4 steps round to none; 0.5 steps to one.
        scene.move(QPoint(104, 104));
        scene.move(QPoint(96, 96));
        QCOMPARE(offset.count(), 0);
        QCOMPARE(valid.count(), 0);
        scene.move(QPoint(105, 100));
        QCOMPARE(scene.editor->offset(), QPoint(10, 0));
        QCOMPARE(offset.count(), 1);
        QCOMPARE(valid.count(), 1);
        scene.release(QPoint(105, 100));
    }
    void dragMapsItemPixelsToDisplayPixels()
    {
        // A 640 x 480 display on a 320 x 240 item: one item pixel is two display pixels.
        Scene scene(QSize(320, 240));
        setUpCustom(scene);
        QVERIFY(scene.show());
        scene.drag(QPoint(100, 100), QPoint(111, 95));
        QCOMPARE(scene.editor->offset(), QPoint(22, -10));
    }
    void lostGrabKeepsTracking()
    {
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        QVERIFY(scene.show());
        QSignalSpy tracking(scene.editor, &DisplayEditor::trackingChanged);
        scene.press(QPoint(100, 100));
        scene.editor->ungrabMouse();
        QVERIFY(scene.editor->tracking());
        QCOMPARE(tracking.count(), 1);
        scene.release(QPoint(100, 100));
    }
    void pressTakesTheFocus()
    {
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        QQuickItem other(scene.window.contentItem());
        other.forceActiveFocus();
        QVERIFY(scene.show());
        QVERIFY(!scene.editor->hasActiveFocus());
        scene.drag(QPoint(100, 100), QPoint(100, 100));
        QVERIFY(scene.editor->hasActiveFocus());
    }
    void hoverCursor()
    {
        Scene scene(QSize(640, 480));
        QVERIFY(scene.show());
        // An arrow of its own while the picture is not placed by hand.
        QCOMPARE(scene.hoverCursor(QPoint(100, 100)), Qt::ArrowCursor);
        scene.editor->setOffsetType(DisplayEditor::OFFSET_CUSTOM);
        QCOMPARE(scene.hoverCursor(QPoint(200, 100)), Qt::SizeAllCursor);
        // Leaving the item unsets it.
        QCOMPARE(scene.hoverCursor(QPoint(700, 500)), Scene::NoItemCursor);
        QCOMPARE(scene.cursorLeftOn(QPoint(200, 100)), Scene::NoItemCursor);
    }

    // Edge cases.

    void pressDoesNothingUnlessCustom_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("same as the sensor") << int(DisplayEditor::OFFSET_SAME_AS_FPA);
        QTest::newRow("centred") << int(DisplayEditor::OFFSET_CENTERED);
    }
    void pressDoesNothingUnlessCustom()
    {
        QFETCH(int, type);
        Scene scene(QSize(640, 480));
        auto* catcher = new PressCatcher(scene.window.contentItem());
        catcher->setSize(QSizeF(640, 480));
        catcher->stackBefore(scene.editor);
        scene.editor->setOffsetType(DisplayEditor::EOFFSET_TYPE(type));
        QVERIFY(scene.show());
        // From the custom cursor, which a hover must turn back to the arrow.
        scene.editor->setCursor(Qt::SizeAllCursor);
        QCOMPARE(scene.hoverCursor(QPoint(100, 100)), Qt::ArrowCursor);
        SignalLog log(scene.editor, &EditorItem::staticMetaObject);
        scene.drag(QPoint(100, 100), QPoint(150, 150));
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(scene.editor->offset(), QPoint(0, 0));
        QCOMPARE(catcher->presses, 1);
    }

    void fitZoomHalvesBothFits()
    {
        // A 640 x 512 window on a 640 x 480 display: z = (480/512 + 600/640) / 2 = 0.9375,
        // a 600 x 480 picture, centred at (20, 0).
        Scene scene(QSize(640, 480));
        scene.editor->setZoom(0);
        QVERIFY(scene.show());
        const QImage image = scene.grab();
        QCOMPARE(image.pixelColor(20, 100), green);
        QCOMPARE(image.pixelColor(620, 100), green);
        QCOMPARE(image.pixelColor(300, 0), green);
        QCOMPARE(image.pixelColor(19, 100), background);
        QCOMPARE(image.pixelColor(621, 100), background);
        QVERIFY(image.pixelColor(21, 100) != green);
        QVERIFY(image.pixelColor(619, 100) != green);
    }
    void fitZoomFitsTheNarrowerSide_data()
    {
        QTest::addColumn<QRect>("window");
        QTest::addColumn<QRect>("picture");
        // Wide: w1 = 4800 is cut to 640, h1 = 64; z = 0.64.
        QTest::newRow("wide") << QRect(0, 0, 1000, 100) << QRect(0, 208, 640, 64);
        // Tall: h1 = 6400 is cut to 480, w1 = 48; z = 0.48.
        QTest::newRow("tall") << QRect(0, 0, 100, 1000) << QRect(296, 0, 48, 480);
    }
    void fitZoomFitsTheNarrowerSide()
    {
        QFETCH(QRect, window);
        QFETCH(QRect, picture);
        Scene scene(QSize(640, 480));
        scene.editor->setWindow(window);
        scene.editor->setZoom(0);
        QVERIFY(scene.show());
        const QImage image = scene.grab();
        const QPoint middle = picture.center();
        QCOMPARE(image.pixelColor(picture.left(), middle.y()), green);
        if (picture.left() + picture.width() < 640)
            QCOMPARE(image.pixelColor(picture.left() + picture.width(), middle.y()), green);
        QCOMPARE(image.pixelColor(middle.x(), picture.top()), green);
        if (picture.top() + picture.height() < 480)
            QCOMPARE(image.pixelColor(middle.x(), picture.top() + picture.height()), green);
        if (picture.left() > 0)
            QCOMPARE(image.pixelColor(picture.left() - 1, middle.y()), background);
        if (picture.top() > 0)
            QCOMPARE(image.pixelColor(middle.x(), picture.top() - 1), background);
    }

    void dragReachesTheLimitsExactly()
    {
        Scene scene(QSize(640, 480));
        setUpCustom(scene, QPoint(-400, -300));
        scene.editor->setZoom(0.75f);
        QVERIFY(scene.show());
        QCOMPARE(scene.editor->offsetMin(), QPoint(-480, -384));
        scene.drag(QPoint(600, 470), QPoint(0, 0));
        QCOMPARE(scene.editor->offset(), QPoint(-480, -384));
        QVERIFY(scene.editor->isValid());
        scene.editor->setOffset(QPoint(500, 400));
        scene.drag(QPoint(10, 10), QPoint(400, 300));
        QCOMPARE(scene.editor->offset(), QPoint(640, 480));
        QVERIFY(scene.editor->isValid());
    }

    void setIncrementAnnouncesValidityAlways()
    {
        DisplayEditor editor;
        QSignalSpy valid(&editor, &DisplayEditor::isValidChanged);
        editor.setIncrement(QPoint(2, 2));
        QVERIFY(editor.isValid());
        QCOMPARE(valid.count(), 1);
        editor.setIncrement(QPoint(4, 4));
        QVERIFY(editor.isValid());
        QCOMPARE(valid.count(), 2);
    }

    void ntscLinesStayAtFixedDisplayLines_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QSize>("display");
        QTest::addColumn<QSize>("item");
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<int>("length");
        QTest::newRow("custom, 640 x 512") << int(DisplayEditor::OFFSET_CUSTOM) << QSize(640, 512)
                                           << QSize(640, 512) << QList<int>{480} << 640;
        QTest::newRow("same as the sensor, 640 x 512")
            << int(DisplayEditor::OFFSET_SAME_AS_FPA) << QSize(640, 512) << QSize(640, 512)
            << QList<int>{480} << 640;
        QTest::newRow("centred, 640 x 512")
            << int(DisplayEditor::OFFSET_CENTERED) << QSize(640, 512) << QSize(640, 512)
            << QList<int>{16, 496} << 640;
        // A display twice as large halves where the lines land, not which lines they are.
        QTest::newRow("custom, 1280 x 1024")
            << int(DisplayEditor::OFFSET_CUSTOM) << QSize(1280, 1024) << QSize(640, 512)
            << QList<int>{240} << 320;
        QTest::newRow("centred, 1280 x 1024")
            << int(DisplayEditor::OFFSET_CENTERED) << QSize(1280, 1024) << QSize(640, 512)
            << QList<int>{8, 248} << 320;
    }
    void ntscLinesStayAtFixedDisplayLines()
    {
        QFETCH(int, type);
        QFETCH(QSize, display);
        QFETCH(QSize, item);
        QFETCH(QList<int>, rows);
        QFETCH(int, length);
        // A tiny picture that crosses none of the lines.
        Scene scene(item);
        scene.editor->setDisplaySize(display);
        scene.editor->setOffsetType(DisplayEditor::EOFFSET_TYPE(type));
        scene.editor->setOffset(QPoint(300, 300));
        scene.editor->setZoom(0.05f);
        QVERIFY(scene.show());
        const QImage without = scene.grab();
        scene.editor->setShowNtscLines(true);
        const QImage image = scene.grab();
        for (const int row : rows) {
            // Dashed from the left edge over the given length, nothing after it.
            int dashes = 0;
            for (int x = 0; x < length; ++x)
                dashes += image.pixelColor(x, row) == green;
            QVERIFY2(dashes > length / 2 && dashes < length,
                qPrintable(QStringLiteral("row %1: %2").arg(row).arg(dashes)));
            QCOMPARE(image.pixelColor(0, row), green);
            for (int x = length + 1; x < item.width(); ++x)
                QCOMPARE(image.pixelColor(x, row), without.pixelColor(x, row));
            for (int x = 0; x < item.width(); ++x) {
                QCOMPARE(image.pixelColor(x, row - 1), without.pixelColor(x, row - 1));
                QCOMPARE(image.pixelColor(x, row + 1), without.pixelColor(x, row + 1));
            }
        }
    }

    // Painting, checked on the window's pixels.

    void outlineFollowsTheOffsetType_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QRect>("picture");
        // Window (100, 50, 200, 100) at zoom 1 on a 640 x 480 display, offset (300, 200).
        QTest::newRow("same as the sensor")
            << int(DisplayEditor::OFFSET_SAME_AS_FPA) << QRect(100, 50, 200, 100);
        QTest::newRow("centred") << int(DisplayEditor::OFFSET_CENTERED)
                                 << QRect(220, 190, 200, 100);
        QTest::newRow("custom") << int(DisplayEditor::OFFSET_CUSTOM) << QRect(300, 200, 200, 100);
    }
    void outlineFollowsTheOffsetType()
    {
        QFETCH(int, type);
        QFETCH(QRect, picture);
        Scene scene(QSize(640, 480));
        scene.editor->setWindow(QRect(100, 50, 200, 100));
        scene.editor->setOffset(QPoint(300, 200));
        scene.editor->setOffsetType(DisplayEditor::EOFFSET_TYPE(type));
        QVERIFY(scene.show());
        const QImage image = scene.grab();
        const int left = picture.left();
        const int top = picture.top();
        // The outline is drawn on the rectangle's edges, its right and bottom one past them.
        const int right = left + picture.width();
        const int bottom = top + picture.height();
        for (const QPoint p :
            {QPoint(left, top + 30), QPoint(right, top + 30), QPoint(left + 30, top),
                QPoint(left + 30, bottom), QPoint(left, top), QPoint(right, bottom)})
            QCOMPARE(image.pixelColor(p), green);
        for (const QPoint p : {QPoint(left - 1, top + 30), QPoint(right + 1, top + 30),
                 QPoint(left + 30, top - 1), QPoint(left + 30, bottom + 1)})
            QCOMPARE(image.pixelColor(p), background);
        // The stored offset is left as it was.
        QCOMPARE(scene.editor->offset(), QPoint(300, 200));
    }

    void picturesTheWindowsShareOfTheSensor_data() { addFlipRows(true); }
    void picturesTheWindowsShareOfTheSensor()
    {
        QFETCH(bool, h);
        QFETCH(bool, v);
        // The lower right quarter of the sensor, at zoom 1 at the display's origin: the
        // picture's lower right quarter, 1:1, mirrored within its own rectangle.
        Scene scene(QSize(640, 480));
        setUpCustom(scene);
        scene.editor->setWindow(QRect(320, 256, 320, 256));
        scene.editor->setHFlip(h);
        scene.editor->setVFlip(v);
        QVERIFY(scene.show());
        const QImage picture(":/kivcamui/images/wspreview.png");
        const QImage image = scene.grab();
        for (int y = 1; y < 256; y += 3) {
            for (int x = 1; x < 320; x += 3) {
                const QPoint source(320 + (h ? 319 - x : x), 256 + (v ? 255 - y : y));
                QCOMPARE(image.pixelColor(x, y), picture.pixelColor(source));
            }
        }
    }

    void squareSensorShowsTheCentredSquare()
    {
        // A 512 x 512 sensor, all of it at zoom 1 on a 640 x 512 display: the picture's
        // middle square, columns 64 to 575.
        Scene scene(QSize(640, 512));
        setUpCustom(scene);
        scene.editor->setFpaSize(QSize(512, 512));
        scene.editor->setWindow(QRect(0, 0, 512, 512));
        scene.editor->setDisplaySize(QSize(640, 512));
        QVERIFY(scene.show());
        const QImage picture(":/kivcamui/images/wspreview.png");
        const QImage image = scene.grab();
        for (const QPoint p : {QPoint(1, 1), QPoint(300, 200), QPoint(510, 510), QPoint(100, 400)})
            QCOMPARE(image.pixelColor(p), picture.pixelColor(p + QPoint(64, 0)));
        QCOMPARE(image.pixelColor(513, 100), background);
    }

    void survivesNonsense()
    {
        // Extreme values are painted, in the next frame, as far as they go, without a crash or
        // a hang.
        Scene scene(QSize(320, 240));
        QVERIFY(scene.show());
        QCOMPARE(scene.paintsAfter([&] {
            scene.editor->setZoom(1e9f);
            scene.editor->setOffsetType(DisplayEditor::OFFSET_CUSTOM);
            scene.editor->setOffset(QPoint(-2000000000, 2000000000));
            scene.editor->setShowNtscLines(true);
        }),
            1);
        QCOMPARE(scene.paintsAfter([&] {
            scene.editor->setZoom(-5);
            scene.editor->setOffset(QPoint(100, 100));
            scene.editor->setHFlip(true);
        }),
            1);
        scene.editor->setZoom(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(scene.editor->offsetMin(), QPoint(-640, -512));
        QCOMPARE(scene.paintsAfter([&] {
            scene.editor->setWindow(QRect(2000000000, 2000000000, 100000000, 100000000));
        }),
            1);
        QCOMPARE(scene.editor->offsetMin(), QPoint(-100000000, -100000000));
    }
};

QTEST_MAIN(tst_DisplayEditor)
#include "tst_displayeditor.moc"
