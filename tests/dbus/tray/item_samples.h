#pragma once

#include "model/label_composition.h"
#include "platform/linux/appearance/system_colors.h"
#include "platform/linux/tray/presentation.h"
#include "platform/qt_color.h"

#include <QColor>
#include <QImage>
#include <QString>

#include <cmath>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

/// "5h: 80% · W: 55%" behind a sparkle, or with other texts.
inline platform::PresentedItem sampleItem(
    const QString &first = u"5h: 80%"_s, const QString &second = u"W: 55%"_s)
{
    platform::PresentedItem item;
    item.label.image = model::LabelImage{.symbol = {.name = u"sparkles"_s, .pointSize = 13},
        .accessibleName = u"Gemini"_s,
        .paddingLeft = 2,
        .paddingRight = 4,
        .paddingVertical = 2};
    item.label.imagePosition = model::ImagePosition::Leading;
    item.label.title
        = {model::TextRun{.text = first, .color = model::ColorToken::AdaptiveHealthyGreen},
            model::TextRun{.text = u" · "_s, .color = model::ColorToken::SecondaryLabel},
            model::TextRun{.text = second, .color = model::ColorToken::SystemOrange}};
    item.description = {.title = first + u" · "_s + second, .lines = {first, second}};
    return item;
}

/// How many opaque pixels have the colour of that token on that background.
inline int countPixels(
    const QImage &image, model::ColorToken token, platform::Background background)
{
    const QColor wanted = platform::toColor(platform::systemColor(token, background));
    constexpr int tolerance = 3;
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.alpha() == 255 && std::abs(color.red() - wanted.red()) <= tolerance
                && std::abs(color.green() - wanted.green()) <= tolerance
                && std::abs(color.blue() - wanted.blue()) <= tolerance)
                ++count;
        }
    }
    return count;
}

} // namespace brimwatch::test
