#pragma once

#include <QMargins>
#include <QQuickItem>

namespace brimwatch::views {

/// The shadow that a window with round corners throws, around this item, which is as large as the
/// window seems. Nothing is drawn behind the item itself.
class PopoverShadow : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal radius MEMBER m_radius WRITE setRadius NOTIFY changed FINAL)
    Q_PROPERTY(qreal strength MEMBER m_strength WRITE setStrength NOTIFY changed FINAL)

public:
    /// How far it reaches beyond the item: as far on all sides, but it has moved down a little.
    static constexpr int blur = 14;
    static constexpr int drop = 4;
    static constexpr QMargins extent{blur, blur - drop, blur, blur + drop};

    explicit PopoverShadow(QQuickItem *parent = nullptr);
    ~PopoverShadow() override;

    /// Of the item's corners.
    void setRadius(qreal radius);
    /// Its opacity where it is darkest, 0 to 1.
    void setStrength(qreal strength);

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
