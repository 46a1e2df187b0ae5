#pragma once

#include "service/quota_fetching.h"

#include <QList>
#include <QPromise>
#include <QStringList>

#include <memory>
#include <vector>

namespace brimwatch::test {

/// A fetch that answers when the test says so.
class FakeFetching final : public service::QuotaFetching {
public:
    QFuture<service::FetchResult> fetchQuotaSummary(
        const std::optional<QDateTime> &lastUpdated) override
    {
        if (log != nullptr)
            log->append(QStringLiteral("fetch"));
        asked.push_back(lastUpdated);
        m_open.push_back(std::make_unique<QPromise<service::FetchResult>>());
        m_open.back()->start();
        return m_open.back()->future();
    }

    /// Answers the oldest fetch that is open.
    void answer(const service::FetchResult &result)
    {
        const auto promise = std::move(m_open.front());
        m_open.erase(m_open.begin());
        promise->addResult(result);
        promise->finish();
    }

    bool isWaiting() const { return !m_open.empty(); }

    std::vector<std::optional<QDateTime>> asked; ///< The caller's last success, for each fetch.
    QStringList *log = nullptr; ///< Where calls are written down, if anywhere.

private:
    std::vector<std::unique_ptr<QPromise<service::FetchResult>>> m_open;
};

} // namespace brimwatch::test
