// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CImage.h>
#include <kiv/CString.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/CFrameListeners.h>
#include <kivcam/IFrameSource.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/genicam/CGenICamPixels.h>
#include <kivcam/kivcam_export.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

typedef struct _ArvDevice ArvDevice;
typedef struct _ArvStream ArvStream;
typedef struct _ArvBuffer ArvBuffer;

namespace kiv::cam {

// The frame source of a GenICam camera: the images of an Aravis stream.
//
// The controller starts and stops the stream on its worker thread, which owns the device. Two
// threads of the source's own do the rest: the receiving thread takes each filled buffer from
// Aravis, turns a complete one into an image (CGenICamPixels) and gives the buffer back at once;
// the delivery thread hands the images to the listeners. While the listeners are still busy with
// one image, only the newest of those that arrive meanwhile waits for them; the ones it replaced
// count as late frames (see statistics()).
//
// A listener's disconnect: stop() waits for a listener call in progress, so the controller's
// disconnect from within a listener's call (isDeliveryThread()) must not wait for its worker. It
// calls stop() right there, which ends the deliveries at once without touching the device, and
// leaves the rest to a stop() on its worker.
class KIVCAM_EXPORT CGenICamFrameSource : public IFrameSource {
public:
    // A stream is lost when no complete frame arrives for this long while acquiring, or for ten
    // frame periods of the camera's rate where that is longer.
    static constexpr std::chrono::milliseconds lostTimeout{3000};

    CGenICamFrameSource();
    // Stops a running stream, without touching the device. Not from within a listener's call.
    ~CGenICamFrameSource() override;
    CGenICamFrameSource(const CGenICamFrameSource&) = delete;
    CGenICamFrameSource& operator=(const CGenICamFrameSource&) = delete;

    // Starts the stream of the open device, after stopping one that runs: reads PayloadSize,
    // Width, Height and PixelFormat, stops an acquisition the camera may still run for an
    // earlier client, creates the stream with a pool of buffers (for a GigE Vision camera: a
    // plain UDP socket with a receive buffer of several frames, packet resend on), tells the
    // listeners streamStarted with camera updated to the image format (its reduceFilter emptied
    // when the pixel type changed), and executes AcquisitionStart. False, with a message for
    // people, when any of that fails; listeners that heard streamStarted then hear
    // streamStopped. On the worker thread that owns the device.
    bool start(ArvDevice* device, const SCameraInfo& camera, CString& error);
    // Executes AcquisitionStop (not with a null device: a camera that is gone would only make
    // the request wait in vain), ends the source's threads, tells the listeners streamStopped and
    // drops the stream; nothing when no stream runs. On the worker thread; from within a
    // listener's call see above. Aravis takes a few seconds to drop the stream of a GigE Vision
    // camera that is gone (measured: 2.7 s), so with a null device that is done in the
    // background (CAravisDevice::ReleaseInBackground).
    void stop(ArvDevice* device);
    // Whether a stream was started and not yet stopped on the worker.
    bool isStreaming() const;
    // Whether the caller is the thread that calls the listeners' frameArrived.
    bool isDeliveryThread() const;

    void subscribe(IFrameListener* listener) override;
    void unsubscribe(IFrameListener* listener) override;
    double frameRate() const override;
    // Hands the rate to the rate writer; false without one or when it refuses.
    bool setFrameRate(double rate) override;
    SFrameStatistics statistics() const override;

    // How the camera's rate is changed: the controller runs the write on its worker; false when
    // the camera's rate cannot be set.
    void setRateWriter(std::function<bool(double)> writer);
    // The camera's rate as it is now; 0 when not known (frameRate() then measures it).
    void setCameraRate(double rate);
    // Called once per stream, on the receiving thread, when the stream died: no complete frame
    // for lostTimeout while acquiring (the camera stopped sending, or every frame failed on the
    // way). It must not wait for the worker, whose stop() waits for this thread.
    void setStreamLost(std::function<void(const CString& message)> lost);

private:
    // A buffer of the stream: its image, or nothing when it arrived incomplete.
    TSharedPtr<CImage> ImageOf(ArvBuffer* buffer);
    void Receive();
    void Deliver();
    // Ends the threads and waits for them; nothing from within a listener's call.
    void Halt();
    // Stops the deliveries from the calling thread: the listeners hear streamStopped.
    void EndDeliveries();
    // The frame number of an Aravis frame id: 16-bit ids, which wrap, keep counting up.
    std::uint64_t FrameNumber(std::uint64_t id);
    // How long no complete frame may come before the stream counts as lost.
    std::chrono::steady_clock::duration LostAfter() const;
    void ReadStreamStatistics();

    CFrameListeners m_listeners;

    // Made by start on the worker, used by the receiving thread, dropped by stop on the worker.
    ArvStream* m_stream = nullptr;
    CString m_name; // of the camera, for messages
    std::uint64_t m_lastId = 0;
    std::uint64_t m_idBase = 0;
    CString m_lastError; // why the last frame was not complete; empty after a complete one
    std::atomic<bool> m_streaming{false};

    std::thread m_receiver;
    std::thread m_deliverer;
    std::atomic<std::thread::id> m_delivererId;

    // What the two threads share, and wait on.
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
    TSharedPtr<const CImage> m_pending; // the newest image, not yet taken by the delivery thread
    SFrameStatistics m_statistics;
    double m_cameraRate = 0;
    std::deque<std::chrono::steady_clock::time_point> m_arrivals; // of the last complete frames
    std::function<bool(double)> m_rateWriter;
    std::function<void(const CString&)> m_lost;
};

} // namespace kiv::cam
