#pragma once

#include "views/drawing/image_item.h"

#include <QColor>
#include <QFont>
#include <QString>

namespace brimwatch::views {

/// One line of plain text in which all digits are equally wide, so that a number that runs does not
/// make the rest jump. Elided at its end when it has less width than it needs.
///
/// Not Text with a font feature for this: Qt learns to ask a font for one in 6.7.
class TabularText : public brimwatch::views::ImageItem {
    // The base is qualified, or the type description that QML tools read does not find it (Qt 6.4).
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged FINAL)
    Q_PROPERTY(int pixelSize READ pixelSize WRITE setPixelSize NOTIFY fontChanged FINAL)
    Q_PROPERTY(int weight READ weight WRITE setWeight NOTIFY fontChanged FINAL)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

public:
    explicit TabularText(QQuickItem *parent = nullptr);
    ~TabularText() override;

    const QString &text() const { return m_text; }
    void setText(const QString &text);
    int pixelSize() const { return m_font.pixelSize(); }
    void setPixelSize(int size);
    /// As QFont::Weight has it, 400 is normal.
    int weight() const { return m_font.weight(); }
    void setWeight(int weight);
    const QColor &color() const { return m_color; }
    void setColor(const QColor &color);

    /// The width that `text` takes in `font`, digits all as wide as the widest.
    static qreal advance(const QFont &font, const QString &text);

Q_SIGNALS:
    void textChanged();
    void fontChanged();
    void colorChanged();

protected:
    QImage draw(qreal scale) const override;
    void themeChanged() override;

private:
    void layOut();

    QString m_text;
    QFont m_font;
    QColor m_color = Qt::black;
};

} // namespace brimwatch::views
