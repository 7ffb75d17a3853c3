// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/TArray.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CInterfaces.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QFileInfo>
#include <QImage>
#include <QTest>

namespace {

QString picture(const kiv::CString& iconName)
{
    return ":/data/images/" + QString::fromUtf8(iconName.c_str()) + ".png";
}

void verifyPicture(const kiv::CString& iconName)
{
    QVERIFY2(!iconName.empty(), "an empty icon name");
    const QImage image(picture(iconName));
    QVERIFY2(!image.isNull(), qPrintable(picture(iconName)));
    QVERIFY(image.width() >= 32 && image.height() >= 32);
}

} // namespace

// Every icon name of the default emulated world has a picture in the library's resources.
class tst_Pictures : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        kivcamuiInitPlugin();
        kiv::cam::interfaces()->setEnableEmulators(true);
        kiv::cam::CCameraFinder::setEnableEmulators(true);
    }
    void transportKinds()
    {
        for (const char* kind :
            {"CameraLink", "CoaXPress", "Emulator", "Ethernet", "FrameGrabber", "Serial", "USB"})
            verifyPicture(kind);
    }
    void cameraTypes()
    {
        QVERIFY(kiv::cam::cameras()->cameraCount() > 0);
        for (int i = 0; i < kiv::cam::cameras()->cameraCount(); ++i)
            verifyPicture(kiv::cam::cameras()->cameraAt(i)->iconName);
    }
    void transports()
    {
        QVERIFY(kiv::cam::interfaces()->interfaceCount() > 0);
        for (int i = 0; i < kiv::cam::interfaces()->interfaceCount(); ++i) {
            const auto transport = kiv::cam::interfaces()->interfaceAt(i);
            verifyPicture(transport->icon);
            verifyPicture(transport->defaultDevice.iconName);
        }
    }
    void devicesAndCameras()
    {
        kiv::TArray<kiv::cam::SDeviceInfo> devices;
        kiv::cam::interfaces()->findDevices(devices, kiv::cam::CInterfaces::FIND_PRESENT);
        QVERIFY(!devices.empty());
        for (const kiv::cam::SDeviceInfo& device : devices)
            verifyPicture(device.iconName);
        kiv::cam::CCameraFinder finder;
        finder.Find(kiv::cam::CCameraFinder::FIND_COMM);
        QVERIFY(finder.size() > 0);
        for (std::uint64_t i = 0; i < finder.size(); ++i)
            verifyPicture(finder.at(i).iconName);
    }
};

QTEST_MAIN(tst_Pictures)
#include "tst_pictures.moc"
