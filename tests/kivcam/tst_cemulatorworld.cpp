#include "EmulatorTest.h"

#include <kiv/Platform.h>
#include <kivcam/CCameraFinder.h>
#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <cstdio>
#include <cstring>

using namespace emulatortest;

namespace {

// The emulator reads its world once per process, so each world is loaded by a child process:
// this test program started with this argument, which prints what the catalogues hold.
constexpr const char* reportArgument = "--report-world";

int reportWorld()
{
    kiv::platform::SetDebugOutputHandler([](const char* text) { std::printf("debug %s", text); });
    interfaces()->setEnableEmulators(true);
    CCameraFinder::setEnableEmulators(true);
    TArray<CString> controllers;
    controllerFactory()->getControllerNames(controllers);
    TArray<SDeviceInfo> devices;
    interfaces()->findDevices(devices, CInterfaces::FIND_PRESENT);
    CCameraFinder finder;
    finder.Find(CCameraFinder::FIND_COMM);
    std::printf("types %d\ncontrollers %d\ninterfaces %d\ndevices %d\ncameras %d\n",
        cameras()->cameraCount(), controllers.count(), interfaces()->interfaceCount(),
        devices.count(), static_cast<int>(finder.size()));
    return 0;
}

struct SReport {
    QByteArrayList debug; // the debug output lines, each with its line end
    QList<int> counts; // types, controllers, interfaces, devices, cameras
};

// What a child process reports for a world; unset leaves KIVCAM_EMULATOR_WORLD out.
SReport report(const QString& world, bool unset = false)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (unset)
        environment.remove("KIVCAM_EMULATOR_WORLD");
    else
        environment.insert("KIVCAM_EMULATOR_WORLD", world);
    QProcess child;
    child.setProcessEnvironment(environment);
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(QCoreApplication::applicationFilePath(), {reportArgument});
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

private slots:
    void loads_data()
    {
        QTest::addColumn<QString>("world");
        QTest::addColumn<bool>("unset");
        QTest::addColumn<QList<int>>("counts");
        const QList<int> defaultWorld{20, 5, 7, 22, 15};
        QTest::newRow("unset gives the default world") << QString() << true << defaultWorld;
        QTest::newRow("empty gives the default world") << QString() << false << defaultWorld;
        QTest::newRow("documented example")
            << QStringLiteral(KIVCAMUI_SOURCE_DIR "/docs/examples/emulator-world.xml") << false
            << QList<int>{2, 2, 2, 3, 3};
        QTest::newRow("fault world")
            << dataFile("emulator-faults.xml") << false << QList<int>{4, 3, 4, 6, 10};
        QTest::newRow("unknown elements and attributes")
            << dataFile("emulator-future.xml") << false << QList<int>{1, 1, 1, 1, 1};
        QTest::newRow("empty world")
            << dataFile("empty-world.xml") << false << QList<int>{0, 0, 0, 0, 0};
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
        QTest::newRow("missing file") << dataFile("no-such-world.xml") << 0;
        QTest::newRow("empty file") << dataFile("malformed-empty.xml") << 1;
        QTest::newRow("truncated XML") << dataFile("malformed-truncated.xml") << 8;
        QTest::newRow("wrong root") << dataFile("malformed-root.xml") << 3;
        QTest::newRow("bad number") << dataFile("malformed-number.xml") << 4;
        QTest::newRow("delay too long") << dataFile("malformed-delay.xml") << 3;
        QTest::newRow("bad record field") << dataFile("malformed-record.xml") << 7;
        QTest::newRow("unknown camera type") << dataFile("malformed-camera-type.xml") << 11;
        QTest::newRow("unknown video device") << dataFile("malformed-video.xml") << 8;
        QTest::newRow("repeated device name") << dataFile("malformed-duplicate.xml") << 7;
    }
    void malformedWorldIsEmpty()
    {
        QFETCH(QString, world);
        QFETCH(int, line);
        const SReport result = report(world);
        QCOMPARE(result.counts, QList<int>({0, 0, 0, 0, 0}));
        QCOMPARE(result.debug.size(), 1);
        const QString message = QString::fromUtf8(result.debug.first());
        const QRegularExpression form("^kivcam: (.+):(\\d+): \\S.*\\n$");
        const QRegularExpressionMatch match = form.match(message);
        QVERIFY2(match.hasMatch(), qPrintable(message));
        QCOMPARE(match.captured(1), world);
        QCOMPARE(match.captured(2).toInt(), line);
    }
};

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], reportArgument) == 0)
        return reportWorld();
    QCoreApplication app(argc, argv);
    tst_CEmulatorWorld test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cemulatorworld.moc"
