// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/CStringW.h>
#include <kiv/EDataType.h>
#include <kiv/IFile.h>
#include <kiv/SGuid.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/SDeviceInfo.h>
#include <kivcam/kivcam_export.h>

#include <cstdint>

namespace kiv::cam {

// The description of one camera: what it is, how it is reached and how its images look.
// Saved as a camera description file (see docs/camera-description.md).
struct KIVCAM_EXPORT SCameraInfo {
    CString iconName; // icon base name of the camera's family
    CString name; // camera type, the key of the camera catalogue
    CString displayName;
    CString baseModel;
    CString model;
    CString serial;
    CString identity; // free text the user gives the camera
    CString controller; // one of the controller catalogue's names
    CString reduceFilter; // the reduction filter that suits pixelType
    SDeviceInfo comm; // the control connection
    SDeviceInfo video; // where the images arrive; empty for a camera reached by control alone
    EDataType dataType = DATA_TYPE_UNKNOWN;
    SGuid pixelType;
    std::int32_t adBits = 0;
    std::int32_t adBitShift = 0;
    std::uint32_t adMask = 0;
    std::uint32_t cropLeft = 0;
    std::uint32_t cropTop = 0;
    std::uint32_t cropRight = 0;
    std::uint32_t cropBottom = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    bool canConnect = true;
    CString errorSummary;
    CString errorMessage;
    // Fields of the camera library's own.
    CString vendor;
    CString firmwareVersion;
    bool emulated = false;
    double frameRate = 0; // frames per second the camera delivers when connected; 0: not known
    bool hasNucMask = false; // the camera's controller offers a NUC (non-uniformity correction)

    // The largest camera description read, in bytes. A description is a few kilobytes; the
    // bound leaves room for a thousand times that and keeps a hostile file from taking the
    // memory and the time of the GUI thread that loads it (docs/camera-description.md).
    static constexpr std::uint64_t maxFileSize = 4 * 1024 * 1024;

    // Each Load fills the record from a camera description and gives true; on any failure
    // (missing, empty, truncated or malformed file, XML of another kind, a file larger than
    // maxFileSize, a path that names no regular file, too little memory) it gives false and
    // leaves the record as it was. Text that is not valid UTF-8 is repaired, not refused.
    bool Load(const CStringW& path);
    bool Load(TSharedPtr<IFile> file);
    // Writes a camera description atomically and durably: once it gives true the file is the
    // new one and stays so through a power cut; until then it is the old one, never a mix,
    // whatever happens during the write. What it writes is always well-formed UTF-8 XML.
    bool Save(const CStringW& path) const;
};

} // namespace kiv::cam
