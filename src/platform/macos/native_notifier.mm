#import "platform/macos/native_notifier.h"

#import "platform/macos/objc_support.h"

#import <UserNotifications/UserNotifications.h>

#include <utility>

NS_ASSUME_NONNULL_BEGIN

@interface BrimwatchNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
- (instancetype)initWithActivated:(std::function<void(const std::string &)>)activated;
@end

@implementation BrimwatchNotificationDelegate {
    std::function<void(const std::string &)> _activated;
}

- (instancetype)initWithActivated:(std::function<void(const std::string &)>)activated
{
    self = [super init];
    if (self != nil)
        _activated = std::move(activated);
    return self;
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler
{
    // Without this, none is shown while the popover makes us the program in front.
    completionHandler(UNNotificationPresentationOptionBanner | UNNotificationPresentationOptionList
        | UNNotificationPresentationOptionSound);
}

- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))completionHandler
{
    NSString *identifier = response.notification.request.identifier;
    const bool chosen =
        [response.actionIdentifier isEqualToString:UNNotificationDefaultActionIdentifier];
    __weak BrimwatchNotificationDelegate *weakSelf = self;
    // The system may call from any thread.
    dispatch_async(dispatch_get_main_queue(), ^{
        BrimwatchNotificationDelegate *strongSelf = weakSelf;
        if (strongSelf != nil && chosen)
            strongSelf->_activated(brimwatch::platform::fromNSString(identifier));
        completionHandler();
    });
}

@end

namespace brimwatch::platform {

struct NativeNotifier::Objects {
    UNUserNotificationCenter *_Nullable center;
    // The center holds its delegate weakly.
    BrimwatchNotificationDelegate *_Nullable delegate;
};

NativeNotifier::NativeNotifier(std::function<void(const std::string &)> activated)
    : m_objects(std::make_unique<Objects>())
{
    // The center throws in a process without a bundle.
    if (NSBundle.mainBundle.bundleIdentifier == nil)
        return;
    m_objects->delegate =
        [[BrimwatchNotificationDelegate alloc] initWithActivated:std::move(activated)];
    m_objects->center = UNUserNotificationCenter.currentNotificationCenter;
    m_objects->center.delegate = m_objects->delegate;
}

NativeNotifier::~NativeNotifier()
{
    m_objects->center.delegate = nil;
}

void NativeNotifier::requestAuthorization()
{
    [m_objects->center
        requestAuthorizationWithOptions:UNAuthorizationOptionAlert | UNAuthorizationOptionSound
                      completionHandler:^(BOOL, NSError *_Nullable){}];
}

void NativeNotifier::post(
    const std::string &identifier, const std::string &title, const std::string &body)
{
    UNUserNotificationCenter *center = m_objects->center;
    if (center == nil)
        return;
    UNMutableNotificationContent *content = [[UNMutableNotificationContent alloc] init];
    content.title = toNSString(title);
    content.body = toNSString(body);
    content.sound = UNNotificationSound.defaultSound;
    UNNotificationRequest *request =
        [UNNotificationRequest requestWithIdentifier:toNSString(identifier)
                                             content:content
                                             trigger:nil];
    [center addNotificationRequest:request withCompletionHandler:nil];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
