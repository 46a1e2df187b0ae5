#pragma once

#include <QString>

#include <array>

namespace brimwatch::model {

/// The model families that the label can show, in its order.
enum class ToolbarModel { gemini, argon, claude };

inline constexpr std::array allToolbarModels{
    ToolbarModel::gemini, ToolbarModel::argon, ToolbarModel::claude};

QString rawValue(ToolbarModel model); ///< "gemini"; also the identity in lists.
QString displayName(ToolbarModel model); ///< "Gemini"
QString shortAbbreviation(ToolbarModel model); ///< "G"
QString mediumAbbreviation(ToolbarModel model); ///< "Gem"
QString iconSymbol(ToolbarModel model); ///< A text glyph: "✦"
QString sfSymbolName(ToolbarModel model); ///< A symbol's name: "sparkles"

/// How each item of the label names its model.
enum class ToolbarLabelStyle { letter, icon, shortName };

inline constexpr std::array allToolbarLabelStyles{
    ToolbarLabelStyle::letter, ToolbarLabelStyle::icon, ToolbarLabelStyle::shortName};

QString rawValue(ToolbarLabelStyle style); ///< What settings keep: "shortName"
QString displayName(ToolbarLabelStyle style); ///< What a picker shows: "Letters (G, A, C)"

/// The style of that raw value (case counts); anything else is `letter`.
ToolbarLabelStyle toolbarLabelStyle(const QString &rawValue);

} // namespace brimwatch::model
