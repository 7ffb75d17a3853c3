// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CParameters.h"

#include <kiv/CException.h>

#include <utility>

namespace kiv::cam {

CParameters::CEntry::CEntry(
    CString name, CString displayName, CString description, EEditLevel editLevel, CVariant value)
    : name(std::move(name)),
      displayName(std::move(displayName)),
      description(std::move(description)),
      editLevel(editLevel),
      m_value(std::move(value))
{
}

CVariant CParameters::CEntry::setValue(const CVariant& value)
{
    m_value.Assign(value);
    return m_value;
}

CParameters::CEntry& CParameters::operator[](unsigned index)
{
    if (index >= count())
        ThrowOutOfRangeException("CParameters: index %u out of range.", index);
    return m_entries[static_cast<int>(index)];
}

const CParameters::CEntry& CParameters::operator[](unsigned index) const
{
    return const_cast<CParameters&>(*this)[index];
}

CParameters::CEntry& CParameters::operator[](const CString& name)
{
    const int index = IndexOf(name);
    if (index < 0)
        ThrowOutOfRangeException("CParameters: no parameter named \"%s\".", name.data());
    return m_entries[index];
}

const CParameters::CEntry& CParameters::operator[](const CString& name) const
{
    return const_cast<CParameters&>(*this)[name];
}

bool CParameters::Exists(const CString& name) const
{
    return IndexOf(name) >= 0;
}

CString CParameters::TextOf(const CString& name) const
{
    const int index = IndexOf(name);
    return index >= 0 ? m_entries[index].value().ToString() : CString();
}

CParameters::CEntry& CParameters::Add(CEntry entry)
{
    if (const int index = IndexOf(entry.name); index >= 0) {
        m_entries[index] = std::move(entry);
        return m_entries[index];
    }
    const int index = m_entries.count();
    m_keys.add(entry.name);
    try {
        if (index + 1 == indexedFrom) {
            CNameIndex built;
            for (int i = 0; i <= index; ++i)
                built.assign(m_keys[i].view(), i);
            m_entries.add(std::move(entry));
            m_index = std::move(built);
        } else {
            if (index + 1 > indexedFrom)
                m_index.assign(m_keys[index].view(), index);
            m_entries.add(std::move(entry));
        }
    } catch (...) {
        if (index + 1 > indexedFrom)
            m_index.erase(m_keys[index].view());
        m_keys.removeAt(index);
        throw;
    }
    return m_entries[index];
}

int CParameters::IndexOf(const CString& name) const
{
    int index = -1;
    if (m_entries.count() >= indexedFrom) {
        index = m_index.find(name.view());
    } else {
        // The last entry added under a name is the one it finds, as in the index.
        for (int i = m_keys.count() - 1; i >= 0 && index < 0; --i) {
            if (m_keys[i] == name)
                index = i;
        }
    }
    // An entry renamed in place keeps its old key, which must not find it.
    return index >= 0 && m_entries[index].name == name ? index : -1;
}

} // namespace kiv::cam
