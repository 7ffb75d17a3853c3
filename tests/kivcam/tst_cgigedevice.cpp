// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "GigETest.h"

#include <kivcam/CControllerFactory.h>
#include <kivcam/IGenICamController.h>
#include <kivcam/gige/CGigEDevice.h>
#include <kivcam/gige/CGvcpChannel.h>
#include <kivcam/gige/Gvcp.h>
#include <kivcam/network/CNetworkAdapters.h>

#include <QElapsedTimer>
#include <QtTest>

#include <mutex>
#include <thread>

using namespace gigetest;

namespace {

SDeviceInfo record(const char* address, const char* adapter = "lo")
{
    SDeviceInfo device;
    device.interfaceName = "GigE";
    device.parameters.Add(CParameters::CEntry(
        "Address", "IP address", "", CParameters::EDIT_ALWAYS, CVariant(address)));
    device.parameters.Add(
        CParameters::CEntry("Adapter", "Adapter", "", CParameters::EDIT_ALWAYS, CVariant(adapter)));
    return device;
}

// The camera's control channel privilege register, read as a stranger would.
std::uint32_t privilege(const char* address)
{
    SNetworkAdapter lo;
    CNetworkAdapters::Find("lo", lo);
    std::uint32_t camera = 0;
    CNetworkAdapters::ParseAddress(address, camera);
    CGvcpChannel channel;
    CString error;
    std::uint32_t value = 0xDEAD;
    std::uint16_t status = 0;
    if (!channel.Open(lo, camera, error)
        || channel.ReadRegister(gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, value, status)
            != CGvcpChannel::OK)
        return 0xDEAD;
    return value;
}

class CLostLog : public IGenICamListener {
public:
    void treeChanged() override { }
    void featuresChanged(const TArray<SGenICamFeature>&) override { }
    void connectionLost(const CString& message) override
    {
        std::lock_guard lock(m_mutex);
        m_message += str(message);
    }
    QByteArray message()
    {
        std::lock_guard lock(m_mutex);
        return m_message;
    }

private:
    std::mutex m_mutex;
    QByteArray m_message;
};

class CFrameCount : public IFrameListener {
public:
    void streamStarted(const SCameraInfo&) override { }
    void frameArrived(const TSharedPtr<const CImage>&) override { ++m_count; }
    void streamStopped() override { }
    int count() const { return m_count; }

private:
    std::atomic<int> m_count{0};
};

} // namespace

class tst_CGigEDevice : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(BringUpLoopback());
    }
    void init() { qputenv("KIVCAM_GIGE_INTERFACES", "lo"); }

    void openTakesControlAndCloseGivesItBack()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        QCOMPARE(privilege("127.0.0.2"), 0u);
        CGigEDevice device;
        QVERIFY2(device.open(record("127.0.0.2"), false), device.errorMessage().c_str());
        QVERIFY(device.isOpen());
        QVERIFY(device.hasControl());
        QVERIFY(device.errorMessage().empty());
        QCOMPARE(parameter(device.info(), "Address"), QByteArray("127.0.0.2"));
        QCOMPARE(privilege("127.0.0.2"), std::uint32_t{gvcp::PRIVILEGE_CONTROL});
        QVERIFY(CGigEDevice::ControlledHere(0x7F000002));
        device.close();
        QVERIFY(!device.isOpen());
        QCOMPARE(privilege("127.0.0.2"), 0u);
        QVERIFY(!CGigEDevice::ControlledHere(0x7F000002));
    }

    void exclusiveUseAsksForExclusiveControl()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        CGigEDevice device;
        QVERIFY2(device.open(record("127.0.0.2"), true), device.errorMessage().c_str());
        QCOMPARE(privilege("127.0.0.2"), std::uint32_t{gvcp::PRIVILEGE_EXCLUSIVE});
    }

    void aSecondOpenerIsRefusedUntilTheFirstCloses()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        CGigEDevice first;
        QVERIFY(first.open(record("127.0.0.2"), true));
        CGigEDevice second;
        QVERIFY(!second.open(record("127.0.0.2"), true));
        QVERIFY2(str(second.errorMessage())
                     .contains("This program controls the camera at "
                               "127.0.0.2 already"),
            second.errorMessage().c_str());
        QVERIFY(!first.open(record("127.0.0.2"), true));
        QVERIFY2(str(first.errorMessage()).contains("open already"), first.errorMessage().c_str());
        QVERIFY(first.isOpen());
        first.close();
        QVERIFY2(second.open(record("127.0.0.2"), true), second.errorMessage().c_str());
    }

    void anotherProgramsControlIsRespected()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        CPeer holder;
        QVERIFY(holder.Start(QStringLiteral("gige-holder"), {"127.0.0.2", "lo"}, "held"));
        CGigEDevice device;
        QVERIFY(!device.open(record("127.0.0.2"), true));
        QVERIFY2(str(device.errorMessage()).contains("controlled by another host or program"),
            device.errorMessage().c_str());
        holder.Stop();
        QVERIFY2(device.open(record("127.0.0.2"), true), device.errorMessage().c_str());
        // And this program's control is respected by the other.
        CPeer refused;
        QVERIFY(refused.Start(QStringLiteral("gige-holder"), {"127.0.0.2", "lo"}, "refused"));
    }

    void theHeartbeatKeepsControl()
    {
        // The camera would give control up after 600 ms without a sign of life; opening raises
        // that to the usual 3 s, well beyond Aravis's heartbeat of a second.
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"}, 600);
        QVERIFY(cameras);
        CGigEDevice device;
        QVERIFY(device.open(record("127.0.0.2"), false));
        std::this_thread::sleep_for(std::chrono::milliseconds(2000));
        QVERIFY(device.hasControl());
        // A stranger still finds the camera held (a camera that had timed out would let it in).
        CPeer stranger;
        QVERIFY(stranger.Start(QStringLiteral("gige-holder"), {"127.0.0.2", "lo"}, "refused"));
    }

    void aCameraThatGoesAwayLosesControl()
    {
        auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"}, 600);
        QVERIFY(cameras);
        CGigEDevice device;
        QVERIFY(device.open(record("127.0.0.2"), false));
        std::mutex mutex;
        QByteArray heard;
        device.setLostHandler([&](const CString& message) {
            std::lock_guard lock(mutex);
            heard += str(message);
        });
        cameras.reset();
        // Aravis gives a silent camera several seconds before it reports control lost.
        QTRY_VERIFY_WITH_TIMEOUT(!device.hasControl(), 20000);
        QVERIFY2(str(device.errorMessage()).contains("Lost control of the camera at 127.0.0.2"),
            device.errorMessage().c_str());
        {
            // Once, with the same words.
            std::lock_guard lock(mutex);
            QCOMPARE(heard, str(device.errorMessage()));
        }
        QVERIFY(device.isOpen());
        device.close();
    }

    // The GenICam controller streams through the device, and hears when the camera is gone.
    void theControllerStreamsAndHearsTheCameraGo()
    {
        CLostLog lost;
        CFrameCount frames;
        auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        TSharedPtr<IDevice> device(new CGigEDevice);
        QVERIFY2(device->open(record("127.0.0.2"), true), device->errorMessage().c_str());
        const TSharedPtr<IController> controller = controllerFactory()->createController("GenICam");
        auto* genicam = dynamic_cast<IGenICamController*>(controller.get());
        QVERIFY(genicam);
        genicam->subscribe(&lost);
        controller->frameSource()->subscribe(&frames);
        QVERIFY2(controller->connect(device, SCameraInfo()), genicam->errorMessage().c_str());
        QVERIFY(genicam->features().count() > 10);
        QTRY_VERIFY_WITH_TIMEOUT(frames.count() >= 3, 10000);
        QVERIFY(controller->frameSource()->statistics().completeFrames >= 3);

        cameras.reset();
        QTRY_VERIFY_WITH_TIMEOUT(!lost.message().isEmpty(), 20000);
        QVERIFY(!genicam->hasControl());
        // Said once: the pictures stop before the heartbeat gives up.
        QVERIFY2(lost.message().startsWith("The images of the camera stopped"),
            lost.message().constData());
        QCOMPARE(str(genicam->errorMessage()), lost.message());
        // Disconnecting a camera that is gone does not wait for it.
        QElapsedTimer timer;
        timer.start();
        controller->disconnect();
        device->close();
        QVERIFY2(timer.elapsed() < 2000, QByteArray::number(timer.elapsed()).constData());
        controller->frameSource()->unsubscribe(&frames);
        genicam->unsubscribe(&lost);
    }

    void refusalsSayWhy_data()
    {
        QTest::addColumn<QByteArray>("allowed");
        QTest::addColumn<QByteArray>("address");
        QTest::addColumn<QByteArray>("adapter");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("off") << QByteArray() << QByteArray("127.0.0.2") << QByteArray("lo")
                             << QByteArray("Set the environment variable KIVCAM_GIGE_INTERFACES");
        QTest::newRow("adapter not allowed")
            << QByteArray("eth7") << QByteArray("127.0.0.2") << QByteArray("lo")
            << QByteArray("The adapter \"lo\" is not among those GigE Vision may use (eth7)");
        QTest::newRow("adapter missing")
            << QByteArray("*") << QByteArray("127.0.0.2") << QByteArray("eth7")
            << QByteArray("\"eth7\" is not there");
        QTest::newRow("not an address") << QByteArray("lo") << QByteArray("camera-1")
                                        << QByteArray("lo") << QByteArray("\"camera-1\" is not");
        QTest::newRow("another subnet")
            << QByteArray("lo") << QByteArray("10.0.0.5") << QByteArray("lo")
            << QByteArray("is not in the subnet of the adapter \"lo\"");
        QTest::newRow("no adapter in its subnet")
            << QByteArray("lo") << QByteArray("10.0.0.5") << QByteArray()
            << QByteArray("None of the adapters GigE Vision may use (lo) is in the subnet");
        QTest::newRow("nobody there")
            << QByteArray("lo") << QByteArray("127.0.0.9") << QByteArray("lo")
            << QByteArray("The camera at 127.0.0.9 does not answer");
    }
    void refusalsSayWhy()
    {
        QFETCH(QByteArray, allowed);
        QFETCH(QByteArray, address);
        QFETCH(QByteArray, adapter);
        QFETCH(QByteArray, reason);
        qputenv("KIVCAM_GIGE_INTERFACES", allowed);
        CGigEDevice device;
        QVERIFY(!device.open(record(address.constData(), adapter.constData()), true));
        QVERIFY(!device.isOpen());
        QVERIFY2(str(device.errorMessage()).contains(reason), device.errorMessage().c_str());
    }

    // A camera that answers its reads with nonsense, or asks for more time without end, is
    // refused within CGvcpChannel::LongestWait and a margin, saying what it did; Aravis, which
    // would wait for it for ever, never sees it.
    void hostileCamerasAreRefusedInTime_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QByteArray>("reason");
        QTest::newRow("pending register reads")
            << "pending"
            << QByteArray("was asked for its control register and kept asking for more time");
        QTest::newRow("pending memory reads")
            << "pending-memory"
            << QByteArray("was asked for where its GenICam file is and kept asking for more time");
        QTest::newRow("garbled answers")
            << "garbled"
            << QByteArray("was asked for its control register and answered only with packets "
                          "that are no valid answer");
    }
    void hostileCamerasAreRefusedInTime()
    {
        QFETCH(QString, mode);
        QFETCH(QByteArray, reason);
        const auto hostile = startHostile(mode);
        QVERIFY(hostile);
        CGigEDevice device;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!device.open(record("127.0.0.1"), false));
        const qint64 elapsed = timer.elapsed();
        qInfo("%s: refused after %lld ms", QTest::currentDataTag(), elapsed);
        QVERIFY(!device.isOpen());
        QVERIFY(!CGigEDevice::ControlledHere(0x7F000001));
        QVERIFY2(str(device.errorMessage()).contains(reason), device.errorMessage().c_str());
        QVERIFY2(str(device.errorMessage()).contains("The camera at 127.0.0.1"),
            device.errorMessage().c_str());
        // Two reads at most, each within LongestWait.
        QVERIFY2(
            elapsed < 2 * CGvcpChannel::LongestWait.count() + 1000, QByteArray::number(elapsed));
    }

    void aHandMadeRecordFindsItsAdapterBySubnet()
    {
        const auto cameras = startCameras({"127.0.0.2,GV-B,0200000000b2"});
        QVERIFY(cameras);
        qputenv("KIVCAM_GIGE_INTERFACES", "*");
        CGigEDevice device;
        QVERIFY2(device.open(record("127.0.0.2", ""), true), device.errorMessage().c_str());
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CGigEDevice)
#include "tst_cgigedevice.moc"
