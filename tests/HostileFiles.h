// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// Paths that name something other than a regular file, for the tests of everything that reads
// files by name: a FIFO nobody writes to, a Unix socket, a folder, a link to the FIFO, made in a
// folder of the test's own, and device nodes every Linux system has.

#include <QDir>
#include <QFile>
#include <QList>
#include <QPair>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace hostile {

// Each path with a name for a data row; empty when the folder could not be filled.
inline QList<QPair<const char*, QString>> nonRegularPaths(const QTemporaryDir& folder)
{
    const QDir dir(folder.path());
    const QString fifo = dir.filePath("fifo.xml");
    const QString socketPath = dir.filePath("socket.xml");
    const QString link = dir.filePath("link.xml");
    if (mkfifo(QFile::encodeName(fifo).constData(), 0600) != 0 || !QFile::link(fifo, link)
        || !dir.mkdir("folder.xml"))
        return {};
    // A socket file stays when the socket that made it is closed; opening it fails at once.
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray encoded = QFile::encodeName(socketPath);
    if (encoded.size() >= static_cast<qsizetype>(sizeof address.sun_path))
        return {};
    std::memcpy(address.sun_path, encoded.constData(), static_cast<std::size_t>(encoded.size()));
    const int unixSocket = socket(AF_UNIX, SOCK_STREAM, 0);
    const bool bound = unixSocket >= 0
        && bind(unixSocket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (unixSocket >= 0)
        close(unixSocket);
    if (!bound)
        return {};
    return {{"FIFO", fifo}, {"link to a FIFO", link}, {"socket", socketPath},
        {"folder", dir.filePath("folder.xml")}, {"endless device", "/dev/zero"},
        {"empty device", "/dev/null"}};
}

// The data of a test that takes each path in turn: a column "path", a row per path.
inline void addPathRows(const QTemporaryDir& folder)
{
    QTest::addColumn<QString>("path");
    const auto paths = nonRegularPaths(folder);
    QVERIFY(!paths.isEmpty());
    for (const auto& [name, path] : paths)
        QTest::newRow(name) << path;
}

} // namespace hostile
