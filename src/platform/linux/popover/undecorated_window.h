#pragma once

class QWindow;

namespace brimwatch::platform {

/// Shows a window that has no decoration.
///
/// On Wayland Qt 6.4 would first find out whether the window could have one, and load the OpenGL
/// driver for that, which takes 30 MiB (seen with Mesa 22.3).
void showUndecorated(QWindow &window);

} // namespace brimwatch::platform
