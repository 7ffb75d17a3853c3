#include "GigETest.h"

#include <kivcam/CControllerFactory.h>
#include <kivcam/gige/CGigEController.h>
#include <kivcam/gige/CGigEDevice.h>

#include <QtTest>

using namespace gigetest;

namespace {

SDeviceInfo record(const char* address)
{
    SDeviceInfo device;
    device.interfaceName = "GigE";
    device.parameters.Add(CParameters::CEntry(
        "Address", "IP address", "", CParameters::EDIT_ALWAYS, CVariant(address)));
    device.parameters.Add(
        CParameters::CEntry("Adapter", "Adapter", "", CParameters::EDIT_ALWAYS, CVariant("lo")));
    return device;
}

SCameraInfo camera(const char* model)
{
    SCameraInfo info;
    info.model = model;
    return info;
}

class CNotGigE : public IDevice {
public:
    bool open(SDeviceInfo, bool) override { return true; }
    void close() override { }
    bool isOpen() const override { return true; }
    const SDeviceInfo& info() const override { return m_info; }

private:
    SDeviceInfo m_info;
};

} // namespace

class tst_CGigEController : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        NETNS_REQUIRE();
        QVERIFY(netns::ip({"link", "set", "lo", "up"}));
        qputenv("KIVCAM_GIGE_INTERFACES", "lo");
    }

    void theCatalogueMakesIt()
    {
        const TSharedPtr<IController> controller
            = controllerFactory()->createController("GigE Vision");
        QVERIFY(controller);
        QCOMPARE(str(controller->name()), QByteArray("GigE Vision"));
        QVERIFY(!controller->isConnected());
    }

    void connectsThroughAnOpenDeviceToTheCameraItNames()
    {
        const auto cameras = startCameras({"127.0.0.1,GV-A,0200000000a1,Model A"});
        QVERIFY(cameras);
        TSharedPtr<IDevice> device(new CGigEDevice);
        QVERIFY(device->open(record("127.0.0.1"), true));
        CGigEController controller;
        QVERIFY(controller.connect(device, camera("Model A")));
        QVERIFY(controller.isConnected());
        controller.disconnect();
        QVERIFY(!controller.isConnected());
        // A description without a model takes the camera as it is.
        QVERIFY(controller.connect(device, camera("")));
        // Another model is another camera.
        QVERIFY(!controller.connect(device, camera("Model Z")));
        QVERIFY(!controller.isConnected());
    }

    void refusesWhatIsNoOpenGigEDevice()
    {
        CGigEController controller;
        QVERIFY(!controller.connect({}, camera("")));
        QVERIFY(!controller.connect(TSharedPtr<IDevice>(new CNotGigE), camera("")));
        QVERIFY(!controller.connect(TSharedPtr<IDevice>(new CGigEDevice), camera("")));
        QVERIFY(!controller.isConnected());
    }
};

KIVCAM_NETWORK_TEST_MAIN(tst_CGigEController)
#include "tst_cgigecontroller.moc"
