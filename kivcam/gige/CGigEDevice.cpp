#include "CGigEDevice.h"

#include "CGigEConfig.h"
#include "CGigEDiscovery.h"
#include "CGigEInterface.h"
#include "Gvcp.h"

#include <kiv/strprintf.h>
#include <kivcam/network/CNetworkAdapters.h>

#include <algorithm>
#include <set>

namespace kiv::cam {

namespace {

// The cameras that devices of this program control, by address.
std::mutex controlledMutex;
std::set<std::uint32_t>& controlled()
{
    static std::set<std::uint32_t> addresses;
    return addresses;
}

// How often to show the camera a sign of life: three times within its heartbeat timeout.
std::chrono::milliseconds heartbeatPeriod(std::uint32_t timeout)
{
    return std::chrono::milliseconds(std::clamp<std::uint32_t>(timeout / 3, 10, 1000));
}

} // namespace

CGigEDevice::~CGigEDevice()
{
    close();
}

bool CGigEDevice::open(SDeviceInfo info, bool exclusive)
{
    std::lock_guard lock(m_mutex);
    if (m_open) {
        m_error = "The camera is open already.";
        return false;
    }
    m_error = CString();
    if (!Open(info, exclusive)) {
        m_channel.Close();
        return false;
    }
    m_info = std::move(info);
    m_open = true;
    return true;
}

bool CGigEDevice::Open(const SDeviceInfo& info, bool exclusive)
{
    std::uint32_t address = 0;
    const CString addressParameter = info.parameters.TextOf(CGigEInterface::AddressParameter);
    if (!CNetworkAdapters::ParseAddress(addressParameter, address)) {
        m_error = strprintf("\"%s\" is not the IPv4 address of a camera.", addressParameter.data());
        return false;
    }
    if (!CGigEConfig::Enabled()) {
        m_error = "GigE Vision is off. Set the environment variable KIVCAM_GIGE_INTERFACES to "
                  "the network adapters it may use (for example \"eth1\", or \"*\" for all).";
        return false;
    }
    CString adapterName = info.parameters.TextOf(CGigEInterface::AdapterParameter);
    if (adapterName.empty()) {
        // A camera entered by hand is reached through the allowed adapter of its subnet.
        for (const SNetworkAdapter& adapter : CGigEConfig::Adapters()) {
            if (adapter.Reaches(address)) {
                adapterName = adapter.name;
                break;
            }
        }
        if (adapterName.empty()) {
            m_error = strprintf("None of the adapters GigE Vision may use (%s) is in the subnet "
                                "of the camera's address %s.",
                CGigEConfig::AllowedText().data(), CNetworkAdapters::AddressText(address).data());
            return false;
        }
    }
    if (!CGigEConfig::Allows(adapterName)) {
        m_error = strprintf("The adapter \"%s\" is not among those GigE Vision may use (%s); "
                            "add it to KIVCAM_GIGE_INTERFACES.",
            adapterName.data(), CGigEConfig::AllowedText().data());
        return false;
    }
    SNetworkAdapter adapter;
    if (!CNetworkAdapters::Find(adapterName, adapter)) {
        m_error = strprintf(
            "The adapter \"%s\" is not there, not up, or has no IPv4 address.", adapterName.data());
        return false;
    }
    if (!adapter.Reaches(address)) {
        std::uint32_t netmask = adapter.addresses[0].netmask;
        CNetworkAdapters::ParseAddress(
            info.parameters.TextOf(CGigEInterface::SubnetMaskParameter), netmask);
        std::uint64_t mac = 0;
        gvcp::ParseMac(info.parameters.TextOf(CGigEInterface::MacParameter), mac);
        m_error = CGigEDiscovery::WrongSubnetMessage(adapter, address, netmask, mac);
        return false;
    }
    if (ControlledHere(address)) {
        m_error = strprintf("This program controls the camera at %s already; close that "
                            "connection first.",
            CNetworkAdapters::AddressText(address).data());
        return false;
    }
    if (!m_channel.Open(adapter, address, m_error))
        return false;

    std::uint32_t privilege = 0;
    std::uint16_t status = 0;
    const CGvcpChannel::EResult read
        = m_channel.ReadRegister(gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, privilege, status);
    if (read == CGvcpChannel::NO_ANSWER || read == CGvcpChannel::FAILED) {
        m_error = strprintf("The camera at %s does not answer on the adapter \"%s\".",
            CNetworkAdapters::AddressText(address).data(), adapter.name.data());
        return false;
    }
    if ((read == CGvcpChannel::REFUSED && status == gvcp::STATUS_ACCESS_DENIED)
        || (read == CGvcpChannel::OK
            && privilege & (gvcp::PRIVILEGE_CONTROL | gvcp::PRIVILEGE_EXCLUSIVE))) {
        m_error = strprintf("The camera at %s is controlled by another host or program. Close "
                            "the program that uses it, or wait until it lets the camera go.",
            CNetworkAdapters::AddressText(address).data());
        return false;
    }
    const std::uint32_t wanted = exclusive ? gvcp::PRIVILEGE_EXCLUSIVE : gvcp::PRIVILEGE_CONTROL;
    const CGvcpChannel::EResult taken
        = m_channel.WriteRegister(gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, wanted, status);
    if (taken != CGvcpChannel::OK) {
        m_error = strprintf("The camera at %s refused control: %s.",
            CNetworkAdapters::AddressText(address).data(),
            taken == CGvcpChannel::REFUSED ? gvcp::StatusText(status).data() : "no answer");
        return false;
    }
    {
        std::lock_guard lock(controlledMutex);
        controlled().insert(address);
    }
    m_control = true;
    // The camera's heartbeat timeout, or the usual 3 s when it does not say.
    std::uint32_t timeout = 3000;
    m_channel.ReadRegister(gvcp::REG_HEARTBEAT_TIMEOUT, timeout, status);
    const std::chrono::milliseconds period = heartbeatPeriod(timeout);
    m_heartbeat = std::jthread([this, period](std::stop_token stop) { Heartbeat(stop, period); });
    return true;
}

void CGigEDevice::Heartbeat(std::stop_token stop, std::chrono::milliseconds period)
{
    // A camera that misses a few beats in a row has gone, or has given control to another.
    constexpr int MaxMissed = 3;
    int missed = 0;
    for (;;) {
        if (!IInterface::Wait(period, stop))
            return;
        std::uint32_t privilege = 0;
        std::uint16_t status = 0;
        switch (
            m_channel.ReadRegister(gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, privilege, status, stop)) {
        case CGvcpChannel::STOPPED:
            return;
        case CGvcpChannel::OK:
            missed = 0;
            if (!(privilege & (gvcp::PRIVILEGE_CONTROL | gvcp::PRIVILEGE_EXCLUSIVE)))
                m_control = false;
            break;
        default:
            if (++missed >= MaxMissed)
                m_control = false;
            break;
        }
    }
}

void CGigEDevice::close()
{
    std::lock_guard lock(m_mutex);
    if (!m_open)
        return;
    m_open = false;
    m_heartbeat.request_stop();
    if (m_heartbeat.joinable())
        m_heartbeat.join();
    if (m_control) {
        std::uint16_t status = 0;
        m_channel.WriteRegister(gvcp::REG_CONTROL_CHANNEL_PRIVILEGE, 0, status);
    }
    {
        std::lock_guard controlledLock(controlledMutex);
        controlled().erase(m_channel.address());
    }
    m_control = false;
    m_channel.Close();
}

bool CGigEDevice::isOpen() const
{
    std::lock_guard lock(m_mutex);
    return m_open;
}

const SDeviceInfo& CGigEDevice::info() const
{
    return m_info;
}

CString CGigEDevice::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

bool CGigEDevice::ControlledHere(std::uint32_t address)
{
    std::lock_guard lock(controlledMutex);
    return controlled().count(address) != 0;
}

} // namespace kiv::cam
