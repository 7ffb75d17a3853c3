// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kivcam/IDevice.h>
#include <kivcam/kivcam_export.h>

#include <functional>
#include <memory>
#include <mutex>

typedef struct _ArvDevice ArvDevice;

namespace kiv::cam {

struct SAravisWatch;

// An open GenICam camera, reached through Aravis: the base of the GigE Vision, USB3 Vision and
// emulated GenICam devices. A subclass opens the camera its own way and adopts the Aravis device;
// from then on this object holds it, watches it for lost control and gives it back on close.
//
// The Aravis device is used from one thread at a time: the controller connected to it uses it
// from its worker thread while connected, and nothing else does meanwhile.
class KIVCAM_EXPORT CAravisDevice : public IDevice {
public:
    CAravisDevice();
    ~CAravisDevice() override;

    // Refuses a second open; otherwise opens the camera the subclass's way.
    bool open(SDeviceInfo info, bool exclusive) final;
    void close() override;
    bool isOpen() const override;
    const SDeviceInfo& info() const override;
    CString errorMessage() const override;

    // Whether the camera still counts this program as its controller: false once Aravis reported
    // control lost (the camera restarted, another host took it, or it stopped answering), with
    // errorMessage() saying so.
    bool hasControl() const;
    // Drops a reference to an Aravis object of a camera that is gone (a device, a stream) on a
    // thread kept for that: finalising one waits seconds for the camera's answers that never come.
    static void ReleaseInBackground(void* object);

    // The camera, while open; null otherwise. When control is lost the lost handler hears it,
    // on a thread of Aravis's (setLostHandler).
    ArvDevice* arvDevice() const { return m_device; }
    // Counts the camera as lost though Aravis has not said so (yet): its controller found its
    // stream dead. The lost handler is not called.
    void MarkLost();

protected:
    // Opens the camera the record describes and adopts it (Adopt); false with the reason in
    // error, for people.
    virtual bool Open(SDeviceInfo info, bool exclusive, CString& error) = 0;
    // Takes over the reference to an open Aravis device and the record it was opened with;
    // lostMessage is the error message once control is lost.
    void Adopt(ArvDevice* device, SDeviceInfo info, CString lostMessage);
    void SetError(CString message);

private:
    mutable std::mutex m_mutex;
    SDeviceInfo m_info;
    CString m_error;
    ArvDevice* m_device = nullptr;
    unsigned long m_handler = 0;
    std::shared_ptr<SAravisWatch> m_watch;
};

} // namespace kiv::cam
