// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kiv/CString.h>
#include <kiv/TArray.h>
#include <kiv/TSharedPtr.h>
#include <kivcam/ICamera.h>
#include <kivcam/IController.h>
#include <kivcam/IInterface.h>
#include <kivcam/kivcam_export.h>

namespace kiv::cam {

// A source of transports, camera types and controllers: the emulator, or the driver of a real
// transport. A backend registers itself from its own source file with KIVCAM_REGISTER_BACKEND,
// or KIVCAM_REGISTER_REAL_BACKEND when it reaches the machine's own hardware, so adding one needs
// no edit of the catalogues. The catalogues create every registered backend once, on first use,
// and ask them in the order of their registered names.
//
// Real backends are left out when the environment variable KIVCAM_DISABLE_REAL_TRANSPORTS is set
// and not empty when the backends are first created, so that a test sees the same world on every
// machine.
class KIVCAM_EXPORT CBackend {
public:
    virtual ~CBackend();

    virtual void interfaces(TArray<TSharedPtr<IInterface>>& out);
    virtual void cameraTypes(TArray<TSharedPtr<ICamera>>& out);
    virtual void controllerNames(TArray<CString>& out);
    // A new controller of one of this backend's controller names; empty for any other name.
    virtual TSharedPtr<IController> createController(const CString& name);

    // The registered backends, created on the first call (thread-safe) and kept for the life
    // of the process.
    static const TArray<TSharedPtr<CBackend>>& all();
};

class KIVCAM_EXPORT CBackendRegistration {
public:
    using Create = CBackend* (*)();
    CBackendRegistration(const char* name, Create create, bool real = false);
};

} // namespace kiv::cam

#define KIVCAM_REGISTER_BACKEND(Class)                                                             \
    static const kiv::cam::CBackendRegistration registration##Class(                               \
        #Class, []() -> kiv::cam::CBackend* { return new Class; })
#define KIVCAM_REGISTER_REAL_BACKEND(Class)                                                        \
    static const kiv::cam::CBackendRegistration registration##Class(                               \
        #Class, []() -> kiv::cam::CBackend* { return new Class; }, true)
