// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "PluginTest.h"

#include <kivcam/genicam/CAravisDevice.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QAbstractItemModel>
#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRect>
#include <QSignalSpy>
#include <QTest>

#include <arv.h>
#include <memory>

using namespace plugintest;

namespace {

QVariant read(QObject* object, const char* property)
{
    return object->property(property);
}

QObject* live(QObject* model)
{
    return read(model, "live").value<QObject*>();
}

QSize pictureSize(QObject* model)
{
    return read(live(model), "image").value<QImage>().size();
}

// The session's panel, made as a host makes it; null, with the component's errors in error, when
// it cannot be made.
std::unique_ptr<QObject> makePanel(QQmlEngine& engine, const SSession& session, QString& error)
{
    QQmlComponent component(&engine, QUrl(session.qml));
    std::unique_ptr<QObject> panel(component.createWithInitialProperties(
        {{QStringLiteral("cameraModel"), QVariant::fromValue(session.model)}}));
    error = component.errorString();
    return panel;
}

// The item of that name under root that is shown, searched through the items themselves: a
// view's delegates are not the QObject children of anything in the panel.
QQuickItem* shownItem(QQuickItem* root, const QString& name)
{
    for (QQuickItem* child : root->childItems()) {
        if (child->objectName() == name && child->isVisible())
            return child;
        if (QQuickItem* found = shownItem(child, name))
            return found;
    }
    return nullptr;
}

} // namespace

// The GenICam plugin's panel model over the emulated GenICam camera, connected as a host connects
// it: the camera, its live picture, its sensor window and its stream, and the panel itself.
class tst_GenICamControllerModel : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        kivcamuiInitPlugin();
        QVERIFY(loadPlugins());
    }

    void theFactoryGivesTheGenICamPanel()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QVERIFY(session.created);
        QCOMPARE(session.qml, QStringLiteral("qrc:/kivcamuiGenICam/GenICamPanel.qml"));
        QVERIFY(qobject_cast<ControllerModel*>(session.model));
        QCOMPARE(QByteArray(session.model->metaObject()->className()),
            QByteArray("kiv::cam::ui::GenICamControllerModel"));
        QCOMPARE(session.model->parent(), &owner);
        QVERIFY(!read(session.model, "connected").toBool());
    }

    void showsTheConnectedCamera()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QObject* model = session.model;
        QSignalSpy connected(model, SIGNAL(connectedChanged()));
        QVERIFY(session.connect());
        QTRY_VERIFY(read(model, "connected").toBool());
        QCOMPARE(connected.count(), 1);
        QVERIFY2(read(model, "cameraName").toString().contains("Emulated GenICam"),
            qPrintable(read(model, "cameraName").toString()));
        QVERIFY(!read(model, "lost").toBool());
        QVERIFY(read(model, "hasSensorWindow").toBool());
        QCOMPARE(read(model, "sensorWindow").toRect(), QRect(0, 0, 512, 512));
        QCOMPARE(read(model, "sensorSize").toSize(), QSize(1024, 768));
        QCOMPARE(read(model, "minSize").toSize(), QSize(16, 2));
        QCOMPARE(read(model, "sizeIncrement").toPoint(), QPoint(16, 2));
        QCOMPARE(read(model, "offsetIncrement").toPoint(), QPoint(4, 2));
        QTRY_VERIFY(read(model, "acquiring").toBool());
        QTRY_COMPARE_WITH_TIMEOUT(pictureSize(model), QSize(512, 512), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(read(model, "completeFrames").toLongLong() > 2, 10000);
        auto* features = read(model, "features").value<QAbstractItemModel*>();
        QVERIFY(features);
        QVERIFY(features->rowCount() > 0);
        session.controller->disconnect();
        QTRY_VERIFY(!read(model, "connected").toBool());
        QCOMPARE(connected.count(), 2);
    }

    void theSensorWindowGoesToTheCameraAndThePictureFollows()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QObject* model = session.model;
        QVERIFY(session.connect());
        QTRY_VERIFY(read(model, "connected").toBool());
        QSignalSpy sensor(model, SIGNAL(sensorChanged()));
        QVERIFY(QMetaObject::invokeMethod(
            model, "setSensorWindow", Q_ARG(QRect, QRect(101, 51, 333, 257))));
        // Snapped to the camera's increments: offsets 4 and 2, sizes 16 and 2.
        QTRY_COMPARE(read(model, "sensorWindow").toRect(), QRect(100, 50, 320, 256));
        QVERIFY(sensor.count() >= 1);
        QTRY_COMPARE_WITH_TIMEOUT(pictureSize(model), QSize(320, 256), 10000);
        QVERIFY(read(model, "requestMessage").toString().isEmpty());
        QVERIFY(read(model, "acquiring").toBool());
    }

    void acquisitionStopsAndStartsAgain()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QObject* model = session.model;
        QVERIFY(session.connect());
        QTRY_VERIFY(read(model, "acquiring").toBool());
        QSignalSpy acquiring(model, SIGNAL(acquiringChanged()));
        QVERIFY(QMetaObject::invokeMethod(model, "stopAcquisition"));
        QTRY_VERIFY(!read(model, "acquiring").toBool());
        QVERIFY(QMetaObject::invokeMethod(model, "startAcquisition"));
        QTRY_VERIFY(read(model, "acquiring").toBool());
        QCOMPARE(acquiring.count(), 2);
    }

    void thePanelLoadsWithItsModel()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QVERIFY(session.connect());
        QTRY_VERIFY(read(session.model, "connected").toBool());
        QQmlEngine engine;
        QString error;
        const std::unique_ptr<QObject> panel = makePanel(engine, session, error);
        QVERIFY2(panel, qPrintable(error));
        QTRY_VERIFY(panel->findChild<QQuickItem*>(QStringLiteral("picture")));
        QVERIFY(panel->findChild<QQuickItem*>(QStringLiteral("sensorWindow")));
        QVERIFY(panel->findChild<QQuickItem*>(QStringLiteral("visibility")));
        auto* banner = panel->findChild<QQuickItem*>(QStringLiteral("lostBanner"));
        QVERIFY(banner);
        QVERIFY(!banner->isVisible());
    }

    void thePictureLinesWrapInANarrowPanel()
    {
        // As narrow as the demo's Live page in an 800-wide window: the lines under the picture
        // wrap in their column instead of running under the feature tree.
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QVERIFY(session.connect());
        QQmlEngine engine;
        QString error;
        const std::unique_ptr<QObject> panel = makePanel(engine, session, error);
        QVERIFY2(panel, qPrintable(error));
        QQuickWindow window;
        window.resize(760, 460);
        auto* item = qobject_cast<QQuickItem*>(panel.get());
        QVERIFY(item);
        item->setParentItem(window.contentItem());
        item->setSize(QSizeF(760, 460));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTRY_VERIFY(read(session.model, "connected").toBool());
        for (const char* name : {"frameInfo", "streamInfo"}) {
            auto* line = panel->findChild<QQuickItem*>(QString::fromLatin1(name));
            QVERIFY2(line, name);
            QTRY_VERIFY2(
                line->width() > 0 && line->property("contentWidth").toReal() <= line->width() + 0.5,
                qPrintable(QStringLiteral("%1: %2 wide in %3")
                               .arg(name)
                               .arg(line->property("contentWidth").toReal())
                               .arg(line->width())));
        }
        item->setParentItem(nullptr);
    }

    void theTreeStaysOpenWhenTheFiltersChange()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QVERIFY(session.connect());
        QTRY_VERIFY(read(session.model, "connected").toBool());
        QQmlEngine engine;
        QQuickWindow window;
        window.resize(1000, 700);
        QString error;
        const std::unique_ptr<QObject> object = makePanel(engine, session, error);
        auto* panel = qobject_cast<QQuickItem*>(object.get());
        QVERIFY2(panel, qPrintable(error));
        panel->setParentItem(window.contentItem());
        panel->setSize(window.size());
        window.show();
        QTRY_VERIFY(shownItem(panel, QStringLiteral("edit_ExposureTime")));
        auto* features = read(session.model, "features").value<QObject*>();
        // Each change of the filters gives the tree anew: its categories open again.
        features->setProperty("filterText", QStringLiteral("Exposure"));
        QCOMPARE(read(features, "featureCount").toInt(), 1);
        // The view lays itself out again on its next frame.
        QTRY_VERIFY(!shownItem(panel, QStringLiteral("edit_OffsetX")));
        QTRY_VERIFY(shownItem(panel, QStringLiteral("edit_ExposureTime")));
        features->setProperty("filterText", QString());
        features->setProperty("visibility", 1);
        QTRY_VERIFY(shownItem(panel, QStringLiteral("edit_OffsetX")));
    }

    void aLostCameraIsSaidAtOnce()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QObject* model = session.model;
        QVERIFY(session.connect());
        QTRY_VERIFY_WITH_TIMEOUT(read(model, "completeFrames").toLongLong() > 2, 10000);
        QQmlEngine engine;
        QString error;
        const std::unique_ptr<QObject> panel = makePanel(engine, session, error);
        QVERIFY2(panel, qPrintable(error));
        QTRY_VERIFY(panel->findChild<QQuickItem*>(QStringLiteral("lostBanner")));
        auto* banner = panel->findChild<QQuickItem*>(QStringLiteral("lostBanner"));
        QSignalSpy lost(model, SIGNAL(errorMessageChanged()));
        // The camera falls silent behind the controller's back, as a camera that dies does: its
        // next frame is due in 6 s, beyond the 3 s after which a stream counts as dead. The
        // controller's worker is idle meanwhile, so the test may use the device itself.
        auto* camera = dynamic_cast<CAravisDevice*>(session.device.get());
        QVERIFY(camera);
        constexpr guint32 FramePeriodRegister = 0x138; // microseconds, of Aravis's fake camera
        QVERIFY(
            arv_device_write_register(camera->arvDevice(), FramePeriodRegister, 6000000, nullptr));
        QTRY_VERIFY_WITH_TIMEOUT(read(model, "lost").toBool(), 15000);
        QCOMPARE(lost.count(), 1);
        QVERIFY2(read(model, "errorMessage").toString().startsWith("The images of"),
            qPrintable(read(model, "errorMessage").toString()));
        QTRY_VERIFY(banner->isVisible());
        // The host disconnects as usual, and the next connect starts afresh.
        session.controller->disconnect();
        session.device->close();
        QVERIFY(session.device->open(session.camera.comm, true));
        QVERIFY(session.connect());
        QTRY_VERIFY(!read(model, "lost").toBool());
        QTRY_VERIFY(!banner->isVisible());
    }

    void goesCleanlyWhileImagesFlow()
    {
        QObject owner;
        SSession session("GC-P1", &owner, "GenICamEmulator");
        QVERIFY(session.connect());
        QTRY_VERIFY_WITH_TIMEOUT(pictureSize(session.model).width() > 0, 10000);
        delete session.model;
        QTest::qWait(100);
        session.controller->disconnect();
    }
};

QTEST_MAIN(tst_GenICamControllerModel)
#include "tst_genicamcontrollermodel.moc"
