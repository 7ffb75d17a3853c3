// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/Path.h>

#include <QTest>

#include <string>

using kiv::CStringW;
using kiv::path::GetDirectory;
using kiv::path::WildcardMatch;

namespace {

std::wstring directory(const wchar_t* path)
{
    const CStringW result = GetDirectory(CStringW(path));
    return std::wstring(result.c_str(), static_cast<std::size_t>(result.length()));
}

bool match(const wchar_t* pattern, const wchar_t* text)
{
    return WildcardMatch(CStringW(pattern), CStringW(text));
}

} // namespace

class tst_Path : public QObject {
    Q_OBJECT

private slots:
    void getDirectory()
    {
        QVERIFY(directory(L"/a/b/c.so") == L"/a/b");
        QVERIFY(directory(L"/c.so") == L"/");
        QVERIFY(directory(L"c.so") == L"");
        QVERIFY(directory(L"/a/b/") == L"/a/b");
        QVERIFY(directory(L"") == L"");
        QVERIFY(directory(L"/") == L"/");
        QVERIFY(directory(L"a/b") == L"a");
        QVERIFY(directory(L"/opt/kamera\u00e4/lib.so") == L"/opt/kamera\u00e4");
    }
    void getDirectoryCollapsesRepeatedSeparators()
    {
        QVERIFY(directory(L"/a/b//c.so") == L"/a/b");
        QVERIFY(directory(L"//c.so") == L"/");
    }
    void getDirectoryNests()
    {
        CStringW path(L"/usr/lib/kivcamui/libkivcamuiFoo.so");
        path = GetDirectory(path);
        QVERIFY(path == CStringW(L"/usr/lib/kivcamui"));
        path = GetDirectory(path);
        QVERIFY(path == CStringW(L"/usr/lib"));
        path = GetDirectory(path);
        path = GetDirectory(path);
        QVERIFY(path == CStringW(L"/"));
    }
    void wholeTextMustMatch()
    {
        QVERIFY(!match(L"KIVCAMUI*", L"libkivcamuiFoo.so"));
        QVERIFY(match(L"libKIVCAMUI*", L"libkivcamuiFoo.so"));
        QVERIFY(match(L"libkivcamui*.so", L"libkivcamuiFoo.so"));
        QVERIFY(!match(L"libkivcamui*.so", L"libkivcamuiFoo.so.1"));
        QVERIFY(!match(L"libkivcamui", L"libkivcamuiFoo.so"));
        QVERIFY(!match(L"abc", L"ab"));
        QVERIFY(!match(L"ab", L"abc"));
        QVERIFY(match(L"abc", L"abc"));
    }
    void starMatchesAnything()
    {
        QVERIFY(match(L"*", L""));
        QVERIFY(match(L"*", L"a"));
        QVERIFY(match(L"*", L"libkivcamuiFoo.so"));
        QVERIFY(match(L"*", L"*?"));
        QVERIFY(match(L"a*", L"a"));
        QVERIFY(match(L"*a", L"a"));
        QVERIFY(!match(L"*a", L"b"));
    }
    void emptyPattern()
    {
        QVERIFY(match(L"", L""));
        QVERIFY(!match(L"", L"a"));
        QVERIFY(!match(L"", L" "));
    }
    void questionMarkIsOneCharacter()
    {
        QVERIFY(match(L"?", L"a"));
        QVERIFY(!match(L"?", L""));
        QVERIFY(!match(L"?", L"ab"));
        QVERIFY(match(L"a?c", L"abc"));
        QVERIFY(!match(L"a?c", L"ac"));
        QVERIFY(match(L"???", L"\u00e4\u00f6\u00fc"));
        QVERIFY(match(L"lib?.so", L"libX.so"));
        QVERIFY(!match(L"lib?.so", L"libXY.so"));
        QVERIFY(match(L"*?", L"a"));
        QVERIFY(!match(L"*?", L""));
        QVERIFY(match(L"?*?", L"ab"));
        QVERIFY(!match(L"?*?", L"a"));
    }
    void backtracking()
    {
        QVERIFY(match(L"a*b*c", L"abc"));
        QVERIFY(match(L"a*b*c", L"aXbYc"));
        QVERIFY(match(L"a*b*c", L"abbbc"));
        QVERIFY(match(L"a*b*c", L"abcbc"));
        QVERIFY(match(L"a*b*c", L"aXbXbXc"));
        QVERIFY(!match(L"a*b*c", L"abcb"));
        QVERIFY(!match(L"a*b*c", L"acb"));
        QVERIFY(!match(L"a*b*c", L"ab"));
        QVERIFY(match(L"*ab", L"aab"));
        QVERIFY(match(L"*aab", L"aaab"));
        QVERIFY(match(L"a*ab*abc", L"aababxabc"));
        QVERIFY(!match(L"a*ab*abc", L"aababxab"));
        QVERIFY(match(L"*.so", L"lib.so.so"));
        QVERIFY(match(L"*x*", L"abcabcx"));
        QVERIFY(!match(L"*x*", L"abcabc"));
    }
    void letterCaseIgnored()
    {
        QVERIFY(match(L"LIBKIVCAMUI.SO", L"libkivcamui.so"));
        QVERIFY(match(L"libkivcamui*.so", L"LIBKIVCAMUIBAR.SO"));
        QVERIFY(match(L"\u00c4*", L"\u00e4pfel"));
        QVERIFY(match(L"*\u00d6\u00dc", L"x\u00f6\u00fc"));
        QVERIFY(match(L"\u03a3\u03b9\u03b3\u03bc\u03b1", L"\u03c3\u0399\u0393\u039c\u0391"));
        QVERIFY(!match(L"\u00e4", L"a"));
    }
    void starInside()
    {
        QVERIFY(match(L"*Foo*", L"libkivcamuiFoo.so"));
        QVERIFY(match(L"*foo*", L"libkivcamuiFOO.so"));
        QVERIFY(match(L"*Foo*", L"Foo"));
        QVERIFY(!match(L"*Foo*", L"libkivcamuiFo.so"));
    }
    void trailingStars()
    {
        QVERIFY(match(L"lib**", L"lib"));
        QVERIFY(match(L"lib**", L"libkivcamui.so"));
        QVERIFY(match(L"**", L""));
        QVERIFY(match(L"a**b", L"ab"));
        QVERIFY(match(L"a**b", L"aXYb"));
        QVERIFY(!match(L"lib**", L"li"));
        QVERIFY(!match(L"lib**x", L"libabc"));
    }
    void longTextStaysFast()
    {
        // A pattern that would take exponential time with naive recursion.
        const std::wstring text(5000, L'a');
        const CStringW pattern(L"*a*a*a*a*a*a*a*a*a*b");
        QVERIFY(!WildcardMatch(pattern, CStringW(text.c_str())));
        QVERIFY(WildcardMatch(CStringW(L"*a*a*a*a*a*a*a*a*a*a"), CStringW(text.c_str())));
    }
};

QTEST_APPLESS_MAIN(tst_Path)
#include "tst_path.moc"
