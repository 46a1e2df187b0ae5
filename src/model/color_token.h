#pragma once

#include <QObject>

namespace brimwatch::model {
Q_NAMESPACE

/// A color by its role. platform/ resolves it for the desktop, light or dark.
///
/// Deliberate: there are two greens. Views draw health in the system's green, the label in a green
/// of our own that is legible on light and dark panels.
enum class ColorToken {
    Label, ///< Primary text.
    SecondaryLabel, ///< Secondary text, separators between texts.
    Separator, ///< Lines and tracks.
    WindowBackground,
    ControlBackground,
    Accent,
    SystemGreen, ///< Healthy, in views.
    AdaptiveHealthyGreen, ///< Healthy, in the label: (0.08, 0.52, 0.26) on light,
                          ///< (0.20, 0.83, 0.45) on dark.
    SystemOrange,
    SystemRed,
    Blue,
    Purple,
    White,
};
Q_ENUM_NS(ColorToken)

} // namespace brimwatch::model
