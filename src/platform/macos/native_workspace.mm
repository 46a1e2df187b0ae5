#import "platform/macos/native_workspace.h"

#import "platform/macos/objc_support.h"

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {

bool openFirstExisting(const std::vector<std::string> &paths)
{
    for (const std::string &path : paths) {
        NSString *file = toNSString(path);
        if ([NSFileManager.defaultManager fileExistsAtPath:file]) {
            [NSWorkspace.sharedWorkspace openURL:[NSURL fileURLWithPath:file]];
            return true;
        }
    }
    return false;
}

void openAddress(const std::string &address)
{
    if (NSURL *url = [NSURL URLWithString:toNSString(address)])
        [NSWorkspace.sharedWorkspace openURL:url];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
