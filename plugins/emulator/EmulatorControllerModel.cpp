#include "EmulatorControllerModel.h"

#include <kiv/PixelType.h>
#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/Conversions.h>

#include <QMetaObject>

#include <utility>

namespace kiv::cam::ui {

namespace {

// How long the measured frame rate averages over.
constexpr qint64 measureInterval = 500; // milliseconds

QString deviceText(const SDeviceInfo& device)
{
    if (device.interfaceName.empty())
        return {};
    return toQString(device.interfaceName) + ": " + toQString(device.deviceName);
}

// A copy of the display image in the format Qt Quick draws fastest.
QImage pictureOf(const CImage& display)
{
    const QImage::Format format
        = display.channels() == 1 ? QImage::Format_Grayscale8 : QImage::Format_RGBX8888;
    // Read in place, for the conversion only, which always copies: no format above is RGB32.
    const QImage wrapped(display.bits(), display.width(), display.height(),
        static_cast<qsizetype>(display.stride()), format);
    return wrapped.convertToFormat(QImage::Format_RGB32);
}

} // namespace

EmulatorControllerModel::EmulatorControllerModel(
    TSharedPtr<IController> controller, QObject* parent)
    : ControllerModel(parent),
      m_controller(std::move(controller)),
      m_emulator(dynamic_cast<IEmulatorController*>(m_controller.get()))
{
    m_measureTimer.start();
    // A stream that runs already is told at once, and shown when the event loop next runs.
    m_emulator->frameSource()->subscribe(this);
}

EmulatorControllerModel::~EmulatorControllerModel()
{
    // Once this returns no listener call is running or will come, and the pictures already
    // announced go with this object's pending events.
    m_emulator->frameSource()->unsubscribe(this);
}

unsigned char EmulatorControllerModel::hasNucMask()
{
    return m_hasNucMask;
}

QString EmulatorControllerModel::controllerName() const
{
    return toQString(m_controller->name());
}

double EmulatorControllerModel::frameRate() const
{
    return m_emulator->frameSource()->frameRate();
}

void EmulatorControllerModel::setFrameRate(double rate)
{
    if (rate != frameRate() && m_emulator->frameSource()->setFrameRate(rate))
        emit frameRateChanged();
}

double EmulatorControllerModel::maxFrameRate() const
{
    return IFrameSource::maxFrameRate;
}

bool EmulatorControllerModel::nuc()
{
    return m_emulator->runNuc();
}

void EmulatorControllerModel::streamStarted(const SCameraInfo& camera)
{
    // The camera's own filter; the one that suits its pixel type when that one is unknown or
    // refuses the images.
    m_filter = reduce::filterFactory()->filterByName(camera.reduceFilter);
    m_fallbackFilter = reduce::filterFactory()->filterByName(
        reduce::filterFactory()->defaultFilterFor(camera.pixelType));
    m_arrived = false;
    QMetaObject::invokeMethod(
        this, [this, camera] { showCamera(camera); }, Qt::QueuedConnection);
}

void EmulatorControllerModel::frameArrived(const TSharedPtr<const CImage>& frame)
{
    if (!m_arrived) {
        m_arrived = true;
        m_firstNumber = frame->frameNumber;
    }
    TSharedPtr<const CImage> display = m_filter ? m_filter(frame) : TSharedPtr<const CImage>();
    if (!display && m_fallbackFilter)
        display = m_fallbackFilter(frame);
    if (!display)
        return;
    QImage picture = pictureOf(*display);
    {
        const std::lock_guard lock(m_pendingMutex);
        m_pending = std::move(picture);
        m_pendingNumber = frame->frameNumber;
        m_pendingFirst = m_firstNumber;
    }
    // One announcement at a time: the GUI thread takes whatever is newest when it gets to it.
    if (!m_pictureAnnounced.exchange(true))
        QMetaObject::invokeMethod(
            this, &EmulatorControllerModel::showPicture, Qt::QueuedConnection);
}

void EmulatorControllerModel::streamStopped()
{
    // A picture that has not been shown yet stays unshown.
    {
        const std::lock_guard lock(m_pendingMutex);
        m_pending = QImage();
    }
    QMetaObject::invokeMethod(this, &EmulatorControllerModel::showStopped, Qt::QueuedConnection);
}

void EmulatorControllerModel::showCamera(const SCameraInfo& camera)
{
    m_cameraType = toQString(camera.displayName.empty() ? camera.name : camera.displayName);
    m_model = toQString(camera.model);
    m_serial = toQString(camera.serial);
    m_identity = toQString(camera.identity);
    m_commDevice = deviceText(camera.comm);
    m_videoDevice = deviceText(camera.video);
    m_imageFormat = QStringLiteral("%1 x %2, %3, %4 bits")
                        .arg(camera.width)
                        .arg(camera.height)
                        .arg(toQString(PixelTypeToString(camera.pixelType)))
                        .arg(camera.adBits);
    m_image = QImage();
    m_frameCount = 0;
    m_droppedFrames = 0;
    m_measuredFrames = 0;
    m_measureTimer.restart();
    emit cameraChanged();
    emit imageChanged();
    emit frameRateChanged();
    const unsigned char nucMask = camera.hasNucMask ? 1 : 0;
    if (nucMask != m_hasNucMask) {
        m_hasNucMask = nucMask;
        emit hasNucMaskChanged();
    }
    setConnected(true);
}

void EmulatorControllerModel::showPicture()
{
    m_pictureAnnounced = false;
    QImage picture;
    std::uint64_t number = 0;
    std::uint64_t first = 0;
    {
        const std::lock_guard lock(m_pendingMutex);
        picture = std::exchange(m_pending, QImage());
        number = m_pendingNumber;
        first = m_pendingFirst;
    }
    if (picture.isNull())
        return;
    // The camera's images between the last one shown (or the stream's first one that came) and
    // this one never reached the panel.
    m_droppedFrames += static_cast<qint64>(number - (m_frameCount == 0 ? first : m_lastNumber + 1));
    m_lastNumber = number;
    m_image = std::move(picture);
    ++m_frameCount;
    emit imageChanged();
    measure();
}

void EmulatorControllerModel::showStopped()
{
    setConnected(false);
    if (m_hasNucMask != 0) {
        m_hasNucMask = 0;
        emit hasNucMaskChanged();
    }
    if (m_measuredFrameRate != 0) {
        m_measuredFrameRate = 0;
        emit measuredFrameRateChanged();
    }
}

void EmulatorControllerModel::setConnected(bool connected)
{
    if (connected == m_connected)
        return;
    m_connected = connected;
    emit connectedChanged();
}

void EmulatorControllerModel::measure()
{
    ++m_measuredFrames;
    const qint64 elapsed = m_measureTimer.elapsed();
    if (elapsed < measureInterval)
        return;
    m_measuredFrameRate = m_measuredFrames * 1000.0 / static_cast<double>(elapsed);
    m_measuredFrames = 0;
    m_measureTimer.restart();
    emit measuredFrameRateChanged();
}

} // namespace kiv::cam::ui
