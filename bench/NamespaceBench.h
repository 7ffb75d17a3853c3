// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

// For the benchmarks that run in a network namespace of their own beside the fake GigE Vision
// cameras the tests build (see tests/kivcam/NetworkNamespace.h). In main, after netns::reenter
// and the QCoreApplication:
//
//   if (const int code = namespaceBenchReady(); code >= 0)
//       return code;

#include "../tests/kivcam/GigETest.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>

// -1 when the benchmark can go on: it is in a namespace of its own, whose loopback is up, and the
// fake camera is built; else the exit code, after saying why.
inline int namespaceBenchReady()
{
    if (const QString reason = netns::unavailableReason(); !reason.isEmpty()) {
        std::printf("%s\n", qPrintable(reason));
        return 0;
    }
    if (!QFile::exists(QCoreApplication::applicationDirPath() + "/fake-gige-camera")) {
        std::printf("fake-gige-camera is missing: build the tests first\n");
        return 1;
    }
    netns::ip({"link", "set", "lo", "up"});
    return -1;
}
