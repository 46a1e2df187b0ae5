#pragma once

#include "cli/status.h"

#include <QString>

namespace brimwatch::cli {

/// "#rrggbb": the label's color for that tier on dark panels.
QString colorOf(model::QuotaTier tier);

/// The color of what has no tier: that of secondary texts.
QString noColor();

/// The text as Pango markup in that color.
QString pangoColored(const QString &text, const QString &color);

/// The label as Pango markup, each number in its color; all of it grey while offline.
QString pangoTitle(const Status &status);

} // namespace brimwatch::cli
