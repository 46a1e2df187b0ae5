#pragma once

#include <QMargins>
#include <QSize>

#include <functional>
#include <memory>

class QWindow;

namespace brimwatch::platform {

/// The content of a popover: a window with the views in it. It is made hidden, without flags or a
/// place, opaque and with square corners.
class PopoverContent {
public:
    PopoverContent() = default;
    virtual ~PopoverContent() = default;
    Q_DISABLE_COPY_MOVE(PopoverContent)

    /// Lives as long as this object. The views fill it at any size, except for the shadow; what has
    /// no room scrolls.
    virtual QWindow &window() = 0;
    /// The preferred size, text scale included; the initial size of the window.
    virtual QSize size() const = 0;
    /// Whether the window is transparent where nothing is drawn: then the content has round corners
    /// and a shadow, and the window room for it. To be called only while the window is hidden.
    virtual void setTranslucent(bool translucent) = 0;
    /// The width of the shadow on each side, device-independent; null while it is not translucent.
    virtual QMargins shadow() const = 0;
    /// The views are updated only while they are shown; this brings them up to date first.
    virtual void setShown(bool shown) = 0;
    /// Turns to the settings.
    virtual void showSettings() = 0;
};

/// Loads the views, which takes some time, and makes the content, on the face and at the scroll
/// position at which the last one was. Null when they cannot be loaded.
using PopoverContentFactory = std::function<std::unique_ptr<PopoverContent>()>;

} // namespace brimwatch::platform
