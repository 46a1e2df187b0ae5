#include "platform/macos/mac_appearance.h"

namespace brimwatch::platform {

NativeColor nativeColor(model::ColorToken token)
{
    using model::ColorToken;
    switch (token) {
    case ColorToken::Label:
        return NativeColor::Label;
    case ColorToken::SecondaryLabel:
        return NativeColor::SecondaryLabel;
    case ColorToken::Separator:
        return NativeColor::Separator;
    case ColorToken::WindowBackground:
        return NativeColor::WindowBackground;
    case ColorToken::ControlBackground:
        return NativeColor::ControlBackground;
    case ColorToken::Accent:
        return NativeColor::Accent;
    case ColorToken::SystemGreen:
        return NativeColor::SystemGreen;
    case ColorToken::AdaptiveHealthyGreen:
        return NativeColor::AdaptiveHealthyGreen;
    case ColorToken::SystemOrange:
        return NativeColor::SystemOrange;
    case ColorToken::SystemRed:
        return NativeColor::SystemRed;
    case ColorToken::Blue:
        return NativeColor::Blue;
    case ColorToken::Purple:
        return NativeColor::Purple;
    case ColorToken::White:
        return NativeColor::White;
    }
    return NativeColor::Label;
}

MacAppearance::MacAppearance(QObject *parent)
    : Appearance(parent)
    , m_native([this] { Q_EMIT changed(); })
{
}

bool MacAppearance::isDark() const
{
    return m_native.isDark();
}

Rgba MacAppearance::color(model::ColorToken token) const
{
    const NativeRgba color = m_native.color(nativeColor(token));
    return {.red = color.red, .green = color.green, .blue = color.blue, .alpha = color.alpha};
}

bool MacAppearance::reducesMotion() const
{
    return m_native.reducesMotion();
}

} // namespace brimwatch::platform
