#pragma once

#include "views/drawing/image_item.h"

#include <QColor>
#include <QFont>
#include <QString>

namespace brimwatch::views {

/// One line of plain text in which all digits are equally wide, so that the rest does not move
/// while a number changes. Elided at its end when it has less width than it needs.
///
/// Not Text with a font feature: Qt can select one since 6.7 only.
class TabularText : public brimwatch::views::ImageItem {
    // The base is qualified, or the type description that QML tools read does not find it (Qt 6.4).
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text MEMBER m_text NOTIFY changed FINAL)
    Q_PROPERTY(int pixelSize MEMBER m_pixelSize NOTIFY changed FINAL)
    Q_PROPERTY(int weight MEMBER m_weight NOTIFY changed FINAL)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY changed FINAL)

public:
    using ImageItem::ImageItem;

    /// The width that `text` takes in `font`, with all digits as wide as the widest.
    static qreal advance(const QFont &font, const QString &text);

protected:
    QImage draw(qreal scale) const override;
    void refresh() override;

private:
    QString m_text;
    int m_pixelSize = 12;
    int m_weight = QFont::Normal; ///< A QFont::Weight.
    QColor m_color = Qt::black;
    QFont m_font; ///< The theme's in that size and weight.
};

} // namespace brimwatch::views
