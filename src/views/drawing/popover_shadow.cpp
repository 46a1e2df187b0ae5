#include "views/drawing/popover_shadow.h"

#include <QImage>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGTexture>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>

namespace brimwatch::views {

namespace {

/// The distance of a point from a square with round corners that is centred at (0, 0); negative
/// inside.
qreal distance(QPointF point, qreal halfSide, qreal radius)
{
    const qreal x = std::abs(point.x()) - halfSide + radius;
    const qreal y = std::abs(point.y()) - halfSide + radius;
    return std::hypot(std::max(x, 0.0), std::max(y, 0.0)) + std::min(std::max(x, y), 0.0) - radius;
}

/// The shadow of a square: four corners of `corner` by `corner` pixels, and between them one row
/// and one column, which are repeated along the edges.
QImage shadowOfSquare(int corner, qreal scale, qreal radius, qreal strength)
{
    const int side = 2 * corner + 1;
    const qreal halfSide = corner - PopoverShadow::blur * scale + 0.5;
    // Three standard deviations cover nearly all of a normal distribution.
    const qreal deviation = PopoverShadow::blur * scale / 3;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const qreal outside
                = distance(QPointF(x - corner, y - corner), halfSide, radius * scale);
            const qreal shade = std::erfc(outside / deviation / std::numbers::sqrt2) / 2;
            image.setPixel(x, y, qRgba(0, 0, 0, int(std::lround(255 * strength * shade))));
        }
    }
    return image;
}

} // namespace

PopoverShadow::PopoverShadow(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &PopoverShadow::changed, this, &PopoverShadow::redraw);
}

void PopoverShadow::redraw()
{
    m_stale = true;
    update();
}

void PopoverShadow::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemDevicePixelRatioHasChanged)
        redraw();
    QQuickItem::itemChange(change, data);
}

void PopoverShadow::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    if (newGeometry.size() != oldGeometry.size())
        redraw();
    QQuickItem::geometryChange(newGeometry, oldGeometry);
}

QSGNode *PopoverShadow::updatePaintNode(QSGNode *node, UpdatePaintNodeData * /*data*/)
{
    if (node != nullptr && !m_stale)
        return node;
    m_stale = false;
    delete node;
    if (width() <= 0 || height() <= 0)
        return nullptr;

    const qreal scale = window()->effectiveDevicePixelRatio();
    const int corner = static_cast<int>(std::ceil((2 * blur + m_radius) * scale));
    const qreal cornerSide = corner / scale;
    QSGTexture *texture
        = window()->createTextureFromImage(shadowOfSquare(corner, scale, m_radius, m_strength));
    const QRectF whole = boundingRect() + QMarginsF(extent);
    const std::array<qreal, 4> columns{
        whole.left(), whole.left() + cornerSide, whole.right() - cornerSide, whole.right()};
    const std::array<qreal, 4> rows{
        whole.top(), whole.top() + cornerSide, whole.bottom() - cornerSide, whole.bottom()};
    const std::array<int, 4> texels{0, corner, corner + 1, 2 * corner + 1};

    auto result = std::make_unique<QSGNode>();
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            if (row == 1 && column == 1)
                continue;
            auto *part = window()->createImageNode();
            // All show parts of one texture, which the first one owns.
            part->setOwnsTexture(row == 0 && column == 0);
            part->setTexture(texture);
            part->setFiltering(QSGTexture::Linear);
            part->setSourceRect(QRectF(QPointF(texels.at(column), texels.at(row)),
                QPointF(texels.at(column + 1), texels.at(row + 1))));
            part->setRect(QRectF(QPointF(columns.at(column), rows.at(row)),
                QPointF(columns.at(column + 1), rows.at(row + 1))));
            result->appendChildNode(part);
        }
    }
    return result.release();
}

} // namespace brimwatch::views
