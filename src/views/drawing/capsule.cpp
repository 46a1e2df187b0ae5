#include "views/drawing/capsule.h"

#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace brimwatch::views {

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
    if (m_endColor.isValid()) {
        QLinearGradient gradient(shape.topLeft(), shape.bottomRight());
        gradient.setColorAt(0, m_color);
        gradient.setColorAt(1, m_endColor);
        painter.setBrush(gradient);
    } else {
        painter.setBrush(m_color);
    }
    painter.drawRoundedRect(shape, radius, radius);
    return image;
}

} // namespace brimwatch::views
