#pragma once

namespace brimwatch::platform {

/// Has the application, as a screen reader finds it, bear its display name and hold every window
/// that can be seen. Qt (6.4) leaves popups out, and our popover is one. To be called once, before
/// the application object is made.
void showPopupsToScreenReaders();

} // namespace brimwatch::platform
