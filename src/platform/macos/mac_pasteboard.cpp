#include "platform/macos/mac_pasteboard.h"

#include "platform/macos/native_pasteboard.h"

#include <QString>

namespace brimwatch::platform {

void MacPasteboard::setText(const QString &text)
{
    setPasteboardText(text.toStdString());
}

} // namespace brimwatch::platform
