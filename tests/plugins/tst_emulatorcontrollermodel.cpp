// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "PluginTest.h"

#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QImage>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace plugintest;

namespace {

QVariant read(QObject* object, const char* property)
{
    return object->property(property);
}

qint64 frameCount(QObject* model)
{
    return read(model, "frameCount").toLongLong();
}

QImage picture(QObject* model)
{
    return read(model, "image").value<QImage>();
}

// Reads the frame counter of the model whose camera changed.
class CCountAtStart : public QObject {
    Q_OBJECT

public:
    qint64 count = -1;

public slots:
    void record() { count = frameCount(sender()); }
};

// A controller that is not the emulator's.
class CForeignController : public IController {
public:
    bool connect(TSharedPtr<IDevice>, SCameraInfo) override { return false; }
    void disconnect() override { }
    bool isConnected() const override { return false; }
    CString name() const override { return "Foreign"; }
};

} // namespace

// The sample plugin's panel model, over emulated cameras connected as a host connects them: what
// it shows, its live picture, its controls, and that it goes cleanly while images flow.
class tst_EmulatorControllerModel : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        kivcamuiInitPlugin();
        loadPlugins();
        QCOMPARE(scanMessages(), QByteArrayList());
    }

    void emulatedControllersGetThePanel()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QVERIFY(session.created);
        QCOMPARE(session.qml, QString("qrc:/kivcamuiEmulator/EmulatorPanel.qml"));
        QVERIFY(QFile::exists(":/kivcamuiEmulator/EmulatorPanel.qml"));
        QVERIFY(qobject_cast<ControllerModel*>(session.model));
        QCOMPARE(session.model->parent(), &owner);
        QCOMPARE(read(session.model, "controllerName").toString(), QString("Thermal"));
        QCOMPARE(read(session.model, "connected").toBool(), false);
        QCOMPARE(read(session.model, "hasNucMask").toInt(), 0);
        QCOMPARE(frameCount(session.model), 0);
        QVERIFY(picture(session.model).isNull());
    }

    void otherControllersAreRefused()
    {
        QObject* model = this;
        QString qml = "untouched";
        QVERIFY(!ui::controllerModelFactory()->CreateModel(
            TSharedPtr<IController>(), this, &model, &qml));
        QVERIFY(!ui::controllerModelFactory()->CreateModel(
            TSharedPtr<IController>(new CForeignController), this, &model, &qml));
        QCOMPARE(model, static_cast<QObject*>(this));
        QCOMPARE(qml, QString("untouched"));
    }

    void connectedCameraIsShown()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QSignalSpy camera(session.model, SIGNAL(cameraChanged()));
        QSignalSpy connected(session.model, SIGNAL(connectedChanged()));
        QSignalSpy nucMask(session.model, SIGNAL(hasNucMaskChanged()));
        QVERIFY(session.connect());
        QTRY_COMPARE(read(session.model, "connected").toBool(), true);
        QCOMPARE(camera.count(), 1);
        QCOMPARE(connected.count(), 1);
        QCOMPARE(nucMask.count(), 1);
        QCOMPARE(read(session.model, "hasNucMask").toInt(), 1);
        QCOMPARE(read(session.model, "cameraType").toString(), QString("Thermal 64"));
        QCOMPARE(read(session.model, "model").toString(), QString("Thermal 64 MW"));
        QCOMPARE(read(session.model, "serial").toString(), QString("T64-1"));
        QCOMPARE(read(session.model, "identity").toString(), QString("Bench"));
        QCOMPARE(read(session.model, "commDevice").toString(), QString("Emu: Port 0"));
        QCOMPARE(read(session.model, "videoDevice").toString(), QString("Emu: Port 0"));
        QCOMPARE(
            read(session.model, "imageFormat").toString(), QString("64 x 48, Mono14, 14 bits"));
        QCOMPARE(read(session.model, "frameRate").toDouble(), 100.0);
        session.controller->disconnect();
    }

    void livePictureChanges()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QSignalSpy images(session.model, SIGNAL(imageChanged()));
        QVERIFY(session.connect());
        QTRY_VERIFY(frameCount(session.model) >= 1);
        const QImage first = picture(session.model);
        const qint64 firstCount = frameCount(session.model);
        QCOMPARE(first.size(), QSize(64, 48));
        // Counted from the picture taken: waiting in steps, several may have come already.
        QTRY_VERIFY(frameCount(session.model) >= firstCount + 4);
        const QImage later = picture(session.model);
        QVERIFY(later != first);
        // Something is to be seen: the scaling spans the grey scale.
        int darkest = 255;
        int brightest = 0;
        for (int y = 0; y < later.height(); ++y) {
            for (int x = 0; x < later.width(); ++x) {
                darkest = qMin(darkest, qGray(later.pixel(x, y)));
                brightest = qMax(brightest, qGray(later.pixel(x, y)));
            }
        }
        QCOMPARE(darkest, 0);
        QCOMPARE(brightest, 255);
        QVERIFY(images.count() >= 5);
        QTRY_VERIFY(read(session.model, "measuredFrameRate").toDouble() > 0);
        session.controller->disconnect();
    }

    void disconnectStopsThePicture()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QVERIFY(session.connect());
        QTRY_VERIFY(frameCount(session.model) >= 2);
        QSignalSpy nucMask(session.model, SIGNAL(hasNucMaskChanged()));
        session.controller->disconnect();
        QTRY_COMPARE(read(session.model, "connected").toBool(), false);
        const qint64 count = frameCount(session.model);
        QTest::qWait(100);
        QCOMPARE(frameCount(session.model), count);
        QCOMPARE(read(session.model, "hasNucMask").toInt(), 0);
        QCOMPARE(nucMask.count(), 1);
        QCOMPARE(read(session.model, "measuredFrameRate").toDouble(), 0.0);
        // The last picture stays; a new connection starts counting again.
        QVERIFY(!picture(session.model).isNull());
        CCountAtStart counter;
        QObject::connect(session.model, SIGNAL(cameraChanged()), &counter, SLOT(record()));
        QVERIFY(session.connect());
        QTRY_COMPARE(counter.count, qint64{0});
        QTRY_VERIFY(frameCount(session.model) >= 1);
        session.controller->disconnect();
    }

    void frameRateGoesToTheCamera()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QVERIFY(session.connect());
        QTRY_VERIFY(read(session.model, "connected").toBool());
        QSignalSpy rate(session.model, SIGNAL(frameRateChanged()));
        QVERIFY(session.model->setProperty("frameRate", 20.0));
        QCOMPARE(rate.count(), 1);
        QCOMPARE(session.controller->frameSource()->frameRate(), 20.0);
        QCOMPARE(read(session.model, "frameRate").toDouble(), 20.0);
        // Refused and unchanged rates say nothing.
        session.model->setProperty("frameRate", 0.0);
        session.model->setProperty("frameRate", 5000.0);
        session.model->setProperty("frameRate", 20.0);
        QCOMPARE(rate.count(), 1);
        QCOMPARE(session.controller->frameSource()->frameRate(), 20.0);
        QCOMPARE(read(session.model, "maxFrameRate").toDouble(), IFrameSource::maxFrameRate);
        session.controller->disconnect();
    }

    void nucGoesToTheCamera()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        bool done = true;
        QVERIFY(QMetaObject::invokeMethod(session.model, "nuc", Q_RETURN_ARG(bool, done)));
        QVERIFY(!done);
        QVERIFY(session.connect());
        QVERIFY(QMetaObject::invokeMethod(session.model, "nuc", Q_RETURN_ARG(bool, done)));
        QVERIFY(done);
        session.controller->disconnect();

        const SSession without("V40-1", &owner);
        QVERIFY(without.connect());
        QTRY_VERIFY(read(without.model, "connected").toBool());
        QCOMPARE(read(without.model, "hasNucMask").toInt(), 0);
        QVERIFY(QMetaObject::invokeMethod(without.model, "nuc", Q_RETURN_ARG(bool, done)));
        QVERIFY(!done);
        without.controller->disconnect();
    }

    // The live picture's display range, passed on: with 0 as black and 1 as white, a 14-bit
    // camera's picture has no grey.
    void displayRangeIsPassedOn()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QVERIFY(session.connect());
        QTRY_VERIFY(frameCount(session.model) >= 1);
        QCOMPARE(read(session.model, "hasRange").toBool(), true);
        QCOMPARE(read(session.model, "rangeMaximum").toInt(), 16383);
        QCOMPARE(read(session.model, "autoRange").toBool(), true);
        QSignalSpy range(session.model, SIGNAL(rangeChanged()));
        QVERIFY(session.model->setProperty("autoRange", false));
        QVERIFY(session.model->setProperty("rangeHigh", 1));
        QVERIFY(session.model->setProperty("rangeLow", 0));
        QCOMPARE(range.count(), 2);
        QCOMPARE(read(session.model, "rangeHigh").toInt(), 1);
        // One picture may wait and one be in the making with the range before.
        const qint64 count = frameCount(session.model);
        QTRY_VERIFY(frameCount(session.model) >= count + 3);
        const QImage image = picture(session.model);
        int white = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const int grey = qGray(image.pixel(x, y));
                QVERIFY2(grey == 0 || grey == 255, qPrintable(QString::number(grey)));
                white += grey == 255 ? 1 : 0;
            }
        }
        QVERIFY(white > 0);
        session.controller->disconnect();

        const SSession colour("V40-1", &owner);
        QVERIFY(colour.connect());
        QTRY_VERIFY(read(colour.model, "connected").toBool());
        QCOMPARE(read(colour.model, "hasRange").toBool(), false);
        colour.controller->disconnect();
    }

    void colourCameraIsShownInColour()
    {
        QObject owner;
        const SSession session("V40-1", &owner);
        QVERIFY(session.connect());
        QTRY_VERIFY(frameCount(session.model) >= 1);
        const QImage image = picture(session.model);
        QCOMPARE(image.size(), QSize(40, 30));
        bool coloured = false;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                coloured = coloured || qRed(pixel) != qBlue(pixel);
            }
        }
        QVERIFY(coloured);
        session.controller->disconnect();
    }

    // A record whose filter refuses its images is shown with the filter of its pixel type.
    void unsuitableFilterFallsBack()
    {
        QObject owner;
        const SSession session("K40-1", &owner);
        QVERIFY(session.connect());
        QTRY_VERIFY(frameCount(session.model) >= 1);
        QCOMPARE(picture(session.model).size(), QSize(40, 30));
        session.controller->disconnect();
    }

    // A panel created while the camera streams shows it from then on.
    void lateModelJoinsTheStream()
    {
        QObject owner;
        SSession session("T64-1", &owner);
        QVERIFY(session.connect());
        delete session.model;
        QObject* model = nullptr;
        QString qml;
        QVERIFY(
            ui::controllerModelFactory()->CreateModel(session.controller, &owner, &model, &qml));
        QTRY_VERIFY(read(model, "connected").toBool());
        QTRY_VERIFY(frameCount(model) >= 3);
        QCOMPARE(read(model, "serial").toString(), QString("T64-1"));
        session.controller->disconnect();
    }

    // The model goes while images flow and are being handed to it, again and again; no image may
    // reach it afterwards (the sanitizers watch this).
    void destroyedWhileImagesFlow()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QVERIFY(session.connect());
        QVERIFY(session.controller->frameSource()->setFrameRate(1000));
        delete session.model;
        for (int round = 0; round < 40; ++round) {
            QObject* model = nullptr;
            QString qml;
            QVERIFY(ui::controllerModelFactory()->CreateModel(
                session.controller, &owner, &model, &qml));
            if (round % 2)
                QTRY_VERIFY(frameCount(model) >= 1);
            else
                QTest::qWait(round % 4);
            delete model;
            // Pictures announced to the model just before it went must not arrive anywhere.
            QCoreApplication::processEvents();
        }
        QTest::qWait(20);
        session.controller->disconnect();
    }

    // The owner, with the model, goes first; the controller and its stream go after.
    void ownerGoesBeforeTheController()
    {
        auto owner = std::make_unique<QObject>();
        SSession session("T64-1", owner.get());
        QVERIFY(session.connect());
        QTRY_VERIFY(frameCount(session.model) >= 1);
        owner.reset();
        QTest::qWait(30);
        session.controller.reset();
    }

    // The panel, loaded as a host loads it, shows the live picture and the camera's state.
    void panelShowsTheCamera()
    {
        QObject owner;
        const SSession session("T64-1", &owner);
        QQmlEngine engine;
        QQmlComponent component(&engine, QUrl(session.qml));
        QQuickWindow window;
        window.resize(760, 460);
        // The panel goes before its window.
        const std::unique_ptr<QQuickItem> panel(
            qobject_cast<QQuickItem*>(component.createWithInitialProperties(
                {{"cameraModel", QVariant::fromValue(session.model)}})));
        QVERIFY2(panel, qPrintable(component.errorString()));
        QQuickItem* item = panel.get();
        item->setParentItem(window.contentItem());
        item->setSize(QSizeF(760, 460));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));

        auto* state = item->findChild<QObject*>("connectionState");
        QVERIFY(state);
        QCOMPARE(state->property("text").toString(), QString("Not connected"));
        QVERIFY(session.connect());
        QTRY_COMPARE(state->property("text").toString(), QString("Connected"));
        QTRY_VERIFY(frameCount(session.model) >= 3);
        auto* info = item->findChild<QObject*>("frameInfo");
        QVERIFY(info);
        QTRY_VERIFY(info->property("text").toString().startsWith(
            QString("Frame %1 ").arg(frameCount(session.model))));
        auto* nuc = item->findChild<QObject*>("nuc");
        QVERIFY(nuc && nuc->property("visible").toBool() && nuc->property("enabled").toBool());

        // The picture is drawn: its area is not one flat colour.
        auto* view = item->findChild<QQuickItem*>("picture");
        QVERIFY(view);
        const QRectF shown = view->property("pictureRect").toRectF();
        QVERIFY(!shown.isEmpty());
        QImage grabbed;
        QTRY_VERIFY([&] {
            grabbed = window.grabWindow();
            const QPointF centre = view->mapToScene(shown.center());
            const QPointF corner = view->mapToScene(shown.topLeft() + QPointF(4, 4));
            return grabbed.pixel(centre.toPoint()) != grabbed.pixel(corner.toPoint());
        }());

        // The rate control goes to the camera.
        auto* rate = item->findChild<QObject*>("frameRate");
        QVERIFY(rate);
        QCOMPARE(rate->property("value").toInt(), 100);
        QVERIFY(rate->setProperty("value", 40));
        QVERIFY(QMetaObject::invokeMethod(rate, "moved"));
        QCOMPARE(session.controller->frameSource()->frameRate(), 40.0);

        // So does the range switch, shown for this 14-bit camera.
        auto* autoRange = item->findChild<QObject*>("autoRange");
        QVERIFY(autoRange && autoRange->property("visible").toBool());
        QVERIFY(autoRange->setProperty("checked", false));
        QVERIFY(QMetaObject::invokeMethod(autoRange, "toggled"));
        QCOMPARE(read(session.model, "autoRange").toBool(), false);
        session.controller->disconnect();
        QTRY_COMPARE(state->property("text").toString(), QString("Not connected"));
        QVERIFY(!nuc->property("visible").toBool());
    }
};

QTEST_MAIN(tst_EmulatorControllerModel)
#include "tst_emulatorcontrollermodel.moc"
