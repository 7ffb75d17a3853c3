// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CSerialDevice.h"

#include "CSerialInterface.h"

#include <kiv/Platform.h>
#include <kiv/strprintf.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace kiv::cam {

namespace {

// The line speeds a port can be set to, as termios names them.
speed_t speedOf(long long rate)
{
    static constexpr std::pair<long long, speed_t> speeds[]
        = {{50, B50}, {75, B75}, {110, B110}, {134, B134}, {150, B150}, {200, B200}, {300, B300},
            {600, B600}, {1200, B1200}, {1800, B1800}, {2400, B2400}, {4800, B4800}, {9600, B9600},
            {19200, B19200}, {38400, B38400}, {57600, B57600}, {115200, B115200}, {230400, B230400},
            {460800, B460800}, {500000, B500000}, {576000, B576000}, {921600, B921600},
            {1000000, B1000000}, {1152000, B1152000}, {1500000, B1500000}, {2000000, B2000000},
            {2500000, B2500000}, {3000000, B3000000}, {3500000, B3500000}, {4000000, B4000000}};
    for (const auto& [value, speed] : speeds) {
        if (value == rate)
            return speed;
    }
    return B0;
}

// The group that owns the file, which users join to be let in; empty when it cannot be told.
CString openError(const CString& path, int error)
{
    switch (error) {
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return strprintf("The serial port %s is missing: it is not there now (unplugged, or the "
                         "path is wrong).",
            path.data());
    case EACCES:
    case EPERM: {
        const CString group = platform::OwningGroup(path);
        if (group.empty())
            return strprintf("Permission denied for the serial port %s.", path.data());
        return strprintf("Permission denied for the serial port %s: it belongs to the group "
                         "\"%s\". Add your user to that group (for example: sudo usermod -aG %s "
                         "$USER), then log in again.",
            path.data(), group.data(), group.data());
    }
    case EBUSY:
    case EWOULDBLOCK:
        return strprintf("The serial port %s is busy: another program, or another connection of "
                         "this one, has it open.",
            path.data());
    case ENOTTY:
        return strprintf("%s is not a serial port.", path.data());
    default:
        return strprintf(
            "The serial port %s cannot be opened: %s.", path.data(), std::strerror(error));
    }
}

} // namespace

CSerialDevice::~CSerialDevice()
{
    close();
}

bool CSerialDevice::open(SDeviceInfo info, bool exclusive)
{
    std::lock_guard lock(m_mutex);
    if (m_port >= 0) {
        m_error = "The serial port is open already.";
        return false;
    }
    m_error = CString();
    if (!Open(info, exclusive))
        return false;
    m_info = std::move(info);
    return true;
}

bool CSerialDevice::Open(const SDeviceInfo& info, bool exclusive)
{
    CString path = info.parameters.TextOf(CSerialInterface::ControlParameter);
    if (path.empty())
        path = CString("/dev/") + info.deviceName;
    const long long rate = info.parameters.Exists(CSerialInterface::BaudRateParameter)
        ? info.parameters[CString(CSerialInterface::BaudRateParameter)].value().ToInt64()
        : CSerialInterface::DefaultBaudRate;
    const speed_t speed = speedOf(rate);
    if (speed == B0) {
        m_error = strprintf("%lld baud is not a speed a serial port can be set to.", rate);
        return false;
    }
    // Not blocking: a port waiting for a carrier must not hold the caller.
    const int port = ::open(path.data(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (port < 0) {
        m_error = openError(path, errno);
        return false;
    }
    termios settings{};
    bool ok = ::tcgetattr(port, &settings) == 0;
    if (ok && exclusive)
        ok = ::flock(port, LOCK_EX | LOCK_NB) == 0 && ::ioctl(port, TIOCEXCL) == 0;
    if (ok) {
        ::cfmakeraw(&settings);
        settings.c_cflag |= CLOCAL | CREAD;
        settings.c_cc[VMIN] = 0;
        settings.c_cc[VTIME] = 0;
        ok = ::cfsetspeed(&settings, speed) == 0 && ::tcsetattr(port, TCSANOW, &settings) == 0;
    }
    const int wake = ok ? ::eventfd(0, EFD_CLOEXEC) : -1;
    if (!ok || wake < 0) {
        m_error = openError(path, errno);
        ::close(port);
        return false;
    }
    m_port = port;
    m_wake = wake;
    m_watch = std::thread([this, port, wake, path] { Watch(port, wake, path); });
    return true;
}

void CSerialDevice::Watch(int port, int wake, const CString& path) const
{
    // No events asked for the port: poll reports its hang-up and errors all the same.
    pollfd ready[2] = {{port, 0, 0}, {wake, POLLIN, 0}};
    while (::poll(ready, 2, -1) < 0) {
        if (errno != EINTR)
            return;
    }
    if (ready[1].revents == 0)
        reportLost(strprintf("The serial port %s went away: its adapter was unplugged, or the "
                             "other end closed it.",
            path.data()));
}

void CSerialDevice::close()
{
    std::lock_guard lock(m_mutex);
    if (m_port < 0)
        return;
    // Wakes the watch, which then ends.
    const std::uint64_t one = 1;
    while (::write(m_wake, &one, sizeof one) < 0 && errno == EINTR) { }
    m_watch.join();
    ::close(m_wake);
    m_wake = -1;
    ::ioctl(m_port, TIOCNXCL);
    ::close(m_port);
    m_port = -1;
}

bool CSerialDevice::isOpen() const
{
    std::lock_guard lock(m_mutex);
    return m_port >= 0;
}

const SDeviceInfo& CSerialDevice::info() const
{
    return m_info;
}

CString CSerialDevice::errorMessage() const
{
    std::lock_guard lock(m_mutex);
    return m_error;
}

bool CSerialDevice::Write(std::string_view bytes, std::chrono::milliseconds wait)
{
    std::lock_guard lock(m_mutex);
    const auto deadline = std::chrono::steady_clock::now() + wait;
    while (m_port >= 0 && !bytes.empty()) {
        const ssize_t written = ::write(m_port, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            continue;
        }
        if (written < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd ready{m_port, POLLOUT, 0};
        if (left.count() <= 0 || ::poll(&ready, 1, static_cast<int>(left.count())) <= 0)
            return false;
    }
    return m_port >= 0;
}

std::string CSerialDevice::Read(std::chrono::milliseconds wait)
{
    std::lock_guard lock(m_mutex);
    pollfd ready{m_port, POLLIN, 0};
    if (m_port < 0 || ::poll(&ready, 1, static_cast<int>(wait.count())) <= 0)
        return {};
    std::string bytes(4096, '\0');
    const ssize_t received = ::read(m_port, bytes.data(), bytes.size());
    bytes.resize(received > 0 ? static_cast<std::size_t>(received) : 0);
    return bytes;
}

} // namespace kiv::cam
