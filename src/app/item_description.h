#pragma once

#include "platform/status_item.h"

namespace brimwatch::service {
class QuotaService;
}

namespace brimwatch::app {

/// What the item says beyond its label: a line for each bucket in the order of the popover, and
/// while the connection is lost, or not made yet, a line that says so.
platform::ItemDescription describeItem(const service::QuotaService &service);

} // namespace brimwatch::app
