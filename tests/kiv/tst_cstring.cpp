// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CString.h>

#include <QTest>

using kiv::CString;

class tst_CString : public QObject {
    Q_OBJECT

private slots:
    void emptyTextHasNullCStr()
    {
        QVERIFY(CString().c_str() == nullptr);
        QVERIFY(CString("").c_str() == nullptr);
        QVERIFY(CString(nullptr, -1).c_str() == nullptr);
        QVERIFY(CString().empty());
    }
    void dataIsNeverNull()
    {
        QVERIFY(CString().data() != nullptr);
        QCOMPARE(QByteArray(CString().data()), QByteArray(""));
        QCOMPARE(QByteArray(CString("lens").data()), QByteArray("lens"));
        const CString text("lens");
        QCOMPARE(text.data(), text.c_str());
    }
    void lengthMinusOneReadsToZero()
    {
        const CString text("camera", -1);
        QCOMPARE(QByteArray(text.c_str()), QByteArray("camera"));
        QCOMPARE(text.length(), 6);
    }
    void explicitLengthCutsText()
    {
        QCOMPARE(QByteArray(CString("camera", 3).c_str()), QByteArray("cam"));
    }
    void utf8RoundTrip()
    {
        const QString original = QStringLiteral("Kamera \u00b5m \u2103");
        const QByteArray utf8 = original.toUtf8();
        const CString text(utf8.constData(), -1);
        QCOMPARE(QString::fromUtf8(text.c_str()), original);
    }
    void copyMoveAndAssign()
    {
        CString a("one");
        CString b(a);
        QCOMPARE(QByteArray(b.c_str()), QByteArray("one"));
        CString c(std::move(a));
        QCOMPARE(QByteArray(c.c_str()), QByteArray("one"));
        b = "two";
        QCOMPARE(QByteArray(b.c_str()), QByteArray("two"));
        b = c;
        QCOMPARE(QByteArray(b.c_str()), QByteArray("one"));
        b = static_cast<const char*>(nullptr);
        QVERIFY(b.empty());
    }
    void compareGivesZeroOnlyForEqualTexts()
    {
        QCOMPARE(CString("abc").compare(CString("abc")), 0);
        QVERIFY(CString("abc").compare(CString("abd")) < 0);
        QVERIFY(CString("abd").compare(CString("abc")) > 0);
        QVERIFY(CString("abc").compare(CString()) != 0);
        QCOMPARE(CString().compare(CString("")), 0);
        QVERIFY(CString("a") == CString("a"));
        QVERIFY(CString("a") != CString("b"));
    }
    void appends()
    {
        CString text("cam");
        text += CString("era");
        QCOMPARE(QByteArray((text + CString("s")).c_str()), QByteArray("cameras"));
    }
};

QTEST_APPLESS_MAIN(tst_CString)
#include "tst_cstring.moc"
