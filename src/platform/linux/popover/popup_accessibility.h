#pragma once

namespace brimwatch::platform {

/// Makes the application show its display name and every visible window to screen readers. Qt 6.4
/// leaves popups out, and on X11 our popover is one. To be called once, before the application
/// object is made.
void showPopupsToScreenReaders();

} // namespace brimwatch::platform
