#include "platform/macos/mac_login_item.h"

namespace brimwatch::platform {
namespace {

Result<void, QString> outcome(const std::optional<std::string> &failure)
{
    if (failure)
        return fail(QString::fromStdString(*failure));
    return {};
}

} // namespace

LoginItem::Status MacLoginItem::status() const
{
    switch (m_native.status()) {
    case NativeLoginItem::Status::NotRegistered:
        return Status::notRegistered;
    case NativeLoginItem::Status::Enabled:
        return Status::enabled;
    case NativeLoginItem::Status::RequiresApproval:
        return Status::requiresApproval;
    case NativeLoginItem::Status::NotFound:
        break;
    }
    return Status::notFound;
}

Result<void, QString> MacLoginItem::registerItem()
{
    return outcome(m_native.registerItem());
}

Result<void, QString> MacLoginItem::unregisterItem()
{
    return outcome(m_native.unregisterItem());
}

void MacLoginItem::openSystemSettings()
{
    m_native.openSystemSettings();
}

} // namespace brimwatch::platform
