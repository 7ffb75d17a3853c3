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

CParameters::CEntry& CParameters::Add(const CEntry& entry)
{
    if (const int index = IndexOf(entry.name); index >= 0) {
        m_entries[index] = entry;
        return m_entries[index];
    }
    m_index.assign(entry.name.view(), m_entries.count());
    try {
        return m_entries.add(entry);
    } catch (...) {
        m_index.erase(entry.name.view());
        throw;
    }
}

int CParameters::IndexOf(const CString& name) const
{
    const int index = m_index.find(name.view());
    // An entry renamed in place keeps its old key, which must not find it.
    return index >= 0 && m_entries[index].name == name ? index : -1;
}

} // namespace kiv::cam
