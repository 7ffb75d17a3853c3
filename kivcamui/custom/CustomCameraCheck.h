// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcam/SCameraInfo.h>

namespace kiv::cam::ui {

// What keeps a camera description assembled by hand from connecting, said in the words of the
// custom camera dialog: the camera type and the device or devices, and for the custom type (a
// record that names no camera type) the controller, the pixel type, the frame size, the crop and
// the AD bits. Sets the record's canConnect, and its errorSummary
// (the first problem) and errorMessage (every problem, one sentence each); clears them when
// nothing is wrong. typeChosen tells whether a camera type (or "Custom") has been chosen,
// sameDevice whether one device carries control and video.
void checkCustomCamera(SCameraInfo& record, bool typeChosen, bool sameDevice);

} // namespace kiv::cam::ui
