#include "platform/linux/x11/x_image.h"

#include "platform/linux/x11/x_connection.h"

#include <QByteArray>
#include <QColor>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>

namespace brimwatch::platform {

namespace {

constexpr unsigned full = 255;

/// One of the parts that make a pixel.
class Channel {
public:
    explicit Channel(std::uint32_t mask)
        : m_mask(mask)
        , m_shift(mask == 0 ? 0 : std::countr_zero(mask))
        , m_largest(mask >> m_shift)
    {
    }

    std::uint32_t encode(int value) const
    {
        const auto scaled = (static_cast<std::uint64_t>(value) * m_largest + full / 2) / full;
        return static_cast<std::uint32_t>(scaled) << m_shift & m_mask;
    }
    int decode(std::uint32_t pixel) const
    {
        if (m_largest == 0)
            return 0;
        const auto value = static_cast<std::uint64_t>((pixel & m_mask) >> m_shift);
        return static_cast<int>((value * full + m_largest / 2) / m_largest);
    }

private:
    std::uint32_t m_mask;
    int m_shift;
    std::uint32_t m_largest;
};

qsizetype rowBytes(const XPixelFormat &format, int width)
{
    const qsizetype bits = static_cast<qsizetype>(width) * format.bitsPerPixel;
    return (bits + format.rowBits - 1) / format.rowBits * format.rowBits / 8;
}

template <typename Word> void store(char *to, std::uint32_t pixel, bool swapped)
{
    auto word = static_cast<Word>(pixel);
    if (swapped)
        word = qbswap(word);
    std::memcpy(to, &word, sizeof word);
}

template <typename Word> std::uint32_t load(const char *from, bool swapped)
{
    Word word = 0;
    std::memcpy(&word, from, sizeof word);
    return swapped ? qbswap(word) : word;
}

/// Rows `first` to `last`, the latter excluded, as the server wants them.
QByteArray encodeRows(const XPixelFormat &format, const QImage &image, int first, int last)
{
    const Channel red(format.red);
    const Channel green(format.green);
    const Channel blue(format.blue);
    const Channel alpha(format.alpha);
    const qsizetype stride = rowBytes(format, image.width());
    QByteArray bytes(stride * (last - first), '\0');
    for (int y = first; y < last; ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        char *to = bytes.data() + stride * (y - first);
        for (int x = 0; x < image.width(); ++x) {
            const QRgb color = line[x];
            const std::uint32_t pixel = red.encode(qRed(color)) | green.encode(qGreen(color))
                | blue.encode(qBlue(color)) | alpha.encode(qAlpha(color));
            if (format.bitsPerPixel == 16)
                store<std::uint16_t>(to + qsizetype(2) * x, pixel, format.swapped);
            else
                store<std::uint32_t>(to + qsizetype(4) * x, pixel, format.swapped);
        }
    }
    return bytes;
}

std::optional<XPixelFormat> formatOf(
    const xcb_setup_t *setup, const xcb_visualtype_t &visual, std::uint8_t depth)
{
    if (visual._class != XCB_VISUAL_CLASS_TRUE_COLOR)
        return {};
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0;
        xcb_format_next(&formats)) {
        const xcb_format_t &pixels = *formats.data;
        if (pixels.depth != depth || (pixels.bits_per_pixel != 16 && pixels.bits_per_pixel != 32))
            continue;
        const std::uint32_t colors = visual.red_mask | visual.green_mask | visual.blue_mask;
        const bool bigEndian = setup->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
        return XPixelFormat{.visual = visual.visual_id,
            .depth = depth,
            .bitsPerPixel = pixels.bits_per_pixel,
            .rowBits = pixels.scanline_pad,
            .swapped = bigEndian != (std::endian::native == std::endian::big),
            .red = visual.red_mask,
            .green = visual.green_mask,
            .blue = visual.blue_mask,
            .alpha = depth == 32 ? ~colors : 0};
    }
    return {};
}

} // namespace

std::optional<XPixelFormat> pixelFormat(const XConnection &x, xcb_visualid_t visual)
{
    const xcb_setup_t *setup = xcb_get_setup(x.connection());
    for (auto depths = xcb_screen_allowed_depths_iterator(x.screen()); depths.rem > 0;
        xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
            xcb_visualtype_next(&visuals)) {
            if (visuals.data->visual_id == visual)
                return formatOf(setup, *visuals.data, depths.data->depth);
        }
    }
    return {};
}

void putImage(XConnection &x, xcb_window_t window, xcb_gcontext_t gc, const XPixelFormat &format,
    const QImage &image)
{
    if (image.isNull())
        return;
    const QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const qsizetype room = qsizetype(4) * xcb_get_setup(x.connection())->maximum_request_length
        - qsizetype(sizeof(xcb_put_image_request_t));
    const int rows = std::max(1, static_cast<int>(room / rowBytes(format, source.width())));
    for (int first = 0; first < source.height(); first += rows) {
        const int last = std::min(first + rows, source.height());
        const QByteArray bytes = encodeRows(format, source, first, last);
        xcb_put_image(x.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, gc,
            static_cast<std::uint16_t>(source.width()), static_cast<std::uint16_t>(last - first), 0,
            static_cast<std::int16_t>(first), 0, format.depth,
            static_cast<std::uint32_t>(bytes.size()),
            reinterpret_cast<const std::uint8_t *>(bytes.constData()));
    }
}

QImage readImage(XConnection &x, xcb_window_t window, const XPixelFormat &format, QSize size)
{
    xcb_generic_error_t *failure = nullptr;
    const XcbPointer<xcb_get_image_reply_t> reply(xcb_get_image_reply(x.connection(),
        xcb_get_image(x.connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0,
            static_cast<std::uint16_t>(size.width()), static_cast<std::uint16_t>(size.height()),
            ~0U),
        &failure));
    const XcbPointer<xcb_generic_error_t> expected(failure); // The answer for what is not visible.
    const qsizetype stride = rowBytes(format, size.width());
    if (!reply || reply->depth != format.depth
        || xcb_get_image_data_length(reply.get()) < stride * size.height())
        return {};

    const Channel red(format.red);
    const Channel green(format.green);
    const Channel blue(format.blue);
    const auto *bytes = reinterpret_cast<const char *>(xcb_get_image_data(reply.get()));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const char *from = bytes + stride * y;
        for (int column = 0; column < size.width(); ++column) {
            const std::uint32_t pixel = format.bitsPerPixel == 16
                ? load<std::uint16_t>(from + qsizetype(2) * column, format.swapped)
                : load<std::uint32_t>(from + qsizetype(4) * column, format.swapped);
            line[column] = qRgb(red.decode(pixel), green.decode(pixel), blue.decode(pixel));
        }
    }
    return image;
}

} // namespace brimwatch::platform
