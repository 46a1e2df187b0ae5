#include "fake_parts.h"

/// How far within its window a popover's content stands.
constexpr double popoverFrame = 13;
std::vector<Tracking> fake::gTrackings;
@implementation NSResponder
@end
@implementation NSTrackingArea
- (instancetype)initWithRect:(NSRect)r
                     options:(NSTrackingAreaOptions)o
                       owner:(id)owner
                    userInfo:(NSDictionary *)u
{
    const auto when = NSTrackingActiveInActiveApp | NSTrackingActiveAlways;
    if ((o & when) == 0 || (o & when) == when)
        fail("a tracking area without one answer to when it is active"); // An exception.
    _options = o;
    _owner = owner;
    return self;
}
@end
static void point(NSView *view, NSPoint place, NSUInteger kind, SEL selector)
{
    NSEvent *e = [[NSEvent alloc] init];
    e->_place = NSMakePoint(place.x + popoverFrame, place.y + popoverFrame);
    const auto copy = gTrackings;
    for (const auto &t : copy) {
        const bool heard = fake::world().active || (t.area->_options & NSTrackingActiveAlways) != 0;
        if (t.view == (__bridge void *)view && (t.area->_options & kind) != 0 && heard)
            ((void (*)(void *, SEL, void *))(void *)objc_msgSend_for_tests)(
                (__bridge void *)t.area->_owner, selector, (__bridge void *)e);
    }
}
void fake::enterView(NSView *view, NSPoint place)
{
    point(view, place, NSTrackingMouseEnteredAndExited, @selector(mouseEntered:));
}
void fake::movePointer(NSView *view, NSPoint place)
{
    point(view, place, NSTrackingMouseMoved, @selector(mouseMoved:));
}
void fake::leaveView(NSView *view)
{
    point(view, {}, NSTrackingMouseEnteredAndExited, @selector(mouseExited:));
}
@implementation NSView
@synthesize accessibilityLabel = _al, appearance = _ap, wantsLayer = _wl, layer = _ly;
- (instancetype)initWithFrame:(NSRect)f
{
    self.frame = f;
    self.bounds = NSMakeRect(0, 0, f.size.width, f.size.height);
    return self;
}
- (NSAppearance *)effectiveAppearance
{
    return appearanceNow(fake::world().dark);
}
- (NSView *)superview
{
    return _super;
}
- (NSWindow *)window
{
    return _super ? _super.window : _win;
}
- (NSArray *)subviews
{
    return [NSArray arrayWithObjects:_subs.data() count:_subs.size()];
}
- (void)setWantsLayer:(BOOL)w
{
    _wl = w;
    if (w && _ly == nil)
        _ly = [[CALayer alloc] init];
}
- (void)addSubview:(NSView *)v
{
    needMain("addSubview");
    if (v == nil) {
        fail("addSubview: nil");
        return;
    }
    [v removeFromSuperview];
    _subs.push_back(v);
    v->_super = self;
}
- (void)removeFromSuperview
{
    if (NSView *s = _super) {
        _super = nil;
        std::erase(s->_subs, self);
    }
}
- (NSRect)convertRect:(NSRect)r toView:(NSView *)v
{
    return NSMakeRect(r.origin.x + self.frame.origin.x, r.origin.y + self.frame.origin.y,
        r.size.width, r.size.height);
}
- (NSPoint)convertPoint:(NSPoint)p fromView:(NSView *)v
{
    if (v != nil)
        fail("convertPoint: from another view");
    // Our views stand at the origin of their windows, but for the frame around a popover's.
    return NSMakePoint(p.x - popoverFrame, p.y - popoverFrame);
}
- (void)addTrackingArea:(NSTrackingArea *)a
{
    gTrackings.push_back({(__bridge void *)self, a});
}
- (void)removeTrackingArea:(NSTrackingArea *)a
{
    if (std::erase_if(gTrackings, [&](const Tracking &t) { return t.area == a; }) != 1)
        fail("removeTrackingArea: of one that does not track");
}
- (void)dealloc
{
    for (NSView *v : _subs)
        v->_super = nil;
}
@end
@implementation NSControl
- (NSInteger)sendActionOn:(NSEventMask)m
{
    record("sendActionOn " + number(double(m)));
    _mask = m;
    return 0;
}
@end
@implementation NSButton
- (void)setImage:(NSImage *)i
{
    record(i ? "button.image" : "button.image nil");
    _image = i;
}
- (void)setImagePosition:(NSCellImagePosition)p
{
    record("button.imagePosition " + number(double(p)));
    _imagePosition = p;
}
- (void)setAttributedTitle:(NSAttributedString *)t
{
    if (t == nil)
        fail("attributedTitle nil");
    record("button.attributedTitle");
    _attributedTitle = t;
}
@end
@implementation NSStatusBarButton
@end
@implementation NSViewController
- (instancetype)initWithNibName:(NSString *)n bundle:(NSBundle *)b
{
    if (n != nil)
        fail("a view controller with a nib");
    return self;
}
@end
std::vector<Monitor> fake::gMonitors;
@implementation NSEvent
- (NSEventType)type
{
    return _t;
}
- (NSPoint)locationInWindow
{
    return _place;
}
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)m handler:(void (^)(NSEvent *))h
{
    id token = [[NSObject alloc] init];
    gMonitors.push_back({m, h, token});
    return token;
}
+ (void)removeMonitor:(id)t
{
    if (std::erase_if(gMonitors, [&](const Monitor &m) { return m.token == t; }) != 1)
        fail("removeMonitor: of one that does not monitor");
}
@end
