#include "fake_parts.h"

const NSAppearanceName NSAppearanceNameAqua = @"aqua", NSAppearanceNameDarkAqua = @"dark aqua";
@interface NSAppearance () {
@public
    bool _dark;
}
@end
NSAppearance *fake::gDrawing;
NSAppearance *fake::appearanceNow(bool dark)
{
    NSAppearance *a = [[NSAppearance alloc] init];
    a->_dark = dark;
    return a;
}
@implementation NSAppearance
- (NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray *)names
{
    // What is asked for matters: a dark one can only be answered when dark aqua is among the names.
    NSString *best = nil;
    for (NSString *n in names) {
        if ([n isEqualToString:NSAppearanceNameDarkAqua] && _dark)
            return n;
        if ([n isEqualToString:NSAppearanceNameAqua])
            best = n;
    }
    return best;
}
- (void)performAsCurrentDrawingAppearance:(void(NS_NOESCAPE ^)(void))b
{
    NSAppearance *old = gDrawing;
    gDrawing = self;
    b();
    gDrawing = old;
}
@end
@implementation NSColorSpace
+ (NSColorSpace *)sRGBColorSpace
{
    static NSColorSpace *s = [[self alloc] init];
    return s;
}
@end
NSColor *fake::gFill;
static double component(bool dark, int i)
{
    return (dark ? 0.5 : 0.25) + 0.125 * i;
}
@implementation NSColor
+ (NSColor *)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a
{
    NSColor *c = [[self alloc] init];
    const double v[] = {r, g, b, a};
    std::copy(v, v + 4, c->_c);
    c->_what = "rgb " + number(r) + " " + number(g) + " " + number(b) + " " + number(a);
    return c;
}
+ (NSColor *)colorWithSRGBRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a
{
    NSColor *c = [self colorWithRed:r green:g blue:b alpha:a];
    c->_what = "s" + c->_what;
    return c;
}
+ (NSColor *)colorWithName:(NSString *)n dynamicProvider:(NSColor * (^)(NSAppearance *))p
{
    record("dynamic color");
    NSColor *c = [[self alloc] init];
    c->_provider = p;
    return c;
}
static NSColor *named(const char *name)
{
    NSColor *c = [[NSColor alloc] init];
    c->_what = name;
    return c;
}
+ (NSColor *)labelColor
{
    return named("label");
}
+ (NSColor *)secondaryLabelColor
{
    return named("secondaryLabel");
}
+ (NSColor *)separatorColor
{
    return named("separator");
}
+ (NSColor *)windowBackgroundColor
{
    return named("windowBackground");
}
+ (NSColor *)controlBackgroundColor
{
    return named("controlBackground");
}
+ (NSColor *)controlAccentColor
{
    return named("controlAccent");
}
+ (NSColor *)systemRedColor
{
    return named("systemRed");
}
+ (NSColor *)systemOrangeColor
{
    return named("systemOrange");
}
+ (NSColor *)systemGreenColor
{
    return named("systemGreen");
}
+ (NSColor *)systemBlueColor
{
    return named("systemBlue");
}
+ (NSColor *)systemPurpleColor
{
    return named("systemPurple");
}
+ (NSColor *)whiteColor
{
    return named("white");
}
+ (NSColor *)clearColor
{
    return named("clear");
}
- (NSColor *)colorUsingColorSpace:(NSColorSpace *)s
{
    if (fake::world().colorsHaveNoSrgb)
        return nil;
    if (gDrawing == nil) {
        fail("a colour resolved outside of any appearance");
        return nil;
    }
    record("resolve " + (_provider ? std::string("dynamic") : _what));
    NSColor *c = [[NSColor alloc] init];
    if (_provider) {
        NSColor *p = _provider(gDrawing);
        std::copy(p->_c, p->_c + 4, c->_c);
    } else
        for (int i = 0; i < 4; ++i)
            c->_c[i] = component(gDrawing->_dark, i);
    c->_resolved = true;
    return c;
}
- (CGFloat)one:(int)i
{
    if (!_resolved)
        fail("a component of a colour in no known space");
    return _c[i];
}
- (CGFloat)redComponent
{
    return [self one:0];
}
- (CGFloat)greenComponent
{
    return [self one:1];
}
- (CGFloat)blueComponent
{
    return [self one:2];
}
- (CGFloat)alphaComponent
{
    return [self one:3];
}
- (void)set
{
    gFill = self;
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end
const NSFontWeight NSFontWeightRegular = 0, NSFontWeightMedium = 0.23, NSFontWeightSemibold = 0.3,
                   NSFontWeightBold = 0.4;
@implementation NSFont
+ (NSFont *)monospacedDigitSystemFontOfSize:(CGFloat)s weight:(NSFontWeight)w
{
    NSFont *f = [[self alloc] init];
    f->_size = s;
    f->_weight = w;
    f->_mono = true;
    return f;
}
- (CGFloat)pointSize
{
    return _size;
}
- (CGFloat)capHeight
{
    return _size * 0.75;
}
@end
