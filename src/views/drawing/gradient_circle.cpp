#include "views/drawing/gradient_circle.h"

#include <QLinearGradient>
#include <QPainter>

namespace brimwatch::views {

void GradientCircle::setStart(const QColor &color)
{
    if (m_start == color)
        return;
    m_start = color;
    redraw();
    Q_EMIT startChanged();
}

void GradientCircle::setEnd(const QColor &color)
{
    if (m_end == color)
        return;
    m_end = color;
    redraw();
    Q_EMIT endChanged();
}

QImage GradientCircle::draw(qreal scale) const
{
    QImage image = canvas(scale);
    if (image.isNull())
        return image;
    const QRectF circle(0, 0, width(), height());
    QLinearGradient gradient(circle.topLeft(), circle.bottomRight());
    gradient.setColorAt(0, m_start);
    gradient.setColorAt(1, m_end);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(circle);
    return image;
}

} // namespace brimwatch::views
