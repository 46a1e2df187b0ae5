#include "platform/macos/mac_symbols.h"

#include "platform/macos/native_symbols.h"

#include <QPainter>

#include <cmath>

namespace brimwatch::platform {
namespace {

NativeWeight nativeWeight(SymbolWeight weight)
{
    switch (weight) {
    case SymbolWeight::Regular:
        return NativeWeight::Regular;
    case SymbolWeight::Medium:
        return NativeWeight::Medium;
    case SymbolWeight::Semibold:
        return NativeWeight::Semibold;
    case SymbolWeight::Bold:
        return NativeWeight::Bold;
    }
    return NativeWeight::Regular;
}

NativeRgba nativeRgba(const QColor &color)
{
    return {.red = color.redF(),
        .green = color.greenF(),
        .blue = color.blueF(),
        .alpha = color.alphaF()};
}

} // namespace

bool MacSymbols::has(const QString &name) const
{
    return hasSymbol(name.toStdString());
}

QSizeF MacSymbols::size(const QString &name, double pointSize) const
{
    const NativeSize size = symbolSize(
        {.name = name.toStdString(), .pointSize = pointSize, .weight = NativeWeight::Regular});
    if (size.width <= 0 || size.height <= 0)
        return {};
    return {size.width, size.height};
}

QImage MacSymbols::image(const SymbolRequest &request) const
{
    const double ratio = request.devicePixelRatio;
    const NativePixels pixels = drawSymbol({.name = request.name.toStdString(),
                                               .pointSize = request.pointSize,
                                               .weight = nativeWeight(request.weight)},
        nativeRgba(request.color), ratio);
    const QSizeF place = size(request.name, request.pointSize) * ratio;
    if (pixels.rgba.empty() || place.isEmpty() || place.width() > largestSymbolSide
        || place.height() > largestSymbolSide)
        return {};
    // QImage borrows the pixels, which live until this function returns.
    const QImage drawn(
        pixels.rgba.data(), pixels.width, pixels.height, QImage::Format_RGBA8888_Premultiplied);
    QImage image(static_cast<int>(std::ceil(place.width())),
        static_cast<int>(std::ceil(place.height())), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.drawImage(
            (image.width() - drawn.width()) / 2, (image.height() - drawn.height()) / 2, drawn);
    }
    image.setDevicePixelRatio(ratio);
    return image;
}

} // namespace brimwatch::platform
