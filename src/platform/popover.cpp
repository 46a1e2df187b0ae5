#include "platform/popover.h"

namespace brimwatch::platform {

Popover::~Popover() = default;

} // namespace brimwatch::platform
