#include "platform/linux/tray/sni_types.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace brimwatch::platform {

SniPixmap toSniPixmap(const QImage &image)
{
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    constexpr qsizetype pixelBytes = sizeof(QRgb);
    const qsizetype width = straight.width();
    const qsizetype height = straight.height();
    SniPixmap pixmap{.width = straight.width(),
        .height = straight.height(),
        .bytes = QByteArray(width * height * pixelBytes, Qt::Uninitialized)};
    for (int y = 0; y < straight.height(); ++y)
        qToBigEndian<QRgb>(
            straight.constScanLine(y), width, pixmap.bytes.data() + y * width * pixelBytes);
    return pixmap;
}

void registerSniTypes()
{
    qDBusRegisterMetaType<SniPixmap>();
    qDBusRegisterMetaType<SniPixmaps>();
    qDBusRegisterMetaType<SniToolTip>();
}

} // namespace brimwatch::platform
