#import "platform/macos/native_symbols.h"

#import "platform/macos/objc_support.h"

#include <cmath>
#include <cstring>

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {
namespace {

constexpr int bytesPerPixel = 4;
constexpr int bitsPerSample = 8;

/// Draws the symbol into the whole of `bitmap`, then gives all that it covered the colour.
void paint(NSImage *symbol, const NativeRgba &color, NSBitmapImageRep *bitmap)
{
    NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
    if (context == nil)
        return;
    const NSSize size = bitmap.size;
    const NSRect all = NSMakeRect(0, 0, size.width, size.height);
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = context;
    [symbol drawInRect:all];
    [[NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha] set];
    NSRectFillUsingOperation(all, NSCompositingOperationSourceIn);
    [NSGraphicsContext restoreGraphicsState];
}

} // namespace

bool hasSymbol(const std::string &name)
{
    // As the label draws it: a symbol that exists but not in that size is of no use.
    return symbolImage({.name = name, .pointSize = 12, .weight = NativeWeight::Semibold}, nil)
        != nil;
}

NativeSize symbolSize(const NativeSymbol &symbol)
{
    NSImage *image = symbolImage(symbol, nil);
    if (image == nil)
        return {};
    return {.width = image.size.width, .height = image.size.height};
}

NativePixels drawSymbol(const NativeSymbol &symbol, const NativeRgba &color, double scale)
{
    NSImage *image = symbolImage(symbol, nil);
    if (image == nil)
        return {};
    const NSSize size = image.size;
    const double width = std::ceil(size.width * scale);
    const double height = std::ceil(size.height * scale);
    // Written so that NaN fails it.
    if (!(width >= 1 && width <= largestSymbolSide && height >= 1 && height <= largestSymbolSide))
        return {};
    NativePixels pixels{
        .width = static_cast<int>(width), .height = static_cast<int>(height), .rgba = {}};
    NSBitmapImageRep *generic =
        [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                pixelsWide:pixels.width
                                                pixelsHigh:pixels.height
                                             bitsPerSample:bitsPerSample
                                           samplesPerPixel:bytesPerPixel
                                                  hasAlpha:YES
                                                  isPlanar:NO
                                            colorSpaceName:NSCalibratedRGBColorSpace
                                               bytesPerRow:0
                                              bitsPerPixel:0];
    // No name stands for sRGB, which the pixels are read as: drawn in another space, they would
    // show another hue than the same colour beside the symbol.
    NSBitmapImageRep *bitmap =
        [generic bitmapImageRepByRetaggingWithColorSpace:NSColorSpace.sRGBColorSpace];
    if (bitmap == nil)
        return {};
    // The size in points, of which the bitmap has more pixels.
    bitmap.size = size;
    paint(image, color, bitmap);
    const auto row = static_cast<std::size_t>(pixels.width) * bytesPerPixel;
    const auto rowInBitmap = static_cast<std::size_t>(bitmap.bytesPerRow);
    const unsigned char *data = bitmap.bitmapData;
    if (data == nullptr)
        return {};
    pixels.rgba.resize(row * static_cast<std::size_t>(pixels.height));
    for (std::size_t y = 0; y < static_cast<std::size_t>(pixels.height); ++y)
        std::memcpy(pixels.rgba.data() + y * row, data + y * rowInBitmap, row);
    return pixels;
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
