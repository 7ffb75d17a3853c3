// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "StreamTest.h"

#include <kiv/CVariant.h>
#include <kiv/PixelType.h>
#include <kivcam/CParameters.h>
#include <kivcam/IEmulatorController.h>

#include <QLineF>
#include <QPointF>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <cstdint>

using namespace streamtest;

namespace {

// The first images of a camera's stream, in the test pattern its control device names; the
// device's own parameters when pattern is null.
std::vector<TSharedPtr<const CImage>> imagesOf(
    const char* serial, std::size_t count, const char* pattern = nullptr)
{
    CRecorder recorder;
    SCamera camera(serial);
    if (pattern)
        camera.info.comm.parameters.Add(CParameters::CEntry(
            "Pattern", "Test pattern", {}, CParameters::EDIT_ALWAYS, CVariant(pattern)));
    camera.source()->subscribe(&recorder);
    if (!camera.connect() || !recorder.waitForFrames(count))
        qWarning("no images from %s", serial);
    camera.controller->disconnect();
    camera.source()->unsubscribe(&recorder);
    return recorder.frames();
}

// A sample of a one-channel image as a number.
double sampleAt(const CImage& image, int x, int y)
{
    switch (image.dataType()) {
    case kiv::DATA_TYPE_UINT8:
        return image.row<std::uint8_t>(y)[x];
    case kiv::DATA_TYPE_UINT16:
        return image.row<std::uint16_t>(y)[x];
    case kiv::DATA_TYPE_INT16:
        return image.row<std::int16_t>(y)[x];
    case kiv::DATA_TYPE_FLOAT32:
        return image.row<float>(y)[x];
    default:
        return std::nan("");
    }
}

// Where the warm object is: the centre of the hottest fiftieth of the image, which the object
// outshines the gradient in.
QPointF hotSpot(const CImage& image)
{
    std::vector<double> values;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            values.push_back(sampleAt(image, x, y));
    }
    std::vector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    const double threshold = sorted[sorted.size() * 49 / 50];
    double sumX = 0;
    double sumY = 0;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (values[static_cast<std::size_t>(y * image.width() + x)] >= threshold) {
                sumX += x;
                sumY += y;
                ++count;
            }
        }
    }
    return QPointF(sumX / count, sumY / count);
}

// The bytes of an image's pixels, row by row.
QByteArray pixelsOf(const CImage& image)
{
    QByteArray bytes;
    const auto rowBytes = static_cast<qsizetype>(image.width() * image.bytesPerPixel());
    for (int y = 0; y < image.height(); ++y)
        bytes.append(reinterpret_cast<const char*>(image.row<std::uint8_t>(y)), rowBytes);
    return bytes;
}

// The first image of a stream in that pattern: the one made at time 0.
QByteArray firstImage(const char* serial, const char* pattern = nullptr)
{
    const auto images = imagesOf(serial, 1, pattern);
    return images.empty() ? QByteArray() : pixelsOf(*images[0]);
}

// The mean of each column of a one-channel image.
std::vector<double> columnMeans(const CImage& image)
{
    std::vector<double> means(static_cast<std::size_t>(image.width()), 0.0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            means[static_cast<std::size_t>(x)] += sampleAt(image, x, y) / image.height();
    }
    return means;
}

// How much a column's mean differs from the mean of its two neighbours, as a median over the
// columns: the sensor's column pattern shows here, while the gradient, straight across the image,
// and the noise, averaged over the rows, do not.
double columnStripes(const CImage& image)
{
    const std::vector<double> means = columnMeans(image);
    std::vector<double> steps;
    for (std::size_t x = 1; x + 1 < means.size(); ++x)
        steps.push_back(std::abs(means[x] - (means[x - 1] + means[x + 1]) / 2));
    std::sort(steps.begin(), steps.end());
    return steps[steps.size() / 2];
}

} // namespace

// What the emulated cameras see, in each pixel type: a warm object that moves over a gradient,
// with noise, and the fixed pattern of the sensor that a NUC takes out.
class tst_CEmulatorScene : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { useWorld("emulator-frames.xml"); }

    // 14 significant bits, two up: nothing below bit 2, nothing above bit 15.
    void integerSamplesSpanTheirBits()
    {
        const auto images = imagesOf("M14", 1);
        QVERIFY(!images.empty());
        const CImage& image = *images[0];
        std::uint16_t low = 0xFFFF;
        std::uint16_t high = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const std::uint16_t sample = image.row<std::uint16_t>(y)[x];
                QCOMPARE(sample & 3, 0);
                low = std::min(low, sample);
                high = std::max(high, sample);
            }
        }
        // The gradient and the warm object spread over much of the range.
        QVERIFY(high - low > 0x4000);
    }

    void packedTypesArriveUnpacked()
    {
        const auto images = imagesOf("M12P", 1);
        QVERIFY(!images.empty());
        const CImage& image = *images[0];
        QCOMPARE(image.dataType(), kiv::DATA_TYPE_UINT16);
        QCOMPARE(image.adBits, 12);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                QVERIFY(image.row<std::uint16_t>(y)[x] <= 0x0FFF);
        }
    }

    void signedSamplesLieAroundZero()
    {
        const auto images = imagesOf("D16", 1);
        QVERIFY(!images.empty());
        const CImage& image = *images[0];
        QCOMPARE(image.dataType(), kiv::DATA_TYPE_INT16);
        bool negative = false;
        bool positive = false;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                negative = negative || image.row<std::int16_t>(y)[x] < 0;
                positive = positive || image.row<std::int16_t>(y)[x] > 0;
            }
        }
        QVERIFY(negative && positive);
    }

    // Float cameras deliver temperatures in kelvin, from 10 to 50 degrees Celsius.
    void floatSamplesAreTemperatures()
    {
        const auto images = imagesOf("T32", 1);
        QVERIFY(!images.empty());
        const CImage& image = *images[0];
        QCOMPARE(image.dataType(), kiv::DATA_TYPE_FLOAT32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const float kelvin = image.row<float>(y)[x];
                QVERIFY2(kelvin > 273.15f + 5 && kelvin < 273.15f + 55,
                    qPrintable(QString::number(kelvin)));
            }
        }
    }

    void colourLayouts_data()
    {
        QTest::addColumn<QByteArray>("serial");
        QTest::addColumn<int>("channels");
        QTest::newRow("RGB8") << QByteArray("RGB") << 3;
        QTest::newRow("BGRA8") << QByteArray("BGRA") << 4;
        QTest::newRow("BayerRG16") << QByteArray("B16") << 1;
        QTest::newRow("YUV422_8") << QByteArray("YUV") << 2;
    }
    void colourLayouts()
    {
        QFETCH(QByteArray, serial);
        QFETCH(int, channels);
        const auto images = imagesOf(serial.constData(), 1);
        QVERIFY(!images.empty());
        const CImage& image = *images[0];
        QCOMPARE(image.channels(), channels);
        QCOMPARE(image.width(), 40);
        if (channels == 4) {
            for (int x = 0; x < image.width(); ++x)
                QCOMPARE(image.row<std::uint8_t>(3)[4 * x + 3], std::uint8_t{255});
        }
        if (serial == "B16") {
            QCOMPARE(image.adBits, 12);
            for (int x = 0; x < image.width(); ++x)
                QVERIFY(image.row<std::uint16_t>(5)[x] <= 0x0FFF);
        }
    }

    void objectMoves()
    {
        // Two images a second apart, from one stream.
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(1));
        QTRY_VERIFY_WITH_TIMEOUT(
            recorder.frames().back()->timestamp - recorder.frames().front()->timestamp
                >= 1'000'000'000LL,
            10000);
        camera.controller->disconnect();
        camera.source()->unsubscribe(&recorder);
        const QPointF first = hotSpot(*recorder.frames().front());
        const QPointF later = hotSpot(*recorder.frames().back());
        QVERIFY2(QLineF(first, later).length() > 3,
            qPrintable(QString("%1,%2 -> %3,%4")
                           .arg(first.x())
                           .arg(first.y())
                           .arg(later.x())
                           .arg(later.y())));
    }

    void noiseChangesEveryImage()
    {
        const auto images = imagesOf("M14", 2);
        QVERIFY(images.size() >= 2);
        int differing = 0;
        for (int y = 0; y < images[0]->height(); ++y) {
            for (int x = 0; x < images[0]->width(); ++x)
                differing += sampleAt(*images[0], x, y) != sampleAt(*images[1], x, y);
        }
        QVERIFY(differing > images[0]->width() * images[0]->height() / 2);
    }

    // A NUC takes the column stripes of the sensor out of the following images.
    void nucRemovesTheFixedPattern()
    {
        CRecorder recorder;
        const SCamera camera("M14");
        camera.source()->subscribe(&recorder);
        auto* emulated = dynamic_cast<IEmulatorController*>(camera.controller.get());
        QVERIFY(emulated);
        QVERIFY(!emulated->runNuc());
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(1));
        const double before = columnStripes(*recorder.frames().back());
        QVERIFY(emulated->runNuc());
        recorder.clear();
        QVERIFY(recorder.waitForFrames(2));
        const double after = columnStripes(*recorder.frames().back());
        QVERIFY2(after * 5 < before, qPrintable(QString("%1 -> %2").arg(before).arg(after)));
        camera.controller->disconnect();
        QVERIFY(!emulated->runNuc());
        camera.source()->unsubscribe(&recorder);
    }

    // Each pattern gives its own picture, the same at the same time of every stream, in every
    // kind of pixel; "Gradient" is the scene a device without a pattern shows.
    void patternsDiffer_data()
    {
        QTest::addColumn<QByteArray>("serial");
        for (const char* serial :
            {"M14", "P8", "M12P", "D16", "T32", "RGB", "BGRA", "B16", "YUV", "F"})
            QTest::newRow(serial) << QByteArray(serial);
    }
    void patternsDiffer()
    {
        QFETCH(QByteArray, serial);
        const QByteArray unnamed = firstImage(serial);
        const QByteArray gradient = firstImage(serial, "Gradient");
        const QByteArray noise = firstImage(serial, "Noise");
        const QByteArray bars = firstImage(serial, "Bars");
        QVERIFY(!unnamed.isEmpty() && !noise.isEmpty() && !bars.isEmpty());
        QCOMPARE(gradient, unnamed);
        QVERIFY(noise != gradient);
        QVERIFY(bars != gradient);
        QVERIFY(bars != noise);
        QCOMPARE(firstImage(serial, "Noise"), noise);
        QCOMPARE(firstImage(serial, "Bars"), bars);
    }

    // Noise over a flat mid-grey field: every column alike, the pixels not.
    void noiseIsFlatAndGrainy()
    {
        const auto images = imagesOf("M14", 1, "Noise");
        QVERIFY(!images.empty());
        const CImage& image = *images[0];
        const std::vector<double> means = columnMeans(image);
        const auto [low, high] = std::minmax_element(means.begin(), means.end());
        const double full = 0xFFFF;
        QVERIFY2(*high - *low < 0.08 * full, qPrintable(QString("%1 %2").arg(*low).arg(*high)));
        QVERIFY(std::abs((*low + *high) / 2 - full / 2) < 0.05 * full);
        double spread = 0;
        for (int x = 0; x < image.width(); ++x)
            spread = std::max(spread, std::abs(sampleAt(image, x, 7) - means[x]));
        QVERIFY(spread > 0.05 * full);
    }

    // Eight vertical bars from dark to bright, which move sideways as time goes by.
    void barsAreVerticalAndMove()
    {
        CRecorder recorder;
        SCamera camera("P8");
        camera.info.comm.parameters.Add(CParameters::CEntry(
            "Pattern", "Test pattern", {}, CParameters::EDIT_ALWAYS, CVariant("Bars")));
        camera.source()->subscribe(&recorder);
        QVERIFY(camera.connect());
        QVERIFY(recorder.waitForFrames(1));
        QTRY_VERIFY_WITH_TIMEOUT(
            recorder.frames().back()->timestamp - recorder.frames().front()->timestamp
                >= 500'000'000LL,
            10000);
        camera.controller->disconnect();
        camera.source()->unsubscribe(&recorder);
        // At time 0 the bars stand in place: bar k spans columns 5k to 5k + 4, each brighter
        // than the one on its left, the same in every row.
        const CImage& first = *recorder.frames().front();
        QCOMPARE(first.frameNumber, std::uint64_t{0});
        const std::vector<double> profile = columnMeans(first);
        std::vector<double> bars(8, 0.0);
        for (int x = 0; x < first.width(); ++x) {
            QVERIFY(std::abs(sampleAt(first, x, 0) - profile[x]) < 10);
            QVERIFY(std::abs(sampleAt(first, x, first.height() - 1) - profile[x]) < 10);
            bars[static_cast<std::size_t>(x / 5)] += profile[x] / 5;
        }
        for (std::size_t k = 1; k < bars.size(); ++k)
            QVERIFY2(bars[k] - bars[k - 1] > 0.05 * 255,
                qPrintable(QString("%1 -> %2").arg(bars[k - 1]).arg(bars[k])));
        QVERIFY(bars.back() - bars.front() > 0.6 * 255);
        const std::vector<double> later = columnMeans(*recorder.frames().back());
        double moved = 0;
        for (int x = 0; x < first.width(); ++x)
            moved = std::max(moved, std::abs(later[x] - profile[x]));
        QVERIFY(moved > 0.05 * 255);
    }

    void cameraWithoutNucRefusesIt()
    {
        const SCamera camera("P8");
        QVERIFY(!camera.info.hasNucMask);
        QVERIFY(camera.connect());
        QVERIFY(!dynamic_cast<IEmulatorController*>(camera.controller.get())->runNuc());
        camera.controller->disconnect();
    }
};

QTEST_GUILESS_MAIN(tst_CEmulatorScene)
#include "tst_cemulatorscene.moc"
