#include "fake_parts.h"

NSPopover *__weak fake::gPopover;
@interface NSPopover () {
@public
    bool _sh;
    NSWindow *_window;
    int _shows;
}
@end
@implementation NSPopover
@synthesize contentSize = _cs, behavior = _bh, animates = _an, contentViewController = _vc;
- (instancetype)init
{
    gPopover = self;
    return self;
}
- (BOOL)isShown
{
    return _sh;
}
- (void)setContentSize:(NSSize)s
{
    record("popover.contentSize " + text(s));
    _cs = s;
}
- (void)setBehavior:(NSPopoverBehavior)b
{
    record("popover.behavior " + number(double(b)));
    _bh = b;
}
- (void)setAnimates:(BOOL)a
{
    record(a ? "popover.animates" : "popover.animates not");
    _an = a;
}
- (void)setContentViewController:(NSViewController *)c
{
    record("popover.contentViewController");
    _vc = c;
    _cs = c.view.frame.size;
}
- (void)showRelativeToRect:(NSRect)r ofView:(NSView *)v preferredEdge:(NSRectEdge)e
{
    needMain("showRelativeToRect");
    NSView *content = self.contentViewController.view;
    if (v == nil || content == nil) {
        fail("a popover shown without a view");
        return;
    }
    if (v.window == nil)
        fail("a popover shown beside a view without a window");
    record("popover.show " + text(r) + " edge " + number(double(e))
        + (v == gItem.button ? " of the button" : " of another view"));
    if (fake::world().popoverFailsToOpen)
        return;
    _sh = true;
    ++_shows;
    _window = [[NSWindow alloc] initWithContentRect:content.frame
                                          styleMask:0
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    _window->_name = "popover window";
    _window->_visible = true;
    _window.contentView = content;
}
- (void)closed:(int)show
{
    // The window of a show that came meanwhile is another.
    if (show == _shows)
        _window = nil;
    id<NSPopoverDelegate> d = self.delegate;
    if ([(NSObject *)d respondsToSelector:@selector(popoverDidClose:)])
        [d popoverDidClose:[NSNotification notificationWithName:@"NSPopoverDidClose" object:self]];
}
- (void)close
{
    record("popover.close");
    if (!_sh)
        return;
    _sh = false;
    NSPopover *me = self;
    const int show = _shows;
    if (fake::world().closesSlowly)
        fake::world().mainQueue.push_back([me, show] { [me closed:show]; }); // After the animation.
    else
        [self closed:show];
}
- (void)performClose:(id)s
{
    record("popover.performClose");
    [self close];
}
@end
