#include "platform/linux/linux_desktop.h"

#include "platform/linux/desktop/application_icon.h"
#include "platform/linux/linux_app_information.h"
#include "platform/linux/replacement.h"
#include "platform/linux/session.h"
#include "platform/linux/tray/panel_status_item.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QStandardPaths>

#include <utility>

namespace brimwatch::platform {

namespace {

// As large as servers show it, at twice the resolution.
constexpr int notificationIconSide = 96;

QString configHome()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

} // namespace

LinuxDesktop::LinuxDesktop(const Session &session, RemoteControl &remoteControl)
    : m_session(session)
    , m_remoteControl(remoteControl)
    , m_xSettings(m_xConnection)
    , m_xScale(m_xConnection, m_xSettings)
    , m_appearance(Session::bus(), m_xConnection.isValid() ? &m_xSettings : nullptr, configHome(),
          session.textScaling())
    , m_loginItem({.configHome = configHome(),
                      .program = QCoreApplication::applicationFilePath(),
                      .currentDesktops = currentDesktops()},
          m_opener)
    , m_labelPainter(m_symbols)
    , m_notifier(Session::bus(),
          {.name = QGuiApplication::applicationDisplayName(),
              .identifier = QGuiApplication::desktopFileName(),
              .icon = [] { return applicationIcon(notificationIconSide); }},
          {})
    , m_noPanelNotice(m_clock, m_notifier, Session::runtimeFolder(), currentDesktops())
{
}

Desktop LinuxDesktop::desktop()
{
    return {.appearance = m_appearance,
        .presence = m_presence,
        .loginItem = m_loginItem,
        .notifier = m_notifier,
        .opener = m_opener,
        .pasteboard = m_pasteboard,
        .symbols = m_symbols,
        .information = linuxAppInformation(),
        .makeStatusItem = [this] { return makeStatusItem(); },
        .makePopover =
            [this](PopoverContentFactory views) {
                return m_session.makePopover(unlessReplaced(std::move(views)), m_xConnection);
            },
        .remoteControl = &m_remoteControl,
        .whenResumed = [this](std::function<void()> action) { whenResumed(std::move(action)); }};
}

std::unique_ptr<StatusItem> LinuxDesktop::makeStatusItem()
{
    auto item = std::make_unique<PanelStatusItem>(
        m_xConnection, Session::bus(), m_labelPainter, m_appearance, m_xScale);
    QObject::connect(
        item.get(), &PanelStatusItem::registered, &m_noPanelNotice, &NoPanelNotice::panelCame);
    return item;
}

void LinuxDesktop::whenResumed(std::function<void()> action)
{
    // Queued: the item has no use for the system bus, and need not wait for it.
    QMetaObject::invokeMethod(
        &m_noPanelNotice,
        [this, action = std::move(action)] {
            m_resumeWatch.emplace(QDBusConnection::systemBus());
            QObject::connect(&*m_resumeWatch, &ResumeWatch::resumed, &*m_resumeWatch, action);
        },
        Qt::QueuedConnection);
}

} // namespace brimwatch::platform
