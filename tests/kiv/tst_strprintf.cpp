// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/strprintf.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using kiv::CString;
using kiv::strprintf;

namespace {

QByteArray bytes(const CString& text)
{
    return QByteArray(text.view().data(), text.length());
}

CString viaVaList(const char* format, ...) __attribute__((format(printf, 1, 2)));
CString viaVaList(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    CString text = kiv::vstrprintf(format, args);
    va_end(args);
    return text;
}

QByteArray cFormat(const char* format, double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return QByteArray(buffer);
}

// Puts the process into a German locale, whose decimal separator is a comma: the installed one
// or else one compiled into folder. False when neither can be had.
bool setGermanLocale(const QString& folder)
{
    if (std::setlocale(LC_ALL, "de_DE.UTF-8"))
        return true;
    const QString localedef = QStringLiteral("localedef");
    QProcess process;
    process.start(localedef,
        {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
            QStringLiteral("UTF-8"), QDir(folder).filePath(QStringLiteral("de_DE.UTF-8"))});
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return false;
    qputenv("LOCPATH", QFile::encodeName(folder));
    const bool set = std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
    qunsetenv("LOCPATH");
    return set;
}

} // namespace

class tst_strprintf : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { std::setlocale(LC_ALL, "C"); }

    void plainText()
    {
        QCOMPARE(bytes(strprintf("hello, camera")), QByteArray("hello, camera"));
        QCOMPARE(bytes(strprintf("100%%")), QByteArray("100%"));
        QCOMPARE(bytes(strprintf("\xc3\xa4 stays UTF-8")), QByteArray("\xc3\xa4 stays UTF-8"));
    }
    void integers()
    {
        QCOMPARE(bytes(strprintf("%d %i %u", -12, 34, 56u)), QByteArray("-12 34 56"));
        QCOMPARE(bytes(strprintf("%x %X %o %#x", 255, 255, 8, 31)), QByteArray("ff FF 10 0x1f"));
        QCOMPARE(
            bytes(strprintf("[%5d|%-5d|%05d]", 42, 42, 42)), QByteArray("[   42|42   |00042]"));
        QCOMPARE(bytes(strprintf("%lld %llu", -9223372036854775807LL - 1, 18446744073709551615ULL)),
            QByteArray("-9223372036854775808 18446744073709551615"));
        QCOMPARE(bytes(strprintf("%zu %c", sizeof(int), 'A')), QByteArray("4 A"));
    }
    void doubles()
    {
        QCOMPARE(bytes(strprintf("%.2f", 3.14159)), QByteArray("3.14"));
        QCOMPARE(bytes(strprintf("%f", 2.5)), QByteArray("2.500000"));
        QCOMPARE(bytes(strprintf("%g %g", 0.0001, 1e20)), QByteArray("0.0001 1e+20"));
        QCOMPARE(bytes(strprintf("%.3e", -1234.5)), QByteArray("-1.234e+03"));
        QCOMPARE(bytes(strprintf("%8.1f|", 2.3)), QByteArray("     2.3|"));
    }
    void strings()
    {
        QCOMPARE(bytes(strprintf("<%s>", "text")), QByteArray("<text>"));
        QCOMPARE(bytes(strprintf("<%5s|%-5s|%.2s>", "ab", "ab", "abcdef")),
            QByteArray("<   ab|ab   |ab>"));
        QCOMPARE(bytes(strprintf("%s%s", "a", "b")), QByteArray("ab"));
    }
    void wideStringComesOutAsUtf8()
    {
        QCOMPARE(bytes(strprintf("%S", L"Kamera\u00e4")), QByteArray("Kamera\xc3\xa4"));
        QCOMPARE(bytes(strprintf("%ls", L"Kamera\u00e4")), QByteArray("Kamera\xc3\xa4"));
        QCOMPARE(bytes(strprintf("[%S]", L"\u00b5m \u2103 \U0001F600")),
            QByteArray("[\xc2\xb5m \xe2\x84\x83 \xf0\x9f\x98\x80]"));
        QCOMPARE(bytes(strprintf("%S and %s", L"wide", "narrow")), QByteArray("wide and narrow"));
    }
    void loaderMessages()
    {
        QCOMPARE(bytes(strprintf("Failed to load library: %S\n", L"libkivcamuiFoo.so")),
            QByteArray("Failed to load library: libkivcamuiFoo.so\n"));
        QCOMPARE(bytes(strprintf(
                     "Failed to load library: %S\n", L"/opt/kamera\u00e4/libkivcamuiFoo.so")),
            QByteArray("Failed to load library: /opt/kamera\xc3\xa4/libkivcamuiFoo.so\n"));
        QCOMPARE(bytes(strprintf("%S: %s (%d)\n", L"libkivcamui.so", "symbol not found", 3)),
            QByteArray("libkivcamui.so: symbol not found (3)\n"));
    }
    void longOutput()
    {
        const std::string part(5000, 'x');
        const CString text = strprintf("<%s|%d>", part.c_str(), 7);
        QCOMPARE(text.length(), 5000 + 4);
        QCOMPARE(bytes(text), "<" + QByteArray(5000, 'x') + "|7>");
        const CString padded = strprintf("%1500d", 1);
        QCOMPARE(padded.length(), 1500);
        QCOMPARE(bytes(padded), QByteArray(1499, ' ') + "1");
        const std::wstring wide(1200, L'\u00e4');
        const CString converted = strprintf("%S", wide.c_str());
        QCOMPARE(converted.length(), 2400);
        QCOMPARE(bytes(converted).left(4), QByteArray("\xc3\xa4\xc3\xa4"));
    }
    void emptyResult()
    {
        const CString text = strprintf("%s", "");
        QVERIFY(text.empty());
        QCOMPARE(text.length(), 0);
        QVERIFY(strprintf("%S", L"").empty());
        QVERIFY(strprintf("%.0s", "abc").empty());
    }
    void nullFormatGivesEmpty()
    {
        QVERIFY(strprintf(nullptr).empty());
        QVERIFY(viaVaList(nullptr).empty());
    }
    void vstrprintfFormatsTheList()
    {
        QCOMPARE(
            bytes(viaVaList("%s=%d %S", "count", 3, L"\u00e4")), QByteArray("count=3 \xc3\xa4"));
        QCOMPARE(bytes(viaVaList("plain")), QByteArray("plain"));
    }
    void decimalPointInCLocales()
    {
        QCOMPARE(bytes(strprintf("%.1f", 2.5)), QByteArray("2.5"));
        QVERIFY(std::setlocale(LC_ALL, "C.UTF-8") != nullptr);
        QCOMPARE(bytes(strprintf("%.1f %g", 2.5, 0.25)), QByteArray("2.5 0.25"));
        QCOMPARE(bytes(strprintf("%S", L"\u00e4")), QByteArray("\xc3\xa4"));
    }
    void decimalPointIsDotInGermanLocale()
    {
        // Made before the locale changes, so that its set-up cannot depend on it.
        QCOMPARE(bytes(strprintf("%.1f", 2.5)), QByteArray("2.5"));
        QTemporaryDir folder;
        QVERIFY(folder.isValid());
        if (!setGermanLocale(folder.path()))
            QSKIP("The de_DE.UTF-8 locale is not available and cannot be made here.");
        // The C library itself now writes a comma, so the check below means something.
        QCOMPARE(cFormat("%.1f", 2.5), QByteArray("2,5"));
        QCOMPARE(bytes(strprintf("%.1f", 2.5)), QByteArray("2.5"));
        QCOMPARE(bytes(strprintf("%g|%.3e|%f", 0.25, 1234.5, 1.5)),
            QByteArray("0.25|1.234e+03|1.500000"));
        QCOMPARE(
            bytes(strprintf("%S %.2f", L"Kamera\u00e4", 0.5)), QByteArray("Kamera\xc3\xa4 0.50"));
        // The process's own formatting is left as it was.
        QCOMPARE(cFormat("%.1f", 2.5), QByteArray("2,5"));
    }
    void concurrentFormatting()
    {
        std::vector<std::thread> threads;
        std::vector<int> failures(4, 0);
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([t, &failures] {
                for (int i = 0; i < 2000; ++i) {
                    const CString text = strprintf("%d:%S:%.1f", i, L"\u00e4", 0.5);
                    const std::string expected = std::to_string(i) + ":\xc3\xa4:0.5";
                    if (text.view() != expected)
                        ++failures[t];
                }
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        for (int count : failures)
            QCOMPARE(count, 0);
    }
};

QTEST_GUILESS_MAIN(tst_strprintf)
#include "tst_strprintf.moc"
