#!/usr/bin/env python3
"""mutants.py [WORD...]: plants mistakes in the .mm files, one at a time, and tells which check sees each.

A measure of the checks, to be taken when they or the layer change; no part of the test suite, because it
takes a while (about a quarter of an hour with ccache, hours without). With WORDs only the mistakes whose
names contain one of them. Ends with failure when fewer than 95 of 100 are seen.
"""

import re
import shutil
import subprocess
import sys
from pathlib import Path

here = Path(__file__).resolve().parent
root = here.parent.parent
layer = root / "src/platform/macos"
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
    ("native_login_item", "a class that is nowhere to be linked from", "return fromNSString(error.localizedDescription);", "(void)[[NSNumber alloc] init];\n    return fromNSString(error.localizedDescription);"),
    ("native_pasteboard", "pasteboard not cleared", "    [pasteboard clearContents];\n", ""),
    ("native_pasteboard", "text before clearing", "    [pasteboard clearContents];\n    [pasteboard setString:toNSString(text) forType:NSPasteboardTypeString];", "    [pasteboard setString:toNSString(text) forType:NSPasteboardTypeString];\n    [pasteboard clearContents];"),
    ("native_workspace", "nil address opened", "    if (NSURL *url = [NSURL URLWithString:toNSString(address)])\n        [NSWorkspace.sharedWorkspace openURL:url];", "    NSURL *url = [NSURL URLWithString:toNSString(address)];\n    [NSWorkspace.sharedWorkspace openURL:url];"),
    ("native_workspace", "opens all that exist", "            return true;\n", ""),
    ("native_workspace", "path opened as an address", "openURL:[NSURL fileURLWithPath:file]", "openURL:(NSURL *)[NSURL URLWithString:file]"),
    ("native_application", "program in the Dock", "NSApplicationActivationPolicyAccessory", "NSApplicationActivationPolicyRegular"),
    ("native_application", "windows closed and then ordered out", "        [window orderOut:nil];\n        [window close];", "        [window close];\n        [window orderOut:nil];"),
    ("native_application", "ordered out with a sender", "[window orderOut:nil]", "[window orderOut:window]"),
    ("native_application", "launched again and again", "    [self stop];\n    _launched();", "    _launched();"),
    ("native_application", "observer's selector misspelt", "@selector(didFinishLaunching:)", "@selector(didfinishLaunching:)"),
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
]


def run(*arguments):
    answer = subprocess.run([here / "check.sh", "--quick", "--layer", copy, *arguments],
                            capture_output=True, text=True, timeout=1800)
    if answer.returncode == 0:
        return None
    failed = re.search(r"^FAIL  (.*)$", answer.stdout, re.M)
    return failed[1] if failed else answer.stdout[-300:] + answer.stderr[-300:]


def plant(name, text):
    path = copy / f"{name}.mm"
    if path.read_text() != text:
        path.write_text(text)


def main():
    words = sys.argv[1:]
    shutil.rmtree(copy, ignore_errors=True)
    copy.mkdir(parents=True)
    for path in [*layer.glob("*.mm"), *layer.glob("*.h")]:
        shutil.copy(path, copy)
    sound = run("run", "compile", "link")
    if sound is not None:
        print(f"the layer itself fails: {sound}")
        return 1

    seen, tried = 0, 0
    print("| file | mistake | seen by |\n|---|---|---|", flush=True)
    for file, name, old, new, *top in MUTANTS:
        if words and not any(word in name for word in words):
            continue
        original = (layer / f"{file}.mm").read_text()
        if old not in original:
            print(f"{file}: what stands for '{name}' is not there: {old}")
            return 1
        mutant = original.replace(old, new, 1)
        if "void (^now)(void) = ^{" in mutant:
            mutant = mutant.replace("        completionHandler();\n    });", "        completionHandler();\n    };\n    now();", 1)
        plant(file, "\n".join(top + [mutant]))
        # What sees most at the least cost goes first.
        caught = run("run") or run("compile") or run("link") or run("--file", f"{file}.mm", "lint")
        plant(file, original)
        tried += 1
        seen += caught is not None
        print(f"| {file} | {name} | {caught or '**nothing**'} |", flush=True)
    print(f"\n{seen} of {tried} seen")
    return 0 if tried > 0 and seen * 100 >= 95 * tried else 1


sys.exit(main())
