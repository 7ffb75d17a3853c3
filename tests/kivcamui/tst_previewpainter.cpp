// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include <kivcamui/editors/PreviewPainter.h>
#include <kivcamui/plugin/InitPlugin.h>

#include <QImage>
#include <QPainter>
#include <QTest>

using kiv::cam::ui::PreviewPainter;

namespace {

const QImage& picture()
{
    static const QImage image(":/kivcamui/images/wspreview.png");
    return image;
}

// What drawing the picture afresh gives: scaled into target, mirrored about its centre.
QImage reference(QSize device, const QRect& target, const QRect& source, bool h, bool v)
{
    QImage image(device, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QPointF centre = QRectF(target).center();
    painter.translate(centre);
    painter.scale(h ? -1 : 1, v ? -1 : 1);
    painter.translate(-centre);
    painter.drawImage(target, picture(), source);
    return image;
}

QImage drawn(
    PreviewPainter& preview, QSize device, const QRect& target, const QRect& source, bool h, bool v)
{
    QImage image(device, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    preview.Draw(&painter, target, source, h, v);
    return image;
}

} // namespace

class tst_PreviewPainter : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // The picture is one of the library's resources.
        kivcamuiInitPlugin();
        QCOMPARE(picture().size(), QSize(640, 512));
    }

    void sourceRect_data()
    {
        QTest::addColumn<bool>("square");
        QTest::addColumn<double>("aspect");
        QTest::addColumn<QRect>("expected");
        // The picture is 640 x 512 (1.25).
        QTest::newRow("same aspect") << false << 1.25 << QRect(0, 0, 640, 512);
        QTest::newRow("within 0.0001") << false << 1.25009 << QRect(0, 0, 640, 512);
        QTest::newRow("wider: a centred band") << false << 2.5 << QRect(0, 128, 640, 256);
        QTest::newRow("a little wider") << false << 1.3 << QRect(0, 10, 640, 492);
        // Taller: 1280 rows needed, and the band keeps that height and the full width.
        QTest::newRow("taller") << false << 0.5 << QRect(192, 0, 640, 1280);
        QTest::newRow("a little taller") << false << 1.2 << QRect(13, 0, 640, 533);
        QTest::newRow("square") << true << 1.0 << QRect(64, 0, 512, 512);
        QTest::newRow("square, whatever aspect") << true << 3.0 << QRect(64, 0, 512, 512);
    }
    void sourceRect()
    {
        QFETCH(bool, square);
        QFETCH(double, aspect);
        QFETCH(QRect, expected);
        const PreviewPainter preview;
        QCOMPARE(preview.SourceRect(square, aspect), expected);
    }

    // The kept scaled copy gives exactly the pixels of drawing afresh, wherever it is put down.
    void drawsWhatDrawingAfreshDraws_data()
    {
        QTest::addColumn<QRect>("target");
        QTest::addColumn<QRect>("source");
        QTest::addColumn<bool>("h");
        QTest::addColumn<bool>("v");
        const QRect whole(0, 0, 640, 512);
        const QRect part(320, 256, 320, 256);
        const QRect beyond(192, 0, 640, 1280);
        for (const bool h : {false, true}) {
            for (const bool v : {false, true}) {
                const QString flips = QStringLiteral(" %1%2").arg(h ? "h" : "-", v ? "v" : "-");
                QTest::newRow(qPrintable("whole 1:1" + flips))
                    << QRect(0, 0, 640, 512) << whole << h << v;
                QTest::newRow(qPrintable("whole enlarged" + flips))
                    << QRect(0, 0, 1000, 700) << whole << h << v;
                QTest::newRow(qPrintable("part reduced, moved" + flips))
                    << QRect(37, 51, 203, 151) << part << h << v;
                QTest::newRow(qPrintable("past the picture" + flips))
                    << QRect(3, 5, 256, 512) << beyond << h << v;
                QTest::newRow(qPrintable("partly off the device" + flips))
                    << QRect(-100, 600, 700, 500) << whole << h << v;
                QTest::newRow(qPrintable("far larger than the device" + flips))
                    << QRect(-1000, -900, 3000, 2400) << part << h << v;
            }
        }
    }
    void drawsWhatDrawingAfreshDraws()
    {
        QFETCH(QRect, target);
        QFETCH(QRect, source);
        QFETCH(bool, h);
        QFETCH(bool, v);
        const QSize device(1024, 768);
        PreviewPainter preview;
        const QImage expected = reference(device, target, source, h, v);
        QCOMPARE(drawn(preview, device, target, source, h, v), expected);
        // Again, from what was kept, and moved by whole pixels.
        QCOMPARE(drawn(preview, device, target, source, h, v), expected);
        const QRect moved = target.translated(7, -3);
        QCOMPARE(
            drawn(preview, device, moved, source, h, v), reference(device, moved, source, h, v));
    }

    void redrawsWhenWhatItShowsChanges()
    {
        const QSize device(640, 512);
        const QRect target(0, 0, 640, 512);
        PreviewPainter preview;
        drawn(preview, device, target, QRect(0, 0, 640, 512), false, false);
        QCOMPARE(drawn(preview, device, target, QRect(0, 128, 640, 256), false, false),
            reference(device, target, QRect(0, 128, 640, 256), false, false));
        QCOMPARE(drawn(preview, device, target, QRect(0, 128, 640, 256), true, false),
            reference(device, target, QRect(0, 128, 640, 256), true, false));
        QCOMPARE(drawn(preview, device, target, QRect(0, 128, 640, 256), true, true),
            reference(device, target, QRect(0, 128, 640, 256), true, true));
        // From a source past the picture's edges, which leaves part of the copy clear, and back.
        QCOMPARE(drawn(preview, device, target, QRect(192, 0, 640, 1280), true, true),
            reference(device, target, QRect(192, 0, 640, 1280), true, true));
        QCOMPARE(drawn(preview, device, target, QRect(0, 0, 640, 512), false, true),
            reference(device, target, QRect(0, 0, 640, 512), false, true));
        QCOMPARE(drawn(preview, device, target, QRect(192, 0, 640, 1280), false, false),
            reference(device, target, QRect(192, 0, 640, 1280), false, false));
        const QRect smaller(0, 0, 320, 256);
        QCOMPARE(drawn(preview, device, smaller, QRect(0, 128, 640, 256), true, true),
            reference(device, smaller, QRect(0, 128, 640, 256), true, true));
    }

    void followsThePaintersTransform()
    {
        // A scaling painter is drawn through afresh, as if no copy were kept.
        PreviewPainter preview;
        for (int round = 0; round < 2; ++round) {
            QImage image(QSize(640, 512), QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter painter(&image);
            painter.translate(10, 20);
            painter.scale(0.5, 0.5);
            preview.Draw(&painter, QRect(0, 0, 640, 512), QRect(0, 0, 640, 512), true, false);
            painter.end();

            QImage expected(QSize(640, 512), QImage::Format_ARGB32_Premultiplied);
            expected.fill(Qt::transparent);
            QPainter reference(&expected);
            reference.translate(10, 20);
            reference.scale(0.5, 0.5);
            reference.translate(320, 256);
            reference.scale(-1, 1);
            reference.translate(-320, -256);
            reference.drawImage(QRect(0, 0, 640, 512), picture());
            reference.end();
            QCOMPARE(image, expected);
        }
    }
};

QTEST_MAIN(tst_PreviewPainter)
#include "tst_previewpainter.moc"
