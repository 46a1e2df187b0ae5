#import "platform/macos/native_application.h"

#import "platform/macos/objc_support.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

namespace {

// What one process of ours says to another.
NSString *const showRequest = @"app.brimwatch.Brimwatch.show";

} // namespace

/// Calls a function with each notification of one name. Not the application's delegate: that is
/// Qt's.
@interface BrimwatchNotificationObserver : NSObject
- (instancetype)initWithCenter:(NSNotificationCenter *)center
                          name:(NSNotificationName)name
                        object:(nullable id)object
                        notify:(std::function<void()>)notify;
- (void)stop;
- (void)notified:(NSNotification *)notification;
@end

@implementation BrimwatchNotificationObserver {
    NSNotificationCenter *_center;
    std::function<void()> _notify;
}

- (instancetype)initWithCenter:(NSNotificationCenter *)center
                          name:(NSNotificationName)name
                        object:(nullable id)object
                        notify:(std::function<void()>)notify
{
    self = [super init];
    if (self == nil)
        return self;
    _center = center;
    _notify = std::move(notify);
    [center addObserver:self selector:@selector(notified:) name:name object:object];
    return self;
}

- (void)stop
{
    [_center removeObserver:self];
}

- (void)notified:(NSNotification *)notification
{
    _notify();
}

@end

/// Takes the event with which the system says that a program that runs was opened again. AppKit's
/// own answer, over Qt's delegate, would have Qt believe that the program is the active one.
@interface BrimwatchReopenHandler : NSObject
- (instancetype)initWithReopened:(std::function<void()>)reopened;
- (void)stop;
- (void)reopened:(NSAppleEventDescriptor *)event withReply:(NSAppleEventDescriptor *)reply;
@end

@implementation BrimwatchReopenHandler {
    std::function<void()> _reopened;
}

- (instancetype)initWithReopened:(std::function<void()>)reopened
{
    self = [super init];
    if (self == nil)
        return self;
    _reopened = std::move(reopened);
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(reopened:withReply:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
    return self;
}

- (void)stop
{
    [NSAppleEventManager.sharedAppleEventManager
        removeEventHandlerForEventClass:kCoreEventClass
                             andEventID:kAEReopenApplication];
}

- (void)reopened:(NSAppleEventDescriptor *)event withReply:(NSAppleEventDescriptor *)reply
{
    _reopened();
}

@end

namespace brimwatch::platform {

struct NativeApplication::Objects {
    BrimwatchNotificationObserver *_Nullable launched;
    BrimwatchNotificationObserver *_Nullable woken;
    BrimwatchNotificationObserver *_Nullable asked;
    BrimwatchReopenHandler *_Nullable reopened;
};

NativeApplication::NativeApplication()
    : m_objects(std::make_unique<Objects>())
{
}

NativeApplication::~NativeApplication()
{
    [m_objects->launched stop];
    [m_objects->woken stop];
    [m_objects->asked stop];
    [m_objects->reopened stop];
}

void NativeApplication::whenLaunched(std::function<void()> launched)
{
    [m_objects->launched stop];
    auto once = [objects = m_objects.get(), launched = std::move(launched)] {
        [objects->launched stop];
        launched();
    };
    m_objects->launched = [[BrimwatchNotificationObserver alloc]
        initWithCenter:NSNotificationCenter.defaultCenter
                  name:NSApplicationDidFinishLaunchingNotification
                object:NSApplication.sharedApplication
                notify:std::move(once)];
}

void NativeApplication::whenWoken(std::function<void()> woken)
{
    [m_objects->woken stop];
    // The workspace has a center of its own: on the default one this is never posted.
    m_objects->woken = [[BrimwatchNotificationObserver alloc]
        initWithCenter:NSWorkspace.sharedWorkspace.notificationCenter
                  name:NSWorkspaceDidWakeNotification
                object:nil
                notify:std::move(woken)];
}

void NativeApplication::whenAskedToShow(std::function<void()> asked)
{
    [m_objects->asked stop];
    [m_objects->reopened stop];
    m_objects->reopened = [[BrimwatchReopenHandler alloc] initWithReopened:asked];
    m_objects->asked = [[BrimwatchNotificationObserver alloc]
        initWithCenter:NSDistributedNotificationCenter.defaultCenter
                  name:showRequest
                object:nil
                notify:std::move(asked)];
}

void NativeApplication::askOtherToShow()
{
    // At once: otherwise the system keeps it until the other program is in front, which ours never
    // is.
    [NSDistributedNotificationCenter.defaultCenter postNotificationName:showRequest
                                                                 object:nil
                                                               userInfo:nil
                                                     deliverImmediately:YES];
}

void NativeApplication::becomeAccessory()
{
    [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void NativeApplication::closeWindows()
{
    for (NSWindow *window in NSApplication.sharedApplication.windows) {
        [window orderOut:nil];
        [window close];
    }
}

void NativeApplication::terminate()
{
    [NSApplication.sharedApplication terminate:nil];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
