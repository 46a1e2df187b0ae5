#include "service/launch_at_login_service.h"

#include <QLoggingCategory>

namespace brimwatch::service {
namespace {

Q_LOGGING_CATEGORY(logger, "LaunchAtLogin", QtInfoMsg)

using Status = platform::LoginItem::Status;

} // namespace

LaunchAtLoginService::LaunchAtLoginService(platform::LoginItem &loginItem, QObject *parent)
    : QObject(parent)
    , m_loginItem(loginItem)
{
    refresh();
}

void LaunchAtLoginService::refresh()
{
    const Status status = m_loginItem.status();
    publish(&LaunchAtLoginService::m_requiresApproval, status == Status::requiresApproval);
    // A login item that awaits approval counts as enabled: the switch stays on while the system
    // asks the user.
    publish(&LaunchAtLoginService::m_isEnabled,
        status == Status::enabled || status == Status::requiresApproval);
}

void LaunchAtLoginService::setEnabled(bool enabled)
{
    if (m_loginItem.status() == (enabled ? Status::enabled : Status::notRegistered)) {
        publish(&LaunchAtLoginService::m_isEnabled, enabled);
        publish(&LaunchAtLoginService::m_requiresApproval, false);
        return;
    }
    const auto changed = enabled ? m_loginItem.registerItem() : m_loginItem.unregisterItem();
    if (!changed)
        qCCritical(
            logger, "Failed to update launch at login: %ls", qUtf16Printable(changed.error()));
    else if (enabled)
        qCInfo(logger, "Successfully registered app for launch at login.");
    else
        qCInfo(logger, "Successfully unregistered app from launch at login.");
    refresh();
    if (m_requiresApproval)
        openSystemSettings();
}

void LaunchAtLoginService::openSystemSettings()
{
    m_loginItem.openSystemSettings();
}

void LaunchAtLoginService::publish(bool LaunchAtLoginService::*member, bool value)
{
    Q_EMIT objectWillChange();
    this->*member = value;
    Q_EMIT changed();
}

} // namespace brimwatch::service
