#pragma once

#include "core/redactor.h"
#include "platform/published_state.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace brimwatch::service {
class Diagnostics;
class QuotaService;
} // namespace brimwatch::service

namespace brimwatch::app {

/// Hides the active daemon's token, and `home`, the user's home directory.
Redactor redactorFor(const service::QuotaService &service, const QString &home);

/// When quota came last, in seconds since the epoch; absent before the first.
std::optional<std::int64_t> lastUpdateOf(const service::QuotaService &service);

/// What other programs may know of the service's state, within the bounds of PublishedState, all
/// texts redacted.
platform::PublishedState describeState(const service::QuotaService &service, const QString &home);

/// The report for support as other programs may have it: redacted, and of bounded length.
QString reportForOthers(const service::Diagnostics &diagnostics,
    const service::QuotaService &service, const QString &home);

} // namespace brimwatch::app
