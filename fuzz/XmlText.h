// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>

#include <QByteArrayView>

#include <cstdlib>

namespace fuzz {

// Stops the fuzzer at a text that could not be written into XML as it is: ill-formed UTF-8, or
// a character XML does not allow.
inline void CheckXmlText(const kiv::CString& text)
{
    const QByteArrayView bytes(text.view().data(), static_cast<qsizetype>(text.view().size()));
    for (const char byte : bytes) {
        if (static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r')
            std::abort();
    }
    if (!bytes.isValidUtf8() || bytes.contains("\xEF\xBF\xBE") || bytes.contains("\xEF\xBF\xBF"))
        std::abort();
}

} // namespace fuzz
