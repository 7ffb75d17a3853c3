// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CSerialInterface.h"

#include "CSerialDevice.h"

#include <kiv/strprintf.h>

#include <QSerialPortInfo>

namespace kiv::cam {

namespace {

CString utf8(const QString& text)
{
    return CString(text.toUtf8().constData());
}

// A USB identifier as people write it, four hexadecimal digits; empty when there is none.
CString usbId(bool has, quint16 id)
{
    return has ? strprintf("%04x", static_cast<unsigned>(id)) : CString();
}

CVariant baudRates(int value)
{
    TArray<CVariant::SEnumItem> items;
    for (const qint32 rate : QSerialPortInfo::standardBaudRates())
        items.add({strprintf("%d", static_cast<int>(rate)), rate});
    return CVariant::Enum(items, value);
}

void add(SDeviceInfo& device, const char* name, const char* displayName, const char* description,
    CParameters::EEditLevel level, CVariant value)
{
    device.parameters.Add(
        CParameters::CEntry(name, displayName, description, level, std::move(value)));
}

} // namespace

CSerialInterface::CSerialInterface()
{
    icon = "Serial";
    name = "Serial";
    displayName = "Serial ports";
    description = "The machine's serial ports (RS-232, USB serial adapters) that camera control "
                  "may run over.";
    baseType = "Serial";
    comm = true;
    defaultDevice.interfaceName = name;
    defaultDevice.baseType = baseType;
    defaultDevice.iconName = icon;
    defaultDevice.description = "A serial port entered by its path.";
    add(defaultDevice, ControlParameter, "Port", "The path of the serial port to open",
        CParameters::EDIT_ALWAYS, CVariant("/dev/ttyUSB0"));
    add(defaultDevice, BaudRateParameter, "Baud rate", "Serial line speed",
        CParameters::EDIT_ALWAYS, baudRates(DefaultBaudRate));
}

TSharedPtr<IDevice> CSerialInterface::createDevice()
{
    return TSharedPtr<IDevice>(new CSerialDevice);
}

bool CSerialInterface::findDevices(TArray<SDeviceInfo>& out, std::stop_token stop)
{
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts()) {
        SDeviceInfo device;
        device.interfaceName = name;
        device.deviceName = utf8(port.portName());
        device.baseType = baseType;
        device.iconName = icon;
        QString text = port.description();
        if (!port.manufacturer().isEmpty())
            text += (text.isEmpty() ? QString() : QStringLiteral(", ")) + port.manufacturer();
        if (port.hasVendorIdentifier() && port.hasProductIdentifier())
            text += QStringLiteral(" (USB %1:%2)")
                        .arg(port.vendorIdentifier(), 4, 16, QLatin1Char('0'))
                        .arg(port.productIdentifier(), 4, 16, QLatin1Char('0'));
        device.description
            = utf8(text.trimmed().isEmpty() ? port.systemLocation() : text.trimmed());
        constexpr auto never = CParameters::EDIT_NEVER;
        add(device, ControlParameter, "Port", "The path of the serial port", never,
            utf8(port.systemLocation()));
        add(device, BaudRateParameter, "Baud rate", "Serial line speed", CParameters::EDIT_CUSTOM,
            baudRates(DefaultBaudRate));
        add(device, DescriptionParameter, "Description", "What the port says it is", never,
            utf8(port.description()));
        add(device, ManufacturerParameter, "Manufacturer", "Who made the port", never,
            utf8(port.manufacturer()));
        add(device, SerialNumberParameter, "Serial number", "The port's serial number", never,
            utf8(port.serialNumber()));
        add(device, VendorIdParameter, "USB vendor id", "Hexadecimal; empty for other ports", never,
            usbId(port.hasVendorIdentifier(), port.vendorIdentifier()));
        add(device, ProductIdParameter, "USB product id", "Hexadecimal; empty for other ports",
            never, usbId(port.hasProductIdentifier(), port.productIdentifier()));
        out.add(std::move(device));
    }
    return !stop.stop_requested();
}

bool CSerialInterface::findCameras(TArray<SCameraInfo>&, std::stop_token stop)
{
    return !stop.stop_requested();
}

} // namespace kiv::cam
