// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "PreviewPainter.h"

#include "Rounding.h"

#include <QPaintDevice>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace kiv::cam::ui {

namespace {

// Decoded once: every editor shares the same pixels.
const QImage& previewPicture()
{
    static const QImage picture(QStringLiteral(":/kivcamui/images/wspreview.png"));
    return picture;
}

} // namespace

PreviewPainter::PreviewPainter() : m_image(previewPicture())
{
}

QRect PreviewPainter::SourceRect(bool square, double aspect) const
{
    const int width = m_image.width();
    const int height = m_image.height();
    if (square) {
        const int side = std::min(width, height);
        return {(width - side) / 2, (height - side) / 2, side, side};
    }
    if (std::abs(double(width) / height - aspect) <= 0.0001)
        return m_image.rect();
    const int hNeeded = truncToInt(width / aspect);
    if (hNeeded <= height)
        return {0, (height - hNeeded) / 2, width, hNeeded};
    // The size is the one of the band above, not (wNeeded, height): this source reaches past the
    // picture's right and bottom edges, and only what lies inside the picture is drawn.
    const int wNeeded = truncToInt(height * aspect);
    return {(width - wNeeded) / 2, 0, width, hNeeded};
}

void PreviewPainter::Draw(
    QPainter* painter, const QRect& target, const QRect& source, bool hFlip, bool vFlip)
{
    // The kept copy gives the same pixels as drawing afresh when it is put down unscaled, at
    // whole pixels, with plain blending: the picture is sampled the same way relative to the
    // target wherever that lies, and the device clips both alike. It is kept for targets of up
    // to twice the device's size (a picture zoomed in a little or pushed partly off the item);
    // larger ones are drawn afresh, which costs only what shows.
    const QTransform transform = painter->combinedTransform();
    const QPaintDevice* device = painter->device();
    const bool keep = transform.type() <= QTransform::TxTranslate
        && transform.dx() == std::round(transform.dx())
        && transform.dy() == std::round(transform.dy()) && device->devicePixelRatio() == 1
        && painter->compositionMode() == QPainter::CompositionMode_SourceOver
        && painter->opacity() == 1
        && !(painter->renderHints() & (QPainter::Antialiasing | QPainter::SmoothPixmapTransform))
        && !target.isEmpty()
        && qint64(target.width()) * target.height()
            <= 2 * qint64(device->width()) * device->height();
    if (!keep) {
        DrawScaled(painter, target, source, hFlip, vFlip);
        return;
    }
    if (m_scaled.size() != target.size() || m_scaledSource != source || m_scaledHFlip != hFlip
        || m_scaledVFlip != vFlip) {
        if (m_scaled.size() != target.size())
            m_scaled = QImage(target.size(), QImage::Format_ARGB32_Premultiplied);
        // An opaque picture drawn from within its bounds sets every pixel of the copy; a source
        // that reaches past them leaves pixels that must stay clear.
        QPainter scaledPainter(&m_scaled);
        if (m_image.hasAlphaChannel() || !m_image.rect().contains(source))
            m_scaled.fill(Qt::transparent);
        else
            scaledPainter.setCompositionMode(QPainter::CompositionMode_Source);
        DrawScaled(&scaledPainter, m_scaled.rect(), source, hFlip, vFlip);
        m_scaledSource = source;
        m_scaledHFlip = hFlip;
        m_scaledVFlip = vFlip;
    }
    painter->drawImage(target.topLeft(), m_scaled);
}

void PreviewPainter::DrawScaled(
    QPainter* painter, const QRect& target, const QRect& source, bool hFlip, bool vFlip) const
{
    if (!hFlip && !vFlip) {
        painter->drawImage(target, m_image, source);
        return;
    }
    const QPointF centre = QRectF(target).center();
    painter->save();
    painter->translate(centre);
    painter->scale(hFlip ? -1 : 1, vFlip ? -1 : 1);
    painter->translate(-centre);
    painter->drawImage(target, m_image, source);
    painter->restore();
}

} // namespace kiv::cam::ui
