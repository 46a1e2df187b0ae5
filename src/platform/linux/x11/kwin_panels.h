#pragma once

#include <QMargins>
#include <QSize>

namespace brimwatch::platform {

class XConnection;

/// The room that Plasma's panels keep at the edges of the desktop, of which `desktop` is the size
/// in the toolkit's coordinates; none where the compositor is not KWin or tells no X11 program.
///
/// KWin (seen with 5.27) keeps layers off other layers alone, and Plasma's panels are none: a
/// popover at the edge would cover the item that it was opened by. To X11 programs it tells the
/// work area as any window manager does (_NET_WORKAREA).
QMargins kwinPanels(const QSize &desktop, XConnection &x);

} // namespace brimwatch::platform
