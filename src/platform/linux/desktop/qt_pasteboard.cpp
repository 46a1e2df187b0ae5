#include "platform/linux/desktop/qt_pasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace brimwatch::platform {

void QtPasteboard::setText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace brimwatch::platform
