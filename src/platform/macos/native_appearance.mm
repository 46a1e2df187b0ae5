#import "platform/macos/native_appearance.h"

#import "platform/macos/objc_support.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

namespace {

// Any address of our own: it distinguishes our observation from others'.
char appearanceContext;

} // namespace

@interface BrimwatchAppearanceObserver : NSObject
- (instancetype)initWithChanged:(std::function<void()>)changed;
- (void)stop;
- (void)settingsChanged:(NSNotification *)notification;
@end

@implementation BrimwatchAppearanceObserver {
    std::function<void()> _changed;
}

- (instancetype)initWithChanged:(std::function<void()>)changed
{
    self = [super init];
    if (self == nil)
        return self;
    _changed = std::move(changed);
    [NSApplication.sharedApplication addObserver:self
                                      forKeyPath:@"effectiveAppearance"
                                         options:NSKeyValueObservingOptionNew
                                         context:&appearanceContext];
    [NSNotificationCenter.defaultCenter addObserver:self
                                           selector:@selector(settingsChanged:)
                                               name:NSSystemColorsDidChangeNotification
                                             object:nil];
    [NSWorkspace.sharedWorkspace.notificationCenter
        addObserver:self
           selector:@selector(settingsChanged:)
               name:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
             object:nil];
    return self;
}

- (void)stop
{
    [NSApplication.sharedApplication removeObserver:self
                                         forKeyPath:@"effectiveAppearance"
                                            context:&appearanceContext];
    [NSNotificationCenter.defaultCenter removeObserver:self];
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:self];
}

- (void)settingsChanged:(NSNotification *)notification
{
    _changed();
}

- (void)observeValueForKeyPath:(nullable NSString *)keyPath
                      ofObject:(nullable id)object
                        change:(nullable NSDictionary<NSKeyValueChangeKey, id> *)change
                       context:(nullable void *)context
{
    if (context == &appearanceContext)
        _changed();
    else
        [super observeValueForKeyPath:keyPath ofObject:object change:change context:context];
}

@end

namespace brimwatch::platform {

struct NativeAppearance::Objects {
    BrimwatchAppearanceObserver *observer;
};

NativeAppearance::NativeAppearance(std::function<void()> changed)
    : m_objects(new Objects{
          .observer = [[BrimwatchAppearanceObserver alloc] initWithChanged:std::move(changed)],
      })
{
}

NativeAppearance::~NativeAppearance()
{
    [m_objects->observer stop];
}

bool NativeAppearance::isDark() const
{
    return isDarkAppearance(NSApplication.sharedApplication.effectiveAppearance);
}

NativeRgba NativeAppearance::color(NativeColor color) const
{
    __block NativeRgba answer;
    [NSApplication.sharedApplication.effectiveAppearance performAsCurrentDrawingAppearance:^{
        NSColor *resolved = [nsColor(color) colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
        // Asking another colour for its components throws.
        if (resolved != nil)
            answer = {.red = resolved.redComponent,
                .green = resolved.greenComponent,
                .blue = resolved.blueComponent,
                .alpha = resolved.alphaComponent};
    }];
    return answer;
}

bool NativeAppearance::reducesMotion() const
{
    return NSWorkspace.sharedWorkspace.accessibilityDisplayShouldReduceMotion;
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
