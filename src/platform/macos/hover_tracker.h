#pragma once

// Objective-C: for the .mm files of this folder alone.

#include "platform/macos/native_popover.h"

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/// Reports where the pointer is over a view while the program is not the active one, which a
/// program of the menu bar never needs to be. Qt follows the pointer too, but only in the active
/// program.
@interface BrimwatchHoverTracker : NSObject
- (instancetype)initWithView:(NSView *)view
                     hovered:(brimwatch::platform::NativePopover::Hovered)hovered;
/// To be called before the tracker goes: the view does not hold it.
- (void)stop;
@end

NS_ASSUME_NONNULL_END
