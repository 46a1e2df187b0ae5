#include "platform/status_item.h"

namespace brimwatch::platform {

StatusItem::~StatusItem() = default;

} // namespace brimwatch::platform
