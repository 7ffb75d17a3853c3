// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CNetworkBackend.h"

#include "CNetworkInterface.h"

namespace kiv::cam {

void CNetworkBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    out.add(TSharedPtr<IInterface>(new CNetworkInterface));
}

KIVCAM_REGISTER_REAL_BACKEND(CNetworkBackend);

} // namespace kiv::cam
