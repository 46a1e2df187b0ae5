#include "fake_parts.h"

const NSPasteboardType NSPasteboardTypeString = @"string";
@implementation NSApplication
+ (NSApplication *)sharedApplication
{
    static NSApplication *a = [[self alloc] init];
    return a;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)p
{
    record("activationPolicy " + number(double(p)));
    return YES;
}
- (NSAppearance *)effectiveAppearance
{
    return appearanceNow(fake::world().dark);
}
- (NSArray *)windows
{
    if (_w == nil) {
        NSWindow *a = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                                  styleMask:1
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO];
        NSWindow *b = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                                  styleMask:1
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO];
        a->_name = "first";
        b->_name = "second";
        _w = @[ a, b ];
    }
    return _w;
}
- (BOOL)isActive
{
    return fake::world().active;
}
- (void)terminate:(id)s
{
    record(s ? "terminate with a sender" : "terminate");
}
@end
@implementation NSWorkspace
+ (NSWorkspace *)sharedWorkspace
{
    static NSWorkspace *w = [[self alloc] init];
    return w;
}
- (NSNotificationCenter *)notificationCenter
{
    static NSNotificationCenter *c = [[NSNotificationCenter alloc] init];
    return c;
}
- (BOOL)accessibilityDisplayShouldReduceMotion
{
    return fake::world().reduceMotion;
}
- (BOOL)openURL:(NSURL *)u
{
    if (u == nil) {
        fail("openURL: nil");
        return NO;
    }
    fake::world().opened.push_back((u->_file ? "file " : "address ") + fake::str(u.absoluteString));
    return YES;
}
@end
@implementation NSPasteboard
+ (NSPasteboard *)generalPasteboard
{
    static NSPasteboard *p = [[self alloc] init];
    return p;
}
- (NSInteger)clearContents
{
    record("clearContents");
    fake::world().pasteboard.clear();
    return 1;
}
- (BOOL)setString:(NSString *)s forType:(NSString *)t
{
    record("setString " + fake::str(t));
    if (!s) {
        fail("setString: nil");
        return NO;
    }
    fake::world().pasteboard += fake::str(s);
    return YES;
}
@end
@implementation SMAppService
+ (SMAppService *)mainAppService
{
    static SMAppService *s = [[self alloc] init];
    return s;
}
- (SMAppServiceStatus)status
{
    return fake::world().loginStatus;
}
- (BOOL)become:(SMAppServiceStatus)s error:(NSError **)e
{
    auto &w = fake::world();
    if (w.loginErrorIsSilent)
        return NO;
    // What stands behind the pointer after a success means nothing.
    NSError *x = [[NSError alloc] init];
    x->_text = w.loginError.empty() ? "not to be read" : w.loginError;
    if (e)
        *e = x;
    if (!w.loginError.empty())
        return NO;
    w.loginStatus = s;
    return YES;
}
- (BOOL)registerAndReturnError:(NSError **)e
{
    record("register");
    return [self become:fake::world().loginStatusAfterRegistering error:e];
}
- (BOOL)unregisterAndReturnError:(NSError **)e
{
    record("unregister");
    return [self become:SMAppServiceStatusNotRegistered error:e];
}
+ (void)openSystemSettingsLoginItems
{
    ++fake::world().loginSettingsOpened;
}
@end
