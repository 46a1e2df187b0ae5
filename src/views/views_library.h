#pragma once

#include <QtGlobal>

#include <functional>
#include <memory>

namespace brimwatch {
class Clock;
namespace platform {
class Appearance;
class Opener;
class Pasteboard;
class PopoverContent;
class SymbolSource;
} // namespace platform
namespace service {
class Diagnostics;
class LaunchAtLoginService;
class QuotaService;
} // namespace service
} // namespace brimwatch

namespace brimwatch::views {

/// Where the views were left, which outlives them.
struct PopoverState {
    bool showingSettings = false;
    double dashboardPosition = 0; ///< How far it is scrolled; so is the other.
    double settingsPosition = 0;
};

/// What the views use. Everything outlives the content.
struct PopoverDependencies {
    service::QuotaService &quotaService;
    platform::Appearance &appearance;
    const platform::SymbolSource &symbols;
    platform::Opener &opener;
    platform::Pasteboard &pasteboard;
    service::LaunchAtLoginService &launchAtLogin;
    const service::Diagnostics &diagnostics;
    std::function<void()> terminate; ///< Ends the program.
    std::function<void()> close; ///< Closes the popover, as Escape on the dashboard does.
    std::shared_ptr<PopoverState> state = std::make_shared<PopoverState>();
};

} // namespace brimwatch::views

/// The only entry point of the views' library: creates the popover's content, which the caller
/// owns. Null if the views cannot be created.
extern "C" Q_DECL_EXPORT brimwatch::platform::PopoverContent *brimwatch_make_popover_content(
    const brimwatch::views::PopoverDependencies &dependencies);
