#pragma once

class QWindow;

namespace brimwatch::platform {

/// Shows a window that has no decoration.
///
/// On Wayland the toolkit would first learn whether it could have one, and for that load the driver
/// of OpenGL with all behind it: 30 MiB (seen with Mesa 22.3).
void showUndecorated(QWindow &window);

} // namespace brimwatch::platform
