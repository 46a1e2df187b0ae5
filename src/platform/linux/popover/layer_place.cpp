#include "platform/linux/popover/layer_place.h"

#include <algorithm>

namespace brimwatch::platform {

namespace {

/// The start of a span of `length` that is centred on `middle` within 0 and `total`; 0 when it is
/// longer than that.
int startAround(int middle, int length, int total)
{
    return std::max(0, std::min(middle - length / 2, total - length));
}

/// A popover that may be higher than the room between the panels is anchored to top and bottom. The
/// compositor never tells how much room there is, but then it gives all of it.
LayerPlace fitted(LayerPlace place, const QSize &screen)
{
    constexpr int largestPanels = 128;
    if (place.size.height() > screen.height() - largestPanels) {
        place.edges |= LayerPlace::Top | LayerPlace::Bottom;
        place.margins.setTop(0);
        place.margins.setBottom(0);
        place.size.setHeight(0);
    }
    place.size.setWidth(std::min(place.size.width(), screen.width()));
    return place;
}

} // namespace

LayerPlace popoverLayer(const QPoint &item, const QSize &size, const QSize &screen)
{
    const int toBottom = screen.height() - 1 - item.y();
    const int toRight = screen.width() - 1 - item.x();
    const auto nearSide = item.x() <= toRight ? LayerPlace::Left : LayerPlace::Right;
    const auto nearEnd = item.y() <= toBottom ? LayerPlace::Top : LayerPlace::Bottom;
    LayerPlace place{.edges = nearSide | nearEnd, .size = size};
    // Margins count from the room that panels leave, of which the size is unknown. Those from the
    // near edges are right whether or not there is a panel at the far ones.
    const int left = startAround(item.x(), size.width(), screen.width());
    const int top = startAround(item.y(), size.height(), screen.height());
    const int right = std::max(0, screen.width() - left - size.width());
    const int bottom = std::max(0, screen.height() - top - size.height());
    // Most panels are horizontal: an item in a corner is taken to be in one of those.
    constexpr int thickPanel = 64;
    const int toHorizontalEdge = std::min(item.y(), toBottom);
    if (toHorizontalEdge < thickPanel || toHorizontalEdge <= std::min(item.x(), toRight)) {
        if (nearSide == LayerPlace::Left)
            place.margins.setLeft(left);
        else
            place.margins.setRight(right);
    } else if (nearEnd == LayerPlace::Top) {
        place.margins.setTop(top);
    } else {
        place.margins.setBottom(bottom);
    }
    return fitted(place, screen);
}

LayerPlace cornerLayer(const QSize &size, const QSize &screen)
{
    return fitted({.edges = LayerPlace::Top | LayerPlace::Right, .size = size}, screen);
}

LayerPlace keptOff(const QMargins &panels, LayerPlace place)
{
    const auto keep = [&place](LayerPlace::Edge edge, int margin, int panel) {
        return (place.edges & edge) != 0 ? std::max(margin, panel) : margin;
    };
    const QMargins margins = place.margins;
    place.margins = QMargins(keep(LayerPlace::Left, margins.left(), panels.left()),
        keep(LayerPlace::Top, margins.top(), panels.top()),
        keep(LayerPlace::Right, margins.right(), panels.right()),
        keep(LayerPlace::Bottom, margins.bottom(), panels.bottom()));
    return place;
}

LayerPlace grownBy(const QMargins &shadow, LayerPlace place)
{
    // It has no size in a direction that is anchored on both sides.
    if (place.size.width() > 0)
        place.size.rwidth() += shadow.left() + shadow.right();
    if (place.size.height() > 0)
        place.size.rheight() += shadow.top() + shadow.bottom();
    place.margins -= shadow;
    return place;
}

} // namespace brimwatch::platform
