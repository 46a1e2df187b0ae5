#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QMetaType>
#include <QString>

namespace brimwatch::platform {

/// A picture as the StatusNotifierItem protocol carries it, `(iiay)`: straight ARGB, 32 bits a
/// pixel in network byte order.
struct SniPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    bool operator==(const SniPixmap &) const = default;
};

using SniPixmaps = QList<SniPixmap>;

/// A tooltip as the protocol carries it, `(sa(iiay)ss)`.
struct SniToolTip {
    QString iconName;
    SniPixmaps iconPixmaps;
    QString title;
    QString text;

    bool operator==(const SniToolTip &) const = default;
};

SniPixmap toSniPixmap(const QImage &image);

/// Makes the types above known to D-Bus. May be called again.
void registerSniTypes();

QDBusArgument &operator<<(QDBusArgument &argument, const SniPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, SniPixmap &pixmap);
QDBusArgument &operator<<(QDBusArgument &argument, const SniToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, SniToolTip &toolTip);

} // namespace brimwatch::platform

Q_DECLARE_METATYPE(brimwatch::platform::SniPixmap)
Q_DECLARE_METATYPE(brimwatch::platform::SniToolTip)
