#pragma once

#include <QString>

namespace brimwatch::platform {

enum class DesktopFamily { macOS, Linux };

/// The family that this program was built for.
constexpr DesktopFamily thisDesktopFamily()
{
#ifdef Q_OS_MACOS
    return DesktopFamily::macOS;
#else
    return DesktopFamily::Linux;
#endif
}

/// The texts that differ between desktops.
struct Wording {
    QString refreshToolTip; ///< "Refresh Quota (⌘R)"; Linux has Ctrl+R.
    QString requiresApproval; ///< "Requires approval in macOS System Settings."
    QString systemVersionLabel; ///< "macOS Version", in the report.
};

const Wording &wording(DesktopFamily family = thisDesktopFamily());

} // namespace brimwatch::platform
