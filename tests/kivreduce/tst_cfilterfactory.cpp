// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CImage.h>
#include <kiv/PixelType.h>
#include <kivreduce/CFilterFactory.h>

#include <QTest>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <vector>

using kiv::CImage;
using kiv::CString;
using kiv::TSharedPtr;
using kiv::reduce::filterFactory;
using kiv::reduce::FilterFunction;

namespace {

FilterFunction filter(const char* name)
{
    return filterFactory()->filterByName(CString(name));
}

// A frame of that pixel type, its samples given row by row.
template <typename T>
TSharedPtr<CImage> frame(
    const char* pixelType, int width, int height, std::initializer_list<T> samples)
{
    const TSharedPtr<CImage> image
        = CImage::Create(width, height, kiv::ParsePixelType(CString(pixelType)));
    const int perRow = width * image->channels();
    int i = 0;
    for (const T sample : samples) {
        image->row<T>(i / perRow)[i % perRow] = sample;
        ++i;
    }
    image->frameNumber = 17;
    image->timestamp = 123456789;
    return image;
}

// The display image's samples, row by row.
std::vector<int> samples(const TSharedPtr<const CImage>& image)
{
    std::vector<int> result;
    for (int y = 0; y < image->height(); ++y) {
        for (int x = 0; x < image->width() * image->channels(); ++x)
            result.push_back(image->row<std::uint8_t>(y)[x]);
    }
    return result;
}

bool isPixelType(const TSharedPtr<const CImage>& image, const char* name)
{
    return image->pixelType() == kiv::ParsePixelType(CString(name));
}

} // namespace

class tst_CFilterFactory : public QObject {
    Q_OBJECT

private slots:
    void singleInstance() { QCOMPARE(filterFactory(), filterFactory()); }
    void filterFor_data()
    {
        QTest::addColumn<QByteArray>("pixelType");
        QTest::addColumn<QByteArray>("filter");
        QTest::newRow("Mono8") << QByteArray("Mono8") << QByteArray("Passthrough8");
        QTest::newRow("Mono12Packed") << QByteArray("Mono12Packed") << QByteArray("Linear16");
        QTest::newRow("Mono14") << QByteArray("Mono14") << QByteArray("Linear16");
        QTest::newRow("Mono16") << QByteArray("Mono16") << QByteArray("Linear16");
        QTest::newRow("Mono16s") << QByteArray("Mono16s") << QByteArray("Signed16");
        QTest::newRow("Mono32f") << QByteArray("Mono32f") << QByteArray("Float32");
        QTest::newRow("RGB8") << QByteArray("RGB8") << QByteArray("Colour");
        QTest::newRow("BayerRG16") << QByteArray("BayerRG16") << QByteArray("Colour");
    }
    void filterFor()
    {
        QFETCH(QByteArray, pixelType);
        QFETCH(QByteArray, filter);
        const CString name = filterFactory()->defaultFilterFor(
            kiv::ParsePixelType(CString(pixelType.constData())));
        QCOMPARE(QByteArray(name.c_str()), filter);
    }
    void everyPixelTypeHasAListedFilter()
    {
        kiv::TArray<CString> pixelTypes;
        kiv::GetPixelTypeNames(pixelTypes);
        kiv::TArray<CString> filters;
        filterFactory()->getFilterNames(filters);
        QCOMPARE(filters.count(), 5);
        for (const CString& pixelType : pixelTypes)
            QVERIFY(filters.contains(
                filterFactory()->defaultFilterFor(kiv::ParsePixelType(pixelType))));
    }
    void unknownPixelTypeHasNoFilter()
    {
        QVERIFY(filterFactory()->defaultFilterFor(kiv::SGuid()).empty());
    }

    void everyListedFilterExists()
    {
        kiv::TArray<CString> names;
        filterFactory()->getFilterNames(names);
        std::vector<FilterFunction> found;
        for (const CString& name : names) {
            const FilterFunction function = filterFactory()->filterByName(name);
            QVERIFY2(function, name.c_str());
            QVERIFY(std::find(found.begin(), found.end(), function) == found.end());
            found.push_back(function);
        }
        QVERIFY(!filter("linear16"));
        QVERIFY(!filter("Linear"));
        QVERIFY(!filter(""));
        QVERIFY(!filterFactory()->filterByName(CString()));
    }

    void noFrameNoImage()
    {
        for (const char* name : {"Passthrough8", "Linear16", "Signed16", "Float32", "Colour"})
            QVERIFY(!filter(name)(TSharedPtr<const CImage>()));
    }

    // Each filter takes its own kinds of samples and refuses the others.
    void filtersRefuseOtherSamples()
    {
        const auto mono8 = frame<std::uint8_t>("Mono8", 1, 1, {1});
        const auto mono16 = frame<std::uint16_t>("Mono16", 1, 1, {1});
        const auto signed16 = frame<std::int16_t>("Mono16s", 1, 1, {1});
        const auto float32 = frame<float>("Mono32f", 1, 1, {1});
        const auto rgb = frame<std::uint8_t>("RGB8", 1, 1, {1, 2, 3});
        QVERIFY(filter("Passthrough8")(mono8));
        QVERIFY(!filter("Passthrough8")(mono16));
        QVERIFY(!filter("Passthrough8")(rgb));
        QVERIFY(filter("Linear16")(mono8));
        QVERIFY(filter("Linear16")(mono16));
        QVERIFY(!filter("Linear16")(signed16));
        QVERIFY(!filter("Linear16")(float32));
        QVERIFY(!filter("Linear16")(rgb));
        QVERIFY(filter("Signed16")(signed16));
        QVERIFY(!filter("Signed16")(mono16));
        QVERIFY(!filter("Signed16")(float32));
        QVERIFY(filter("Float32")(float32));
        QVERIFY(!filter("Float32")(mono16));
        QVERIFY(!filter("Float32")(rgb));
        QVERIFY(filter("Colour")(rgb));
        QVERIFY(!filter("Colour")(mono8));
        QVERIFY(!filter("Colour")(mono16));
    }

    // A Mono8 frame is its own display image: nothing is copied.
    void passthroughSharesTheFrame()
    {
        const auto mono8 = frame<std::uint8_t>("Mono8", 2, 1, {0, 200});
        const TSharedPtr<const CImage> image = filter("Passthrough8")(mono8);
        QCOMPARE(image.get(), static_cast<const CImage*>(mono8.get()));
        const auto bayer = frame<std::uint8_t>("BayerGB8", 3, 1, {5, 6, 7});
        const TSharedPtr<const CImage> grey = filter("Passthrough8")(bayer);
        QVERIFY(grey.get() != static_cast<const CImage*>(bayer.get()));
        QVERIFY(isPixelType(grey, "Mono8"));
        QCOMPARE(samples(grey), (std::vector<int>{5, 6, 7}));
        QCOMPARE(grey->frameNumber, std::uint64_t{17});
    }

    void linearSpansTheFrameRange()
    {
        const auto mono14
            = frame<std::uint16_t>("Mono14", 3, 2, {1000, 1100, 1200, 3000, 5000, 9000});
        const TSharedPtr<const CImage> image = filter("Linear16")(mono14);
        QVERIFY(image);
        QVERIFY(isPixelType(image, "Mono8"));
        QCOMPARE(image->width(), 3);
        QCOMPARE(image->height(), 2);
        QCOMPARE(image->frameNumber, std::uint64_t{17});
        QCOMPARE(image->timestamp, std::int64_t{123456789});
        // (v - 1000) * 255 / 8000, rounded.
        QCOMPARE(samples(image), (std::vector<int>{0, 3, 6, 64, 128, 255}));
    }

    // Only the significant bits count: adBits of them, adBitShift up.
    void linearReadsTheSignificantBits()
    {
        auto raw = frame<std::uint16_t>("Mono12", 3, 1, {0xC000 | (100 << 2), 200 << 2, 355 << 2});
        raw->adBits = 12;
        raw->adBitShift = 2;
        QCOMPARE(samples(filter("Linear16")(raw)), (std::vector<int>{0, 100, 255}));
        raw->adBits = 0;
        raw->adBitShift = -3;
        const std::vector<int> whole = samples(filter("Linear16")(raw));
        QCOMPARE(whole.front(), 255); // the flag bits now count
    }

    void uniformFramesAreMidGrey()
    {
        QCOMPARE(samples(filter("Linear16")(frame<std::uint16_t>("Mono16", 2, 1, {7, 7}))),
            (std::vector<int>{128, 128}));
        QCOMPARE(samples(filter("Float32")(frame<float>("Mono32f", 2, 1, {-4.5f, -4.5f}))),
            (std::vector<int>{128, 128}));
        QCOMPARE(samples(filter("Signed16")(frame<std::int16_t>("Mono16s", 2, 1, {0, 0}))),
            (std::vector<int>{128, 128}));
    }

    void signedIsCentredOnZero()
    {
        const auto diff = frame<std::int16_t>("Mono16s", 4, 1, {-100, 0, 50, 100});
        QCOMPARE(samples(filter("Signed16")(diff)), (std::vector<int>{1, 128, 192, 255}));
        const auto extremes = frame<std::int16_t>("Mono16s", 2, 1, {-32768, 32767});
        QCOMPARE(samples(filter("Signed16")(extremes)), (std::vector<int>{1, 255}));
    }

    void floatSkipsWhatIsNoNumber()
    {
        const float nan = std::numeric_limits<float>::quiet_NaN();
        const float inf = std::numeric_limits<float>::infinity();
        const auto kelvin = frame<float>("Mono32f", 3, 2, {290.0f, nan, 300.0f, -inf, 295.0f, inf});
        QCOMPARE(samples(filter("Float32")(kelvin)), (std::vector<int>{0, 0, 255, 0, 128, 0}));
        QCOMPARE(samples(filter("Float32")(frame<float>("Mono32f", 2, 1, {nan, inf}))),
            (std::vector<int>{0, 0}));
        // The widest range a float holds still scales.
        const float big = std::numeric_limits<float>::max();
        QCOMPARE(samples(filter("Float32")(frame<float>("Mono32f", 3, 1, {-big, 0.0f, big}))),
            (std::vector<int>{0, 128, 255}));
    }

    void colourChannelsInDisplayOrder()
    {
        const auto rgb = frame<std::uint8_t>("RGB8", 2, 1, {10, 20, 30, 40, 50, 60});
        const TSharedPtr<const CImage> image = filter("Colour")(rgb);
        QVERIFY(isPixelType(image, "RGBA8"));
        QCOMPARE(samples(image), (std::vector<int>{10, 20, 30, 255, 40, 50, 60, 255}));
        const auto bgra = frame<std::uint8_t>("BGRA8", 1, 1, {10, 20, 30, 0});
        QCOMPARE(samples(filter("Colour")(bgra)), (std::vector<int>{30, 20, 10, 255}));
        const auto bgr = frame<std::uint8_t>("BGR8", 1, 1, {1, 2, 3});
        QCOMPARE(samples(filter("Colour")(bgr)), (std::vector<int>{3, 2, 1, 255}));
    }

    void yuvToRgb()
    {
        // Grey stays grey; a strong V reddens both pixels of its pair.
        const auto grey = frame<std::uint8_t>("YUV422_8", 2, 1, {100, 128, 200, 128});
        QCOMPARE(samples(filter("Colour")(grey)),
            (std::vector<int>{100, 100, 100, 255, 200, 200, 200, 255}));
        const auto red = frame<std::uint8_t>("YUV422_8", 2, 1, {100, 128, 100, 228});
        const std::vector<int> reddened = samples(filter("Colour")(red));
        QVERIFY(reddened[0] > 200);
        QVERIFY(reddened[1] < 100);
        QCOMPARE(reddened[4], reddened[0]);
    }

    // Each 2 x 2 cell takes its red, its blue and the mean of its greens.
    void bayerCellsAreColoured()
    {
        const auto rggb = frame<std::uint8_t>("BayerRG8", 2, 2, {200, 10, 20, 50});
        QCOMPARE(samples(filter("Colour")(rggb)),
            (std::vector<int>{
                200, 15, 50, 255, 200, 15, 50, 255, 200, 15, 50, 255, 200, 15, 50, 255}));
        const auto bggr = frame<std::uint8_t>("BayerBG8", 2, 2, {50, 10, 20, 200});
        QCOMPARE(samples(filter("Colour")(bggr)).front(), 200);
        // 12 significant bits show their top 8; a last odd column repeats its cell.
        auto wide
            = frame<std::uint16_t>("BayerRG16", 3, 2, {0xFFF, 0x100, 0xFFF, 0x100, 0x010, 0x100});
        wide->adBits = 12;
        const std::vector<int> deep = samples(filter("Colour")(wide));
        QCOMPARE(deep[0], 255);
        QCOMPARE(deep[1], 16);
        QCOMPARE(deep[2], 1);
        QCOMPARE(deep[8], 255);
        QVERIFY(!filter("Colour")(frame<std::uint8_t>("BayerRG8", 1, 1, {1})));
    }
};

QTEST_APPLESS_MAIN(tst_CFilterFactory)
#include "tst_cfilterfactory.moc"
