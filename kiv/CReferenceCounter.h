// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/kiv_export.h>

#include <atomic>

namespace kiv {

// The shared count behind a TSharedPtr. It starts at one reference.
class KIV_EXPORT CReferenceCounter {
public:
    CReferenceCounter() = default;
    CReferenceCounter(const CReferenceCounter&) = delete;
    CReferenceCounter& operator=(const CReferenceCounter&) = delete;

    void AddRef();
    // Drops one reference; true when that was the last one.
    bool Release();
    int count() const;

private:
    std::atomic<int> m_count{1};
};

} // namespace kiv
