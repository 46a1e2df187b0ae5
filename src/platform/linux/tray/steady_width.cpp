#include "platform/linux/tray/steady_width.h"

#include <QRegularExpression>

#include <algorithm>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

QString shapeOf(const model::LabelComposition &label)
{
    static const QRegularExpression numbers(u"[0-9]+%"_s);
    QString shape = label.plainTitle().replace(numbers, u"%"_s);
    // An image makes a label as wide as another text would.
    return label.image ? shape.prepend(label.image->symbol.name + u'\n') : shape;
}

} // namespace

int SteadyWidth::of(
    const model::LabelComposition &label, const LabelPainter &painter, const LabelLook &look)
{
    const QString shape = shapeOf(label);
    if (shape != m_shape || !(look == m_look))
        m_widest = 0;
    m_shape = shape;
    m_look = look;
    m_widest = std::max(m_widest, painter.size(label, look).width());
    return m_widest;
}

} // namespace brimwatch::platform
