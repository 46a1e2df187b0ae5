#pragma once

#include <QMargins>
#include <QSize>

#include <functional>
#include <memory>

class QWindow;

namespace brimwatch::platform {

/// What stands in a popover: a window with the views in it, made without flags, place or visibility
/// of its own, opaque and with square corners.
class PopoverContent {
public:
    PopoverContent() = default;
    virtual ~PopoverContent() = default;
    PopoverContent(const PopoverContent &) = delete;
    PopoverContent &operator=(const PopoverContent &) = delete;
    PopoverContent(PopoverContent &&) = delete;
    PopoverContent &operator=(PopoverContent &&) = delete;

    /// Lives as long as this content, which fills it whatever its size, but for the shadow: what
    /// has no room scrolls.
    virtual QWindow &window() = 0;
    /// How large the content should be, text scale included; the window has that size at first.
    virtual QSize size() const = 0;
    /// Whether the window is seen through where nothing is drawn: then it is larger than the
    /// content, which has round corners and a shadow. Only while it is hidden.
    virtual void setTranslucent(bool translucent) = 0;
    /// How wide the shadow is on each side, device-independent; null while it is not translucent.
    virtual QMargins shadow() const = 0;
    /// Views stand still while they are not shown. Before it shows, everything is up to date.
    virtual void setShown(bool shown) = 0;
    /// Turns to the settings.
    virtual void showSettings() = 0;
};

/// Loads the views, which takes some time, and makes the content. Null when they cannot be loaded.
using PopoverContentFactory = std::function<std::unique_ptr<PopoverContent>()>;

} // namespace brimwatch::platform
