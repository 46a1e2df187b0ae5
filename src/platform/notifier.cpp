#include "platform/notifier.h"

namespace brimwatch::platform {

Notifier::~Notifier() = default;

} // namespace brimwatch::platform
