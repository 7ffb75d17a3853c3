// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "U3VTest.h"

#include <kiv/Platform.h>
#include <kivcam/CCameras.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/genicam/CGenICamWorker.h>
#include <kivcam/usb3/CU3VInterface.h>
#include <kivcam/usb3/CU3VSysfs.h>

#include <QTemporaryDir>
#include <QtTest>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <set>
#include <sys/stat.h>
#include <thread>

using namespace u3vtest;

namespace {

TSharedPtr<IInterface> usb3()
{
    return interfaces()->interfaceByName("USB3Vision");
}

TArray<SCameraInfo> camerasFound(bool* ok = nullptr)
{
    TArray<SCameraInfo> cameras;
    const bool found = usb3()->findCameras(cameras, {});
    if (ok)
        *ok = found;
    return cameras;
}

// A file the test makes with the given mode.
QByteArray makeFile(const QTemporaryDir& folder, const char* name, mode_t mode)
{
    const QByteArray path = QFile::encodeName(folder.filePath(name));
    const int file = ::open(path.constData(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    ::close(file);
    return file >= 0 && ::chmod(path.constData(), mode) == 0 ? path : QByteArray();
}

} // namespace

class tst_CU3VInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        U3V_MAKE_FAKE_WORLD(m_world);
        QVERIFY(usb3());
    }
    void cleanup() { m_world.Clear(); }

    void describesItself()
    {
        const TSharedPtr<IInterface> transport = usb3();
        QCOMPARE(str(transport->displayName), QByteArray("USB3 Vision"));
        QCOMPARE(str(transport->baseType), QByteArray("USB3-Vision"));
        QCOMPARE(str(transport->icon), QByteArray("USB"));
        QVERIFY(transport->comm && transport->video && !transport->isEmulator);
        const SDeviceInfo& custom = transport->defaultDevice;
        for (const char* name : {"GUID", "Vendor", "Model", "Serial"}) {
            QCOMPARE(parameter(custom, name), QByteArray());
            QCOMPARE(custom.parameters[CString(name)].editLevel, CParameters::EDIT_ALWAYS);
        }
    }

    void theCatalogueHasTheGenericTypeWithTheGenICamController()
    {
        const TSharedPtr<ICamera> type = cameras()->cameraByName("USB3 Vision camera");
        QVERIFY(type);
        QCOMPARE(str(type->displayName), QByteArray("USB3 Vision camera"));
        QCOMPARE(str(type->controller), QByteArray("GenICam"));
        QCOMPARE(str(type->iconName), QByteArray("USB"));
        QVERIFY(type->IsSupportedBaseDeviceType("USB3-Vision"));
        QCOMPARE(str(type->defaultInfo.name), QByteArray("USB3 Vision camera"));
        QCOMPARE(str(type->defaultInfo.controller), QByteArray("GenICam"));
        QCOMPARE(type->defaultInfo.adBits, 8);
    }

    void findsNothingWithoutACamera()
    {
        bool ok = false;
        QVERIFY(camerasFound(&ok).empty());
        QVERIFY(ok);
        TArray<SDeviceInfo> devices;
        QVERIFY(usb3()->findDevices(devices, {}));
        QVERIFY(devices.empty());
    }

    void scansFromSeveralThreadsInTurnUseOneListingThread()
    {
        std::set<std::thread::id> scanners;
        std::set<std::thread::id> listers;
        for (int i = 0; i < 4; ++i) {
            bool ok = false;
            bool empty = false;
            std::thread scan([&] {
                scanners.insert(std::this_thread::get_id());
                TArray<SCameraInfo> found;
                ok = usb3()->findCameras(found, {});
                empty = found.empty();
                CU3VInterface::ListingThread().run(
                    [&] { listers.insert(std::this_thread::get_id()); });
            });
            scan.join();
            QVERIFY(ok);
            QVERIFY(empty);
        }
        QCOMPARE(int(listers.size()), 1);
        QVERIFY(!scanners.count(*listers.begin()));
    }

    void aStoppedScanGivesFalse()
    {
        std::stop_source stop;
        stop.request_stop();
        TArray<SCameraInfo> cameras;
        QVERIFY(!usb3()->findCameras(cameras, stop.get_token()));
        TArray<SDeviceInfo> devices;
        QVERIFY(!usb3()->findDevices(devices, stop.get_token()));
        QVERIFY(cameras.empty() && devices.empty());
    }

    void aStoppedScanDoesNotWaitForTheBusyListingThread()
    {
        std::promise<void> release;
        std::shared_future<void> released = release.get_future().share();
        CU3VInterface::ListingThread().post([released] { released.wait(); });
        std::stop_source stop;
        auto scan = std::async(std::launch::async, [&] {
            TArray<SCameraInfo> cameras;
            return usb3()->findCameras(cameras, stop.get_token());
        });
        // The listing thread stays busy until the scan has given up.
        stop.request_stop();
        const bool ended = scan.wait_for(std::chrono::seconds(60)) == std::future_status::ready;
        release.set_value();
        QVERIFY(ended);
        QVERIFY(!scan.get());
        QVERIFY(camerasFound().empty());
    }

    void aCameraOnlyTheKernelShowsIsListedWithTheReason()
    {
        QVERIFY(m_world.PlugCamera("2-1.4", 2, 7, "Acme", "Model X", "SN-17"));
        QCOMPARE(::chmod("/dev/bus/usb/002/007", 0666), 0);
        const TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        const SCameraInfo& camera = found[0];
        QCOMPARE(str(camera.name), QByteArray("USB3 Vision camera"));
        QCOMPARE(str(camera.displayName), QByteArray("Acme Model X"));
        QCOMPARE(str(camera.controller), QByteArray("GenICam"));
        QCOMPARE(str(camera.vendor), QByteArray("Acme"));
        QCOMPARE(str(camera.model), QByteArray("Model X"));
        QCOMPARE(str(camera.serial), QByteArray("SN-17"));
        // No user-defined name: the model and serial name the camera.
        QCOMPARE(str(camera.identity), QByteArray("Model X SN-17"));
        const SDeviceInfo& comm = camera.comm;
        QCOMPARE(str(comm.interfaceName), QByteArray("USB3Vision"));
        QCOMPARE(str(comm.deviceName), QByteArray("2-1.4"));
        QCOMPARE(str(comm.baseType), QByteArray("USB3-Vision"));
        QCOMPARE(str(comm.iconName), QByteArray("USB"));
        QCOMPARE(parameter(comm, "Vendor"), QByteArray("Acme"));
        QCOMPARE(parameter(comm, "Model"), QByteArray("Model X"));
        QCOMPARE(parameter(comm, "Serial"), QByteArray("SN-17"));
        QCOMPARE(parameter(comm, "GUID"), QByteArray());
        QCOMPARE(parameter(comm, "BusPath"), QByteArray("2-1.4"));
        for (const char* name : {"Vendor", "Model", "Serial", "GUID", "BusPath"})
            QCOMPARE(comm.parameters[CString(name)].editLevel, CParameters::EDIT_NEVER);
        QCOMPARE(str(camera.video.deviceName), QByteArray("2-1.4"));
        // Aravis cannot read a fake camera's strings, as with a real one that does not answer.
        QVERIFY(!camera.canConnect && !comm.canConnect);
        QCOMPARE(str(camera.errorSummary), QByteArray("No answer"));
        QVERIFY2(str(camera.errorMessage)
                     .contains("Acme Model X (serial number SN-17) on USB port "
                               "2-1.4 is plugged in but cannot be opened"),
            camera.errorMessage.c_str());
        TArray<SDeviceInfo> devices;
        QVERIFY(usb3()->findDevices(devices, {}));
        QCOMPARE(devices.count(), 1);
        QCOMPARE(str(devices[0].errorSummary), QByteArray("No answer"));
    }

    void aCameraTheUserMayNotOpenSaysWhatToDo()
    {
        U3V_AS_NOBODY();
        QVERIFY(m_world.PlugCamera("3-2", 3, 12, "Acme", "Model Y", "SN-5"));
        QCOMPARE(::chmod("/dev/bus/usb/003/012", 0), 0);
        const TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        const SCameraInfo& camera = found[0];
        QVERIFY(!camera.canConnect);
        QCOMPARE(str(camera.errorSummary), QByteArray("No permission"));
        const QByteArray message = str(camera.errorMessage);
        const QByteArray group = str(platform::OwningGroup("/dev/bus/usb/003/012"));
        QVERIFY(!group.isEmpty());
        QVERIFY2(message.contains("/dev/bus/usb/003/012"), message.constData());
        QVERIFY2(message.contains("the group \"" + group + "\""), message.constData());
        QVERIFY2(message.contains(CU3VSysfs::UdevRule), message.constData());
        QVERIFY2(message.contains(CU3VSysfs::UdevRuleFile), message.constData());
        QCOMPARE(parameter(camera.comm, "BusPath"), QByteArray("3-2"));
    }

    void aKnownModelGetsItsCameraType()
    {
        // The default emulator world's catalogue lists this model.
        QVERIFY(m_world.PlugCamera("1-3", 1, 4, "Quillsby", "Fjord 1280 U3", "Q-1"));
        const TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        QCOMPARE(str(found[0].name), QByteArray("Fjord1280"));
        QCOMPARE(str(found[0].displayName), QByteArray("Fjord 1280 USB"));
        QCOMPARE(str(found[0].controller), QByteArray("Generic"));
        QCOMPARE(str(found[0].serial), QByteArray("Q-1"));
    }

    void theKernelShowsOnlyUsb3VisionCamerasAndTheirClaims()
    {
        QVERIFY(m_world.PlugCamera("2-1", 2, 3, "Acme", "Model X", "A"));
        QVERIFY(m_world.PlugCamera("2-2", 2, 4, "Acme", "Model X", "B"));
        m_world.ClaimCamera("2-2", 2);
        // A webcam announces interface associations too, but has no USB3 Vision interfaces.
        QVERIFY(m_world.Add(
            "P: /devices/pci0000:00/usb2/2-3\nN: bus/usb/002/005\nE: DEVTYPE=usb_device\n"
            "E: SUBSYSTEM=usb\nA: bDeviceClass=ef\nA: bDeviceSubClass=02\nA: bDeviceProtocol=01\n"
            "A: busnum=2\nA: devnum=5\nA: product=Webcam\n\n"
            "P: /devices/pci0000:00/usb2/2-3/2-3:1.0\nE: DEVTYPE=usb_interface\n"
            "E: SUBSYSTEM=usb\nA: bInterfaceClass=0e\nA: bInterfaceSubClass=01\n"
            "A: bInterfaceProtocol=00\n"));
        const TArray<SU3VCamera> plugged = CU3VSysfs::Cameras();
        QCOMPARE(plugged.count(), 2);
        const bool inOrder = plugged[0].busPath == CString("2-1");
        const SU3VCamera& unclaimed = plugged[inOrder ? 0 : 1];
        const SU3VCamera& claimed = plugged[inOrder ? 1 : 0];
        QCOMPARE(str(unclaimed.busPath), QByteArray("2-1"));
        QCOMPARE(str(unclaimed.serial), QByteArray("A"));
        QCOMPARE(str(unclaimed.node), QByteArray("/dev/bus/usb/002/003"));
        QVERIFY(!unclaimed.claimed);
        QCOMPARE(str(claimed.busPath), QByteArray("2-2"));
        QCOMPARE(str(claimed.node), QByteArray("/dev/bus/usb/002/004"));
        QVERIFY(claimed.claimed);
    }

    void accessProblemNamesTheNodeItsGroupAndWhatToDo()
    {
        U3V_AS_NOBODY();
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        const QByteArray open = makeFile(folder, "open", 0600);
        const QByteArray readOnly = makeFile(folder, "read-only", 0400);
        const QByteArray closed = makeFile(folder, "closed", 0);
        QVERIFY(!open.isEmpty() && !readOnly.isEmpty() && !closed.isEmpty());
        QVERIFY(CU3VSysfs::AccessProblem(open.constData()).first.empty());
        QVERIFY(CU3VSysfs::AccessProblem(open.constData()).second.empty());
        // A missing node is not a question of permission; opening says it is missing.
        QVERIFY(CU3VSysfs::AccessProblem((open + "-missing").constData()).first.empty());
        struct stat status { };
        QCOMPARE(::stat(closed.constData(), &status), 0);
        const group* owner = ::getgrgid(status.st_gid);
        QVERIFY(owner);
        QCOMPARE(str(platform::OwningGroup(closed.constData())), QByteArray(owner->gr_name));
        for (const QByteArray& path : {readOnly, closed}) {
            const auto [summary, message] = CU3VSysfs::AccessProblem(path.constData());
            QCOMPARE(str(summary), QByteArray("No permission"));
            QVERIFY2(str(message).contains(path), message.c_str());
            QVERIFY2(str(message).contains(QByteArray("group \"") + owner->gr_name + "\""),
                message.c_str());
            QVERIFY2(str(message).contains(CU3VSysfs::UdevRule), message.c_str());
            QVERIFY2(str(message).contains(CU3VSysfs::UdevRuleFile), message.c_str());
            // Joining the owning group is offered, unless it is root's.
            QCOMPARE(str(message).contains("usermod -aG"), status.st_gid != 0);
        }
    }

    void theUdevRuleMatchesUsb3VisionControlInterfaces()
    {
        const QByteArray rule(CU3VSysfs::UdevRule);
        QVERIFY(rule.contains("SUBSYSTEM==\"usb\""));
        QVERIFY(rule.contains("ENV{ID_USB_INTERFACES}==\"*:ef0500:*\""));
        QVERIFY(rule.contains("TAG+=\"uaccess\""));
        // The tag works only in a rule file read before 73-seat-late.rules.
        QVERIFY(QByteArray(CU3VSysfs::UdevRuleFile).startsWith("/etc/udev/rules.d/70-"));
    }

    void eachStateHasItsReason_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QByteArray>("summary");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("free") << int(SU3VCamera::STATE_FREE) << QByteArray() << QByteArray();
        QTest::newRow("in use") << int(SU3VCamera::STATE_IN_USE) << QByteArray("In use")
                                << QByteArray("Another program has the camera Acme Model X "
                                              "(serial number 9) on USB port 4-1 open.");
        QTest::newRow("in use here")
            << int(SU3VCamera::STATE_IN_USE_HERE) << QByteArray("In use by this program")
            << QByteArray("close that connection first");
        QTest::newRow("missing") << int(SU3VCamera::STATE_MISSING) << QByteArray("Not plugged in")
                                 << QByteArray("is not plugged in");
        QTest::newRow("no answer") << int(SU3VCamera::STATE_NO_ANSWER) << QByteArray("No answer")
                                   << QByteArray("cannot be opened (Aravis said so).");
    }
    void eachStateHasItsReason()
    {
        QFETCH(int, state);
        QFETCH(QByteArray, summary);
        QFETCH(QByteArray, message);
        SU3VCamera camera;
        camera.vendor = "Acme";
        camera.model = "Model X";
        camera.serial = "9";
        camera.busPath = "4-1";
        camera.reason = "Aravis said so";
        camera.state = SU3VCamera::EState(state);
        const auto [givenSummary, givenMessage] = CU3VInterface::Diagnosis(camera);
        QCOMPARE(str(givenSummary), summary);
        QVERIFY2(str(givenMessage).contains(message), givenMessage.c_str());
        QCOMPARE(givenMessage.empty(), message.isEmpty());
    }

private:
    CFakeWorld m_world;
};

QTEST_GUILESS_MAIN(tst_CU3VInterface)
#include "tst_cu3vinterface.moc"
