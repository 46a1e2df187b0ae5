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

// NOLINTBEGIN(bugprone-return-const-ref-from-parameter): the signature that the library asks for.
QDBusArgument &operator<<(QDBusArgument &argument, const SniPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SniPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const SniToolTip &toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.iconPixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SniToolTip &toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.iconPixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}
// NOLINTEND(bugprone-return-const-ref-from-parameter)

} // namespace brimwatch::platform
