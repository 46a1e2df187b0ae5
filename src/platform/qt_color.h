#pragma once

#include "platform/appearance.h"

#include <QColor>

namespace brimwatch::platform {

/// The color as Qt Gui has it. Only for code that links Qt Gui.
inline QColor toColor(const Rgba &color)
{
    return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
        static_cast<float>(color.blue), static_cast<float>(color.alpha));
}

} // namespace brimwatch::platform
