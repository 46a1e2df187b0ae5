// The part of AppKit that our macOS layer uses, declared for checks on Linux: written by us from
// public documentation, not the system's header, not complete and never shipped. On a Mac the
// SDK's header of the same name is used instead.
#pragma once

#include <Foundation/Foundation.h>

@class NSApplication, NSWindow, NSView, NSScreen, NSEvent, NSImage, NSColor, NSFont, NSAppearance,
    NSViewController, NSPopover, NSStatusItem, NSStatusBar, NSStatusBarButton, NSGraphicsContext,
    NSTextAttachment, NSImageSymbolConfiguration, NSBitmapImageRep, CALayer;

NS_ASSUME_NONNULL_BEGIN

// ---- appearance ----
typedef NSString *NSAppearanceName;
FOUNDATION_EXPORT const NSAppearanceName NSAppearanceNameAqua;
FOUNDATION_EXPORT const NSAppearanceName NSAppearanceNameDarkAqua MACDECL_AVAIL(10.14);

@interface NSAppearance : NSObject <NSSecureCoding>
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName> *)names
    MACDECL_AVAIL(10.14);
- (void)performAsCurrentDrawingAppearance:(void(NS_NOESCAPE ^)(void))block MACDECL_AVAIL(11.0);
@end

@protocol NSAppearanceCustomization <NSObject>
@property (nullable, strong) NSAppearance *appearance;
@property (readonly, strong) NSAppearance *effectiveAppearance;
@end

// ---- colour, font ----
typedef NSString *NSColorName;
typedef NSString *NSColorSpaceName;
FOUNDATION_EXPORT const NSColorSpaceName NSCalibratedRGBColorSpace;
FOUNDATION_EXPORT const NSNotificationName NSSystemColorsDidChangeNotification;

@interface NSColorSpace : NSObject <NSSecureCoding>
@property (class, strong, readonly) NSColorSpace *sRGBColorSpace;
@end

@interface NSColor : NSObject <NSCopying, NSSecureCoding>
+ (NSColor *)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a;
+ (NSColor *)colorWithSRGBRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a;
+ (NSColor *)colorWithName:(nullable NSColorName)name
           dynamicProvider:(NSColor * (^)(NSAppearance *appearance))provider MACDECL_AVAIL(10.15);
@property (class, strong, readonly) NSColor *labelColor;
@property (class, strong, readonly) NSColor *secondaryLabelColor;
@property (class, strong, readonly) NSColor *separatorColor MACDECL_AVAIL(10.14);
@property (class, strong, readonly) NSColor *windowBackgroundColor;
@property (class, strong, readonly) NSColor *controlBackgroundColor;
@property (class, strong, readonly) NSColor *controlAccentColor MACDECL_AVAIL(10.14);
@property (class, strong, readonly) NSColor *systemRedColor;
@property (class, strong, readonly) NSColor *systemOrangeColor;
@property (class, strong, readonly) NSColor *systemGreenColor;
@property (class, strong, readonly) NSColor *systemBlueColor;
@property (class, strong, readonly) NSColor *systemPurpleColor;
@property (class, strong, readonly) NSColor *whiteColor;
@property (class, strong, readonly) NSColor *clearColor;
- (nullable NSColor *)colorUsingColorSpace:(NSColorSpace *)space;
@property (readonly) CGFloat redComponent;
@property (readonly) CGFloat greenComponent;
@property (readonly) CGFloat blueComponent;
@property (readonly) CGFloat alphaComponent;
- (void)set;
@end

typedef CGFloat NSFontWeight;
FOUNDATION_EXPORT const NSFontWeight NSFontWeightRegular;
FOUNDATION_EXPORT const NSFontWeight NSFontWeightMedium;
FOUNDATION_EXPORT const NSFontWeight NSFontWeightSemibold;
FOUNDATION_EXPORT const NSFontWeight NSFontWeightBold;

@interface NSFont : NSObject <NSCopying, NSSecureCoding>
+ (NSFont *)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
@property (readonly) CGFloat pointSize;
@property (readonly) CGFloat capHeight;
@end

// ---- attributed strings ----
FOUNDATION_EXPORT const NSAttributedStringKey NSFontAttributeName;
FOUNDATION_EXPORT const NSAttributedStringKey NSForegroundColorAttributeName;
FOUNDATION_EXPORT const NSAttributedStringKey NSAttachmentAttributeName;

@interface NSTextAttachment : NSObject <NSSecureCoding>
- (instancetype)init;
@property (nullable, strong) NSImage *image;
@property CGRect bounds;
@end

@interface NSAttributedString (NSAttachmentConveniences)
+ (NSAttributedString *)attributedStringWithAttachment:(NSTextAttachment *)attachment;
@end

// ---- image, drawing ----
MACDECL_AVAIL(11.0)
@interface NSImageSymbolConfiguration : NSObject <NSCopying, NSSecureCoding>
+ (instancetype)configurationWithPointSize:(CGFloat)size weight:(NSFontWeight)weight;
@end

@interface NSImage : NSObject <NSCopying, NSSecureCoding>
+ (nullable instancetype)imageWithSystemSymbolName:(NSString *)name
                          accessibilityDescription:(nullable NSString *)description
    MACDECL_AVAIL(11.0);
+ (NSImage *)imageWithSize:(NSSize)size
                   flipped:(BOOL)flipped
            drawingHandler:(BOOL (^)(NSRect dstRect))handler;
- (nullable NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)configuration
    MACDECL_AVAIL(11.0);
@property NSSize size;
// Methods and no property: "template" is a keyword of C++, and image.template no expression.
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@property (nullable, copy) NSString *accessibilityDescription;
- (void)drawInRect:(NSRect)rect;
@end

@interface NSImageRep : NSObject <NSCopying, NSCoding>
@property NSSize size;
@end

@interface NSBitmapImageRep : NSImageRep <NSSecureCoding>
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char *_Nullable *_Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bps
                                  samplesPerPixel:(NSInteger)spp
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)planar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                      bytesPerRow:(NSInteger)rowBytes
                                     bitsPerPixel:(NSInteger)pixelBits;
@property (nullable, readonly) unsigned char *bitmapData NS_RETURNS_INNER_POINTER;
@property (readonly) NSInteger bytesPerRow;
- (nullable NSBitmapImageRep *)bitmapImageRepByRetaggingWithColorSpace:(NSColorSpace *)space
    MACDECL_AVAIL(10.6);
@end

@interface NSGraphicsContext : NSObject
+ (nullable NSGraphicsContext *)graphicsContextWithBitmapImageRep:(NSBitmapImageRep *)bitmap;
@property (class, nullable, strong) NSGraphicsContext *currentContext;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

typedef NS_ENUM(NSUInteger, NSCompositingOperation) {
    NSCompositingOperationCopy = 1,
    NSCompositingOperationSourceOver = 2,
    NSCompositingOperationSourceIn = 3,
};
FOUNDATION_EXPORT void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation operation);

@interface CALayer : NSObject
@property CGFloat cornerRadius;
@property BOOL masksToBounds;
@end

// ---- events, responders, views ----
typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeRightMouseUp = 4,
};
typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskLeftMouseDown = 1ULL << 1,
    NSEventMaskLeftMouseUp = 1ULL << 2,
    NSEventMaskRightMouseDown = 1ULL << 3,
    NSEventMaskRightMouseUp = 1ULL << 4,
};

@interface NSEvent : NSObject <NSCopying, NSCoding>
@property (readonly) NSEventType type;
@property (readonly) NSPoint locationInWindow;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent *event))handler;
+ (void)removeMonitor:(id)monitor;
@end

@interface NSResponder : NSObject <NSCoding>
@end

typedef NS_OPTIONS(NSUInteger, NSTrackingAreaOptions) {
    NSTrackingMouseEnteredAndExited = 0x01,
    NSTrackingMouseMoved = 0x02,
    NSTrackingActiveInActiveApp = 0x40,
    NSTrackingActiveAlways = 0x80,
    NSTrackingInVisibleRect = 0x200,
};
@interface NSTrackingArea : NSObject <NSCopying, NSCoding>
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(nullable id)owner
                    userInfo:(nullable NSDictionary *)userInfo;
@end

@protocol NSAccessibilityProtocol
@property (nullable, copy) NSString *accessibilityLabel;
@end

@interface NSView : NSResponder <NSAppearanceCustomization, NSAccessibilityProtocol>
- (instancetype)initWithFrame:(NSRect)frame NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder *)coder NS_DESIGNATED_INITIALIZER;
@property (nullable, readonly, assign) NSWindow *window;
@property (nullable, readonly, assign) NSView *superview;
@property (copy) NSArray<NSView *> *subviews;
@property NSRect frame;
@property NSRect bounds;
@property (nullable, copy) NSString *toolTip;
@property BOOL wantsLayer;
@property (nullable, strong) CALayer *layer;
- (void)addSubview:(NSView *)view;
- (void)removeFromSuperview;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView *)view;
- (NSPoint)convertPoint:(NSPoint)point fromView:(nullable NSView *)view;
- (void)addTrackingArea:(NSTrackingArea *)area;
- (void)removeTrackingArea:(NSTrackingArea *)area;
@end

@interface NSControl : NSView
@property (nullable, weak) id target;
@property (nullable) SEL action;
- (NSInteger)sendActionOn:(NSEventMask)mask;
@end

typedef NS_ENUM(NSUInteger, NSCellImagePosition) {
    NSNoImage = 0,
    NSImageOnly = 1,
    NSImageLeft = 2,
    NSImageRight = 3,
    NSImageLeading = 7,
    NSImageTrailing = 8,
};

@interface NSButton : NSControl
@property (copy) NSAttributedString *attributedTitle;
@property (nullable, strong) NSImage *image;
@property NSCellImagePosition imagePosition;
@end

// ---- windows ----
@interface NSScreen : NSObject
@property (readonly) NSRect visibleFrame;
@end

typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSNormalWindowLevel = 0;
static const NSWindowLevel NSPopUpMenuWindowLevel = 101;
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
};
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };

@protocol NSWindowDelegate <NSObject>
@optional
- (void)windowDidResignKey:(NSNotification *)notification;
@end

@interface NSWindow : NSResponder <NSAppearanceCustomization>
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder *)coder NS_UNAVAILABLE;
@property (nullable, weak) id<NSWindowDelegate> delegate;
@property (readonly) NSRect frame;
@property (nullable, strong) NSView *contentView;
@property (nullable, readonly, strong) NSScreen *screen;
@property NSWindowLevel level;
@property (getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property (getter=isOpaque) BOOL opaque;
@property BOOL hasShadow;
@property BOOL hidesOnDeactivate;
@property (copy) NSColor *backgroundColor;
@property (readonly) BOOL canBecomeKeyWindow;
- (void)makeKeyWindow;
- (BOOL)makeFirstResponder:(nullable NSResponder *)responder;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)close;
- (void)setContentSize:(NSSize)size;
- (void)setFrameOrigin:(NSPoint)point;
- (NSRect)convertRectToScreen:(NSRect)rect;
@end

@interface NSPanel : NSWindow
@end

@interface NSViewController : NSResponder
- (instancetype)initWithNibName:(nullable NSString *)name
                         bundle:(nullable NSBundle *)bundle NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder *)coder NS_DESIGNATED_INITIALIZER;
@property (strong) NSView *view;
@end

// ---- status bar ----
static const CGFloat NSVariableStatusItemLength = -1.0;
static const CGFloat NSSquareStatusItemLength = -2.0;

@interface NSStatusBar : NSObject
@property (class, readonly, strong) NSStatusBar *systemStatusBar;
- (NSStatusItem *)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem *)item;
@end

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property CGFloat length;
@property (nullable, readonly, strong) NSStatusBarButton *button;
@end

// ---- popover ----
typedef NS_ENUM(NSInteger, NSPopoverBehavior) {
    NSPopoverBehaviorApplicationDefined = 0,
    NSPopoverBehaviorTransient = 1,
    NSPopoverBehaviorSemitransient = 2,
};

@protocol NSPopoverDelegate <NSObject>
@optional
- (void)popoverDidClose:(NSNotification *)notification;
@end

@interface NSPopover : NSResponder <NSAppearanceCustomization>
@property (nullable, weak) id<NSPopoverDelegate> delegate;
@property NSPopoverBehavior behavior;
@property BOOL animates;
@property (nullable, strong) NSViewController *contentViewController;
@property NSSize contentSize;
@property (readonly, getter=isShown) BOOL shown;
- (void)showRelativeToRect:(NSRect)rect ofView:(NSView *)view preferredEdge:(NSRectEdge)edge;
- (void)performClose:(nullable id)sender;
- (void)close;
@end

// ---- application, workspace, pasteboard ----
typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1,
    NSApplicationActivationPolicyProhibited = 2,
};
FOUNDATION_EXPORT const NSNotificationName NSApplicationDidFinishLaunchingNotification;

@interface NSApplication : NSResponder <NSAppearanceCustomization>
@property (class, readonly, strong) NSApplication *sharedApplication;
@property (readonly, copy) NSArray<NSWindow *> *windows;
@property (readonly, getter=isActive) BOOL active;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)terminate:(nullable id)sender;
// There to be refused at our deployment target.
- (void)activate MACDECL_AVAIL(14.0);
@end

@interface NSWorkspace : NSObject
@property (class, readonly, strong) NSWorkspace *sharedWorkspace;
@property (readonly, strong) NSNotificationCenter *notificationCenter;
- (BOOL)openURL:(NSURL *)url;
@property (readonly) BOOL accessibilityDisplayShouldReduceMotion;
@end
FOUNDATION_EXPORT const NSNotificationName
    NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification;
FOUNDATION_EXPORT const NSNotificationName NSWorkspaceDidWakeNotification;

typedef NSString *NSPasteboardType;
FOUNDATION_EXPORT const NSPasteboardType NSPasteboardTypeString;

@interface NSPasteboard : NSObject
@property (class, readonly, strong) NSPasteboard *generalPasteboard;
- (NSInteger)clearContents;
- (BOOL)setString:(NSString *)string forType:(NSPasteboardType)type;
@end

NS_ASSUME_NONNULL_END
