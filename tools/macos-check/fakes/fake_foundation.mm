#include "fake_parts.h"

const NSNotificationName NSSystemColorsDidChangeNotification = @"system colors",
                         NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
    = @"display options",
                         NSWorkspaceDidWakeNotification = @"did wake",
                         NSApplicationDidFinishLaunchingNotification = @"did finish launching";
@implementation NSError
- (NSString *)localizedDescription
{
    return fake::ns(_text);
}
@end
@implementation NSNumber
- (BOOL)boolValue
{
    return _value != 0;
}
- (double)doubleValue
{
    return _value;
}
@end
extern "C" CFTypeID CFGetTypeID(CFTypeRef value)
{
    if (value == nullptr) {
        fail("CFGetTypeID: null"); // It ends the program.
        return 0;
    }
    id object = (__bridge id)value;
    return [object isKindOfClass:[NSNumber class]] && ((NSNumber *)object)->_boolean ? 21 : 22;
}
extern "C" CFTypeID CFBooleanGetTypeID(void)
{
    return 21;
}
@implementation NSUserDefaults
+ (NSUserDefaults *)standardUserDefaults
{
    static NSUserDefaults *d = [[self alloc] init];
    return d;
}
- (id)objectForKey:(NSString *)k
{
    const auto &all = fake::world().defaults;
    const auto it = all.find(fake::str(k));
    if (it == all.end())
        return nil;
    const std::string &value = it->second;
    const auto rest = value.substr(std::min(value.size(), value.find(' ') + 1));
    if (value.starts_with("text "))
        return fake::ns(rest);
    if (!value.starts_with("bool ") && !value.starts_with("number "))
        return [[NSObject alloc] init]; // A list, a date, data.
    NSNumber *n = [[NSNumber alloc] init];
    n->_value = std::strtod(rest.c_str(), nullptr);
    n->_boolean = value.starts_with("bool ");
    return n;
}
- (void)setObject:(id)v forKey:(NSString *)k
{
    if (![v isKindOfClass:[NSString class]])
        fail("setObject: of a kind that the fakes do not know");
    fake::world().defaults[fake::str(k)] = "text " + fake::str(v);
}
- (void)setBool:(BOOL)v forKey:(NSString *)k
{
    fake::world().defaults[fake::str(k)] = v ? "bool 1" : "bool 0";
}
- (void)setDouble:(double)v forKey:(NSString *)k
{
    fake::world().defaults[fake::str(k)] = "number " + number(v);
}
- (void)removeObjectForKey:(NSString *)k
{
    fake::world().defaults.erase(fake::str(k));
}
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
@implementation NSDistributedNotificationCenter
+ (NSDistributedNotificationCenter *)defaultCenter
{
    static NSDistributedNotificationCenter *c = [[self alloc] init];
    return c;
}
- (void)postNotificationName:(NSNotificationName)n
                      object:(NSString *)o
                    userInfo:(NSDictionary *)u
          deliverImmediately:(BOOL)i
{
    record("distribute " + fake::str(n) + (i ? " at once" : ""));
    // One that is not in front hears only what is delivered at once.
    if (i || fake::world().active)
        [self postNotificationName:n object:o];
}
@end
std::vector<EventHandler> fake::gEventHandlers;
@implementation NSAppleEventDescriptor
@end
@implementation NSAppleEventManager
+ (NSAppleEventManager *)sharedAppleEventManager
{
    static NSAppleEventManager *m = [[self alloc] init];
    return m;
}
- (void)setEventHandler:(id)h
            andSelector:(SEL)s
          forEventClass:(AEEventClass)c
             andEventID:(AEEventID)e
{
    if (![h respondsToSelector:s])
        fail("setEventHandler: of somebody without that method");
    [self removeEventHandlerForEventClass:c andEventID:e];
    gEventHandlers.push_back({c, e, (__bridge void *)h, s});
}
- (void)removeEventHandlerForEventClass:(AEEventClass)c andEventID:(AEEventID)e
{
    std::erase_if(
        gEventHandlers, [&](const EventHandler &h) { return h.eventClass == c && h.eventID == e; });
}
@end
