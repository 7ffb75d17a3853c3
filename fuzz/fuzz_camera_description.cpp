// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

// libFuzzer target: any bytes handed to SCameraInfo::Load as a camera description must give
// true or false, never a crash, a leak or undefined behaviour; and every text of a description
// that loads is valid UTF-8 of characters XML allows, ready to be saved as it is.

#include "XmlText.h"

#include <kiv/CMemFile.h>
#include <kivcam/SCameraInfo.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

void checkDevice(const kiv::cam::SDeviceInfo& device)
{
    for (const kiv::CString* text : {&device.interfaceName, &device.deviceName, &device.baseType,
             &device.iconName, &device.errorSummary, &device.errorMessage, &device.description})
        fuzz::CheckXmlText(*text);
    for (unsigned i = 0; i < device.parameters.count(); ++i) {
        const kiv::cam::CParameters::CEntry& entry = device.parameters[i];
        fuzz::CheckXmlText(entry.name);
        fuzz::CheckXmlText(entry.displayName);
        fuzz::CheckXmlText(entry.description);
        fuzz::CheckXmlText(entry.value().ToString());
        for (int item = 0; item < entry.value().GetEnumCount(); ++item)
            fuzz::CheckXmlText(entry.value().GetEnumName(item));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<unsigned char> bytes(data, data + size);
    kiv::TSharedPtr<kiv::CMemFile> file = kiv::CMemFile::Create();
    file->Attach(bytes.data(), bytes.size(), false);
    kiv::cam::SCameraInfo camera;
    if (camera.Load(kiv::TSharedPtr<kiv::IFile>(file))) {
        // What loads must also survive a copy.
        const kiv::cam::SCameraInfo copy = camera;
        for (const kiv::CString* text :
            {&copy.iconName, &copy.name, &copy.displayName, &copy.baseModel, &copy.model,
                &copy.serial, &copy.identity, &copy.controller, &copy.reduceFilter,
                &copy.errorSummary, &copy.errorMessage, &copy.vendor, &copy.firmwareVersion})
            fuzz::CheckXmlText(*text);
        checkDevice(copy.comm);
        checkDevice(copy.video);
    }
    return 0;
}
