#pragma once

#include "platform/app_information.h"

#include <QByteArray>
#include <QString>

namespace brimwatch::platform {

/// The version and build number of this build, and the name of the distribution with the kernel's
/// release.
AppInformation linuxAppInformation();

/// PRETTY_NAME of an os-release file (os-release(5)), unquoted, on one line; "Linux", the default
/// of that page, where there is none.
QString prettyNameOf(const QByteArray &osRelease);

} // namespace brimwatch::platform
