// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// A test peer: another program that takes control of a GigE Vision camera through this
// library and keeps it until standard input closes. Prints "held" once it has control, or
// "refused: " and the reason.
//
//   gige-holder ADDRESS ADAPTER      (with KIVCAM_GIGE_INTERFACES allowing ADAPTER)

#include <kivcam/gige/CGigEDevice.h>
#include <kivcam/gige/CGigEInterface.h>

#include <cstdio>

using namespace kiv;
using namespace kiv::cam;

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: gige-holder ADDRESS ADAPTER\n");
        return 2;
    }
    SDeviceInfo record;
    record.interfaceName = "GigE";
    for (const auto& [name, value] : {std::pair{CGigEInterface::AddressParameter, argv[1]},
             std::pair{CGigEInterface::AdapterParameter, argv[2]}})
        record.parameters.Add(
            CParameters::CEntry(name, name, name, CParameters::EDIT_NEVER, CVariant(value)));
    CGigEDevice device;
    if (!device.open(record, false)) {
        std::printf("refused: %s\n", device.errorMessage().data());
        return 1;
    }
    std::printf("held\n");
    std::fflush(stdout);
    while (std::getchar() != EOF) { }
    device.close();
    return 0;
}
