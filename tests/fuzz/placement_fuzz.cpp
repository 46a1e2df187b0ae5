// The popover and what panels reserve: always within the work area, which is always within its
// monitor.
#include "fuzz.h"
#include "platform/linux/popover/layer_place.h"
#include "platform/linux/popover/popover_place.h"
#include "platform/linux/x11/kwin_panels.h"
#include "platform/linux/x11/work_area.h"

using namespace brimwatch;
using namespace brimwatch::platform;

namespace {

/// As large as a screen of X11 or Wayland may be, and anywhere.
QRect anyMonitor(fuzz::Input &input)
{
    const int x = input.number<std::int16_t>();
    const int y = input.number<std::int16_t>();
    return {x, y, 1 + input.number<std::uint16_t>(), 1 + input.number<std::uint16_t>()};
}

/// As any program may announce it.
QRect anyWindow(fuzz::Input &input)
{
    const int x = input.number<std::int16_t>();
    const int y = input.number<std::int16_t>();
    return {x, y, input.number<std::uint16_t>(), input.number<std::uint16_t>()};
}

QRect anyPart(fuzz::Input &input, const QRect &whole)
{
    const int left = input.number<std::uint16_t>() % whole.width();
    const int top = input.number<std::uint16_t>() % whole.height();
    return {whole.left() + left, whole.top() + top,
        1 + input.number<std::uint16_t>() % (whole.width() - left),
        1 + input.number<std::uint16_t>() % (whole.height() - top)};
}

void workAreas(fuzz::Input &input)
{
    const QRect monitor = anyMonitor(input);
    const QSize desktop(1 + input.number<std::uint16_t>(), 1 + input.number<std::uint16_t>());
    QList<Strut> struts;
    for (int i = input.below(4); i > 0; --i)
        struts.append(input.number<Strut>());
    QList<QRect> docks;
    for (int i = input.below(4); i > 0; --i)
        docks.append(anyWindow(input));
    const QRect area = withoutStruts(monitor, desktop, struts);
    fuzz::require(!area.isEmpty() && monitor.contains(area), "struts leave a part of the monitor");
    const QRect rest = withoutDocks(area, monitor, docks);
    fuzz::require(!rest.isEmpty() && area.contains(rest), "docks leave a part of that");

    QList<std::uint32_t> cardinals;
    for (int i = input.below(12); i > 0; --i)
        cardinals.append(input.number<std::uint32_t>());
    for (const QRect &one : workAreasOf(cardinals))
        fuzz::require(!one.isEmpty(), "a window manager's work area has a size");
    QList<std::uint32_t> geometry{input.number<std::uint32_t>(), input.number<std::uint32_t>()};
    const QMargins panels = panelsOfWorkArea(cardinals, geometry, desktop);
    fuzz::require(panels.left() >= 0 && panels.top() >= 0 && panels.right() >= 0
            && panels.bottom() >= 0 && panels.left() + panels.right() <= desktop.width() + 1
            && panels.top() + panels.bottom() <= desktop.height() + 1,
        "panels are no larger than the desktop");
}

void places(fuzz::Input &input)
{
    const QRect screen = anyMonitor(input);
    const QRect workArea = anyPart(input, screen);
    const QSize size(1 + input.number<std::uint16_t>(), 1 + input.number<std::uint16_t>());
    const QRect item = input.flag() ? anyWindow(input) : likelyItemPlace(screen, workArea);
    const QRect place = popoverPlace(item, size, screen, workArea);
    fuzz::require(
        !place.isEmpty() && workArea.contains(place), "a popover is within the work area");
    const QRect likely = likelyItemPlace(screen, workArea);
    fuzz::require(likely.size() == QSize(1, 1) && screen.contains(likely),
        "an item is likely to be on the screen");
}

void layers(fuzz::Input &input)
{
    const QSize screen(1 + input.number<std::uint16_t>(), 1 + input.number<std::uint16_t>());
    const QSize size(1 + input.number<std::uint16_t>(), 1 + input.number<std::uint16_t>());
    const QPoint item(input.number<std::uint16_t>() % screen.width(),
        input.number<std::uint16_t>() % screen.height());
    const QMargins panels(input.number<std::uint8_t>(), input.number<std::uint8_t>(),
        input.number<std::uint8_t>(), input.number<std::uint8_t>());
    for (const auto &layer : {popoverLayer(item, size, screen), cornerLayer(size, screen)}) {
        fuzz::require(
            layer.size.width() <= screen.width() && layer.size.height() <= screen.height(),
            "a layer is no larger than the screen");
        fuzz::require(layer.margins.left() >= 0 && layer.margins.top() >= 0
                && layer.margins.right() >= 0 && layer.margins.bottom() >= 0,
            "a layer is on the screen");
        const auto kept = keptOff(panels, layer);
        fuzz::require(((kept.edges & LayerPlace::Top) == 0 || kept.margins.top() >= panels.top())
                && ((kept.edges & LayerPlace::Bottom) == 0
                    || kept.margins.bottom() >= panels.bottom())
                && ((kept.edges & LayerPlace::Left) == 0 || kept.margins.left() >= panels.left())
                && ((kept.edges & LayerPlace::Right) == 0
                    || kept.margins.right() >= panels.right()),
            "a layer keeps off the panels");
        const auto grown = grownBy({8, 8, 8, 8}, layer);
        fuzz::require(
            grown.size.width() >= layer.size.width() && grown.size.height() >= layer.size.height(),
            "a shadow makes a layer larger");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    switch (input.below(3)) {
    case 0:
        workAreas(input);
        break;
    case 1:
        places(input);
        break;
    default:
        layers(input);
    }
    return 0;
}
