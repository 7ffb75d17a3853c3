// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "U3VTest.h"

#include <kiv/Platform.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/usb3/CU3VDevice.h>
#include <kivcam/usb3/CU3VSysfs.h>

#include <QtTest>

#include <sys/stat.h>

using namespace u3vtest;

namespace {

// A record of a camera, as a search gives it or a user enters it.
SDeviceInfo record(const char* guid, const char* vendor, const char* model, const char* serial)
{
    SDeviceInfo device = interfaces()->interfaceByName("USB3Vision")->defaultDevice;
    device.parameters[CString("GUID")].setValue(CVariant(CString(guid)));
    device.parameters[CString("Vendor")].setValue(CVariant(CString(vendor)));
    device.parameters[CString("Model")].setValue(CVariant(CString(model)));
    device.parameters[CString("Serial")].setValue(CVariant(CString(serial)));
    return device;
}

// Opens a new device on the record; the reason it gives when it fails, or "open".
QByteArray openingFails(const SDeviceInfo& device)
{
    const TSharedPtr<IDevice> camera = interfaces()->interfaceByName("USB3Vision")->createDevice();
    if (camera->open(device, false))
        return "open";
    return camera->isOpen() ? QByteArray("failed, but is open") : str(camera->errorMessage());
}

} // namespace

class tst_CU3VDevice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { U3V_MAKE_FAKE_WORLD(m_world); }
    void cleanup() { m_world.Clear(); }

    void theTransportMakesUsb3VisionDevices()
    {
        const TSharedPtr<IDevice> device
            = interfaces()->interfaceByName("USB3Vision")->createDevice();
        QVERIFY(dynamic_cast<CU3VDevice*>(device.get()));
        QVERIFY(!device->isOpen());
        QVERIFY(device->errorMessage().empty());
    }

    void aRecordThatNamesNoCameraIsRefused()
    {
        const QByteArray reason = openingFails(record("", "", "", ""));
        QVERIFY2(reason.contains("names no USB3 Vision camera"), reason.constData());
    }

    void aCameraThatIsNotThereIsMissing()
    {
        QByteArray reason = openingFails(record("ABCDEF0123456789", "", "", ""));
        QVERIFY2(reason.contains("camera of GUID ABCDEF0123456789 is not plugged in"),
            reason.constData());
        reason = openingFails(record("", "Acme", "Model Z", "404"));
        QVERIFY2(reason.contains("camera Acme Model Z (serial number 404) is not plugged in"),
            reason.constData());
    }

    void aCameraTheUserMayNotOpenSaysWhatToDo()
    {
        U3V_AS_NOBODY();
        QVERIFY(m_world.PlugCamera("2-4", 2, 9, "Acme", "Model X", "SN-3"));
        QCOMPARE(::chmod("/dev/bus/usb/002/009", 0), 0);
        const QByteArray group = str(platform::OwningGroup("/dev/bus/usb/002/009"));
        QVERIFY(!group.isEmpty());
        // Named by its strings, as a search finds it; or by its GUID alone, which Aravis cannot
        // read from a camera this user may not open.
        for (const SDeviceInfo& device :
            {record("", "Acme", "Model X", "SN-3"), record("ABCDEF0123456789", "", "", "")}) {
            const QByteArray reason = openingFails(device);
            QVERIFY2(reason.contains("may not open the camera's device node /dev/bus/usb/002/009"),
                reason.constData());
            QVERIFY2(reason.contains("the group \"" + group + "\""), reason.constData());
            QVERIFY2(reason.contains(CU3VSysfs::UdevRule), reason.constData());
        }
    }

    void aCameraAnotherProgramHoldsIsInUse()
    {
        QVERIFY(m_world.PlugCamera("1-2", 1, 5, "Acme", "Model X", "SN-8"));
        QCOMPARE(::chmod("/dev/bus/usb/001/005", 0666), 0);
        m_world.ClaimCamera("1-2", 1);
        const QByteArray reason = openingFails(record("", "Acme", "Model X", "SN-8"));
        QVERIFY2(reason.contains("Another program has the camera Acme Model X (serial number SN-8) "
                                 "on USB port 1-2 open"),
            reason.constData());
    }

private:
    CFakeWorld m_world;
};

QTEST_GUILESS_MAIN(tst_CU3VDevice)
#include "tst_cu3vdevice.moc"
