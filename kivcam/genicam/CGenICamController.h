// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/IGenICamController.h>
#include <kivcam/TListeners.h>
#include <kivcam/genicam/CGenICamTree.h>
#include <kivcam/genicam/CGenICamWorker.h>
#include <kivcam/kivcam_export.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace kiv::cam {

class CAravisDevice;
class CGenICamFrameSource;

// The controller of every GenICam camera: it connects through an open CAravisDevice (GigE
// Vision, USB3 Vision, the emulated GenICam camera), checks that the camera is the model the
// description names, reads its feature tree and streams its pictures from then on.
class KIVCAM_EXPORT CGenICamController : public IGenICamController {
public:
    static constexpr const char* Name = "GenICam";

    CGenICamController();
    ~CGenICamController() override;

    bool connect(TSharedPtr<IDevice> device, SCameraInfo camera) override;
    void disconnect() override;
    bool isConnected() const override;
    CString name() const override;
    IFrameSource* frameSource() override;

    TArray<SGenICamFeature> features() const override;
    bool feature(const CString& name, SGenICamFeature& out) const override;
    void setFeature(const CString& name, const CString& value, Done done = {}) override;
    void execute(const CString& name, Done done = {}) override;
    void refresh(Done done = {}) override;
    void setSensorWindow(const SSensorWindow& window, Done done = {}) override;
    SSensorWindow sensorWindow() const override;
    void startAcquisition(Done done = {}) override;
    void stopAcquisition(Done done = {}) override;
    bool isAcquiring() const override;
    bool hasControl() const override;
    CString errorMessage() const override;
    void subscribe(IGenICamListener* listener) override;
    void unsubscribe(IGenICamListener* listener) override;

private:
    // These run on the worker.
    bool Open(TSharedPtr<IDevice> device, const SCameraInfo& camera, CString& error);
    void Close();
    // Runs work on the worker when connected, else fails; then announces what changed.
    template <typename Work> void Request(Done done, Work work);
    SGenICamResult WriteFitted(const char* name, std::int64_t value);
    SGenICamResult ApplyWindowAxis(
        const char* offsetName, const char* sizeName, std::int64_t offset, std::int64_t size);
    bool StartStream(CString& error);
    void StopStream();
    // Makes the rows read last the ones the other threads see, and tells the listeners which
    // changed; restarts the stream when the picture's size or format changed under it.
    void Publish();
    void Lost(const CString& message);
    void SetError(CString message);

    // Only on the worker.
    TSharedPtr<IDevice> m_device;
    CAravisDevice* m_aravis = nullptr;
    SCameraInfo m_camera;
    CGenICamTree m_tree;
    CString m_streamPicture; // pictureOf the tree when the stream started
    const std::unique_ptr<CGenICamFrameSource> m_frames;

    // What the other threads read.
    mutable std::mutex m_mutex;
    TArray<SGenICamFeature> m_published;
    CString m_error;
    std::atomic<bool> m_connected{false};
    std::atomic<bool> m_control{false};
    std::atomic<bool> m_acquiring{false};

    TListeners<IGenICamListener> m_listeners;

    // Last, so that it ends first, while everything its tasks use is still there.
    CGenICamWorker m_worker;
};

} // namespace kiv::cam
