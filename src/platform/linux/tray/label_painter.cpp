#include "platform/linux/tray/label_painter.h"

#include "platform/qt_color.h"
#include "platform/symbols.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;
using model::LabelComposition;

namespace {

// Room at an end where no image brings its own.
constexpr double endMargin = 4;
// The height that text of 12 needs to stand clear of both edges: a lower label is scaled down.
constexpr double comfortableHeight = 17;

SymbolWeight toWeight(model::FontWeight weight)
{
    return weight == model::FontWeight::Semibold ? SymbolWeight::Semibold : SymbolWeight::Medium;
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// Lays a composition out, and paints it when given a painter.
class Layout {
public:
    Layout(const SymbolSource &symbols, const LabelLook &look)
        : m_symbols(symbols)
        , m_look(look)
        , m_scale(std::min(look.scale, look.height / comfortableHeight))
        , m_font(font())
        , m_metrics(m_font)
    {
        for (char16_t digit = u'0'; digit <= u'9'; ++digit)
            m_digitAdvance = std::max(m_digitAdvance, m_metrics.horizontalAdvance(QChar(digit)));
    }

    double run(const LabelComposition &label, QPainter *painter)
    {
        m_painter = painter;
        m_x = 0;
        if (painter != nullptr)
            painter->setFont(m_font);
        if (label.image)
            addImage(*label.image);
        else
            m_x += endMargin * m_scale;
        for (const auto &run : label.title)
            std::visit([this](const auto &part) { add(part); }, run);
        if (!label.title.isEmpty())
            m_x += endMargin * m_scale;
        return m_x;
    }

    void drawCentred(const LabelComposition &label, QPainter *painter, double side)
    {
        m_painter = painter;
        const QString name = label.image ? label.image->symbol.name : u"sparkles"_s;
        const double pointSize = side * 0.8;
        const QSizeF size = m_symbols.size(name, pointSize);
        m_x = (side - size.width()) / 2;
        drawSymbol(name, pointSize, SymbolWeight::Semibold);
    }

    /// One number in the middle, or two on two lines.
    void drawNumbers(const QList<model::BadgeNumber> &numbers, QPainter *painter, double side) const
    {
        const double lineHeight = side / static_cast<double>(numbers.size());
        double top = 0;
        for (const auto &number : numbers) {
            // A line of its own would look lost at its full height; two leave each other a pixel.
            const double height
                = numbers.size() == 1 ? std::floor(side * 0.6) : std::floor(lineHeight - side / 16);
            drawNumber(number, painter, QRectF(0, top + (lineHeight - height) / 2, side, height));
            top += lineHeight;
        }
    }

private:
    /// As high as `box`, and no wider.
    void drawNumber(const model::BadgeNumber &number, QPainter *painter, const QRectF &box) const
    {
        QFont font = m_font;
        font.setWeight(QFont::Bold);
        font.setPixelSize(
            std::max(1, static_cast<int>(std::lround(box.height() / relativeCapHeight(font)))));
        const QFontMetricsF metrics(font);
        const double width = metrics.horizontalAdvance(number.text);
        const double squeezed = std::min(1.0, box.width() / width);
        QColor ink = color(number.color);
        if (number.isCritical) {
            // Light on dark turned round, so that it shows without colours.
            painter->setPen(Qt::NoPen);
            painter->setBrush(ink);
            const double radius = box.height() / 5;
            painter->drawRoundedRect(box.adjusted(0, -0.5, 0, 0.5), radius, radius);
            ink = color(model::ColorToken::WindowBackground);
        }
        painter->save();
        painter->setFont(font);
        painter->setPen(ink);
        painter->translate(std::round(box.center().x() - width * squeezed / 2),
            std::round(box.center().y() + metrics.capHeight() / 2));
        painter->scale(squeezed, 1);
        painter->drawText(QPointF(0, 0), number.text);
        painter->restore();
    }

    /// The height of capitals and digits in a font, for each unit of its size.
    static double relativeCapHeight(QFont font)
    {
        // What most fonts have, for a font that does not tell its own.
        constexpr double usual = 0.73;
        // A large font, because metrics are rounded to whole pixels.
        constexpr int size = 100;
        font.setPixelSize(size);
        const double height = QFontMetricsF(font).capHeight() / size;
        return height > 0 ? height : usual;
    }

    QColor color(model::ColorToken token) const
    {
        return toColor(systemColor(token, m_look.background, m_look.contrast));
    }

    QFont font() const
    {
        QFont font;
        if (!m_look.fontFamily.isEmpty())
            font.setFamily(m_look.fontFamily);
        font.setPixelSize(
            std::max(1, static_cast<int>(std::lround(LabelComposition::fontSize * m_scale))));
        font.setWeight(QFont::Medium);
        // Subpixel colours would fringe on the transparent background.
        font.setStyleStrategy(QFont::NoSubpixelAntialias);
        return font;
    }

    void addImage(const model::LabelImage &image)
    {
        m_x += image.paddingLeft * m_scale;
        drawSymbol(
            image.symbol.name, image.symbol.pointSize * m_scale, toWeight(image.symbol.weight));
        m_x += image.paddingRight * m_scale;
    }

    void add(const model::SymbolRun &run)
    {
        drawSymbol(run.symbol.name, run.symbol.pointSize * m_scale, toWeight(run.symbol.weight));
    }

    void add(const model::TextRun &run)
    {
        if (m_painter != nullptr)
            m_painter->setPen(color(run.color.value_or(model::ColorToken::Label)));
        qsizetype at = 0;
        while (at < run.text.size()) {
            if (isDigit(run.text[at])) {
                const QString digit = run.text.mid(at, 1);
                drawText(digit, (m_digitAdvance - m_metrics.horizontalAdvance(digit)) / 2,
                    m_digitAdvance);
                ++at;
                continue;
            }
            qsizetype end = at;
            while (end < run.text.size() && !isDigit(run.text[end]))
                ++end;
            const QString part = run.text.mid(at, end - at);
            drawText(part, 0, m_metrics.horizontalAdvance(part));
            at = end;
        }
    }

    void drawText(const QString &text, double inset, double advance)
    {
        if (m_painter != nullptr) {
            const double ratio = m_look.devicePixelRatio;
            const double baseline
                = std::round((m_look.height + m_metrics.capHeight()) / 2 * ratio) / ratio;
            m_painter->drawText(QPointF(m_x + inset, baseline), text);
        }
        m_x += advance;
    }

    void drawSymbol(const QString &name, double pointSize, SymbolWeight weight)
    {
        const QSizeF size = m_symbols.size(name, pointSize);
        if (m_painter != nullptr && !size.isEmpty()) {
            const QImage image = m_symbols.image({.name = name,
                .pointSize = pointSize,
                .weight = weight,
                .color = color(model::ColorToken::Label),
                .devicePixelRatio = m_look.devicePixelRatio});
            // On whole pixels, or it blurs.
            const double ratio = m_look.devicePixelRatio;
            const double y = std::round((m_look.height - size.height()) / 2 * ratio) / ratio;
            m_painter->drawImage(QPointF(std::round(m_x * ratio) / ratio, y), image);
        }
        m_x += size.width();
    }

    const SymbolSource &m_symbols;
    const LabelLook &m_look;
    double m_scale;
    QFont m_font;
    QFontMetricsF m_metrics;
    double m_digitAdvance = 0;
    QPainter *m_painter = nullptr;
    double m_x = 0;
};

QImage blank(QSize size, double ratio)
{
    QImage image(QSize(static_cast<int>(std::ceil(size.width() * ratio)),
                     static_cast<int>(std::ceil(size.height() * ratio))),
        QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

LabelPainter::LabelPainter(const SymbolSource &symbols)
    : m_symbols(symbols)
{
}

QSize LabelPainter::size(const LabelComposition &label, const LabelLook &look) const
{
    return {static_cast<int>(std::ceil(Layout(m_symbols, look).run(label, nullptr))), look.height};
}

QImage LabelPainter::image(const LabelComposition &label, const LabelLook &look) const
{
    QImage image = blank(size(label, look), look.devicePixelRatio);
    QPainter painter(&image);
    Layout(m_symbols, look).run(label, &painter);
    return image;
}

QImage LabelPainter::squareImage(
    const LabelComposition &label, const LabelLook &look, int side) const
{
    LabelLook square = look;
    square.height = side;
    QImage image = blank(QSize(side, side), look.devicePixelRatio);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const Layout layout(m_symbols, square);
    if (label.badge.numbers.isEmpty())
        Layout(m_symbols, square).drawCentred(label, &painter, side);
    else
        layout.drawNumbers(label.badge.numbers, &painter, side);
    return image;
}

} // namespace brimwatch::platform
