#include "platform/linux/kwin_panels.h"

#include "platform/linux/x_connection.h"

#include <QByteArray>

#include <array>
#include <cmath>
#include <cstring>
#include <optional>

namespace brimwatch::platform {

namespace {

constexpr const char *managerAtom = "_NET_SUPPORTING_WM_CHECK";
constexpr const char *nameAtom = "_NET_WM_NAME";
constexpr const char *geometryAtom = "_NET_DESKTOP_GEOMETRY";
constexpr const char *workAreaAtom = "_NET_WORKAREA";

template <std::size_t Count>
std::optional<std::array<std::uint32_t, Count>> numbers(
    XConnection &x, xcb_window_t window, const char *name)
{
    const QByteArray value = x.property(window, x.atom(name));
    std::array<std::uint32_t, Count> result{};
    if (static_cast<std::size_t>(value.size()) < sizeof result)
        return std::nullopt;
    std::memcpy(result.data(), value.constData(), sizeof result);
    return result;
}

} // namespace

QMargins kwinPanels(const QSize &desktop, XConnection &x)
{
    if (!x.isValid())
        return {};
    x.prefetchAtoms({managerAtom, nameAtom, geometryAtom, workAreaAtom});
    const xcb_window_t root = x.screen()->root;
    const auto manager = numbers<1>(x, root, managerAtom);
    if (!manager || x.property(manager->front(), x.atom(nameAtom)) != "KWin")
        return {};
    // There is one for each virtual desktop; they are alike, and the first is enough.
    const auto area = numbers<4>(x, root, workAreaAtom);
    const auto geometry = numbers<2>(x, root, geometryAtom);
    if (!area || !geometry)
        return {};
    const auto [left, top, width, height] = *area;
    const auto [wholeWidth, wholeHeight] = *geometry;
    if (wholeWidth == 0 || wholeHeight == 0 || left > wholeWidth || width > wholeWidth - left
        || top > wholeHeight || height > wholeHeight - top)
        return {};
    // Its X11 pixels need not be the toolkit's.
    const auto scaled = [](std::uint32_t length, int ours, std::uint32_t theirs) {
        return static_cast<int>(std::lround(double(length) * ours / theirs));
    };
    return {scaled(left, desktop.width(), wholeWidth), scaled(top, desktop.height(), wholeHeight),
        scaled(wholeWidth - left - width, desktop.width(), wholeWidth),
        scaled(wholeHeight - top - height, desktop.height(), wholeHeight)};
}

} // namespace brimwatch::platform
