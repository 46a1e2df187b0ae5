#pragma once

#include "platform/appearance.h"

#include <QColor>

namespace brimwatch::platform {

/// As QPainter and QML take it. For those that link QtGui.
inline QColor toColor(const Rgba &color)
{
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
        static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

} // namespace brimwatch::platform
