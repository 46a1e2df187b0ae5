#include "platform/linux/desktop/application_icon.h"

#include "platform/symbols.h"

#include <QImage>
#include <QLinearGradient>
#include <QPainter>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

QImage applicationIcon(const SymbolSource &symbols, int side)
{
    // The proportions and colours of the icon that is installed.
    constexpr double margin = 8.0 / 128;
    constexpr double radius = 28.0 / 128;
    constexpr double symbolSize = 72.0 / 128;

    QImage icon(side, side, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient gradient(
        QPointF(margin * side, margin * side), QPointF((1 - margin) * side, (1 - margin) * side));
    gradient.setColorAt(0, QColor(0x2c, 0x86, 0xf8));
    gradient.setColorAt(1, QColor(0x95, 0x46, 0xdc));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    const double square = (1 - 2 * margin) * side;
    painter.drawRoundedRect(
        QRectF(margin * side, margin * side, square, square), radius * side, radius * side);

    const QImage symbol = symbols.image({.name = u"sparkles"_s,
        .pointSize = symbolSize * side,
        .weight = SymbolWeight::Bold,
        .color = Qt::white});
    if (!symbol.isNull())
        painter.drawImage(
            QPoint((side - symbol.width()) / 2, (side - symbol.height()) / 2), symbol);
    return icon;
}

} // namespace brimwatch::platform
