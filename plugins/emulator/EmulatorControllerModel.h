#pragma once

#include <kiv/TSharedPtr.h>
#include <kivcam/IController.h>
#include <kivcam/IEmulatorController.h>
#include <kivcam/IFrameListener.h>
#include <kivcamui/plugin/ControllerModel.h>
#include <kivreduce/CFilterFactory.h>

#include <QElapsedTimer>
#include <QImage>
#include <QString>

#include <atomic>
#include <cstdint>
#include <mutex>

namespace kiv::cam::ui {

// The model of the emulated cameras' controller panel: what the panel shows of the camera its
// controller connects, the camera's live picture, and the controls that go to the controller.
//
// Images come in on the stream's thread, where the camera's reduction filter turns each into a
// display image; the GUI thread only takes the finished picture, at most one at a time (a newer
// picture replaces one the GUI has not taken yet, and the numbers show what was missed). The
// model leaves the stream in its destructor, and from then on no image reaches it.
class EmulatorControllerModel : public ControllerModel, private IFrameListener {
    Q_OBJECT
    Q_PROPERTY(bool connected READ connected NOTIFY connectedChanged)
    Q_PROPERTY(QString controllerName READ controllerName CONSTANT)
    // The connected camera, or the last one; empty before the first connect.
    Q_PROPERTY(QString cameraType READ cameraType NOTIFY cameraChanged)
    Q_PROPERTY(QString model READ model NOTIFY cameraChanged)
    Q_PROPERTY(QString serial READ serial NOTIFY cameraChanged)
    Q_PROPERTY(QString identity READ identity NOTIFY cameraChanged)
    Q_PROPERTY(QString commDevice READ commDevice NOTIFY cameraChanged)
    Q_PROPERTY(QString videoDevice READ videoDevice NOTIFY cameraChanged)
    Q_PROPERTY(QString imageFormat READ imageFormat NOTIFY cameraChanged)
    // The live picture, and what has been shown of the stream since it started.
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    Q_PROPERTY(qint64 frameCount READ frameCount NOTIFY imageChanged)
    Q_PROPERTY(qint64 droppedFrames READ droppedFrames NOTIFY imageChanged)
    Q_PROPERTY(double measuredFrameRate READ measuredFrameRate NOTIFY measuredFrameRateChanged)
    // Controls of the camera.
    Q_PROPERTY(double frameRate READ frameRate WRITE setFrameRate NOTIFY frameRateChanged)
    Q_PROPERTY(double maxFrameRate READ maxFrameRate CONSTANT)

public:
    // The model of an emulated controller's panel, subscribed to its images; controller is an
    // IEmulatorController.
    EmulatorControllerModel(TSharedPtr<IController> controller, QObject* parent);
    ~EmulatorControllerModel() override;

    // The connected camera's (SCameraInfo::hasNucMask); 0 while none is connected.
    unsigned char hasNucMask() override;

    bool connected() const { return m_connected; }
    QString controllerName() const;
    QString cameraType() const { return m_cameraType; }
    QString model() const { return m_model; }
    QString serial() const { return m_serial; }
    QString identity() const { return m_identity; }
    QString commDevice() const { return m_commDevice; }
    QString videoDevice() const { return m_videoDevice; }
    QString imageFormat() const { return m_imageFormat; }
    QImage image() const { return m_image; }
    qint64 frameCount() const { return m_frameCount; }
    qint64 droppedFrames() const { return m_droppedFrames; }
    double measuredFrameRate() const { return m_measuredFrameRate; }
    double frameRate() const;
    // Refuses, silently, a rate the camera cannot be set to.
    void setFrameRate(double rate);
    double maxFrameRate() const;

    // Runs a NUC on the connected camera; false when there is none or it has no NUC.
    Q_INVOKABLE bool nuc();

signals:
    void connectedChanged();
    void cameraChanged();
    void imageChanged();
    void measuredFrameRateChanged();
    void frameRateChanged();

private:
    // The stream's side, on its threads (IFrameListener).
    void streamStarted(const SCameraInfo& camera) override;
    void frameArrived(const TSharedPtr<const CImage>& frame) override;
    void streamStopped() override;

    // The GUI thread's side.
    void showCamera(const SCameraInfo& camera);
    void showPicture();
    void showStopped();
    void setConnected(bool connected);
    void measure();

    const TSharedPtr<IController> m_controller;
    IEmulatorController* const m_emulator; // m_controller, as what it is

    // Touched only within listener calls, which never overlap.
    reduce::FilterFunction m_filter = nullptr;
    reduce::FilterFunction m_fallbackFilter = nullptr;
    bool m_arrived = false; // an image of this stream has arrived
    std::uint64_t m_firstNumber = 0; // the number of the first

    // The hand-over from the stream to the GUI thread: the newest picture, its number, and the
    // number of the stream's first image.
    std::mutex m_pendingMutex;
    QImage m_pending;
    std::uint64_t m_pendingNumber = 0;
    std::uint64_t m_pendingFirst = 0;
    std::atomic<bool> m_pictureAnnounced{false};

    // The GUI thread's state.
    bool m_connected = false;
    unsigned char m_hasNucMask = 0;
    QString m_cameraType;
    QString m_model;
    QString m_serial;
    QString m_identity;
    QString m_commDevice;
    QString m_videoDevice;
    QString m_imageFormat;
    QImage m_image;
    qint64 m_frameCount = 0;
    qint64 m_droppedFrames = 0;
    std::uint64_t m_lastNumber = 0;
    double m_measuredFrameRate = 0;
    QElapsedTimer m_measureTimer;
    int m_measuredFrames = 0;
};

} // namespace kiv::cam::ui
