#pragma once

#include "platform/macos/native_label.h"

#include <functional>
#include <memory>
#include <string>

namespace brimwatch::platform {

/// Our item in the menu bar, for as long as this object lives. Main thread only.
class NativeStatusItem {
public:
    /// `clicked` is called on the main thread, once for each click with the left or right button,
    /// when the button is released.
    explicit NativeStatusItem(std::function<void()> clicked);
    ~NativeStatusItem();
    NativeStatusItem(const NativeStatusItem &) = delete;
    NativeStatusItem &operator=(const NativeStatusItem &) = delete;
    NativeStatusItem(NativeStatusItem &&) = delete;
    NativeStatusItem &operator=(NativeStatusItem &&) = delete;

    /// Whether the system gave the item a button. Without one the rest does nothing.
    bool hasButton() const;
    /// Replaces image and title. A label without an image clears the button's; an image whose
    /// symbol the system lacks leaves it as it is.
    void setLabel(const NativeLabel &label);
    /// The tooltip; empty for none.
    void setToolTip(const std::string &text);
    /// What screen readers say for the item; empty leaves that to the title.
    void setAccessibilityLabel(const std::string &text);

    /// The button, an NSView, as long as this object lives. Null when there is none.
    void *button() const;

private:
    struct Objects;
    std::unique_ptr<Objects> m_objects;
};

} // namespace brimwatch::platform
