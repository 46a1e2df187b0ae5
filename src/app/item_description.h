#pragma once

#include "platform/status_item.h"

#include <QString>

namespace brimwatch::service {
class QuotaService;
}

namespace brimwatch::app {

/// The item's texts beside its label: a title, which says when old data was updated, and a line for
/// each bucket in the order of the popover, with its countdown in whole minutes and, where it runs
/// out before its reset, when. The title says which number of the label does. Unless the daemon is
/// connected, the last line says why. Buckets beyond the last line are replaced by a line "…". Long
/// names are truncated, so that the percentage after them always fits. `home` is the user's home
/// directory, which is hidden as the daemon's token is.
platform::ItemDescription describeItem(
    const service::QuotaService &service, const QString &home = {});

} // namespace brimwatch::app
