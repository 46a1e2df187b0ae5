#pragma once

#include "platform/status_item.h"

namespace brimwatch::service {
class QuotaService;
}

namespace brimwatch::app {

/// What the item says beyond its label: a title, which tells of old data since when it is, and a
/// line for each bucket in the order of the popover, with its countdown in whole minutes. While the
/// connection is lost, or not made yet, a last line says so. Where there are more buckets than
/// lines, "…" stands for those that are left out. Long names are cut so that the percentage still
/// stands behind them.
platform::ItemDescription describeItem(const service::QuotaService &service);

} // namespace brimwatch::app
