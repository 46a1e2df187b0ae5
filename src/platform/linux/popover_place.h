#pragma once

#include "platform/linux/layer_shell.h"

#include <QMargins>
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

/// The same for a compositor that keeps popovers off panels by itself, but says of no panel where
/// it is: at the edge of the screen that is next to `item`, a panel's own or what it leaves. `item`
/// lies within (0, 0) and `screen`.
LayerPlace popoverLayer(const QPoint &item, const QSize &size, const QSize &screen);
/// The same where nobody knows of an item: in the top right corner.
LayerPlace cornerLayer(const QSize &size, const QSize &screen);

/// The place, but off panels that take that room at the edges of the screen.
LayerPlace keptOff(const QMargins &panels, LayerPlace place);

/// The place of a window that has a shadow around what shall stand at `place`.
LayerPlace grownBy(const QMargins &shadow, LayerPlace place);

} // namespace brimwatch::platform
