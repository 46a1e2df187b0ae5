#include "app/command_line.h"
#include "app/program.h"
#include "platform/macos/mac_appearance.h"
#include "platform/macos/mac_application_presence.h"
#include "platform/macos/mac_information.h"
#include "platform/macos/mac_log.h"
#include "platform/macos/mac_login_item.h"
#include "platform/macos/mac_notifier.h"
#include "platform/macos/mac_opener.h"
#include "platform/macos/mac_pasteboard.h"
#include "platform/macos/mac_popover.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_symbols.h"
#include "service/settings.h"

#include <QGuiApplication>

#include <memory>
#include <utility>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

/// What macOS brings, and the program on it.
class MacProgram {
public:
    MacProgram()
        : m_settings(
              service::SettingsStore::UserDefaults{.domain = QStringLiteral(BRIMWATCH_IDENTIFIER)})
        , m_program({.settings = m_settings,
              .appearance = m_appearance,
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
                  [this](platform::PopoverContentFactory factory) {
                      return std::make_unique<platform::MacPopover>(
                          std::move(factory), [item = m_statusItem] { return item->button(); });
                  }})
    {
    }

    void launchWhenLaunched()
    {
        m_presence.whenLaunched([this] { m_program.launch(); });
    }

private:
    service::SettingsStore m_settings;
    platform::MacAppearance m_appearance;
    platform::MacOpener m_opener;
    platform::MacLoginItem m_loginItem;
    platform::MacSymbols m_symbols;
    platform::MacNotifier m_notifier;
    platform::MacPasteboard m_pasteboard;
    platform::MacApplicationPresence m_presence;
    platform::MacStatusItem *m_statusItem
        = nullptr; ///< The program's, which the popover stands at.
    app::Program m_program;
};

} // namespace

int main(int argc, char **argv)
{
    if (const auto answered = app::answerCommandLine(argc, argv))
        return *answered;
    platform::logToTheSystem();
    QCoreApplication::setApplicationName(u"Brimwatch"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMWATCH_VERSION));
    const QGuiApplication application(argc, argv);
    MacProgram program;
    program.launchWhenLaunched();
    return QGuiApplication::exec();
}
