// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CGigEConfig.h"

#include <kivcam/network/CNetworkAdapters.h>

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <algorithm>

namespace kiv::cam {

namespace {

QStringList allowedNames()
{
    static const QRegularExpression separators(QStringLiteral("[,\\s]+"));
    return qEnvironmentVariable("KIVCAM_GIGE_INTERFACES").split(separators, Qt::SkipEmptyParts);
}

} // namespace

bool CGigEConfig::Enabled()
{
    return !allowedNames().isEmpty();
}

bool CGigEConfig::Allows(const CString& adapterName)
{
    const QStringList names = allowedNames();
    return !adapterName.empty()
        && (names.contains(QStringLiteral("*"))
            || names.contains(QString::fromUtf8(adapterName.data())));
}

TArray<SNetworkAdapter> CGigEConfig::Adapters()
{
    TArray<SNetworkAdapter> allowed;
    if (!Enabled())
        return allowed;
    for (SNetworkAdapter& adapter : CNetworkAdapters::Up()) {
        if (Allows(adapter.name))
            allowed.add(std::move(adapter));
    }
    return allowed;
}

std::chrono::milliseconds CGigEConfig::DiscoveryWait()
{
    bool ok = false;
    const int wait = qEnvironmentVariableIntValue("KIVCAM_GIGE_DISCOVERY_MS", &ok);
    return ok ? std::chrono::milliseconds(std::clamp(wait, 10, 60000)) : DefaultWait;
}

CString CGigEConfig::AllowedText()
{
    return CString(allowedNames().join(QStringLiteral(", ")).toUtf8().constData());
}

} // namespace kiv::cam
