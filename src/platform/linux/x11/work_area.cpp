#include "platform/linux/x11/work_area.h"

#include "platform/linux/x11/native_geometry.h"
#include "platform/linux/x11/x_connection.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <limits>

namespace brimwatch::platform {

namespace {

constexpr const char *clientsAtom = "_NET_CLIENT_LIST";
constexpr const char *strutAtom = "_NET_WM_STRUT_PARTIAL";
constexpr const char *wholeStrutAtom = "_NET_WM_STRUT";
constexpr const char *supportedAtom = "_NET_SUPPORTED";
constexpr const char *currentDesktopAtom = "_NET_CURRENT_DESKTOP";
constexpr const char *typeAtom = "_NET_WM_WINDOW_TYPE";
constexpr const char *dockAtom = "_NET_WM_WINDOW_TYPE_DOCK";
constexpr const char *workAreasAtom = "_GTK_WORKAREAS";

/// More than any desktop has in a direction.
constexpr std::uint32_t mostPixels = 1U << 20U;

/// Of a strut: its four widths come first, then the two ends of each.
constexpr int edgeCount = 4;
enum Edge : std::uint8_t { Left, Right, Top, Bottom };

/// `strut`'s panel at that edge of the desktop, as it lies; empty without one.
QRect roomOf(const Strut &strut, Edge edge, const QSize &desktop)
{
    const auto number
        = [](std::uint32_t value) { return static_cast<int>(std::min(value, mostPixels)); };
    const int width = number(strut.at(edge));
    const int first = number(strut.at(edgeCount + 2 * edge));
    int last = number(strut.at(edgeCount + 2 * edge + 1));
    // Some panels set no ends.
    if (first == 0 && last == 0)
        last = number(std::numeric_limits<std::uint32_t>::max());
    if (width <= 0 || last < first)
        return {};
    switch (edge) {
    case Left:
        return {0, first, width, last - first + 1};
    case Right:
        return {desktop.width() - width, first, width, last - first + 1};
    case Top:
        return {first, 0, last - first + 1, width};
    case Bottom:
        return {first, desktop.height() - width, last - first + 1, width};
    }
    return {};
}

/// `area` up to `room`, which keeps the one edge of it for itself; as it was where that would leave
/// nothing.
QRect upTo(const QRect &room, Edge edge, const QRect &area)
{
    QRect left = area;
    if (edge == Left)
        left.setLeft(std::max(left.left(), room.right() + 1));
    else if (edge == Right)
        left.setRight(std::min(left.right(), room.left() - 1));
    else if (edge == Top)
        left.setTop(std::max(left.top(), room.bottom() + 1));
    else
        left.setBottom(std::min(left.bottom(), room.top() - 1));
    return left.isEmpty() ? area : left;
}

/// Asked for: the connection's setup has the size as of our start.
QSize desktopSize(const XConnection &x)
{
    const XcbPointer<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
        x.connection(), xcb_get_geometry(x.connection(), x.screen()->root), nullptr));
    return geometry ? QSize(geometry->width, geometry->height) : QSize();
}

QList<Strut> struts(const QList<xcb_window_t> &windows, XConnection &x)
{
    const auto partial = x.properties(windows, strutAtom);
    const auto whole = x.properties(windows, wholeStrutAtom);
    QList<Strut> result;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        Strut strut{};
        if (const auto numbers = cardinalsOf(partial.at(i));
            numbers.size() >= qsizetype(strut.size())) {
            std::copy_n(numbers.cbegin(), strut.size(), strut.begin());
        } else if (const auto widths = cardinalsOf(whole.at(i)); widths.size() >= edgeCount) {
            std::copy_n(widths.cbegin(), edgeCount, strut.begin());
        } else {
            continue;
        }
        result.append(strut);
    }
    return result;
}

QList<QRect> docks(const QList<xcb_window_t> &windows, XConnection &x)
{
    const auto types = x.properties(windows, typeAtom);
    QList<QRect> result;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        if (!cardinalsOf(types.at(i)).contains(x.atom(dockAtom)))
            continue;
        const xcb_window_t window = windows.at(i);
        const auto sizeCookie = xcb_get_geometry(x.connection(), window);
        const auto placeCookie
            = xcb_translate_coordinates(x.connection(), window, x.screen()->root, 0, 0);
        const XcbPointer<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(x.connection(), sizeCookie, nullptr));
        const XcbPointer<xcb_translate_coordinates_reply_t> place(
            xcb_translate_coordinates_reply(x.connection(), placeCookie, nullptr));
        if (size && place)
            result.append(QRect(place->dst_x, place->dst_y, size->width, size->height));
    }
    return result;
}

QList<QRect> managersWorkAreas(XConnection &x)
{
    const xcb_window_t root = x.screen()->root;
    // A work area that a window manager left behind when it ended does not count.
    if (!x.cardinals(root, supportedAtom).contains(x.atom(workAreasAtom)))
        return {};
    const auto desktop = x.cardinals(root, currentDesktopAtom);
    const QByteArray name = "_GTK_WORKAREAS_D" + QByteArray::number(desktop.value(0));
    return workAreasOf(x.cardinals(root, name.constData()));
}

} // namespace

QRect withoutStruts(const QRect &monitor, const QSize &desktop, const QList<Strut> &struts)
{
    QRect area = monitor;
    for (const Strut &strut : struts) {
        for (const Edge edge : {Left, Right, Top, Bottom}) {
            const QRect room = roomOf(strut, edge, desktop);
            if (room.intersects(monitor))
                area = upTo(room, edge, area);
        }
    }
    return area;
}

QList<QRect> workAreasOf(const QList<std::uint32_t> &numbers)
{
    constexpr int numbersEach = 4;
    QList<QRect> result;
    for (qsizetype i = 0; i + numbersEach <= numbers.size(); i += numbersEach) {
        const auto area = numbers.mid(i, numbersEach);
        const bool isPossible = area[2] > 0 && area[3] > 0
            && std::all_of(area.cbegin(), area.cend(),
                [](std::uint32_t number) { return number <= mostPixels; });
        if (isPossible)
            result.append(QRect(int(area[0]), int(area[1]), int(area[2]), int(area[3])));
    }
    return result;
}

QRect withoutDocks(const QRect &area, const QRect &monitor, const QList<QRect> &docks)
{
    // Of what is nearly square nobody can tell along which edge it stands.
    constexpr int leastProportion = 4;
    QRect result = area;
    for (const QRect &dock : docks) {
        if (!monitor.contains(dock.center()))
            continue;
        if (dock.width() >= leastProportion * dock.height())
            result = upTo(dock, dock.center().y() < monitor.center().y() ? Top : Bottom, result);
        else if (dock.height() >= leastProportion * dock.width())
            result = upTo(dock, dock.center().x() < monitor.center().x() ? Left : Right, result);
    }
    return result;
}

QRect workArea(const QScreen &screen, XConnection &x)
{
    const bool alone = QGuiApplication::screens().size() == 1;
    if (!x.isValid())
        return screen.availableGeometry();
    x.prefetchAtoms({clientsAtom, strutAtom, wholeStrutAtom, typeAtom, dockAtom, supportedAtom,
        currentDesktopAtom, workAreasAtom});
    const QRect monitor = nativeGeometry(screen);
    const auto windows = x.cardinals(x.screen()->root, clientsAtom);
    QRect area = withoutStruts(monitor, desktopSize(x), struts(windows, x));
    area = withoutDocks(area, monitor, docks(windows, x));
    for (const QRect &managers : managersWorkAreas(x)) {
        // There is one for each monitor, in no documented order.
        if (managers.intersects(monitor) && managers.intersects(area))
            area &= managers;
    }
    const QRect ours = fromNative(area, &screen);
    const QRect both = ours & screen.availableGeometry();
    return alone && !both.isEmpty() ? both : ours;
}

bool isComposited(XConnection &x)
{
    const QByteArray manager = "_NET_WM_CM_S" + QByteArray::number(x.screenNumber());
    return x.selectionOwner(x.atom(manager.constData())) != XCB_WINDOW_NONE;
}

} // namespace brimwatch::platform
