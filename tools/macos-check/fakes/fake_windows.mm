#include "fake_parts.h"

@implementation NSScreen
- (NSRect)visibleFrame
{
    return fake::world().visibleFrame;
}
@end
NSPanel *__weak fake::gPanel;
static NSWindow *__weak gKey;
@implementation NSWindow
- (instancetype)initWithContentRect:(NSRect)r
                          styleMask:(NSWindowStyleMask)s
                            backing:(NSBackingStoreType)b
                              defer:(BOOL)d
{
    needMain("a window");
    _fr = r;
    _style = s;
    _name = "window";
    self.releasedWhenClosed = YES; // As the system has it for windows made in code.
    return self;
}
- (void)dealloc
{
    if (_content)
        _content->_win = nil;
}
- (NSRect)frame
{
    return _fr;
}
- (NSView *)contentView
{
    return _content;
}
- (void)setContentView:(NSView *)v
{
    if (_content)
        _content->_win = nil;
    _content = v;
    v->_win = self;
}
- (NSScreen *)screen
{
    static NSScreen *s = [[NSScreen alloc] init];
    return s;
}
- (BOOL)canBecomeKeyWindow
{
    return (_style & NSWindowStyleMaskTitled) != 0;
}
- (void)makeKeyWindow
{
    record(_name + ".makeKeyWindow");
    if (!self.canBecomeKeyWindow && _name != "popover window") {
        record(_name + " refuses to be key");
        return;
    }
    if (!_visible)
        record(_name + " is not there");
    gKey = self;
}
- (BOOL)makeFirstResponder:(NSResponder *)r
{
    record(_name + ".makeFirstResponder");
    _first = r;
    return YES;
}
- (void)orderFrontRegardless
{
    record(_name + ".orderFrontRegardless");
    _visible = true;
}
- (void)orderOut:(id)s
{
    record(_name + ".orderOut" + (s ? " with a sender" : ""));
    _visible = false;
    if (gKey == self) {
        gKey = nil;
        id<NSWindowDelegate> d = self.delegate;
        if ([(NSObject *)d respondsToSelector:@selector(windowDidResignKey:)])
            [d windowDidResignKey:[NSNotification notificationWithName:@"resign" object:self]];
    }
}
- (void)close
{
    record(_name + ".close");
    _visible = false;
}
- (void)setContentSize:(NSSize)s
{
    record(_name + ".contentSize " + text(s));
    _fr.size = s;
}
- (void)setFrameOrigin:(NSPoint)p
{
    record(_name + ".frameOrigin " + number(p.x) + "," + number(p.y));
    _fr.origin = p;
}
- (NSRect)convertRectToScreen:(NSRect)r
{
    return NSMakeRect(
        r.origin.x + _fr.origin.x, r.origin.y + _fr.origin.y, r.size.width, r.size.height);
}
@end
@implementation NSPanel
- (instancetype)initWithContentRect:(NSRect)r
                          styleMask:(NSWindowStyleMask)s
                            backing:(NSBackingStoreType)b
                              defer:(BOOL)d
{
    self = [super initWithContentRect:r styleMask:s backing:b defer:d];
    _name = "panel";
    self.hidesOnDeactivate = YES; // As the system has it for panels, and not for windows.
    record("panel style " + number(double(s)));
    gPanel = self;
    return self;
}
@end
NSResponder *fake::firstResponder(NSWindow *window)
{
    return window->_first;
}
