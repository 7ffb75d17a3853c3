// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGenICamFrameSource.h"

#include "CAravisDevice.h"

#include <kiv/PixelType.h>
#include <kiv/strprintf.h>

#include <algorithm>
#include <arpa/inet.h>
#include <arv.h>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>

namespace kiv::cam {

namespace {

using Clock = std::chrono::steady_clock;

// How long the receiving thread waits for a buffer before it looks whether to stop.
constexpr guint64 popTimeoutUs = 50000;
// The buffer pool holds frames for a quarter of a second, within these bounds.
constexpr double poolSeconds = 0.25;
constexpr int minBuffers = 8;
constexpr int maxBuffers = 64;
constexpr gint64 maxPoolBytes = 256 * 1024 * 1024;
// A GigE Vision stream's socket holds several frames, so that none is lost while the
// receiving thread is busy: the system's default buffer holds a fraction of one.
constexpr gint64 socketFrames = 4;
// Arrival times of complete frames kept to measure the rate of a camera whose rate is unknown.
constexpr std::size_t measuredFrames = 32;

// The text of an Aravis error, which is then cleared.
CString takeError(GError*& failure)
{
    const CString text(failure && failure->message ? failure->message : "unknown error");
    g_clear_error(&failure);
    return text;
}

// A camera that does not acquire, or is gone, has nothing to stop: errors do not matter.
void stopAcquisition(ArvDevice* device)
{
    GError* failure = nullptr;
    arv_device_execute_command(device, "AcquisitionStop", &failure);
    g_clear_error(&failure);
}

// Gives the UDP socket of a GigE Vision stream a receive buffer of that size. Aravis sizes it
// itself only as each frame begins, by which time the first frame has overflowed the system's
// default buffer; the socket is found by its port among the process's descriptors.
void sizeReceiveBuffer(ArvGvStream* stream, int bytes)
{
    const guint16 port = arv_gv_stream_get_port(stream);
    DIR* descriptors = opendir("/proc/self/fd");
    if (!descriptors)
        return;
    while (const dirent* entry = readdir(descriptors)) {
        const int fd = std::atoi(entry->d_name);
        sockaddr_in address{};
        socklen_t length = sizeof address;
        int type = 0;
        socklen_t typeLength = sizeof type;
        if (fd > 0 && getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) == 0
            && address.sin_family == AF_INET && ntohs(address.sin_port) == port
            && getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &typeLength) == 0 && type == SOCK_DGRAM)
            setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes);
    }
    closedir(descriptors);
}

CString nameOf(const SCameraInfo& camera)
{
    return !camera.displayName.empty() ? camera.displayName
        : !camera.serial.empty()       ? camera.serial
                                       : CString("the camera");
}

} // namespace

CGenICamFrameSource::CGenICamFrameSource() = default;

CGenICamFrameSource::~CGenICamFrameSource()
{
    stop(nullptr);
}

bool CGenICamFrameSource::start(ArvDevice* device, const SCameraInfo& camera, CString& error)
{
    stop(device);
    const CString name = nameOf(camera);
    if (!device) {
        error = strprintf("%s is not open: connect it before starting its images.", name.data());
        return false;
    }
    GError* failure = nullptr;
    const gint64 payload = arv_device_get_integer_feature_value(device, "PayloadSize", &failure);
    const gint64 width
        = failure ? 0 : arv_device_get_integer_feature_value(device, "Width", &failure);
    const gint64 height
        = failure ? 0 : arv_device_get_integer_feature_value(device, "Height", &failure);
    const gint64 format
        = failure ? 0 : arv_device_get_integer_feature_value(device, "PixelFormat", &failure);
    if (failure) {
        error = strprintf("The image format of %s cannot be read (%s): check that it is a "
                          "GenICam camera that streams images, then connect again.",
            name.data(), takeError(failure).data());
        return false;
    }
    SGuid pixelType;
    int adBits = 0;
    if (!CGenICamPixels::Describe(static_cast<std::uint32_t>(format), pixelType, adBits, error))
        return false;
    if (payload <= 0 || width < 1 || height < 1 || width > UINT16_MAX || height > UINT16_MAX) {
        error = strprintf("%s gives an image of %lld x %lld pixels in %lld bytes, which cannot be "
                          "shown: set its Width and Height to at most 65535 pixels.",
            name.data(), static_cast<long long>(width), static_cast<long long>(height),
            static_cast<long long>(payload));
        return false;
    }

    // A camera still acquiring for an earlier client would start the new stream mid-frame.
    stopAcquisition(device);
    if (ARV_IS_GV_DEVICE(device)) {
        // A packet socket would need privileges: the plain UDP socket serves every user.
        arv_gv_device_set_stream_options(
            ARV_GV_DEVICE(device), ARV_GV_STREAM_OPTION_PACKET_SOCKET_DISABLED);
    }
    ArvStream* stream = arv_device_create_stream(device, nullptr, nullptr, &failure);
    if (!stream) {
        error = strprintf("The image stream of %s cannot be opened (%s): check that no other "
                          "program streams from it, then connect again.",
            name.data(), takeError(failure).data());
        return false;
    }
    if (ARV_IS_GV_STREAM(stream)) {
        const int socketBytes = static_cast<int>(std::min<gint64>(payload * socketFrames, INT_MAX));
        g_object_set(stream, "socket-buffer", ARV_GV_STREAM_SOCKET_BUFFER_FIXED,
            "socket-buffer-size", socketBytes, "packet-resend", ARV_GV_STREAM_PACKET_RESEND_ALWAYS,
            nullptr);
        sizeReceiveBuffer(ARV_GV_STREAM(stream), socketBytes);
    }
    double rate = camera.frameRate;
    {
        const std::lock_guard lock(m_mutex);
        rate = m_cameraRate > 0 ? m_cameraRate : rate;
        m_stopping = false;
        m_pending = {};
        m_statistics = {};
        m_arrivals.clear();
    }
    const double poolRate = rate > 0 ? std::min(rate, maxFrameRate) : 0;
    const int wanted
        = std::clamp(static_cast<int>(std::ceil(poolRate * poolSeconds)), minBuffers, maxBuffers);
    const int buffers
        = static_cast<int>(std::max<gint64>(2, std::min<gint64>(wanted, maxPoolBytes / payload)));
    for (int i = 0; i < buffers; ++i)
        arv_stream_push_buffer(stream, arv_buffer_new_allocate(static_cast<size_t>(payload)));

    m_stream = stream;
    m_name = name;
    m_lastError = CString();
    m_lastId = 0;
    m_idBase = 0;
    m_streaming = true;
    SCameraInfo streaming = camera;
    streaming.width = static_cast<std::uint16_t>(width);
    streaming.height = static_cast<std::uint16_t>(height);
    if (streaming.pixelType != pixelType) {
        // The camera's filter suits another pixel type; the listeners take the one of this.
        streaming.reduceFilter = CString();
        streaming.pixelType = pixelType;
    }
    streaming.dataType = PixelTypeToDataType(pixelType);
    streaming.adBits = adBits;
    streaming.adBitShift = 0;
    m_listeners.started(streaming);
    m_receiver = std::thread(&CGenICamFrameSource::Receive, this);
    m_deliverer = std::thread(&CGenICamFrameSource::Deliver, this);

    arv_device_execute_command(device, "AcquisitionStart", &failure);
    if (failure) {
        error = strprintf("%s does not start acquiring images (%s): check its acquisition and "
                          "trigger settings, then connect again.",
            name.data(), takeError(failure).data());
        stop(device);
        return false;
    }
    return true;
}

void CGenICamFrameSource::stop(ArvDevice* device)
{
    if (isDeliveryThread()) {
        EndDeliveries();
        return;
    }
    if (!m_streaming)
        return;
    if (device)
        stopAcquisition(device);
    Halt();
    m_listeners.stopped();
    ReadStreamStatistics();
    // The stream of a camera that is gone takes seconds to end: not the caller's.
    if (device)
        g_object_unref(m_stream);
    else
        CAravisDevice::ReleaseInBackground(m_stream);
    m_stream = nullptr;
    m_streaming = false;
}

bool CGenICamFrameSource::isStreaming() const
{
    return m_streaming;
}

bool CGenICamFrameSource::isDeliveryThread() const
{
    return m_delivererId.load() == std::this_thread::get_id();
}

void CGenICamFrameSource::subscribe(IFrameListener* listener)
{
    m_listeners.subscribe(listener);
}

void CGenICamFrameSource::unsubscribe(IFrameListener* listener)
{
    m_listeners.unsubscribe(listener);
}

double CGenICamFrameSource::frameRate() const
{
    const std::lock_guard lock(m_mutex);
    if (m_cameraRate > 0 || m_arrivals.size() < 2)
        return m_cameraRate;
    const double seconds
        = std::chrono::duration<double>(m_arrivals.back() - m_arrivals.front()).count();
    return seconds > 0 ? double(m_arrivals.size() - 1) / seconds : 0;
}

bool CGenICamFrameSource::setFrameRate(double rate)
{
    if (!(rate > 0 && rate <= maxFrameRate))
        return false;
    std::function<bool(double)> writer;
    {
        const std::lock_guard lock(m_mutex);
        writer = m_rateWriter;
    }
    return writer && writer(rate);
}

SFrameStatistics CGenICamFrameSource::statistics() const
{
    const std::lock_guard lock(m_mutex);
    return m_statistics;
}

void CGenICamFrameSource::setRateWriter(std::function<bool(double)> writer)
{
    const std::lock_guard lock(m_mutex);
    m_rateWriter = std::move(writer);
}

void CGenICamFrameSource::setCameraRate(double rate)
{
    const std::lock_guard lock(m_mutex);
    m_cameraRate = rate > 0 ? rate : 0;
}

void CGenICamFrameSource::setStreamLost(std::function<void(const CString& message)> lost)
{
    const std::lock_guard lock(m_mutex);
    m_lost = std::move(lost);
}

TSharedPtr<CImage> CGenICamFrameSource::ImageOf(ArvBuffer* buffer)
{
    const ArvBufferStatus status = arv_buffer_get_status(buffer);
    if (status != ARV_BUFFER_STATUS_SUCCESS) {
        m_lastError = status == ARV_BUFFER_STATUS_SIZE_MISMATCH
            ? CString("Its frames no longer fit the stream's buffers: its image size changed "
                      "while it streamed, so start its images again.")
            : status == ARV_BUFFER_STATUS_MISSING_PACKETS || status == ARV_BUFFER_STATUS_TIMEOUT
            ? CString("Its frames arrive with parts missing: check the network between the camera "
                      "and this computer.")
            : strprintf("Its frames arrive broken (Aravis buffer status %d): connect it again.",
                int(status));
        return {};
    }
    size_t size = 0;
    const void* data = arv_buffer_get_image_data(buffer, &size);
    if (!data) {
        m_lastError = strprintf("Its frames carry no image (GenICam payload type %d): set it to "
                                "stream images.",
            int(arv_buffer_get_payload_type(buffer)));
        return {};
    }
    gint xPadding = 0;
    gint yPadding = 0;
    arv_buffer_get_image_padding(buffer, &xPadding, &yPadding);
    const CGenICamPixels::SLayout layout{arv_buffer_get_image_pixel_format(buffer),
        arv_buffer_get_image_width(buffer), arv_buffer_get_image_height(buffer), xPadding};
    CString error;
    TSharedPtr<CImage> image = CGenICamPixels::Convert(layout, data, size, error);
    if (!image) {
        m_lastError = error;
        return {};
    }
    m_lastError = CString();
    image->frameNumber = FrameNumber(arv_buffer_get_frame_id(buffer));
    const guint64 timestamp = arv_buffer_get_timestamp(buffer);
    image->timestamp = static_cast<std::int64_t>(
        timestamp != 0 ? timestamp : arv_buffer_get_system_timestamp(buffer));
    return image;
}

void CGenICamFrameSource::Receive()
{
    Clock::time_point lastComplete = Clock::now();
    bool lostTold = false;
    for (;;) {
        {
            const std::lock_guard lock(m_mutex);
            if (m_stopping)
                return;
        }
        ArvBuffer* buffer = arv_stream_timeout_pop_buffer(m_stream, popTimeoutUs);
        const Clock::time_point now = Clock::now();
        if (buffer) {
            TSharedPtr<const CImage> image = ImageOf(buffer);
            arv_stream_push_buffer(m_stream, buffer);
            ReadStreamStatistics();
            {
                const std::lock_guard lock(m_mutex);
                if (!image) {
                    ++m_statistics.incompleteFrames;
                } else {
                    if (m_pending)
                        ++m_statistics.lateFrames;
                    std::swap(m_pending, image);
                    m_arrivals.push_back(now);
                    if (m_arrivals.size() > measuredFrames)
                        m_arrivals.pop_front();
                    lastComplete = now;
                }
            }
            m_wake.notify_all();
        }
        if (!lostTold && now - lastComplete > LostAfter()) {
            lostTold = true;
            std::function<void(const CString&)> lost;
            {
                const std::lock_guard lock(m_mutex);
                lost = m_lost;
            }
            const long long seconds
                = std::chrono::duration_cast<std::chrono::seconds>(now - lastComplete).count();
            const CString message
                = strprintf("The images of %s stopped: no complete frame arrived for %lld s. %s",
                    m_name.data(), seconds,
                    m_lastError.empty() ? "Check its cable and power, then connect again."
                                        : m_lastError.data());
            if (lost)
                lost(message);
        }
    }
}

void CGenICamFrameSource::Deliver()
{
    m_delivererId = std::this_thread::get_id();
    for (;;) {
        TSharedPtr<const CImage> image;
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_stopping || m_pending; });
            if (m_stopping)
                return;
            std::swap(image, m_pending);
            ++m_statistics.completeFrames;
        }
        m_listeners.deliver(image);
    }
}

void CGenICamFrameSource::Halt()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    if (m_receiver.joinable())
        m_receiver.join();
    if (m_deliverer.joinable())
        m_deliverer.join();
    m_delivererId = std::thread::id();
    const std::lock_guard lock(m_mutex);
    m_pending = {};
}

void CGenICamFrameSource::EndDeliveries()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    m_listeners.stopped();
}

std::uint64_t CGenICamFrameSource::FrameNumber(std::uint64_t id)
{
    // GigE Vision's 16-bit frame ids run from 1 to 65535, then start at 1 again.
    if (id < m_lastId && m_lastId <= UINT16_MAX && m_lastId - id > UINT16_MAX / 2)
        m_idBase += UINT16_MAX;
    m_lastId = id;
    return m_idBase + id;
}

Clock::duration CGenICamFrameSource::LostAfter() const
{
    const double rate = frameRate();
    const Clock::duration periods = rate > 0
        ? std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(10 / rate))
        : Clock::duration::zero();
    return std::max<Clock::duration>(lostTimeout, periods);
}

void CGenICamFrameSource::ReadStreamStatistics()
{
    if (!ARV_IS_GV_STREAM(m_stream))
        return;
    guint64 resent = 0;
    guint64 missing = 0;
    arv_gv_stream_get_statistics(ARV_GV_STREAM(m_stream), &resent, &missing);
    const std::lock_guard lock(m_mutex);
    m_statistics.resentPackets = resent;
    m_statistics.missingPackets = missing;
}

} // namespace kiv::cam
