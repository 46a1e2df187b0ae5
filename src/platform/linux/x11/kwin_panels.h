#pragma once

#include <QList>
#include <QMargins>
#include <QSize>

#include <cstdint>

namespace brimwatch::platform {

class XConnection;

/// The room that the panels of Plasma 5 keep at the edges of the desktop, of which `desktop` is the
/// size in Qt's coordinates; none where the compositor is not KWin or does not announce it to X11
/// programs.
///
/// KWin keeps layers clear of other layers only, and the panels of Plasma 5 are no layers (seen
/// with 5.27): a popover at the edge would cover the item that opened it. To X11 programs it
/// announces the work area as any window manager does (_NET_WORKAREA).
QMargins kwinPanels(const QSize &desktop, XConnection &x);

/// The same from the numbers of _NET_WORKAREA and _NET_DESKTOP_GEOMETRY; none when they make no
/// sense.
QMargins panelsOfWorkArea(
    const QList<std::uint32_t> &area, const QList<std::uint32_t> &geometry, const QSize &desktop);

} // namespace brimwatch::platform
