#include "platform/linux/tray/presentation.h"

namespace brimwatch::platform {

Presentation::~Presentation() = default;

} // namespace brimwatch::platform
