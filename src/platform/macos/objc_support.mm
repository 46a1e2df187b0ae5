#import "platform/macos/objc_support.h"

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {
namespace {

NSFontWeight fontWeight(NativeWeight weight)
{
    switch (weight) {
    case NativeWeight::Regular:
        return NSFontWeightRegular;
    case NativeWeight::Medium:
        return NSFontWeightMedium;
    case NativeWeight::Semibold:
        return NSFontWeightSemibold;
    case NativeWeight::Bold:
        return NSFontWeightBold;
    }
    return NSFontWeightRegular;
}

/// Made once, when first asked for; it follows the appearance that it is drawn in.
NSColor *adaptiveHealthyGreen()
{
    static NSColor *const green =
        [NSColor colorWithName:nil
               dynamicProvider:^NSColor *(NSAppearance *appearance) {
                   if (isDarkAppearance(appearance))
                       return [NSColor colorWithSRGBRed:0.20 green:0.83 blue:0.45 alpha:1.0];
                   return [NSColor colorWithSRGBRed:0.08 green:0.52 blue:0.26 alpha:1.0];
               }];
    return green;
}

} // namespace

NSString *toNSString(std::string_view text)
{
    NSString *string = [[NSString alloc] initWithBytes:text.data()
                                                length:text.size()
                                              encoding:NSUTF8StringEncoding];
    return string != nil ? string : @"\uFFFD";
}

std::string fromNSString(NSString *_Nullable text)
{
    const char *bytes = text.UTF8String;
    return bytes != nullptr ? std::string(bytes) : std::string();
}

bool isDarkAppearance(NSAppearance *appearance)
{
    NSAppearanceName best = [appearance
        bestMatchFromAppearancesWithNames:@[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ]];
    return [best isEqualToString:NSAppearanceNameDarkAqua];
}

NSColor *nsColor(NativeColor color)
{
    switch (color) {
    case NativeColor::Label:
        return NSColor.labelColor;
    case NativeColor::SecondaryLabel:
        return NSColor.secondaryLabelColor;
    case NativeColor::Separator:
        return NSColor.separatorColor;
    case NativeColor::WindowBackground:
        return NSColor.windowBackgroundColor;
    case NativeColor::ControlBackground:
        return NSColor.controlBackgroundColor;
    case NativeColor::Accent:
        return NSColor.controlAccentColor;
    case NativeColor::SystemGreen:
        return NSColor.systemGreenColor;
    case NativeColor::AdaptiveHealthyGreen:
        return adaptiveHealthyGreen();
    case NativeColor::SystemOrange:
        return NSColor.systemOrangeColor;
    case NativeColor::SystemRed:
        return NSColor.systemRedColor;
    case NativeColor::Blue:
        return NSColor.systemBlueColor;
    case NativeColor::Purple:
        return NSColor.systemPurpleColor;
    case NativeColor::White:
        return NSColor.whiteColor;
    }
    return NSColor.labelColor;
}

NSImage *_Nullable symbolImage(const NativeSymbol &symbol, NSString *_Nullable description)
{
    NSImage *plain = [NSImage imageWithSystemSymbolName:toNSString(symbol.name)
                               accessibilityDescription:description];
    NSImageSymbolConfiguration *configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:symbol.pointSize
                                                        weight:fontWeight(symbol.weight)];
    NSImage *image = [plain imageWithSymbolConfiguration:configuration];
    // Not `image.template`: that is a keyword of C++.
    [image setTemplate:YES];
    return image;
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
