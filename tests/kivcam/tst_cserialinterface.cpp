// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/CInterfaces.h>
#include <kivcam/serial/CSerialInterface.h>

#include <QtTest>

#include <umockdev.h>

using namespace kiv;
using namespace kiv::cam;

namespace {

QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

QByteArray parameter(const SDeviceInfo& device, const char* name)
{
    return device.parameters.Exists(name) ? str(device.parameters[CString(name)].value().ToString())
                                          : QByteArray("<none>");
}

TSharedPtr<IInterface> serial()
{
    return interfaces()->interfaceByName("Serial");
}

const SDeviceInfo* byName(const TArray<SDeviceInfo>& devices, const char* name)
{
    for (const SDeviceInfo& device : devices) {
        if (device.deviceName == CString(name))
            return &device;
    }
    return nullptr;
}

} // namespace

// The ports are a fake udev world (umockdev), so the test needs no hardware: CTest runs it
// through umockdev-wrapper, which shows the test the world it builds instead of the machine's.
class tst_CSerialInterface : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!qgetenv("LD_PRELOAD").contains("libumockdev-preload"))
            QSKIP("Run through umockdev-wrapper, which gives the test a fake udev world");
        m_world = umockdev_testbed_new();
        gchar* usb = umockdev_testbed_add_device(m_world, "usb", "1-2", nullptr,
            // attributes
            "idVendor", "0403", "idProduct", "6001", "manufacturer", "FTDI", "product",
            "FT232R USB UART", "serial", "A1B2C3", nullptr,
            // properties
            "DEVTYPE", "usb_device", "ID_VENDOR_ID", "0403", "ID_MODEL_ID", "6001", nullptr);
        QVERIFY(usb);
        gchar* tty = umockdev_testbed_add_device(m_world, "tty", "ttyUSB0", usb, "dev", "188:0",
            nullptr, "DEVNAME", "/dev/ttyUSB0", "ID_VENDOR", "FTDI", "ID_VENDOR_FROM_DATABASE",
            "Future Technology Devices International, Ltd", "ID_MODEL", "FT232R_USB_UART",
            "ID_MODEL_FROM_DATABASE", "FT232 Serial (UART) IC", "ID_SERIAL_SHORT", "A1B2C3",
            "ID_VENDOR_ID", "0403", "ID_MODEL_ID", "6001", nullptr);
        QVERIFY(tty);
        g_free(tty);
        g_free(usb);
    }
    void cleanupTestCase()
    {
        if (m_world)
            g_object_unref(m_world);
    }

    void describesItself()
    {
        const TSharedPtr<IInterface> transport = serial();
        QVERIFY(transport);
        QCOMPARE(str(transport->baseType), QByteArray("Serial"));
        QCOMPARE(str(transport->icon), QByteArray("Serial"));
        QVERIFY(transport->comm && !transport->video && !transport->isEmulator);
        const SDeviceInfo& custom = transport->defaultDevice;
        QCOMPARE(parameter(custom, "Control"), QByteArray("/dev/ttyUSB0"));
        QCOMPARE(custom.parameters[CString("Control")].editLevel, CParameters::EDIT_ALWAYS);
        QCOMPARE(parameter(custom, "BaudRate"), QByteArray("9600"));
        const CVariant rates = custom.parameters[CString("BaudRate")].value();
        QCOMPARE(rates.getType(), CVariant::TYPE_ENUM);
        QVERIFY(rates.IsEnumValueValid(115200));
        QVERIFY(!rates.IsEnumValueValid(12345));
    }

    void listsThePortsWithWhatUdevKnows()
    {
        TArray<SDeviceInfo> devices;
        QVERIFY(serial()->findDevices(devices, {}));
        const SDeviceInfo* port = byName(devices, "ttyUSB0");
        QVERIFY2(port, QByteArray::number(devices.count()).constData());
        QCOMPARE(str(port->interfaceName), QByteArray("Serial"));
        QCOMPARE(str(port->baseType), QByteArray("Serial"));
        QCOMPARE(str(port->iconName), QByteArray("Serial"));
        QCOMPARE(parameter(*port, "Control"), QByteArray("/dev/ttyUSB0"));
        QCOMPARE(parameter(*port, "SerialNumber"), QByteArray("A1B2C3"));
        QCOMPARE(parameter(*port, "VendorId"), QByteArray("0403"));
        QCOMPARE(parameter(*port, "ProductId"), QByteArray("6001"));
        QVERIFY(!parameter(*port, "Description").isEmpty());
        QVERIFY(!parameter(*port, "Manufacturer").isEmpty());
        QVERIFY2(str(port->description).contains("(USB 0403:6001)"), port->description.c_str());
        QCOMPARE(parameter(*port, "BaudRate"), QByteArray("9600"));
        // Found ports are fixed; only their speed is the user's.
        QCOMPARE(port->parameters[CString("Control")].editLevel, CParameters::EDIT_NEVER);
        QCOMPARE(port->parameters[CString("BaudRate")].editLevel, CParameters::EDIT_CUSTOM);
        QCOMPARE(port->parameters[CString("VendorId")].editLevel, CParameters::EDIT_NEVER);
    }

    void portsHaveNoCamerasOfTheirOwn()
    {
        TArray<SCameraInfo> cameras;
        QVERIFY(serial()->findCameras(cameras, {}));
        QVERIFY(cameras.empty());
    }

private:
    UMockdevTestbed* m_world = nullptr;
};

QTEST_GUILESS_MAIN(tst_CSerialInterface)
#include "tst_cserialinterface.moc"
