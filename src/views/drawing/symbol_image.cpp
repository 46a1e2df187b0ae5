#include "views/drawing/symbol_image.h"

#include "views/models/theme.h"

namespace brimwatch::views {
namespace {

platform::SymbolWeight symbolWeight(SymbolImage::Weight weight)
{
    switch (weight) {
    case SymbolImage::Weight::Medium:
        return platform::SymbolWeight::Medium;
    case SymbolImage::Weight::Semibold:
        return platform::SymbolWeight::Semibold;
    case SymbolImage::Weight::Bold:
        return platform::SymbolWeight::Bold;
    case SymbolImage::Weight::Regular:
        break;
    }
    return platform::SymbolWeight::Regular;
}

} // namespace

void SymbolImage::setName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    resize();
    Q_EMIT nameChanged();
}

void SymbolImage::setPointSize(double size)
{
    if (m_pointSize == size)
        return;
    m_pointSize = size;
    resize();
    Q_EMIT pointSizeChanged();
}

void SymbolImage::setWeight(Weight weight)
{
    if (m_weight == weight)
        return;
    m_weight = weight;
    redraw();
    Q_EMIT weightChanged();
}

void SymbolImage::setColor(const QColor &color)
{
    if (m_color == color)
        return;
    m_color = color;
    redraw();
    Q_EMIT colorChanged();
}

QImage SymbolImage::draw(qreal scale) const
{
    return theme()->symbols().image({.name = m_name,
        .pointSize = m_pointSize,
        .weight = symbolWeight(m_weight),
        .color = m_color,
        .devicePixelRatio = scale});
}

void SymbolImage::themeChanged()
{
    resize();
    ImageItem::themeChanged();
}

void SymbolImage::resize()
{
    if (theme() == nullptr)
        return;
    const QSizeF size = theme()->symbols().size(m_name, m_pointSize);
    setImplicitSize(size.width(), size.height());
    redraw();
}

} // namespace brimwatch::views
