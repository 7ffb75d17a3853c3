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
    const int index = IndexOf(entry.name);
    if (index < 0)
        return m_entries.add(entry);
    m_entries[index] = entry;
    return m_entries[index];
}

int CParameters::IndexOf(const CString& name) const
{
    for (int i = 0; i < m_entries.count(); ++i) {
        if (m_entries[i].name == name)
            return i;
    }
    return -1;
}

} // namespace kiv::cam
