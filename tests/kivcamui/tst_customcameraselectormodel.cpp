// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceRows.h"
#include "DiscoveryTest.h"
#include "SignalLog.h"

#include <kivcamui/custom/CustomCameraSelectorModel.h>

#include <QAbstractItemModelTester>
#include <QJSEngine>
#include <QPointer>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

#include <memory>
#include <vector>

using kiv::cam::ui::CameraInfo;
using kiv::cam::ui::CameraModel;
using kiv::cam::ui::CustomCameraSelectorModel;

namespace {

// Deletes what waits for the event loop's next turn.
void runDeferredDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// A description's device as "transport/device", or "none" for an empty record.
QString described(DeviceInfo* device)
{
    return device->info().empty()
        ? QStringLiteral("none")
        : device->interfaceName() + "/" + device->info().deviceName.c_str();
}

QStringList cameraNames(CustomCameraSelectorModel& model)
{
    QStringList names;
    for (int i = 0; i < model.cameras()->size(); ++i)
        names << qobject_cast<CameraModel*>(model.cameras()->at(i))->name();
    return names;
}

// The lists of a search without emulators.
const QStringList commRows{"ComPorts/Custom", "ComPorts/COM1", "ComPorts/COM3", "ComPorts/com2",
    "Grabber/Custom", "Grabber/Port 0", "Grabber/Port 1"};
const QStringList videoRows{
    "Grabber/Custom", "Grabber/Port 0", "Grabber/Port 1", "VideoIn/Custom", "VideoIn/Capture 0"};
const QStringList bothRows{"Grabber/Custom", "Grabber/Port 0", "Grabber/Port 1"};

// Indices into those lists.
enum { Kelvin640, Mistral320, Nova640, CustomType };
enum { GrabberCustom, GrabberPort0, GrabberPort1 }; // devices
enum { ComCustom, Com1, Com3, Com2, CommGrabberCustom, CommPort0, CommPort1 }; // commDevices
enum { VideoGrabberCustom, VideoPort0, VideoPort1, VideoInCustom, Capture0 }; // videoDevices

} // namespace

// Runs over tests/kivcamui/data/devices-world.xml: three camera types, real serial ports
// (control only), a real grabber (both), a real capture card (video only) and a slow emulated
// link (both).
class tst_CustomCameraSelectorModel : public QObject {
    Q_OBJECT

    // A model that has searched once, without emulators.
    std::unique_ptr<CustomCameraSelectorModel> scanned()
    {
        auto model = std::make_unique<CustomCameraSelectorModel>();
        if (!scanToEnd(*model))
            qWarning("the search did not end");
        return model;
    }

private slots:
    void init() { qunsetenv("KIVCAM_ENABLE_EMULATORS"); }
    void cleanupTestCase() { QThreadPool::globalInstance()->waitForDone(); }

    void startsWithTheCameraTypesAndNothingChosen()
    {
        CustomCameraSelectorModel model;
        QCOMPARE(cameraNames(model), (QStringList{"Kelvin640", "Mistral320", "Nova640", "Custom"}));
        QVERIFY(qobject_cast<CameraModel*>(model.cameras()->at(CustomType))->isCustom());
        QVERIFY(!qobject_cast<CameraModel*>(model.cameras()->at(Nova640))->isCustom());
        QCOMPARE(model.selectedCameraIndex(), -1);
        QCOMPARE(model.selectedDeviceIndex(), -1);
        QCOMPARE(model.selectedCommDeviceIndex(), -1);
        QCOMPARE(model.selectedVideoDeviceIndex(), -1);
        QCOMPARE(model.selectedCamera(), nullptr);
        QCOMPARE(model.selectedDevice(), nullptr);
        QCOMPARE(model.selectedCommDevice(), nullptr);
        QCOMPARE(model.selectedVideoDevice(), nullptr);
        QVERIFY(model.useSameDevice());
        QCOMPARE(model.cameraInfo(), nullptr);
        QVERIFY(!model.scanning());
        QVERIFY(!model.scanned());
        QVERIFY(!model.enableEmulators());
        for (ObjectListModel* list :
            {model.cameras(), model.commDevices(), model.videoDevices(), model.devices()})
            QCOMPARE(QJSEngine::objectOwnership(list), QJSEngine::CppOwnership);
        QCOMPARE(model.devices()->size(), 0);
    }
    void environmentTurnsEmulatorsOn_data() { addEmulatorEnvironmentRows(); }
    void environmentTurnsEmulatorsOn()
    {
        const bool enabled = applyEmulatorEnvironment();
        const CustomCameraSelectorModel model;
        QCOMPARE(model.enableEmulators(), enabled);
    }
    void enableEmulatorsAnnouncesChangesAndWaitsForTheNextSearch()
    {
        CustomCameraSelectorModel model;
        SignalLog log(&model);
        model.setEnableEmulators(false);
        model.setEnableEmulators(true);
        model.setEnableEmulators(true);
        QCOMPARE(log.take(), QStringList{"enableEmulatorsChanged"});
        QVERIFY(!model.scanning());
        QVERIFY(scanToEnd(model));
        QCOMPARE(deviceRows(*model.devices()).first(), QStringLiteral("EmuLink/Custom"));
    }

    void scanAnnouncesInItsOrder()
    {
        CustomCameraSelectorModel model;
        SignalLog log(&model);
        model.scan();
        // Always, even though nothing was chosen.
        QCOMPARE(log.take(),
            (QStringList{"selectedDeviceChanged", "selectedCommDeviceChanged",
                "selectedVideoDeviceChanged", "scanningChanged"}));
        QVERIFY(model.scanning());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(log.take(), (QStringList{"scanningChanged", "scannedChanged"}));
        QVERIFY(model.scanned());
        QCOMPARE(model.cameraInfo(), nullptr);

        QVERIFY(scanToEnd(model));
        QCOMPARE(log.take(),
            (QStringList{"selectedDeviceChanged", "selectedCommDeviceChanged",
                "selectedVideoDeviceChanged", "scanningChanged", "scanningChanged"}));
        QVERIFY(model.scanned());
    }
    void scanReplacesTheDescriptionWithoutItsDevices()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedDeviceIndex(GrabberPort0);
        model->cameraInfo()->setIdentity("bench");
        QPointer<CameraInfo> old = model->cameraInfo();
        SignalLog log(model.get());
        model->scan();
        QCOMPARE(log.take(),
            (QStringList{"selectedDeviceChanged", "selectedCommDeviceChanged",
                "selectedVideoDeviceChanged", "cameraInfoChanged", "scanningChanged"}));
        QVERIFY(model->cameraInfo() != old);
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
        QCOMPARE(model->cameraInfo()->identity(), QStringLiteral("bench"));
        QCOMPARE(model->cameraInfo()->name(), QStringLiteral("Kelvin640"));
        QCOMPARE(model->cameraInfo()->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(QJSEngine::objectOwnership(model->cameraInfo()), QJSEngine::CppOwnership);
        QCOMPARE(model->selectedCameraIndex(), int(Kelvin640));
        QCOMPARE(model->selectedDeviceIndex(), -1);
        // The old description goes at the next turn of the event loop.
        QVERIFY(!old.isNull());
        runDeferredDeletes();
        QVERIFY(old.isNull());
        QTRY_VERIFY_WITH_TIMEOUT(!model->scanning(), 30000);
        QCOMPARE(log.take(), QStringList{"scanningChanged"});
    }
    void scanDuringAScanDoesNothing()
    {
        CustomCameraSelectorModel model;
        model.setEnableEmulators(true);
        model.scan();
        SignalLog log(&model);
        model.scan();
        model.scan();
        QCOMPARE(log.take(), QStringList());
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QCOMPARE(log.take(), (QStringList{"scanningChanged", "scannedChanged"}));
        QCOMPARE(model.devices()->size(), 5);
    }
    void devicesAreSortedAndDistributed()
    {
        CustomCameraSelectorModel model;
        std::vector<std::unique_ptr<QAbstractItemModelTester>> testers;
        for (ObjectListModel* list :
            {model.cameras(), model.commDevices(), model.videoDevices(), model.devices()}) {
            testers.push_back(std::make_unique<QAbstractItemModelTester>(
                list, QAbstractItemModelTester::FailureReportingMode::QtTest));
        }
        QVERIFY(scanToEnd(model));
        QCOMPARE(deviceRows(*model.commDevices()), commRows);
        QCOMPARE(deviceRows(*model.videoDevices()), videoRows);
        QCOMPARE(deviceRows(*model.devices()), bothRows);
        // A device that carries both is one object in three lists.
        QCOMPARE(model.devices()->at(GrabberPort1), model.commDevices()->at(CommPort1));
        QCOMPARE(model.devices()->at(GrabberPort1), model.videoDevices()->at(VideoPort1));
        auto* placeholder = qobject_cast<DeviceInfo*>(model.commDevices()->at(ComCustom));
        QVERIFY(!placeholder->isFound());
        QCOMPARE(placeholder->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        auto* found = qobject_cast<DeviceInfo*>(model.commDevices()->at(Com1));
        QVERIFY(found->isFound());
        QCOMPARE(found->editLevel(), DeviceParameter::EDIT_CUSTOM);
        // The lists own it.
        QCOMPARE(found->parent(), nullptr);

        model.setEnableEmulators(true);
        QVERIFY(scanToEnd(model));
        QCOMPARE(deviceRows(*model.devices()),
            (QStringList{"EmuLink/Custom", "EmuLink/Emu 0"} + bothRows));
        QCOMPARE(deviceRows(*model.commDevices()).mid(4, 3),
            (QStringList{"EmuLink/Custom", "EmuLink/Emu 0", "Grabber/Custom"}));
        QCOMPARE(deviceRows(*model.videoDevices()).size(), videoRows.size() + 2);
    }
    void rescanReclaimsEveryDevice()
    {
        auto model = scanned();
        QPointer<QObject> both = model->devices()->at(GrabberPort0);
        QPointer<QObject> commOnly = model->commDevices()->at(Com1);
        QPointer<QObject> commPlaceholder = model->commDevices()->at(ComCustom);
        QPointer<QObject> videoOnly = model->videoDevices()->at(Capture0);
        model->scan();
        QCOMPARE(model->commDevices()->size(), 0);
        QCOMPARE(model->videoDevices()->size(), 0);
        QCOMPARE(model->devices()->size(), 0);
        // Once the views have seen all three lists emptied, every device goes, each once.
        QVERIFY(both.isNull());
        QVERIFY(commOnly.isNull());
        QVERIFY(commPlaceholder.isNull());
        QVERIFY(videoOnly.isNull());
        QTRY_VERIFY_WITH_TIMEOUT(!model->scanning(), 30000);
        QCOMPARE(deviceRows(*model->commDevices()), commRows);
    }

    void eachListGetsItsDevicesInOneInsertion()
    {
        CustomCameraSelectorModel model;
        std::vector<std::unique_ptr<QSignalSpy>> inserted;
        for (ObjectListModel* list : {model.commDevices(), model.videoDevices(), model.devices()})
            inserted.push_back(
                std::make_unique<QSignalSpy>(list, &QAbstractItemModel::rowsInserted));
        bool completeAtTheEnd = false;
        connect(&model, &CustomCameraSelectorModel::scanningChanged, this, [&] {
            completeAtTheEnd = !model.scanning() && model.commDevices()->size() == commRows.size()
                && model.videoDevices()->size() == videoRows.size()
                && model.devices()->size() == bothRows.size();
        });
        QVERIFY(scanToEnd(model));
        QVERIFY(completeAtTheEnd);
        for (const auto& spy : inserted) {
            QCOMPARE(spy->count(), 1);
            QCOMPARE(spy->at(0).at(1).toInt(), 0);
        }
        QCOMPARE(inserted.at(0)->at(0).at(2).toInt(), int(commRows.size()) - 1);
        QCOMPARE(inserted.at(1)->at(0).at(2).toInt(), int(videoRows.size()) - 1);
        QCOMPARE(inserted.at(2)->at(0).at(2).toInt(), int(bothRows.size()) - 1);
    }
    void destructionDeletesEveryDeviceOnce()
    {
        // A device in three lists, one in one list, a placeholder: all go with the model, each
        // once (the sanitizer build checks that nothing is deleted twice or leaks).
        auto model = scanned();
        QList<QPointer<QObject>> devices{model->devices()->at(GrabberPort0),
            model->commDevices()->at(Com1), model->commDevices()->at(ComCustom),
            model->videoDevices()->at(Capture0)};
        for (const QPointer<QObject>& device : std::as_const(devices)) {
            QVERIFY(!device.isNull());
            QCOMPARE(device->parent(), nullptr);
            QCOMPARE(device->thread(), model->thread());
        }
        model.reset();
        for (const QPointer<QObject>& device : std::as_const(devices))
            QVERIFY(device.isNull());
    }
    void destroyedBeforeItsEndedSearchIsTaken()
    {
        // The task has made its devices and moved them to this thread, but the event loop has
        // not turned: the model goes with them (the sanitizer build checks that nothing leaks).
        for (int i = 0; i < 5; ++i) {
            auto model = std::make_unique<CustomCameraSelectorModel>();
            model->scan();
            QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
            // Ended in the pool, not yet taken: still searching, nothing listed.
            QVERIFY(model->scanning());
            QCOMPARE(model->devices()->size(), 0);
        }
        QThreadPool::globalInstance()->waitForDone();
        // What the searches posted finds no model to tell.
        QCoreApplication::sendPostedEvents();
    }

    void cameraTypeSelectionIsRefusedOutOfRange_data()
    {
        QTest::addColumn<int>("index");
        QTest::newRow("-1") << -1;
        QTest::newRow("-2") << -2;
        QTest::newRow("size") << 4;
        QTest::newRow("current") << int(Mistral320);
    }
    void cameraTypeSelectionIsRefusedOutOfRange()
    {
        QFETCH(int, index);
        CustomCameraSelectorModel model;
        model.setSelectedCameraIndex(Mistral320);
        CameraInfo* before = model.cameraInfo();
        SignalLog log(&model);
        model.setSelectedCameraIndex(index);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(model.selectedCameraIndex(), int(Mistral320));
        QCOMPARE(model.cameraInfo(), before);
    }
    void choosingATypeStartsFromItsTemplate()
    {
        CustomCameraSelectorModel model;
        SignalLog log(&model);
        model.setSelectedCameraIndex(Kelvin640);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedCameraChanged"}));
        QCOMPARE(model.selectedCamera(), model.cameras()->at(Kelvin640));
        CameraInfo* camera = model.cameraInfo();
        QCOMPARE(camera->name(), QStringLiteral("Kelvin640"));
        QCOMPARE(camera->controller(), QStringLiteral("Thermal"));
        QCOMPARE(camera->width(), 640);
        QCOMPARE(camera->adBits(), 14);
        QCOMPARE(camera->parent(), nullptr);
        QCOMPARE(QJSEngine::objectOwnership(camera), QJSEngine::CppOwnership);
        // Everything but the devices is the new type's.
        camera->setIdentity("bench");
        model.setSelectedCameraIndex(Mistral320);
        QCOMPARE(model.cameraInfo()->name(), QStringLiteral("Mistral320"));
        QCOMPARE(model.cameraInfo()->identity(), QString());
        QCOMPARE(model.cameraInfo()->width(), 320);
    }
    void customTypeGetsTheGenericControllerAndKeepsTheDevices()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Mistral320);
        model->setUseSameDevice(false);
        // The setters check nothing: a grabber port as video for a serial camera.
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(VideoPort0);
        SignalLog log(model.get());
        model->setSelectedCameraIndex(CustomType);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedCameraChanged"}));
        CameraInfo* camera = model->cameraInfo();
        QCOMPARE(camera->controller(), QStringLiteral("Generic"));
        QCOMPARE(camera->name(), QString());
        QCOMPARE(described(camera->comm()), QStringLiteral("ComPorts/COM1"));
        QCOMPARE(described(camera->video()), QStringLiteral("Grabber/Port 0"));
        QCOMPARE(model->selectedCommDeviceIndex(), int(Com1));
        QCOMPARE(model->selectedVideoDeviceIndex(), int(VideoPort0));
        QVERIFY(model->selectedCamera()->isCustom());
    }
    void unsupportedSharedDeviceIsDropped()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedDeviceIndex(GrabberPort0);
        SignalLog log(model.get());
        model->setSelectedCameraIndex(Mistral320);
        QCOMPARE(log.take(),
            (QStringList{"selectedDeviceChanged", "cameraInfoChanged", "selectedCameraChanged"}));
        QCOMPARE(model->selectedDeviceIndex(), -1);
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
        // Nothing chosen: the empty device is dropped again, with no index to reset.
        model->setSelectedCameraIndex(Kelvin640);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedCameraChanged"}));
    }
    void supportedSharedDeviceIsKept()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Mistral320);
        model->setSelectedDeviceIndex(GrabberPort1);
        SignalLog log(model.get());
        model->setSelectedCameraIndex(Kelvin640);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedCameraChanged"}));
        QCOMPARE(model->selectedDeviceIndex(), int(GrabberPort1));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("Grabber/Port 1"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("Grabber/Port 1"));
    }
    void supportIsAskedWithTheTransportName()
    {
        // Nova640 takes the base type "CameraLink", which the grabber's devices have, but not
        // the transport's name "Grabber".
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedDeviceIndex(GrabberPort0);
        QVERIFY(qobject_cast<CameraModel*>(model->cameras()->at(Nova640))
                    ->isSupportedBaseDeviceType(model->selectedDevice()->baseType()));
        model->setSelectedCameraIndex(Nova640);
        QCOMPARE(model->selectedDeviceIndex(), -1);
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
    }
    void unsupportedSeparateDevicesAreDroppedEachWithItsSignal()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Mistral320);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(Capture0);
        SignalLog log(model.get());
        model->setSelectedCameraIndex(Kelvin640);
        QCOMPARE(log.take(),
            (QStringList{"selectedCommDeviceChanged", "selectedVideoDeviceChanged",
                "cameraInfoChanged", "selectedCameraChanged"}));
        QCOMPARE(model->selectedCommDeviceIndex(), -1);
        QCOMPARE(model->selectedVideoDeviceIndex(), -1);
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
    }
    void onlyTheUnsupportedSeparateDeviceIsDropped()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(VideoPort0);
        SignalLog log(model.get());
        model->setSelectedCameraIndex(Mistral320);
        QCOMPARE(log.take(),
            (QStringList{
                "selectedVideoDeviceChanged", "cameraInfoChanged", "selectedCameraChanged"}));
        QCOMPARE(model->selectedCommDeviceIndex(), int(Com1));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("ComPorts/COM1"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
    }

    void sharedDeviceGoesIntoBoth()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        SignalLog log(model.get());
        model->setSelectedDeviceIndex(GrabberPort1);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedDeviceChanged"}));
        QCOMPARE(model->selectedDevice(), model->devices()->at(GrabberPort1));
        CameraInfo* camera = model->cameraInfo();
        QCOMPARE(described(camera->comm()), QStringLiteral("Grabber/Port 1"));
        QCOMPARE(described(camera->video()), QStringLiteral("Grabber/Port 1"));
        QCOMPARE(camera->name(), QStringLiteral("Kelvin640"));
        // The device's parameters come along.
        QCOMPARE(qobject_cast<DeviceParameter*>(camera->comm()->parameters()->at(1))->value(),
            QStringLiteral("2500"));
        QCOMPARE(camera->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM);
    }
    void deviceBeforeAnyCameraTypeMakesADescription()
    {
        auto model = scanned();
        SignalLog log(model.get());
        model->setSelectedDeviceIndex(GrabberPort0);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedDeviceChanged"}));
        QVERIFY(model->cameraInfo());
        QCOMPARE(model->cameraInfo()->name(), QString());
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("Grabber/Port 0"));
    }
    void noDeviceEmptiesBoth()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedDeviceIndex(GrabberPort0);
        SignalLog log(model.get());
        model->setSelectedDeviceIndex(-1);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedDeviceChanged"}));
        QCOMPARE(model->selectedDevice(), nullptr);
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
        QCOMPARE(model->cameraInfo()->name(), QStringLiteral("Kelvin640"));
    }
    void deviceIndicesAreRefusedOutOfRange()
    {
        auto model = scanned();
        model->setSelectedDeviceIndex(GrabberPort0);
        model->setSelectedCommDeviceIndex(CommPort0);
        model->setSelectedVideoDeviceIndex(VideoPort0);
        CameraInfo* before = model->cameraInfo();
        SignalLog log(model.get());
        for (int index : {-2, int(GrabberPort0), 3, 100})
            model->setSelectedDeviceIndex(index);
        for (int index : {-2, int(CommPort0), 7})
            model->setSelectedCommDeviceIndex(index);
        for (int index : {-2, int(VideoPort0), 5})
            model->setSelectedVideoDeviceIndex(index);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(model->cameraInfo(), before);
        QCOMPARE(model->selectedDeviceIndex(), int(GrabberPort0));
        QCOMPARE(model->selectedCommDeviceIndex(), int(CommPort0));
        QCOMPARE(model->selectedVideoDeviceIndex(), int(VideoPort0));
    }
    void separateChoicesWaitWhileOneDeviceIsUsed()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedDeviceIndex(GrabberPort1);
        CameraInfo* before = model->cameraInfo();
        SignalLog log(model.get());
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(Capture0);
        QCOMPARE(
            log.take(), (QStringList{"selectedCommDeviceChanged", "selectedVideoDeviceChanged"}));
        QCOMPARE(model->cameraInfo(), before);
        QCOMPARE(model->selectedCommDevice(), model->commDevices()->at(Com1));
        QCOMPARE(model->selectedVideoDevice(), model->videoDevices()->at(Capture0));
        QCOMPARE(described(before->comm()), QStringLiteral("Grabber/Port 1"));
    }
    void oneDeviceChoiceWaitsWhileTwoAreUsed()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setUseSameDevice(false);
        CameraInfo* before = model->cameraInfo();
        SignalLog log(model.get());
        model->setSelectedDeviceIndex(GrabberPort0);
        QCOMPARE(log.take(), QStringList{"selectedDeviceChanged"});
        QCOMPARE(model->cameraInfo(), before);
    }
    void separateDevicesGoEachIntoItsOwnField()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setUseSameDevice(false);
        SignalLog log(model.get());
        model->setSelectedCommDeviceIndex(Com2);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedCommDeviceChanged"}));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("ComPorts/com2"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
        model->setSelectedVideoDeviceIndex(Capture0);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedVideoDeviceChanged"}));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("ComPorts/com2"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("VideoIn/Capture 0"));
        QCOMPARE(model->cameraInfo()->controller(), QStringLiteral("Generic"));
        model->setSelectedCommDeviceIndex(-1);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "selectedCommDeviceChanged"}));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("VideoIn/Capture 0"));
    }

    void placeholderMarksTheDescription()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setSelectedDeviceIndex(GrabberCustom);
        CameraInfo* camera = model->cameraInfo();
        QCOMPARE(camera->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        QCOMPARE(camera->video()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        QCOMPARE(camera->comm()->deviceName(), QStringLiteral("Custom"));
        // The template's parameters are written at that level.
        QVERIFY(qobject_cast<DeviceParameter*>(camera->comm()->parameters()->at(0))->isWritable());

        model->setSelectedDeviceIndex(GrabberPort0);
        camera = model->cameraInfo();
        QCOMPARE(camera->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(camera->video()->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QVERIFY(!qobject_cast<DeviceParameter*>(camera->comm()->parameters()->at(0))->isWritable());
    }
    void placeholderMarksOnlyItsOwnSide()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(ComCustom);
        model->setSelectedVideoDeviceIndex(Capture0);
        QCOMPARE(model->cameraInfo()->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        QCOMPARE(model->cameraInfo()->video()->editLevel(), DeviceParameter::EDIT_CUSTOM);
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(VideoInCustom);
        QCOMPARE(model->cameraInfo()->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM);
        QCOMPARE(model->cameraInfo()->video()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        // A new camera type keeps the marking of the devices it keeps.
        model->setSelectedCameraIndex(Mistral320);
        QCOMPARE(model->cameraInfo()->video()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
    }

    void useSameDeviceWithoutADescriptionChangesOnlyTheFlag()
    {
        auto model = scanned();
        model->setSelectedCommDeviceIndex(Com3);
        SignalLog log(model.get());
        model->setUseSameDevice(true);
        QCOMPARE(log.take(), QStringList());
        model->setUseSameDevice(false);
        QCOMPARE(log.take(), QStringList{"useSameDeviceChanged"});
        QCOMPARE(model->cameraInfo(), nullptr);
        QCOMPARE(model->selectedCommDeviceIndex(), int(Com3));
        QCOMPARE(model->selectedVideoDeviceIndex(), -1);
        model->setUseSameDevice(true);
        QCOMPARE(log.take(), QStringList{"useSameDeviceChanged"});
        QCOMPARE(model->selectedDeviceIndex(), -1);
    }
    void switchingOffChoosesTheSharedDeviceInBothLists()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedDeviceIndex(GrabberPort1);
        SignalLog log(model.get());
        model->setUseSameDevice(false);
        QCOMPARE(log.take(),
            (QStringList{"selectedCommDeviceChanged", "selectedVideoDeviceChanged",
                "cameraInfoChanged", "useSameDeviceChanged"}));
        QCOMPARE(model->selectedCommDeviceIndex(), int(CommPort1));
        QCOMPARE(model->selectedVideoDeviceIndex(), int(VideoPort1));
        QCOMPARE(model->selectedDeviceIndex(), int(GrabberPort1));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("Grabber/Port 1"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("Grabber/Port 1"));
    }
    void switchingOffAnnouncesOnlyIndicesThatChange()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        model->setSelectedCommDeviceIndex(CommPort1); // waits: one device is used
        model->setSelectedDeviceIndex(GrabberPort1);
        SignalLog log(model.get());
        model->setUseSameDevice(false);
        QCOMPARE(log.take(),
            (QStringList{
                "selectedVideoDeviceChanged", "cameraInfoChanged", "useSameDeviceChanged"}));
    }
    void switchingOnKeepsTheControlDevice()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(CommPort0);
        model->setSelectedVideoDeviceIndex(Capture0);
        SignalLog log(model.get());
        model->setUseSameDevice(true);
        QCOMPARE(log.take(),
            (QStringList{"selectedDeviceChanged", "cameraInfoChanged", "useSameDeviceChanged"}));
        QCOMPARE(model->selectedDeviceIndex(), int(GrabberPort0));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("Grabber/Port 0"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("Grabber/Port 0"));
    }
    void switchingOnTakesTheVideoDeviceWhenOnlyItCarriesBoth()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(VideoPort1);
        model->setUseSameDevice(true);
        QCOMPARE(model->selectedDeviceIndex(), int(GrabberPort1));
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("Grabber/Port 1"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("Grabber/Port 1"));
    }
    void switchingOnEmptiesDevicesThatCannotServeAsOne()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setSelectedDeviceIndex(GrabberPort1);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(Capture0);
        SignalLog log(model.get());
        model->setUseSameDevice(true);
        QCOMPARE(log.take(),
            (QStringList{"selectedDeviceChanged", "cameraInfoChanged", "useSameDeviceChanged"}));
        QCOMPARE(model->selectedDeviceIndex(), -1);
        QCOMPARE(described(model->cameraInfo()->comm()), QStringLiteral("none"));
        QCOMPARE(described(model->cameraInfo()->video()), QStringLiteral("none"));
        // With nothing chosen in devices before, the index does not change and says nothing.
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(Com1);
        model->setSelectedVideoDeviceIndex(Capture0);
        log.take();
        model->setUseSameDevice(true);
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "useSameDeviceChanged"}));
    }
    void switchingOnFindsAPlaceholderByItsNames()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(CommGrabberCustom);
        model->setUseSameDevice(true);
        QCOMPARE(model->selectedDeviceIndex(), int(GrabberCustom));
        QCOMPARE(model->cameraInfo()->comm()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
        QCOMPARE(model->cameraInfo()->video()->editLevel(), DeviceParameter::EDIT_CUSTOM_SELECT);
    }

    void cancelledSearchCountsAsEmpty()
    {
        CustomCameraSelectorModel model;
        QVERIFY(cancelQueuedScan(model));
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
        QVERIFY(model.scanned());
        QCOMPARE(
            deviceRows(*model.commDevices()), (QStringList{"ComPorts/Custom", "Grabber/Custom"}));
        QCOMPARE(
            deviceRows(*model.videoDevices()), (QStringList{"Grabber/Custom", "VideoIn/Custom"}));
        QCOMPARE(deviceRows(*model.devices()), QStringList{"Grabber/Custom"});
    }
    void destroyedWhileSearching()
    {
        for (int i = 0; i < 20; ++i) {
            auto model = std::make_unique<CustomCameraSelectorModel>();
            model->setEnableEmulators(i % 2 == 0);
            if (i % 5 == 0) {
                // With devices waiting for deletion, and a description.
                QVERIFY(scanToEnd(*model));
                model->setSelectedDeviceIndex(1);
            }
            model->scan();
            if (i % 4 == 0)
                QTest::qWait(1);
        }
        runDeferredDeletes();
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
        auto model = scanned();
        QCOMPARE(deviceRows(*model->commDevices()), commRows);
    }
    void abandonedSearchesStop()
    {
        // A thousand half-second searches left running would keep the pool busy for minutes;
        // stopped, they end at once.
        for (int i = 0; i < 1000; ++i) {
            CustomCameraSelectorModel model;
            model.setEnableEmulators(true);
            model.scan();
        }
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    }
    void destructionTakesTheDescription()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Kelvin640);
        QPointer<CameraInfo> replaced = model->cameraInfo();
        model->setSelectedDeviceIndex(GrabberPort0);
        QPointer<CameraInfo> current = model->cameraInfo();
        model.reset();
        QVERIFY(replaced.isNull());
        QVERIFY(current.isNull());
    }

    void aDescriptionSaysWhatKeepsItFromConnecting()
    {
        auto model = scanned();
        // A device before any camera type.
        model->setSelectedDeviceIndex(GrabberPort0);
        QVERIFY(!model->cameraInfo()->canConnect());
        QCOMPARE(model->cameraInfo()->errorSummary(), QStringLiteral("No camera type"));
        QCOMPARE(model->cameraInfo()->errorMessage(),
            QStringLiteral("Choose a camera type, or Custom, from the list of cameras."));
        // The custom type's template: no pixel type, no frame size.
        model->setSelectedCameraIndex(CustomType);
        CameraInfo* camera = model->cameraInfo();
        QVERIFY(!camera->canConnect());
        QCOMPARE(camera->errorSummary(), QStringLiteral("No Pixel Type"));
        QCOMPARE(camera->errorMessage(),
            QStringLiteral("Choose the Pixel Type of the camera's pictures. Width and Height must "
                           "be at least 1 pixel; they are 0 and 0."));
        // Nothing chosen at all.
        model->setSelectedDeviceIndex(-1);
        QCOMPARE(model->cameraInfo()->errorSummary(), QStringLiteral("No device"));
        QVERIFY(model->cameraInfo()->errorMessage().startsWith(
            QStringLiteral("Choose the device that the camera is connected to. Choose the Pixel")));
    }

    void editsThatChangeTheVerdictReplaceTheDescription()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(CustomType);
        model->setSelectedDeviceIndex(GrabberPort0);
        SignalLog log(model.get());
        CameraInfo* camera = model->cameraInfo();
        // An edit that leaves the verdict as it is keeps the description.
        camera->setIdentity(QStringLiteral("Bench"));
        camera->setCropLeft(2);
        QCOMPARE(log.take(), QStringList());
        QCOMPARE(model->cameraInfo(), camera);

        camera->setPixelTypeIndex(camera->pixelTypeNames().indexOf(QStringLiteral("Mono16")));
        QCOMPARE(log.take(), QStringList{"cameraInfoChanged"});
        camera = model->cameraInfo();
        QCOMPARE(camera->errorSummary(), QStringLiteral("No frame size"));
        // The edits so far are in the new description.
        QCOMPARE(camera->identity(), QStringLiteral("Bench"));
        QCOMPARE(camera->pixelTypeName(), QStringLiteral("Mono16"));
        camera->setWidth(640);
        camera = model->cameraInfo();
        camera->setHeight(480);
        camera = model->cameraInfo();
        QCOMPARE(log.take(), (QStringList{"cameraInfoChanged", "cameraInfoChanged"}));
        QCOMPARE(camera->errorSummary(), QStringLiteral("AD Bits out of range"));
        QCOMPARE(
            camera->errorMessage(), QStringLiteral("AD Bits must be 1 to 16 for Mono16; it is 0."));
        camera->setADBits(12);
        camera = model->cameraInfo();
        QVERIFY(camera->canConnect());
        QCOMPARE(camera->errorSummary(), QString());
        QCOMPARE(camera->errorMessage(), QString());
        QCOMPARE(log.take(), QStringList{"cameraInfoChanged"});
        // The right place for those bits, and the wrong one.
        camera->setADBitShift(4);
        QCOMPARE(log.take(), QStringList());
        camera->setADBitShift(5);
        camera = model->cameraInfo();
        QCOMPARE(camera->errorMessage(),
            QStringLiteral("AD Bit Shift must be 0 to 4 for 12 AD Bits of Mono16; it is 5."));
        camera->setADBitShift(0);
        camera = model->cameraInfo();
        camera->setCropRight(638);
        camera = model->cameraInfo();
        QCOMPARE(camera->errorSummary(), QStringLiteral("Crop too large"));
        camera->setCropRight(637);
        camera = model->cameraInfo();
        QVERIFY(camera->canConnect());
        camera->setController(QStringLiteral("Missing"));
        camera = model->cameraInfo();
        QCOMPARE(camera->errorSummary(), QStringLiteral("No Controller"));
        QCOMPARE(camera->errorMessage(),
            QStringLiteral("There is no Controller \"Missing\" here; choose one from the list."));
        // The replaced descriptions go at the next turn of the event loop.
        QPointer<CameraInfo> replaced = camera;
        camera->setController(QStringLiteral("Thermal"));
        QVERIFY(model->cameraInfo()->canConnect());
        runDeferredDeletes();
        QVERIFY(replaced.isNull());
    }

    void aDeviceThatCannotConnectSaysSo()
    {
        auto model = scanned();
        model->setSelectedCameraIndex(Mistral320);
        model->setUseSameDevice(false);
        model->setSelectedCommDeviceIndex(Com3);
        CameraInfo* camera = model->cameraInfo();
        QVERIFY(!camera->canConnect());
        QCOMPARE(camera->errorSummary(), QStringLiteral("Device cannot connect"));
        QCOMPARE(camera->errorMessage(),
            QStringLiteral("Another program holds COM3; close it and search again."));
        // A camera type's own template is the camera library's: only the devices are checked
        // (Mistral320 leaves its AD bits at 0 in this world), and a video device is optional.
        model->setSelectedCommDeviceIndex(Com1);
        QVERIFY(model->cameraInfo()->canConnect());
        QCOMPARE(model->cameraInfo()->adBits(), 0);
        model->setSelectedCommDeviceIndex(-1);
        QCOMPARE(model->cameraInfo()->errorSummary(), QStringLiteral("No Communications Device"));
    }

    void viewsFollowRescans()
    {
        // Real list views over the four lists, with delegates that read their devices, while
        // the model searches again and again and the user chooses in between.
        QQuickWindow window;
        QQmlEngine engine;
        CustomCameraSelectorModel model;
        model.setEnableEmulators(true);
        engine.rootContext()->setContextProperty("selector", &model);
        QQmlComponent component(&engine);
        component.setData(R"(
            import QtQuick
            Row {
                width: 800; height: 600
                Component {
                    id: deviceRow
                    Text {
                        required property var model
                        width: 200; height: 20
                        text: model.item.interfaceName + "/" + model.item.deviceName
                              + (model.item.interface ? " " + model.item.interface.displayName : "")
                              + " " + model.item.parameters.size
                    }
                }
                ListView { objectName: "comm"; width: 200; height: 600; delegate: deviceRow
                           model: selector.commDevices }
                ListView { objectName: "video"; width: 200; height: 600; delegate: deviceRow
                           model: selector.videoDevices }
                ListView { objectName: "both"; width: 200; height: 600; delegate: deviceRow
                           model: selector.devices }
                ListView { width: 200; height: 600
                           model: selector.cameraInfo ? selector.cameraInfo.comm.parameters : null
                           delegate: Text { required property var model; text: model.item.value } }
            })",
            QUrl());
        std::unique_ptr<QQuickItem> lists(qobject_cast<QQuickItem*>(component.create()));
        QVERIFY2(lists, qPrintable(component.errorString()));
        lists->setParentItem(window.contentItem());
        window.resize(800, 600);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        auto* comm = lists->findChild<QQuickItem*>("comm");
        auto* both = lists->findChild<QQuickItem*>("both");
        for (int round = 0; round < 5; ++round) {
            model.scan();
            QCOMPARE(comm->property("count").toInt(), 0);
            QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 30000);
            QTRY_COMPARE(comm->property("count").toInt(), model.commDevices()->size());
            QTRY_COMPARE(both->property("count").toInt(), 5);
            model.setSelectedCameraIndex(round % 4);
            model.setSelectedDeviceIndex(round % 5);
            QTest::qWait(20);
        }
    }
};

QTEST_MAIN(tst_CustomCameraSelectorModel)
#include "tst_customcameraselectormodel.moc"
