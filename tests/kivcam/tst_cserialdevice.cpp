// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/ICamera.h>
#include <kivcam/IController.h>
#include <kivcam/serial/CSerialDevice.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <fcntl.h>
#include <grp.h>
#include <mutex>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

using namespace kiv;
using namespace kiv::cam;

namespace {

QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

// A port entered by hand: the serial transport's template with the path and speed filled in.
SDeviceInfo port(const QString& path, int baudRate = 9600)
{
    SDeviceInfo device = interfaces()->interfaceByName("Serial")->defaultDevice;
    device.parameters[CString("Control")].setValue(CVariant(path.toUtf8().constData()));
    device.parameters[CString("BaudRate")].setValue(CVariant(baudRate));
    return device;
}

} // namespace

// Every port here is one end of a pseudo-terminal pair that socat makes for the test; the test
// reads and writes the other end.
class tst_CSerialDevice : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_folder.isValid());
        m_near = m_folder.filePath("near");
        m_far = m_folder.filePath("far");
        m_socat.start(QStringLiteral("socat"),
            {QStringLiteral("pty,raw,echo=0,link=") + m_near,
                QStringLiteral("pty,raw,echo=0,link=") + m_far});
        QVERIFY2(m_socat.waitForStarted(10000), "socat is missing");
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_near) && QFile::exists(m_far), 10000);
    }
    void cleanup()
    {
        m_socat.terminate();
        m_socat.waitForFinished(10000);
    }

    void opensThePortWithTheRecordsSettings()
    {
        // Shared use, so that the test can look at the port's settings beside it.
        CSerialDevice device;
        QVERIFY2(device.open(port(m_near, 115200), false), device.errorMessage().c_str());
        QVERIFY(device.isOpen());
        QVERIFY(device.errorMessage().empty());
        QCOMPARE(str(device.info().parameters[CString("BaudRate")].value().ToString()),
            QByteArray("115200"));
        const int probe
            = ::open(QFile::encodeName(m_near).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        QVERIFY(probe >= 0);
        termios settings{};
        QCOMPARE(::tcgetattr(probe, &settings), 0);
        ::close(probe);
        QCOMPARE(::cfgetospeed(&settings), speed_t{B115200});
        QVERIFY(!(settings.c_lflag & ICANON));
        QCOMPARE(settings.c_cflag & CSIZE, tcflag_t{CS8});
    }

    // The other end of the pseudo-terminal closing is the port going away: the lost handler
    // hears it, once, with the port's path; a closed port tells nothing.
    void aPortThatHangsUpIsLost()
    {
        CSerialDevice device;
        QVERIFY2(device.open(port(m_near), true), device.errorMessage().c_str());
        std::mutex mutex;
        QByteArrayList heard;
        device.setLostHandler([&](const CString& reason) {
            const std::lock_guard lock(mutex);
            heard << str(reason);
        });
        m_socat.terminate();
        QVERIFY(m_socat.waitForFinished(10000));
        QTRY_VERIFY([&] {
            const std::lock_guard lock(mutex);
            return !heard.isEmpty();
        }());
        device.close();
        const std::lock_guard lock(mutex);
        QCOMPARE(heard.size(), 1);
        QVERIFY2(
            heard.first().startsWith("The serial port " + QFile::encodeName(m_near) + " went away"),
            heard.first().constData());
    }
    // A camera connected through the port is lost with it: its controller hears the port's
    // words, and stays connected until disconnected.
    void aConnectedCameraLosesItsPort()
    {
        const TSharedPtr<ICamera> type = cameras()->cameraByName("Jasper640");
        QVERIFY(type);
        const TSharedPtr<IController> controller
            = controllerFactory()->createController(type->controller);
        QVERIFY(controller);
        const TSharedPtr<IDevice> device(new CSerialDevice);
        QVERIFY2(device->open(port(m_near), true), device->errorMessage().c_str());
        std::mutex mutex;
        QByteArrayList heard;
        controller->setLostHandler([&](const CString& reason) {
            const std::lock_guard lock(mutex);
            heard << str(reason);
        });
        SCameraInfo camera = type->defaultInfo;
        camera.comm = device->info();
        QVERIFY(controller->connect(device, camera));
        m_socat.terminate();
        QVERIFY(m_socat.waitForFinished(10000));
        QTRY_VERIFY([&] {
            const std::lock_guard lock(mutex);
            return !heard.isEmpty();
        }());
        QVERIFY(controller->isConnected());
        controller->disconnect();
        device->close();
        const std::lock_guard lock(mutex);
        QCOMPARE(heard.size(), 1);
        QVERIFY2(heard.first().startsWith("The serial port " + QFile::encodeName(m_near)),
            heard.first().constData());
    }
    void aClosedPortTellsNothing()
    {
        CSerialDevice device;
        QVERIFY(device.open(port(m_near), true));
        bool heard = false;
        device.setLostHandler([&](const CString&) { heard = true; });
        device.close();
        m_socat.terminate();
        QVERIFY(m_socat.waitForFinished(10000));
        QTest::qWait(100);
        QVERIFY(!heard);
    }

    void bytesGoBothWays()
    {
        CSerialDevice device;
        QVERIFY(device.open(port(m_near), true));
        QVERIFY(device.Write("hello", std::chrono::milliseconds(2000)));
        const int far = ::open(QFile::encodeName(m_far).constData(), O_RDWR | O_NOCTTY);
        QVERIFY(far >= 0);
        termios raw{};
        ::tcgetattr(far, &raw);
        ::cfmakeraw(&raw);
        ::tcsetattr(far, TCSANOW, &raw);
        QByteArray received;
        pollfd ready{far, POLLIN, 0};
        while (received.size() < 5 && ::poll(&ready, 1, 2000) > 0) {
            char buffer[16];
            const ssize_t count = ::read(far, buffer, sizeof buffer);
            if (count <= 0)
                break;
            received.append(buffer, static_cast<int>(count));
        }
        QCOMPARE(received, QByteArray("hello"));
        QCOMPARE(::write(far, "back", 4), ssize_t{4});
        std::string answer;
        for (int i = 0; i < 10 && answer.size() < 4; ++i)
            answer += device.Read(std::chrono::milliseconds(500));
        QCOMPARE(QByteArray::fromStdString(answer), QByteArray("back"));
        ::close(far);
        device.close();
        QVERIFY(!device.Write("x", std::chrono::milliseconds(10)));
        QVERIFY(device.Read(std::chrono::milliseconds(10)).empty());
    }

    void aPortInUseIsBusyUntilClosed()
    {
        CSerialDevice first;
        QVERIFY(first.open(port(m_near), true));
        CSerialDevice second;
        QVERIFY(!second.open(port(m_near), true));
        QVERIFY2(str(second.errorMessage()).contains("is busy"), second.errorMessage().c_str());
        QVERIFY(!first.open(port(m_near), true));
        QVERIFY(str(first.errorMessage()).contains("open already"));
        first.close();
        QVERIFY2(second.open(port(m_near), true), second.errorMessage().c_str());
    }

    void aMissingPortSaysSo()
    {
        CSerialDevice device;
        QVERIFY(!device.open(port(m_folder.filePath("gone")), true));
        QVERIFY2(str(device.errorMessage()).contains("is missing"), device.errorMessage().c_str());
        // Without a path, the device name under /dev is opened.
        SDeviceInfo record = port(QString());
        record.deviceName = "ttyNoSuchPort9";
        QVERIFY(!device.open(record, true));
        QVERIFY2(str(device.errorMessage()).contains("/dev/ttyNoSuchPort9 is missing"),
            device.errorMessage().c_str());
    }

    void whatIsNoPortOrNoSpeedIsRefused()
    {
        CSerialDevice device;
        QVERIFY(!device.open(port(QStringLiteral("/dev/null")), true));
        QVERIFY2(str(device.errorMessage()).contains("/dev/null is not a serial port"),
            device.errorMessage().c_str());
        SDeviceInfo record = port(m_near);
        record.parameters.Add(CParameters::CEntry(
            "BaudRate", "Baud rate", "", CParameters::EDIT_ALWAYS, CVariant(12345)));
        QVERIFY(!device.open(record, true));
        QVERIFY2(str(device.errorMessage()).contains("12345 baud"), device.errorMessage().c_str());
        QVERIFY(!device.isOpen());
    }

    void permissionDeniedNamesTheGroupToJoin()
    {
        if (::geteuid() != 0)
            QSKIP("Needs root, to give the port to a group and try it as another user");
        const group* dialout = ::getgrnam("dialout");
        if (!dialout)
            QSKIP("This system has no group \"dialout\"");
        const QByteArray target = QFile::symLinkTarget(m_near).toLocal8Bit();
        QCOMPARE(::chown(target.constData(), 0, dialout->gr_gid), 0);
        QCOMPARE(::chmod(target.constData(), 0660), 0);
        // A child that is nobody, and in no group, tries the port.
        int pipe[2];
        QCOMPARE(::pipe(pipe), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::close(pipe[0]);
            if (::setgroups(0, nullptr) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0)
                ::_exit(2);
            CSerialDevice device;
            const bool opened = device.open(port(QString::fromLocal8Bit(target)), true);
            const CString message = opened ? CString("opened") : device.errorMessage();
            [[maybe_unused]] const ssize_t written
                = ::write(pipe[1], message.data(), static_cast<std::size_t>(message.length()));
            ::_exit(0);
        }
        ::close(pipe[1]);
        QByteArray message;
        char buffer[512];
        for (ssize_t count; (count = ::read(pipe[0], buffer, sizeof buffer)) > 0;)
            message.append(buffer, static_cast<int>(count));
        ::close(pipe[0]);
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFEXITED(status) && WEXITSTATUS(status) == 0);
        QVERIFY2(message.contains("Permission denied"), message.constData());
        QVERIFY2(message.contains("belongs to the group \"dialout\""), message.constData());
        QVERIFY2(message.contains("sudo usermod -aG dialout $USER"), message.constData());
    }

private:
    QTemporaryDir m_folder;
    QString m_near;
    QString m_far;
    QProcess m_socat;
};

QTEST_GUILESS_MAIN(tst_CSerialDevice)
#include "tst_cserialdevice.moc"
