#pragma once

#include <kiv/CString.h>
#include <kivcam/IDevice.h>
#include <kivcam/gige/CGvcpChannel.h>
#include <kivcam/kivcam_export.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

namespace kiv::cam {

// An open GigE Vision camera: its control channel, held by this program.
//
// Opening takes control of the camera through its control channel privilege register (alone,
// when asked for exclusive use) and keeps it with a heartbeat thread, which reads that register
// well within the camera's heartbeat timeout; closing stops the heartbeat and gives control back.
// The camera is reached through the adapter the record names, which the user must allow
// (CGigEConfig).
class KIVCAM_EXPORT CGigEDevice : public IDevice {
public:
    CGigEDevice() = default;
    ~CGigEDevice() override;

    bool open(SDeviceInfo info, bool exclusive) override;
    void close() override;
    bool isOpen() const override;
    const SDeviceInfo& info() const override;
    CString errorMessage() const override;

    // Whether the camera still counts this program as its controller: false once a heartbeat
    // found control lost (the camera restarted, or timed the heartbeat out).
    bool hasControl() const { return m_control; }
    // The control channel, for controllers; use it only while the device is open.
    CGvcpChannel& channel() { return m_channel; }

    // Whether a device of this program holds the camera at that address.
    static bool ControlledHere(std::uint32_t address);

private:
    bool Open(const SDeviceInfo& info, bool exclusive);
    void Heartbeat(std::stop_token stop, std::chrono::milliseconds period);

    mutable std::mutex m_mutex;
    SDeviceInfo m_info;
    CString m_error;
    bool m_open = false;
    std::atomic<bool> m_control{false};
    CGvcpChannel m_channel;
    std::jthread m_heartbeat;
};

} // namespace kiv::cam
