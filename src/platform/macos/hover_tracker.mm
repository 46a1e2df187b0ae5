#import "platform/macos/hover_tracker.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

using brimwatch::platform::NativePoint;
using brimwatch::platform::NativePopover;

@implementation BrimwatchHoverTracker {
    NSView *_view;
    NSTrackingArea *_area;
    NativePopover::Hovered _hovered;
    BOOL _inside;
}

- (instancetype)initWithView:(NSView *)view hovered:(NativePopover::Hovered)hovered
{
    self = [super init];
    if (self == nil)
        return self;
    _view = view;
    _hovered = std::move(hovered);
    _area = [[NSTrackingArea alloc]
        initWithRect:NSMakeRect(0, 0, 0, 0) // Ignored: InVisibleRect follows the view's.
             options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved | NSTrackingActiveAlways
        | NSTrackingInVisibleRect
               owner:self
            userInfo:nil];
    [view addTrackingArea:_area];
    return self;
}

- (void)stop
{
    [_view removeTrackingArea:_area];
}

- (void)follow:(NSEvent *)event
{
    // Qt reports these moves itself while the program is active.
    if (NSApplication.sharedApplication.isActive)
        return;
    const NSPoint place = [_view convertPoint:event.locationInWindow fromView:nil];
    _inside = YES;
    // The view counts from its lower edge.
    _hovered(NativePoint{.x = place.x, .y = _view.bounds.size.height - place.y});
}

- (void)mouseEntered:(NSEvent *)event
{
    [self follow:event];
}

- (void)mouseMoved:(NSEvent *)event
{
    [self follow:event];
}

- (void)mouseExited:(NSEvent *)event
{
    // What was entered is left, even if the program has become active meanwhile.
    if (!_inside)
        return;
    _inside = NO;
    _hovered(std::nullopt);
}

@end

NS_ASSUME_NONNULL_END
