#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace brimwatch::platform {

/// The system's colours by their role, and one of our own. What they look like follows light and
/// dark by itself.
enum class NativeColor {
    Label,
    SecondaryLabel,
    Separator,
    WindowBackground,
    ControlBackground,
    Accent,
    SystemGreen,
    AdaptiveHealthyGreen, ///< (0.20, 0.83, 0.45) on dark, else (0.08, 0.52, 0.26).
    SystemOrange,
    SystemRed,
    Blue,
    Purple,
    White,
};

enum class NativeWeight { Regular, Medium, Semibold, Bold };

/// A system symbol. Sizes are in points.
struct NativeSymbol {
    std::string name; ///< "sparkles"
    double pointSize = 0;
    NativeWeight weight = NativeWeight::Regular;

    bool operator==(const NativeSymbol &) const = default;
};

/// The image before the text: a symbol in a transparent frame.
struct NativeLabelImage {
    NativeSymbol symbol;
    std::string accessibilityDescription;
    double paddingLeft = 0;
    double paddingRight = 0;
    double paddingVertical = 0; ///< Above and below, each.

    bool operator==(const NativeLabelImage &) const = default;
};

enum class NativeImagePosition { Leading, Only };

/// A run of text, UTF-8. Without a colour it has no attributes at all: it is a gap.
struct NativeTextRun {
    std::string text;
    std::optional<NativeColor> color;

    bool operator==(const NativeTextRun &) const = default;
};

/// A symbol within the text, its middle at half the cap height of the label's font.
struct NativeSymbolRun {
    NativeSymbol symbol;

    bool operator==(const NativeSymbolRun &) const = default;
};

using NativeRun = std::variant<NativeTextRun, NativeSymbolRun>;

/// What the menu bar shows. All text is in the system font with digits of one width, medium.
struct NativeLabel {
    std::optional<NativeLabelImage> image;
    NativeImagePosition imagePosition = NativeImagePosition::Only; ///< Not used without image.
    double fontSize = 12; ///< In points.
    std::vector<NativeRun> title;

    bool operator==(const NativeLabel &) const = default;
};

} // namespace brimwatch::platform
