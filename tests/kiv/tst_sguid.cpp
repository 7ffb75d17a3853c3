// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/SGuid.h>

#include <QTest>

#include <cstdint>
#include <type_traits>

using kiv::CString;
using kiv::SGuid;

static_assert(sizeof(SGuid) == 16);
static_assert(std::is_trivially_copyable_v<SGuid>);

namespace {

QByteArray bytes(const CString& text)
{
    return QByteArray(text.view().data(), text.length());
}

SGuid make(std::uint32_t data1, std::uint16_t data2, std::uint16_t data3,
    std::initializer_list<std::uint8_t> data4)
{
    SGuid guid;
    guid.data1 = data1;
    guid.data2 = data2;
    guid.data3 = data3;
    int i = 0;
    for (std::uint8_t byte : data4)
        guid.data4[i++] = byte;
    return guid;
}

const SGuid sample
    = make(0x0123abcd, 0x4567, 0x89ef, {0xfe, 0xdc, 0xba, 0x98, 0x76, 0x54, 0x32, 0x10});

} // namespace

class tst_SGuid : public QObject {
    Q_OBJECT

private slots:
    void defaultIsNull()
    {
        const SGuid guid;
        QVERIFY(guid.isNull());
        QCOMPARE(guid.data1, 0u);
        QCOMPARE(guid.data2, std::uint16_t(0));
        QCOMPARE(guid.data3, std::uint16_t(0));
        for (std::uint8_t byte : guid.data4)
            QCOMPARE(byte, std::uint8_t(0));
        QVERIFY(!sample.isNull());
        SGuid lastByte;
        lastByte.data4[7] = 1;
        QVERIFY(!lastByte.isNull());
    }
    void toStringFormat()
    {
        QCOMPARE(bytes(sample.ToString()), QByteArray("{0123abcd-4567-89ef-fedc-ba9876543210}"));
        QCOMPARE(bytes(SGuid().ToString()), QByteArray("{00000000-0000-0000-0000-000000000000}"));
        const SGuid allOnes
            = make(0xffffffff, 0xffff, 0xffff, {0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff});
        QCOMPARE(bytes(allOnes.ToString()), QByteArray("{ffffffff-ffff-ffff-ffff-ffffffffffff}"));
        QCOMPARE(sample.ToString().length(), 38);
    }
    void parseRoundTrip()
    {
        bool ok = false;
        QVERIFY(SGuid::Parse(sample.ToString(), &ok) == sample);
        QVERIFY(ok);
        QVERIFY(SGuid::Parse(CString("{0123abcd-4567-89ef-fedc-ba9876543210}")) == sample);
    }
    void parseWithoutBraces()
    {
        bool ok = false;
        QVERIFY(SGuid::Parse(CString("0123abcd-4567-89ef-fedc-ba9876543210"), &ok) == sample);
        QVERIFY(ok);
    }
    void parseUpperCase()
    {
        bool ok = false;
        QVERIFY(SGuid::Parse(CString("{0123ABCD-4567-89EF-FEDC-BA9876543210}"), &ok) == sample);
        QVERIFY(ok);
        ok = false;
        QVERIFY(SGuid::Parse(CString("0123AbCd-4567-89eF-FEDC-ba9876543210"), &ok) == sample);
        QVERIFY(ok);
    }
    void parseMalformed_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("braces only") << QByteArray("{}");
        QTest::newRow("words") << QByteArray("not an identifier");
        QTest::newRow("short") << QByteArray("{0123abcd-4567-89ef-fedc-ba987654321}");
        QTest::newRow("long") << QByteArray("{0123abcd-4567-89ef-fedc-ba98765432100}");
        QTest::newRow("bad digit") << QByteArray("{0123abcg-4567-89ef-fedc-ba9876543210}");
        QTest::newRow("no dashes") << QByteArray("{0123abcd456789effedcba9876543210}");
        QTest::newRow("dash moved") << QByteArray("{0123abc-d4567-89ef-fedc-ba9876543210}");
        QTest::newRow("open brace only") << QByteArray("{0123abcd-4567-89ef-fedc-ba9876543210");
        QTest::newRow("close brace only") << QByteArray("0123abcd-4567-89ef-fedc-ba9876543210}");
        QTest::newRow("other brackets") << QByteArray("(0123abcd-4567-89ef-fedc-ba9876543210)");
        QTest::newRow("spaces") << QByteArray(" {0123abcd-4567-89ef-fedc-ba9876543210} ");
        QTest::newRow("trailing text") << QByteArray("{0123abcd-4567-89ef-fedc-ba9876543210}x");
    }
    void parseMalformed()
    {
        QFETCH(QByteArray, text);
        bool ok = true;
        const SGuid guid = SGuid::Parse(CString(text.constData(), int(text.size())), &ok);
        QVERIFY(guid.isNull());
        QVERIFY(!ok);
        // Without the flag it is just null.
        QVERIFY(SGuid::Parse(CString(text.constData(), int(text.size()))).isNull());
    }
    void parseAllZero()
    {
        bool ok = false;
        QVERIFY(SGuid::Parse(CString("{00000000-0000-0000-0000-000000000000}"), &ok).isNull());
        QVERIFY(ok);
        ok = false;
        QVERIFY(SGuid::Parse(CString("00000000-0000-0000-0000-000000000000"), &ok).isNull());
        QVERIFY(ok);
    }
    void comparison()
    {
        const SGuid a = make(1, 0, 0, {});
        const SGuid b = make(2, 0, 0, {});
        const SGuid c = make(1, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1});
        QVERIFY(a == a);
        QVERIFY(a == make(1, 0, 0, {}));
        QVERIFY(a != b);
        QVERIFY(a != c);
        QVERIFY(a < b);
        QVERIFY(b > a);
        QVERIFY(a < c);
        QVERIFY(c < b);
        QVERIFY(a <= a);
        QVERIFY(a >= a);
        QVERIFY(SGuid() < a);
        QVERIFY((a <=> b) < 0);
        QVERIFY((a <=> a) == 0);
        // data2 decides before data3 and data4.
        QVERIFY(make(1, 1, 0, {}) > make(1, 0, 9, {9}));
    }
    void copiedByValue()
    {
        SGuid copy = sample;
        QVERIFY(copy == sample);
        copy.data4[0] = 0;
        QVERIFY(copy != sample);
        QCOMPARE(sample.data4[0], std::uint8_t(0xfe));
    }
};

QTEST_APPLESS_MAIN(tst_SGuid)
#include "tst_sguid.moc"
