#pragma once

#include "platform/macos/native_appearance.h"
#include "platform/macos/native_label.h"

#include <cstdint>
#include <string>
#include <vector>

namespace brimwatch::platform {

/// In points.
struct NativeSize {
    double width = 0;
    double height = 0;
};

/// Rows from the top, each pixel as red, green, blue and alpha, the colours premultiplied.
struct NativePixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgba = {};
};

/// Symbols with a side longer than this many pixels are not drawn: no view needs a tenth of it, and
/// a malformed scale must not allocate gigabytes.
inline constexpr int largestSymbolSide = 1024;

/// Whether the system has a symbol of that name.
bool hasSymbol(const std::string &name);
/// As large as the system draws it; nothing for one that it does not have.
NativeSize symbolSize(const NativeSymbol &symbol);
/// The symbol in one colour, at so many pixels per point. Nothing for one that the system does not
/// have, for a scale that is not a positive number, and for one that is too large.
NativePixels drawSymbol(const NativeSymbol &symbol, const NativeRgba &color, double scale);

} // namespace brimwatch::platform
