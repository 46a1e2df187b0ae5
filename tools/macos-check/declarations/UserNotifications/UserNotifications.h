// Declared for checks on Linux: written by us from public documentation, not the system's header.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions) {
    UNAuthorizationOptionBadge = 1 << 0,
    UNAuthorizationOptionSound = 1 << 1,
    UNAuthorizationOptionAlert = 1 << 2,
};
typedef NS_OPTIONS(NSUInteger, UNNotificationPresentationOptions) {
    UNNotificationPresentationOptionNone = 0,
    UNNotificationPresentationOptionBadge = 1 << 0,
    UNNotificationPresentationOptionSound = 1 << 1,
    UNNotificationPresentationOptionList = 1 << 3,
    UNNotificationPresentationOptionBanner = 1 << 4,
};

@class UNUserNotificationCenter;

@interface UNNotificationSound : NSObject <NSCopying, NSSecureCoding>
@property (class, readonly, copy) UNNotificationSound *defaultSound;
@end

@interface UNNotificationContent : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property (readonly, copy) NSString *title;
@property (readonly, copy) NSString *body;
@property (nullable, readonly, copy) UNNotificationSound *sound;
@end

@interface UNMutableNotificationContent : UNNotificationContent
@property (copy) NSString *title;
@property (copy) NSString *body;
@property (nullable, copy) UNNotificationSound *sound;
@end

@interface UNNotificationTrigger : NSObject <NSCopying, NSSecureCoding>
@end

@interface UNNotificationRequest : NSObject <NSCopying, NSSecureCoding>
@property (readonly, copy) NSString *identifier;
@property (readonly, copy) UNNotificationContent *content;
+ (instancetype)requestWithIdentifier:(NSString *)identifier
                              content:(UNNotificationContent *)content
                              trigger:(nullable UNNotificationTrigger *)trigger;
- (instancetype)init NS_UNAVAILABLE;
@end

@interface UNNotification : NSObject <NSCopying, NSSecureCoding>
@property (readonly, copy) UNNotificationRequest *request;
@end

FOUNDATION_EXPORT NSString *const UNNotificationDefaultActionIdentifier;
FOUNDATION_EXPORT NSString *const UNNotificationDismissActionIdentifier;

@interface UNNotificationResponse : NSObject <NSCopying, NSSecureCoding>
@property (readonly, copy) UNNotification *notification;
@property (readonly, copy) NSString *actionIdentifier;
@end

@protocol UNUserNotificationCenterDelegate <NSObject>
@optional
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
       willPresentNotification:(UNNotification *)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter *)center
    didReceiveNotificationResponse:(UNNotificationResponse *)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

MACDECL_AVAIL(10.14)
@interface UNUserNotificationCenter : NSObject
@property (nullable, weak) id<UNUserNotificationCenterDelegate> delegate;
+ (UNUserNotificationCenter *)currentNotificationCenter;
- (instancetype)init NS_UNAVAILABLE;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:
                          (void (^)(BOOL granted, NSError *_Nullable error))completionHandler;
- (void)addNotificationRequest:(UNNotificationRequest *)request
         withCompletionHandler:(nullable void (^)(NSError *_Nullable error))completionHandler;
@end

NS_ASSUME_NONNULL_END
