#pragma once

#include "platform/app_information.h"

namespace brimwatch::platform {

/// What the bundle's Info.plist and the system say about themselves.
AppInformation macAppInformation();

} // namespace brimwatch::platform
