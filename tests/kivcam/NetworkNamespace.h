// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Runs a network test inside a network namespace of its own, so that nothing it sends can reach
// any network: main() runs the test binary again under "unshare -rn" (a new user and network
// namespace, where the test is root and only a loopback adapter exists, down), and the test builds
// what it needs there with "ip". Where no namespace can be made, the test runs in place and
// skips, saying why; it never sends anything then.
//
//   KIVCAM_NETWORK_TEST_MAIN(tst_Something)
//   ...
//   void initTestCase() { NETNS_REQUIRE(); QVERIFY(netns::ip({"link", "set", "lo", "up"})); }

#include <QByteArray>
#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace netns {

// Set by the parent for the child it starts in a namespace: the parent's namespace, which the
// child checks it has left; or "skip:" and the reason no namespace could be made.
inline constexpr const char* Marker = "KIVCAM_TEST_NETWORK_NAMESPACE";

inline std::string currentNamespace()
{
    char link[128] = {};
    const ssize_t size = ::readlink("/proc/self/ns/net", link, sizeof link - 1);
    return size > 0 ? std::string(link, static_cast<std::size_t>(size)) : std::string();
}

// Why this process is not in a namespace of its own; empty when it is.
inline QString unavailableReason()
{
    const QByteArray marker = qgetenv(Marker);
    if (marker.startsWith("skip:"))
        return QString::fromUtf8(marker.mid(5));
    if (marker.isEmpty() || marker.toStdString() == currentNamespace())
        return QStringLiteral("the test was not started in a network namespace of its own");
    return {};
}

// Runs a program and gives its exit code; -1 when it cannot be started.
inline int runProgram(const std::vector<const char*>& arguments)
{
    std::vector<char*> argv;
    for (const char* argument : arguments)
        argv.push_back(const_cast<char*>(argument));
    argv.push_back(nullptr);
    pid_t child = 0;
    if (::posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ) != 0)
        return -1;
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

// Call from main() first: starts the test again inside a namespace and gives its exit code,
// or gives -1 when this process is the one to run the test (inside, or where no namespace can
// be made).
inline int reenter(char** argv)
{
    if (!qEnvironmentVariableIsEmpty(Marker))
        return -1;
    if (runProgram({"unshare", "-rn", "true"}) != 0) {
        qputenv(Marker,
            "skip:No network namespace can be made here (\"unshare -rn\" fails: user namespaces "
            "may be off, or util-linux missing), so this network test does not run");
        return -1;
    }
    qputenv(Marker, QByteArray::fromStdString(currentNamespace()));
    char self[4096] = {};
    if (::readlink("/proc/self/exe", self, sizeof self - 1) <= 0)
        return 1;
    std::vector<char*> arguments{
        const_cast<char*>("unshare"), const_cast<char*>("-rn"), const_cast<char*>("--"), self};
    for (char** argument = argv + 1; *argument; ++argument)
        arguments.push_back(*argument);
    arguments.push_back(nullptr);
    ::execvp("unshare", arguments.data());
    std::perror("unshare");
    return 1;
}

inline QString ipProgram()
{
    const QString found = QStandardPaths::findExecutable(QStringLiteral("ip"),
        {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin"), QStringLiteral("/usr/bin")});
    return found.isEmpty() ? QStringLiteral("ip") : found;
}

// Runs "ip" with the arguments in this namespace; false, with what it said, when it fails.
inline bool ip(const QStringList& arguments, QString* output = nullptr)
{
    if (!unavailableReason().isEmpty())
        return false;
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(ipProgram(), arguments);
    const bool ok = process.waitForFinished(10000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
    const QString said = QString::fromLocal8Bit(process.readAll());
    if (output)
        *output = said;
    if (!ok)
        qWarning("ip %s: %s", qPrintable(arguments.join(' ')), qPrintable(said));
    return ok;
}

} // namespace netns

// Skips the whole test, saying why, unless it runs in a namespace of its own.
#define NETNS_REQUIRE()                                                                            \
    do {                                                                                           \
        const QString reason = netns::unavailableReason();                                         \
        if (!reason.isEmpty())                                                                     \
            QSKIP(qPrintable(reason));                                                             \
    } while (false)

#define KIVCAM_NETWORK_TEST_MAIN(TestClass)                                                        \
    int main(int argc, char** argv)                                                                \
    {                                                                                              \
        if (const int code = netns::reenter(argv); code >= 0)                                      \
            return code;                                                                           \
        QCoreApplication app(argc, argv);                                                          \
        TestClass test;                                                                            \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
