#import "platform/macos/native_login_item.h"

#import "platform/macos/objc_support.h"

#import <ServiceManagement/ServiceManagement.h>

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {
namespace {

/// The error is undefined when the call succeeded.
std::optional<std::string> failure(BOOL succeeded, NSError *_Nullable error)
{
    if (succeeded)
        return std::nullopt;
    return fromNSString(error.localizedDescription);
}

} // namespace

NativeLoginItem::Status NativeLoginItem::status() const
{
    switch (SMAppService.mainAppService.status) {
    case SMAppServiceStatusNotRegistered:
        return Status::NotRegistered;
    case SMAppServiceStatusEnabled:
        return Status::Enabled;
    case SMAppServiceStatusRequiresApproval:
        return Status::RequiresApproval;
    case SMAppServiceStatusNotFound:
        return Status::NotFound;
    }
    return Status::NotFound;
}

std::optional<std::string> NativeLoginItem::registerItem()
{
    NSError *error = nil;
    const BOOL succeeded = [SMAppService.mainAppService registerAndReturnError:&error];
    return failure(succeeded, error);
}

std::optional<std::string> NativeLoginItem::unregisterItem()
{
    NSError *error = nil;
    const BOOL succeeded = [SMAppService.mainAppService unregisterAndReturnError:&error];
    return failure(succeeded, error);
}

void NativeLoginItem::openSystemSettings()
{
    [SMAppService openSystemSettingsLoginItems];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
