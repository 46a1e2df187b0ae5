/// Draws every symbol in every size, weight and appearance into one picture, to review a changed
/// drawing: `brimwatch-symbol-sheet OUT.png [ZOOM]`. With a zoom each pixel becomes an unsmoothed
/// block of ZOOM by ZOOM.

#include "platform/linux/symbols/svg_symbols.h"

#include <QFont>
#include <QGuiApplication>
#include <QPainter>

#include <array>
#include <cstdio>

using namespace brimwatch::platform;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array sizes{10.0, 12.0, 13.0, 36.0};
constexpr std::array weights{
    SymbolWeight::Regular, SymbolWeight::Medium, SymbolWeight::Semibold, SymbolWeight::Bold};
constexpr std::array fontWeights{QFont::Normal, QFont::Medium, QFont::DemiBold, QFont::Bold};
constexpr std::array ratios{1, 2};
constexpr int rowHeight = 88;
constexpr int columnWidth = 800;

struct Appearance {
    QColor background;
    QColor label;
};

/// One symbol in one weight: its sizes from small to large at 1x, then at 2x, each behind a
/// capital and a small letter of the text beside it.
void drawCell(QPainter &painter, const SvgSymbols &symbols, const QString &name, size_t weight,
    const Appearance &appearance)
{
    int x = 12;
    painter.setPen(appearance.label);
    for (const int ratio : ratios) {
        for (const double size : sizes) {
            QFont font(u"sans-serif"_s);
            font.setPixelSize(static_cast<int>(size * ratio));
            font.setWeight(fontWeights.at(weight));
            painter.setFont(font);
            const QFontMetrics metrics(font);
            const int capHeight = metrics.capHeight();
            const int baseLine = (rowHeight + capHeight) / 2;
            painter.drawText(x, baseLine, u"Hg"_s);
            x += metrics.horizontalAdvance(u"Hg"_s) + (2 * ratio);

            QImage image = symbols.image({.name = name,
                .pointSize = size,
                .weight = weights.at(weight),
                .color = appearance.label,
                .devicePixelRatio = static_cast<double>(ratio)});
            image.setDevicePixelRatio(1);
            painter.drawImage(x, baseLine - ((capHeight + image.height()) / 2), image);
            x += image.width() + 14;
        }
        x += 24;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    bool zoomGiven = true;
    const int zoom = arguments.size() > 2 ? arguments.at(2).toInt(&zoomGiven) : 1;
    if (arguments.size() < 2 || arguments.size() > 3 || !zoomGiven || zoom < 1 || zoom > 8) {
        std::fputs("usage: brimwatch-symbol-sheet OUT.png [ZOOM from 1 to 8]\n", stderr);
        return 2;
    }

    const std::array appearances{
        Appearance{.background = QColor(0xf6f6f6), .label = QColor(0x1c1c1c)},
        Appearance{.background = QColor(0x242424), .label = QColor(0xeeeeee)}};
    const SvgSymbols symbols;
    const QStringList names = SvgSymbols::names();
    const int halfHeight = static_cast<int>(names.size()) * rowHeight;
    QImage sheet(static_cast<int>(weights.size()) * columnWidth,
        static_cast<int>(appearances.size()) * halfHeight, QImage::Format_RGB32);
    QPainter painter(&sheet);
    int top = 0;
    for (const Appearance &appearance : appearances) {
        painter.resetTransform();
        painter.fillRect(0, top, sheet.width(), halfHeight, appearance.background);
        for (const QString &name : names) {
            for (size_t weight = 0; weight < weights.size(); ++weight) {
                painter.resetTransform();
                painter.translate(static_cast<int>(weight) * columnWidth, top);
                drawCell(painter, symbols, name, weight, appearance);
            }
            top += rowHeight;
        }
    }
    painter.end();

    if (zoom > 1)
        sheet = sheet.scaled(sheet.size() * zoom, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    if (!sheet.save(arguments.at(1))) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(arguments.at(1)));
        return 1;
    }
    return 0;
}
