#include "fake_parts.h"

// Key-value observing, which insists on balance.
std::vector<Watch> fake::gWatches;
@implementation NSObject (NSKeyValueObserving)
- (void)addObserver:(NSObject *)o
         forKeyPath:(NSString *)k
            options:(NSKeyValueObservingOptions)opt
            context:(void *)c
{
    gWatches.push_back({(__bridge void *)self, (__bridge void *)o, fake::str(k), c});
}
- (void)removeObserver:(NSObject *)o forKeyPath:(NSString *)k context:(void *)c
{
    for (auto it = gWatches.begin(); it != gWatches.end(); ++it)
        if (it->object == (__bridge void *)self && it->observer == (__bridge void *)o
            && it->key == fake::str(k) && it->context == c) {
            gWatches.erase(it);
            return;
        }
    fail("removeObserver: of one that does not observe");
}
- (void)observeValueForKeyPath:(NSString *)k
                      ofObject:(id)o
                        change:(NSDictionary *)ch
                       context:(void *)c
{
    record("super observes " + fake::str(k));
}
@end
static void onDispose(void *o)
{
    for (auto &w : gWatches)
        if (w.object == o || w.observer == o)
            fail("an observed or observing object has gone while its observation of " + w.key
                + " lasts");
    for (auto &l : gListeners)
        if (l.observer == o)
            fail("an observer of " + l.name + " has gone without a word");
    for (auto &t : gTrackings)
        if ((__bridge void *)t.area->_owner == o)
            fail("the owner of a tracking area has gone without a word");
    for (auto &h : gEventHandlers)
        if (h.handler == o)
            fail("a handler of events has gone without a word");
}

__attribute__((constructor(200))) static void start()
{
    mini_on_dispose = onDispose;
}

namespace fake {
long observers()
{
    return long(gWatches.size() + gListeners.size() + gMonitors.size() + gTrackings.size()
        + gEventHandlers.size());
}
id keyObserver()
{
    return gWatches.empty() ? nil : (__bridge id)gWatches.front().observer;
}
void setDark(bool dark)
{
    world().dark = dark;
    const auto copy = gWatches;
    for (const auto &w : copy)
        if (w.key == "effectiveAppearance"
            && w.object == (__bridge void *)NSApplication.sharedApplication)
            [(__bridge NSObject *)w.observer observeValueForKeyPath:ns(w.key)
                                                           ofObject:(__bridge id)w.object
                                                             change:nil
                                                            context:w.context];
}
void systemColorsChanged()
{
    [NSNotificationCenter.defaultCenter postNotificationName:NSSystemColorsDidChangeNotification
                                                      object:nil];
}
void displayOptionsChanged()
{
    [NSWorkspace.sharedWorkspace.notificationCenter
        postNotificationName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                      object:nil];
}
void finishLaunching()
{
    [NSNotificationCenter.defaultCenter
        postNotificationName:NSApplicationDidFinishLaunchingNotification
                      object:NSApplication.sharedApplication];
}
void wake()
{
    [NSWorkspace.sharedWorkspace.notificationCenter
        postNotificationName:NSWorkspaceDidWakeNotification
                      object:NSWorkspace.sharedWorkspace];
}
void postDistributed(const std::string &name)
{
    [NSDistributedNotificationCenter.defaultCenter postNotificationName:ns(name) object:nil];
}
void reopen()
{
    const auto copy = gEventHandlers;
    NSAppleEventDescriptor *event = [[NSAppleEventDescriptor alloc] init];
    for (const auto &h : copy)
        if (h.eventClass == 0x61657674 && h.eventID == 0x72617070) // 'aevt', 'rapp'
            ((void (*)(void *, SEL, void *, void *))(void *)objc_msgSend_for_tests)(
                h.handler, h.selector, (__bridge void *)event, (__bridge void *)event);
}
} // namespace fake
