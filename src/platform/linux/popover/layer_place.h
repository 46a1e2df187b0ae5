#pragma once

#include <QMargins>
#include <QPoint>
#include <QSize>

#include <cstdint>

namespace brimwatch::platform {

/// The place of an overlay on its output, in the terms of the layer shell protocol
/// (zwlr_layer_shell_v1).
struct LayerPlace {
    enum Edge : std::uint32_t { Top = 1, Bottom = 2, Left = 4, Right = 8 };

    std::uint32_t edges
        = Top | Bottom | Left | Right; ///< It is anchored to; all: it covers the output.
    QSize size = {}; ///< Device-independent; 0 in a direction that is anchored on both sides.
    QMargins margins = {}; ///< From the edges that it is anchored to.
    bool coversPanels = false; ///< Else it keeps off the room that panels have reserved.
    bool takesKeyboard = false;
};

/// The place of a popover of `size` on a compositor that keeps it off panels, but does not say
/// where the panels are: at the edge of the screen that is nearest to `item`, or at the panel
/// there. `item` is within (0, 0) and `screen`.
LayerPlace popoverLayer(const QPoint &item, const QSize &size, const QSize &screen);
/// The same where the item's place is unknown: in the top right corner.
LayerPlace cornerLayer(const QSize &size, const QSize &screen);

/// The place with margins at least as wide as the panels at the edges of the screen.
LayerPlace keptOff(const QMargins &panels, LayerPlace place);

/// The place of the window whose content is at `place` and has that shadow around it.
LayerPlace grownBy(const QMargins &shadow, LayerPlace place);

} // namespace brimwatch::platform
