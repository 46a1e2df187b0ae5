#include "app/app_delegate.h"
#include "app/command_line.h"
#include "app/views_library.h"
#include "platform/macos/mac_appearance.h"
#include "platform/macos/mac_application_presence.h"
#include "platform/macos/mac_information.h"
#include "platform/macos/mac_log.h"
#include "platform/macos/mac_login_item.h"
#include "platform/macos/mac_notifier.h"
#include "platform/macos/mac_opener.h"
#include "platform/macos/mac_pasteboard.h"
#include "platform/macos/mac_popover.h"
#include "platform/macos/mac_single_instance.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_symbols.h"
#include "platform/macos/mac_user_defaults.h"
#include "service/settings.h"

#include <QGuiApplication>
#include <QStandardPaths>

#include <cstdio>
#include <functional>
#include <memory>
#include <utility>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What macOS gives the program.
class MacDesktop {
public:
    /// Refers to this object.
    platform::Desktop desktop()
    {
        return {.appearance = m_appearance,
            .presence = m_presence,
            .loginItem = m_loginItem,
            .notifier = m_notifier,
            .opener = m_opener,
            .pasteboard = m_pasteboard,
            .symbols = m_symbols,
            .information = platform::macAppInformation(),
            .makeStatusItem =
                [this] {
                    auto item = std::make_unique<platform::MacStatusItem>();
                    m_statusItem = item.get();
                    return item;
                },
            .makePopover =
                [this](platform::PopoverContentFactory views) {
                    return std::make_unique<platform::MacPopover>(
                        std::move(views), [item = m_statusItem] { return item->button(); });
                }};
    }

    /// Calls `action` once AppKit has launched the application.
    void whenLaunched(std::function<void()> action) { m_presence.whenLaunched(std::move(action)); }
    /// Calls `action` each time the machine has woken from sleep.
    void whenWoken(std::function<void()> action) { m_presence.whenWoken(std::move(action)); }
    /// Calls `action` each time a second start asks for the popover.
    void whenAskedToShow(std::function<void()> action)
    {
        m_presence.whenAskedToShow(std::move(action));
    }

private:
    platform::MacAppearance m_appearance;
    platform::MacOpener m_opener;
    platform::MacLoginItem m_loginItem;
    platform::MacSymbols m_symbols;
    platform::MacNotifier m_notifier;
    platform::MacPasteboard m_pasteboard;
    platform::MacApplicationPresence m_presence;
    platform::MacStatusItem *m_statusItem
        = nullptr; ///< The program's; the popover is placed at it.
};

} // namespace

int main(int argc, char **argv)
{
    if (const auto answered = app::answerCommandLine(argc, argv))
        return static_cast<int>(*answered);
    platform::logToTheSystem();
    QCoreApplication::setApplicationName(u"Brimwatch"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMWATCH_VERSION));
    platform::MacSingleInstance singleInstance(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/" BRIMWATCH_IDENTIFIER));
    if (!singleInstance.claim()) {
        platform::MacSingleInstance::askOther();
        std::fputs("brimwatch: already running; it has been asked to open its popover\n", stderr);
        return static_cast<int>(app::ExitStatus::Success);
    }
    platform::keepQtFromActivating();
    const QGuiApplication application(argc, argv);
    platform::MacUserDefaults userDefaults;
    service::SettingsStore settings(userDefaults);
    MacDesktop desktop;
    app::AppDelegate delegate(settings, desktop.desktop(), app::viewsFromLibrary);
    desktop.whenLaunched([&] {
        delegate.applicationDidFinishLaunching();
        // What was shown before the sleep is old.
        desktop.whenWoken([&delegate] { delegate.quotaService()->refresh(); });
        desktop.whenAskedToShow([&delegate] { delegate.statusBarController()->showPopover(); });
    });
    return QGuiApplication::exec();
}
