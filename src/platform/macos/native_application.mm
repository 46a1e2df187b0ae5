#import "platform/macos/native_application.h"

#import "platform/macos/objc_support.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

/// Observes the end of launching. Not the application's delegate: that is Qt's.
@interface BrimwatchLaunchObserver : NSObject
- (instancetype)initWithLaunched:(std::function<void()>)launched;
- (void)stop;
- (void)didFinishLaunching:(NSNotification *)notification;
@end

@implementation BrimwatchLaunchObserver {
    std::function<void()> _launched;
}

- (instancetype)initWithLaunched:(std::function<void()>)launched
{
    self = [super init];
    if (self == nil)
        return self;
    _launched = std::move(launched);
    [NSNotificationCenter.defaultCenter addObserver:self
                                           selector:@selector(didFinishLaunching:)
                                               name:NSApplicationDidFinishLaunchingNotification
                                             object:NSApplication.sharedApplication];
    return self;
}

- (void)stop
{
    [NSNotificationCenter.defaultCenter removeObserver:self];
}

- (void)didFinishLaunching:(NSNotification *)notification
{
    [self stop];
    _launched();
}

@end

namespace brimwatch::platform {

struct NativeApplication::Objects {
    BrimwatchLaunchObserver *_Nullable observer;
};

NativeApplication::NativeApplication()
    : m_objects(std::make_unique<Objects>())
{
}

NativeApplication::~NativeApplication()
{
    [m_objects->observer stop];
}

void NativeApplication::whenLaunched(std::function<void()> launched)
{
    [m_objects->observer stop];
    m_objects->observer = [[BrimwatchLaunchObserver alloc] initWithLaunched:std::move(launched)];
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
