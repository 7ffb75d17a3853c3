// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/PixelType.h>
#include <kivcam/genicam/CGenICamPixels.h>
#include <kivreduce/CFilterFactory.h>

#include <QTest>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

using namespace kiv;
using namespace kiv::cam;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Samples = std::vector<unsigned>;

struct SResult {
    TSharedPtr<CImage> image;
    CString error;
};

SResult convert(std::uint32_t format, int width, int height, const Bytes& bytes, int xPadding = 0)
{
    SResult result;
    result.image = CGenICamPixels::Convert(
        {format, width, height, xPadding}, bytes.data(), bytes.size(), result.error);
    return result;
}

// Every sample of the image, line by line, as 8- or 16-bit samples.
Samples samples(const CImage& image)
{
    Samples all;
    const int count = image.width() * image.channels();
    for (int y = 0; y < image.height(); ++y) {
        for (int i = 0; i < count; ++i)
            all.push_back(image.dataType() == DATA_TYPE_UINT8 ? image.row<std::uint8_t>(y)[i]
                                                              : image.row<std::uint16_t>(y)[i]);
    }
    return all;
}

QByteArray typeName(const CImage& image)
{
    return QByteArray(PixelTypeToString(image.pixelType()).c_str());
}

} // namespace

// The conversion of GenICam pixel formats into images of our pixel types, over hand-made bytes.
class tst_CGenICamPixels : public QObject {
    Q_OBJECT

private slots:
    void bytesAsTheyAre_data()
    {
        QTest::addColumn<std::uint32_t>("format");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("channels");
        QTest::newRow("Mono8") << std::uint32_t(CGenICamPixels::MONO8) << QByteArray("Mono8") << 1;
        QTest::newRow("BayerRG8") << std::uint32_t(CGenICamPixels::BAYER_RG8)
                                  << QByteArray("BayerRG8") << 1;
        QTest::newRow("BayerGR8") << std::uint32_t(CGenICamPixels::BAYER_GR8)
                                  << QByteArray("BayerGR8") << 1;
        QTest::newRow("BayerGB8") << std::uint32_t(CGenICamPixels::BAYER_GB8)
                                  << QByteArray("BayerGB8") << 1;
        QTest::newRow("BayerBG8") << std::uint32_t(CGenICamPixels::BAYER_BG8)
                                  << QByteArray("BayerBG8") << 1;
        QTest::newRow("RGB8") << std::uint32_t(CGenICamPixels::RGB8) << QByteArray("RGB8") << 3;
    }
    void bytesAsTheyAre()
    {
        QFETCH(std::uint32_t, format);
        QFETCH(QByteArray, name);
        QFETCH(int, channels);
        // Three pixels a line (odd, so that our lines get a stride of their own), two lines.
        Bytes bytes;
        for (int i = 0; i < 6 * channels; ++i)
            bytes.push_back(static_cast<std::uint8_t>(10 + i));
        const SResult result = convert(format, 3, 2, bytes);
        QVERIFY2(result.image, result.error.c_str());
        QCOMPARE(typeName(*result.image), name);
        QCOMPARE(result.image->width(), 3);
        QCOMPARE(result.image->height(), 2);
        QCOMPARE(result.image->adBits, 8);
        QCOMPARE(result.image->adBitShift, 0);
        QCOMPARE(samples(*result.image), Samples(bytes.begin(), bytes.end()));
    }

    void littleEndianWords_data()
    {
        QTest::addColumn<std::uint32_t>("format");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("bits");
        QTest::newRow("Mono10") << std::uint32_t(CGenICamPixels::MONO10) << QByteArray("Mono10")
                                << 10;
        QTest::newRow("Mono12") << std::uint32_t(CGenICamPixels::MONO12) << QByteArray("Mono12")
                                << 12;
        QTest::newRow("Mono14") << std::uint32_t(CGenICamPixels::MONO14) << QByteArray("Mono14")
                                << 14;
        QTest::newRow("Mono16") << std::uint32_t(CGenICamPixels::MONO16) << QByteArray("Mono16")
                                << 16;
        QTest::newRow("BayerRG16")
            << std::uint32_t(CGenICamPixels::BAYER_RG16) << QByteArray("BayerRG16") << 16;
    }
    void littleEndianWords()
    {
        QFETCH(std::uint32_t, format);
        QFETCH(QByteArray, name);
        QFETCH(int, bits);
        const Bytes bytes{0x23, 0x01, 0xFF, 0x03, 0x00, 0x00, 0x00, 0x02, 0x34, 0x12, 0x01, 0x00};
        const SResult result = convert(format, 3, 2, bytes);
        QVERIFY2(result.image, result.error.c_str());
        QCOMPARE(typeName(*result.image), name);
        QCOMPARE(result.image->adBits, bits);
        QCOMPARE(samples(*result.image), (Samples{0x0123, 0x03FF, 0, 0x0200, 0x1234, 1}));
    }

    // GigE Vision's Mono12Packed: 0xABC and 0x123 as AB 3C 12.
    void mono12Packed()
    {
        const Bytes bytes{0xAB, 0x3C, 0x12, 0xFF, 0x1F, 0x00};
        const SResult result = convert(CGenICamPixels::MONO12_PACKED, 2, 2, bytes);
        QVERIFY2(result.image, result.error.c_str());
        QCOMPARE(typeName(*result.image), QByteArray("Mono12Packed"));
        QCOMPARE(result.image->adBits, 12);
        QCOMPARE(samples(*result.image), (Samples{0xABC, 0x123, 0xFFF, 0x001}));
    }

    // Mono10Packed: 0x3FF and 0x155 as FF 13 55 (the two low bits of each in the middle byte).
    void mono10Packed()
    {
        const Bytes bytes{0xFF, 0x13, 0x55, 0x00, 0x21, 0x80};
        const SResult result = convert(CGenICamPixels::MONO10_PACKED, 2, 2, bytes);
        QVERIFY2(result.image, result.error.c_str());
        QCOMPARE(typeName(*result.image), QByteArray("Mono10Packed"));
        QCOMPARE(result.image->adBits, 10);
        QCOMPARE(samples(*result.image), (Samples{0x3FF, 0x155, 0x001, 0x202}));
    }

    // With an odd width a pair spans two lines, and the last sample has half a pair.
    void packedPairsAcrossLines()
    {
        const Bytes bytes{0xAB, 0x3C, 0x12, 0x45, 0x76, 0x89, 0xFF, 0x0F, 0x00};
        const SResult result = convert(CGenICamPixels::MONO12_PACKED, 3, 2, bytes);
        QVERIFY2(result.image, result.error.c_str());
        QCOMPARE(samples(*result.image), (Samples{0xABC, 0x123, 0x456, 0x897, 0xFFF, 0x000}));
        // One line of three: two bytes hold the last sample.
        const SResult odd
            = convert(CGenICamPixels::MONO12_PACKED, 3, 1, Bytes(bytes.begin(), bytes.begin() + 5));
        QVERIFY2(odd.image, odd.error.c_str());
        QCOMPARE(samples(*odd.image), (Samples{0xABC, 0x123, 0x456}));
    }

    // Mono10p: 0x3FF, 0x000, 0x155, 0x2AA bit-tight, least significant bit first.
    void mono10p()
    {
        const Bytes bytes{0xFF, 0x03, 0x50, 0x95, 0xAA};
        const SResult four = convert(CGenICamPixels::MONO10P, 4, 1, bytes);
        QVERIFY2(four.image, four.error.c_str());
        QCOMPARE(typeName(*four.image), QByteArray("Mono10p"));
        QCOMPARE(four.image->adBits, 10);
        QCOMPARE(samples(*four.image), (Samples{0x3FF, 0x000, 0x155, 0x2AA}));
        // Lines of one sample follow one another bit by bit.
        const SResult column = convert(CGenICamPixels::MONO10P, 1, 4, bytes);
        QVERIFY2(column.image, column.error.c_str());
        QCOMPARE(samples(*column.image), (Samples{0x3FF, 0x000, 0x155, 0x2AA}));
        // Three samples take 30 bits: four bytes.
        const SResult odd
            = convert(CGenICamPixels::MONO10P, 3, 1, Bytes(bytes.begin(), bytes.begin() + 4));
        QVERIFY2(odd.image, odd.error.c_str());
        QCOMPARE(samples(*odd.image), (Samples{0x3FF, 0x000, 0x155}));
    }

    // Mono12p: 0xABC, 0x123, 0x456 as BC 3A 12 56 04.
    void mono12p()
    {
        const Bytes bytes{0xBC, 0x3A, 0x12, 0x56, 0x04};
        const SResult odd = convert(CGenICamPixels::MONO12P, 3, 1, bytes);
        QVERIFY2(odd.image, odd.error.c_str());
        QCOMPARE(typeName(*odd.image), QByteArray("Mono12p"));
        QCOMPARE(odd.image->adBits, 12);
        QCOMPARE(samples(*odd.image), (Samples{0xABC, 0x123, 0x456}));
        const SResult column = convert(CGenICamPixels::MONO12P, 1, 3, bytes);
        QVERIFY2(column.image, column.error.c_str());
        QCOMPARE(samples(*column.image), (Samples{0xABC, 0x123, 0x456}));
    }

    void linePaddingIsSkipped()
    {
        // Mono8, three pixels and one byte of padding a line; the last padding may be missing.
        const SResult mono8 = convert(CGenICamPixels::MONO8, 3, 2, {1, 2, 3, 99, 4, 5, 6}, 1);
        QVERIFY2(mono8.image, mono8.error.c_str());
        QCOMPARE(samples(*mono8.image), (Samples{1, 2, 3, 4, 5, 6}));
        const SResult mono16 = convert(
            CGenICamPixels::MONO16, 1, 2, {0x34, 0x12, 0xEE, 0xEE, 0x78, 0x56, 0xEE, 0xEE}, 2);
        QVERIFY2(mono16.image, mono16.error.c_str());
        QCOMPARE(samples(*mono16.image), (Samples{0x1234, 0x5678}));
        // A padded packed line ends on a byte boundary: three samples in five bytes, then one.
        const SResult packed = convert(CGenICamPixels::MONO12_PACKED, 3, 2,
            {0xAB, 0x3C, 0x12, 0x45, 0x06, 0xEE, 0xFF, 0x1F, 0x00, 0x77, 0x08}, 1);
        QVERIFY2(packed.image, packed.error.c_str());
        QCOMPARE(samples(*packed.image), (Samples{0xABC, 0x123, 0x456, 0xFFF, 0x001, 0x778}));
        const SResult bits = convert(CGenICamPixels::MONO10P, 3, 2,
            {0xFF, 0x03, 0x50, 0x15, 0xEE, 0xFF, 0x03, 0x50, 0x15}, 1);
        QVERIFY2(bits.image, bits.error.c_str());
        QCOMPARE(samples(*bits.image), (Samples{0x3FF, 0x000, 0x155, 0x3FF, 0x000, 0x155}));
    }

    void shortBuffersAreRefused_data()
    {
        QTest::addColumn<std::uint32_t>("format");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("padding");
        QTest::addColumn<int>("bytes"); // what the image takes
        QTest::newRow("Mono8") << std::uint32_t(CGenICamPixels::MONO8) << 3 << 0 << 6;
        QTest::newRow("Mono8 padded") << std::uint32_t(CGenICamPixels::MONO8) << 3 << 2 << 8;
        QTest::newRow("RGB8") << std::uint32_t(CGenICamPixels::RGB8) << 3 << 0 << 18;
        QTest::newRow("Mono16") << std::uint32_t(CGenICamPixels::MONO16) << 3 << 0 << 12;
        QTest::newRow("Mono12Packed")
            << std::uint32_t(CGenICamPixels::MONO12_PACKED) << 3 << 0 << 9;
        QTest::newRow("Mono10Packed odd")
            << std::uint32_t(CGenICamPixels::MONO10_PACKED) << 1 << 0 << 3;
        QTest::newRow("Mono10p") << std::uint32_t(CGenICamPixels::MONO10P) << 3 << 0 << 8;
        QTest::newRow("Mono12p") << std::uint32_t(CGenICamPixels::MONO12P) << 3 << 0 << 9;
    }
    void shortBuffersAreRefused()
    {
        QFETCH(std::uint32_t, format);
        QFETCH(int, width);
        QFETCH(int, padding);
        QFETCH(int, bytes);
        // Two lines: exactly the bytes the image takes convert, one fewer does not.
        const SResult whole = convert(format, width, 2, Bytes(std::size_t(bytes), 0x11), padding);
        QVERIFY2(whole.image, whole.error.c_str());
        const SResult shorter
            = convert(format, width, 2, Bytes(std::size_t(bytes - 1), 0x11), padding);
        QVERIFY(!shorter.image);
        const QByteArray error(shorter.error.c_str());
        QVERIFY2(error.contains(QByteArray::number(bytes - 1) + " bytes"), error.constData());
        QVERIFY2(error.contains("takes " + QByteArray::number(bytes)), error.constData());
    }

    void formatWithoutPixelTypeIsRefused()
    {
        const std::uint32_t mono8Signed = 0x01080002;
        const SResult result = convert(mono8Signed, 2, 2, Bytes(4, 0));
        QVERIFY(!result.image);
        QVERIFY2(QByteArray(result.error.c_str()).contains("0x01080002"), result.error.c_str());
        SGuid pixelType;
        int adBits = 0;
        CString error;
        QVERIFY(!CGenICamPixels::Describe(mono8Signed, pixelType, adBits, error));
        QCOMPARE(error, result.error);
        QVERIFY(CGenICamPixels::Describe(CGenICamPixels::MONO14, pixelType, adBits, error));
        QCOMPARE(QByteArray(PixelTypeToString(pixelType).c_str()), QByteArray("Mono14"));
        QCOMPARE(adBits, 14);
    }

    void emptyImageIsRefused()
    {
        for (const auto& [width, height] : {std::pair{0, 2}, std::pair{2, 0}, std::pair{-1, 2}}) {
            const SResult result = convert(CGenICamPixels::MONO8, width, height, Bytes(16, 0));
            QVERIFY(!result.image);
            QVERIFY(!result.error.empty());
        }
        QVERIFY(!convert(CGenICamPixels::MONO8, 2, 2, Bytes(16, 0), -1).image);
    }

    // What the reduction filter of each pixel type makes of it: a display image of its size.
    void everyFormatIsShown_data()
    {
        QTest::addColumn<std::uint32_t>("format");
        for (const std::uint32_t format :
            {CGenICamPixels::MONO8, CGenICamPixels::MONO10, CGenICamPixels::MONO10_PACKED,
                CGenICamPixels::MONO10P, CGenICamPixels::MONO12, CGenICamPixels::MONO12_PACKED,
                CGenICamPixels::MONO12P, CGenICamPixels::MONO14, CGenICamPixels::MONO16,
                CGenICamPixels::RGB8, CGenICamPixels::BAYER_GR8, CGenICamPixels::BAYER_RG8,
                CGenICamPixels::BAYER_GB8, CGenICamPixels::BAYER_BG8, CGenICamPixels::BAYER_RG16})
            QTest::newRow(QByteArray::number(format, 16).constData()) << format;
    }
    void everyFormatIsShown()
    {
        QFETCH(std::uint32_t, format);
        // A ramp, more than any of these formats takes for 6 x 4 pixels.
        Bytes bytes;
        for (int i = 0; i < 6 * 4 * 3; ++i)
            bytes.push_back(static_cast<std::uint8_t>(i * 7));
        const SResult result = convert(format, 6, 4, bytes);
        QVERIFY2(result.image, result.error.c_str());
        reduce::CFilterFactory* filters = reduce::filterFactory();
        const CString filterName = filters->defaultFilterFor(result.image->pixelType());
        const reduce::FilterFunction filter = filters->filterByName(filterName);
        QVERIFY2(filter, filterName.c_str());
        const TSharedPtr<const CImage> shown = filter(result.image);
        QVERIFY2(shown, filterName.c_str());
        QCOMPARE(shown->width(), 6);
        QCOMPARE(shown->height(), 4);
        QCOMPARE(shown->dataType(), DATA_TYPE_UINT8);
        // A ramp is not uniform: the display image is not one grey.
        const Samples values = samples(*shown);
        QVERIFY(std::adjacent_find(values.begin(), values.end(), std::not_equal_to<>())
            != values.end());
    }
};

QTEST_GUILESS_MAIN(tst_CGenICamPixels)
#include "tst_cgenicampixels.moc"
