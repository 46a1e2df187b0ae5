#pragma once

#include <QRect>
#include <QSize>

namespace brimwatch::platform {

/// The place of a popover of `size`, which is cut to that of `workArea` where it is larger: below
/// `item` when the item is in the upper half of `screen`, else above it, centred on it, within
/// `workArea`; beside a vertical panel, centred on the item's height. All in one coordinate system.
QRect popoverPlace(
    const QRect &item, const QSize &size, const QRect &screen, const QRect &workArea);

/// The most likely place of an item whose place is unknown: at the end of the panel that takes room
/// from `screen`, the right end of a horizontal and the lower end of a vertical one; in the top
/// right corner where there is no panel. One unit wide and high.
QRect likelyItemPlace(const QRect &screen, const QRect &workArea);

} // namespace brimwatch::platform
