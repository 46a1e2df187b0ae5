#include "views/drawing/capsule.h"

#include <QPainter>

#include <algorithm>

namespace brimwatch::views {

void Capsule::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    redraw();
    Q_EMIT colorChanged();
}

QImage Capsule::draw(qreal scale) const
{
    QImage image = canvas(scale);
    if (image.isNull())
        return image;
    const QRectF shape(0, 0, width(), height());
    const qreal radius = std::min(width(), height()) / 2;
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_color);
    painter.drawRoundedRect(shape, radius, radius);
    return image;
}

} // namespace brimwatch::views
