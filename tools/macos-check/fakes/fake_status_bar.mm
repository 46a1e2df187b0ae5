#include "fake_parts.h"

NSStatusItem *__weak fake::gItem;
@interface NSStatusItem () {
@public
    NSStatusBarButton *_b;
    NSWindow *_barWindow;
}
@end
@implementation NSStatusItem
- (NSStatusBarButton *)button
{
    return _b;
}
@end
@implementation NSStatusBar {
@public
    std::vector<NSStatusItem *> _items;
}
+ (NSStatusBar *)systemStatusBar
{
    static NSStatusBar *b = [[self alloc] init];
    return b;
}
- (NSStatusItem *)statusItemWithLength:(CGFloat)l
{
    needMain("statusItemWithLength");
    record("statusItemWithLength " + number(l));
    NSStatusItem *i = [[NSStatusItem alloc] init];
    if (fake::world().statusItemHasButton) {
        i->_b = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(2, 1, 60, 22)];
        i->_barWindow =
            [[NSWindow alloc] initWithContentRect:NSMakeRect(fake::world().itemOrigin.x,
                                                      fake::world().itemOrigin.y, 60, 22)
                                        styleMask:0
                                          backing:NSBackingStoreBuffered
                                            defer:NO];
        i->_b->_win = i->_barWindow;
    }
    _items.push_back(i); // It stays there until it is removed.
    gItem = i;
    return i;
}
- (void)removeStatusItem:(NSStatusItem *)i
{
    if (std::erase(_items, i) != 1)
        fail("removeStatusItem: of one that is not in the bar");
}
@end

namespace fake {
NSStatusItem *statusItem()
{
    return gItem;
}
NSPopover *popover()
{
    return gPopover;
}
NSPanel *panel()
{
    return gPanel;
}
int statusItemsInBar()
{
    return int(NSStatusBar.systemStatusBar->_items.size());
}
static void press(NSEventType type)
{
    NSPopover *p = gPopover;
    if (p.isShown && p.behavior == NSPopoverBehaviorTransient) {
        [p close];
        pump();
    }
}
static void pressOutside(NSEventType type)
{
    press(type);
    const auto copy = gMonitors;
    NSEvent *e = [[NSEvent alloc] init];
    e->_t = type;
    for (const auto &m : copy)
        if (m.mask >> type & 1)
            m.handler(e);
}
void clickStatusItem(bool right)
{
    press(right ? NSEventTypeRightMouseDown : NSEventTypeLeftMouseDown);
    NSStatusBarButton *b = gItem.button;
    if (b == nil
        || (((NSControl *)b)->_mask >> (right ? NSEventTypeRightMouseUp : NSEventTypeLeftMouseUp)
               & 1)
            == 0)
        return;
    id target = b.target;
    const SEL action = b.action;
    if (target != nil && action != nullptr)
        ((void (*)(void *, SEL, void *))(void *)objc_msgSend_for_tests)(
            (__bridge void *)target, action, (__bridge void *)b);
}
void clickOutside(bool right)
{
    pressOutside(right ? NSEventTypeRightMouseDown : NSEventTypeLeftMouseDown);
}
} // namespace fake
