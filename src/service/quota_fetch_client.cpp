#include "service/quota_fetch_client.h"

#include "core/when_done.h"
#include "service/quota_exchange.h"
#include "service/quota_request.h"

#include <QPromise>

#include <memory>
#include <utility>

namespace brimwatch::service {

using discovery::DaemonError;
using discovery::DaemonInfo;

namespace {

using Answer = Result<model::QuotaSummary, DecodingError>;

/// Decoding more takes longer than the event loop may be kept.
constexpr qsizetype largestUsual = 64LL * 1024;
/// JSON may be nested 1024 levels deep, more than the threads of macOS have room for by themselves.
constexpr uint decoderStack = 8U * 1024 * 1024;

} // namespace

/// One walk through the candidates. A child of the client, gone when it has its result.
class QuotaFetchClient::Fetch final : public QObject {
public:
    Fetch(QuotaFetchClient &client, const std::optional<QDateTime> &lastUpdated)
        : QObject(&client)
        , m_client(client)
        , m_lastUpdated(lastUpdated)
    {
        m_promise.start();
    }

    ~Fetch() override
    {
        if (!m_finished)
            setResult(failure(DaemonError::Kind::noDaemonFound));
    }

    QFuture<FetchResult> future() { return m_promise.future(); }

    void start()
    {
        if (!m_client.m_discovery.directoryExists()) {
            finish(failure(DaemonError::Kind::directoryNotFound));
            return;
        }
        m_candidates = m_client.m_discovery.discoverDaemons();
        askNext();
    }

private:
    void askNext()
    {
        while (!m_candidates.isEmpty()) {
            m_asked = m_candidates.takeFirst();
            const auto request = quotaRequest(m_asked);
            if (!request)
                continue;
            auto *exchange = new QuotaExchange(*request,
                {.time = m_client.m_limits.attempt, .body = m_client.m_limits.body},
                m_client.m_authorities, this);
            connect(exchange, &QuotaExchange::finished, this,
                [this, exchange](const QuotaExchange::Outcome &outcome) {
                    exchange->deleteLater();
                    handle(outcome);
                });
            return;
        }
        // A daemon that answered something else counts as none. A transport error is the only
        // reason that the user is given.
        finish(m_transportError.isNull()
                ? failure(DaemonError::Kind::noDaemonFound)
                : failure(DaemonError::Kind::daemonUnreachable, m_transportError));
    }

    void handle(const QuotaExchange::Outcome &outcome)
    {
        if (const auto *answer = std::get_if<QuotaExchange::Answered>(&outcome)) {
            decode(answer->body);
            return;
        }
        if (const auto *failed = std::get_if<QuotaExchange::Failed>(&outcome))
            m_transportError = failed->reason;
        askNext();
    }

    void decode(const QByteArray &body)
    {
        auto &latest = m_client.m_latest;
        if (latest && latest->body == body) {
            succeed(latest->summary);
        } else if (body.size() > largestUsual) {
            latest.reset();
            const auto promise = std::make_shared<QPromise<Answer>>();
            promise->start();
            whenDone(promise->future(), this, [this](const Answer &answer) { handle(answer); });
            m_client.m_decoders.start([promise, body] {
                promise->addResult(model::decodeAnswer(body));
                promise->finish();
            });
        } else {
            const auto answer = model::decodeAnswer(body);
            if (answer)
                latest = {.body = body, .summary = *answer};
            handle(answer);
        }
    }

    void handle(const Answer &answer)
    {
        if (answer)
            succeed(*answer);
        else
            askNext();
    }

    void succeed(const model::QuotaSummary &summary)
    {
        m_client.m_discovery.setLastSuccessfulUpdate(m_client.m_clock.now());
        finish(FetchedQuota{.summary = summary, .daemon = m_asked});
    }

    FetchResult failure(DaemonError::Kind kind, const QString &message = {}) const
    {
        return fail(DaemonError{.kind = kind, .message = message, .lastUpdate = m_lastUpdated});
    }

    void finish(FetchResult result)
    {
        setResult(std::move(result));
        deleteLater();
    }

    void setResult(FetchResult result)
    {
        m_finished = true;
        m_promise.addResult(std::move(result));
        m_promise.finish();
    }

    QuotaFetchClient &m_client;
    std::optional<QDateTime> m_lastUpdated;
    QPromise<FetchResult> m_promise;
    bool m_finished = false;
    QList<DaemonInfo> m_candidates; ///< Still to be asked.
    DaemonInfo m_asked;
    QString m_transportError; ///< The latest one, null before the first.
};

QuotaFetchClient::QuotaFetchClient(discovery::DaemonDiscoveryService &discovery, const Clock &clock,
    Limits limits, QByteArray authorities, QObject *parent)
    : QObject(parent)
    , m_discovery(discovery)
    , m_clock(clock)
    , m_limits(limits)
    , m_authorities(std::move(authorities))
{
    m_decoders.setMaxThreadCount(1);
    m_decoders.setStackSize(decoderStack);
}

QuotaFetchClient::QuotaFetchClient(
    discovery::DaemonDiscoveryService &discovery, const Clock &clock, QObject *parent)
    : QuotaFetchClient(discovery, clock, Limits{}, {}, parent)
{
}

QuotaFetchClient::~QuotaFetchClient()
{
    // Each fetch refers to members of the client, so it must end before these do.
    const QObjectList fetches = children();
    qDeleteAll(fetches);
}

QFuture<FetchResult> QuotaFetchClient::fetchQuotaSummary(
    const std::optional<QDateTime> &lastUpdated)
{
    auto *fetch = new Fetch(*this, lastUpdated);
    auto future = fetch->future();
    fetch->start();
    return future;
}

} // namespace brimwatch::service
