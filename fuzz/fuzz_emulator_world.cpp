// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// libFuzzer target: any bytes read as an emulator world must give a world, empty when they are
// not one, with its problem reported in one line; never a crash, a leak, undefined behaviour or
// a hang; and every name of a world that loads is valid UTF-8 of characters XML allows.

#include "XmlText.h"

#include <kiv/Platform.h>
#include <kivcam/emulator/CEmulatorWorld.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const auto quiet = kiv::platform::SetDebugOutputHandler([](const char*) {});
    (void)quiet;
    const kiv::TSharedPtr<const kiv::cam::CEmulatorWorld> world = kiv::cam::CEmulatorWorld::Load(
        reinterpret_cast<const char*>(data), size, kiv::CString("fuzz"));
    for (const kiv::TSharedPtr<kiv::cam::ICamera>& type : world->cameraTypes()) {
        fuzz::CheckXmlText(type->name);
        fuzz::CheckXmlText(type->displayName);
        fuzz::CheckXmlText(type->defaultInfo.serial);
    }
    for (const kiv::cam::CEmulatorWorld::SController& controller : world->controllers())
        fuzz::CheckXmlText(controller.name);
    for (const kiv::TSharedPtr<kiv::cam::CEmulatorInterface>& transport : world->interfaces()) {
        fuzz::CheckXmlText(transport->name);
        for (const kiv::cam::SEmulatedDevice& device : transport->devices())
            fuzz::CheckXmlText(device.info.deviceName);
    }
    return 0;
}
