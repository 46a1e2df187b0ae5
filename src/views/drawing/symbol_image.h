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
    Q_PROPERTY(QString name MEMBER m_name NOTIFY changed FINAL)
    Q_PROPERTY(double pointSize MEMBER m_pointSize NOTIFY changed FINAL)
    Q_PROPERTY(Weight weight MEMBER m_weight NOTIFY changed FINAL)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed FINAL)

public:
    /// platform::SymbolWeight for QML, value for value.
    enum class Weight { Regular, Medium, Semibold, Bold };
    Q_ENUM(Weight)

    using ImageItem::ImageItem;

protected:
    QImage draw(qreal scale) const override;
    void refresh() override;

private:
    QString m_name;
    double m_pointSize = 12;
    Weight m_weight = Weight::Regular;
    QColor m_color = Qt::black;
};

} // namespace brimwatch::views
