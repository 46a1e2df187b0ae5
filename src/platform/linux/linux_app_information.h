#pragma once

#include "platform/app_information.h"

#include <QByteArray>
#include <QString>

namespace brimwatch::platform {

/// The version and number that this build was given, and the name of the distribution with the
/// kernel's release.
AppInformation linuxAppInformation();

/// PRETTY_NAME of an os-release file (os-release(5)), its quotes undone, in one line; "Linux", as
/// that page has it, where there is none.
QString prettyNameOf(const QByteArray &osRelease);

} // namespace brimwatch::platform
