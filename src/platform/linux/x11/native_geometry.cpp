#include "platform/linux/x11/native_geometry.h"

#include <QGuiApplication>
#include <QScreen>

namespace brimwatch::platform {

QScreen *screenAtNative(QPoint native)
{
    const auto screens = QGuiApplication::screens();
    for (QScreen *screen : screens) {
        if (nativeGeometry(*screen).contains(native))
            return screen;
    }
    return QGuiApplication::primaryScreen();
}

QRect nativeGeometry(const QScreen &screen)
{
    const QRect geometry = screen.geometry();
    return {geometry.topLeft(), (QSizeF(geometry.size()) * screen.devicePixelRatio()).toSize()};
}

QPoint fromNative(QPoint native, const QScreen *screen)
{
    const QPoint origin = screen->geometry().topLeft();
    return origin + (QPointF(native - origin) / screen->devicePixelRatio()).toPoint();
}

QRect fromNative(const QRect &native, const QScreen *screen)
{
    const QSizeF size = QSizeF(native.size()) / screen->devicePixelRatio();
    return {fromNative(native.topLeft(), screen), size.toSize()};
}

} // namespace brimwatch::platform
