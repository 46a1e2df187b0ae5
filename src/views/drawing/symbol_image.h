#pragma once

#include "platform/symbols.h"
#include "views/drawing/image_item.h"

#include <QColor>
#include <QString>

namespace brimwatch::views {

/// One of the desktop's symbols, as large as it is beside text of its point size. Nothing, without
/// extent, where the desktop has none of that name.
class SymbolImage : public brimwatch::views::ImageItem {
    // The base is qualified, or the type description that QML tools read does not find it (Qt 6.4).
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged FINAL)
    Q_PROPERTY(double pointSize READ pointSize WRITE setPointSize NOTIFY pointSizeChanged FINAL)
    Q_PROPERTY(Weight weight READ weight WRITE setWeight NOTIFY weightChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    enum class Weight { Regular, Medium, Semibold, Bold };
    Q_ENUM(Weight)

    using ImageItem::ImageItem;

    const QString &name() const { return m_name; }
    void setName(const QString &name);
    double pointSize() const { return m_pointSize; }
    void setPointSize(double size);
    Weight weight() const { return m_weight; }
    void setWeight(Weight weight);
    const QColor &color() const { return m_color; }
    void setColor(const QColor &color);

Q_SIGNALS:
    void nameChanged();
    void pointSizeChanged();
    void weightChanged();
    void colorChanged();

protected:
    QImage draw(qreal scale) const override;
    void themeChanged() override;

private:
    void resize();

    QString m_name;
    double m_pointSize = 12;
    Weight m_weight = Weight::Regular;
    QColor m_color = Qt::black;
};

} // namespace brimwatch::views
