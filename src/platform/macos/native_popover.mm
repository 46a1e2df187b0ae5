#import "platform/macos/native_popover.h"

#import "platform/macos/hover_tracker.h"
#import "platform/macos/objc_support.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

@interface BrimwatchPopoverDelegate : NSObject <NSPopoverDelegate>
- (instancetype)initWithDidClose:(std::function<void()>)didClose;
@end

@implementation BrimwatchPopoverDelegate {
    std::function<void()> _didClose;
}

- (instancetype)initWithDidClose:(std::function<void()>)didClose
{
    self = [super init];
    if (self != nil)
        _didClose = std::move(didClose);
    return self;
}

- (void)popoverDidClose:(NSNotification *)notification
{
    _didClose();
}

@end

namespace brimwatch::platform {

struct NativePopover::Objects {
    std::function<void *()> button;
    NSPopover *popover;
    // The popover holds its delegate weakly.
    BrimwatchPopoverDelegate *delegate;
    NSViewController *controller;
    BrimwatchHoverTracker *_Nullable hover;
};

NativePopover::NativePopover(double width, double height, std::function<void *()> button,
    std::function<void()> didClose, Hovered hovered)
    : m_objects(new Objects{
          .button = std::move(button),
          .popover = [[NSPopover alloc] init],
          .delegate = [[BrimwatchPopoverDelegate alloc] initWithDidClose:std::move(didClose)],
          .controller = [[NSViewController alloc] initWithNibName:nil bundle:nil],
          .hover = nil,
      })
{
    NSPopover *popover = m_objects->popover;
    popover.contentSize = NSMakeSize(width, height);
    popover.behavior = NSPopoverBehaviorTransient;
    popover.animates = YES;
    popover.delegate = m_objects->delegate;

    NSViewController *controller = m_objects->controller;
    controller.view = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, width, height)];
    controller.view.wantsLayer = YES;
    popover.contentViewController = controller;
    // The popover takes the size of its controller's view: set it again in case they differ.
    popover.contentSize = NSMakeSize(width, height);
    m_objects->hover = [[BrimwatchHoverTracker alloc] initWithView:controller.view
                                                           hovered:std::move(hovered)];
}

NativePopover::~NativePopover()
{
    [m_objects->hover stop];
    // This close is not reported: the object that would hear of it is being destroyed.
    m_objects->popover.delegate = nil;
    [m_objects->popover close];
}

std::uintptr_t NativePopover::contentView() const
{
    return reinterpret_cast<std::uintptr_t>((__bridge void *)m_objects->controller.view);
}

void NativePopover::setContentSize(double width, double height)
{
    m_objects->popover.contentSize = NSMakeSize(width, height);
}

bool NativePopover::isShown() const
{
    return m_objects->popover.isShown;
}

void NativePopover::show()
{
    NSView *button = (__bridge NSView *)m_objects->button();
    if (button == nil || isShown())
        return;
    [m_objects->popover showRelativeToRect:button.bounds
                                    ofView:button
                             preferredEdge:NSRectEdgeMinY];
}

void NativePopover::makeKey()
{
    NSView *view = m_objects->controller.view;
    NSWindow *window = view.window;
    [window makeKeyWindow];
    if (NSView *content = view.subviews.firstObject)
        [window makeFirstResponder:content];
}

void NativePopover::performClose()
{
    [m_objects->popover performClose:nil];
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
