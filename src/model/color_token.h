#pragma once

#include <QObject>

namespace brimwatch::model {
Q_NAMESPACE

/// A colour by its role. What it looks like depends on the desktop and on light or dark: platform/
/// resolves it.
///
/// There are two greens, and it is meant so: views draw health in the system's green, the panel's
/// label in a green of our own that stays legible on light and dark panels.
enum class ColorToken {
    Label, ///< Text of the first rank.
    SecondaryLabel, ///< Text of the second rank, separators between texts.
    Separator, ///< Lines and tracks.
    WindowBackground,
    ControlBackground,
    Accent,
    SystemGreen, ///< The declarative form of the healthy green.
    AdaptiveHealthyGreen, ///< The toolkit form of the healthy green: (0.08, 0.52, 0.26) on light,
                          ///< (0.20, 0.83, 0.45) on dark.
    SystemOrange,
    SystemRed,
    Blue,
    Purple,
    White,
};
Q_ENUM_NS(ColorToken)

} // namespace brimwatch::model
