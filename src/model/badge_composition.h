#pragma once

#include "model/color_token.h"
#include "model/toolbar_stat_items.h"

#include <QList>
#include <QString>

namespace brimwatch::model {

/// One number of a badge.
struct BadgeNumber {
    QString text; ///< Percent left, whole: "42", "100".
    ColorToken color = ColorToken::Label;
    /// Drawn differently from the others even without colors.
    bool isCritical = false;

    bool operator==(const BadgeNumber &) const = default;
};

/// The label within a square: the two most important numbers, or, without any, the label's symbol.
struct BadgeComposition {
    QList<BadgeNumber> numbers; ///< At most two, the upper one first.

    bool operator==(const BadgeComposition &) const = default;
};

enum class BadgeColors { Health, Plain };

/// The lowest five-hour bucket above the lowest weekly one, of equals the first. A bucket with
/// another window, or without one, counts as a five-hour one.
BadgeComposition composeBadge(const QList<ToolbarStatItem> &items, BadgeColors colors);

} // namespace brimwatch::model
