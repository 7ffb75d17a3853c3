// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CBackend.h"

#include <QtGlobal>

#include <algorithm>
#include <string>
#include <vector>

namespace kiv::cam {

namespace {

struct SRegistration {
    std::string name;
    CBackendRegistration::Create create;
    bool real = false;
};

std::vector<SRegistration>& registrations()
{
    static std::vector<SRegistration> list;
    return list;
}

} // namespace

CBackendRegistration::CBackendRegistration(const char* name, Create create, bool real)
{
    registrations().push_back({name, create, real});
}

CBackend::~CBackend() = default;

void CBackend::interfaces(TArray<TSharedPtr<IInterface>>&)
{
}

void CBackend::cameraTypes(TArray<TSharedPtr<ICamera>>&)
{
}

void CBackend::controllerNames(TArray<CString>&)
{
}

TSharedPtr<IController> CBackend::createController(const CString&)
{
    return {};
}

const TArray<TSharedPtr<CBackend>>& CBackend::all()
{
    static const TArray<TSharedPtr<CBackend>> backends = [] {
        std::vector<SRegistration> sorted = registrations();
        std::sort(sorted.begin(), sorted.end(),
            [](const SRegistration& a, const SRegistration& b) { return a.name < b.name; });
        const bool real = qEnvironmentVariableIsEmpty("KIVCAM_DISABLE_REAL_TRANSPORTS");
        TArray<TSharedPtr<CBackend>> created;
        for (const SRegistration& registration : sorted) {
            if (real || !registration.real)
                created.add(TSharedPtr<CBackend>(registration.create()));
        }
        return created;
    }();
    return backends;
}

} // namespace kiv::cam
