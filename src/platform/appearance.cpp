#include "platform/appearance.h"

namespace brimwatch::platform {

Appearance::~Appearance() = default;

} // namespace brimwatch::platform
