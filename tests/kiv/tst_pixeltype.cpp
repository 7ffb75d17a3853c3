// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/PixelType.h>

#include <QTest>

#include <set>

using kiv::CString;
using kiv::SGuid;
using kiv::TArray;

namespace {

QByteArray bytes(const CString& text)
{
    return QByteArray(text.view().data(), text.length());
}

TArray<CString> names()
{
    TArray<CString> result;
    kiv::GetPixelTypeNames(result);
    return result;
}

} // namespace

class tst_PixelType : public QObject {
    Q_OBJECT

private slots:
    void namesInDocumentedOrder()
    {
        const TArray<CString> list = names();
        QCOMPARE(list.count(), 21);
        const char* expected[]
            = {"Mono8", "Mono10", "Mono10Packed", "Mono10p", "Mono12", "Mono12Packed", "Mono12p",
                "Mono14", "Mono16", "Mono16s", "Mono32f", "RGB8", "BGR8", "RGBA8", "BGRA8",
                "BayerRG8", "BayerGR8", "BayerGB8", "BayerBG8", "BayerRG16", "YUV422_8"};
        for (int i = 0; i < list.count(); ++i)
            QCOMPARE(bytes(list[i]), QByteArray(expected[i]));
        QCOMPARE(bytes(list[0]), QByteArray("Mono8"));
        QCOMPARE(bytes(list[20]), QByteArray("YUV422_8"));
        for (const char* name :
            {"Mono8", "Mono10", "Mono12", "Mono14", "Mono16", "Mono16s", "Mono32f", "RGB8"})
            QVERIFY2(list.contains(CString(name)), name);
    }
    void namesAreAppended()
    {
        TArray<CString> list{CString("existing"), CString("second")};
        kiv::GetPixelTypeNames(list);
        QCOMPARE(list.count(), 23);
        QCOMPARE(bytes(list[0]), QByteArray("existing"));
        QCOMPARE(bytes(list[1]), QByteArray("second"));
        QCOMPARE(bytes(list[2]), QByteArray("Mono8"));
        kiv::GetPixelTypeNames(list);
        QCOMPARE(list.count(), 44);
        QCOMPARE(bytes(list[23]), QByteArray("Mono8"));
    }
    void everyNameRoundTrips()
    {
        const TArray<CString> list = names();
        std::set<SGuid> seen;
        for (const CString& name : list) {
            const SGuid guid = kiv::ParsePixelType(name);
            QVERIFY2(!guid.isNull(), name.c_str());
            QCOMPARE(bytes(kiv::PixelTypeToString(guid)), bytes(name));
            QVERIFY(kiv::PixelTypeToDataType(guid) != kiv::DATA_TYPE_UNKNOWN);
            QVERIFY2(seen.insert(guid).second, name.c_str());
        }
        QCOMPARE(seen.size(), std::size_t(21));
    }
    void identifiersAreTheDocumentedOnes()
    {
        const TArray<CString> list = names();
        for (int i = 0; i < list.count(); ++i) {
            const QByteArray expected = QByteArray("{6b697670-0000-4000-8000-0000000000")
                + QByteArray::number(i + 1, 16).rightJustified(2, '0') + "}";
            QCOMPARE(bytes(kiv::ParsePixelType(list[i]).ToString()), expected);
        }
        QCOMPARE(bytes(kiv::ParsePixelType(CString("Mono8")).ToString()),
            QByteArray("{6b697670-0000-4000-8000-000000000001}"));
        QCOMPARE(bytes(kiv::ParsePixelType(CString("YUV422_8")).ToString()),
            QByteArray("{6b697670-0000-4000-8000-000000000015}"));
    }
    void dataTypes()
    {
        const auto dataType = [](const char* name) {
            return kiv::PixelTypeToDataType(kiv::ParsePixelType(CString(name)));
        };
        QCOMPARE(dataType("Mono8"), kiv::DATA_TYPE_UINT8);
        QCOMPARE(dataType("Mono10"), kiv::DATA_TYPE_UINT16);
        QCOMPARE(dataType("Mono10Packed"), kiv::DATA_TYPE_UINT16);
        QCOMPARE(dataType("Mono12p"), kiv::DATA_TYPE_UINT16);
        QCOMPARE(dataType("Mono14"), kiv::DATA_TYPE_UINT16);
        QCOMPARE(dataType("Mono16"), kiv::DATA_TYPE_UINT16);
        QCOMPARE(dataType("Mono16s"), kiv::DATA_TYPE_INT16);
        QCOMPARE(dataType("Mono32f"), kiv::DATA_TYPE_FLOAT32);
        QCOMPARE(dataType("RGB8"), kiv::DATA_TYPE_UINT8);
        QCOMPARE(dataType("BayerRG16"), kiv::DATA_TYPE_UINT16);
    }
    void channelCounts()
    {
        const auto channels = [](const char* name) {
            return kiv::PixelTypeToChannelCount(kiv::ParsePixelType(CString(name)));
        };
        for (const CString& name : names()) {
            const QByteArray text = bytes(name);
            const int expected = text.startsWith("RGBA") || text.startsWith("BGRA") ? 4
                : text.startsWith("RGB") || text.startsWith("BGR")                  ? 3
                : text == "YUV422_8"                                                ? 2
                                                                                    : 1;
            QCOMPARE(channels(text.constData()), expected);
        }
        QCOMPARE(channels("Mono14"), 1);
        QCOMPARE(channels("BayerRG16"), 1);
        QCOMPARE(kiv::PixelTypeToChannelCount(SGuid()), 0);
    }
    void dataTypeSizes()
    {
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_UNKNOWN), 0);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_UINT8), 1);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_INT8), 1);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_UINT16), 2);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_INT16), 2);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_UINT32), 4);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_INT32), 4);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_FLOAT32), 4);
        QCOMPARE(kiv::DataTypeSize(kiv::DATA_TYPE_FLOAT64), 8);
        QCOMPARE(kiv::DataTypeSize(static_cast<kiv::EDataType>(9)), 0);
        QCOMPARE(kiv::DataTypeSize(static_cast<kiv::EDataType>(-1)), 0);
    }
    void unknownNameGivesNull()
    {
        QVERIFY(kiv::ParsePixelType(CString("Mono9")).isNull());
        QVERIFY(kiv::ParsePixelType(CString()).isNull());
        // The letter case must match.
        QVERIFY(kiv::ParsePixelType(CString("mono8")).isNull());
        QVERIFY(kiv::ParsePixelType(CString("MONO8")).isNull());
        QVERIFY(kiv::ParsePixelType(CString("Mono8 ")).isNull());
    }
    void unknownIdentifierGivesNothing()
    {
        QVERIFY(kiv::PixelTypeToString(SGuid()).empty());
        QCOMPARE(kiv::PixelTypeToDataType(SGuid()), kiv::DATA_TYPE_UNKNOWN);
        // Right numbering, wrong stem.
        SGuid other = kiv::ParsePixelType(CString("Mono8"));
        other.data1 ^= 1;
        QVERIFY(kiv::PixelTypeToString(other).empty());
        QCOMPARE(kiv::PixelTypeToDataType(other), kiv::DATA_TYPE_UNKNOWN);
        QCOMPARE(kiv::PixelTypeToChannelCount(other), 0);
        // Right stem, numbers past the list and zero.
        SGuid past = kiv::ParsePixelType(CString("YUV422_8"));
        past.data4[7] = 22;
        QVERIFY(kiv::PixelTypeToString(past).empty());
        QCOMPARE(kiv::PixelTypeToDataType(past), kiv::DATA_TYPE_UNKNOWN);
        QCOMPARE(kiv::PixelTypeToChannelCount(past), 0);
        past.data4[7] = 0;
        QVERIFY(kiv::PixelTypeToString(past).empty());
        past.data4[7] = 0xff;
        QVERIFY(kiv::PixelTypeToString(past).empty());
        SGuid otherByte = kiv::ParsePixelType(CString("Mono16"));
        otherByte.data4[6] = 1;
        QVERIFY(kiv::PixelTypeToString(otherByte).empty());
    }
};

QTEST_APPLESS_MAIN(tst_PixelType)
#include "tst_pixeltype.moc"
