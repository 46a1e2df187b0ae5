#pragma once

#include "core/result.h"
#include "discovery/daemon_error.h"
#include "discovery/daemon_info.h"
#include "model/quota_records.h"

#include <QDateTime>
#include <QFuture>

#include <optional>

namespace brimwatch::service {

/// A summary and the daemon that gave it.
struct FetchedQuota {
    model::QuotaSummary summary;
    discovery::DaemonInfo daemon;

    bool operator==(const FetchedQuota &) const = default;
};

using FetchResult = Result<FetchedQuota, discovery::DaemonError>;

/// Asks the daemons for the user's quota.
class QuotaFetching {
public:
    QuotaFetching() = default;
    virtual ~QuotaFetching() = default;
    Q_DISABLE_COPY_MOVE(QuotaFetching)

    /// The future always finishes with a result. `lastUpdated` is the caller's last success, absent
    /// before the first; it travels in the error.
    virtual QFuture<FetchResult> fetchQuotaSummary(const std::optional<QDateTime> &lastUpdated) = 0;
};

} // namespace brimwatch::service
