// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/IController.h>
#include <kivcam/IDevice.h>
#include <kivcamui/camera/CameraFinderModel.h>
#include <kivcamui/camera/CameraInfo.h>
#include <kivcamui/kivcamui_export.h>

#include <QFutureWatcher>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>

namespace kiv::cam::ui {

class GuiRelay;

// Connects one camera at a time and chooses its controller. A connect runs in two phases on
// Qt's global thread pool: the first opens the camera's control device, then, on the GUI thread,
// the controller of the camera's type is selected together with the panel that a controller UI
// plugin supplies for it (cameraModel and controllerQml), and the second phase connects the
// controller to the open device. A camera assembled by hand names no camera type, only a
// controller: that controller is selected, and controllerName is empty while it is. A camera
// whose description says it cannot connect (canConnect false) fails at once with its reason.
// disconnect() is synchronous. The selected controller and its panel outlive a disconnect.
//
// Nobody waits for a running phase. A model destroyed meanwhile leaves the connect to its task,
// which takes the camera down and closes the device when it ends; a connect whose controller was
// replaced (controllerName changed) while it connected is taken down again, and fails.
class KIVCAMUI_EXPORT StandaloneModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* cameraModel READ cameraModel NOTIFY controllerChanged)
    Q_PROPERTY(QString controllerQml READ controllerQml NOTIFY controllerChanged)
    Q_PROPERTY(bool connected READ connected NOTIFY connectedChanged)
    Q_PROPERTY(kiv::cam::ui::CameraFinderModel* cameraFinder READ cameraFinder CONSTANT)
    Q_PROPERTY(QStringList controllerNames READ controllerNames CONSTANT)
    Q_PROPERTY(QStringList controllerDisplayNames READ controllerDisplayNames CONSTANT)
    Q_PROPERTY(
        QString controllerName READ controllerName WRITE setControllerName NOTIFY controllerChanged)
    Q_PROPERTY(
        int controllerIndex READ controllerIndex WRITE setControllerIndex NOTIFY controllerChanged)
    Q_PROPERTY(bool canSelectController READ canSelectController WRITE setCanSelectController NOTIFY
            canSelectControllerChanged)
    Q_PROPERTY(QString configDir READ configDir CONSTANT)
    Q_PROPERTY(bool connecting READ connecting NOTIFY connectingChanged)
    Q_PROPERTY(bool disconnecting READ disconnecting NOTIFY disconnectingChanged)
    // Why the last connect failed, or why the connected camera was lost, for people; empty while
    // there is nothing to say. A new connect clears it.
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)

public:
    explicit StandaloneModel(QObject* parent = nullptr);
    // Disconnects a connected camera first.
    ~StandaloneModel() override;

    // The panel's model made by the controller model factory for the controller, a child of
    // this model; null when no creator accepted the controller.
    QObject* cameraModel() const { return m_cameraModel; }
    // The panel's QML file; keeps its text when no creator accepts a new controller.
    QString controllerQml() const { return m_controllerQml; }
    bool connected() const { return m_connected; }
    CameraFinderModel* cameraFinder() const { return m_cameraFinder; }
    // The camera type names of the camera catalogue, and their display names in the same order.
    QStringList controllerNames() const { return m_controllerNames; }
    QStringList controllerDisplayNames() const { return m_controllerDisplayNames; }
    QString controllerName() const { return m_controllerName; }
    // Selects the controller of a camera type: drops the panel's model, makes a new controller
    // and asks the controller model factory for its panel. A name the catalogue does not know
    // leaves the model without a panel model, and emits nothing.
    void setControllerName(const QString& name);
    // The index of controllerName in controllerNames, or -1.
    int controllerIndex() const;
    // Ignores an index out of range.
    void setControllerIndex(int index);
    // Stored for the host's QML; the model itself does not read it.
    bool canSelectController() const { return m_canSelectController; }
    void setCanSelectController(bool canSelect);
    // The application's local data folder as a file URL (not created here).
    QString configDir() const;
    bool connecting() const { return m_connecting; }
    bool disconnecting() const { return m_disconnecting; }
    QString errorMessage() const { return m_errorMessage; }

    // Disconnects what is connected and starts connecting the camera described; ignored while
    // connecting or disconnecting, and for a null camera. Failure shows as connecting going back
    // to false with connected false, and errorMessage says why.
    Q_INVOKABLE void connect(kiv::cam::ui::CameraInfo* camera);
    // Takes the connected camera down and closes its device; ignored unless connected. A camera
    // that is lost while connected (its device gone, control lost, its pictures stopped) is
    // taken down the same way, with errorMessage set first.
    Q_INVOKABLE void disconnect();

signals:
    void controllerChanged();
    void connectedChanged();
    void canSelectControllerChanged();
    void connectingChanged();
    void disconnectingChanged();
    void errorMessageChanged();

private slots:
    void finishedConnectWatcher();
    void finishedConnectWatcher2();
    void finishedDisconnectWatcher();

private:
    struct SConnectAttempt;

    // Selects the controller that a camera assembled by hand names, as the controller of no
    // camera type (controllerName empty); the one selected already when it is that controller.
    void selectCustomController(const CString& controller);
    // Makes that controller and asks for its panel.
    void makeController(const CString& controller);
    void endConnecting(bool connected);
    // The controller of that connection lost its camera.
    void lose(std::uint64_t connection, const QString& reason);
    void setErrorMessage(const QString& message);

    CameraFinderModel* m_cameraFinder;
    TSharedPtr<IController> m_controller;
    // The control device of the connected camera.
    TSharedPtr<IDevice> m_device;
    QObject* m_cameraModel = nullptr;
    QString m_controllerQml;
    bool m_connected = false;
    QString m_controllerName;
    QStringList m_controllerNames;
    QStringList m_controllerDisplayNames;
    bool m_canSelectController = false;
    bool m_connecting = false;
    bool m_disconnecting = false;
    QString m_errorMessage;
    // Counts the connections, so that a loss is taken only from the current one.
    std::uint64_t m_connection = 0;
    // Hands losses from the controller's threads to this model.
    const std::shared_ptr<GuiRelay> m_relay;
    // The connect in progress, shared with its phase's task.
    std::shared_ptr<SConnectAttempt> m_attempt;
    QFutureWatcher<bool> m_connectWatcher;
    QFutureWatcher<bool> m_connectWatcher2;
    QFutureWatcher<bool> m_disconnectWatcher;
};

} // namespace kiv::cam::ui
