#pragma once

#include "views/drawing/image_item.h"

#include <QColor>

namespace brimwatch::views {

/// A filled shape with half-round ends; as wide as it is high it is a circle.
///
/// Not Rectangle with a radius: the software renderer draws that one's corners before the scene is
/// scaled, which frays small round shapes.
class Capsule : public brimwatch::views::ImageItem {
    // The base is qualified, or the type description that QML tools read does not find it (Qt 6.4).
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    using ImageItem::ImageItem;

    const QColor &color() const { return m_color; }
    void setColor(const QColor &color);

Q_SIGNALS:
    void colorChanged();

protected:
    QImage draw(qreal scale) const override;

private:
    QColor m_color = Qt::black;
};

} // namespace brimwatch::views
