#pragma once

#include <QPoint>
#include <QRect>

class QScreen;

namespace brimwatch::platform {

/// The screen that holds a point in native pixels; the primary one when none does, null without
/// screens. Qt scales a screen's size, not its origin.
QScreen *screenAtNative(QPoint native);
/// The screen in native pixels.
QRect nativeGeometry(const QScreen &screen);
/// The same place in Qt's device-independent pixels.
QPoint fromNative(QPoint native, const QScreen *screen);
QRect fromNative(const QRect &native, const QScreen *screen);

} // namespace brimwatch::platform
