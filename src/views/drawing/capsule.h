#pragma once

#include "views/drawing/image_item.h"

#include <QColor>

namespace brimwatch::views {

/// A filled shape with half-round ends; as wide as it is high it is a circle. With an `endColor` it
/// is filled with a gradient from the top left to the bottom right.
///
/// Not Rectangle with a radius: the software renderer draws the corners of that one before the
/// scene is scaled, which frays small round shapes. And its gradients run along the axes only.
class Capsule : public brimwatch::views::ImageItem {
    // The base is qualified, or the type description that QML tools read does not find it (Qt 6.4).
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed FINAL)
    Q_PROPERTY(QColor endColor MEMBER m_endColor NOTIFY changed FINAL)

public:
    using ImageItem::ImageItem;

protected:
    QImage draw(qreal scale) const override;

private:
    QColor m_color = Qt::black;
    QColor m_endColor; ///< Invalid for one colour.
};

} // namespace brimwatch::views
