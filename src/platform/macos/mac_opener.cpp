#include "platform/macos/mac_opener.h"

#include "platform/macos/native_workspace.h"

#include <QUrl>

namespace brimwatch::platform {

bool MacOpener::openAntigravity()
{
    return openFirstExisting(
        {"/Applications/Antigravity IDE.app", "/Applications/Antigravity-IDE.app",
            "/Applications/Antigravity.app", "/Applications/Google Antigravity.app"});
}

void MacOpener::openUrl(const QUrl &url)
{
    if (url.isLocalFile())
        openFirstExisting({url.toLocalFile().toStdString()});
    else
        openAddress(url.toEncoded().toStdString());
}

} // namespace brimwatch::platform
