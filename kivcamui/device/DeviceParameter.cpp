// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "DeviceParameter.h"

#include <kivcamui/plugin/Conversions.h>

using kiv::CVariant;
using kiv::cam::CParameters;
using namespace kiv::cam::ui;

DeviceParameter::DeviceParameter(
    CParameters& parameters, unsigned index, CParameters::EEditLevel editLevel)
    : m_parameters(&parameters), m_index(index), m_editLevel(editLevel)
{
    const CVariant value = entry().value();
    if (value.getType() == CVariant::TYPE_ENUM) {
        for (int i = 0; i < value.GetEnumCount(); ++i)
            m_allowedValues.append(toQString(value.GetEnumName(i)));
    }
}

QString DeviceParameter::name() const
{
    return toQString(entry().name);
}

QString DeviceParameter::displayName() const
{
    return toQString(entry().displayName);
}

QString DeviceParameter::description() const
{
    return toQString(entry().description);
}

QString DeviceParameter::value() const
{
    return toQString(entry().value().ToString());
}

void DeviceParameter::setValue(const QString& text)
{
    if (text == value())
        return;
    // The library parses the text into the entry's own type, or keeps the old value; either
    // way bindings read the value again.
    entry().setValue(CVariant(toCString(text)));
    emit valueChanged();
}

int DeviceParameter::valueIndex() const
{
    return static_cast<int>(m_allowedValues.indexOf(value()));
}

void DeviceParameter::setValueIndex(int index)
{
    if (index < 0 || index >= m_allowedValues.size() || index == valueIndex())
        return;
    setValue(m_allowedValues.at(index));
    emit valueIndexChanged();
}

bool DeviceParameter::isWritable() const
{
    return entry().editLevel <= m_editLevel;
}

void DeviceParameter::setEditLevel(EEDIT_LEVEL level)
{
    const auto stored = static_cast<CParameters::EEditLevel>(level);
    if (stored == m_editLevel)
        return;
    m_editLevel = stored;
    emit editLevelChanged();
}
