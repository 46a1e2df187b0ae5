#include "platform/linux/appearance/system_colors.h"

namespace brimwatch::platform {
namespace {

struct Pair {
    Rgba light;
    Rgba dark;
};

constexpr Rgba rgb(int value, double alpha = 1)
{
    constexpr double full = 255;
    return {.red = ((value >> 16) & 0xff) / full,
        .green = ((value >> 8) & 0xff) / full,
        .blue = (value & 0xff) / full,
        .alpha = alpha};
}

constexpr Pair pairOf(model::ColorToken token)
{
    using model::ColorToken;
    switch (token) {
    case ColorToken::Label:
        return {.light = rgb(0x1c1c1e), .dark = rgb(0xf2f2f4)};
    case ColorToken::SecondaryLabel:
        return {.light = rgb(0x64646a), .dark = rgb(0xa9a9b0)};
    case ColorToken::Separator:
        return {.light = rgb(0x3c3c43, 0.45), .dark = rgb(0xebebf5, 0.4)};
    case ColorToken::WindowBackground:
        return {.light = rgb(0xf3f3f5), .dark = rgb(0x2a2a2d)};
    case ColorToken::ControlBackground:
        return {.light = rgb(0xffffff), .dark = rgb(0x1d1d1f)};
    case ColorToken::Accent:
    case ColorToken::Blue:
        return {.light = rgb(0x0a6bdb), .dark = rgb(0x4299ff)};
    case ColorToken::SystemGreen:
        return {.light = rgb(0x167a34), .dark = rgb(0x32d15c)};
    case ColorToken::AdaptiveHealthyGreen:
        return {.light = {.red = 0.08, .green = 0.52, .blue = 0.26, .alpha = 1},
            .dark = {.red = 0.20, .green = 0.83, .blue = 0.45, .alpha = 1}};
    case ColorToken::SystemOrange:
        return {.light = rgb(0xa95400), .dark = rgb(0xff9f2e)};
    case ColorToken::SystemRed:
        return {.light = rgb(0xcf2b26), .dark = rgb(0xff655b)};
    case ColorToken::Purple:
        return {.light = rgb(0xa546d6), .dark = rgb(0xbf5af2)};
    case ColorToken::White:
        break;
    }
    return {.light = rgb(0xffffff), .dark = rgb(0xffffff)};
}

} // namespace

Contrast contrastOf(const Appearance &appearance)
{
    return appearance.raisesContrast() ? Contrast::Higher : Contrast::Usual;
}

Rgba systemColor(model::ColorToken token, Background background, Contrast contrast)
{
    const bool isFaint
        = token == model::ColorToken::SecondaryLabel || token == model::ColorToken::Separator;
    const Pair pair
        = pairOf(contrast == Contrast::Higher && isFaint ? model::ColorToken::Label : token);
    return background == Background::Dark ? pair.dark : pair.light;
}

bool isBright(const Rgba &color)
{
    // Rec. 709 weights.
    return 0.2126 * color.red + 0.7152 * color.green + 0.0722 * color.blue > 0.5;
}

} // namespace brimwatch::platform
