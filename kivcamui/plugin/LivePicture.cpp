// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "LivePicture.h"

#include <kiv/PixelType.h>
#include <kivcam/IFrameSource.h>
#include <kivcamui/plugin/Conversions.h>

#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace kiv::cam::ui {

namespace {

// How long the measured frame rate averages over.
constexpr qint64 measureInterval = 500; // milliseconds

QString formatOf(const SCameraInfo& camera)
{
    const QString format = QStringLiteral("%1 x %2, %3")
                               .arg(camera.width)
                               .arg(camera.height)
                               .arg(toQString(PixelTypeToString(camera.pixelType)));
    return camera.adBits > 0 ? QStringLiteral("%1, %2 bits").arg(format).arg(camera.adBits)
                             : format;
}

// The largest significant sample value of a camera whose samples a display range applies to:
// one channel of unsigned 16-bit samples with more than 8 significant bits; 0 for the others.
int rangeMaximumOf(const SCameraInfo& camera)
{
    if (reduce::filterFactory()->defaultFilterFor(camera.pixelType) != CString("Linear16")
        || PixelTypeToDataType(camera.pixelType) != DATA_TYPE_UINT16)
        return 0;
    const int bits = camera.adBits > 0 && camera.adBits < 16 ? camera.adBits : 16;
    return bits > 8 ? (1 << bits) - 1 : 0;
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

// The shortest time between two pictures shown, in nanoseconds: a refresh of the primary screen
// (60 a second without one), less a tenth, so that a camera at the screen's own rate loses
// nothing to the jitter of its images.
qint64 refreshSpacing()
{
    // A QCoreApplication (a program without a GUI) has no screens.
    const QScreen* screen = qobject_cast<QGuiApplication*>(QCoreApplication::instance())
        ? QGuiApplication::primaryScreen()
        : nullptr;
    const double rate = screen && screen->refreshRate() > 0 ? screen->refreshRate() : 60;
    return static_cast<qint64>(0.9e9 / rate);
}

} // namespace

LivePicture::LivePicture(IFrameSource* source, QObject* parent) : QObject(parent), m_source(source)
{
    m_paceTimer.setSingleShot(true);
    m_paceTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_paceTimer, &QTimer::timeout, this, &LivePicture::showPicture);
    m_measureTimer.start();
    m_source->subscribe(this);
}

LivePicture::~LivePicture()
{
    // Once this returns no listener call is running or will come, and the pictures already
    // announced go with this object's pending events.
    m_source->unsubscribe(this);
}

void LivePicture::setAutoRange(bool automatic)
{
    setRange({automatic, m_range.low, m_range.high});
}

void LivePicture::setRangeLow(int low)
{
    if (!hasRange())
        return;
    low = std::clamp(low, 0, m_rangeMaximum - 1);
    setRange({m_range.automatic, low, std::max(low + 1, m_range.high)});
}

void LivePicture::setRangeHigh(int high)
{
    if (!hasRange())
        return;
    high = std::clamp(high, 1, m_rangeMaximum);
    setRange({m_range.automatic, std::min(m_range.low, high - 1), high});
}

void LivePicture::streamStarted(const SCameraInfo& camera)
{
    // The camera's own filter; the one that suits its pixel type when that one is unknown or
    // refuses the images.
    m_filter = reduce::filterFactory()->filterByName(camera.reduceFilter);
    m_fallbackFilter = reduce::filterFactory()->filterByName(
        reduce::filterFactory()->defaultFilterFor(camera.pixelType));
    m_ranged = rangeMaximumOf(camera) > 0;
    m_arrived = false;
    const std::uint64_t stream = ++m_stream;
    QMetaObject::invokeMethod(
        this, [this, camera, stream] { showStarted(camera, stream); }, Qt::QueuedConnection);
}

void LivePicture::frameArrived(const TSharedPtr<const CImage>& frame)
{
    if (!m_arrived) {
        m_arrived = true;
        m_firstNumber = frame->frameNumber;
    }
    QImage picture = reduce(frame);
    if (picture.isNull())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_pending = std::move(picture);
        m_pendingNumber = frame->frameNumber;
        m_pendingStream = m_stream;
        m_pendingFirst = m_firstNumber;
    }
    // One announcement at a time: the GUI thread takes whatever is newest when it gets to it.
    if (!m_pictureAnnounced.exchange(true))
        QMetaObject::invokeMethod(this, &LivePicture::showPicture, Qt::QueuedConnection);
}

void LivePicture::streamStopped()
{
    // A picture that has not been shown yet stays unshown.
    {
        const std::lock_guard lock(m_mutex);
        m_pending = QImage();
    }
    QMetaObject::invokeMethod(this, &LivePicture::showStopped, Qt::QueuedConnection);
}

QImage LivePicture::reduce(const TSharedPtr<const CImage>& frame)
{
    SRange range;
    {
        const std::lock_guard lock(m_mutex);
        range = m_requestedRange;
    }
    if (m_ranged && !range.automatic && frame->channels() == 1
        && frame->dataType() == DATA_TYPE_UINT16 && range.high > range.low)
        return mapRange(*frame, range);
    TSharedPtr<const CImage> display = m_filter ? m_filter(frame) : TSharedPtr<const CImage>();
    if (!display && m_fallbackFilter)
        display = m_fallbackFilter(frame);
    return display ? pictureOf(*display) : QImage();
}

QImage LivePicture::mapRange(const CImage& frame, const SRange& range)
{
    // The significant bits, as the filters read them (see kivreduce/CFilterFactory.h).
    const int bits = frame.adBits > 0 && frame.adBits < 16 ? frame.adBits : 16;
    const std::uint32_t mask = (1u << bits) - 1u;
    const int shift = std::clamp(frame.adBitShift, 0, 15);
    if (range != m_greysRange || mask != m_greysMask) {
        m_greys.resize(mask + 1);
        const double scale = 255.0 / (range.high - range.low);
        for (std::uint32_t value = 0; value <= mask; ++value) {
            const double grey = (static_cast<double>(value) - range.low) * scale + 0.5;
            const int level = static_cast<int>(std::clamp(grey, 0.0, 255.0));
            m_greys[value] = qRgb(level, level, level);
        }
        m_greysRange = range;
        m_greysMask = mask;
    }
    QImage picture(frame.width(), frame.height(), QImage::Format_RGB32);
    if (picture.isNull())
        return {};
    for (int y = 0; y < frame.height(); ++y) {
        const std::uint16_t* in = frame.row<std::uint16_t>(y);
        auto* out = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < frame.width(); ++x)
            out[x] = m_greys[(std::uint32_t(in[x]) >> shift) & mask];
    }
    return picture;
}

void LivePicture::showStarted(const SCameraInfo& camera, std::uint64_t stream)
{
    m_shownStream = stream;
    m_camera = camera;
    m_imageFormat = formatOf(camera);
    const int maximum = rangeMaximumOf(camera);
    const bool newScale = maximum != m_rangeMaximum;
    m_rangeMaximum = maximum;
    m_image = QImage();
    m_frameCount = 0;
    m_droppedFrames = 0;
    m_measuredFrames = 0;
    m_measureTimer.restart();
    Q_EMIT cameraChanged();
    Q_EMIT imageChanged();
    // A range of another scale makes no sense: the whole new scale instead.
    if (newScale)
        setRange({m_range.automatic, 0, maximum});
    if (!m_streaming) {
        m_streaming = true;
        Q_EMIT streamingChanged();
    }
    // A picture of this stream may have come before this did.
    showPicture();
}

void LivePicture::showPicture()
{
    // A picture that comes sooner than a refresh after the last one shown waits for the next,
    // still announced: a newer one replaces it meanwhile, and is counted as dropped when shown.
    if (m_lastShown.isValid()) {
        const qint64 wait = refreshSpacing() - m_lastShown.nsecsElapsed();
        if (wait > 0) {
            if (!m_paceTimer.isActive())
                m_paceTimer.start(static_cast<int>((wait + 999999) / 1000000));
            return;
        }
    }
    m_pictureAnnounced = false;
    QImage picture;
    std::uint64_t number = 0;
    std::uint64_t first = 0;
    {
        const std::lock_guard lock(m_mutex);
        // A picture of a stream whose start the GUI has not seen yet waits for it.
        if (m_pendingStream != m_shownStream)
            return;
        picture = std::exchange(m_pending, QImage());
        number = m_pendingNumber;
        first = m_pendingFirst;
    }
    if (picture.isNull())
        return;
    // The camera's images between the last one shown (or the stream's first one that came) and
    // this one never reached the panel.
    const std::uint64_t expected = m_frameCount == 0 ? first : m_lastNumber + 1;
    if (number > expected)
        m_droppedFrames += static_cast<qint64>(number - expected);
    m_lastNumber = number;
    m_image = std::move(picture);
    m_lastShown.start();
    ++m_frameCount;
    Q_EMIT imageChanged();
    measure();
}

void LivePicture::showStopped()
{
    if (m_streaming) {
        m_streaming = false;
        Q_EMIT streamingChanged();
    }
    if (m_measuredFrameRate != 0) {
        m_measuredFrameRate = 0;
        Q_EMIT measuredFrameRateChanged();
    }
}

void LivePicture::setRange(SRange range)
{
    if (range == m_range)
        return;
    m_range = range;
    {
        const std::lock_guard lock(m_mutex);
        m_requestedRange = range;
    }
    Q_EMIT rangeChanged();
}

void LivePicture::measure()
{
    ++m_measuredFrames;
    const qint64 elapsed = m_measureTimer.elapsed();
    if (elapsed < measureInterval)
        return;
    m_measuredFrameRate = m_measuredFrames * 1000.0 / static_cast<double>(elapsed);
    m_measuredFrames = 0;
    m_measureTimer.restart();
    Q_EMIT measuredFrameRateChanged();
}

} // namespace kiv::cam::ui
