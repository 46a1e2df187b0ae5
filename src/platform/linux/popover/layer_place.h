#pragma once

#include <QMargins>
#include <QPoint>
#include <QSize>

#include <cstdint>

namespace brimwatch::platform {

/// Where a window stands on its output, by the layer shell protocol (zwlr_layer_shell_v1): above
/// all others, at the edges that it is anchored to.
struct LayerPlace {
    enum Edge : std::uint32_t { Top = 1, Bottom = 2, Left = 4, Right = 8 };

    std::uint32_t edges = Top | Bottom | Left | Right; ///< All: it covers the output.
    QSize size = {}; ///< Device-independent; empty in a direction that is anchored on both sides.
    QMargins margins = {}; ///< From the edges that it is anchored to.
    bool coversPanels = false; ///< Else panels keep the room that they have reserved.
    bool takesKeyboard = false;
};

/// Where a popover of `size` goes on a compositor that keeps it off panels, but says of no panel
/// where it is: at the edge of the screen that is next to `item`, a panel's own or what it leaves.
/// `item` lies within (0, 0) and `screen`.
LayerPlace popoverLayer(const QPoint &item, const QSize &size, const QSize &screen);
/// The same where nobody knows of an item: in the top right corner.
LayerPlace cornerLayer(const QSize &size, const QSize &screen);

/// The place, but off panels that take that room at the edges of the screen.
LayerPlace keptOff(const QMargins &panels, LayerPlace place);

/// The place of a window that has a shadow around what shall stand at `place`.
LayerPlace grownBy(const QMargins &shadow, LayerPlace place);

} // namespace brimwatch::platform
