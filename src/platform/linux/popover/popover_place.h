#pragma once

#include <QRect>
#include <QSize>

namespace brimwatch::platform {

/// Where a popover of `size` goes: below `item` when that stands in the upper half of `screen`,
/// else above it, its middle at the item's, within `workArea`; beside an upright panel, at the
/// item's height. All in one coordinate system. It is no larger than `workArea`.
QRect popoverPlace(
    const QRect &item, const QSize &size, const QRect &screen, const QRect &workArea);

/// Where an item most likely stands when nobody says: at the end of the panel that keeps
/// `workArea` from filling `screen`, its right end or, of an upright one, its lower; without a
/// panel in the top right corner. A place one unit wide and high.
QRect likelyItemPlace(const QRect &screen, const QRect &workArea);

} // namespace brimwatch::platform
