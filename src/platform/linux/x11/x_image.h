#pragma once

#include <QImage>
#include <QSize>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace brimwatch::platform {

class XConnection;

/// How colours stand in the pixels of an X window.
struct XPixelFormat {
    xcb_visualid_t visual = 0;
    std::uint8_t depth = 0;
    std::uint8_t bitsPerPixel = 0;
    std::uint8_t rowBits = 0; ///< Rows begin at multiples of this many bits.
    bool swapped = false; ///< The server's byte order is not ours.
    std::uint32_t red = 0; ///< Which bits are red; likewise the others.
    std::uint32_t green = 0;
    std::uint32_t blue = 0;
    std::uint32_t alpha = 0; ///< No bits: windows of this visual are opaque.

    bool isTransparent() const { return alpha != 0; }
};

/// The format of a visual of the connection's screen. Absent for an unknown visual, for one with a
/// colour table, and for pixels of other than 16 or 32 bits.
std::optional<XPixelFormat> pixelFormat(const XConnection &x, xcb_visualid_t visual);

/// Draws the image at the window's origin, in as many requests as the server's limit asks for.
void putImage(XConnection &x, xcb_window_t window, xcb_gcontext_t gc, const XPixelFormat &format,
    const QImage &image);

/// What the window shows from its origin on, opaque. Null when it is not visible or smaller than
/// that.
QImage readImage(XConnection &x, xcb_window_t window, const XPixelFormat &format, QSize size);

} // namespace brimwatch::platform
