// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "Path.h"

#include <QString>

#include <string_view>

namespace kiv::path {

CStringW GetDirectory(const CStringW& path)
{
    constexpr std::wstring_view separators = L"/";
    const std::wstring_view text(path.c_str(), static_cast<std::size_t>(path.length()));
    std::size_t end = text.find_last_of(separators);
    if (end == std::wstring_view::npos)
        return {};
    while (end > 0 && separators.find(text[end - 1]) != std::wstring_view::npos)
        --end;
    // A path in the root folder keeps the root separator itself.
    return CStringW(text.data(), static_cast<int>(end == 0 ? 1 : end));
}

bool WildcardMatch(const CStringW& pattern, const CStringW& text)
{
    const QString p = QString::fromStdWString(pattern.c_str());
    const QString t = QString::fromStdWString(text.c_str());
    // Matches by walking both texts; on a mismatch it goes back to just after the last "*",
    // letting that star swallow one more character.
    qsizetype pi = 0, ti = 0, star = -1, resume = 0;
    while (ti < t.size()) {
        if (pi < p.size() && p[pi] == u'*') {
            star = pi++;
            resume = ti;
        } else if (pi < p.size()
            && (p[pi] == u'?' || p[pi].toCaseFolded() == t[ti].toCaseFolded())) {
            ++pi;
            ++ti;
        } else if (star >= 0) {
            pi = star + 1;
            ti = ++resume;
        } else {
            return false;
        }
    }
    while (pi < p.size() && p[pi] == u'*')
        ++pi;
    return pi == p.size();
}

} // namespace kiv::path
