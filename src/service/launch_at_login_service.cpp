#include "service/launch_at_login_service.h"

#include <QLoggingCategory>

namespace brimwatch::service {
namespace {

Q_LOGGING_CATEGORY(logger, "LaunchAtLogin", QtInfoMsg)

using Status = platform::LoginItem::Status;

} // namespace

LaunchAtLoginService::LaunchAtLoginService(platform::LoginItem &loginItem, QObject *parent)
    : LaunchAtLogin(parent)
    , m_loginItem(loginItem)
{
    refresh();
}

void LaunchAtLoginService::refresh()
{
    const Status status = m_loginItem.status();
    publishRequiresApproval(status == Status::requiresApproval);
    // A login item that awaits approval counts as enabled: the switch stays on while the system
    // asks the user.
    publishIsEnabled(status == Status::enabled || status == Status::requiresApproval);
}

void LaunchAtLoginService::setEnabled(bool enabled)
{
    if (m_loginItem.status() == (enabled ? Status::enabled : Status::notRegistered)) {
        publishIsEnabled(enabled);
        publishRequiresApproval(false);
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

void LaunchAtLoginService::publishRequiresApproval(bool requiresApproval)
{
    Q_EMIT objectWillChange();
    m_requiresApproval = requiresApproval;
    Q_EMIT changed();
}

void LaunchAtLoginService::publishIsEnabled(bool isEnabled)
{
    Q_EMIT objectWillChange();
    m_isEnabled = isEnabled;
    Q_EMIT changed();
}

} // namespace brimwatch::service
