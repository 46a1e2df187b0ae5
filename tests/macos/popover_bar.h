#pragma once

#include "checks.h"
#include "fakes/fake_appkit.h"
#include "platform/macos/native_popover.h"
#include "platform/macos/native_status_item.h"

#include <optional>
#include <vector>

namespace brimwatch::test {

inline NSView *viewOf(const platform::NativePopover &popover)
{
    return (__bridge NSView *)reinterpret_cast<void *>(popover.contentView());
}

/// The item and the popover under it, put together as the program does it.
struct Bar {
    platform::NativeStatusItem item{[] { }};
    int closed = 0;
    std::vector<std::optional<platform::NativePoint>> hovers = {};
    platform::NativePopover popover{380, 490, [this] { return item.button(); },
        [this] { ++closed; },
        [this](std::optional<platform::NativePoint> place) { hovers.push_back(place); }};
};

} // namespace brimwatch::test
