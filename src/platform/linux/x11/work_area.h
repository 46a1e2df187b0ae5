#pragma once

#include <QList>
#include <QRect>
#include <QSize>

#include <array>
#include <cstdint>

class QScreen;

namespace brimwatch::platform {

class XConnection;

/// The room at the edges of the X11 desktop that a panel keeps for itself, in native pixels: how
/// much at the left, the right, the top and the bottom, and then from where to where along each of
/// these, first and last pixel (_NET_WM_STRUT_PARTIAL).
using Strut = std::array<std::uint32_t, 12>;

/// `monitor` without the struts that overlap it. All in native pixels; the struts are those of a
/// desktop of size `desktop`. A strut that would leave nothing of a monitor belongs to another one.
QRect withoutStruts(const QRect &monitor, const QSize &desktop, const QList<Strut> &struts);

/// `area` of `monitor` without the panels there: windows that are much longer than
/// thick, at the edge that they are nearest to. All in native pixels.
QRect withoutDocks(const QRect &area, const QRect &monitor, const QList<QRect> &docks);

/// The work areas of a window manager (_GTK_WORKAREAS_D0), one for each monitor, from its numbers.
/// Those that no desktop can have are left out.
QList<QRect> workAreasOf(const QList<std::uint32_t> &numbers);

/// The part of the screen that panels leave free, in Qt's coordinates.
///
/// Qt knows one work area for all monitors (_NET_WORKAREA), which says little about each. Panels
/// announce struts. Those cannot describe an edge between two monitors, so the panels' windows
/// count as well. Some window managers announce a work area for each monitor (_GTK_WORKAREAS_D0).
QRect workArea(const QScreen &screen, XConnection &x);

/// Whether a compositing manager runs, so that windows can be transparent.
bool isComposited(XConnection &x);

} // namespace brimwatch::platform
