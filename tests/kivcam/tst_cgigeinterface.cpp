// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GigETest.h"

#include <kivcam/CCameraFinder.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/gige/CGigEDevice.h>
#include <kivcam/gige/CGigEInterface.h>

#include <QElapsedTimer>
#include <QtTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace gigetest;

namespace {

TSharedPtr<IInterface> gige()
{
    return interfaces()->interfaceByName("GigE");
}

TArray<SCameraInfo> camerasFound()
{
    TArray<SCameraInfo> cameras;
    gige()->findCameras(cameras, {});
    return cameras;
}

// Listens for discovery broadcasts on the loopback adapter, as a camera does.
class CListener {
public:
    CListener()
    {
        m_socket = ::socket(AF_INET, SOCK_DGRAM, 0);
        const int on = 1;
        ::setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in local{};
        local.sin_family = AF_INET;
        local.sin_addr.s_addr = htonl(INADDR_BROADCAST);
        local.sin_port = htons(3956);
        m_bound = ::bind(m_socket, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0;
    }
    ~CListener() { ::close(m_socket); }
    bool bound() const { return m_bound; }
    bool heardSomething(int waitMs)
    {
        pollfd ready{m_socket, POLLIN, 0};
        return ::poll(&ready, 1, waitMs) > 0;
    }

private:
    int m_socket = -1;
    bool m_bound = false;
};

} // namespace

class tst_CGigEInterface : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(BringUpLoopback());
        qputenv("KIVCAM_GIGE_DISCOVERY_MS", "300");
        QVERIFY(gige());
    }
    void init() { qputenv("KIVCAM_GIGE_INTERFACES", "lo"); }

    void describesItself()
    {
        const TSharedPtr<IInterface> transport = gige();
        QCOMPARE(str(transport->baseType), QByteArray("GigE-Vision"));
        QCOMPARE(str(transport->icon), QByteArray("Ethernet"));
        QVERIFY(transport->comm && transport->video && !transport->isEmulator);
        QCOMPARE(parameter(transport->defaultDevice, "Address"), QByteArray("192.168.1.20"));
        QCOMPARE(parameter(transport->defaultDevice, "Adapter"), QByteArray(""));
    }

    void sendsNothingUnlessAdaptersAreNamed()
    {
        CListener listener;
        QVERIFY(listener.bound());
        qunsetenv("KIVCAM_GIGE_INTERFACES");
        QElapsedTimer timer;
        timer.start();
        QVERIFY(camerasFound().empty());
        TArray<SDeviceInfo> devices;
        QVERIFY(gige()->findDevices(devices, {}));
        QVERIFY(devices.empty());
        QVERIFY(timer.elapsed() < 300);
        QVERIFY(!listener.heardSomething(200));
        // An adapter that is named is searched, as the listener hears.
        qputenv("KIVCAM_GIGE_INTERFACES", "lo");
        camerasFound();
        QVERIFY(listener.heardSomething(200));
    }

    void aFoundCameraCarriesItsIdentityAndAddresses()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2,Model B,bench left"});
        QVERIFY(cameras);
        const TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        const SCameraInfo& camera = found[0];
        QCOMPARE(str(camera.name), QByteArray("GigE Vision camera"));
        QCOMPARE(str(camera.displayName), QByteArray("Aravis Model B"));
        QCOMPARE(str(camera.vendor), QByteArray("Aravis"));
        QCOMPARE(str(camera.model), QByteArray("Model B"));
        QCOMPARE(str(camera.serial), QByteArray("GV-B"));
        QCOMPARE(str(camera.identity), QByteArray("bench left"));
        QCOMPARE(str(camera.controller), QByteArray("GenICam"));
        QVERIFY(camera.canConnect);
        QVERIFY(camera.errorSummary.empty());
        const SDeviceInfo& comm = camera.comm;
        QCOMPARE(str(comm.interfaceName), QByteArray("GigE"));
        QCOMPARE(str(comm.baseType), QByteArray("GigE-Vision"));
        QCOMPARE(str(comm.deviceName), QByteArray("02:00:00:00:00:b2"));
        QCOMPARE(parameter(comm, "MAC"), QByteArray("02:00:00:00:00:b2"));
        QCOMPARE(parameter(comm, "Address"), QByteArray("127.0.0.2"));
        // Aravis's fake camera gives no subnet mask.
        QCOMPARE(parameter(comm, "SubnetMask"), QByteArray("0.0.0.0"));
        QCOMPARE(parameter(comm, "Gateway"), QByteArray("0.0.0.0"));
        QCOMPARE(parameter(comm, "Adapter"), QByteArray("lo"));
        QCOMPARE(parameter(comm, "AdapterAddress"), QByteArray("127.0.0.1/255.0.0.0"));
        QCOMPARE(comm.parameters[CString("Address")].editLevel, CParameters::EDIT_NEVER);
        QVERIFY(comm.canConnect);
        // The images come through the same connection.
        QCOMPARE(str(camera.video.deviceName), str(comm.deviceName));

        TArray<SDeviceInfo> devices;
        QVERIFY(gige()->findDevices(devices, {}));
        QCOMPARE(devices.count(), 1);
        QCOMPARE(str(devices[0].deviceName), QByteArray("02:00:00:00:00:b2"));
    }

    void aKnownModelGetsItsCatalogueType()
    {
        // The emulator's default world has a camera type listing this model.
        const auto cameras = startCameras({"127.0.0.1,DR-1,0200000000d1,Drift 1280 GE"});
        QVERIFY(cameras);
        const TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        QCOMPARE(str(found[0].name), QByteArray("Drift1280"));
        QCOMPARE(str(found[0].displayName), QByteArray("Drift 1280"));
        QCOMPARE(str(found[0].iconName), QByteArray("Drift"));
        QCOMPARE(found[0].width, std::uint16_t{1280});
        // Without a user-defined name, the camera is known by its model and serial.
        QCOMPARE(str(found[0].identity), QByteArray("Drift 1280 GE DR-1"));
    }

    void theCameraFinderListsThemAsConnectable()
    {
        const auto cameras = startCameras(
            {"127.0.0.1,GV-A,0200000000a1,Model A", "127.0.0.2,GV-B,0200000000b2,Model B"});
        QVERIFY(cameras);
        CCameraFinder finder;
        CCameraFinder::setEnableEmulators(false);
        QVERIFY(finder.Find(CCameraFinder::FIND_COMPLETE));
        QCOMPARE(finder.size(), std::uint64_t{2});
        for (std::uint64_t i = 0; i < finder.size(); ++i) {
            const SCameraInfo camera = finder.at(i);
            QVERIFY2(camera.canConnect, camera.errorMessage.c_str());
        }
    }

    void aCameraHeldByAnotherProgramSaysSo()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        CPeer holder;
        QVERIFY2(holder.Start(QStringLiteral("gige-holder"), {"127.0.0.2", "lo"}, "held"),
            holder.line().constData());
        const TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        QVERIFY(!found[0].canConnect);
        QCOMPARE(str(found[0].errorSummary), QByteArray("In use by another host"));
        QVERIFY2(str(found[0].errorMessage).contains("controlled by another host or program"),
            found[0].errorMessage.c_str());
        QVERIFY(!found[0].comm.canConnect);

        // Once the other program lets go, the camera is free again.
        holder.Stop();
        const TArray<SCameraInfo> again = camerasFound();
        QCOMPARE(again.count(), 1);
        QVERIFY2(again[0].canConnect, again[0].errorMessage.c_str());
    }

    void aCameraThisProgramHoldsSaysSo()
    {
        const auto cameras = startCameras({"127.0.0.1,GV-A,0200000000a1"});
        QVERIFY(cameras);
        TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        CGigEDevice device;
        QVERIFY2(device.open(found[0].comm, true), device.errorMessage().c_str());
        found = camerasFound();
        QCOMPARE(found.count(), 1);
        QVERIFY(!found[0].canConnect);
        QCOMPARE(str(found[0].errorSummary), QByteArray("In use by this program"));
        device.close();
        found = camerasFound();
        QVERIFY(found[0].canConnect);
    }

    void aCameraOnAnotherSubnetIsListedAndCanBeMovedIntoOurs()
    {
        qputenv("KIVCAM_GIGE_INTERFACES", "veth0 lo");
        const auto far
            = startFarCamera(QStringLiteral("10.0.0.1/24"), QStringLiteral("192.168.5.20/24"),
                QStringLiteral("0200000000aa"), QStringLiteral("FAR-1"));
        QVERIFY(far);
        TArray<SCameraInfo> found = camerasFound();
        QCOMPARE(found.count(), 1);
        const SCameraInfo& camera = found[0];
        QVERIFY(!camera.canConnect);
        QCOMPARE(str(camera.errorSummary), QByteArray("Wrong subnet"));
        const QByteArray message = str(camera.errorMessage);
        for (const char* part : {"192.168.5.20 (netmask 255.255.255.0)",
                 "10.0.0.1 (netmask 255.255.255.0)", "\"veth0\"", "02:00:00:00:00:aa"})
            QVERIFY2(message.contains(part), message.constData());
        QCOMPARE(parameter(camera.comm, "Adapter"), QByteArray("veth0"));

        // The camera finder keeps the transport's own reasons.
        CCameraFinder finder;
        CCameraFinder::setEnableEmulators(false);
        finder.Find(CCameraFinder::FIND_COMM);
        QCOMPARE(finder.size(), std::uint64_t{1});
        QCOMPARE(str(finder.at(0).errorSummary), QByteArray("Wrong subnet"));

        CString error;
        QVERIFY2(CGigEInterface::ForceIp(camera.comm, "10.0.0.20", "255.255.255.0", "", error),
            error.c_str());
        found = camerasFound();
        QCOMPARE(found.count(), 1);
        QVERIFY2(found[0].canConnect, found[0].errorMessage.c_str());
        QCOMPARE(parameter(found[0].comm, "Address"), QByteArray("10.0.0.20"));
    }

    void forceIpOnlyThroughAllowedAdapters()
    {
        SDeviceInfo record = gige()->defaultDevice;
        record.parameters.Add(CParameters::CEntry(
            "MAC", "MAC", "", CParameters::EDIT_NEVER, CVariant("02:00:00:00:00:aa")));
        record.parameters[CString("Adapter")].setValue(CVariant("veth0"));
        CString error;
        QVERIFY(!CGigEInterface::ForceIp(record, "10.0.0.20", "255.255.255.0", "", error));
        QVERIFY2(str(error).contains("not among those GigE Vision may use"), error.c_str());
        // A record without a MAC address names no camera.
        QVERIFY(!CGigEInterface::ForceIp(
            gige()->defaultDevice, "10.0.0.20", "255.255.255.0", "", error));
        QVERIFY2(str(error).contains("MAC"), error.c_str());
        qputenv("KIVCAM_GIGE_INTERFACES", "*");
        record.parameters[CString("Adapter")].setValue(CVariant("lo"));
        QVERIFY(!CGigEInterface::ForceIp(record, "10.0.0.x", "255.255.255.0", "", error));
        QVERIFY2(str(error).contains("10.0.0.x"), error.c_str());
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CGigEInterface)
#include "tst_cgigeinterface.moc"
