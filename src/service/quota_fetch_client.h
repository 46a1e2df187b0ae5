#pragma once

#include "core/clock.h"
#include "discovery/daemon_discovery_service.h"
#include "service/quota_fetching.h"

#include <QList>
#include <QObject>
#include <QSslCertificate>

#include <chrono>

namespace brimwatch::service {

/// Asks one daemon after the other over the loopback address, in the order of discovery, until one
/// answers with a summary.
///
/// The token leaves for 127.0.0.1 alone: no proxy, no redirect. Nothing is kept between requests,
/// and none is sent twice. Fetches that overlap know nothing of each other.
class QuotaFetchClient final : public QObject, public QuotaFetching {
    Q_OBJECT

public:
    struct Limits {
        /// For one daemon, from the start to the last byte.
        std::chrono::milliseconds attempt{4000};
        /// A longer body counts as one that makes no sense. Thousands of buckets fit, and what fits
        /// is decoded before the next event.
        qint64 body = 1024LL * 1024;
    };

    /// `trusted`: authorities beside the system's own whose certificates count over https. Empty:
    /// the system's alone.
    QuotaFetchClient(discovery::DaemonDiscoveryService &discovery, const Clock &clock,
        Limits limits, const QList<QSslCertificate> &trusted = {}, QObject *parent = nullptr);
    QuotaFetchClient(discovery::DaemonDiscoveryService &discovery, const Clock &clock,
        QObject *parent = nullptr);
    /// What is still being fetched ends as `noDaemonFound`.
    ~QuotaFetchClient() override;

    /// Looks for daemons before it returns; a success is noted with the discovery service.
    QFuture<FetchResult> fetchQuotaSummary(const std::optional<QDateTime> &lastUpdated) override;

private:
    class Fetch;

    discovery::DaemonDiscoveryService &m_discovery;
    const Clock &m_clock;
    Limits m_limits;
    QList<QSslCertificate> m_trusted;
};

} // namespace brimwatch::service
