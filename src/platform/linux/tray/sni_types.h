#pragma once

#include "platform/linux/bus/bus_structure.h"

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

namespace brimwatch::platform {

/// A picture as the StatusNotifierItem protocol carries it, `(iiay)`: straight ARGB, 32 bits a
/// pixel in network byte order.
struct SniPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    static auto members(auto &self) { return std::tie(self.width, self.height, self.bytes); }
    bool operator==(const SniPixmap &) const = default;
};

using SniPixmaps = QList<SniPixmap>;

/// A tooltip as the protocol carries it, `(sa(iiay)ss)`.
struct SniToolTip {
    QString iconName;
    SniPixmaps iconPixmaps;
    QString title;
    QString text;

    static auto members(auto &self)
    {
        return std::tie(self.iconName, self.iconPixmaps, self.title, self.text);
    }
    bool operator==(const SniToolTip &) const = default;
};

SniPixmap toSniPixmap(const QImage &image);

/// Makes the types above known to D-Bus. May be called again.
void registerSniTypes();

} // namespace brimwatch::platform
