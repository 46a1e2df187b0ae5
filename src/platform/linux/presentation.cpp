#include "platform/linux/presentation.h"

namespace brimwatch::platform {

Presentation::~Presentation() = default;

} // namespace brimwatch::platform
