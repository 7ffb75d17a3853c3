// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CReferenceCounter.h"

namespace kiv {

void CReferenceCounter::AddRef()
{
    m_count.fetch_add(1, std::memory_order_relaxed);
}

bool CReferenceCounter::Release()
{
    return m_count.fetch_sub(1, std::memory_order_acq_rel) == 1;
}

int CReferenceCounter::count() const
{
    return m_count.load(std::memory_order_relaxed);
}

} // namespace kiv
