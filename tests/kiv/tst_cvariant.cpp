// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CVariant.h>

#include <QTest>

#include <cstdint>
#include <limits>

using kiv::CString;
using kiv::CVariant;
using kiv::SGuid;
using kiv::TArray;

static_assert(CVariant::TYPE_EMPTY == 0);
static_assert(CVariant::TYPE_BOOL == 1);
static_assert(CVariant::TYPE_INT32 == 6);
static_assert(CVariant::TYPE_UINT64 == 9);
static_assert(CVariant::TYPE_DOUBLE == 11);
static_assert(CVariant::TYPE_STRING == 12);
static_assert(CVariant::TYPE_GUID == 13);
static_assert(CVariant::TYPE_ENUM == 14);
static_assert(sizeof(CVariant::EType) == 4);

namespace {

QByteArray text(const CVariant& value)
{
    const CString string = value.ToString();
    return QByteArray(string.view().data(), string.length());
}

TArray<CVariant::SEnumItem> baudRates()
{
    return {{"9600", 9600}, {"19200", 19200}, {"115200", 115200}};
}

TArray<CVariant::SEnumItem> modes()
{
    return {{"Off", 0}, {"On", 1}, {"Auto", 7}};
}

SGuid sampleGuid()
{
    SGuid guid;
    guid.data1 = 0x6b697670;
    guid.data2 = 0x1234;
    guid.data3 = 0x4abc;
    const std::uint8_t tail[8] = {0x80, 0x01, 0x02, 0x03, 0xa4, 0xb5, 0xc6, 0xd7};
    for (int i = 0; i < 8; ++i)
        guid.data4[i] = tail[i];
    return guid;
}

const char sampleGuidText[] = "{6b697670-1234-4abc-8001-0203a4b5c6d7}";

} // namespace

class tst_CVariant : public QObject {
    Q_OBJECT

private slots:
    void constructorTypes()
    {
        QCOMPARE(CVariant().getType(), CVariant::TYPE_EMPTY);
        QVERIFY(CVariant().isEmpty());
        QCOMPARE(CVariant(5).getType(), CVariant::TYPE_INT32);
        QVERIFY(!CVariant(5).isEmpty());
        QCOMPARE(CVariant(CString("x")).getType(), CVariant::TYPE_STRING);
        QCOMPARE(CVariant("x").getType(), CVariant::TYPE_STRING);
        QCOMPARE(CVariant(true).getType(), CVariant::TYPE_BOOL);
        QCOMPARE(CVariant(5u).getType(), CVariant::TYPE_UINT32);
        QCOMPARE(CVariant(5LL).getType(), CVariant::TYPE_INT64);
        QCOMPARE(CVariant(5ULL).getType(), CVariant::TYPE_UINT64);
        QCOMPARE(CVariant(2.5).getType(), CVariant::TYPE_DOUBLE);
        QCOMPARE(CVariant(sampleGuid()).getType(), CVariant::TYPE_GUID);
        QCOMPARE(CVariant::Enum(modes(), 1).getType(), CVariant::TYPE_ENUM);
    }
    void typeConstructorGivesZeroValue()
    {
        QCOMPARE(CVariant(CVariant::TYPE_BOOL).getType(), CVariant::TYPE_BOOL);
        QCOMPARE(text(CVariant(CVariant::TYPE_BOOL)), QByteArray("false"));
        QCOMPARE(text(CVariant(CVariant::TYPE_INT8)), QByteArray("0"));
        QCOMPARE(text(CVariant(CVariant::TYPE_UINT64)), QByteArray("0"));
        QCOMPARE(text(CVariant(CVariant::TYPE_DOUBLE)), QByteArray("0"));
        QCOMPARE(CVariant(CVariant::TYPE_STRING).getType(), CVariant::TYPE_STRING);
        QVERIFY(CVariant(CVariant::TYPE_STRING).ToString().empty());
        QCOMPARE(text(CVariant(CVariant::TYPE_GUID)),
            QByteArray("{00000000-0000-0000-0000-000000000000}"));
        QCOMPARE(CVariant(CVariant::TYPE_INT16), CVariant(CVariant::TYPE_INT16));
        QCOMPARE(CVariant(CVariant::TYPE_ENUM).GetEnumCount(), 0);
        QVERIFY(CVariant(CVariant::TYPE_EMPTY).isEmpty());
    }
    void toStringOfEachType()
    {
        QVERIFY(CVariant().ToString().empty());
        QCOMPARE(text(CVariant(true)), QByteArray("true"));
        QCOMPARE(text(CVariant(false)), QByteArray("false"));
        QCOMPARE(text(CVariant(0)), QByteArray("0"));
        QCOMPARE(text(CVariant(-42)), QByteArray("-42"));
        QCOMPARE(text(CVariant(std::numeric_limits<int>::min())), QByteArray("-2147483648"));
        QCOMPARE(text(CVariant(4000000000u)), QByteArray("4000000000"));
        QCOMPARE(text(CVariant(std::numeric_limits<long long>::min())),
            QByteArray("-9223372036854775808"));
        QCOMPARE(text(CVariant(std::numeric_limits<unsigned long long>::max())),
            QByteArray("18446744073709551615"));
        QCOMPARE(text(CVariant(CString("a text"))), QByteArray("a text"));
        QCOMPARE(text(CVariant("\xc3\xa4")), QByteArray("\xc3\xa4"));
        QCOMPARE(text(CVariant(sampleGuid())), QByteArray(sampleGuidText));
    }
    void toStringOfDoubleIsShortest()
    {
        QCOMPARE(text(CVariant(0.1)), QByteArray("0.1"));
        QCOMPARE(text(CVariant(2.5)), QByteArray("2.5"));
        QCOMPARE(text(CVariant(-0.125)), QByteArray("-0.125"));
        QCOMPARE(text(CVariant(1.0)), QByteArray("1"));
        QCOMPARE(text(CVariant(100.0)), QByteArray("100"));
        QCOMPARE(text(CVariant(1.0 / 3.0)), QByteArray("0.3333333333333333"));
        QCOMPARE(text(CVariant(0.1 + 0.2)), QByteArray("0.30000000000000004"));
        // The text reads back as exactly the same number.
        CVariant back(CVariant::TYPE_DOUBLE);
        QVERIFY(back.Assign(CVariant(0.1 + 0.2).ToString()));
        QCOMPARE(back, CVariant(0.1 + 0.2));
    }
    void floatHoldsSinglePrecision()
    {
        CVariant value(CVariant::TYPE_FLOAT);
        QCOMPARE(value.getType(), CVariant::TYPE_FLOAT);
        QVERIFY(value.Assign(CVariant(0.1)));
        QCOMPARE(text(value), QByteArray("0.1"));
        QCOMPARE(value.getType(), CVariant::TYPE_FLOAT);
        // The value is converted into the variant's type: the float nearest 0.1.
        QVERIFY(value.ToDouble() == static_cast<double>(0.1f));
        CVariant fromText(CVariant::TYPE_FLOAT);
        QVERIFY(fromText.Assign(CVariant("0.1")));
        QCOMPARE(fromText, value);
        QVERIFY(value.Assign(CVariant(3)));
        QCOMPARE(text(value), QByteArray("3"));
        QVERIFY(value.Assign(CVariant("-2.5")));
        QCOMPARE(value.ToDouble(), -2.5);
    }
    void floatRefusesWhatDoesNotFit()
    {
        CVariant value(CVariant::TYPE_FLOAT);
        QVERIFY(value.Assign(CVariant(1.5)));
        QVERIFY(!value.Assign(CVariant(1e300)));
        QVERIFY(!value.Assign(CVariant(-1e39)));
        QVERIFY(!value.Assign(CVariant("1e39")));
        QCOMPARE(value.ToDouble(), 1.5);
        QVERIFY(value.Assign(CVariant(3.0e38)));
        QVERIFY(value.ToDouble() == static_cast<double>(3.0e38f));
        // The largest float's shortest text reads back, though as a double it lies above it.
        QVERIFY(value.Assign(CVariant(static_cast<double>(std::numeric_limits<float>::max()))));
        QCOMPARE(text(value), QByteArray("3.4028235e+38"));
        QVERIFY(value.Assign(CVariant("3.4028235e+38")));
        QVERIFY(value.ToDouble() == static_cast<double>(std::numeric_limits<float>::max()));
        QVERIFY(value.Assign(CVariant("-3.4028235e38")));
        QVERIFY(!value.Assign(CVariant("3.4028236e38")));
        QVERIFY(value.ToDouble() == -static_cast<double>(std::numeric_limits<float>::max()));
        // Infinity is a float value.
        QVERIFY(value.Assign(CVariant(std::numeric_limits<double>::infinity())));
        QCOMPARE(text(value), QByteArray("inf"));
        // A double variant holds all of them.
        CVariant wide(CVariant::TYPE_DOUBLE);
        QVERIFY(wide.Assign(CVariant(1e300)));
        QVERIFY(wide.Assign(CVariant("1e39")));
        QCOMPARE(wide.ToDouble(), 1e39);
    }
    void enumeration()
    {
        const CVariant baud = CVariant::Enum(baudRates(), 19200);
        QCOMPARE(baud.GetEnumCount(), 3);
        QCOMPARE(QByteArray(baud.GetEnumName(0).c_str()), QByteArray("9600"));
        QCOMPARE(QByteArray(baud.GetEnumName(1).c_str()), QByteArray("19200"));
        QCOMPARE(QByteArray(baud.GetEnumName(2).c_str()), QByteArray("115200"));
        QCOMPARE(baud.GetEnumValue(0), 9600LL);
        QCOMPARE(baud.GetEnumValue(2), 115200LL);
        QVERIFY(baud.GetEnumName(3).empty());
        QVERIFY(baud.GetEnumName(-1).empty());
        QCOMPARE(baud.GetEnumValue(3), 0LL);
        QVERIFY(baud.IsEnumValueValid(9600));
        QVERIFY(baud.IsEnumValueValid(115200));
        QVERIFY(!baud.IsEnumValueValid(9601));
        QVERIFY(!baud.IsEnumValueValid(0));
        QCOMPARE(text(baud), QByteArray("19200"));
        QCOMPARE(baud.ToInt64(), 19200LL);
    }
    void enumerationToStringGivesName()
    {
        const CVariant mode = CVariant::Enum(modes(), 7);
        QCOMPARE(text(mode), QByteArray("Auto"));
        QCOMPARE(text(CVariant::Enum(modes(), 0)), QByteArray("Off"));
        QCOMPARE(mode.ToInt64(), 7LL);
        QCOMPARE(mode.GetEnumCount(), 3);
        QCOMPARE(QByteArray(mode.GetEnumName(1).c_str()), QByteArray("On"));
    }
    void enumerationCopiesItsItems()
    {
        TArray<CVariant::SEnumItem> items = modes();
        const CVariant mode = CVariant::Enum(items, 1);
        items[1].name = "Changed";
        items.add({"Extra", 9});
        QCOMPARE(mode.GetEnumCount(), 3);
        QCOMPARE(text(mode), QByteArray("On"));
        const CVariant copy(mode);
        QCOMPARE(copy.GetEnumCount(), 3);
        QCOMPARE(text(copy), QByteArray("On"));
    }
    void nonEnumerationHasNoItems()
    {
        const CVariant number(5);
        QCOMPARE(number.GetEnumCount(), 0);
        QVERIFY(number.GetEnumName(0).empty());
        QVERIFY(!number.IsEnumValueValid(5));
    }
    void assignEnumByName()
    {
        CVariant mode = CVariant::Enum(modes(), 0);
        QVERIFY(mode.Assign(CVariant("Auto")));
        QCOMPARE(mode.ToInt64(), 7LL);
        QCOMPARE(text(mode), QByteArray("Auto"));
        QCOMPARE(mode.getType(), CVariant::TYPE_ENUM);
        CVariant baud = CVariant::Enum(baudRates(), 9600);
        QVERIFY(baud.Assign(CVariant(CString("115200"))));
        QCOMPARE(baud.ToInt64(), 115200LL);
    }
    void assignEnumByNumber()
    {
        CVariant mode = CVariant::Enum(modes(), 0);
        QVERIFY(mode.Assign(CVariant("1")));
        QCOMPARE(text(mode), QByteArray("On"));
        QVERIFY(mode.Assign(CVariant("0x7")));
        QCOMPARE(text(mode), QByteArray("Auto"));
        QVERIFY(mode.Assign(CVariant(0)));
        QCOMPARE(text(mode), QByteArray("Off"));
        QVERIFY(mode.Assign(CVariant::Enum(modes(), 1)));
        QCOMPARE(text(mode), QByteArray("On"));
    }
    void assignEnumRefusesUnknown()
    {
        CVariant mode = CVariant::Enum(modes(), 1);
        QVERIFY(!mode.Assign(CVariant("Manual")));
        QCOMPARE(text(mode), QByteArray("On"));
        QVERIFY(!mode.Assign(CVariant("2")));
        QVERIFY(!mode.Assign(CVariant(2)));
        QVERIFY(!mode.Assign(CVariant("")));
        QVERIFY(!mode.Assign(CVariant(1.5)));
        QCOMPARE(mode.ToInt64(), 1LL);
        CVariant baud = CVariant::Enum(baudRates(), 9600);
        QVERIFY(!baud.Assign(CVariant("57600")));
        QVERIFY(!baud.Assign(CVariant(57600)));
        QCOMPARE(text(baud), QByteArray("9600"));
    }
    void assignIntegerText()
    {
        CVariant value(CVariant::TYPE_INT32);
        QVERIFY(value.Assign(CVariant("42")));
        QCOMPARE(value.ToInt64(), 42LL);
        QCOMPARE(value.getType(), CVariant::TYPE_INT32);
        QVERIFY(value.Assign(CVariant("-17")));
        QCOMPARE(value.ToInt64(), -17LL);
        QVERIFY(value.Assign(CVariant("0x1F")));
        QCOMPARE(value.ToInt64(), 31LL);
        QVERIFY(value.Assign(CVariant("0x1f")));
        QCOMPARE(value.ToInt64(), 31LL);
        QVERIFY(value.Assign(CVariant("-0x10")));
        QCOMPARE(value.ToInt64(), -16LL);
        QVERIFY(value.Assign(CVariant("0")));
        QCOMPARE(value.ToInt64(), 0LL);
        QVERIFY(value.Assign(CVariant("2147483647")));
        QVERIFY(value.Assign(CVariant("-2147483648")));
        QCOMPARE(value.ToInt64(), -2147483648LL);
    }
    void assignIntegerTextRefusals()
    {
        CVariant value(CVariant::TYPE_INT32);
        QVERIFY(value.Assign(CVariant("5")));
        const char* refused[] = {"12abc", "", "abc", "0x", "0xg", "1.5", "--5", "5-", "2147483648",
            "-2147483649", "99999999999999999999999", "0x-5"};
        for (const char* item : refused) {
            QVERIFY2(!value.Assign(CVariant(item)), item);
            QCOMPARE(value.ToInt64(), 5LL);
        }
        QCOMPARE(text(value), QByteArray("5"));
    }
    void assignInt8Range()
    {
        CVariant value(CVariant::TYPE_INT8);
        QVERIFY(value.Assign(CVariant("127")));
        QVERIFY(!value.Assign(CVariant("128")));
        QCOMPARE(value.ToInt64(), 127LL);
        QVERIFY(value.Assign(CVariant("-128")));
        QCOMPARE(value.ToInt64(), -128LL);
        QVERIFY(!value.Assign(CVariant("-129")));
        QCOMPARE(value.ToInt64(), -128LL);
        QVERIFY(value.Assign(CVariant("0x7F")));
        QVERIFY(!value.Assign(CVariant("0x80")));
        QCOMPARE(value.getType(), CVariant::TYPE_INT8);
    }
    void assignUnsignedRange()
    {
        CVariant byte(CVariant::TYPE_UINT8);
        QVERIFY(byte.Assign(CVariant("255")));
        QVERIFY(!byte.Assign(CVariant("256")));
        QVERIFY(!byte.Assign(CVariant("-1")));
        QCOMPARE(byte.ToInt64(), 255LL);
        QVERIFY(byte.Assign(CVariant("0xFF")));
        QVERIFY(byte.Assign(CVariant("-0")));
        QCOMPARE(byte.ToInt64(), 0LL);
        CVariant word(CVariant::TYPE_UINT16);
        QVERIFY(word.Assign(CVariant("65535")));
        QVERIFY(!word.Assign(CVariant("65536")));
        CVariant quad(CVariant::TYPE_UINT64);
        QVERIFY(quad.Assign(CVariant("18446744073709551615")));
        QCOMPARE(quad.ToUInt64(), std::numeric_limits<unsigned long long>::max());
        QCOMPARE(text(quad), QByteArray("18446744073709551615"));
        QVERIFY(!quad.Assign(CVariant("18446744073709551616")));
        QVERIFY(quad.Assign(CVariant("0xFFFFFFFFFFFFFFFF")));
        QVERIFY(!quad.Assign(CVariant("-1")));
        QCOMPARE(quad.ToUInt64(), std::numeric_limits<unsigned long long>::max());
    }
    void assignInt64Range()
    {
        CVariant value(CVariant::TYPE_INT64);
        QVERIFY(value.Assign(CVariant("-9223372036854775808")));
        QCOMPARE(value.ToInt64(), std::numeric_limits<long long>::min());
        QVERIFY(value.Assign(CVariant("9223372036854775807")));
        QCOMPARE(value.ToInt64(), std::numeric_limits<long long>::max());
        QVERIFY(!value.Assign(CVariant("9223372036854775808")));
        QVERIFY(!value.Assign(CVariant("-9223372036854775809")));
        QCOMPARE(value.ToInt64(), std::numeric_limits<long long>::max());
    }
    void assignBoolText()
    {
        CVariant value(CVariant::TYPE_BOOL);
        QVERIFY(value.Assign(CVariant("true")));
        QCOMPARE(value, CVariant(true));
        QVERIFY(value.Assign(CVariant("FALSE")));
        QCOMPARE(value, CVariant(false));
        QVERIFY(value.Assign(CVariant("1")));
        QCOMPARE(value, CVariant(true));
        QVERIFY(value.Assign(CVariant("0")));
        QCOMPARE(value, CVariant(false));
        QVERIFY(value.Assign(CVariant("True")));
        QVERIFY(!value.Assign(CVariant("2")));
        QVERIFY(!value.Assign(CVariant("-1")));
        QVERIFY(!value.Assign(CVariant("yes")));
        QVERIFY(!value.Assign(CVariant("")));
        QCOMPARE(value, CVariant(true));
        QCOMPARE(value.getType(), CVariant::TYPE_BOOL);
    }
    void assignDoubleText()
    {
        CVariant value(CVariant::TYPE_DOUBLE);
        QVERIFY(value.Assign(CVariant("2.5")));
        QCOMPARE(value.ToDouble(), 2.5);
        QVERIFY(value.Assign(CVariant("-0.125")));
        QCOMPARE(value.ToDouble(), -0.125);
        QVERIFY(value.Assign(CVariant("1e3")));
        QCOMPARE(value.ToDouble(), 1000.0);
        QVERIFY(value.Assign(CVariant("7")));
        QCOMPARE(value.ToDouble(), 7.0);
        QVERIFY(!value.Assign(CVariant("abc")));
        QVERIFY(!value.Assign(CVariant("")));
        QVERIFY(!value.Assign(CVariant("2.5x")));
        QVERIFY(!value.Assign(CVariant("2,5")));
        QCOMPARE(value.ToDouble(), 7.0);
        QCOMPARE(value.getType(), CVariant::TYPE_DOUBLE);
    }
    void assignStringTakesAnything()
    {
        CVariant value(CVariant::TYPE_STRING);
        const char* texts[] = {"12abc", "", "true", "\xc3\xa4 \xe2\x84\x83", "0x1F"};
        for (const char* item : texts) {
            QVERIFY(value.Assign(CVariant(item)));
            QCOMPARE(text(value), QByteArray(item));
            QCOMPARE(value.getType(), CVariant::TYPE_STRING);
        }
    }
    void assignGuidText()
    {
        CVariant value(CVariant::TYPE_GUID);
        QVERIFY(value.Assign(CVariant(sampleGuidText)));
        QVERIFY(value.ToGuid() == sampleGuid());
        QCOMPARE(value, CVariant(sampleGuid()));
        QVERIFY(value.Assign(CVariant("6B697670-1234-4ABC-8001-0203A4B5C6D7")));
        QVERIFY(value.ToGuid() == sampleGuid());
        QVERIFY(!value.Assign(CVariant("not an identifier")));
        QVERIFY(!value.Assign(CVariant("")));
        QVERIFY(value.ToGuid() == sampleGuid());
    }
    void assignNumberIntoNarrowerType()
    {
        CVariant small(CVariant::TYPE_INT8);
        QVERIFY(small.Assign(CVariant(100)));
        QCOMPARE(small.ToInt64(), 100LL);
        QCOMPARE(small.getType(), CVariant::TYPE_INT8);
        QVERIFY(!small.Assign(CVariant(300)));
        QVERIFY(!small.Assign(CVariant(-129)));
        QCOMPARE(small.ToInt64(), 100LL);
        QVERIFY(small.Assign(CVariant(-128)));
        QVERIFY(small.Assign(CVariant(2.0)));
        QCOMPARE(small.ToInt64(), 2LL);
        QVERIFY(!small.Assign(CVariant(2.5)));
        QVERIFY(small.Assign(CVariant(true)));
        QCOMPARE(small.ToInt64(), 1LL);

        CVariant byte(CVariant::TYPE_UINT8);
        QVERIFY(!byte.Assign(CVariant(-1)));
        QVERIFY(byte.Assign(CVariant(255u)));
        QVERIFY(!byte.Assign(CVariant(256u)));
        QCOMPARE(byte.ToInt64(), 255LL);

        CVariant word(CVariant::TYPE_INT32);
        QVERIFY(!word.Assign(CVariant(1LL << 40)));
        QVERIFY(!word.Assign(CVariant(std::numeric_limits<unsigned long long>::max())));
        QVERIFY(!word.Assign(CVariant(1e20)));
        QVERIFY(!word.Assign(CVariant(std::numeric_limits<double>::quiet_NaN())));
        QVERIFY(word.Assign(CVariant(-2147483648.0)));
        QCOMPARE(word.ToInt64(), -2147483648LL);

        CVariant big(CVariant::TYPE_INT64);
        QVERIFY(!big.Assign(CVariant(std::numeric_limits<unsigned long long>::max())));
        QVERIFY(big.Assign(CVariant(std::numeric_limits<long long>::min())));
        CVariant unsignedBig(CVariant::TYPE_UINT64);
        QVERIFY(!unsignedBig.Assign(CVariant(-1LL)));
        QVERIFY(unsignedBig.Assign(CVariant(std::numeric_limits<unsigned long long>::max())));
        QVERIFY(unsignedBig.Assign(CVariant(1e19)));
        QCOMPARE(unsignedBig.ToUInt64(), 10000000000000000000ULL);
    }
    void assignIntoBool()
    {
        CVariant flag(CVariant::TYPE_BOOL);
        QVERIFY(flag.Assign(CVariant(1)));
        QCOMPARE(flag, CVariant(true));
        QVERIFY(flag.Assign(CVariant(0.0)));
        QCOMPARE(flag, CVariant(false));
        QVERIFY(!flag.Assign(CVariant(2)));
        QVERIFY(!flag.Assign(CVariant(-1)));
        QCOMPARE(flag, CVariant(false));
    }
    void assignAcrossKinds()
    {
        CVariant real(CVariant::TYPE_DOUBLE);
        QVERIFY(real.Assign(CVariant(3)));
        QCOMPARE(real, CVariant(3.0));
        QVERIFY(real.Assign(CVariant(true)));
        QCOMPARE(real.ToDouble(), 1.0);
        QVERIFY(!real.Assign(CVariant(sampleGuid())));

        CVariant string(CVariant::TYPE_STRING);
        QVERIFY(string.Assign(CVariant(42)));
        QCOMPARE(text(string), QByteArray("42"));
        QCOMPARE(string.getType(), CVariant::TYPE_STRING);
        QVERIFY(string.Assign(CVariant(true)));
        QCOMPARE(text(string), QByteArray("true"));
        QVERIFY(string.Assign(CVariant::Enum(modes(), 7)));
        QCOMPARE(text(string), QByteArray("Auto"));
        QVERIFY(string.Assign(CVariant(sampleGuid())));
        QCOMPARE(text(string), QByteArray(sampleGuidText));

        CVariant guid(CVariant::TYPE_GUID);
        QVERIFY(!guid.Assign(CVariant(5)));
        QVERIFY(guid.ToGuid().isNull());
        QVERIFY(guid.Assign(CVariant(sampleGuid())));

        CVariant number(CVariant::TYPE_INT32);
        QVERIFY(!number.Assign(CVariant(sampleGuid())));
        QVERIFY(number.Assign(CVariant::Enum(modes(), 7)));
        QCOMPARE(number, CVariant(7));
    }
    void assignEmptyIsRefused()
    {
        CVariant number(5);
        QVERIFY(!number.Assign(CVariant()));
        QCOMPARE(number, CVariant(5));
    }
    void emptyVariantTakesValueAndType()
    {
        CVariant value;
        QVERIFY(value.Assign(CVariant(200u)));
        QCOMPARE(value.getType(), CVariant::TYPE_UINT32);
        QCOMPARE(value, CVariant(200u));

        CVariant string;
        QVERIFY(string.Assign(CVariant("12abc")));
        QCOMPARE(string.getType(), CVariant::TYPE_STRING);
        QCOMPARE(text(string), QByteArray("12abc"));

        CVariant real;
        QVERIFY(real.Assign(CVariant(2.5)));
        QCOMPARE(real.getType(), CVariant::TYPE_DOUBLE);
        QVERIFY(real.ToDouble() == 2.5);

        CVariant mode;
        QVERIFY(mode.Assign(CVariant::Enum(modes(), 1)));
        QCOMPARE(mode.getType(), CVariant::TYPE_ENUM);
        QCOMPARE(mode.GetEnumCount(), 3);
        QVERIFY(mode.Assign(CVariant("Auto")));
        QCOMPARE(mode.ToInt64(), 7LL);
    }
    void assignKeepsType()
    {
        CVariant value(5);
        QVERIFY(value.Assign(CVariant(7LL)));
        QCOMPARE(value.getType(), CVariant::TYPE_INT32);
        QCOMPARE(value, CVariant(7));
    }
    void toInt64()
    {
        QCOMPARE(CVariant(-5).ToInt64(), -5LL);
        QCOMPARE(CVariant(7u).ToInt64(), 7LL);
        QCOMPARE(CVariant("42").ToInt64(), 42LL);
        QCOMPARE(CVariant("0x10").ToInt64(), 16LL);
        QCOMPARE(CVariant("abc").ToInt64(), 0LL);
        QCOMPARE(CVariant(2.0).ToInt64(), 2LL);
        QCOMPARE(CVariant(2.5).ToInt64(), 0LL);
        QCOMPARE(CVariant(true).ToInt64(), 1LL);
        QCOMPARE(CVariant(std::numeric_limits<unsigned long long>::max()).ToInt64(), 0LL);
        QCOMPARE(CVariant(sampleGuid()).ToInt64(), 0LL);
        QCOMPARE(CVariant().ToInt64(), 0LL);
        QCOMPARE(CVariant::Enum(baudRates(), 115200).ToInt64(), 115200LL);
    }
    void toUInt64()
    {
        QCOMPARE(CVariant(5).ToUInt64(), 5ULL);
        QCOMPARE(CVariant(-1).ToUInt64(), 0ULL);
        QCOMPARE(CVariant("18446744073709551615").ToUInt64(), 18446744073709551615ULL);
    }
    void toDouble()
    {
        QCOMPARE(CVariant(3).ToDouble(), 3.0);
        QCOMPARE(CVariant(-3LL).ToDouble(), -3.0);
        QCOMPARE(CVariant(0.1).ToDouble(), 0.1);
        QCOMPARE(CVariant("2.5").ToDouble(), 2.5);
        QCOMPARE(CVariant("abc").ToDouble(), 0.0);
        QCOMPARE(CVariant(true).ToDouble(), 1.0);
        QCOMPARE(CVariant(sampleGuid()).ToDouble(), 0.0);
        QCOMPARE(CVariant().ToDouble(), 0.0);
    }
    void toBool()
    {
        QVERIFY(CVariant(true).ToBool());
        QVERIFY(!CVariant(false).ToBool());
        QVERIFY(CVariant("true").ToBool());
        QVERIFY(CVariant("TRUE").ToBool());
        QVERIFY(CVariant("1").ToBool());
        QVERIFY(!CVariant("0").ToBool());
        QVERIFY(!CVariant("false").ToBool());
        QVERIFY(!CVariant("maybe").ToBool());
        QVERIFY(CVariant(1).ToBool());
        QVERIFY(!CVariant(0).ToBool());
        QVERIFY(!CVariant(5).ToBool());
        QVERIFY(CVariant(1.0).ToBool());
        QVERIFY(!CVariant().ToBool());
    }
    void toGuid()
    {
        QVERIFY(CVariant(sampleGuid()).ToGuid() == sampleGuid());
        QVERIFY(CVariant(sampleGuidText).ToGuid() == sampleGuid());
        QVERIFY(CVariant("junk").ToGuid().isNull());
        QVERIFY(CVariant(5).ToGuid().isNull());
    }
    void equality()
    {
        QVERIFY(CVariant(5) == CVariant(5));
        QVERIFY(!(CVariant(5) == CVariant(6)));
        // The type is part of the value.
        QVERIFY(!(CVariant(5) == CVariant(5LL)));
        QVERIFY(!(CVariant(5) == CVariant("5")));
        QVERIFY(!(CVariant(1) == CVariant(true)));
        QVERIFY(CVariant("abc") == CVariant(CString("abc")));
        QVERIFY(!(CVariant("abc") == CVariant("abd")));
        QVERIFY(CVariant() == CVariant());
        QVERIFY(!(CVariant() == CVariant(0)));
        QVERIFY(CVariant(2.5) == CVariant(2.5));
        QVERIFY(CVariant(sampleGuid()) == CVariant(sampleGuid()));
        QVERIFY(!(CVariant(sampleGuid()) == CVariant(SGuid())));
        QVERIFY(CVariant::Enum(modes(), 1) == CVariant::Enum(modes(), 1));
        QVERIFY(!(CVariant::Enum(modes(), 1) == CVariant::Enum(modes(), 7)));
    }
    void copyAndAssignment()
    {
        CVariant a("text");
        CVariant b(a);
        QCOMPARE(b, a);
        QVERIFY(b.Assign(CVariant("other")));
        QCOMPARE(text(a), QByteArray("text"));
        CVariant c;
        c = b;
        QCOMPARE(text(c), QByteArray("other"));
        QCOMPARE(c.getType(), CVariant::TYPE_STRING);
    }
};

QTEST_APPLESS_MAIN(tst_CVariant)
#include "tst_cvariant.moc"
