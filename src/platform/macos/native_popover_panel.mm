// The other implementation of NativePopover: a panel of our own, in case Qt's view does not work
// in the system's popover.

#import "platform/macos/hover_tracker.h"
#import "platform/macos/native_popover.h"
#import "platform/macos/objc_support.h"

#include <algorithm>
#include <utility>

NS_ASSUME_NONNULL_BEGIN

namespace {

constexpr CGFloat cornerRadius = 10;
/// Between the button and the panel.
constexpr CGFloat gap = 4;

} // namespace

/// Without a title bar a window takes the keyboard only when its class says so.
@interface BrimwatchPanel : NSPanel
@end

@implementation BrimwatchPanel

- (BOOL)canBecomeKeyWindow
{
    return YES;
}

@end

@interface BrimwatchPanelController : NSObject <NSWindowDelegate>
- (instancetype)initWithSize:(NSSize)size didClose:(std::function<void()>)didClose;
- (void)showBelow:(NSView *)button;
- (void)close;
- (void)forgetListener;
@property (nonatomic, readonly) NSPanel *panel;
@property (nonatomic, readonly) NSView *content;
@property (nonatomic, readonly) BOOL shown;
@end

@implementation BrimwatchPanelController {
    std::function<void()> _didClose;
    id _outsideMonitor;
}

- (instancetype)initWithSize:(NSSize)size didClose:(std::function<void()>)didClose
{
    self = [super init];
    if (self == nil)
        return self;
    _didClose = std::move(didClose);
    const NSRect frame = NSMakeRect(0, 0, size.width, size.height);
    _panel = [[BrimwatchPanel alloc]
        initWithContentRect:frame
                  styleMask:NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel
                    backing:NSBackingStoreBuffered
                      defer:YES];
    // We hold it; closing must not release it as well.
    _panel.releasedWhenClosed = NO;
    _panel.level = NSPopUpMenuWindowLevel;
    _panel.opaque = NO;
    _panel.backgroundColor = NSColor.clearColor;
    _panel.hasShadow = YES;
    _panel.hidesOnDeactivate = NO;
    _panel.delegate = self;
    NSView *view = [[NSView alloc] initWithFrame:frame];
    _content = view;
    view.wantsLayer = YES;
    view.layer.cornerRadius = cornerRadius;
    view.layer.masksToBounds = YES;
    _panel.contentView = view;
    return self;
}

- (void)showBelow:(NSView *)button
{
    const NSRect item = [button.window convertRectToScreen:[button convertRect:button.bounds
                                                                        toView:nil]];
    const NSSize size = self.panel.frame.size;
    const NSRect area = button.window.screen.visibleFrame;
    // The left edge wins where there is too little room.
    const CGFloat x = std::max(
        area.origin.x, std::min(NSMidX(item) - size.width / 2, NSMaxX(area) - size.width));
    [self.panel setFrameOrigin:NSMakePoint(x, item.origin.y - gap - size.height)];
    _shown = YES;
    __weak BrimwatchPanelController *weakSelf = self;
    // Clicks on other programs; those on our own windows take the keyboard away instead.
    _outsideMonitor = [NSEvent
        addGlobalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown
                                      handler:^(NSEvent *) { [weakSelf close]; }];
    [self.panel orderFrontRegardless];
}

- (void)close
{
    if (!_shown)
        return;
    _shown = NO;
    if (_outsideMonitor != nil)
        [NSEvent removeMonitor:_outsideMonitor];
    _outsideMonitor = nil;
    [self.panel orderOut:nil];
    if (_didClose)
        _didClose();
}

- (void)forgetListener
{
    _didClose = nullptr;
    self.panel.delegate = nil;
}

- (void)windowDidResignKey:(NSNotification *)notification
{
    [self close];
}

@end

namespace brimwatch::platform {

struct NativePopover::Objects {
    std::function<void *()> button;
    BrimwatchPanelController *controller;
    BrimwatchHoverTracker *_Nullable hover;
};

NativePopover::NativePopover(double width, double height, std::function<void *()> button,
    std::function<void()> didClose, Hovered hovered)
    : m_objects(new Objects{
          .button = std::move(button),
          .controller = [[BrimwatchPanelController alloc] initWithSize:NSMakeSize(width, height)
                                                              didClose:std::move(didClose)],
          .hover = nil,
      })
{
    m_objects->hover = [[BrimwatchHoverTracker alloc] initWithView:m_objects->controller.content
                                                           hovered:std::move(hovered)];
}

NativePopover::~NativePopover()
{
    [m_objects->hover stop];
    [m_objects->controller forgetListener];
    [m_objects->controller close];
}

std::uintptr_t NativePopover::contentView() const
{
    return reinterpret_cast<std::uintptr_t>(
        (__bridge void *)m_objects->controller.panel.contentView);
}

void NativePopover::setContentSize(double width, double height)
{
    [m_objects->controller.panel setContentSize:NSMakeSize(width, height)];
}

bool NativePopover::isShown() const
{
    return m_objects->controller.shown;
}

void NativePopover::show()
{
    NSView *button = (__bridge NSView *)m_objects->button();
    if (button == nil || isShown())
        return;
    [m_objects->controller showBelow:button];
}

void NativePopover::makeKey()
{
    NSPanel *panel = m_objects->controller.panel;
    [panel makeKeyWindow];
    if (NSView *content = panel.contentView.subviews.firstObject)
        [panel makeFirstResponder:content];
}

void NativePopover::performClose()
{
    [m_objects->controller close];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
