#include "platform/remote_control.h"

namespace brimwatch::platform {

RemoteControl::~RemoteControl() = default;

} // namespace brimwatch::platform
