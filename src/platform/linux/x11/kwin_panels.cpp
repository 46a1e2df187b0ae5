#include "platform/linux/x11/kwin_panels.h"

#include "platform/linux/x11/x_connection.h"

#include <cmath>
#include <cstdint>

namespace brimwatch::platform {

namespace {

constexpr const char *managerAtom = "_NET_SUPPORTING_WM_CHECK";
constexpr const char *nameAtom = "_NET_WM_NAME";
constexpr const char *geometryAtom = "_NET_DESKTOP_GEOMETRY";
constexpr const char *workAreaAtom = "_NET_WORKAREA";

} // namespace

QMargins kwinPanels(const QSize &desktop, XConnection &x)
{
    if (!x.isValid())
        return {};
    x.prefetchAtoms({managerAtom, nameAtom, geometryAtom, workAreaAtom});
    const xcb_window_t root = x.screen()->root;
    const auto manager = x.cardinals(root, managerAtom);
    if (manager.isEmpty() || x.property(manager.first(), x.atom(nameAtom)) != "KWin")
        return {};
    return panelsOfWorkArea(
        x.cardinals(root, workAreaAtom), x.cardinals(root, geometryAtom), desktop);
}

QMargins panelsOfWorkArea(
    const QList<std::uint32_t> &area, const QList<std::uint32_t> &geometry, const QSize &desktop)
{
    // There is one for each virtual desktop; they are alike, and the first is enough.
    if (area.size() < 4 || geometry.size() < 2)
        return {};
    const std::uint32_t left = area[0];
    const std::uint32_t top = area[1];
    const std::uint32_t width = area[2];
    const std::uint32_t height = area[3];
    const std::uint32_t wholeWidth = geometry[0];
    const std::uint32_t wholeHeight = geometry[1];
    if (wholeWidth == 0 || wholeHeight == 0 || left > wholeWidth || width > wholeWidth - left
        || top > wholeHeight || height > wholeHeight - top)
        return {};
    // Its X11 pixels need not be Qt's.
    const auto scaled = [](std::uint32_t length, int ours, std::uint32_t theirs) {
        return static_cast<int>(std::lround(double(length) * ours / theirs));
    };
    return {scaled(left, desktop.width(), wholeWidth), scaled(top, desktop.height(), wholeHeight),
        scaled(wholeWidth - left - width, desktop.width(), wholeWidth),
        scaled(wholeHeight - top - height, desktop.height(), wholeHeight)};
}

} // namespace brimwatch::platform
