// The part of Foundation that our macOS layer uses, declared for checks on Linux: written by us
// from public documentation, not the system's header, not complete and never shipped. On a Mac the
// SDK's header of the same name is used instead.
#pragma once
#ifndef __OBJC__
#error "check-only declarations for Objective-C(++)"
#endif
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

#define MACDECL_AVAIL(v) __attribute__((availability(macos, introduced = v)))

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_ENUM(T, N)                                                                              \
    enum N : T N;                                                                                  \
    enum N : T
// In C++ an integer, so that a | b stays one.
#define NS_OPTIONS(T, N)                                                                           \
    typedef T N;                                                                                   \
    enum __attribute__((flag_enum)) : T
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_NOESCAPE __attribute__((noescape))
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))
#define FOUNDATION_EXPORT extern "C"
#ifndef __cplusplus
#error "Objective-C++ only"
#endif

#undef YES
#undef NO
#define YES __objc_yes
#define NO __objc_no
#if defined(__aarch64__)
typedef bool BOOL; // Apple silicon
#else
typedef signed char BOOL; // x86-64 Macs: BOOL is not bool, overloads and formats differ
#endif
#undef nil
#define nil nullptr
#undef Nil
#define Nil nullptr

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double CGFloat;
typedef double NSTimeInterval;

struct CGPoint {
    CGFloat x, y;
};
struct CGSize {
    CGFloat width, height;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
};
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
typedef NS_ENUM(NSUInteger, NSRectEdge) {
    NSRectEdgeMinX = 0,
    NSRectEdgeMinY = 1,
    NSRectEdgeMaxX = 2,
    NSRectEdgeMaxY = 3,
};
static inline NSPoint NSMakePoint(CGFloat x, CGFloat y)
{
    return NSPoint{x, y};
}
static inline NSSize NSMakeSize(CGFloat w, CGFloat h)
{
    return NSSize{w, h};
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h)
{
    return NSRect{{x, y}, {w, h}};
}
static inline CGFloat NSMaxX(NSRect r)
{
    return r.origin.x + r.size.width;
}
static inline CGFloat NSMidX(NSRect r)
{
    return r.origin.x + r.size.width / 2;
}
static inline CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat w, CGFloat h)
{
    return CGRect{{x, y}, {w, h}};
}

typedef struct {
    NSUInteger location, length;
} NSRange;

@class NSString, NSArray, NSDictionary, NSError, NSURL, NSBundle, NSNotification, NSCoder;
struct _NSZone;
typedef struct _NSZone NSZone;

NS_ASSUME_NONNULL_BEGIN

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
@property (readonly) NSUInteger hash;
- (Class)class;
- (instancetype)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)selector;
- (instancetype)retain NS_UNAVAILABLE;
- (oneway void)release NS_UNAVAILABLE;
- (instancetype)autorelease NS_UNAVAILABLE;
@property (readonly, copy) NSString *description;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
- (instancetype)init NS_DESIGNATED_INITIALIZER;
+ (instancetype)new;
+ (instancetype)alloc;
- (void)dealloc;
- (id)copy;
- (id)mutableCopy;
+ (Class)class;
@end

@protocol NSCopying
- (id)copyWithZone:(nullable NSZone *)zone;
@end
@protocol NSMutableCopying
- (id)mutableCopyWithZone:(nullable NSZone *)zone;
@end
@protocol NSCoding
- (void)encodeWithCoder:(NSCoder *)coder;
- (nullable instancetype)initWithCoder:(NSCoder *)coder;
@end
@protocol NSSecureCoding <NSCoding>
@property (class, readonly) BOOL supportsSecureCoding;
@end

typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable *_Nullable itemsPtr;
    unsigned long *_Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

// ---- strings ----
typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSASCIIStringEncoding = 1, NSUTF8StringEncoding = 4 };

@interface NSString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property (readonly) NSUInteger length;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithBytes:(const void *)bytes
                                length:(NSUInteger)length
                              encoding:(NSStringEncoding)encoding;
@property (nullable, readonly) const char *UTF8String NS_RETURNS_INNER_POINTER;
- (BOOL)isEqualToString:(NSString *)string;
@end
@interface NSSimpleCString : NSString
@end
@interface NSConstantString : NSSimpleCString
@end

typedef NSString *NSAttributedStringKey;
@interface NSAttributedString : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property (readonly, copy) NSString *string;
@property (readonly) NSUInteger length;
- (instancetype)initWithString:(NSString *)string;
- (instancetype)initWithString:(NSString *)string attributes:(nullable NSDictionary *)attributes;
@end
@interface NSMutableAttributedString : NSAttributedString
- (void)appendAttributedString:(NSAttributedString *)string;
@end

// ---- collections, numbers ----
@interface NSArray<__covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSSecureCoding, NSFastEnumeration>
@property (readonly) NSUInteger count;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)index;
@property (nullable, readonly) ObjectType firstObject;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                           count:(NSUInteger)count;
@end
@interface NSDictionary<__covariant KeyType, __covariant ObjectType>
    : NSObject <NSCopying, NSMutableCopying, NSSecureCoding>
@property (readonly) NSUInteger count;
- (nullable ObjectType)objectForKey:(KeyType)key;
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
@end
@interface NSNumber : NSObject <NSCopying, NSSecureCoding>
@property (readonly) BOOL boolValue;
@property (readonly) double doubleValue;
@end

// What tells a boolean from other numbers is CoreFoundation's.
typedef const void *CFTypeRef;
typedef unsigned long CFTypeID;
FOUNDATION_EXPORT CFTypeID CFGetTypeID(CFTypeRef value);
FOUNDATION_EXPORT CFTypeID CFBooleanGetTypeID(void);

@interface NSUserDefaults : NSObject
@property (class, readonly, strong) NSUserDefaults *standardUserDefaults;
- (nullable id)objectForKey:(NSString *)key;
- (void)setObject:(nullable id)value forKey:(NSString *)key;
- (void)setBool:(BOOL)value forKey:(NSString *)key;
- (void)setDouble:(double)value forKey:(NSString *)key;
- (void)removeObjectForKey:(NSString *)key;
@end

// ---- errors, addresses, files, bundle, process ----
@interface NSError : NSObject <NSCopying, NSSecureCoding>
@property (readonly, copy) NSString *localizedDescription;
@end

@interface NSURL : NSObject <NSSecureCoding, NSCopying>
+ (nullable instancetype)URLWithString:(NSString *)string;
+ (NSURL *)fileURLWithPath:(NSString *)path;
@property (nullable, readonly, copy) NSString *absoluteString;
@end

@interface NSFileManager : NSObject
@property (class, readonly, strong) NSFileManager *defaultManager;
- (BOOL)fileExistsAtPath:(NSString *)path;
@end

@interface NSBundle : NSObject
@property (class, readonly, strong) NSBundle *mainBundle;
@property (nullable, readonly, copy) NSString *bundleIdentifier;
- (nullable id)objectForInfoDictionaryKey:(NSString *)key;
@end

@interface NSProcessInfo : NSObject
@property (class, readonly, strong) NSProcessInfo *processInfo;
@property (readonly, copy) NSString *operatingSystemVersionString;
@end

// ---- notifications within the process ----
typedef NSString *NSNotificationName;
@interface NSNotification : NSObject <NSCopying, NSCoding>
@property (readonly, copy) NSNotificationName name;
@property (nullable, readonly, retain) id object;
+ (instancetype)notificationWithName:(NSNotificationName)name object:(nullable id)object;
@end
@interface NSNotificationCenter : NSObject
@property (class, readonly, strong) NSNotificationCenter *defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable id)object;
- (void)postNotificationName:(NSNotificationName)name object:(nullable id)object;
- (void)removeObserver:(id)observer;
@end

// ---- notifications and events between processes ----
@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter *)defaultCenter;
- (void)postNotificationName:(NSNotificationName)name
                      object:(nullable NSString *)object
                    userInfo:(nullable NSDictionary *)userInfo
          deliverImmediately:(BOOL)immediately;
@end

typedef uint32_t AEEventClass;
typedef uint32_t AEEventID;
enum : uint32_t { kCoreEventClass = 'aevt', kAEReopenApplication = 'rapp' };
@interface NSAppleEventDescriptor : NSObject <NSCopying, NSSecureCoding>
@end
@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager *)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID;
@end

// ---- key-value observing ----
typedef NSString *NSKeyValueChangeKey;
typedef NS_OPTIONS(NSUInteger, NSKeyValueObservingOptions) {
    NSKeyValueObservingOptionNew = 1,
    NSKeyValueObservingOptionOld = 2,
    NSKeyValueObservingOptionInitial = 4,
};
@interface NSObject (NSKeyValueObserving)
- (void)addObserver:(NSObject *)observer
         forKeyPath:(NSString *)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(nullable void *)context;
- (void)removeObserver:(NSObject *)observer
            forKeyPath:(NSString *)keyPath
               context:(nullable void *)context;
- (void)observeValueForKeyPath:(nullable NSString *)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id> *)change
                       context:(nullable void *)context;
@end

NS_ASSUME_NONNULL_END

#include <dispatch/dispatch.h>
