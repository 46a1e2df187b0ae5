#include "platform/linux/symbols/svg_symbols.h"

#include <QFile>
#include <QLoggingCategory>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace brimwatch::platform {

namespace {

Q_LOGGING_CATEGORY(lcSymbols, "brimwatch.symbols", QtInfoMsg)

constexpr double gridHeight = 20;
constexpr double gridHeightPerPoint = 1.15;

struct Drawing {
    QLatin1StringView name;
    // That of the view box. It stands here a second time so that a layout can be made without
    // parsing anything.
    double gridWidth = gridHeight;
    // A point of the grid that strokes or tips cross upright and level. The drawing is moved by
    // up to half a pixel to put it on the middle of a pixel, lest they smear over two.
    std::optional<QPointF> crossing = std::nullopt;
};

constexpr std::array drawings{
    Drawing{.name = "arrow.clockwise"_L1},
    Drawing{.name = "arrow.triangle.2.circlepath"_L1},
    Drawing{.name = "bell.badge"_L1},
    Drawing{.name = "brain"_L1, .gridWidth = 22, .crossing = QPointF(11, 10)},
    Drawing{.name = "checkmark"_L1, .gridWidth = 18},
    Drawing{.name = "chevron.left"_L1, .gridWidth = 13},
    Drawing{.name = "clock"_L1, .crossing = QPointF(10, 10)},
    Drawing{.name = "cpu"_L1},
    Drawing{.name = "envelope"_L1, .gridWidth = 23},
    Drawing{.name = "exclamationmark.triangle.fill"_L1, .crossing = QPointF(10, 10)},
    Drawing{.name = "gauge.medium"_L1},
    Drawing{.name = "gearshape"_L1},
    Drawing{.name = "menubar.rectangle"_L1, .gridWidth = 24},
    Drawing{.name = "network"_L1, .crossing = QPointF(10, 10)},
    Drawing{.name = "paperplane"_L1},
    Drawing{.name = "sparkles"_L1, .crossing = QPointF(8, 11.4)},
};

/// Null for an unknown name.
const Drawing *findDrawing(const QString &name)
{
    for (const Drawing &drawing : drawings) {
        if (drawing.name == name)
            return &drawing;
    }
    return nullptr;
}

bool isPositive(double value)
{
    return std::isfinite(value) && value > 0;
}

/// The stroke width in units of the grid, as it stands in a drawing. Each is about the width of a
/// stem of an interface font of that weight.
QByteArray strokeAttribute(SymbolWeight weight)
{
    switch (weight) {
    case SymbolWeight::Regular:
        return R"(stroke-width="1.5")"_ba;
    case SymbolWeight::Medium:
        return R"(stroke-width="1.75")"_ba;
    case SymbolWeight::Semibold:
        return R"(stroke-width="2")"_ba;
    case SymbolWeight::Bold:
        return R"(stroke-width="2.35")"_ba;
    }
    Q_UNREACHABLE();
}

/// The drawing in the weight asked for. The files are complete pictures of the regular weight, so
/// that any viewer shows them, and give their stroke width once, at the root.
QByteArray svgData(const QString &name, SymbolWeight weight)
{
    QFile file(":/brimwatch/symbols/"_L1 + name + ".svg"_L1);
    if (!file.open(QIODevice::ReadOnly)) {
        qCDebug(lcSymbols) << "no drawing for" << name << file.errorString() << "- left blank";
        return {};
    }
    return file.readAll().replace(strokeAttribute(SymbolWeight::Regular), strokeAttribute(weight));
}

} // namespace

QStringList SvgSymbols::names()
{
    QStringList names;
    for (const Drawing &drawing : drawings)
        names.append(drawing.name);
    return names;
}

bool SvgSymbols::has(const QString &name) const
{
    return findDrawing(name) != nullptr;
}

QSizeF SvgSymbols::size(const QString &name, double pointSize) const
{
    const Drawing *drawing = findDrawing(name);
    if (drawing == nullptr || !isPositive(pointSize))
        return {0, 0};
    const double scale = gridHeightPerPoint * pointSize / gridHeight;
    return QSizeF(drawing->gridWidth, gridHeight) * scale;
}

QImage SvgSymbols::image(const SymbolRequest &request) const
{
    const QSizeF exact = size(request.name, request.pointSize) * request.devicePixelRatio;
    if (!isPositive(exact.width()) || !isPositive(exact.height())
        || std::max(exact.width(), exact.height()) > maximumPixels)
        return {};

    const Key key{.name = request.name,
        .pointSize = request.pointSize,
        .weight = request.weight,
        .color = request.color.rgba(),
        .devicePixelRatio = request.devicePixelRatio};
    if (const QImage *known = m_images.object(key))
        return *known;

    // What is a whole number but for the rounding of the multiplication must not gain a pixel.
    const auto pixels = [](double length) { return static_cast<int>(std::ceil(length - 1e-6)); };
    QImage image(
        pixels(exact.width()), pixels(exact.height()), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);

    QSvgRenderer renderer(svgData(request.name, request.weight));
    if (!renderer.isValid())
        return {};
    QRectF box({0, 0}, exact);
    box.moveCenter(QRectF(image.rect()).center());
    if (const auto crossing = findDrawing(request.name)->crossing) {
        const QPointF onImage = box.topLeft() + (*crossing * (box.height() / gridHeight));
        box.translate(
            std::ceil(onImage.x()) - 0.5 - onImage.x(), std::ceil(onImage.y()) - 0.5 - onImage.y());
    }
    QPainter painter(&image);
    renderer.render(&painter, box);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), request.color);
    painter.end();

    image.setDevicePixelRatio(request.devicePixelRatio);
    m_images.insert(key, new QImage(image));
    return image;
}

int SvgSymbols::cachedImages() const
{
    return static_cast<int>(m_images.size());
}

} // namespace brimwatch::platform
