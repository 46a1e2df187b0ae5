#include "platform/linux/popover/popover_place.h"

#include <algorithm>

namespace brimwatch::platform {

QRect popoverPlace(const QRect &item, const QSize &size, const QRect &screen, const QRect &workArea)
{
    const QSize room = size.boundedTo(workArea.size());
    const bool below = item.center().y() < screen.center().y();
    int x = item.left() + item.width() / 2 - size.width() / 2;
    int y = below ? item.bottom() + 1 : item.top() - size.height();
    // A vertical panel: the work area leaves out the columns of the item.
    if (item.right() < workArea.left() || item.left() > workArea.right()) {
        x = item.right() < workArea.left() ? workArea.left() : workArea.right() + 1 - room.width();
        y = item.top() + item.height() / 2 - size.height() / 2;
    }
    const int left = std::max(workArea.left(), std::min(x, workArea.right() + 1 - room.width()));
    const int top = std::max(workArea.top(), std::min(y, workArea.bottom() + 1 - room.height()));
    return {QPoint(left, top), room};
}

QRect likelyItemPlace(const QRect &screen, const QRect &workArea)
{
    const int above = workArea.top() - screen.top();
    const int below = screen.bottom() - workArea.bottom();
    const int left = workArea.left() - screen.left();
    const int right = screen.right() - workArea.right();
    const int thickest = std::max({above, below, left, right});
    QPoint place = screen.topRight();
    if (thickest > 0 && above != thickest) {
        if (below == thickest || right == thickest)
            place = screen.bottomRight();
        else
            place = screen.bottomLeft();
    }
    return {place, QSize(1, 1)};
}

} // namespace brimwatch::platform
