// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/IInterface.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// The machine's serial ports, as Qt Serial Port lists them (through udev where there is one).
// Listing them opens none. A port the list leaves out (a pseudo-terminal, a symbolic link) is
// used through the template device, whose "Control" parameter takes the port's path.
class KIVCAM_EXPORT CSerialInterface : public IInterface {
public:
    // Names of the device parameters.
    static constexpr const char* ControlParameter = "Control";
    static constexpr const char* BaudRateParameter = "BaudRate";
    static constexpr const char* DescriptionParameter = "Description";
    static constexpr const char* ManufacturerParameter = "Manufacturer";
    static constexpr const char* SerialNumberParameter = "SerialNumber";
    static constexpr const char* VendorIdParameter = "VendorId";
    static constexpr const char* ProductIdParameter = "ProductId";

    // The baud rate a port is opened with unless its record says otherwise.
    static constexpr int DefaultBaudRate = 9600;

    CSerialInterface();

    TSharedPtr<IDevice> createDevice() override;
    bool findDevices(TArray<SDeviceInfo>& out, std::stop_token stop) override;
    // Serial ports carry no discovery; cameras on them are assembled by hand.
    bool findCameras(TArray<SCameraInfo>& out, std::stop_token stop) override;
};

} // namespace kiv::cam
