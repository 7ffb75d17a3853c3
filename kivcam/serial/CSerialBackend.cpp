// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CSerialBackend.h"

#include "CSerialInterface.h"

namespace kiv::cam {

void CSerialBackend::interfaces(TArray<TSharedPtr<IInterface>>& out)
{
    out.add(TSharedPtr<IInterface>(new CSerialInterface));
}

KIVCAM_REGISTER_REAL_BACKEND(CSerialBackend);

} // namespace kiv::cam
