#pragma once

#include "platform/app_information.h"
#include "platform/popover.h"
#include "platform/popover_content.h"
#include "platform/status_item.h"

#include <functional>
#include <memory>

namespace brimwatch::platform {

class Appearance;
class ApplicationPresence;
class LoginItem;
class Notifier;
class Opener;
class Pasteboard;
class RemoteControl;
class SymbolSource;

/// All that we ask of a desktop, one object for each interface. What it refers to outlives the
/// program.
struct Desktop {
    Appearance &appearance;
    ApplicationPresence &presence;
    LoginItem &loginItem;
    Notifier &notifier;
    Opener &opener;
    Pasteboard &pasteboard;
    const SymbolSource &symbols;
    AppInformation information;
    std::function<std::unique_ptr<StatusItem>()> makeStatusItem;
    /// Called after makeStatusItem; the popover is destroyed before the item.
    std::function<std::unique_ptr<Popover>(PopoverContentFactory)> makePopover;
    /// Null where other programs cannot ask anything of us.
    RemoteControl *remoteControl = nullptr;
    /// Calls `action` after each resume from suspend. Absent where timers take care of that.
    std::function<void(std::function<void()> action)> whenResumed = {};
};

} // namespace brimwatch::platform
