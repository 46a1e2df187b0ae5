#include "fake_parts.h"

@implementation NSResponder
@end
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
