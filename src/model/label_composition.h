#pragma once

#include "model/badge_composition.h"
#include "model/color_token.h"
#include "model/toolbar_stat_items.h"

#include <QList>
#include <QString>

#include <functional>
#include <optional>
#include <variant>

namespace brimwatch::model {

enum class FontWeight { Medium, Semibold };

/// A symbol in the label. Sizes are in points, device-independent pixels on Linux.
struct LabelSymbol {
    QString name;
    double pointSize = 0;
    FontWeight weight = FontWeight::Semibold;

    bool operator==(const LabelSymbol &) const = default;
};

/// The image before the text: a symbol in a transparent frame, in the color of the panel's texts.
struct LabelImage {
    LabelSymbol symbol;
    QString accessibleName;
    double paddingLeft = 0;
    double paddingRight = 0;
    double paddingVertical = 0; ///< Above and below, each.

    bool operator==(const LabelImage &) const = default;
};

enum class ImagePosition { Leading, Only };

/// A run of text in one color, in the label's font. Without a color it is a gap.
struct TextRun {
    QString text;
    std::optional<ColorToken> color;

    bool operator==(const TextRun &) const = default;
};

/// A symbol within the text, centered at half the cap height of the label's font, in the color of
/// the panel's texts.
struct SymbolRun {
    LabelSymbol symbol;
    QString text = {}; ///< What stands for it where there are only texts: "✦".

    bool operator==(const SymbolRun &) const = default;
};

using LabelRun = std::variant<TextRun, SymbolRun>;

/// The label, independent of what draws it. Texts are in the interface font at 12 points, medium,
/// with digits of one width.
struct LabelComposition {
    static constexpr double fontSize = 12;

    std::optional<LabelImage> image;
    ImagePosition imagePosition = ImagePosition::Only; ///< Meaningless without an image.
    QList<LabelRun> title;
    /// The label for panels with room for a square only.
    BadgeComposition badge;

    /// The title's texts, a symbol as the object replacement character U+FFFC.
    QString plainTitle() const;
    /// The title's texts, and of its symbols those that stand for them.
    QString titleInTexts() const;

    bool operator==(const LabelComposition &) const = default;
};

/// Everything that determines the label.
struct LabelInput {
    QList<ToolbarStatItem> items;
    bool showPercentage = true;
    bool showIcon = true;
    bool colored = true;
    QString labelStyle; ///< The stored text. Only "icon" draws models as symbols.
    ColorToken tint = ColorToken::SecondaryLabel; ///< For the icon of the declarative form.
};

/// Whether the desktop has a symbol of that name.
using SymbolExists = std::function<bool(const QString &name)>;

/// The label of the status item. Without items it is the sparkle alone, whatever the settings say.
/// On a desktop without the sparkle symbol the image is that of
/// `previous`; without a model's symbol the item shows its text.
LabelComposition composeLabel(
    const LabelInput &input, const LabelComposition &previous, const SymbolExists &exists);

/// One item of the declarative label.
struct LabelViewItem {
    QString symbolName = {}; ///< Empty when the text names the model.
    QString text = {};
    ColorToken color = ColorToken::Label;

    bool operator==(const LabelViewItem &) const = default;
};

/// The same label for a view: an optional sparkle, then the items with a dot between them.
struct LabelViewComposition {
    bool showIcon = true;
    ColorToken iconColor = ColorToken::Label;
    QList<LabelViewItem> items = {};

    bool operator==(const LabelViewComposition &) const = default;
};

LabelViewComposition composeLabelView(const LabelInput &input);

} // namespace brimwatch::model
