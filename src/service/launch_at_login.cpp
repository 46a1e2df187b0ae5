#include "service/launch_at_login.h"

namespace brimwatch::service {

LaunchAtLogin::~LaunchAtLogin() = default;

} // namespace brimwatch::service
