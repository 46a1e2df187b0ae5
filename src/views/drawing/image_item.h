#pragma once

#include <QImage>
#include <QQuickItem>

namespace brimwatch::views {

class Theme;

/// An item that is one picture, drawn by its subclass when it is needed and kept until `redraw`.
///
/// Not QQuickPaintedItem: that one draws at the item's own size, and would be blurred where the
/// scene is scaled.
class ImageItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit ImageItem(QQuickItem *parent = nullptr);
    ~ImageItem() override;

protected:
    /// The picture for this item's size, its device pixel ratio set to `scale`; null for none. It
    /// is shown from the top left corner at its own size.
    virtual QImage draw(qreal scale) const = 0;
    /// A transparent picture of the item's size to draw on; null where it has none.
    QImage canvas(qreal scale) const;
    /// The theme was found or looks different now.
    virtual void themeChanged() { redraw(); }
    void redraw();
    /// Null until the item is complete, and in an engine without a theme.
    const Theme *theme() const { return m_theme; }

    void componentComplete() override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    Theme *m_theme = nullptr;
    bool m_stale = true;
};

} // namespace brimwatch::views
