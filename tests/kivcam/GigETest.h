// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Peers of the GigE Vision tests, each a program of its own started in the test's network
// namespace (see NetworkNamespace.h): Aravis's fake cameras, a responder of the test's own on
// the far side of a veth pair, and another program holding a camera. A peer ends when its
// object goes, by the closing of its standard input.

#include "NetworkNamespace.h"

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/SCameraInfo.h>
#include <kivcam/SDeviceInfo.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QThread>

#include <cstring>
#include <memory>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace gigetest {

using namespace kiv;
using namespace kiv::cam;

// The loopback of the test's namespace, up, with a second address for a second camera.
inline bool BringUpLoopback()
{
    return netns::ip({"link", "set", "lo", "up"})
        && netns::ip({"addr", "add", "127.0.0.2/8", "dev", "lo"});
}

class CPeer {
public:
    // Starts program (a peer beside the test binary, or a system program) and waits for its
    // first line; false when it does not start or says something else than expected.
    bool Start(const QString& program, const QStringList& arguments, const QByteArray& expected)
    {
        const QString beside = QCoreApplication::applicationDirPath() + '/' + program;
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QFile::exists(beside) ? beside : program, arguments);
        return m_process.waitForStarted(10000) && WaitFor(expected);
    }
    // Waits for the next line; false unless it starts with expected.
    bool WaitFor(const QByteArray& expected)
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(10000)) { }
        m_line = m_process.readLine().trimmed();
        return m_line.startsWith(expected);
    }
    ~CPeer() { Stop(); }
    void Stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(10000))
            m_process.kill();
        m_process.waitForFinished(10000);
    }
    qint64 pid() const { return m_process.processId(); }
    // The line read last.
    QByteArray line() const { return m_line; }

private:
    QProcess m_process;
    QByteArray m_line;
};

// Fake cameras, each given as ADDRESS,SERIAL[,MAC[,MODEL[,USERNAME]]].
inline std::unique_ptr<CPeer> startCameras(const QStringList& cameras, int heartbeatMs = 0)
{
    auto peer = std::make_unique<CPeer>();
    QStringList arguments = cameras;
    if (heartbeatMs > 0)
        arguments << QStringLiteral("--heartbeat") << QString::number(heartbeatMs);
    return peer->Start(QStringLiteral("fake-gige-camera"), arguments, "ready") ? std::move(peer)
                                                                               : nullptr;
}

// A hostile or broken camera on the loopback (peers/hostilegvcp.cpp), answering as mode says.
inline std::unique_ptr<CPeer> startHostile(const QString& mode, const QString& number = {})
{
    auto peer = std::make_unique<CPeer>();
    QStringList arguments{mode};
    if (!number.isEmpty())
        arguments << number;
    return peer->Start(QStringLiteral("hostile-gvcp"), arguments, "ready") ? std::move(peer)
                                                                           : nullptr;
}

// The peak resident memory of this process (VmHWM) in KiB, after resetPeakMemory() the peak since
// then; -1 where it cannot be read.
inline long peakMemoryKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toLong();
    }
    return -1;
}
inline bool resetPeakMemory()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}

// Waits until the adapter carries traffic: a link just set up drops what is sent until the
// system has attached it, a moment later.
inline bool waitRunning(const char* adapter)
{
    const int probe = ::socket(AF_INET, SOCK_DGRAM, 0);
    bool running = false;
    for (int wait = 0; !running && wait < 500; ++wait) {
        ifreq request{};
        std::strncpy(request.ifr_name, adapter, IFNAMSIZ - 1);
        running = ::ioctl(probe, SIOCGIFFLAGS, &request) == 0 && (request.ifr_flags & IFF_RUNNING);
        if (!running)
            QThread::msleep(10);
    }
    ::close(probe);
    return running;
}

// A camera at farAddress (ADDRESS/PREFIX) in a namespace of its own, reached through a veth pair
// whose near end "veth0" gets nearAddress; the far end is "veth1".
inline std::unique_ptr<CPeer> startFarCamera(const QString& nearAddress, const QString& farAddress,
    const QString& mac, const QString& serial)
{
    auto peer = std::make_unique<CPeer>();
    // A pair left by a responder that has just ended goes with its namespace, soon.
    for (int wait = 0; if_nametoindex("veth0") && wait < 500; ++wait)
        QThread::msleep(10);
    // The responder waits for its adapter, which can only be moved in once it runs.
    const QString responder = QCoreApplication::applicationDirPath() + "/gvcp-responder";
    if (!peer->Start(QStringLiteral("unshare"),
            {QStringLiteral("-n"), QStringLiteral("--"), QStringLiteral("sh"), QStringLiteral("-c"),
                QStringLiteral("echo started; exec \"$0\" \"$@\""), responder,
                QStringLiteral("veth1"), farAddress, mac, serial},
            "started"))
        return nullptr;
    if (!netns::ip({"link", "add", "veth0", "type", "veth", "peer", "name", "veth1", "netns",
            QString::number(peer->pid())})
        || !netns::ip({"addr", "add", nearAddress, "dev", "veth0"})
        || !netns::ip({"link", "set", "veth0", "up"}) || !peer->WaitFor("ready")
        || !waitRunning("veth0"))
        return nullptr;
    return peer;
}

inline QByteArray str(const CString& text)
{
    return QByteArray(text.c_str());
}

inline QByteArray parameter(const SDeviceInfo& device, const char* name)
{
    return device.parameters.Exists(name) ? str(device.parameters[CString(name)].value().ToString())
                                          : QByteArray("<none>");
}

} // namespace gigetest
