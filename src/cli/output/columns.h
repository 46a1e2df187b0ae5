#pragma once

#include "cli/output/forms.h"
#include "model/quota_records.h"

#include <QLatin1StringView>
#include <QString>

namespace brimwatch::cli {

// What texts for a terminal are made from.

inline constexpr QLatin1StringView escapeBold("\x1b[1m");
inline constexpr QLatin1StringView escapeFaint("\x1b[2m");
inline constexpr QLatin1StringView escapeEnd("\x1b[0m");

/// The escape sequence that begins the color of a tier.
QString escapeOf(model::QuotaTier tier);

/// Columns that a terminal takes for it.
int columnsOf(const QString &text);

/// With blanks behind it, up to so many columns.
QString padded(const QString &text, int columns);

/// The beginning of `text` that fits, with "…" for what does not.
QString fitted(const QString &text, int columns);

/// A bar of so many columns, filled to that percentage.
QString barOf(double percentage, int columns, TextLook::Bars bars);

} // namespace brimwatch::cli
