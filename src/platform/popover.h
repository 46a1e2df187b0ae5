#pragma once

#include "platform/status_item.h"

#include <QObject>
#include <QRect>

#include <optional>

namespace brimwatch::platform {

/// The popover of the status item. It is transient: a click elsewhere closes it.
class Popover : public QObject {
    Q_OBJECT

public:
    /// The content's size in points (device-independent pixels).
    static constexpr int contentWidth = 380;
    static constexpr int contentHeight = 490;

    using QObject::QObject;

    virtual bool isShown() const = 0;
    /// Loads the content, if it is not loaded yet: a show() is about to follow.
    virtual void prepare() = 0;
    /// Lets the content go, with the memory that it takes, unless it is shown. It is loaded again
    /// when it is needed, as it was left.
    virtual void release() = 0;
    /// Shows it beside the item, below it where there is room. Loads the content if it is not
    /// loaded yet.
    virtual void show(const ItemAnchor &anchor) = 0;
    /// Shows it without a click: beside the item at `item`, in native pixels; where that is absent,
    /// at its last place; and before it has had one, in the corner where panels have their items.
    virtual void showUnclicked(const std::optional<QRect> &item) = 0;
    /// Gives it the keyboard, without making the program the active one.
    virtual void makeKey() = 0;
    /// Turns to the settings; nothing while the content is not loaded.
    virtual void showSettings() = 0;
    /// Closes it as a click elsewhere would.
    virtual void performClose() = 0;

Q_SIGNALS:
    /// It has closed, whatever closed it.
    void didClose();
};

} // namespace brimwatch::platform
