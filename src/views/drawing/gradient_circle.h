#pragma once

#include "views/drawing/image_item.h"

#include <QColor>

namespace brimwatch::views {

/// A circle filled from the top left to the bottom right. Rectangle knows gradients along the axes
/// only.
class GradientCircle : public brimwatch::views::ImageItem {
    // The base is qualified, or the type description that QML tools read does not find it (Qt 6.4).
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor start READ start WRITE setStart NOTIFY startChanged FINAL)
    Q_PROPERTY(QColor end READ end WRITE setEnd NOTIFY endChanged FINAL)

public:
    using ImageItem::ImageItem;

    const QColor &start() const { return m_start; }
    void setStart(const QColor &color);
    const QColor &end() const { return m_end; }
    void setEnd(const QColor &color);

Q_SIGNALS:
    void startChanged();
    void endChanged();

protected:
    QImage draw(qreal scale) const override;

private:
    QColor m_start;
    QColor m_end;
};

} // namespace brimwatch::views
