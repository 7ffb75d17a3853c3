// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "../HostileFiles.h"
#include "EmulatorTest.h"

#include <kiv/Platform.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <QByteArrayView>
#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/resource.h>

using namespace emulatortest;

namespace {

// The emulator reads its world once per process, so each world is loaded by a child process:
// this test program started with this argument, which prints what the catalogues hold. A second
// argument limits the child's address space to that many more megabytes than it uses.
constexpr const char* reportArgument = "--report-world";

// Whether AddressSanitizer watches this program.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool addressSanitizer = true;
#elif defined(__has_feature)
constexpr bool addressSanitizer = __has_feature(address_sanitizer);
#else
constexpr bool addressSanitizer = false;
#endif

bool isValid(const CString& text)
{
    return QByteArrayView(text.view().data(), static_cast<qsizetype>(text.view().size()))
        .isValidUtf8();
}

void limitAddressSpace(const char* megabytes)
{
    QFile status("/proc/self/status");
    long long used = 0;
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmSize:"))
                used = line.mid(7).trimmed().split(' ').first().toLongLong() * 1024;
        }
    }
    const rlimit limit{static_cast<rlim_t>(used + std::atoll(megabytes) * 1024 * 1024),
        static_cast<rlim_t>(used + std::atoll(megabytes) * 1024 * 1024)};
    setrlimit(RLIMIT_AS, &limit);
}

int reportWorld(const char* megabytes)
{
    kiv::platform::SetDebugOutputHandler([](const char* text) { std::printf("debug %s", text); });
    if (megabytes)
        limitAddressSpace(megabytes);
    interfaces()->setEnableEmulators(true);
    CCameraFinder::setEnableEmulators(true);
    // The world's controllers in the catalogue, which also has those of other backends (the
    // GenICam controller, in a world with GenICam cameras).
    TArray<CString> catalogue;
    controllerFactory()->getControllerNames(catalogue);
    TArray<CString> controllers;
    for (const CString& controller : catalogue) {
        if (CEmulatorWorld::Current()->controller(controller))
            controllers.add(controller);
    }
    TArray<SDeviceInfo> devices;
    interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT);
    CCameraFinder finder;
    finder.Find(CCameraFinder::FIND_COMM);
    // Texts that are not valid UTF-8, among the names the world gives.
    int illFormed = 0;
    for (int i = 0; i < cameras()->cameraCount(); ++i) {
        const TSharedPtr<ICamera> type = cameras()->cameraAt(i);
        for (const CString* text : {&type->name, &type->displayName, &type->description})
            illFormed += isValid(*text) ? 0 : 1;
    }
    for (const CString& controller : controllers)
        illFormed += isValid(controller) ? 0 : 1;
    for (const SDeviceInfo& device : devices)
        illFormed += isValid(device.interfaceName) && isValid(device.deviceName) ? 0 : 1;
    for (const SCameraInfo& camera : emulatortest::found(finder))
        illFormed += isValid(camera.serial) && isValid(camera.name) ? 0 : 1;
    std::printf("types %d\ncontrollers %d\ninterfaces %d\ndevices %d\ncameras %d\nillFormed %d\n",
        cameras()->cameraCount(), controllers.count(), interfaces()->interfaceCount(),
        devices.count(), static_cast<int>(finder.size()), illFormed);
    return 0;
}

struct SReport {
    QByteArrayList debug; // the debug output lines, each with its line end
    QList<int> counts; // types, controllers, interfaces, devices, cameras, ill-formed texts
};

// What a child process reports for a world; unset leaves KIVCAM_EMULATOR_WORLD out.
SReport report(const QString& world, bool unset = false, const QString& megabytes = {})
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (unset)
        environment.remove("KIVCAM_EMULATOR_WORLD");
    else
        environment.insert("KIVCAM_EMULATOR_WORLD", world);
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QStringList arguments{reportArgument};
    if (!megabytes.isEmpty())
        arguments << megabytes;
    child.start(QCoreApplication::applicationFilePath(), arguments);
    SReport result;
    if (!child.waitForFinished(120000) || child.exitStatus() != QProcess::NormalExit
        || child.exitCode() != 0) {
        qWarning("the child process failed");
        return result;
    }
    for (const QByteArray& line : child.readAllStandardOutput().split('\n')) {
        if (line.startsWith("debug "))
            result.debug << line.mid(6) + '\n';
        else if (!line.isEmpty())
            result.counts << line.split(' ').last().toInt();
    }
    return result;
}

QString dataFile(const char* name)
{
    return QStringLiteral(KIVCAM_TEST_DATA "/") + name;
}

} // namespace

// Reading world files: which world is used, what a good one gives, and how a bad one is
// reported.
class tst_CEmulatorWorld : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;

private slots:
    void loads_data()
    {
        QTest::addColumn<QString>("world");
        QTest::addColumn<bool>("unset");
        QTest::addColumn<QList<int>>("counts");
        // With the emulated GenICam camera: its camera type, transport, device and camera.
        const QList<int> defaultWorld{21, 5, 8, 23, 16, 0};
        QTest::newRow("unset gives the default world") << QString() << true << defaultWorld;
        QTest::newRow("empty gives the default world") << QString() << false << defaultWorld;
        QTest::newRow("documented example")
            << QStringLiteral(KIVCAMUI_SOURCE_DIR "/docs/examples/emulator-world.xml") << false
            << QList<int>{2, 2, 2, 3, 3, 0};
        QTest::newRow("fault world")
            << dataFile("emulator-faults.xml") << false << QList<int>{4, 3, 4, 6, 10, 0};
        QTest::newRow("unknown elements and attributes")
            << dataFile("emulator-future.xml") << false << QList<int>{1, 1, 1, 1, 1, 0};
        QTest::newRow("empty world")
            << dataFile("empty-world.xml") << false << QList<int>{0, 0, 0, 0, 0, 0};
        QTest::newRow("ill-formed UTF-8, repaired")
            << dataFile("emulator-utf8.xml") << false << QList<int>{1, 1, 1, 1, 1, 0};
        QTest::newRow("GenICam cameras")
            << dataFile("emulator-genicam.xml") << false << QList<int>{1, 0, 1, 2, 2, 0};
    }
    void loads()
    {
        QFETCH(QString, world);
        QFETCH(bool, unset);
        QFETCH(QList<int>, counts);
        const SReport result = report(world, unset);
        QCOMPARE(result.debug, QByteArrayList());
        QCOMPARE(result.counts, counts);
    }

    // The document shows the example file as it is, but for its opening comment.
    void documentShowsTheExample()
    {
        QFile example(KIVCAMUI_SOURCE_DIR "/docs/examples/emulator-world.xml");
        QFile document(KIVCAMUI_SOURCE_DIR "/docs/emulator-world.md");
        QVERIFY(example.open(QIODevice::ReadOnly) && document.open(QIODevice::ReadOnly));
        const QString shown = QString::fromUtf8(example.readAll())
                                  .remove(QRegularExpression("^<!--.*?-->\\n",
                                      QRegularExpression::DotMatchesEverythingOption
                                          | QRegularExpression::MultilineOption));
        QVERIFY(shown.startsWith("<?xml"));
        QVERIFY(QString::fromUtf8(document.readAll()).contains("```xml\n" + shown + "```"));
    }

    void malformedWorldIsEmpty_data()
    {
        QTest::addColumn<QString>("world");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing file") << dataFile("no-such-world.xml") << 0
                                      << "cannot read the world: No such file or directory";
        QTest::newRow("empty file")
            << dataFile("malformed-empty.xml") << 1 << "No document element found";
        QTest::newRow("truncated XML")
            << dataFile("malformed-truncated.xml") << 8 << "Start-end tags mismatch";
        QTest::newRow("wrong root")
            << dataFile("malformed-root.xml") << 3 << "the root element is <camera>, not <world>";
        QTest::newRow("bad number") << dataFile("malformed-number.xml") << 4
                                    << "malformed value \"soon\" of attribute scanDelay";
        QTest::newRow("delay too long")
            << dataFile("malformed-delay.xml") << 3 << "connectDelay above 10000 ms";
        QTest::newRow("bad record field")
            << dataFile("malformed-record.xml") << 7 << "malformed value \"wide\"";
        QTest::newRow("unknown camera type")
            << dataFile("malformed-camera-type.xml") << 11 << "unknown camera type \"Vanished\"";
        QTest::newRow("unknown video device") << dataFile("malformed-video.xml") << 8
                                              << "unknown video device \"EmuGrabber/Grabber 0\"";
        QTest::newRow("repeated device name")
            << dataFile("malformed-duplicate.xml") << 7 << "a second device named \"COM1\"";
        QTest::newRow("GenICam camera without a serial")
            << dataFile("malformed-genicam-serial.xml") << 4 << "<genicam> without a serial";
        QTest::newRow("repeated GenICam serial")
            << dataFile("malformed-genicam-duplicate.xml") << 5
            << "a second <genicam> with the serial \"GC-0001\"";
        QTest::newRow("GenICam serial too long")
            << dataFile("malformed-genicam-long.xml") << 5
            << "the serial \"GC-0001-AND-MORE\" is longer than 15 bytes";
    }
    void malformedWorldIsEmpty()
    {
        QFETCH(QString, world);
        QFETCH(int, line);
        QFETCH(QString, reason);
        const SReport result = report(world);
        QCOMPARE(result.counts, QList<int>({0, 0, 0, 0, 0, 0}));
        QCOMPARE(result.debug.size(), 1);
        const QString message = QString::fromUtf8(result.debug.first());
        const QRegularExpression form("^kivcam: (.+):(\\d+): (\\S.*)\\n$");
        const QRegularExpressionMatch match = form.match(message);
        QVERIFY2(match.hasMatch(), qPrintable(message));
        QCOMPARE(match.captured(1), world);
        QCOMPARE(match.captured(2).toInt(), line);
        QCOMPARE(match.captured(3), reason);
    }

    void unreadableWorldIsEmpty_data()
    {
        QTest::addColumn<QString>("world");
        QTest::addColumn<QString>("reason");
        for (const auto& [name, path] : hostile::nonRegularPaths(m_folder))
            QTest::newRow(name) << path << "not a regular file";
        const QString large = m_folder.filePath("large.xml");
        QFile file(large);
        QVERIFY(file.open(QIODevice::WriteOnly)
            && file.resize(static_cast<qint64>(CEmulatorWorld::maxFileSize) + 1));
        QTest::newRow("larger than the bound")
            << large << QString("larger than %1 bytes").arg(CEmulatorWorld::maxFileSize);
    }
    void unreadableWorldIsEmpty()
    {
        // A FIFO used to block the first use of a catalogue for ever, and /dev/zero to end in an
        // uncaught std::bad_alloc after 4 GB.
        QFETCH(QString, world);
        QFETCH(QString, reason);
        const SReport result = report(world);
        QCOMPARE(result.counts, QList<int>({0, 0, 0, 0, 0, 0}));
        QCOMPARE(result.debug,
            QByteArrayList{
                QString("kivcam: %1:0: cannot read the world: %2\n").arg(world, reason).toUtf8()});
    }
    void worldAtTheBoundLoads()
    {
        const QByteArray head = "<world><controller name=\"Generic\"/><!--";
        const QByteArray tail = "--></world>";
        const QString path = m_folder.filePath("bound.xml");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(head) == head.size()
            && file.write(QByteArray(
                   static_cast<qsizetype>(CEmulatorWorld::maxFileSize) - head.size() - tail.size(),
                   ' '))
                > 0
            && file.write(tail) == tail.size());
        file.close();
        QCOMPARE(QFileInfo(path).size(), static_cast<qint64>(CEmulatorWorld::maxFileSize));
        const SReport result = report(path);
        QCOMPARE(result.debug, QByteArrayList());
        QCOMPARE(result.counts, QList<int>({0, 1, 0, 0, 0, 0}));
    }
    void outOfMemoryGivesAnEmptyWorld()
    {
        if (addressSanitizer)
            QSKIP("AddressSanitizer reserves more address space than a limit would leave");
        // Twelve thousand devices with a long parameter each: 24 MB of text, which takes more
        // than 48 MB more memory to read. Wherever memory runs out, the parser's or the
        // reader's, the world is empty and the problem reported.
        const QString path = m_folder.filePath("memory.xml");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<world><interface name=\"Emu\" comm=\"true\">");
        const QByteArray padding(1000, 'p');
        for (int i = 0; i < 12000; ++i)
            file.write("<device><deviceName>" + QByteArray::number(i) + "</deviceName><description>"
                + padding
                + "</description><parameters><parameter name=\"A\" type=\"string\" value=\""
                + padding + "\"/></parameters></device>");
        file.write("</interface></world>");
        file.close();
        const SReport result = report(path, false, "48");
        QCOMPARE(result.counts, QList<int>({0, 0, 0, 0, 0, 0}));
        QCOMPARE(result.debug.size(), 1);
        QVERIFY2(
            QRegularExpression("^kivcam: .*:\\d+: (out of memory|Could not allocate memory)\n$")
                .match(QString::fromUtf8(result.debug.first()))
                .hasMatch(),
            result.debug.first().constData());
    }
};

int main(int argc, char** argv)
{
    if (argc >= 2 && std::strcmp(argv[1], reportArgument) == 0)
        return reportWorld(argc == 3 ? argv[2] : nullptr);
    QCoreApplication app(argc, argv);
    tst_CEmulatorWorld test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cemulatorworld.moc"
