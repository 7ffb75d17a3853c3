// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/CBackend.h>

namespace kiv::cam {

// The machine's serial ports.
class CSerialBackend : public CBackend {
public:
    void interfaces(TArray<TSharedPtr<IInterface>>& out) override;
};

} // namespace kiv::cam
