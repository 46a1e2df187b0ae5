#include "fake_parts.h"

// Handlers come on a queue of the system's own.
static void elsewhere(void (^b)(void))
{
    fake::world().onMain = false;
    b();
    fake::world().onMain = true;
}
@implementation UNNotificationSound
+ (UNNotificationSound *)defaultSound
{
    static UNNotificationSound *s = [[self alloc] init];
    return s;
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end
@implementation UNNotificationContent
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end
@implementation UNMutableNotificationContent
@synthesize title = _mt, body = _mb, sound = _ms;
@end
@interface UNNotificationRequest () {
@public
    NSString *_i;
    UNNotificationContent *_c;
    bool _triggered;
}
@end
@implementation UNNotificationRequest
+ (instancetype)requestWithIdentifier:(NSString *)i
                              content:(UNNotificationContent *)c
                              trigger:(UNNotificationTrigger *)t
{
    UNNotificationRequest *r = (UNNotificationRequest *)[self alloc];
    r->_i = i;
    r->_c = c;
    r->_triggered = t != nil;
    return r;
}
- (NSString *)identifier
{
    return _i;
}
- (UNNotificationContent *)content
{
    return _c;
}
@end
@implementation UNNotification {
@public
    UNNotificationRequest *_rq;
}
- (UNNotificationRequest *)request
{
    return _rq;
}
@end
@implementation UNNotificationResponse {
@public
    UNNotification *_n;
    NSString *_act;
}
- (UNNotification *)notification
{
    return _n;
}
- (NSString *)actionIdentifier
{
    return _act;
}
@end
static UNUserNotificationCenter *theCenter()
{
    static UNUserNotificationCenter *c
        = (UNUserNotificationCenter *)[UNUserNotificationCenter alloc];
    return c;
}
@implementation UNUserNotificationCenter
+ (UNUserNotificationCenter *)currentNotificationCenter
{
    if (fake::world().bundleIdentifier.empty())
        fail("the notification center of a process without a bundle");
    return theCenter();
}
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)o
                      completionHandler:(void (^)(BOOL, NSError *))h
{
    ++fake::world().authorizationRequests;
    fake::world().authorizationOptions = o;
    if (h == nil)
        fail("requestAuthorization without a handler");
    else
        elsewhere(^{ h(NO, nil); });
}
- (void)addNotificationRequest:(UNNotificationRequest *)r
         withCompletionHandler:(void (^)(NSError *))h
{
    fake::world().posted.push_back(
        {fake::str(r.identifier), fake::str(r.content.title), fake::str(r.content.body),
            r.content.sound == UNNotificationSound.defaultSound ? "default"
                : r.content.sound                               ? "other"
                                                                : "",
            r->_triggered ? "later" : "", h != nil});
}
@end
NSString *const UNNotificationDefaultActionIdentifier = @"the default action";
NSString *const UNNotificationDismissActionIdentifier = @"the dismiss action";

namespace fake {
id notificationDelegate()
{
    return theCenter().delegate;
}
void chooseNotification(const std::string &identifier, bool dismiss)
{
    UNNotificationResponse *r = [[UNNotificationResponse alloc] init];
    r->_n = [[UNNotification alloc] init];
    r->_n->_rq = [UNNotificationRequest
        requestWithIdentifier:ns(identifier)
                      content:(UNNotificationContent *)[[UNNotificationContent alloc] init]
                      trigger:nil];
    r->_act
        = dismiss ? UNNotificationDismissActionIdentifier : UNNotificationDefaultActionIdentifier;
    auto done = std::make_shared<int>(0);
    bool asked = false;
    @autoreleasepool { // Nothing of ours keeps the delegate alive afterwards.
        id<UNUserNotificationCenterDelegate> d = theCenter().delegate;
        asked = [(NSObject *)d respondsToSelector:@selector
            (userNotificationCenter:didReceiveNotificationResponse:withCompletionHandler:)];
        if (asked)
            elsewhere(^{
                [d userNotificationCenter:theCenter()
                    didReceiveNotificationResponse:r
                             withCompletionHandler:^{ ++*done; }];
            });
    }
    pump();
    if (asked && *done != 1)
        fail("the answer to a notification was completed " + std::to_string(*done) + " times");
}
long presentationOptions()
{
    __block long options = -1;
    id<UNUserNotificationCenterDelegate> d = theCenter().delegate;
    if ([(NSObject *)d respondsToSelector:@selector(userNotificationCenter:
                                                   willPresentNotification:withCompletionHandler:)])
        [d userNotificationCenter:theCenter()
            willPresentNotification:[[UNNotification alloc] init]
              withCompletionHandler:^(UNNotificationPresentationOptions o) { options = long(o); }];
    return options;
}
} // namespace fake
