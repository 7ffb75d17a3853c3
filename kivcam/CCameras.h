// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/ICamera.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// The catalogue of camera types, collected from the backends.
class KIVCAM_EXPORT CCameras {
public:
    CCameras();
    virtual ~CCameras();
    CCameras(const CCameras&) = delete;
    CCameras& operator=(const CCameras&) = delete;

    // The index-th camera type; empty for an index outside [0, cameraCount()).
    virtual TSharedPtr<ICamera> cameraAt(int index);
    // The camera type of that name (exact); empty when there is none.
    virtual TSharedPtr<ICamera> cameraByName(const CString& name);
    virtual int cameraCount();
    // Appends the names of all camera types, in catalogue order.
    virtual void cameraTypeNames(TArray<CString>& out);

private:
    TArray<TSharedPtr<ICamera>> m_cameras;
};

KIVCAM_EXPORT CCameras* cameras();

} // namespace kiv::cam
