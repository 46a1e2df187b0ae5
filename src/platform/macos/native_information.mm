#import "platform/macos/native_information.h"

#import "platform/macos/objc_support.h"

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {
namespace {

std::optional<std::string> bundleText(NSString *key)
{
    id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    if (![value isKindOfClass:[NSString class]])
        return std::nullopt;
    return fromNSString(value);
}

} // namespace

NativeInformation nativeInformation()
{
    return {.version = bundleText(@"CFBundleShortVersionString"),
        .build = bundleText(@"CFBundleVersion"),
        .systemVersion = fromNSString(NSProcessInfo.processInfo.operatingSystemVersionString)};
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
