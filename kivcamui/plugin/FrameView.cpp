// Copyright (C) 2026 The kivcamui authors
// SPDX-License-Identifier: BSD-3-Clause

#include "FrameView.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

namespace kiv::cam::ui {

FrameView::FrameView(QQuickItem* parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void FrameView::setImage(const QImage& image)
{
    m_image = image;
    m_newImage = true;
    update();
    emit imageChanged();
    placePicture();
}

void FrameView::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size()) {
        update();
        placePicture();
    }
}

void FrameView::placePicture()
{
    QRectF place;
    if (!m_image.isNull() && width() > 0 && height() > 0) {
        const QSizeF fitted = QSizeF(m_image.size()).scaled(size(), Qt::KeepAspectRatio);
        place = QRectF(
            QPointF((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
    }
    if (place == m_pictureRect)
        return;
    m_pictureRect = place;
    emit pictureRectChanged();
}

QSGNode* FrameView::updatePaintNode(QSGNode* oldNode, UpdatePaintNodeData*)
{
    const QRectF rect = m_pictureRect;
    if (rect.isEmpty()) {
        delete oldNode;
        return nullptr;
    }
    auto* node = static_cast<QSGImageNode*>(oldNode);
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true); // a new texture replaces, and deletes, the old one
        node->setFiltering(QSGTexture::Linear);
        m_newImage = true;
    }
    if (m_newImage) {
        node->setTexture(window()->createTextureFromImage(m_image));
        m_newImage = false;
    }
    node->setRect(rect);
    return node;
}

} // namespace kiv::cam::ui
