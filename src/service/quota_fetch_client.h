#pragma once

#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "service/quota_fetching.h"

#include <QByteArray>
#include <QObject>
#include <QThreadPool>

#include <chrono>
#include <optional>

namespace brimwatch::service {

/// Asks one daemon after the other over the loopback address, in the order of discovery, until one
/// answers with a summary.
///
/// The token is sent to 127.0.0.1 only: no proxy, no redirect. Between requests the latest answer
/// is kept, so that the same bytes are not decoded again, and none is sent twice. Fetches that
/// overlap are independent.
class QuotaFetchClient final : public QObject, public QuotaFetching {
    Q_OBJECT

public:
    struct Limits {
        /// The timeout for one daemon, from the start to the last byte.
        std::chrono::milliseconds attempt{4000};
        /// A daemon with a larger body counts as none. Thousands of buckets fit.
        qint64 body = 1024LL * 1024;
    };

    /// `authorities`: certificates in the PEM format, of authorities that are trusted over https
    /// beside the system's own. Empty: the system's alone.
    QuotaFetchClient(discovery::DaemonDiscoveryService &discovery, const Clock &clock,
        Limits limits, QByteArray authorities = {}, QObject *parent = nullptr);
    QuotaFetchClient(discovery::DaemonDiscoveryService &discovery, const Clock &clock,
        QObject *parent = nullptr);
    /// Fetches that are under way end as `noDaemonFound`.
    ~QuotaFetchClient() override;

    /// Looks for daemons before it returns; a success is noted with the discovery service.
    QFuture<FetchResult> fetchQuotaSummary(const std::optional<QDateTime> &lastUpdated) override;

private:
    class Fetch;

    struct Decoded {
        QByteArray body;
        model::QuotaSummary summary;
    };

    discovery::DaemonDiscoveryService &m_discovery;
    const Clock &m_clock;
    Limits m_limits;
    QByteArray m_authorities;
    std::optional<Decoded> m_latest; ///< Absent when it was large.
    QThreadPool m_decoders; ///< For large answers; has no thread without one.
};

} // namespace brimwatch::service
