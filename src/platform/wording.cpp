#include "platform/wording.h"

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

const Wording &wording(DesktopFamily family)
{
    static const Wording macOS{.refreshToolTip = u"Refresh Quota (⌘R)"_s,
        .requiresApproval = u"Requires approval in macOS System Settings."_s,
        .systemVersionLabel = u"macOS Version"_s};
    static const Wording linux_{.refreshToolTip = u"Refresh Quota (Ctrl+R)"_s,
        .requiresApproval = u"Requires approval in system settings."_s,
        .systemVersionLabel = u"Linux Version"_s};
    return family == DesktopFamily::macOS ? macOS : linux_;
}

} // namespace brimwatch::platform
