#import "platform/macos/native_pasteboard.h"

#import "platform/macos/objc_support.h"

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {

void setPasteboardText(const std::string &text)
{
    NSPasteboard *pasteboard = NSPasteboard.generalPasteboard;
    [pasteboard clearContents];
    [pasteboard setString:toNSString(text) forType:NSPasteboardTypeString];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
