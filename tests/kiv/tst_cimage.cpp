// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kiv/CImage.h>
#include <kiv/PixelType.h>

#include <QTest>

#include <cstdint>
#include <cstring>

using kiv::CImage;
using kiv::CString;
using kiv::SGuid;
using kiv::TSharedPtr;

namespace {

SGuid pixelType(const char* name)
{
    return kiv::ParsePixelType(CString(name));
}

} // namespace

class tst_CImage : public QObject {
    Q_OBJECT

private slots:
    void formatFollowsThePixelType_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("dataType");
        QTest::addColumn<int>("channels");
        QTest::addColumn<int>("bytesPerPixel");
        QTest::addColumn<int>("stride"); // for a width of 5
        QTest::newRow("Mono8") << "Mono8" << int(kiv::DATA_TYPE_UINT8) << 1 << 1 << 8;
        QTest::newRow("Mono12Packed, unpacked")
            << "Mono12Packed" << int(kiv::DATA_TYPE_UINT16) << 1 << 2 << 12;
        QTest::newRow("Mono14") << "Mono14" << int(kiv::DATA_TYPE_UINT16) << 1 << 2 << 12;
        QTest::newRow("Mono16s") << "Mono16s" << int(kiv::DATA_TYPE_INT16) << 1 << 2 << 12;
        QTest::newRow("Mono32f") << "Mono32f" << int(kiv::DATA_TYPE_FLOAT32) << 1 << 4 << 20;
        QTest::newRow("RGB8") << "RGB8" << int(kiv::DATA_TYPE_UINT8) << 3 << 3 << 16;
        QTest::newRow("BGRA8") << "BGRA8" << int(kiv::DATA_TYPE_UINT8) << 4 << 4 << 20;
        QTest::newRow("YUV422_8") << "YUV422_8" << int(kiv::DATA_TYPE_UINT8) << 2 << 2 << 12;
        QTest::newRow("BayerRG16") << "BayerRG16" << int(kiv::DATA_TYPE_UINT16) << 1 << 2 << 12;
    }
    void formatFollowsThePixelType()
    {
        QFETCH(QString, name);
        QFETCH(int, dataType);
        QFETCH(int, channels);
        QFETCH(int, bytesPerPixel);
        QFETCH(int, stride);
        const TSharedPtr<CImage> image = CImage::Create(5, 3, pixelType(qPrintable(name)));
        QVERIFY(image);
        QCOMPARE(image->width(), 5);
        QCOMPARE(image->height(), 3);
        QVERIFY(image->pixelType() == pixelType(qPrintable(name)));
        QCOMPARE(int(image->dataType()), dataType);
        QCOMPARE(image->channels(), channels);
        QCOMPARE(image->bytesPerPixel(), bytesPerPixel);
        QCOMPARE(int(image->stride()), stride);
        QCOMPARE(int(image->byteCount()), stride * 3);
        QCOMPARE(image->adBits, 0);
        QCOMPARE(image->adBitShift, 0);
        QCOMPARE(image->frameNumber, std::uint64_t{0});
        QCOMPARE(image->timestamp, std::int64_t{0});
    }

    void rowsAreStrideApartAndWritable()
    {
        const TSharedPtr<CImage> image = CImage::Create(3, 4, pixelType("Mono16"));
        QVERIFY(image);
        QCOMPARE(int(image->stride()), 8);
        for (int y = 0; y < 4; ++y) {
            QCOMPARE(reinterpret_cast<const unsigned char*>(image->row<std::uint16_t>(y)),
                image->bits() + 8 * y);
            for (int x = 0; x < 3; ++x)
                image->row<std::uint16_t>(y)[x] = static_cast<std::uint16_t>(1000 * y + x);
        }
        const TSharedPtr<const CImage> shared = image;
        QCOMPARE(shared->row<std::uint16_t>(2)[1], std::uint16_t{2001});
        QCOMPARE(shared->row<std::uint16_t>(3)[2], std::uint16_t{3002});
        QCOMPARE(reinterpret_cast<std::uintptr_t>(shared->bits()) % 4, std::uintptr_t{0});
    }

    // Readers share the one buffer; it goes when the last of them lets go.
    void sharingDoesNotCopy()
    {
        TSharedPtr<CImage> image = CImage::Create(2, 2, pixelType("Mono8"));
        QVERIFY(image);
        std::memset(image->bits(), 7, image->byteCount());
        image->frameNumber = 42;
        const TSharedPtr<const CImage> reader = image;
        const TSharedPtr<const CImage> other = reader;
        QCOMPARE(reader->bits(), image->bits());
        QCOMPARE(other->frameNumber, std::uint64_t{42});
        QCOMPARE(image.useCount(), 3);
        image.reset();
        QCOMPARE(other->bits()[3], static_cast<unsigned char>(7));
    }

    void refusesWhatIsNoImage()
    {
        QVERIFY(!CImage::Create(0, 10, pixelType("Mono8")));
        QVERIFY(!CImage::Create(10, 0, pixelType("Mono8")));
        QVERIFY(!CImage::Create(-1, 10, pixelType("Mono8")));
        QVERIFY(!CImage::Create(10, -5, pixelType("Mono8")));
        QVERIFY(!CImage::Create(10, 10, SGuid()));
        SGuid past = pixelType("YUV422_8");
        past.data4[7] = 22;
        QVERIFY(!CImage::Create(10, 10, past));
    }

    // Sizes that no memory holds give an empty pointer, not an exception or a crash.
    void hugeSizesAreRefused()
    {
        QVERIFY(!CImage::Create(0x7fffffff, 0x7fffffff, pixelType("RGBA8")));
        QVERIFY(!CImage::Create(0x7fffffff, 0x7fffffff, pixelType("Mono8")));
    }
};

QTEST_APPLESS_MAIN(tst_CImage)
#include "tst_cimage.moc"
