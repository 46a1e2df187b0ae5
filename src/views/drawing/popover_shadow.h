#pragma once

#include <QMargins>
#include <QQuickItem>

namespace brimwatch::views {

/// The shadow of a window with round corners, drawn around this item, which fills the window but
/// for its shadow. Nothing is drawn behind the item itself.
class PopoverShadow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Of the item's corners.
    Q_PROPERTY(qreal radius MEMBER m_radius NOTIFY changed FINAL)
    /// Its opacity where it is darkest, 0 to 1.
    Q_PROPERTY(qreal strength MEMBER m_strength NOTIFY changed FINAL)

public:
    /// How far it extends beyond the item: equally on all sides, but moved down by `drop`.
    static constexpr int blur = 14;
    static constexpr int drop = 4;
    static constexpr QMargins extent{blur, blur - drop, blur, blur + drop};

    explicit PopoverShadow(QQuickItem *parent = nullptr);

Q_SIGNALS:
    void changed();

protected:
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;

private:
    void redraw();

    qreal m_radius = 0;
    qreal m_strength = 0;
    bool m_stale = true;
};

} // namespace brimwatch::views
