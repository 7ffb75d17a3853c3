// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kivcam/IGenICamController.h>
#include <kivcam/SGenICamFeature.h>
#include <kivcam/kivcam_export.h>

typedef struct _ArvDevice ArvDevice;

namespace kiv::cam {

// The feature tree of one GenICam camera, read through Aravis, and the checked writes to it.
// Used on the thread that owns the device only.
//
// Aravis checks neither ranges nor increments by default, and its device-level access mode
// misreports some read-write features; the rules here are taken from the nodes themselves.
class KIVCAM_EXPORT CGenICamTree {
public:
    // The deepest category nesting followed; deeper ones, and categories that contain
    // themselves, are left out.
    static constexpr int MaxDepth = 16;

    // Reads the tree below the description's "Root" category, every row with its state.
    // False, with the reason, when the description has no root.
    bool Read(ArvDevice* device, CString& error);
    void Clear();
    const TArray<SGenICamFeature>& rows() const { return m_rows; }
    // The first row of that name, or null.
    const SGenICamFeature* Find(const CString& name) const;

    // Reads every row's state again.
    void Refresh(ArvDevice* device);
    // The row of that name as the camera has it now (value, limits, access), read afresh for
    // this one row; the tree keeps what it read last. False when the tree has no such row.
    bool ReadNow(ArvDevice* device, const CString& name, SGenICamFeature& now) const;
    // The rows of after whose state differs from the same row of before (every row when the
    // two are not the same tree).
    static TArray<SGenICamFeature> Changed(
        const TArray<SGenICamFeature>& before, const TArray<SGenICamFeature>& after);

    // Checks the text of a value against what the feature takes now; false with a message that
    // names the feature, the value and the rule.
    static bool Check(const SGenICamFeature& feature, const CString& text, CString& message);
    // Checks, then writes a feature (or executes a command, whose text is ignored). Afterwards
    // read the rows again (Refresh) to see what the write changed.
    SGenICamResult Write(ArvDevice* device, const CString& name, const CString& text);

    // The value of an integer within a feature's increment and limits: snapped down to the
    // increment from the minimum, then clamped.
    static std::int64_t Fit(const SGenICamFeature& feature, std::int64_t value);

private:
    void AddCategory(
        ArvDevice* device, const char* name, int parent, int depth, TArray<CString>& path);

    TArray<SGenICamFeature> m_rows;
};

} // namespace kiv::cam
