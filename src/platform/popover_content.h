#pragma once

#include <QSize>

#include <functional>
#include <memory>

class QWindow;

namespace brimwatch::platform {

/// What stands in a popover: a window with the views in it, made without flags, place or visibility
/// of its own.
class PopoverContent {
public:
    PopoverContent() = default;
    virtual ~PopoverContent() = default;
    PopoverContent(const PopoverContent &) = delete;
    PopoverContent &operator=(const PopoverContent &) = delete;
    PopoverContent(PopoverContent &&) = delete;
    PopoverContent &operator=(PopoverContent &&) = delete;

    /// Lives as long as this content, which fills it whatever its size: what has no room scrolls.
    virtual QWindow &window() = 0;
    /// How large the window should be, text scale included; it has that size at first.
    virtual QSize size() const = 0;
    /// Views stand still while they are not shown. Before it shows, everything is up to date.
    virtual void setShown(bool shown) = 0;
    /// Turns to the settings.
    virtual void showSettings() = 0;
};

/// Loads the views, which takes some time, and makes the content. Null when they cannot be loaded.
using PopoverContentFactory = std::function<std::unique_ptr<PopoverContent>()>;

} // namespace brimwatch::platform
