// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/kiv_export.h>

#include <cstdarg>

namespace kiv {

// printf-style formatting into a CString. "%S" (like "%ls") takes a wide string, written out
// as UTF-8. Numbers are formatted as in the C locale, whatever the process's locale.
KIV_EXPORT CString strprintf(const char* format, ...) __attribute__((format(printf, 1, 2)));
KIV_EXPORT CString vstrprintf(const char* format, va_list args)
    __attribute__((format(printf, 1, 0)));

} // namespace kiv
