// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CStringW.h>

#include <QTest>

#include <cwchar>
#include <string>
#include <utility>

using kiv::CString;
using kiv::CStringW;

namespace {

std::wstring text(const CStringW& value)
{
    return std::wstring(value.c_str(), static_cast<std::size_t>(value.length()));
}

QByteArray bytes(const CString& value)
{
    return QByteArray(value.view().data(), value.length());
}

} // namespace

class tst_CStringW : public QObject {
    Q_OBJECT

private slots:
    void defaultIsEmptyWithNonNullCStr()
    {
        const CStringW empty;
        QVERIFY(empty.empty());
        QCOMPARE(empty.length(), 0);
        QVERIFY(empty.c_str() != nullptr);
        QCOMPARE(empty.c_str()[0], L'\0');
    }
    void fromAsciiUtf8()
    {
        const CStringW value("camera");
        QCOMPARE(value.length(), 6);
        QVERIFY(text(value) == L"camera");
        QCOMPARE(std::wcslen(value.c_str()), std::size_t(6));
    }
    void fromNonAsciiUtf8()
    {
        // "Kamera äöü µm ℃ 😀": two-, three- and four-byte sequences.
        const CStringW value(
            "Kamera \xc3\xa4\xc3\xb6\xc3\xbc \xc2\xb5m \xe2\x84\x83 \xf0\x9f\x98\x80");
        QVERIFY(text(value) == L"Kamera \u00e4\u00f6\u00fc \u00b5m \u2103 \U0001F600");
        // One wchar_t per code point on Linux, the emoji included.
        QCOMPARE(value.length(), 17);
    }
    void fromUtf8WithExplicitLength()
    {
        QVERIFY(text(CStringW("camera", 3)) == L"cam");
        QVERIFY(text(CStringW("camera", 0)).empty());
        // The length counts bytes: the two bytes of "ä" and one more.
        QVERIFY(text(CStringW("\xc3\xa4xyz", 3)) == L"\u00e4x");
    }
    void fromUtf8StopsAtZeroForMinusOne()
    {
        const char buffer[] = {'a', 'b', '\0', 'c', 'd', '\0'};
        QVERIFY(text(CStringW(buffer, -1)) == L"ab");
        QVERIFY(text(CStringW(buffer)) == L"ab");
    }
    void fromNullUtf8IsEmpty()
    {
        const CStringW value(static_cast<const char*>(nullptr));
        QVERIFY(value.empty());
        QVERIFY(value.c_str() != nullptr);
        QVERIFY(CStringW(static_cast<const char*>(nullptr), 5).empty());
    }
    void fromWide()
    {
        const CStringW value(L"Kamera \u00e4");
        QCOMPARE(value.length(), 8);
        QVERIFY(text(value) == L"Kamera \u00e4");
    }
    void fromWideWithExplicitLength()
    {
        QVERIFY(text(CStringW(L"camera", 3)) == L"cam");
        QVERIFY(CStringW(L"camera", 0).empty());
        // An explicit length takes zeros inside the text too.
        const wchar_t buffer[] = {L'a', L'\0', L'b'};
        const CStringW value(buffer, 3);
        QCOMPARE(value.length(), 3);
        QCOMPARE(value.c_str()[2], L'b');
    }
    void fromWideStopsAtZeroForMinusOne()
    {
        const wchar_t buffer[] = {L'a', L'b', L'\0', L'c', L'\0'};
        QVERIFY(text(CStringW(buffer, -1)) == L"ab");
    }
    void fromNullWideIsEmpty()
    {
        QVERIFY(CStringW(static_cast<const wchar_t*>(nullptr)).empty());
        QVERIFY(CStringW(static_cast<const wchar_t*>(nullptr), 4).empty());
        QVERIFY(CStringW(static_cast<const wchar_t*>(nullptr)).c_str() != nullptr);
    }
    void fromCString()
    {
        QVERIFY(text(CStringW(CString("\xc3\x84pfel"))) == L"\u00c4pfel");
        // The empty CString has a null c_str().
        QVERIFY(CStringW(CString()).empty());
    }
    void copyMoveAndAssign()
    {
        CStringW a(L"one");
        CStringW b(a);
        QVERIFY(text(b) == L"one");
        QVERIFY(text(a) == L"one");
        CStringW c(std::move(a));
        QVERIFY(text(c) == L"one");
        b = "two";
        QVERIFY(text(b) == L"two");
        b = "\xc3\xa4";
        QVERIFY(text(b) == L"\u00e4");
        b = c;
        QVERIFY(text(b) == L"one");
        CStringW d;
        d = std::move(c);
        QVERIFY(text(d) == L"one");
        b = static_cast<const char*>(nullptr);
        QVERIFY(b.empty());
    }
    void copiesAreIndependent()
    {
        CStringW a(L"abc");
        CStringW b(a);
        a.GetBuffer(3)[0] = L'x';
        QVERIFY(text(a) == L"xbc");
        QVERIFY(text(b) == L"abc");
    }
    void equality()
    {
        QVERIFY(CStringW(L"abc") == CStringW("abc"));
        QVERIFY(!(CStringW(L"abc") == CStringW(L"ABC")));
        QVERIFY(!(CStringW(L"abc") == CStringW(L"abcd")));
        QVERIFY(CStringW() == CStringW(""));
    }
    void toUtf8RoundTrip()
    {
        const QByteArray original("Kamera \xc3\xa4\xc3\xb6\xc3\xbc \xe2\x84\x83 \xf0\x9f\x98\x80");
        const CStringW wide(original.constData());
        QCOMPARE(bytes(wide.ToUtf8()), original);
        QCOMPARE(wide.ToUtf8().length(), original.size());
        QCOMPARE(bytes(CStringW(L"\u00e4").ToUtf8()), QByteArray("\xc3\xa4"));
        QVERIFY(CStringW().ToUtf8().empty());
    }
    void getBufferAndReleaseBuffer()
    {
        CStringW path;
        wchar_t* buffer = path.GetBuffer(260);
        QVERIFY(buffer != nullptr);
        std::wcscpy(buffer, L"/opt/camera/lib\u00e4.so");
        // The whole requested room is writable.
        buffer[259] = L'\0';
        path.ReleaseBuffer();
        QCOMPARE(path.length(), 19);
        QVERIFY(text(path) == L"/opt/camera/lib\u00e4.so");
        QCOMPARE(std::wcslen(path.c_str()), std::size_t(19));
    }
    void releaseBufferShortensToFirstZero()
    {
        CStringW value(L"abcdef");
        wchar_t* buffer = value.GetBuffer(6);
        buffer[2] = L'\0';
        value.ReleaseBuffer();
        QVERIFY(text(value) == L"ab");
        QCOMPARE(value.length(), 2);
    }
    void releaseBufferWithoutWritingKeepsText()
    {
        CStringW value(L"abc");
        value.GetBuffer(0);
        value.ReleaseBuffer();
        QVERIFY(text(value) == L"abc");
    }
    void getBufferNeverShortens()
    {
        CStringW value(L"camera");
        wchar_t* buffer = value.GetBuffer(2);
        QVERIFY(std::wcscmp(buffer, L"camera") == 0);
        QCOMPARE(value.length(), 6);
        value.ReleaseBuffer();
        QVERIFY(text(value) == L"camera");
        value.GetBuffer(-5);
        value.ReleaseBuffer();
        QVERIFY(text(value) == L"camera");
    }
    void getBufferKeepsExistingTextWhenGrowing()
    {
        CStringW value(L"cam");
        wchar_t* buffer = value.GetBuffer(100);
        QVERIFY(std::wcscmp(buffer, L"cam") == 0);
        std::wcscat(buffer, L"era");
        value.ReleaseBuffer();
        QVERIFY(text(value) == L"camera");
    }
    void equalsNoCaseAscii()
    {
        QVERIFY(CStringW(L"libKivCamUI.so").EqualsNoCase(L"LIBKIVCAMUI.SO"));
        QVERIFY(CStringW(L"abc").EqualsNoCase(L"abc"));
        QVERIFY(!CStringW(L"abc").EqualsNoCase(L"abd"));
    }
    void equalsNoCaseNonAscii()
    {
        QVERIFY(CStringW("\xc3\x84"
                         "BC")
                    .EqualsNoCase(L"\u00e4bc"));
        QVERIFY(CStringW(L"\u00e4bc").EqualsNoCase(L"\u00c4BC"));
        // Greek and Cyrillic.
        QVERIFY(CStringW(L"\u03a3\u0399\u0393\u039c\u0391")
                    .EqualsNoCase(L"\u03c3\u03b9\u03b3\u03bc\u03b1"));
        QVERIFY(CStringW(L"\u041a\u0410\u041c\u0415\u0420\u0410")
                    .EqualsNoCase(L"\u043a\u0430\u043c\u0435\u0440\u0430"));
        QVERIFY(!CStringW(L"\u00e4bc").EqualsNoCase(L"abc"));
    }
    void equalsNoCaseUnequalLengths()
    {
        QVERIFY(!CStringW(L"abc").EqualsNoCase(L"abcd"));
        QVERIFY(!CStringW(L"abcd").EqualsNoCase(L"ABC"));
        QVERIFY(!CStringW(L"abc").EqualsNoCase(L""));
        QVERIFY(!CStringW().EqualsNoCase(L"a"));
    }
    void equalsNoCaseNull()
    {
        // A null text reads as the empty one.
        QVERIFY(CStringW().EqualsNoCase(nullptr));
        QVERIFY(CStringW("").EqualsNoCase(nullptr));
        QVERIFY(!CStringW(L"abc").EqualsNoCase(nullptr));
    }
};

QTEST_APPLESS_MAIN(tst_CStringW)
#include "tst_cstringw.moc"
