#include "views/drawing/image_item.h"

#include "views/models/theme.h"

#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

#include <algorithm>
#include <cmath>
#include <memory>

namespace brimwatch::views {

ImageItem::ImageItem(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

QImage ImageItem::canvas(qreal scale) const
{
    QImage image(static_cast<int>(std::ceil(width() * scale)),
        static_cast<int>(std::ceil(height() * scale)), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

void ImageItem::redraw()
{
    m_stale = true;
    // What is not seen is drawn when it is.
    if (isVisible())
        update();
}

void ImageItem::componentComplete()
{
    QQuickItem::componentComplete();
    m_theme = Theme::of(this);
    if (m_theme == nullptr)
        return;
    connect(m_theme, &Theme::changed, this, &ImageItem::refresh);
    connect(this, &ImageItem::changed, this, &ImageItem::refresh);
    refresh();
}

void ImageItem::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged
        || (change == ItemVisibleHasChanged && isVisible() && m_stale))
        redraw();
    QQuickItem::itemChange(change, data);
}

void ImageItem::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    if (newGeometry.size() != oldGeometry.size())
        redraw();
    QQuickItem::geometryChange(newGeometry, oldGeometry);
}

QSGNode *ImageItem::updatePaintNode(QSGNode *node, UpdatePaintNodeData * /*data*/)
{
    if (node != nullptr && !m_stale)
        return node;
    m_stale = false;
    delete node;
    if (m_theme == nullptr || width() <= 0 || height() <= 0)
        return nullptr;
    const QImage image
        = draw(std::max(window()->effectiveDevicePixelRatio(), 1.0) * m_theme->textScale());
    if (image.isNull())
        return nullptr;

    auto imageNode = std::unique_ptr<QSGImageNode>(window()->createImageNode());
    imageNode->setOwnsTexture(true);
    imageNode->setTexture(window()->createTextureFromImage(image));
    imageNode->setFiltering(QSGTexture::Linear);
    imageNode->setSourceRect(QRectF(QPointF(), QSizeF(image.size())));
    imageNode->setRect(QRectF(QPointF(), image.deviceIndependentSize()));
    return imageNode.release();
}

} // namespace brimwatch::views
