// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/gige/Gvcp.h>
#include <kivcam/network/SNetworkAdapter.h>

#include <cstdint>

namespace kiv::cam {

// A camera that answered discovery on one adapter, with what a read of its control register
// told about who controls it.
struct SGigECamera {
    enum EControl {
        CONTROL_FREE, // nobody controls it
        CONTROL_HELD, // an application controls it; privilege tells how
        CONTROL_EXCLUSIVE, // an application controls it alone and the camera refused the read
        CONTROL_NO_ANSWER, // the camera did not answer the read
        CONTROL_UNREACHABLE, // not read: the camera is in another subnet than the adapter
    };

    gvcp::SDiscoveryAck device;
    SNetworkAdapter adapter; // the adapter it answered on
    EControl control = CONTROL_NO_ANSWER;
    std::uint32_t privilege = 0; // the control channel privilege register, when it was read
};

} // namespace kiv::cam
