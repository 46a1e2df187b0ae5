#pragma once

#include <QMargins>
#include <QSize>

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

} // namespace brimwatch::platform
