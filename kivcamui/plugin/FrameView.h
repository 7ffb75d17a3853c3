// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <kivcamui/kivcamui_export.h>

#include <QImage>
#include <QQuickItem>

namespace kiv::cam::ui {

// A QML item that shows a picture, scaled to fit with its aspect ratio kept and centred: made for
// live pictures, which it turns into one texture each when it is next drawn. Each plugin that
// shows one registers it as FrameView in its own module (the sample: kivcamuiEmulator 1.0).
class KIVCAMUI_EXPORT FrameView : public QQuickItem {
    Q_OBJECT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    // Where the picture lies within the item; empty without a picture.
    Q_PROPERTY(QRectF pictureRect READ pictureRect NOTIFY pictureRectChanged)

public:
    explicit FrameView(QQuickItem* parent = nullptr);

    QImage image() const { return m_image; }
    void setImage(const QImage& image);
    QRectF pictureRect() const { return m_pictureRect; }

Q_SIGNALS:
    void imageChanged();
    void pictureRectChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* oldNode, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

private:
    void placePicture();

    QImage m_image;
    QRectF m_pictureRect;
    bool m_newImage = false;
};

} // namespace kiv::cam::ui
