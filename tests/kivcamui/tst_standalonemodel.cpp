// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// The connection model over two camera library backends: the emulator, with the world
// data/standalone-world.xml, and the probe (ProbeBackend.h), which counts open devices and
// connected controllers and can hold a phase at a gate. No controller UI plugin is loaded; the
// test registers a creator of its own that gives panels for the controllers "Generic" and
// "Probe". After every test the pool is drained and nothing of the probe may be left open,
// connected or alive.

#include "ProbeBackend.h"

#include <kivcam/CInterfaces.h>
#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivcamui/plugin/IControllerModelFactory.h>
#include <kivcamui/standalone/StandaloneModel.h>

#include <QElapsedTimer>
#include <QMetaProperty>
#include <QPointer>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using kiv::CString;
using kiv::TArray;
using kiv::TSharedPtr;
using kiv::cam::IController;
using kiv::cam::SCameraInfo;
using kiv::cam::ui::CameraInfo;
using kiv::cam::ui::StandaloneModel;
using probe::SProbe;

Q_DECLARE_METATYPE(kiv::cam::SCameraInfo)

namespace {

bool createPanel(TSharedPtr<IController> controller, QObject* parent, QObject** model, QString* qml)
{
    if (!controller)
        return false;
    const QString name = QString::fromUtf8(controller->name().c_str());
    if (name != "Generic" && name != "Probe")
        return false;
    *model = new ControllerModel(parent);
    (*model)->setObjectName(name);
    *qml = "qrc:/test/" + name + ".qml";
    return true;
}

// A camera of the emulated world, as its transport reports it.
SCameraInfo emulated(const char* serial)
{
    TArray<SCameraInfo> found;
    kiv::cam::interfaces()->interfaceByName("EmuSerial")->findCameras(found, {});
    for (const SCameraInfo& camera : found) {
        if (camera.serial == CString(serial))
            return camera;
    }
    qWarning("the test world has no camera %s", serial);
    return {};
}

// The model's signals in the order they came, each with the state it announced.
class CSignalLog {
public:
    explicit CSignalLog(StandaloneModel& model)
    {
        QObject::connect(&model, &StandaloneModel::connectingChanged, &m_context,
            [&] { m_log << (model.connecting() ? "connecting" : "connecting ended"); });
        QObject::connect(&model, &StandaloneModel::connectedChanged, &m_context,
            [&] { m_log << (model.connected() ? "connected" : "disconnected"); });
        QObject::connect(&model, &StandaloneModel::disconnectingChanged, &m_context,
            [&] { m_log << (model.disconnecting() ? "disconnecting" : "disconnecting ended"); });
        QObject::connect(&model, &StandaloneModel::controllerChanged, &m_context,
            [&] { m_log << "controller " + model.controllerName(); });
        QObject::connect(&model, &StandaloneModel::canSelectControllerChanged, &m_context,
            [&] { m_log << QStringLiteral("canSelectController"); });
        QObject::connect(&model, &StandaloneModel::errorMessageChanged, &m_context,
            [&] { m_log << "error: " + model.errorMessage(); });
    }
    QStringList take() { return std::exchange(m_log, {}); }

private:
    QObject m_context;
    QStringList m_log;
};

QString counts(int open, int connected, int devices, int controllers)
{
    return QString("%1 open, %2 connected, %3 devices, %4 controllers")
        .arg(open)
        .arg(connected)
        .arg(devices)
        .arg(controllers);
}

// What of the probe's devices and controllers is open, connected and alive.
QString probeCounts()
{
    return counts(SProbe::devicesOpen, SProbe::controllersConnected, SProbe::devicesAlive,
        SProbe::controllersAlive);
}

const QStringList connectedFirstTime{
    "connecting", "controller Kelvin640", "connected", "connecting ended"};
const QStringList connectedAgain{"connecting", "connected", "connecting ended"};
const QStringList disconnected{"disconnecting", "disconnected", "disconnecting ended"};

} // namespace

class tst_StandaloneModel : public QObject {
    Q_OBJECT

private:
    // Connects and waits for the end; gives the signals of the connect.
    static QStringList connectAndWait(StandaloneModel& model, const SCameraInfo& record)
    {
        CSignalLog log(model);
        CameraInfo camera(record, nullptr);
        model.connect(&camera);
        if (!QTest::qWaitFor([&] { return !model.connecting(); }, 20000))
            qWarning("the connect did not end");
        return log.take();
    }

    // Starts connecting the camera with one phase held at its gate, and returns once the phase
    // has reached it: the device opening (first phase) or the controller connecting (second).
    static bool startHeld(StandaloneModel& model, CameraInfo& camera, bool inFirstPhase)
    {
        probe::CGate& gate = inFirstPhase ? SProbe::openGate : SProbe::connectGate;
        gate.close();
        model.connect(&camera);
        // The second phase starts when the first one's end has been delivered.
        return QTest::qWaitFor([&] { return gate.reached(); }, 30000);
    }

private slots:
    void initTestCase()
    {
        qputenv("KIVCAM_EMULATOR_WORLD", KIVCAMUI_TEST_DATA "/standalone-world.xml");
        // Whatever sits beside the library, no controller UI plugin is loaded here.
        qputenv("KIVCAMUI_WHITELIST", "no-plugins-in-this-test");
        QVERIFY(kiv::cam::ui::controllerModelFactory()->RegisterCreator(createPanel));
    }
    void init() { SProbe::reset(); }
    void cleanup()
    {
        SProbe::reset();
        QThreadPool::globalInstance()->waitForDone();
        QCOMPARE(probeCounts(), counts(0, 0, 0, 0));
    }

    void startsWithTheCatalogueAndNoController()
    {
        StandaloneModel model;
        QCOMPARE(model.controllerNames(),
            (QStringList{"Kelvin640", "Mistral320", "Nova", "Orphan", "ProbeCam", "ProbeCam2",
                "ProbeOrphan"}));
        QCOMPARE(model.controllerDisplayNames(),
            (QStringList{"Kelvin 640", "Mistral 320", "Nova 1024", "Orphan", "Probe camera",
                "Second probe camera", "Probe camera without controller"}));
        QCOMPARE(model.controllerName(), QString());
        QCOMPARE(model.controllerIndex(), -1);
        QCOMPARE(model.cameraModel(), nullptr);
        QCOMPARE(model.controllerQml(), QString());
        QVERIFY(!model.connected());
        QVERIFY(!model.connecting());
        QVERIFY(!model.disconnecting());
        QVERIFY(!model.canSelectController());
        QVERIFY(model.cameraFinder());
        QCOMPARE(model.cameraFinder()->parent(), &model);
        QCOMPARE(model.property("cameraFinder").value<QObject*>(), model.cameraFinder());
        QCOMPARE(SProbe::controllersAlive.load(), 0);
    }
    void qmlInterface()
    {
        const QMetaObject& meta = StandaloneModel::staticMetaObject;
        QCOMPARE(meta.className(), "kiv::cam::ui::StandaloneModel");
        const auto notify = [&](const char* name) {
            const QMetaProperty property = meta.property(meta.indexOfProperty(name));
            return property.isConstant() ? QByteArray("constant") : property.notifySignal().name();
        };
        QCOMPARE(notify("cameraModel"), "controllerChanged");
        QCOMPARE(notify("controllerQml"), "controllerChanged");
        QCOMPARE(notify("controllerName"), "controllerChanged");
        QCOMPARE(notify("controllerIndex"), "controllerChanged");
        QCOMPARE(notify("connected"), "connectedChanged");
        QCOMPARE(notify("canSelectController"), "canSelectControllerChanged");
        QCOMPARE(notify("connecting"), "connectingChanged");
        QCOMPARE(notify("disconnecting"), "disconnectingChanged");
        for (const char* constant :
            {"cameraFinder", "controllerNames", "controllerDisplayNames", "configDir"})
            QCOMPARE(notify(constant), "constant");
        for (const char* writable : {"controllerName", "controllerIndex", "canSelectController"})
            QVERIFY(meta.property(meta.indexOfProperty(writable)).isWritable());
        QVERIFY(!meta.property(meta.indexOfProperty("connected")).isWritable());
        QVERIFY(meta.indexOfMethod("connect(kiv::cam::ui::CameraInfo*)") >= 0);
        QVERIFY(meta.indexOfMethod("disconnect()") >= 0);
    }
    void configDirIsTheLocalDataFolderAsAFileUrl()
    {
        QTemporaryDir data;
        QVERIFY(data.isValid());
        const QByteArray previous = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
        QCoreApplication::setOrganizationName("kivcamui-tests");
        QCoreApplication::setApplicationName("standalone");
        StandaloneModel model;
        const QString dir = model.configDir();
        qputenv("XDG_DATA_HOME", previous);
        QVERIFY2(dir.startsWith("file:///"), qPrintable(dir));
        QCOMPARE(QUrl(dir).toLocalFile(), data.path() + "/kivcamui-tests/standalone");
        QCOMPARE(dir, QUrl::fromLocalFile(data.path() + "/kivcamui-tests/standalone").toString());
        // Read, not made.
        QVERIFY(!QFileInfo::exists(QUrl(dir).toLocalFile()));
    }

    void selectingAControllerMakesItsPanel()
    {
        StandaloneModel model;
        CSignalLog log(model);
        model.setControllerName("Kelvin640");
        QCOMPARE(log.take(), QStringList{"controller Kelvin640"});
        QCOMPARE(model.controllerIndex(), 0);
        QVERIFY(model.cameraModel());
        QCOMPARE(model.cameraModel()->objectName(), QStringLiteral("Generic"));
        QCOMPARE(model.cameraModel()->parent(), &model);
        QCOMPARE(model.controllerQml(), QStringLiteral("qrc:/test/Generic.qml"));

        // No creator accepts the "Refusing" controller: the panel's QML file keeps its text.
        const QPointer<QObject> first = model.cameraModel();
        model.setControllerName("Nova");
        QCOMPARE(log.take(), QStringList{"controller Nova"});
        QVERIFY(first.isNull());
        QCOMPARE(model.cameraModel(), nullptr);
        QCOMPARE(model.controllerQml(), QStringLiteral("qrc:/test/Generic.qml"));
        QCOMPARE(model.controllerIndex(), 2);
    }
    void selectingTheSameControllerDoesNothing()
    {
        StandaloneModel model;
        model.setControllerName("ProbeCam");
        QObject* panel = model.cameraModel();
        QVERIFY(panel);
        CSignalLog log(model);
        model.setControllerName("ProbeCam");
        model.setControllerIndex(model.controllerIndex());
        QCOMPARE(log.take(), QStringList{});
        QCOMPARE(model.cameraModel(), panel);
        QCOMPARE(SProbe::controllersAlive.load(), 1);
    }
    void selectingAnUnknownNameDropsThePanelSilently()
    {
        StandaloneModel model;
        model.setControllerName("ProbeCam");
        const QPointer<QObject> panel = model.cameraModel();
        QVERIFY(panel);
        CSignalLog log(model);
        for (const char* unknown : {"NoSuchType", "probecam", ""}) {
            model.setControllerName(unknown);
            QCOMPARE(log.take(), QStringList{});
            QVERIFY(panel.isNull());
            QCOMPARE(model.cameraModel(), nullptr);
            QCOMPARE(model.controllerName(), QStringLiteral("ProbeCam"));
            QCOMPARE(model.controllerIndex(), 4);
            QCOMPARE(model.controllerQml(), QStringLiteral("qrc:/test/Probe.qml"));
            // The controller stays.
            QCOMPARE(SProbe::controllersAlive.load(), 1);
        }
    }
    void eachNewControllerReplacesTheOld()
    {
        StandaloneModel model;
        model.setControllerName("ProbeCam");
        QCOMPARE(SProbe::controllersAlive.load(), 1);
        model.setControllerName("ProbeCam2");
        QCOMPARE(SProbe::controllersAlive.load(), 1);
        // A type whose controller nobody makes leaves the model without one.
        CSignalLog log(model);
        model.setControllerName("ProbeOrphan");
        QCOMPARE(log.take(), QStringList{"controller ProbeOrphan"});
        QCOMPARE(SProbe::controllersAlive.load(), 0);
        QCOMPARE(model.cameraModel(), nullptr);
    }
    void controllerIndexSelectsByPosition()
    {
        StandaloneModel model;
        CSignalLog log(model);
        for (int refused : {-1, int(model.controllerNames().size()), -100, 1000})
            model.setControllerIndex(refused);
        QCOMPARE(log.take(), QStringList{});
        QCOMPARE(model.controllerIndex(), -1);
        model.setControllerIndex(1);
        QCOMPARE(log.take(), QStringList{"controller Mistral320"});
        QCOMPARE(model.controllerName(), QStringLiteral("Mistral320"));
        QCOMPARE(model.property("controllerIndex").toInt(), 1);
        model.setProperty("controllerIndex", 4);
        QCOMPARE(log.take(), QStringList{"controller ProbeCam"});
        model.setControllerIndex(4);
        model.setControllerIndex(model.controllerNames().size());
        QCOMPARE(log.take(), QStringList{});
        QCOMPARE(model.controllerIndex(), 4);
    }
    void canSelectControllerIsStored()
    {
        StandaloneModel model;
        QSignalSpy changed(&model, &StandaloneModel::canSelectControllerChanged);
        model.setCanSelectController(false);
        QCOMPARE(changed.size(), 0);
        model.setCanSelectController(true);
        model.setCanSelectController(true);
        QCOMPARE(changed.size(), 1);
        QVERIFY(model.canSelectController());
        model.setCanSelectController(false);
        QCOMPARE(changed.size(), 2);
        QVERIFY(!model.canSelectController());
    }

    void connectAndDisconnect()
    {
        StandaloneModel model;
        QCOMPARE(connectAndWait(model, emulated("K-1")), connectedFirstTime);
        QVERIFY(model.connected());
        QCOMPARE(model.controllerName(), QStringLiteral("Kelvin640"));
        QCOMPARE(model.cameraModel()->objectName(), QStringLiteral("Generic"));
        QCOMPARE(model.controllerQml(), QStringLiteral("qrc:/test/Generic.qml"));

        QObject* panel = model.cameraModel();
        CSignalLog log(model);
        model.disconnect();
        QCOMPARE(log.take(), disconnected);
        QVERIFY(!model.connected());
        QVERIFY(!model.disconnecting());
        // The controller and its panel stay.
        QCOMPARE(model.controllerName(), QStringLiteral("Kelvin640"));
        QCOMPARE(model.cameraModel(), panel);
        QCOMPARE(model.controllerQml(), QStringLiteral("qrc:/test/Generic.qml"));

        // Connecting the same type again reuses them.
        QCOMPARE(connectAndWait(model, emulated("K-1")), connectedAgain);
        QCOMPARE(model.cameraModel(), panel);
        QVERIFY(model.connected());
    }
    void disconnectWhenNotConnectedDoesNothing()
    {
        StandaloneModel model;
        CSignalLog log(model);
        model.disconnect();
        QCOMPARE(log.take(), QStringList{});
        QCOMPARE(connectAndWait(model, emulated("K-2")),
            (QStringList{"connecting", "error: The device \"COM2\" on \"EmuSerial\" did not open.",
                "connecting ended"}));
        log.take();
        model.disconnect();
        QCOMPARE(log.take(), QStringList{});
    }
    void connectingAnotherCameraDisconnectsFirst()
    {
        StandaloneModel model;
        QCOMPARE(connectAndWait(model, emulated("K-1")), connectedFirstTime);
        const QStringList reconnected = disconnected
            + QStringList{"connecting", "controller Mistral320", "connected", "connecting ended"};
        QCOMPARE(connectAndWait(model, emulated("M-1")), reconnected);
        QVERIFY(model.connected());
    }
    void connectFails_data()
    {
        QTest::addColumn<SCameraInfo>("camera");
        QTest::addColumn<QStringList>("signals");
        QTest::addColumn<QString>("controllerName");

        const auto notOpened = [](const QString& why) {
            return QStringList{"connecting", "error: " + why, "connecting ended"};
        };
        const auto refused = [](const QString& controller, const QString& why) {
            return QStringList{
                "connecting", "controller " + controller, "error: " + why, "connecting ended"};
        };
        QTest::newRow("device does not open")
            << emulated("K-2") << notOpened("The device \"COM2\" on \"EmuSerial\" did not open.")
            << QString();
        SCameraInfo nowhere = emulated("K-1");
        nowhere.comm.interfaceName = "Nowhere";
        QTest::newRow("no transport serves the device")
            << nowhere
            << notOpened("No transport \"Nowhere\" is there to reach the camera's device.")
            << QString();
        SCameraInfo unknown = emulated("K-1");
        unknown.name = "NoSuchType";
        QTest::newRow("camera type unknown")
            << unknown << notOpened("The camera type \"NoSuchType\" is unknown here.") << QString();
        QTest::newRow("controller fails")
            << emulated("N-1")
            << refused("Nova", "The camera N-1 did not answer the controller \"Refusing\".")
            << "Nova";
        QTest::newRow("camera refuses")
            << emulated("K-REFUSES")
            << refused(
                   "Kelvin640", "The camera K-REFUSES did not answer the controller \"Generic\".")
            << "Kelvin640";
        QTest::newRow("type without controller")
            << emulated("O-1")
            << refused("Orphan", "The camera type \"Orphan\" has no controller here.") << "Orphan";
    }
    void connectFails()
    {
        QFETCH(SCameraInfo, camera);
        StandaloneModel model;
        QTEST(connectAndWait(model, camera), "signals");
        QTEST(model.controllerName(), "controllerName");
        QVERIFY(!model.connected());
        QVERIFY(!model.connecting());
        QCOMPARE(model.cameraModel() != nullptr, model.controllerName() == "Kelvin640");
    }
    void aNewConnectClearsTheReason()
    {
        StandaloneModel model;
        connectAndWait(model, emulated("K-2"));
        QVERIFY(!model.errorMessage().isEmpty());
        QCOMPARE(connectAndWait(model, emulated("K-1")),
            (QStringList{
                "connecting", "error: ", "controller Kelvin640", "connected", "connecting ended"}));
        QCOMPARE(model.errorMessage(), QString());
    }

    // A camera lost while connected is taken down as disconnect() does it, with the reason said
    // first; it can be connected again.
    void aLostCameraIsDisconnectedWithItsReason()
    {
        StandaloneModel model;
        QCOMPARE(connectAndWait(model, emulated("K-LOST")), connectedFirstTime);
        CSignalLog log(model);
        QTRY_VERIFY_WITH_TIMEOUT(!model.connected(), 10000);
        QCOMPARE(
            log.take(), QStringList{"error: The camera K-LOST stopped answering."} + disconnected);
        QCOMPARE(model.controllerName(), QStringLiteral("Kelvin640"));
        QCOMPARE(connectAndWait(model, emulated("K-LOST")),
            (QStringList{"connecting", "error: ", "connected", "connecting ended"}));
        QVERIFY(model.connected());
    }

    // A loss after its connection ended, or of a connection replaced since, says nothing.
    void aLossOfAnEndedConnectionIsIgnored()
    {
        StandaloneModel model;
        connectAndWait(model, emulated("K-LOST"));
        model.disconnect();
        QCOMPARE(connectAndWait(model, emulated("K-1")), connectedAgain);
        CSignalLog log(model);
        QTest::qWait(600);
        QCOMPARE(log.take(), QStringList{});
        QVERIFY(model.connected());
        QCOMPARE(model.errorMessage(), QString());
    }

    void failedConnectClosesTheDevice_data()
    {
        QTest::addColumn<SCameraInfo>("camera");
        QTest::addColumn<bool>("openFails");
        QTest::addColumn<bool>("connectFails");
        QTest::addColumn<QStringList>("signals");
        QTest::addColumn<int>("controllers");

        const SCameraInfo camera = probe::makeCamera("ProbeCam", "S-1");
        // The probe's device and controller say nothing of their own: the model's words stand
        // in for theirs.
        QTest::newRow("device does not open")
            << camera << true << false
            << QStringList{"connecting",
                   "error: The device \"P0\" of \"ProbeLink\" could not be opened.",
                   "connecting ended"}
            << 0;
        QTest::newRow("controller fails")
            << camera << false << true
            << QStringList{"connecting", "controller ProbeCam",
                   "error: The camera did not answer the controller \"Probe\".", "connecting ended"}
            << 1;
        QTest::newRow("camera type unknown")
            << probe::makeCamera("NoSuchType", "S-1") << false << false
            << QStringList{"connecting", "error: The camera type \"NoSuchType\" is unknown here.",
                   "connecting ended"}
            << 0;
        QTest::newRow("type without controller")
            << probe::makeCamera("ProbeOrphan", "S-1") << false << false
            << QStringList{"connecting", "controller ProbeOrphan",
                   "error: The camera type \"ProbeOrphan\" has no controller here.",
                   "connecting ended"}
            << 0;
        SCameraInfo refused = probe::makeCamera("ProbeCam", "S-1");
        refused.canConnect = false;
        refused.errorSummary = "No Pixel Type";
        refused.errorMessage = "Choose the Pixel Type of the camera's pictures.";
        QTest::newRow("description cannot connect")
            << refused << false << false
            << QStringList{"connecting", "error: Choose the Pixel Type of the camera's pictures.",
                   "connecting ended"}
            << 0;
        SCameraInfo custom = probe::makeCamera("", "S-1");
        custom.controller = "NoSuchController";
        QTest::newRow("custom camera, unknown controller")
            << custom << false << false
            << QStringList{"connecting", "controller ",
                   "error: There is no controller \"NoSuchController\" here.", "connecting ended"}
            << 0;
        custom.controller = CString();
        QTest::newRow("custom camera, no controller")
            << custom << false << false
            << QStringList{"connecting", "controller ",
                   "error: The camera's description names no camera type and no controller.",
                   "connecting ended"}
            << 0;
    }
    void failedConnectClosesTheDevice()
    {
        QFETCH(SCameraInfo, camera);
        QFETCH(bool, openFails);
        QFETCH(bool, connectFails);
        SProbe::openFails = openFails;
        SProbe::connectFails = connectFails;
        StandaloneModel model;
        QTEST(connectAndWait(model, camera), "signals");
        QVERIFY(!model.connected());
        QFETCH(int, controllers);
        QCOMPARE(probeCounts(), counts(0, 0, 0, controllers));
    }
    void theControllerOfTheCameraBeforeIsNeverUsed()
    {
        StandaloneModel model;
        QCOMPARE(connectAndWait(model, probe::makeCamera("ProbeCam", "S-1")),
            (QStringList{"connecting", "controller ProbeCam", "connected", "connecting ended"}));
        // A camera type nobody knows is not connected through the controller still selected.
        QCOMPARE(connectAndWait(model, probe::makeCamera("NoSuchType", "S-2")),
            (QStringList{"disconnecting", "disconnected", "disconnecting ended", "connecting",
                "error: The camera type \"NoSuchType\" is unknown here.", "connecting ended"}));
        QVERIFY(!model.connected());
        QCOMPARE(probeCounts(), counts(0, 0, 0, 1));

        // A camera assembled by hand gets the controller it names, as no camera type's.
        SCameraInfo custom = probe::makeCamera("", "S-3");
        custom.controller = "Probe";
        QCOMPARE(connectAndWait(model, custom),
            (QStringList{"connecting", "error: ", "controller ", "connected", "connecting ended"}));
        QCOMPARE(model.controllerName(), QString());
        QCOMPARE(model.controllerIndex(), -1);
        QCOMPARE(probeCounts(), counts(1, 1, 1, 1));
        // Again: the same controller, kept.
        QCOMPARE(connectAndWait(model, custom),
            (QStringList{"disconnecting", "disconnected", "disconnecting ended", "connecting",
                "connected", "connecting ended"}));
        QCOMPARE(probeCounts(), counts(1, 1, 1, 1));
        // Then a camera type of the same controller: that type's own controller.
        QCOMPARE(connectAndWait(model, probe::makeCamera("ProbeCam", "S-4")),
            (QStringList{"disconnecting", "disconnected", "disconnecting ended", "connecting",
                "controller ProbeCam", "connected", "connecting ended"}));
        QCOMPARE(model.controllerName(), QStringLiteral("ProbeCam"));
        QCOMPARE(probeCounts(), counts(1, 1, 1, 1));
        model.disconnect();
    }
    void theCameraGetsItsOpenDeviceAndRecord()
    {
        StandaloneModel model;
        QCOMPARE(connectAndWait(model, probe::makeCamera("ProbeCam", "S-7", "P3")),
            (QStringList{"connecting", "controller ProbeCam", "connected", "connecting ended"}));
        QVERIFY(SProbe::openedExclusively);
        QVERIFY(SProbe::connectedToOpenDevice);
        {
            std::lock_guard lock(SProbe::recordMutex);
            QCOMPARE(QByteArray(SProbe::lastOpened.c_str()), QByteArray("P3"));
            QCOMPARE(QByteArray(SProbe::lastConnected.c_str()), QByteArray("S-7"));
        }
        QCOMPARE(probeCounts(), counts(1, 1, 1, 1));
        model.disconnect();
        QCOMPARE(probeCounts(), counts(0, 0, 0, 1));
    }
    void nullCameraIsIgnored()
    {
        StandaloneModel model;
        CSignalLog log(model);
        model.connect(nullptr);
        QCOMPARE(log.take(), QStringList{});
        QVERIFY(!model.connecting());
    }
    void connectAndDisconnectWhileConnectingAreIgnored_data()
    {
        QTest::addColumn<bool>("inFirstPhase");
        QTest::newRow("while the device opens") << true;
        QTest::newRow("while the controller connects") << false;
    }
    void connectAndDisconnectWhileConnectingAreIgnored()
    {
        QFETCH(bool, inFirstPhase);
        StandaloneModel model;
        CSignalLog log(model);
        CameraInfo first(probe::makeCamera("ProbeCam", "FIRST"), nullptr);
        CameraInfo second(probe::makeCamera("ProbeCam2", "SECOND", "P1"), nullptr);
        QVERIFY(startHeld(model, first, inFirstPhase));
        const QStringList before = log.take();
        model.connect(&second);
        model.disconnect();
        QCOMPARE(log.take(), QStringList{});
        QVERIFY(model.connecting());
        SProbe::reset();
        QTRY_VERIFY(!model.connecting());
        QCOMPARE(before + log.take(),
            (QStringList{"connecting", "controller ProbeCam", "connected", "connecting ended"}));
        std::lock_guard lock(SProbe::recordMutex);
        QCOMPARE(QByteArray(SProbe::lastConnected.c_str()), QByteArray("FIRST"));
    }
    void destroyingAConnectedModelDisconnects()
    {
        auto model = std::make_unique<StandaloneModel>();
        QCOMPARE(connectAndWait(*model, probe::makeCamera("ProbeCam", "S-1")).size(), 4);
        QVERIFY(model->connected());
        QSignalSpy connected(model.get(), &StandaloneModel::connectedChanged);
        model.reset();
        QCOMPARE(connected.size(), 1);
        QCOMPARE(probeCounts(), counts(0, 0, 0, 0));
    }

    // The model goes while a connect is under way; cleanup() checks that the device was closed,
    // the controller taken down, and both freed.
    void destroyedWhileConnecting_data()
    {
        QTest::addColumn<int>("stage");
        QTest::newRow("device opening") << 0;
        QTest::newRow("device opened, not yet told") << 1;
        QTest::newRow("controller connecting") << 2;
        QTest::newRow("controller connected, not yet told") << 3;
    }
    void destroyedWhileConnecting()
    {
        QFETCH(int, stage);
        auto model = std::make_unique<StandaloneModel>();
        CameraInfo camera(probe::makeCamera("ProbeCam", "S-1"), nullptr);
        QVERIFY(startHeld(*model, camera, stage < 2));
        // Let the phase end; its end is queued for the model and never delivered.
        if (stage == 1 || stage == 3) {
            SProbe::reset();
            QThreadPool::globalInstance()->waitForDone();
        }
        QVERIFY(model->connecting());
        model.reset();
        SProbe::reset();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCOMPARE(probeCounts(), counts(0, 0, 0, 0));
    }
    void destroyedWhileConnectingManyTimes()
    {
        SProbe::openDelay = 5;
        SProbe::connectDelay = 5;
        int inFlight = 0;
        for (int cycle = 0; cycle < 100; ++cycle) {
            auto* model = new StandaloneModel;
            CameraInfo camera(probe::makeCamera("ProbeCam", "S-1"), nullptr);
            model->connect(&camera);
            // From at once to after the connect has ended (it takes at least 10 ms).
            QElapsedTimer elapsed;
            elapsed.start();
            while (elapsed.elapsed() < cycle % 20)
                QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
            inFlight += model->connecting() ? 1 : 0;
            delete model;
        }
        QVERIFY2(inFlight >= 40, qPrintable(QString::number(inFlight)));
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCOMPARE(probeCounts(), counts(0, 0, 0, 0));
    }
    // Another controller is selected while a connect runs. Selected while the device opens, it
    // gives way to the camera's own when the device is open; selected while the controller
    // connects, it stays, and the connect, made with a controller the model no longer has, is
    // taken down again.
    void controllerChangedWhileConnecting_data()
    {
        QTest::addColumn<bool>("inFirstPhase");
        QTest::addColumn<QStringList>("signals");
        QTest::addColumn<QString>("counts");
        QTest::newRow("while the device opens")
            << true
            << QStringList{"connecting", "controller ProbeCam2", "controller ProbeCam", "connected",
                   "connecting ended"}
            << counts(1, 1, 1, 1);
        QTest::newRow("while the controller connects")
            << false
            << QStringList{"connecting", "controller ProbeCam", "controller ProbeCam2",
                   "error: Another controller was chosen while the camera connected.",
                   "connecting ended"}
            << counts(0, 0, 0, 1);
    }
    void controllerChangedWhileConnecting()
    {
        QFETCH(bool, inFirstPhase);
        StandaloneModel model;
        CSignalLog log(model);
        CameraInfo camera(probe::makeCamera("ProbeCam", "S-1"), nullptr);
        QVERIFY(startHeld(model, camera, inFirstPhase));
        model.setControllerName("ProbeCam2");
        SProbe::reset();
        QTRY_VERIFY(!model.connecting());
        QTEST(log.take(), "signals");
        QTEST(probeCounts(), "counts");
        QCOMPARE(model.connected(), inFirstPhase);
    }
};

QTEST_MAIN(tst_StandaloneModel)
#include "tst_standalonemodel.moc"
