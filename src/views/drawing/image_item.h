#pragma once

#include <QImage>
#include <QQuickItem>

namespace brimwatch::views {

class Theme;

/// An item that is one picture, drawn by its subclass when it is needed and kept until `redraw`.
/// The properties of a subclass are MEMBERs with the NOTIFY signal `changed`, upon which the item
/// is redrawn.
///
/// Not QQuickPaintedItem: that one draws at the item's own size, and would be blurred where the
/// scene is scaled.
class ImageItem : public QQuickItem {
    Q_OBJECT
    QML_ANONYMOUS

public:
    explicit ImageItem(QQuickItem *parent = nullptr);

Q_SIGNALS:
    /// A property has changed.
    void changed();

protected:
    /// The picture for this item's size, its device pixel ratio set to `scale`; null for none. It
    /// is shown from the top left corner at its own size.
    virtual QImage draw(qreal scale) const = 0;
    /// A transparent picture of the item's size to draw on; null where it has none.
    QImage canvas(qreal scale) const;
    /// Called when the item is complete, and when a property or the theme has changed. Subclasses
    /// whose picture decides their size override it.
    virtual void refresh() { redraw(); }
    void redraw();
    /// Null until the item is complete, and in an engine without a theme; never in `refresh`.
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
