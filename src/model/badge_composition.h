#pragma once

#include "model/color_token.h"
#include "model/toolbar_stat_items.h"

#include <QList>
#include <QString>

namespace brimwatch::model {

/// One number of a badge.
struct BadgeNumber {
    QString text; ///< What is left, in whole percent: "42", "100".
    ColorToken color = ColorToken::Label;
    /// Drawn so that it is told from the others without colours too.
    bool isCritical = false;

    bool operator==(const BadgeNumber &) const = default;
};

/// The label in the room of a square: the two numbers that tell most. With none it is the label's
/// symbol.
struct BadgeComposition {
    QList<BadgeNumber> numbers; ///< At most two, the upper one first.

    bool operator==(const BadgeComposition &) const = default;
};

enum class BadgeColors { Health, Plain };

/// The lowest of the five-hour buckets over the lowest of the weekly ones. A bucket with another
/// window, or none, counts with the five-hour ones. Of equals the first.
BadgeComposition composeBadge(const QList<ToolbarStatItem> &items, BadgeColors colors);

} // namespace brimwatch::model
