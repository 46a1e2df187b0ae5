#!/usr/bin/env python3
"""mutants.py [KIND...] [WORD...]: plants mistakes, one at a time, and tells which check sees each.

KIND is layer (the .mm files), adapters (mac_*.cpp and main_macos.cpp) or package (Info.plist and the packaging
scripts); all three when none is named. With WORDs only the mistakes whose file or name contains one of them.

A measure of the checks, to be taken when they or the layer change; no part of the test suite, because it takes a
while: some seconds for each mistake with ccache, minutes without. The adapters want a build with tests in
BRIMWATCH_BUILD (build/dev when that is not set). SKIP=N leaves out the first N of each kind. Ends with failure when
fewer than 97 of 100 are seen.
"""

import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

here = Path(__file__).resolve().parent
root = here.parent.parent
layer = root / "src/platform/macos"
build = Path(os.environ.get("BRIMWATCH_BUILD", root / "build/dev"))
# Always the same place, so that the compiler cache knows the files that are as they were.
copy = root / "build/macos-mutants/src/platform/macos"

# File, name, what stands there, what is planted, and what has to stand at the top of the file for it.
MUTANTS = [
    ("objc_support", "light and dark green swapped", "if (isDarkAppearance(appearance))", "if (!isDarkAppearance(appearance))"),
    ("objc_support", "a component of the dark green", "green:0.83 blue:0.45", "green:0.38 blue:0.45"),
    ("objc_support", "a component of the light green", "blue:0.26 alpha", "blue:0.62 alpha"),
    ("objc_support", "dark aqua not among the names", "@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]", "@[ NSAppearanceNameAqua ]"),
    ("objc_support", "nil from bytes that are no text", 'return string != nil ? string : @"\\uFFFD";', "return string;"),
    ("objc_support", "ASCII for UTF-8", "encoding:NSUTF8StringEncoding", "encoding:NSASCIIStringEncoding"),
    ("objc_support", "red for orange", "return NSColor.systemOrangeColor;", "return NSColor.systemRedColor;"),
    ("objc_support", "label for secondary label", "return NSColor.secondaryLabelColor;", "return NSColor.labelColor;"),
    ("objc_support", "the dynamic green for the system's", "return NSColor.systemGreenColor;", "return adaptiveHealthyGreen();"),
    ("objc_support", "template flag of symbols forgotten", "[image setTemplate:YES];", ""),
    ("objc_support", "image.template in Objective-C++", "[image setTemplate:YES];", "image.template = YES;"),
    ("objc_support", "weight of symbols ignored", "weight:fontWeight(symbol.weight)", "weight:NSFontWeightRegular"),
    ("objc_support", "configuration not applied", "[plain imageWithSymbolConfiguration:configuration];", "plain;\n    (void)configuration;"),
    ("objc_support", "green made anew each time", "static NSColor *const green", "NSColor *const green"),
    ("native_status_item", "right button missing in the mask", "NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp", "NSEventMaskLeftMouseUp"),
    ("native_status_item", "press instead of release in the mask", "NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp", "NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown"),
    ("native_status_item", "action without its colon", "@selector(statusItemClicked:)", "@selector(statusItemClicked)"),
    ("native_status_item", "action of another name", "- (void)statusItemClicked:(NSStatusBarButton *)sender\n{", "- (void)statusItemWasClicked:(NSStatusBarButton *)sender\n{"),
    ("native_status_item", "square item", "NSVariableStatusItemLength", "NSSquareStatusItemLength"),
    ("native_status_item", "item never removed", "[NSStatusBar.systemStatusBar removeStatusItem:m_objects->item];", ""),
    ("native_status_item", "target kept by nobody", "BrimwatchStatusItemTarget *target;", "BrimwatchStatusItemTarget *__weak target;"),
    ("native_status_item", "image on the left, whatever the script", "NSImageLeading : NSImageOnly", "NSImageLeft : NSImageOnly"),
    ("native_status_item", "image positions swapped", "NSImageLeading : NSImageOnly", "NSImageOnly : NSImageLeading"),
    ("native_status_item", "padding of the wrong side", "NSMakeRect(label.paddingLeft,", "NSMakeRect(label.paddingRight,"),
    ("native_status_item", "padding above forgotten", "label.paddingVertical + inner.height + label.paddingVertical", "label.paddingVertical + inner.height"),
    ("native_status_item", "padded image no template", "    [image setTemplate:YES];\n    return image;", "    return image;"),
    ("native_status_item", "padded image flipped", "flipped:NO", "flipped:YES"),
    ("native_status_item", "drawing says it did not draw", "return YES;\n", "return NO;\n"),
    ("native_status_item", "description of the sparkle lost", "image.accessibilityDescription = symbol.accessibilityDescription;", ""),
    ("native_status_item", "symbol centred on the font's size", "font.capHeight - size.height", "font.pointSize - size.height"),
    ("native_status_item", "symbol standing on the base line", "(font.capHeight - size.height) / 2", "0"),
    ("native_status_item", "gap with attributes", "    if (!run.color)\n        return [[NSAttributedString alloc] initWithString:text];\n", "    if (!run.color)\n        return [[NSAttributedString alloc] initWithString:text attributes:@{NSFontAttributeName : font}];\n"),
    ("native_status_item", "regular text", "weight:NSFontWeightMedium", "weight:NSFontWeightRegular"),
    ("native_status_item", "missing sparkle clears the image", "} else if (NSImage *image = paddedImage(*label.image)) {", "} else {\n        NSImage *image = paddedImage(*label.image);"),
    ("native_status_item", "image not cleared", "        button.image = nil;\n", ""),
    ("native_status_item", "image only without an image", "button.imagePosition = NSNoImage;", ""),
    ("native_status_item", "empty title not set", "    button.attributedTitle = attributedTitle(label);", "    if (!label.title.empty())\n        button.attributedTitle = attributedTitle(label);"),
    ("native_status_item", "leak by __bridge_retained", "return (__bridge void *)m_objects->item.button;", "return (__bridge_retained void *)m_objects->item.button;"),
    ("native_status_item", "empty tooltip", "toolTip = text.empty() ? nil : toNSString(text)", "toolTip = toNSString(text)"),
    ("native_popover", "upper edge", "NSRectEdgeMinY", "NSRectEdgeMaxY"),
    ("native_popover", "half transient", "NSPopoverBehaviorTransient", "NSPopoverBehaviorSemitransient"),
    ("native_popover", "no animation", "popover.animates = YES;", "popover.animates = NO;"),
    ("native_popover", "no delegate", "    popover.delegate = m_objects->delegate;\n", ""),
    ("native_popover", "delegate kept by nobody", "BrimwatchPopoverDelegate *delegate;", "BrimwatchPopoverDelegate *__weak delegate;"),
    ("native_popover", "delegate's method misspelt", "- (void)popoverDidClose:", "- (void)popoverDidclose:"),
    ("native_popover", "no layer", "controller.view.wantsLayer = YES;", ""),
    ("native_popover", "window not made key", "    [window makeKeyWindow];\n", ""),
    ("native_popover", "content not made first responder", "[window makeFirstResponder:content];", "(void)content;"),
    ("native_popover", "close for performClose", "[m_objects->popover performClose:nil];", "[m_objects->popover close];"),
    ("native_popover", "width and height swapped", "m_objects->popover.contentSize = NSMakeSize(width, height);\n}", "m_objects->popover.contentSize = NSMakeSize(height, width);\n}"),
    ("native_popover", "whoever goes is told", "    m_objects->popover.delegate = nil;\n", ""),
    ("native_popover", "shown twice", "button == nil || isShown()", "button == nil"),
    ("native_popover", "shown without a button", "    if (button == nil || isShown())\n        return;\n", ""),
    ("native_popover", "frame for bounds", "showRelativeToRect:button.bounds", "showRelativeToRect:button.frame"),
    ("native_popover", "macOS 14 call at 13.0", "    [window makeKeyWindow];", "    [window makeKeyWindow];\n    [NSApplication.sharedApplication activate];"),
    ("native_popover", "over-release by __bridge_transfer", "(__bridge NSView *)m_objects->button();", "(__bridge_transfer NSView *)m_objects->button();"),
    ("native_popover_panel", "panel activates the program", "NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel", "NSWindowStyleMaskBorderless"),
    ("native_popover_panel", "panel refuses the keyboard", "- (BOOL)canBecomeKeyWindow\n{\n    return YES;", "- (BOOL)canBecomeKeyWindow\n{\n    return NO;"),
    ("native_popover_panel", "released when closed", "_panel.releasedWhenClosed = NO;", ""),
    ("native_popover_panel", "listens outside for ever", "[NSEvent removeMonitor:_outsideMonitor];", "(void)_outsideMonitor;"),
    ("native_popover_panel", "closes twice", "    if (!_shown)\n        return;\n", ""),
    ("native_popover_panel", "beyond the screen", "std::min(NSMidX(item) - size.width / 2, NSMaxX(area) - size.width)", "NSMidX(item) - size.width / 2"),
    ("native_popover_panel", "panel above the item", "item.origin.y - gap - size.height", "item.origin.y + gap + size.height"),
    ("native_notifier", "badge for sound", "UNAuthorizationOptionAlert | UNAuthorizationOptionSound", "UNAuthorizationOptionAlert | UNAuthorizationOptionBadge"),
    ("native_notifier", "silent notification", "content.sound = UNNotificationSound.defaultSound;", ""),
    ("native_notifier", "completion not called", "strongSelf->_activated(brimwatch::platform::fromNSString(identifier));\n        completionHandler();", "strongSelf->_activated(brimwatch::platform::fromNSString(identifier));"),
    ("native_notifier", "told off the main thread", "    dispatch_async(dispatch_get_main_queue(), ^{\n", "    void (^now)(void) = ^{\n"),
    ("native_notifier", "no guard for a missing bundle", "    if (NSBundle.mainBundle.bundleIdentifier == nil)\n        return;\n", ""),
    ("native_notifier", "dismissed counts as chosen", "if (strongSelf != nil && chosen)", "(void)chosen;\n        if (strongSelf != nil)"),
    ("native_notifier", "delegate kept by its own block", "__weak BrimwatchNotificationDelegate *weakSelf = self;", "BrimwatchNotificationDelegate *weakSelf = self;"),
    ("native_notifier", "delegate's method misspelt", "didReceiveNotificationResponse:(UNNotificationResponse *)response", "didReceiveNotificationAnswer:(UNNotificationResponse *)response"),
    ("native_notifier", "title and body swapped", "content.title = toNSString(title);\n    content.body = toNSString(body);", "content.title = toNSString(body);\n    content.body = toNSString(title);"),
    ("native_notifier", "no sound while in front", "\n        | UNNotificationPresentationOptionSound", ""),
    ("native_notifier", "delegate left behind", "    m_objects->center.delegate = nil;\n", ""),
    ("native_login_item", "approval counts as enabled", "return Status::RequiresApproval;", "return Status::Enabled;"),
    ("native_login_item", "not found counts as not registered", "    case SMAppServiceStatusNotFound:\n        return Status::NotFound;", "    case SMAppServiceStatusNotFound:\n        return Status::NotRegistered;"),
    ("native_login_item", "error read in place of the result", "    if (succeeded)\n", "    (void)succeeded;\n    if (error == nil)\n"),
    ("native_login_item", "unregistering registers", "[SMAppService.mainAppService unregisterAndReturnError:&error]", "[SMAppService.mainAppService registerAndReturnError:&error]"),
    ("native_login_item", "BOOL is not bool on Intel", "    if (succeeded)\n", "    if (std::max(succeeded, false))\n", "#include <algorithm>"),
    ("native_login_item", "std::format at 13.0", "return fromNSString(error.localizedDescription);", 'return std::format("{}", fromNSString(error.localizedDescription));', "#include <format>"),
    ("native_login_item", "a class that is nowhere to be linked from", "return fromNSString(error.localizedDescription);", "(void)[[NSError alloc] init];\n    return fromNSString(error.localizedDescription);"),
    ("native_pasteboard", "pasteboard not cleared", "    [pasteboard clearContents];\n", ""),
    ("native_pasteboard", "text before clearing", "    [pasteboard clearContents];\n    [pasteboard setString:toNSString(text) forType:NSPasteboardTypeString];", "    [pasteboard setString:toNSString(text) forType:NSPasteboardTypeString];\n    [pasteboard clearContents];"),
    ("native_workspace", "nil address opened", "    if (NSURL *url = [NSURL URLWithString:toNSString(address)])\n        [NSWorkspace.sharedWorkspace openURL:url];", "    NSURL *url = [NSURL URLWithString:toNSString(address)];\n    [NSWorkspace.sharedWorkspace openURL:url];"),
    ("native_workspace", "opens all that exist", "            return true;\n", ""),
    ("native_workspace", "path opened as an address", "openURL:[NSURL fileURLWithPath:file]", "openURL:(NSURL *)[NSURL URLWithString:file]"),
    ("native_application", "program in the Dock", "NSApplicationActivationPolicyAccessory", "NSApplicationActivationPolicyRegular"),
    ("native_application", "windows closed and then ordered out", "        [window orderOut:nil];\n        [window close];", "        [window close];\n        [window orderOut:nil];"),
    ("native_application", "ordered out with a sender", "[window orderOut:nil]", "[window orderOut:window]"),
    ("native_application", "launched again and again", "        [objects->launched stop];\n", ""),
    ("native_application", "observer's selector misspelt", "@selector(notified:)", "@selector(notifed:)"),
    ("native_appearance", "key still observed", '    [NSApplication.sharedApplication removeObserver:self\n                                         forKeyPath:@"effectiveAppearance"\n                                            context:&appearanceContext];\n', ""),
    ("native_appearance", "notifications still observed", "    [NSNotificationCenter.defaultCenter removeObserver:self];\n", ""),
    ("native_appearance", "the wrong notification centre", "    [NSWorkspace.sharedWorkspace.notificationCenter\n        addObserver", "    [NSNotificationCenter.defaultCenter\n        addObserver"),
    ("native_appearance", "takes all observations for ours", "if (context == &appearanceContext)", "if (context != nullptr || object == nil)"),
    ("native_appearance", "components of no known space", "[nsColor(color) colorUsingColorSpace:NSColorSpace.sRGBColorSpace]", "nsColor(color)"),
    ("native_appearance", "red and blue swapped", ".red = resolved.redComponent", ".red = resolved.blueComponent"),
    ("native_symbols", "painted over all", "NSCompositingOperationSourceIn", "NSCompositingOperationSourceOver"),
    ("native_symbols", "rows taken for as long as their pixels", "static_cast<std::size_t>(bitmap.bytesPerRow)", "row"),
    ("native_symbols", "state not restored", "    [NSGraphicsContext restoreGraphicsState];\n", ""),
    ("native_symbols", "no limit", "width >= 1 && width <= largestSymbolSide && height >= 1 && height <= largestSymbolSide", "width >= 1 && height >= 1"),
    ("native_symbols", "pixels for points", "    bitmap.size = size;\n", ""),
    ("native_information", "what is no text taken for it", "    if (![value isKindOfClass:[NSString class]])\n        return std::nullopt;\n", ""),
    ("native_information", "version and build swapped", 'bundleText(@"CFBundleVersion")', 'bundleText(@"CFBundleShortVersionString")'),
    ("native_log", "line hidden by the system", "%{public}s", "%{private}s"),
    ("native_log", "format that does not fit", "%{public}s", "%{public}@"),
    ("native_log", "information as errors", "return OS_LOG_TYPE_INFO;", "return OS_LOG_TYPE_ERROR;"),
    # ---- kinds that once lived ----
    ("native_popover", "first responder nil", "[window makeFirstResponder:content];", "[window makeFirstResponder:nil];"),
    ("native_popover", "the plain view as first responder", "[window makeFirstResponder:content];", "[window makeFirstResponder:view];"),
    ("native_popover", "hover not followed", "    m_objects->hover = [[", "    (void)[["),
    ("native_popover", "hover followed for ever", "    [m_objects->hover stop];\n", ""),
    ("native_popover", "content size of an earlier time", "    m_objects->popover.contentSize = NSMakeSize(width, height);\n", ""),
    ("native_popover_panel", "first responder nil in the panel", "[panel makeFirstResponder:content];", "[panel makeFirstResponder:nil];"),
    ("native_popover_panel", "the plain view as first responder in the panel", "[panel makeFirstResponder:content];", "[panel makeFirstResponder:panel.contentView];"),
    ("native_popover_panel", "left limit lost", "std::max(\n        area.origin.x, ", "(\n        "),
    ("native_popover_panel", "one screen assumed", "NSMaxX(area) - size.width", "area.size.width - size.width"),
    ("native_popover_panel", "the item's window taken for the screen", "item.origin.y - gap", "button.frame.origin.y - gap"),
    ("native_popover_panel", "right clicks outside unheard", "NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown", "NSEventMaskLeftMouseDown"),
    ("native_popover_panel", "stays when it loses the keyboard", "- (void)windowDidResignKey:(NSNotification *)notification\n{\n    [self close];", "- (void)windowDidResignKey:(NSNotification *)notification\n{"),
    ("native_popover_panel", "square corners", "view.layer.cornerRadius = cornerRadius;", ""),
    ("native_popover_panel", "corners that do not clip", "view.layer.masksToBounds = YES;", ""),
    ("native_popover_panel", "no shadow", "_panel.hasShadow = YES;", "_panel.hasShadow = NO;"),
    ("native_popover_panel", "hidden with the program", "_panel.hidesOnDeactivate = NO;", ""),
    ("native_popover_panel", "below other windows", "_panel.level = NSPopUpMenuWindowLevel;", ""),
    ("native_popover_panel", "hover followed for ever in the panel", "    [m_objects->hover stop];\n", ""),
    ("hover_tracker", "only in the active program", "NSTrackingActiveAlways", "NSTrackingActiveInActiveApp"),
    ("hover_tracker", "moves unheard", "NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |", "NSTrackingMouseEnteredAndExited |"),
    ("hover_tracker", "told twice in the active program", "    if (NSApplication.sharedApplication.isActive)\n        return;\n", ""),
    ("hover_tracker", "upside down", "_view.bounds.size.height - place.y", "place.y"),
    ("hover_tracker", "the window's place for the view's", "[_view convertPoint:event.locationInWindow fromView:nil]", "event.locationInWindow"),
    ("hover_tracker", "left without having entered", "    if (!_inside)\n        return;\n", ""),
    ("hover_tracker", "entered and never left", "    _inside = NO;\n    _hovered(std::nullopt);", "    _inside = NO;"),
    ("native_user_defaults", "booleans as numbers", "    if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID())\n        return bool(number.boolValue);\n", ""),
    ("native_user_defaults", "whatever is there taken for a number", "    if (![value isKindOfClass:[NSNumber class]])\n        return {};\n", "    if (value == nil)\n        return {};\n"),
    ("native_user_defaults", "true stored as a number", "setBool:value forKey:key", "setDouble:value forKey:key"),
    ("native_user_defaults", "number stored as true", "setDouble:value forKey:key", "setBool:value != 0 forKey:key"),
    ("native_user_defaults", "text lost", "[NSUserDefaults.standardUserDefaults setObject:toNSString(value) forKey:key];", "(void)value;"),
    ("native_user_defaults", "nothing removed", "[NSUserDefaults.standardUserDefaults removeObjectForKey:key];", ""),
    ("native_application", "wake on the wrong centre", "initWithCenter:NSWorkspace.sharedWorkspace.notificationCenter", "initWithCenter:NSNotificationCenter.defaultCenter"),
    ("native_application", "wake heard for ever", "    [m_objects->woken stop];\n    [m_objects->asked stop];\n", "    [m_objects->asked stop];\n"),
    ("native_application", "asked later", "deliverImmediately:YES", "deliverImmediately:NO"),
    ("native_application", "asked within the process", "initWithCenter:NSDistributedNotificationCenter.defaultCenter", "initWithCenter:NSNotificationCenter.defaultCenter"),
    ("native_application", "another request answered", "name:showRequest\n                object", "name:nil\n                object"),
    ("native_application", "another event than reopening", "andEventID:kAEReopenApplication];\n    return self;", "andEventID:kAEReopenApplication + 1];\n    return self;"),
    ("native_application", "handler left behind", "    [m_objects->reopened stop];\n}", "}"),
    ("native_symbols", "another colour space", "        [generic bitmapImageRepByRetaggingWithColorSpace:NSColorSpace.sRGBColorSpace];", "        generic;"),
    ("native_symbols", "alpha lost", "alpha:color.alpha] set]", "alpha:1] set]"),
    ("native_symbols", "floor for ceil in width", "std::ceil(size.width * scale)", "std::floor(size.width * scale)"),
    ("native_symbols", "floor for ceil in height", "std::ceil(size.height * scale)", "std::floor(size.height * scale)"),
    ("native_symbols", "width and height of the size swapped", "return {.width = image.size.width, .height = image.size.height};", "return {.width = image.size.height, .height = image.size.width};"),
    ("native_symbols", "calibrated colour", "colorWithSRGBRed:color.red", "colorWithRed:color.red"),
    ("objc_support", "the green in no named space", "colorWithSRGBRed:0.20", "colorWithRed:0.20"),
    ("objc_support", "bold lost", "return NSFontWeightBold;", "return NSFontWeightSemibold;"),
    ("objc_support", "medium lost", "return NSFontWeightMedium;", "return NSFontWeightRegular;"),
    ("objc_support", "semibold lost", "return NSFontWeightSemibold;", "return NSFontWeightBold;"),
    ("objc_support", "blue for purple", "return NSColor.systemPurpleColor;", "return NSColor.systemBlueColor;"),
    ("objc_support", "no colour for the accent", "return NSColor.controlAccentColor;", "return NSColor.systemBlueColor;"),
    ("objc_support", "size of symbols ignored", "configurationWithPointSize:symbol.pointSize", "configurationWithPointSize:12"),
    ("native_appearance", "alpha of a colour lost", "                .alpha = resolved.alphaComponent", "                .alpha = 1"),
    ("native_login_item", "registering unregisters", "[SMAppService.mainAppService registerAndReturnError:&error]", "[SMAppService.mainAppService unregisterAndReturnError:&error]"),
    ("native_log", "fault as an error", "return OS_LOG_TYPE_FAULT;", "return OS_LOG_TYPE_ERROR;"),
    ("native_log", "debug as information", "return OS_LOG_TYPE_DEBUG;", "return OS_LOG_TYPE_INFO;"),
    ("native_log", "category for subsystem", "subsystem.c_str(), category.c_str()", "category.c_str(), subsystem.c_str()"),
    ("native_status_item", "position set without the sparkle", "    } else if (NSImage *image = paddedImage(*label.image)) {\n        button.image = image;", "    } else {\n        if (NSImage *image = paddedImage(*label.image))\n            button.image = image;"),
    ("native_status_item", "padding right lost", "+ label.paddingRight", ""),
    ("native_status_item", "target left to the button", "    m_objects->item.button.target = nil;\n", ""),
    ("native_status_item", "tooltip for the reader's label", "button.accessibilityLabel = text", "button.toolTip = text"),
]

# Files of Qt and no Objective-C, tried with the tests of tests/unit/platform/macos. A path is from src/.
ADAPTER_MUTANTS = [
    ("platform/macos/mac_popover.cpp", "late close blanks what was opened again", "    if (!isShown()) {\n        if (m_window", "    {\n        if (m_window"),
    ("platform/macos/mac_popover.cpp", "close not told", "    Q_EMIT didClose();", ""),
    ("platform/macos/mac_popover.cpp", "success of a failed opening", "    if (!m_native.isShown()) {\n        m_content->setShown(false);\n        return;\n    }\n", ""),
    ("platform/macos/mac_popover.cpp", "content stays up to date after a failed opening", "        m_content->setShown(false);\n        return;", "        return;"),
    ("platform/macos/mac_popover.cpp", "content shown before it is up to date", "    m_content->setShown(true);\n", ""),
    ("platform/macos/mac_popover.cpp", "window never shown", "    m_window->setVisible(true);\n", ""),
    ("platform/macos/mac_popover.cpp", "keyboard for what is not shown", "    if (isShown())\n        m_native.makeKey();", "    m_native.makeKey();"),
    ("platform/macos/mac_popover.cpp", "no parent", "    m_window->setParent(m_container.get());\n", ""),
    ("platform/macos/mac_popover.cpp", "width not followed", "    connect(m_window, &QWindow::widthChanged, this, &MacPopover::followSize);\n", ""),
    ("platform/macos/mac_popover.cpp", "size not taken over", "    followSize();\n    return true;", "    return true;"),
    ("platform/macos/mac_popover.cpp", "loaded again and again", "    if (m_content)\n        return true;\n", ""),
    ("platform/macos/mac_popover.cpp", "no container counts as one", "    if (!m_container)\n        return false;\n", ""),
    ("platform/macos/mac_popover.cpp", "settings not turned to", "        m_content->showSettings();", "        ;"),
    ("platform/macos/mac_popover.cpp", "leave not told", "        QCoreApplication::sendEvent(m_window, &leave);\n", ""),
    ("platform/macos/mac_popover.cpp", "move not told", "    QCoreApplication::sendEvent(m_window, &move);\n", ""),
    ("platform/macos/mac_popover.cpp", "x and y swapped", "local(place->x, place->y)", "local(place->y, place->x)"),
    ("platform/macos/mac_popover.cpp", "width and height swapped", "m_window->width(), m_window->height()", "m_window->height(), m_window->width()"),
    ("platform/macos/mac_popover.cpp", "opens only with a click", "void MacPopover::showUnclicked(const std::optional<QRect> & /*item*/)\n{\n    open();", "void MacPopover::showUnclicked(const std::optional<QRect> & /*item*/)\n{"),
    ("platform/macos/mac_status_item.cpp", "label sent again", "    if (m_label == label)\n        return;\n", ""),
    ("platform/macos/mac_status_item.cpp", "label sent once", "    m_label = label;\n", "    if (!m_label)\n        m_label = label;\n"),
    ("platform/macos/mac_status_item.cpp", "lines run together", "join(u'\\n')", "join(u' ')"),
    ("platform/macos/mac_status_item.cpp", "title for the tooltip", "m_native.setToolTip(description.lines.join(u'\\n').toStdString());", "m_native.setToolTip(description.title.toStdString());"),
    ("platform/macos/mac_status_item.cpp", "nothing for the reader", "    m_native.setAccessibilityLabel(description.title.toStdString());\n", ""),
    ("platform/macos/mac_status_item.cpp", "clicks unheard", "Q_EMIT clicked({});", ""),
    ("platform/macos/mac_status_item.cpp", "a button that is not there", "return m_native.hasButton();", "return true;"),
    ("platform/macos/mac_label.cpp", "weight lost", "weight == model::FontWeight::Medium ? NativeWeight::Medium : NativeWeight::Semibold", "NativeWeight::Medium"),
    ("platform/macos/mac_label.cpp", "paddings swapped", ".paddingLeft = image.paddingLeft,\n        .paddingRight = image.paddingRight", ".paddingLeft = image.paddingRight,\n        .paddingRight = image.paddingLeft"),
    ("platform/macos/mac_label.cpp", "vertical padding lost", "        .paddingVertical = image.paddingVertical", "        .paddingVertical = 0"),
    ("platform/macos/mac_label.cpp", "positions swapped", "        ? NativeImagePosition::Leading\n        : NativeImagePosition::Only", "        ? NativeImagePosition::Only\n        : NativeImagePosition::Leading"),
    ("platform/macos/mac_label.cpp", "colour of a run lost", "        if (run.color)\n            native.color = nativeColor(*run.color);\n", ""),
    ("platform/macos/mac_label.cpp", "size of a symbol lost", ".pointSize = symbol.pointSize", ".pointSize = 12.5"),
    ("platform/macos/mac_label.cpp", "description lost", "image.accessibleName.toStdString()", "std::string()"),
    ("platform/macos/mac_appearance.cpp", "orange for red", "return NativeColor::SystemRed;", "return NativeColor::SystemOrange;"),
    ("platform/macos/mac_appearance.cpp", "alpha lost", ".alpha = color.alpha", ".alpha = 1"),
    ("platform/macos/mac_appearance.cpp", "changes unheard", "Q_EMIT changed();", ""),
    ("platform/macos/mac_appearance.cpp", "always light", "return m_native.isDark();", "return false;"),
    ("platform/macos/mac_appearance.cpp", "always in motion", "return m_native.reducesMotion();", "return false;"),
    ("platform/macos/mac_symbols.cpp", "bold lost", "return NativeWeight::Bold;", "return NativeWeight::Regular;"),
    ("platform/macos/mac_symbols.cpp", "medium lost", "return NativeWeight::Medium;", "return NativeWeight::Regular;"),
    ("platform/macos/mac_symbols.cpp", "alpha lost", ".alpha = color.alphaF()", ".alpha = 1"),
    ("platform/macos/mac_symbols.cpp", "floor for ceil", "static_cast<int>(std::ceil(place.width()))", "static_cast<int>(std::floor(place.width()))"),
    ("platform/macos/mac_symbols.cpp", "ratio lost", "    image.setDevicePixelRatio(ratio);\n", ""),
    ("platform/macos/mac_symbols.cpp", "not centred", "(image.width() - drawn.width()) / 2", "0"),
    ("platform/macos/mac_symbols.cpp", "not cleared", "    image.fill(Qt::transparent);\n", "    image.fill(Qt::black);\n"),
    ("platform/macos/mac_symbols.cpp", "red and blue swapped", "QImage::Format_RGBA8888_Premultiplied", "QImage::Format_ARGB32_Premultiplied"),
    ("platform/macos/mac_opener.cpp", "toString for toEncoded", "url.toEncoded().toStdString()", "url.toString().toStdString()"),
    ("platform/macos/mac_opener.cpp", "files as addresses", "    if (url.isLocalFile())", "    if (!url.isValid())"),
    ("platform/macos/mac_opener.cpp", "places of the IDE in another order", '"/Applications/Antigravity IDE.app", "/Applications/Antigravity-IDE.app"', '"/Applications/Antigravity-IDE.app", "/Applications/Antigravity IDE.app"'),
    ("platform/macos/mac_log.cpp", "warnings as information", "    case QtWarningMsg:\n", ""),
    ("platform/macos/mac_log.cpp", "category lost", "context.category != nullptr ? context.category : \"default\"", "\"default\""),
    ("platform/macos/mac_log.cpp", "no category", "context.category != nullptr ? context.category : \"default\"", "context.category"),
    ("platform/macos/mac_login_item.cpp", "failure counts as success", "        return fail(QString::fromStdString(*failure));", "        return {};"),
    ("platform/macos/mac_login_item.cpp", "approval counts as enabled", "return Status::requiresApproval;", "return Status::enabled;"),
    ("platform/macos/mac_login_item.cpp", "unregistering registers", "outcome(m_native.unregisterItem())", "outcome(m_native.registerItem())"),
    ("platform/macos/mac_notifier.cpp", "title and body swapped", "notification.title.toStdString(),\n        notification.body.toStdString()", "notification.body.toStdString(),\n        notification.title.toStdString()"),
    ("platform/macos/mac_notifier.cpp", "choice unheard", "        Q_EMIT activated(QString::fromStdString(identifier));\n", "        Q_UNUSED(identifier)\n"),
    ("platform/macos/mac_information.cpp", "version and build swapped", ".version = text(native.version),\n        .build = text(native.build)", ".version = text(native.build),\n        .build = text(native.version)"),
    ("platform/macos/mac_application_presence.cpp", "an empty variable", 'TRANSFORM", "1")', 'TRANSFORM", "")'),
    ("platform/macos/mac_application_presence.cpp", "variable misspelt", "QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORMATION"),
    ("platform/macos/mac_application_presence.cpp", "ends with its last window", "    QGuiApplication::setQuitOnLastWindowClosed(false);\n", ""),
    ("platform/macos/mac_single_instance.cpp", "an error counts as another", " || m_lock.error() != QLockFile::LockFailedError", ""),
    ("platform/macos/mac_single_instance.cpp", "always the first", "return m_lock.isLocked() ||", "return true || m_lock.isLocked() ||"),
    ("platform/macos/mac_single_instance.cpp", "folder not made", "    QDir().mkpath(folder);\n", ""),
    ("platform/macos/mac_user_defaults.cpp", "numbers as text", "        return value.toDouble();", "        return value.toString().toStdString();"),
    ("platform/macos/mac_user_defaults.cpp", "booleans as text", "        return value.toBool();", "        return value.toString().toStdString();"),
    ("platform/macos/mac_user_defaults.cpp", "nothing stored", "    setUserDefault(key, toNative(value));", "    static_cast<void>(toNative(value));"),
    ("app/main_macos.cpp", "variable after the application", "    platform::keepQtFromActivating();\n    const QGuiApplication application(argc, argv);", "    const QGuiApplication application(argc, argv);\n    platform::keepQtFromActivating();"),
    ("app/main_macos.cpp", "variable forgotten", "    platform::keepQtFromActivating();\n", ""),
    ("app/main_macos.cpp", "system asked before the application", "    platform::keepQtFromActivating();\n    const QGuiApplication application(argc, argv);", "    platform::keepQtFromActivating();\n    const platform::MacApplicationPresence early;\n    const QGuiApplication application(argc, argv);"),
    ("app/main_macos.cpp", "name after the application", "    QCoreApplication::setApplicationName(u\"Brimwatch\"_s);\n", ""),
    ("app/main_macos.cpp", "settings in a file", "service::SettingsStore settings(userDefaults);", "service::SettingsStore settings;"),
    ("app/main_macos.cpp", "shown before launching has finished", "    return QGuiApplication::exec();", "    delegate.applicationDidFinishLaunching();\n    return QGuiApplication::exec();"),
    ("app/main_macos.cpp", "nothing after sleep", "        desktop.whenWoken([&delegate] { delegate.quotaService()->refresh(); });\n", ""),
    ("app/main_macos.cpp", "requests unheard", "        desktop.whenAskedToShow([&delegate] { delegate.statusBarController()->showPopover(); });\n", ""),
    ("app/main_macos.cpp", "no guard", "    if (!singleInstance.claim()) {", "    if (false) {"),
    ("app/main_macos.cpp", "the other is not asked", "        platform::MacSingleInstance::askOther();\n", ""),
    ("app/main_macos.cpp", "the lock in another folder", 'QStringLiteral("/" BRIMWATCH_IDENTIFIER)', 'QStringLiteral("/other")'),
    ("app/main_macos.cpp", "popover without a button", "return item->button();", "return static_cast<void *>((static_cast<void>(item), nullptr));"),
    ("app/main_macos.cpp", "guard before the command line", "    if (const auto answered = app::answerCommandLine(argc, argv))\n        return static_cast<int>(*answered);\n", ""),
]

# Files that a check of their own reads. Paths are from the root; the last word is the step of check.sh.
PACKAGE_MUTANTS = [
    ("packaging/macos/Info.plist.in", "in the Dock", "<key>LSUIElement</key>\n    <true/>", "<key>LSUIElement</key>\n    <false/>", "plist"),
    ("packaging/macos/Info.plist.in", "text for true", "<key>LSUIElement</key>\n    <true/>", "<key>LSUIElement</key>\n    <string>true</string>", "plist"),
    ("packaging/macos/Info.plist.in", "another identifier", "${BRIMWATCH_IDENTIFIER}", "com.brimwatch.app", "plist"),
    ("packaging/macos/Info.plist.in", "lowest version lost", "${CMAKE_OSX_DEPLOYMENT_TARGET}", "12.0", "plist"),
    ("packaging/macos/Info.plist.in", "another executable", "<key>CFBundleExecutable</key>\n    <string>Brimwatch", "<key>CFBundleExecutable</key>\n    <string>brimwatch", "plist"),
    ("packaging/macos/Info.plist.in", "icon of another name", "Brimwatch.icns", "brimwatch.icns", "plist"),
    ("packaging/macos/Info.plist.in", "blurred on Retina", "<key>NSHighResolutionCapable</key>\n    <true/>", "<key>NSHighResolutionCapable</key>\n    <false/>", "plist"),
    ("packaging/macos/Info.plist.in", "no principal class", "<key>NSPrincipalClass</key>\n    <string>NSApplication</string>\n", "", "plist"),
    ("packaging/macos/Info.plist.in", "build for version", "<string>${BRIMWATCH_BUNDLE_BUILD}", "<string>${PROJECT_VERSION}", "plist"),
    ("packaging/macos/Brimwatch.entitlements", "no machine code from scripts", "<true/>", "<false/>", "plist"),
    ("packaging/macos/bundle_libraries.sh", "any absolute path", "        *) return 1 ;;\n    esac\n}\n\n# Lines of", "        *) return 0 ;;\n    esac\n}\n\n# Lines of", "bundle"),
    ("packaging/macos/bundle_libraries.sh", "@loader_path not completed", "case $path in @loader_path/*)", "case $path in @rpath/*)", "bundle"),
    ("packaging/macos/bundle_libraries.sh", "a link copied", "cp -L", "cp -P", "bundle"),
    ("packaging/macos/bundle_libraries.sh", "its own name counts as loaded", 'grep -vxF -- "$own"', "cat", "bundle"),
    ("packaging/macos/bundle_libraries.sh", "libraries beside the bundle count", '        "$app"/*) return 0 ;;\n        *) return 1 ;;', "        *) return 0 ;;", "bundle"),
    ("packaging/macos/bundle_libraries.sh", "only what find calls a library", "find \"$app/Contents\" -type f -size", "find \"$app/Contents\" -name '*.dylib' -type f -size", "bundle"),
]


def run(*arguments):
    answer = subprocess.run([here / "check.sh", "--quick", "--layer", copy, *arguments],
                            capture_output=True, text=True, timeout=1800)
    if answer.returncode == 0:
        return None
    failed = re.search(r"^FAIL  (.*)$", answer.stdout, re.M)
    return failed[1] if failed else answer.stdout[-300:] + answer.stderr[-300:]


def planted(text, mutant):
    """The text with the mistake in it; ends the program where nothing stands for it."""
    file, name, old, new, *top = mutant
    if old not in text:
        sys.exit(f"{file}: what stands for '{name}' is not there: {old}")
    return "\n".join([*top, text.replace(old, new, 1)])


class Layer:
    """The .mm files, tried with the steps of check.sh."""

    mutants = MUTANTS

    def prepare(self):
        shutil.rmtree(copy, ignore_errors=True)
        copy.mkdir(parents=True)
        for path in [*layer.glob("*.mm"), *layer.glob("*.h")]:
            shutil.copy(path, copy)
        return run("run", "compile", "link")

    def try_one(self, mutant):
        name = f"{mutant[0]}.mm"
        original = (layer / name).read_text()
        text = planted(original, mutant)
        if "void (^now)(void) = ^{" in text:
            text = text.replace("        completionHandler();\n    });", "        completionHandler();\n    };\n    now();", 1)
        (copy / name).write_text(text)
        # What sees most at the least cost goes first.
        caught = run("run") or run("compile") or run("link") or run("--file", name, "lint")
        (copy / name).write_text(original)
        return caught


class Adapters:
    """The files of Qt and no Objective-C, compiled and linked as the build does it, tried with their tests."""

    mutants = ADAPTER_MUTANTS
    tests = ("macos_adapters_test", "main_macos_test")

    def prepare(self):
        self.work = root / "build/macos-mutants/adapters"
        shutil.rmtree(self.work, ignore_errors=True)
        self.work.mkdir(parents=True)
        self.compile = {}
        for entry in json.loads((build / "compile_commands.json").read_text()):
            # main_macos.cpp has its other name in the test alone.
            if "app/main_macos.cpp" not in entry["file"] or "main_macos_test.dir" in entry["command"]:
                self.compile.setdefault(entry["file"], entry["command"])
        self.link = {}
        for test in self.tests:
            commands = subprocess.run(["ninja", "-C", build, "-t", "commands", test], capture_output=True, text=True, check=True)
            self.link[test] = next(line for line in reversed(commands.stdout.splitlines()) if f"/{test} " in line and " -o " in line)
        failed = [f"{file}: {said}" for file in sorted({mutant[0] for mutant in self.mutants})
                  if (said := self.look(file, (root / "src" / file).read_text()))]
        return "; ".join(failed) or None

    def shell(self, command):
        return subprocess.run(command, shell=True, cwd=build, capture_output=True, text=True, timeout=300)

    def look(self, file, text):
        source, object_file = self.work / Path(file).name, self.work / (Path(file).name + ".o")
        source.write_text(text)
        command = self.compile[str(root / "src" / file)]
        command = re.sub(r" -o \S+", f" -o {object_file}", command, count=1).replace(f"-c {root}/src/{file}", f"-c {source}")
        if self.shell(command).returncode != 0:
            return "compiler"
        for test in self.tests:
            if file.startswith("app/") and test != "main_macos_test":
                continue
            link, program = self.link[test], self.work / test
            # Before the library that it is in: then that one's is not taken.
            inserted = str(object_file)
            if file.startswith("app/"):
                link, inserted = re.sub(r" \S*/main_macos\.cpp\.o", f" {object_file}", link), ""
            link = re.sub(r" -o \S+", f" -o {program} {inserted}", link, count=1)
            if self.shell(link).returncode != 0:
                return "linker"
            environment = "QT_QPA_PLATFORM=offscreen QT_FATAL_WARNINGS=1 LC_ALL=C.UTF-8 TZ=UTC ASAN_OPTIONS=detect_leaks=0"
            ran = self.shell(f"{environment} timeout 60 {root}/tests/support/in-empty-home.sh {self.work}/{test}.home {program}")
            if ran.returncode != 0:
                failed = re.search(r"^FAIL!.*::(\w+)\(", ran.stdout, re.M)
                return failed[1] if failed else f"{test} ends with {ran.returncode}"
        return None

    def try_one(self, mutant):
        return self.look(mutant[0], planted((root / "src" / mutant[0]).read_text(), mutant))


class Package:
    """Info.plist, the entitlements and the packaging scripts, in a folder that looks like the root."""

    mutants = PACKAGE_MUTANTS

    def prepare(self):
        self.shadow = root / "build/macos-mutants/root"
        shutil.rmtree(self.shadow, ignore_errors=True)
        self.shadow.mkdir(parents=True)
        for name in ("CMakeLists.txt", "cmake", "src", "tools", "tests"):
            (self.shadow / name).symlink_to(root / name)
        shutil.copytree(root / "packaging/macos", self.shadow / "packaging/macos")
        return self.look("plist") or self.look("bundle")

    def look(self, step):
        answer = subprocess.run([self.shadow / "tools/macos-check/check.sh", step], capture_output=True, text=True, timeout=300)
        return None if answer.returncode == 0 else " ".join(answer.stdout.splitlines()[1:2]).strip() or "ends with failure"

    def try_one(self, mutant):
        path, step = self.shadow / mutant[0], mutant[4]
        original = (root / mutant[0]).read_text()
        path.write_text(planted(original, mutant[:4]))
        caught = self.look(step)
        path.write_text(original)
        return caught


KINDS = {"layer": Layer, "adapters": Adapters, "package": Package}


def main():
    words = sys.argv[1:]
    kinds = [word for word in words if word in KINDS] or list(KINDS)
    words = [word for word in words if word not in KINDS]
    seen, tried, skip = 0, 0, int(os.environ.get("SKIP", "0"))
    print("| file | mistake | seen by |\n|---|---|---|", flush=True)
    for kind in kinds:
        group = KINDS[kind]()
        sound = group.prepare()
        if sound is not None:
            print(f"what is sound fails: {sound}")
            return 1
        for mutant in group.mutants[skip:]:
            if words and not any(word in mutant[0] or word in mutant[1] for word in words):
                continue
            caught = group.try_one(mutant)
            tried += 1
            seen += caught is not None
            print(f"| {mutant[0]} | {mutant[1]} | {caught or '**nothing**'} |", flush=True)
    print(f"\n{seen} of {tried} seen")
    return 0 if tried > 0 and seen * 100 >= 97 * tried else 1


sys.exit(main())
