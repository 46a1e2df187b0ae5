#include "views/drawing/rounded_rectangle.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QQuickWindow>
#include <QSGRenderNode>
#include <QSGRendererInterface>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>

namespace brimwatch::views {

namespace {

struct Look {
    qreal radius = 0;
    qreal outlineWidth = 0;
    QColor color;
    QColor endColor;
    QColor outlineColor;
};

/// How far a corner of that radius extends along the sides. With this side it has the exponent 3;
/// where there is less room it approaches an arc of a circle.
qreal cornerSide(const QRectF &rect, qreal radius)
{
    constexpr qreal continuousSide = 1.42;
    const qreal half = std::min(rect.width(), rect.height()) / 2;
    return std::min(continuousSide * std::min(radius, half), half);
}

/// The outline of a rectangle with continuous corners: superellipses that come as close to the
/// corner as a circle of that radius.
QPainterPath shape(const QRectF &rect, qreal radius)
{
    const qreal half = std::min(rect.width(), rect.height()) / 2;
    const qreal r = std::min(radius, half);
    if (r <= 0) {
        QPainterPath path;
        path.addRect(rect);
        return path;
    }
    const qreal side = cornerSide(rect, radius);
    const qreal inset = r * (1 - 1 / std::numbers::sqrt2);
    const qreal exponent = -1 / std::log2(1 - inset / side);

    constexpr std::size_t steps = 12;
    std::array<QPointF, steps + 1> corner;
    for (std::size_t i = 0; i <= steps; ++i) {
        const qreal angle = std::numbers::pi / 2 * static_cast<qreal>(i) / steps;
        const auto along = [&](qreal part) {
            return side * (1 - std::pow(std::clamp(part, 0.0, 1.0), 2 / exponent));
        };
        corner.at(i) = {along(std::cos(angle)), along(std::sin(angle))};
    }
    // From the left edge to the top, and so on clockwise.
    QPolygonF outline;
    outline.reserve(4 * (steps + 1) + 1);
    for (std::size_t i = 0; i <= steps; ++i)
        outline << rect.topLeft() + corner.at(i);
    for (std::size_t i = 0; i <= steps; ++i)
        outline << rect.topRight() + QPointF(-corner.at(steps - i).x(), corner.at(steps - i).y());
    for (std::size_t i = 0; i <= steps; ++i)
        outline << rect.bottomRight() - corner.at(i);
    for (std::size_t i = 0; i <= steps; ++i)
        outline << rect.bottomLeft() + QPointF(corner.at(steps - i).x(), -corner.at(steps - i).y());
    outline << outline.constFirst();
    QPainterPath path;
    path.addPolygon(outline);
    return path;
}

enum class Edges { Anywhere, OnPixels };

/// Fills the outline `outer` of such a rectangle.
void fill(
    QPainter &painter, const QRectF &rect, const QPainterPath &outer, const Look &look, Edges edges)
{
    const qreal ends = std::ceil(cornerSide(rect, look.radius));
    if (edges == Edges::Anywhere || rect.height() <= 4 * ends) {
        painter.fillPath(outer, look.color);
        return;
    }
    // A path takes time for each row that it has, and most rows have no corner.
    const QRectF middle = rect.adjusted(0, ends, 0, -ends);
    painter.fillRect(middle, look.color);
    if (ends == 0)
        return;
    const QRectF shorter(rect.topLeft(), QSizeF(rect.width(), 2 * ends));
    const QPainterPath both = shape(shorter, look.radius);
    painter.save();
    painter.setClipRect(QRectF(rect.topLeft(), QSizeF(rect.width(), ends)), Qt::IntersectClip);
    painter.fillPath(both, look.color);
    painter.restore();
    painter.save();
    painter.setClipRect(QRectF(middle.bottomLeft(), QSizeF(rect.width(), ends)), Qt::IntersectClip);
    painter.fillPath(both.translated(0, rect.height() - 2 * ends), look.color);
    painter.restore();
}

void draw(QPainter &painter, const QRectF &rect, const Look &look, Edges edges)
{
    const QPainterPath outer = shape(rect, look.radius);
    if (look.endColor.isValid()) {
        QLinearGradient gradient(rect.topLeft(), rect.bottomRight());
        gradient.setColorAt(0, look.color);
        gradient.setColorAt(1, look.endColor);
        painter.fillPath(outer, gradient);
    } else if (look.color.alpha() > 0) {
        fill(painter, rect, outer, look, edges);
    }
    const qreal width = look.outlineWidth;
    if (width > 0 && look.outlineColor.alpha() > 0) {
        const QRectF inside = rect.marginsRemoved({width, width, width, width});
        painter.fillPath(
            outer.subtracted(shape(inside, std::max(look.radius - width, 0.0))), look.outlineColor);
    }
}

/// Draws with the painter of the software renderer, which is the only one that is used.
class Node final : public QSGRenderNode {
public:
    explicit Node(QQuickWindow *window)
        : m_window(window)
    {
    }

    void set(const QSizeF &size, const Look &look)
    {
        m_size = size;
        m_look = look;
        markDirty(DirtyMaterial | DirtyGeometry);
    }

    void render(const RenderState *state) override
    {
        auto *painter = static_cast<QPainter *>(m_window->rendererInterface()->getResource(
            m_window, QSGRendererInterface::PainterResource));
        if (painter == nullptr)
            return;
        if (const QRegion *clip = state->clipRegion(); clip != nullptr && !clip->isEmpty())
            painter->setClipRegion(*clip, Qt::ReplaceClip);
        // A clip of one rectangle is not in the state's region.
        painter->setClipRect(matrix()->toTransform().mapRect(visiblePart()), Qt::IntersectClip);
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setOpacity(inheritedOpacity());

        painter->resetTransform();
        const QTransform device = painter->deviceTransform();
        const QTransform toDevice = matrix()->toTransform() * device;
        if (toDevice.type() > QTransform::TxScale) {
            painter->setTransform(matrix()->toTransform());
            draw(*painter, rect(), m_look, Edges::Anywhere);
            return;
        }
        // On whole pixels, so that edges are sharp at every scale. All items of one size stay so.
        const QRectF exact = toDevice.mapRect(rect());
        const auto whole = [](qreal length) { return std::max(std::round(length), 1.0); };
        const QRectF onPixels(std::round(exact.x()), std::round(exact.y()), whole(exact.width()),
            whole(exact.height()));
        const qreal scale = exact.width() / m_size.width();
        Look look = m_look;
        look.radius *= scale;
        if (look.outlineWidth > 0)
            look.outlineWidth = whole(look.outlineWidth * scale);
        painter->setTransform(device.inverted());
        draw(*painter, onPixels, look, Edges::OnPixels);
    }
    StateFlags changedStates() const override { return {}; }
    RenderingFlags flags() const override { return BoundedRectRendering; }
    QRectF rect() const override { return {QPointF(), m_size}; }

private:
    /// What the items around this one leave of it, in its coordinates.
    QRectF visiblePart() const
    {
        QRectF part = rect();
        QTransform toAncestor;
        // NOLINTBEGIN(cppcoreguidelines-pro-type-static-cast-downcast): type() says so
        for (const QSGNode *node = parent(); node != nullptr; node = node->parent()) {
            if (node->type() == ClipNodeType) {
                const QRectF clip = static_cast<const QSGClipNode *>(node)->clipRect();
                part &= toAncestor.inverted().mapRect(clip);
            } else if (node->type() == TransformNodeType) {
                toAncestor *= static_cast<const QSGTransformNode *>(node)->matrix().toTransform();
            }
        }
        // NOLINTEND(cppcoreguidelines-pro-type-static-cast-downcast)
        return part;
    }

    QQuickWindow *m_window;
    QSizeF m_size;
    Look m_look;
};

} // namespace

RoundedRectangle::RoundedRectangle(QQuickItem *parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    connect(this, &RoundedRectangle::changed, this, &QQuickItem::update);
}

void RoundedRectangle::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    if (newGeometry.size() != oldGeometry.size())
        update();
    QQuickItem::geometryChange(newGeometry, oldGeometry);
}

QSGNode *RoundedRectangle::updatePaintNode(QSGNode *node, UpdatePaintNodeData * /*data*/)
{
    if (width() <= 0 || height() <= 0) {
        delete node;
        return nullptr;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): this function made it
    auto reused = std::unique_ptr<Node>(static_cast<Node *>(node));
    if (!reused)
        reused = std::make_unique<Node>(window());
    reused->set(size(),
        {.radius = m_radius,
            .outlineWidth = m_outlineWidth,
            .color = m_color,
            .endColor = m_endColor,
            .outlineColor = m_outlineColor});
    return reused.release();
}

} // namespace brimwatch::views
