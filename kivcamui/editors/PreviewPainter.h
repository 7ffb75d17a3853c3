// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>

namespace kiv::cam::ui {

// The preview picture both editors draw under their rectangles. Drawing keeps the picture as last
// scaled and mirrored, so repainting after a drag step costs one copy rather than a rescale; the
// copy is used only where it gives exactly the pixels that drawing afresh would.
class PreviewPainter {
public:
    PreviewPainter();

    // The part of the picture shown for an area of the given aspect: a centred square when the
    // area is square, else, if the picture's aspect differs, a band of the area's aspect.
    QRect SourceRect(bool square, double aspect) const;
    // Draws source of the picture into target, mirrored about target's centre as asked.
    void Draw(QPainter* painter, const QRect& target, const QRect& source, bool hFlip, bool vFlip);

private:
    void DrawScaled(
        QPainter* painter, const QRect& target, const QRect& source, bool hFlip, bool vFlip) const;

    QImage m_image;
    QImage m_scaled;
    QRect m_scaledSource;
    bool m_scaledHFlip = false;
    bool m_scaledVFlip = false;
};

} // namespace kiv::cam::ui
