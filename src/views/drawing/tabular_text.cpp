#include "views/drawing/tabular_text.h"

#include "views/models/theme.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace brimwatch::views {
namespace {

constexpr QChar ellipsis(0x2026);

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

qreal widestDigit(const QFontMetricsF &metrics)
{
    qreal widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

/// Calls `place` with the left end of each piece of the text: a run without digits is one piece,
/// and so is each digit, in the middle of its cell. Returns the right end of the last one.
template <typename Place>
qreal forEachPiece(const QFontMetricsF &metrics, const QString &text, Place place)
{
    const qreal cell = widestDigit(metrics);
    qreal x = 0;
    qsizetype begin = 0;
    while (begin < text.size()) {
        if (isDigit(text.at(begin))) {
            const QString digit = text.mid(begin, 1);
            place(x + (cell - metrics.horizontalAdvance(digit)) / 2, digit);
            x += cell;
            ++begin;
            continue;
        }
        qsizetype end = begin;
        while (end < text.size() && !isDigit(text.at(end)))
            ++end;
        const QString run = text.mid(begin, end - begin);
        place(x, run);
        x += metrics.horizontalAdvance(run);
        begin += run.size();
    }
    return x;
}

qreal width(const QFontMetricsF &metrics, const QString &text)
{
    return forEachPiece(metrics, text, [](qreal, const QString &) { });
}

QString elided(const QFontMetricsF &metrics, QString text, qreal available)
{
    // Half a pixel of tolerance: the layout rounds the item's width.
    if (width(metrics, text) <= available + 0.5)
        return text;
    while (!text.isEmpty()) {
        text.chop(1);
        if (width(metrics, text + ellipsis) <= available)
            break;
    }
    return text + ellipsis;
}

} // namespace

qreal TabularText::advance(const QFont &font, const QString &text)
{
    return brimwatch::views::width(QFontMetricsF(font), text);
}

QImage TabularText::draw(qreal scale) const
{
    QImage image = canvas(scale);
    if (image.isNull())
        return image;
    QPainter painter(&image);
    painter.setFont(m_font);
    painter.setPen(m_color);
    const QFontMetricsF metrics(m_font);
    forEachPiece(metrics, elided(metrics, m_text, width()),
        [&painter, &metrics](qreal x, const QString &piece) {
            painter.drawText(QPointF(x, metrics.ascent()), piece);
        });
    return image;
}

void TabularText::refresh()
{
    m_font.setFamily(theme()->fontFamily());
    m_font.setPixelSize(m_pixelSize);
    m_font.setWeight(static_cast<QFont::Weight>(m_weight));
    const QFontMetricsF metrics(m_font);
    setImplicitSize(
        std::ceil(brimwatch::views::width(metrics, m_text)), std::ceil(metrics.height()));
    setBaselineOffset(metrics.ascent());
    redraw();
}

} // namespace brimwatch::views
