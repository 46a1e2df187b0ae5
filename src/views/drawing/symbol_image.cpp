#include "views/drawing/symbol_image.h"

#include "views/models/theme.h"

namespace brimwatch::views {

static_assert(
    static_cast<int>(SymbolImage::Weight::Bold) == static_cast<int>(platform::SymbolWeight::Bold));

QImage SymbolImage::draw(qreal scale) const
{
    return theme()->symbols().image({.name = m_name,
        .pointSize = m_pointSize,
        .weight = static_cast<platform::SymbolWeight>(m_weight),
        .color = m_color,
        .devicePixelRatio = scale});
}

void SymbolImage::refresh()
{
    const QSizeF size = theme()->symbols().size(m_name, m_pointSize);
    setImplicitSize(size.width(), size.height());
    redraw();
}

} // namespace brimwatch::views
