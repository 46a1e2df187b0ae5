#import "platform/macos/native_status_item.h"

#import "platform/macos/objc_support.h"

#include <utility>

NS_ASSUME_NONNULL_BEGIN

/// What the button sends its action to.
@interface BrimwatchStatusItemTarget : NSObject
- (instancetype)initWithClicked:(std::function<void()>)clicked;
- (void)statusItemClicked:(NSStatusBarButton *)sender;
@end

@implementation BrimwatchStatusItemTarget {
    std::function<void()> _clicked;
}

- (instancetype)initWithClicked:(std::function<void()>)clicked
{
    self = [super init];
    if (self != nil)
        _clicked = std::move(clicked);
    return self;
}

- (void)statusItemClicked:(NSStatusBarButton *)sender
{
    _clicked();
}

@end

namespace brimwatch::platform {
namespace {

NSImage *_Nullable paddedImage(const NativeLabelImage &label)
{
    NSImage *symbol = symbolImage(label.symbol, toNSString(label.accessibilityDescription));
    if (symbol == nil)
        return nil;
    const NSSize inner = symbol.size;
    const NSSize outer = NSMakeSize(label.paddingLeft + inner.width + label.paddingRight,
        label.paddingVertical + inner.height + label.paddingVertical);
    const NSRect place
        = NSMakeRect(label.paddingLeft, label.paddingVertical, inner.width, inner.height);
    NSImage *image = [NSImage imageWithSize:outer
                                    flipped:NO
                             drawingHandler:^BOOL(NSRect) {
                                 [symbol drawInRect:place];
                                 return YES;
                             }];
    image.accessibilityDescription = symbol.accessibilityDescription;
    [image setTemplate:YES];
    return image;
}

NSAttributedString *_Nullable attributedSymbol(const NativeSymbol &symbol, NSFont *font)
{
    NSImage *image = symbolImage(symbol, nil);
    if (image == nil)
        return nil;
    const NSSize size = image.size;
    NSTextAttachment *attachment = [[NSTextAttachment alloc] init];
    attachment.image = image;
    attachment.bounds = CGRectMake(0, (font.capHeight - size.height) / 2, size.width, size.height);
    return [NSAttributedString attributedStringWithAttachment:attachment];
}

NSAttributedString *attributedText(const NativeTextRun &run, NSFont *font)
{
    NSString *text = toNSString(run.text);
    if (!run.color)
        return [[NSAttributedString alloc] initWithString:text];
    return [[NSAttributedString alloc] initWithString:text
                                           attributes:@{
                                               NSFontAttributeName : font,
                                               NSForegroundColorAttributeName : nsColor(*run.color),
                                           }];
}

NSAttributedString *attributedTitle(const NativeLabel &label)
{
    NSFont *font = [NSFont monospacedDigitSystemFontOfSize:label.fontSize
                                                    weight:NSFontWeightMedium];
    NSMutableAttributedString *title = [[NSMutableAttributedString alloc] init];
    for (const NativeRun &run : label.title) {
        if (const auto *text = std::get_if<NativeTextRun>(&run))
            [title appendAttributedString:attributedText(*text, font)];
        else if (const auto *symbol = std::get_if<NativeSymbolRun>(&run)) {
            if (NSAttributedString *drawn = attributedSymbol(symbol->symbol, font))
                [title appendAttributedString:drawn];
        }
    }
    return title;
}

} // namespace

struct NativeStatusItem::Objects {
    NSStatusItem *item;
    // The button holds its target weakly.
    BrimwatchStatusItemTarget *target;
};

NativeStatusItem::NativeStatusItem(std::function<void()> clicked)
    : m_objects(new Objects{
          .item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength],
          .target = [[BrimwatchStatusItemTarget alloc] initWithClicked:std::move(clicked)],
      })
{
    NSStatusBarButton *button = m_objects->item.button;
    button.target = m_objects->target;
    button.action = @selector(statusItemClicked:);
    [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
}

NativeStatusItem::~NativeStatusItem()
{
    m_objects->item.button.target = nil;
    [NSStatusBar.systemStatusBar removeStatusItem:m_objects->item];
}

bool NativeStatusItem::hasButton() const
{
    return m_objects->item.button != nil;
}

void NativeStatusItem::setLabel(const NativeLabel &label)
{
    NSStatusBarButton *button = m_objects->item.button;
    if (button == nil)
        return;
    if (!label.image) {
        button.image = nil;
        // "Image only" of an earlier label would hide the title too.
        button.imagePosition = NSNoImage;
    } else if (NSImage *image = paddedImage(*label.image)) {
        button.image = image;
        button.imagePosition
            = label.imagePosition == NativeImagePosition::Leading ? NSImageLeading : NSImageOnly;
    }
    button.attributedTitle = attributedTitle(label);
}

void NativeStatusItem::setToolTip(const std::string &text)
{
    m_objects->item.button.toolTip = text.empty() ? nil : toNSString(text);
}

void NativeStatusItem::setAccessibilityLabel(const std::string &text)
{
    m_objects->item.button.accessibilityLabel = text.empty() ? nil : toNSString(text);
}

void *_Nullable NativeStatusItem::button() const
{
    return (__bridge void *)m_objects->item.button;
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
