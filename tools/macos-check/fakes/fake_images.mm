#include "fake_parts.h"

const NSColorSpaceName NSCalibratedRGBColorSpace = @"calibrated rgb";
@interface NSImageSymbolConfiguration () {
@public
    double _points, _weight;
}
@end
@implementation NSImageSymbolConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)s weight:(NSFontWeight)w
{
    NSImageSymbolConfiguration *c = [[self alloc] init];
    c->_points = s;
    c->_weight = w;
    return c;
}
@end
NSImage *fake::gDrawn;
static NSRect gDrawnIn;
@interface NSBitmapImageRep () {
@public
    std::vector<unsigned char> _bytes;
    long _w, _h, _row;
    std::string _space;
}
@end
@interface NSGraphicsContext () {
@public
    NSBitmapImageRep *_bitmap;
}
@end
NSGraphicsContext *fake::gContext;
std::vector<NSGraphicsContext *> fake::gSaved;
@implementation NSImage
@synthesize accessibilityDescription = _ad;
+ (instancetype)imageWithSystemSymbolName:(NSString *)n accessibilityDescription:(NSString *)d
{
    needMain("imageWithSystemSymbolName");
    if (n == nil || fake::world().unknownSymbols.contains(fake::str(n)))
        return nil;
    NSImage *i = [[self alloc] init];
    i->_symbol = fake::str(n);
    i->_sz = NSMakeSize(16, 16);
    i.accessibilityDescription = d;
    return i;
}
+ (NSImage *)imageWithSize:(NSSize)s flipped:(BOOL)f drawingHandler:(BOOL (^)(NSRect))h
{
    NSImage *i = [[self alloc] init];
    i->_sz = s;
    i->_flipped = f;
    i->_handler = h;
    return i;
}
- (NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)c
{
    if (fake::world().rigidSymbols.contains(_symbol))
        return nil;
    NSImage *i = [[NSImage alloc] init];
    i->_symbol = _symbol;
    i->_points = c->_points;
    i->_weight = c->_weight;
    i->_sz = fake::symbolSizeAt(c->_points);
    i.accessibilityDescription = self.accessibilityDescription;
    return i;
}
- (NSSize)size
{
    return _sz;
}
- (void)setSize:(NSSize)s
{
    _sz = s;
}
- (BOOL)isTemplate
{
    return _template;
}
- (void)setTemplate:(BOOL)t
{
    _template = t;
}
- (void)drawInRect:(NSRect)r
{
    gDrawn = self;
    gDrawnIn = r;
    if (gContext == nil)
        return;
    NSBitmapImageRep *b = gContext->_bitmap;
    // The picture of a symbol: its upper left quarter, so that which way is up shows.
    const NSSize s = b.size;
    for (long y = 0; y < b->_h; ++y)
        for (long x = 0; x < b->_w; ++x)
            if (x * 2 < b->_w && y * 2 < b->_h)
                // Its right edge is smooth.
                b->_bytes[size_t(y * b->_row + x * 4 + 3)] = (x + 1) * 2 < b->_w ? 255 : 102;
    if (r.origin.x != 0 || r.origin.y != 0 || r.size.width != s.width || r.size.height != s.height)
        fail("a symbol not drawn over the whole bitmap: " + text(r) + " of " + text(s));
    // Otherwise it is scaled as a picture, and its lines with it.
    if (r.size.width != _sz.width || r.size.height != _sz.height)
        fail("a symbol of " + text(_sz) + " drawn in " + text(r.size));
}
@end
@implementation NSImageRep
@end
@implementation NSBitmapImageRep
- (instancetype)initWithBitmapDataPlanes:(unsigned char **)p
                              pixelsWide:(NSInteger)w
                              pixelsHigh:(NSInteger)h
                           bitsPerSample:(NSInteger)b
                         samplesPerPixel:(NSInteger)n
                                hasAlpha:(BOOL)a
                                isPlanar:(BOOL)pl
                          colorSpaceName:(NSString *)c
                             bytesPerRow:(NSInteger)row
                            bitsPerPixel:(NSInteger)bits
{
    record("bitmap " + number(double(w)) + "x" + number(double(h)) + " " + fake::str(c));
    if (p != nullptr || b != 8 || n != 4 || !a || pl || bits != 0 || row != 0) {
        fail("a bitmap of a kind that the fakes do not know");
        return nil;
    }
    _space = fake::str(c);
    _w = w;
    _h = h;
    _row = (w * 4 + 63) / 64 * 64; // Rows are longer than their pixels, as they may be.
    _bytes.assign(size_t(_row * h), 0);
    self.size = NSMakeSize(double(w), double(h));
    return self;
}
- (unsigned char *)bitmapData
{
    return _bytes.data();
}
- (NSInteger)bytesPerRow
{
    return _row;
}
- (NSBitmapImageRep *)bitmapImageRepByRetaggingWithColorSpace:(NSColorSpace *)s
{
    NSBitmapImageRep *other = [NSBitmapImageRep alloc];
    other->_bytes = _bytes;
    other->_w = _w;
    other->_h = _h;
    other->_row = _row;
    other->_space = s == NSColorSpace.sRGBColorSpace ? "srgb" : "another";
    other.size = self.size;
    return other;
}
@end
@implementation NSGraphicsContext
+ (NSGraphicsContext *)graphicsContextWithBitmapImageRep:(NSBitmapImageRep *)b
{
    NSGraphicsContext *c = [[self alloc] init];
    c->_bitmap = b;
    return c;
}
+ (NSGraphicsContext *)currentContext
{
    return gContext;
}
+ (void)setCurrentContext:(NSGraphicsContext *)c
{
    gContext = c;
}
+ (void)saveGraphicsState
{
    gSaved.push_back(gContext);
}
+ (void)restoreGraphicsState
{
    if (gSaved.empty()) {
        fail("restoreGraphicsState without a saved one");
        return;
    }
    gContext = gSaved.back();
    gSaved.pop_back();
}
@end
extern "C" void NSRectFillUsingOperation(NSRect r, NSCompositingOperation o)
{
    if (gContext == nil || gFill == nil) {
        fail("a fill of nothing");
        return;
    }
    NSBitmapImageRep *b = gContext->_bitmap;
    for (size_t i = 0; i < b->_bytes.size(); i += 4) {
        const double under = b->_bytes[i + 3] / 255.0;
        const double a = gFill->_c[3] * (o == NSCompositingOperationSourceIn ? under : 1);
        for (int k = 0; k < 3; ++k) {
            // A bitmap in another space than the colour's has other numbers for it.
            const bool same = b->_space == "srgb" && gFill->_what.starts_with("srgb");
            const double c = same ? gFill->_c[k] : gFill->_c[k] * gFill->_c[k];
            b->_bytes[i + size_t(k)] = (unsigned char)(c * a * 255 + 0.5);
        }
        b->_bytes[i + 3] = (unsigned char)(a * 255 + 0.5);
    }
}
@implementation NSTextAttachment
@end
@implementation CALayer
@end

namespace fake {
NSSize symbolSizeAt(double points)
{
    // Seldom whole numbers, as with the system's own.
    return NSMakeSize(points + 0.75, points + 1.25);
}
Picture picture(NSImage *i)
{
    Picture p;
    if (i == nil)
        return p;
    p.symbol = i->_symbol;
    p.description = str(i.accessibilityDescription);
    p.pointSize = i->_points;
    p.weight = i->_weight;
    p.isTemplate = i->_template;
    p.flipped = i->_flipped;
    p.drawnByUs = i->_handler != nil;
    p.size = i->_sz;
    if (i->_handler) {
        gDrawn = nil;
        p.drew = i->_handler(NSMakeRect(0, 0, i->_sz.width, i->_sz.height));
        if (gDrawn) {
            p.drawnSymbol = gDrawn->_symbol;
            p.drawnIn = gDrawnIn;
            p.pointSize = gDrawn->_points;
            p.weight = gDrawn->_weight;
        }
        gDrawn = nil;
    }
    return p;
}
} // namespace fake
