#import "platform/macos/native_log.h"

#import "platform/macos/objc_support.h"

#import <os/log.h>

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {
namespace {

os_log_type_t typeOf(NativeLogLevel level)
{
    switch (level) {
    case NativeLogLevel::Debug:
        return OS_LOG_TYPE_DEBUG;
    case NativeLogLevel::Info:
        return OS_LOG_TYPE_INFO;
    case NativeLogLevel::Error:
        return OS_LOG_TYPE_ERROR;
    case NativeLogLevel::Fault:
        return OS_LOG_TYPE_FAULT;
    }
    return OS_LOG_TYPE_DEFAULT;
}

} // namespace

void writeSystemLog(NativeLogLevel level, const std::string &category, const std::string &text)
{
    const std::string subsystem = fromNSString(NSBundle.mainBundle.bundleIdentifier);
    // The system keeps one log object for each pair of names; there are few pairs.
    os_log_t log
        = os_log_create(subsystem.empty() ? "brimwatch" : subsystem.c_str(), category.c_str());
    os_log_with_type(log, typeOf(level), "%{public}s", text.c_str());
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
