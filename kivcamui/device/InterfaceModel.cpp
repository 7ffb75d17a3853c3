// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "InterfaceModel.h"

#include <kivcamui/plugin/Conversions.h>

#include <utility>

using namespace kiv::cam::ui;

InterfaceModel::InterfaceModel(kiv::TSharedPtr<kiv::cam::IInterface> transport, QObject* parent)
    : QObject(parent), m_interface(std::move(transport))
{
}

InterfaceModel::~InterfaceModel() = default;

QString InterfaceModel::icon() const
{
    return iconUrl(m_interface->icon);
}

bool InterfaceModel::iconExists() const
{
    return kiv::cam::ui::iconExists(m_interface->icon);
}

QString InterfaceModel::name() const
{
    return toQString(m_interface->name);
}

QString InterfaceModel::displayName() const
{
    return toQString(m_interface->displayName);
}

QString InterfaceModel::description() const
{
    return toQString(m_interface->description);
}

QString InterfaceModel::baseType() const
{
    return toQString(m_interface->baseType);
}

bool InterfaceModel::comm() const
{
    return m_interface->comm;
}

bool InterfaceModel::video() const
{
    return m_interface->video;
}

bool InterfaceModel::isEmulator() const
{
    return m_interface->isEmulator;
}
