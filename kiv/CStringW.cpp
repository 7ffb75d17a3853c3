// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "CStringW.h"

#include <QString>

#include <algorithm>
#include <cwchar>
#include <string_view>

namespace kiv {

CStringW::CStringW(const char* text, int length)
    : m_text(QString::fromUtf8(text, text ? length : 0).toStdWString())
{
}

CStringW::CStringW(const wchar_t* text, int length)
{
    if (text)
        m_text.assign(text, length < 0 ? std::wcslen(text) : static_cast<std::size_t>(length));
}

CStringW::CStringW(const CString& text) : CStringW(text.c_str(), text.length())
{
}

CStringW& CStringW::operator=(const char* text)
{
    *this = CStringW(text);
    return *this;
}

CString CStringW::ToUtf8() const
{
    const QByteArray utf8 = QString::fromStdWString(m_text).toUtf8();
    return CString(utf8.constData(), static_cast<int>(utf8.size()));
}

wchar_t* CStringW::GetBuffer(int minLength)
{
    m_text.resize(
        std::max<std::size_t>(m_text.size(), static_cast<std::size_t>(std::max(minLength, 0))));
    return m_text.data();
}

void CStringW::ReleaseBuffer()
{
    m_text.resize(std::min(m_text.size(), std::wstring_view(m_text).find(L'\0')));
}

bool CStringW::EqualsNoCase(const wchar_t* other) const
{
    return QString::fromStdWString(m_text).compare(
               QString::fromWCharArray(other ? other : L""), Qt::CaseInsensitive)
        == 0;
}

} // namespace kiv
