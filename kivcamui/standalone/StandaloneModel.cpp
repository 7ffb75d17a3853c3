// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "StandaloneModel.h"

#include <kivcam/CCameras.h>
#include <kivcam/CControllerFactory.h>
#include <kivcam/CInterfaces.h>
#include <kivcamui/plugin/Conversions.h>
#include <kivcamui/plugin/GuiRelay.h>
#include <kivcamui/plugin/IControllerModelFactory.h>

#include <QStandardPaths>
#include <QThreadPool>
#include <QUrl>
#include <QtConcurrent/QtConcurrentRun>

#include <utility>

namespace kiv::cam::ui {

// One connect, shared between the model and the task of its current phase. The device the first
// phase opens, and the connection the second phase makes, belong to the attempt until the model
// takes them over at the end of a successful connect. An attempt given up before that - its
// model destroyed, or the model's controller changed while the controller connected - takes the
// camera down and closes the device when its last share goes, on whichever thread that is.
struct StandaloneModel::SConnectAttempt {
    explicit SConnectAttempt(const SCameraInfo& record) : camera(record) { }
    ~SConnectAttempt() { Abandon(); }
    SConnectAttempt(const SConnectAttempt&) = delete;
    SConnectAttempt& operator=(const SConnectAttempt&) = delete;

    // First phase: the transport of the camera's control device makes a device object, which
    // opens the device of the record. A failure leaves its reason in error.
    bool OpenDevice()
    {
        // A description that says it cannot connect, as a camera assembled by hand with a part
        // missing does, is not tried.
        if (!camera.canConnect) {
            error = !camera.errorMessage.empty() ? toQString(camera.errorMessage)
                : !camera.errorSummary.empty()   ? toQString(camera.errorSummary)
                                               : QStringLiteral("The camera cannot be connected.");
            return false;
        }
        const TSharedPtr<IInterface> transport
            = interfaces()->interfaceByName(camera.comm.interfaceName);
        if (!transport) {
            error = QStringLiteral("No transport \"%1\" is there to reach the camera's device.")
                        .arg(toQString(camera.comm.interfaceName));
            return false;
        }
        device = transport->createDevice();
        if (!device) {
            error = QStringLiteral("The transport \"%1\" cannot make a device.")
                        .arg(toQString(camera.comm.interfaceName));
            return false;
        }
        if (device->open(camera.comm, true))
            return true;
        error = toQString(device->errorMessage());
        if (error.isEmpty())
            error
                = QStringLiteral("The device \"%1\" of \"%2\" could not be opened.")
                      .arg(toQString(camera.comm.deviceName), toQString(camera.comm.interfaceName));
        device.reset();
        return false;
    }

    // Second phase: the controller brings the camera up through the open device; a loss from
    // then on goes to lost.
    bool ConnectController(CLostReport::Handler lost)
    {
        controller->setLostHandler(std::move(lost));
        connected = controller->connect(device, camera);
        if (connected)
            return true;
        controller->setLostHandler({});
        error = toQString(controller->errorMessage());
        if (error.isEmpty())
            error = QStringLiteral("The camera did not answer the controller \"%1\".")
                        .arg(toQString(controller->name()));
        device->close();
        device.reset();
        return false;
    }

    // The open device of a camera now connected, for the model to keep.
    TSharedPtr<IDevice> TakeDevice()
    {
        connected = false;
        return std::exchange(device, {});
    }

    void Abandon()
    {
        if (std::exchange(connected, false)) {
            controller->setLostHandler({});
            controller->disconnect();
        }
        if (device) {
            device->close();
            device.reset();
        }
    }

    const SCameraInfo camera;
    // The controller the second phase connects, set before that phase starts.
    TSharedPtr<IController> controller;
    TSharedPtr<IDevice> device;
    bool connected = false;
    // Why the phase that failed did, for people.
    QString error;
};

StandaloneModel::StandaloneModel(QObject* parent)
    : QObject(parent), m_cameraFinder(new CameraFinderModel(this)), m_relay(GuiRelay::Make(this))
{
    TArray<CString> names;
    cameras()->cameraTypeNames(names);
    for (const CString& name : names) {
        m_controllerNames.append(toQString(name));
        const TSharedPtr<ICamera> type = cameras()->cameraByName(name);
        m_controllerDisplayNames.append(type ? toQString(type->displayName) : QString());
    }

    QObject::connect(&m_connectWatcher, &QFutureWatcher<bool>::finished, this,
        &StandaloneModel::finishedConnectWatcher);
    QObject::connect(&m_connectWatcher2, &QFutureWatcher<bool>::finished, this,
        &StandaloneModel::finishedConnectWatcher2);
    QObject::connect(&m_disconnectWatcher, &QFutureWatcher<bool>::finished, this,
        &StandaloneModel::finishedDisconnectWatcher);
}

// A connect still running keeps its attempt; the task lets go of it when its phase ends, and
// nobody waits for that.
StandaloneModel::~StandaloneModel()
{
    m_relay->Detach();
    disconnect();
}

void StandaloneModel::setControllerName(const QString& name)
{
    if (name == m_controllerName)
        return;
    delete m_cameraModel;
    m_cameraModel = nullptr;
    const TSharedPtr<ICamera> type = cameras()->cameraByName(toCString(name));
    if (!type)
        return;
    m_controllerName = name;
    makeController(type->controller);
}

void StandaloneModel::selectCustomController(const CString& controller)
{
    if (m_controllerName.isEmpty() && m_controller && m_controller->name() == controller)
        return;
    delete m_cameraModel;
    m_cameraModel = nullptr;
    m_controllerName.clear();
    makeController(controller);
}

void StandaloneModel::makeController(const CString& controller)
{
    m_controller = controllerFactory()->createController(controller);
    // When no creator accepts the controller, the model stays null and the QML file keeps its
    // text. The first call here is what loads the controller UI plugins.
    controllerModelFactory()->CreateModel(m_controller, this, &m_cameraModel, &m_controllerQml);
    emit controllerChanged();
}

int StandaloneModel::controllerIndex() const
{
    return m_controllerNames.indexOf(m_controllerName);
}

void StandaloneModel::setControllerIndex(int index)
{
    if (index < 0 || index >= m_controllerNames.size() || index == controllerIndex())
        return;
    setControllerName(m_controllerNames.at(index));
}

void StandaloneModel::setCanSelectController(bool canSelect)
{
    if (canSelect == m_canSelectController)
        return;
    m_canSelectController = canSelect;
    emit canSelectControllerChanged();
}

QString StandaloneModel::configDir() const
{
    return QUrl::fromLocalFile(
        QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation))
        .toString();
}

void StandaloneModel::connect(CameraInfo* camera)
{
    if (!camera || m_connecting || m_disconnecting)
        return;
    disconnect();
    m_connecting = true;
    emit connectingChanged();
    setErrorMessage(QString());
    m_attempt = std::make_shared<SConnectAttempt>(camera->info());
    m_connectWatcher.setFuture(QtConcurrent::run(
        QThreadPool::globalInstance(), [attempt = m_attempt] { return attempt->OpenDevice(); }));
}

void StandaloneModel::finishedConnectWatcher()
{
    if (!m_connectWatcher.result()) {
        setErrorMessage(std::exchange(m_attempt, nullptr)->error);
        endConnecting(false);
        return;
    }
    // The camera's own controller, never the one of the camera before: a camera type the
    // catalogue does not know leaves the previous controller selected, and is not connected.
    const SCameraInfo& camera = m_attempt->camera;
    const QString type = toQString(camera.name);
    if (type.isEmpty())
        selectCustomController(camera.controller);
    else
        setControllerName(type);
    const bool known = type.isEmpty() || type == m_controllerName;
    if (!known || !m_controller) {
        const QString controller = toQString(camera.controller);
        m_attempt->Abandon();
        m_attempt.reset(); // and camera with it
        setErrorMessage(!known ? QStringLiteral("The camera type \"%1\" is unknown here.").arg(type)
                : !type.isEmpty()
                ? QStringLiteral("The camera type \"%1\" has no controller here.").arg(type)
                : controller.isEmpty()
                ? QStringLiteral("The camera's description names no camera type and no controller.")
                : QStringLiteral("There is no controller \"%1\" here.").arg(controller));
        endConnecting(false);
        return;
    }
    m_attempt->controller = m_controller;
    // A loss reported after this connection was replaced, or its model went, is dropped.
    CLostReport::Handler lost
        = [this, relay = m_relay, connection = ++m_connection](const CString& reason) {
              // Runs only while the model lives: the relay posts to it, or not at all.
              relay->Post([this, connection, reason] { lose(connection, toQString(reason)); });
          };
    m_connectWatcher2.setFuture(QtConcurrent::run(
        QThreadPool::globalInstance(), [attempt = m_attempt, lost = std::move(lost)] {
            return attempt->ConnectController(lost);
        }));
}

void StandaloneModel::finishedConnectWatcher2()
{
    const std::shared_ptr<SConnectAttempt> attempt = std::exchange(m_attempt, nullptr);
    bool connected = m_connectWatcher2.result();
    // A controller selected while this one connected is not connected; this one goes down again.
    if (connected && attempt->controller.get() != m_controller.get()) {
        attempt->Abandon();
        connected = false;
    }
    if (connected)
        m_device = attempt->TakeDevice();
    else
        setErrorMessage(attempt->error.isEmpty()
                ? QStringLiteral("Another controller was chosen while the camera connected.")
                : attempt->error);
    endConnecting(connected);
}

void StandaloneModel::lose(std::uint64_t connection, const QString& reason)
{
    if (connection != m_connection || !m_connected || m_disconnecting)
        return;
    setErrorMessage(reason);
    disconnect();
}

void StandaloneModel::setErrorMessage(const QString& message)
{
    if (message == m_errorMessage)
        return;
    m_errorMessage = message;
    emit errorMessageChanged();
}

// Disconnecting is synchronous; this watcher is never given a task.
void StandaloneModel::finishedDisconnectWatcher()
{
}

void StandaloneModel::endConnecting(bool connected)
{
    if (connected != m_connected) {
        m_connected = connected;
        emit connectedChanged();
    }
    m_connecting = false;
    emit connectingChanged();
}

void StandaloneModel::disconnect()
{
    if (m_connecting || m_disconnecting || !m_connected)
        return;
    m_disconnecting = true;
    emit disconnectingChanged();
    if (m_controller) {
        m_controller->setLostHandler({});
        m_controller->disconnect();
    }
    if (m_device)
        m_device->close();
    m_device.reset();
    m_connected = false;
    emit connectedChanged();
    m_disconnecting = false;
    emit disconnectingChanged();
}

} // namespace kiv::cam::ui
