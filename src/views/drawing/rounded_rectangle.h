#pragma once

#include <QColor>
#include <QQuickItem>

namespace brimwatch::views {

/// A rectangle with round corners, filled and with an outline: every round shape of the views. Its
/// corners are continuous: their curvature begins at none beside the straight edges. With a radius
/// of at least half its side they are half circles, or a circle. With an `endColor` it is filled
/// with a gradient from the top left to the bottom right.
///
/// Not Rectangle: the software renderer draws the corners of that one as pictures before the scene
/// is scaled, which notches them at fractional scales, and its gradients run along the axes only.
class RoundedRectangle : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY changed FINAL)
    /// Transparent at first.
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed FINAL)
    /// Invalid for one color.
    Q_PROPERTY(QColor endColor MEMBER m_endColor NOTIFY changed FINAL)
    /// Of the line along the inside of the edge.
    Q_PROPERTY(QColor outlineColor MEMBER m_outlineColor NOTIFY changed FINAL)
    /// No outline for 0.
    Q_PROPERTY(qreal outlineWidth MEMBER m_outlineWidth NOTIFY changed FINAL)

public:
    explicit RoundedRectangle(QQuickItem *parent = nullptr);

Q_SIGNALS:
    void changed();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    qreal m_radius = 0;
    qreal m_outlineWidth = 0;
    QColor m_color = Qt::transparent;
    QColor m_endColor;
    QColor m_outlineColor = Qt::transparent;
};

} // namespace brimwatch::views
