#include "fake_parts.h"

const NSNotificationName NSSystemColorsDidChangeNotification = @"system colors",
                         NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
    = @"display options",
                         NSApplicationDidFinishLaunchingNotification = @"did finish launching";
@implementation NSError
- (NSString *)localizedDescription
{
    return fake::ns(_text);
}
@end
@implementation NSNumber
@end
@implementation NSURL
+ (instancetype)URLWithString:(NSString *)s
{
    const std::string u = fake::str(s);
    if (s == nil || u.empty() || u.find(' ') != std::string::npos)
        return nil;
    NSURL *r = [[self alloc] init];
    r->_u = u;
    return r;
}
+ (NSURL *)fileURLWithPath:(NSString *)p
{
    if (p == nil)
        fail("fileURLWithPath: nil");
    NSURL *r = [[self alloc] init];
    r->_u = "file://" + fake::str(p);
    r->_file = true;
    return r;
}
- (NSString *)absoluteString
{
    return fake::ns(_u);
}
@end
@implementation NSFileManager
+ (NSFileManager *)defaultManager
{
    static NSFileManager *m = [[self alloc] init];
    return m;
}
- (BOOL)fileExistsAtPath:(NSString *)p
{
    record("exists " + fake::str(p));
    return fake::world().files.contains(fake::str(p));
}
@end
@implementation NSBundle
+ (NSBundle *)mainBundle
{
    static NSBundle *b = [[self alloc] init];
    return b;
}
- (NSString *)bundleIdentifier
{
    return fake::world().bundleIdentifier.empty() ? nil : fake::ns(fake::world().bundleIdentifier);
}
- (id)objectForInfoDictionaryKey:(NSString *)k
{
    if (fake::world().bundleNumbers.contains(fake::str(k)))
        return [[NSNumber alloc] init];
    auto &i = fake::world().bundleTexts;
    auto it = i.find(fake::str(k));
    return it == i.end() ? nil : fake::ns(it->second);
}
@end
@implementation NSProcessInfo
+ (NSProcessInfo *)processInfo
{
    static NSProcessInfo *p = [[self alloc] init];
    return p;
}
- (NSString *)operatingSystemVersionString
{
    return fake::ns(fake::world().osVersion);
}
@end
@interface NSNotification () {
@public
    NSString *_n;
    id _o;
}
@end
@implementation NSNotification
+ (instancetype)notificationWithName:(NSString *)n object:(id)o
{
    NSNotification *x = [[self alloc] init];
    x->_n = n;
    x->_o = o;
    return x;
}
- (NSNotificationName)name
{
    return _n;
}
- (id)object
{
    return _o;
}
@end
std::vector<Listener> fake::gListeners;
@implementation NSNotificationCenter
+ (NSNotificationCenter *)defaultCenter
{
    static NSNotificationCenter *c = [[self alloc] init];
    return c;
}
- (void)addObserver:(id)o selector:(SEL)s name:(NSNotificationName)n object:(id)obj
{
    if (![o respondsToSelector:s])
        fail("addObserver: of somebody without that method");
    gListeners.push_back(
        {(__bridge void *)self, (__bridge void *)o, s, fake::str(n), (__bridge void *)obj});
}
- (void)removeObserver:(id)o
{
    std::erase_if(gListeners, [&](const Listener &l) {
        return l.center == (__bridge void *)self && l.observer == (__bridge void *)o;
    });
}
- (void)postNotificationName:(NSNotificationName)n object:(id)obj
{
    const auto copy = gListeners;
    NSNotification *note = [NSNotification notificationWithName:n object:obj];
    for (const auto &l : copy)
        if (l.center == (__bridge void *)self && l.name == fake::str(n)
            && (l.object == nullptr || l.object == (__bridge void *)obj))
            ((void (*)(void *, SEL, void *))(void *)objc_msgSend_for_tests)(
                l.observer, l.selector, (__bridge void *)note);
}
@end
