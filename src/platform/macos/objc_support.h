#pragma once

// Objective-C: for the .mm files of this folder alone.

#include "platform/macos/native_label.h"

#import <AppKit/AppKit.h>

#include <string>
#include <string_view>

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {

/// Bytes that are not UTF-8 become the replacement character: AppKit is never handed nil.
NSString *toNSString(std::string_view text);
/// Empty for nil.
std::string fromNSString(NSString *_Nullable text);

/// Whether dark aqua is the best match for `appearance`, of it and aqua.
bool isDarkAppearance(NSAppearance *appearance);
NSColor *nsColor(NativeColor color);

/// A system symbol as a template image, which the menu bar tints. Nil when the system has none of
/// that name, or cannot draw it so.
NSImage *_Nullable symbolImage(const NativeSymbol &symbol, NSString *_Nullable description);

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
