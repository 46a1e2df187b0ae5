#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace brimwatch::platform {

/// In points, from the upper left corner.
struct NativePoint {
    double x = 0;
    double y = 0;

    bool operator==(const NativePoint &) const = default;
};

/// The popover under the status item's button. Transient: a click elsewhere closes it. Main thread
/// only.
///
/// There are two implementations, of which the build takes one: the system's popover, and a panel
/// of our own.
class NativePopover {
public:
    /// Where in the content's view the pointer is; absent when it has left it.
    using Hovered = std::function<void(std::optional<NativePoint>)>;

    /// Sizes are in points. `button` returns the status item's NSView, or null while there is none;
    /// it is asked with each show(). `didClose` is called on the main thread when the popover has
    /// closed, whatever closed it, and after its animation: it may be shown anew by then. `hovered`
    /// is called there while the program is not the active one.
    NativePopover(double width, double height, std::function<void *()> button,
        std::function<void()> didClose, Hovered hovered);
    ~NativePopover();
    NativePopover(const NativePopover &) = delete;
    NativePopover &operator=(const NativePopover &) = delete;
    NativePopover(NativePopover &&) = delete;
    NativePopover &operator=(NativePopover &&) = delete;

    /// The NSView that holds the content, which is a subview of it and fills it. Lives as long as
    /// this object.
    std::uintptr_t contentView() const;
    void setContentSize(double width, double height);

    bool isShown() const;
    /// Shows it below the button; nothing while there is no button, or while it is shown.
    void show();
    /// Gives its window the keyboard, and the content in it, without activating the program.
    void makeKey();
    /// Closes it as a click elsewhere would; nothing while it is not shown.
    void performClose();

private:
    struct Objects;
    std::unique_ptr<Objects> m_objects;
};

} // namespace brimwatch::platform
