#pragma once

#include "platform/app_information.h"

namespace brimwatch::platform {

/// What stands in the bundle's Info.plist, and what the system says of itself.
AppInformation macAppInformation();

} // namespace brimwatch::platform
