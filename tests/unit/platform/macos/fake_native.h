#pragma once

#include "platform/macos/native_appearance.h"
#include "platform/macos/native_label.h"
#include "platform/macos/native_log.h"
#include "platform/macos/native_login_item.h"
#include "platform/macos/native_popover.h"
#include "platform/macos/native_symbols.h"
#include "platform/macos/native_user_defaults.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brimwatch::test {

/// Fakes of the .mm files in plain C++, so that the layer above them is tested without them: what
/// they were asked, and what a test has them answer.
struct FakeNative {
    using Texts = std::vector<std::string>;

    // The item.
    bool hasButton = true;
    std::vector<platform::NativeLabel> labels;
    Texts toolTips;
    Texts accessibilityLabels;
    std::function<void()> click;

    // The popover.
    bool shown = false;
    Texts popoverCalls;
    std::function<void *()> popoverButton;
    std::function<void()> popoverDidClose;
    bool popoverFailsToOpen = false;
    platform::NativePopover::Hovered hover;

    // The rest.
    Texts made; ///< What was made of the system's things, and shown, in order.
    Texts defaultsRead; ///< Keys.
    Texts calls; ///< "register", "terminate", ... in order.
    platform::NativeLoginItem::Status loginStatus
        = platform::NativeLoginItem::Status::NotRegistered;
    std::optional<std::string> loginFailure;
    std::function<void(const std::string &)> chooseNotification;
    Texts files; ///< Those that exist.
    std::optional<std::string> version;
    std::optional<std::string> build;
    std::string systemVersion;
    bool dark = false;
    bool reducesMotion = false;
    std::function<void()> appearanceChanged;
    std::function<void()> launched;
    std::function<void()> woken;
    std::function<void()> askedToShow;
    std::map<std::string, platform::NativeDefault> defaults;
    Texts symbols; ///< Those that exist.
    Texts log; ///< "level category text"
    platform::NativeRgba drawnColor;
    platform::NativeWeight drawnWeight = platform::NativeWeight::Regular;
};

/// The one that all of them record in.
FakeNative &fakeNative();
/// Of the named colour: its number as red.
platform::NativeRgba fakeColor(platform::NativeColor color);

} // namespace brimwatch::test
