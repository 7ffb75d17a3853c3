// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CustomCameraCheck.h"

#include <kiv/PixelType.h>
#include <kiv/strprintf.h>
#include <kivcam/CControllerFactory.h>

#include <cstdint>

namespace kiv::cam::ui {

namespace {

bool isKnownController(const CString& name)
{
    TArray<CString> names;
    controllerFactory()->getControllerNames(names);
    return names.contains(name);
}

class CProblems {
public:
    explicit CProblems(SCameraInfo& record) : m_record(record) { }

    void Add(const char* summary, const CString& message)
    {
        if (m_record.errorSummary.empty())
            m_record.errorSummary = summary;
        if (!m_record.errorMessage.empty())
            m_record.errorMessage += " ";
        m_record.errorMessage += message;
    }

private:
    SCameraInfo& m_record;
};

void checkDevices(const SCameraInfo& record, bool sameDevice, CProblems& problems)
{
    if (record.comm.interfaceName.empty()) {
        if (sameDevice)
            problems.Add("No device", "Choose the device that the camera is connected to.");
        else
            problems.Add("No Communications Device",
                "Choose the Communications Device that the camera is controlled through.");
    } else if (!record.comm.canConnect) {
        problems.Add("Device cannot connect",
            !record.comm.errorMessage.empty()
                ? record.comm.errorMessage
                : strprintf("The device \"%s\" cannot be used.", record.comm.deviceName.data()));
    }
    // A camera controlled through its control device alone needs no video device; one that
    // is chosen must be usable.
    if (!sameDevice && !record.video.interfaceName.empty() && !record.video.canConnect)
        problems.Add("Video Device cannot connect",
            !record.video.errorMessage.empty()
                ? record.video.errorMessage
                : strprintf(
                    "The video device \"%s\" cannot be used.", record.video.deviceName.data()));
}

void checkPicture(const SCameraInfo& record, CProblems& problems)
{
    const CString pixelType = PixelTypeToString(record.pixelType);
    if (pixelType.empty())
        problems.Add("No Pixel Type", "Choose the Pixel Type of the camera's pictures.");
    if (record.width == 0 || record.height == 0)
        problems.Add("No frame size",
            strprintf("Width and Height must be at least 1 pixel; they are %d and %d.",
                record.width, record.height));
    else if (std::uint64_t(record.cropLeft) + record.cropRight >= record.width
        || std::uint64_t(record.cropTop) + record.cropBottom >= record.height)
        problems.Add("Crop too large",
            strprintf("The crop leaves nothing of the %d x %d frame: Crop Left and Crop Right "
                      "together must be less than Width, Crop Top and Crop Bottom less than "
                      "Height.",
                record.width, record.height));
    if (pixelType.empty())
        return;
    const int sampleBits = 8 * DataTypeSize(PixelTypeToDataType(record.pixelType));
    if (record.adBits < 1 || record.adBits > sampleBits)
        problems.Add("AD Bits out of range",
            strprintf("AD Bits must be 1 to %d for %s; it is %d.", sampleBits, pixelType.data(),
                record.adBits));
    else if (record.adBitShift < 0 || record.adBitShift > sampleBits - record.adBits)
        problems.Add("AD Bit Shift out of range",
            strprintf("AD Bit Shift must be 0 to %d for %d AD Bits of %s; it is %d.",
                sampleBits - record.adBits, record.adBits, pixelType.data(), record.adBitShift));
}

} // namespace

void checkCustomCamera(SCameraInfo& record, bool typeChosen, bool sameDevice)
{
    record.errorSummary = CString();
    record.errorMessage = CString();
    CProblems problems(record);
    if (!typeChosen)
        problems.Add(
            "No camera type", "Choose a camera type, or Custom, from the list of cameras.");
    checkDevices(record, sameDevice, problems);
    // A camera type's own description is the camera library's; only what the user typed in for
    // the custom type is checked here.
    if (typeChosen && record.name.empty()) {
        if (!isKnownController(record.controller))
            problems.Add("No Controller",
                record.controller.empty()
                    ? CString("Choose the Controller of the camera.")
                    : strprintf("There is no Controller \"%s\" here; choose one from the list.",
                        record.controller.data()));
        checkPicture(record, problems);
    }
    record.canConnect = record.errorSummary.empty();
}

} // namespace kiv::cam::ui
