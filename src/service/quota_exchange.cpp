#include "service/quota_exchange.h"

#include "service/quota_request.h"
#include "service/transport_error_text.h"

#include <QIODevice>
#include <QNetworkAccessManager>

#include <algorithm>
#include <cstring>

namespace brimwatch::service {
namespace {

/// The request's body, which can be read once.
///
/// Qt sends a request again by itself when the other side closes the connection before answering
/// (6.4 up to three times), unless the body cannot be had a second time; it says so with
/// ContentReSendError.
class OnceOnlyBody final : public QIODevice {
public:
    OnceOnlyBody() { open(ReadOnly | Unbuffered); }

    bool isSequential() const override { return true; }
    // Not the base's: that one warns about devices without a position.
    bool reset() override { return false; }
    qint64 bytesAvailable() const override { return m_rest.size(); }
    bool atEnd() const override { return m_rest.isEmpty(); }

protected:
    qint64 readData(char *data, qint64 maxSize) override
    {
        const auto size = std::min<qint64>(maxSize, m_rest.size());
        std::memcpy(data, m_rest.data(), static_cast<size_t>(size));
        m_rest = m_rest.sliced(size);
        return size;
    }
    qint64 writeData(const char * /*data*/, qint64 /*maxSize*/) override { return -1; }

private:
    QByteArrayView m_rest = quotaRequestBody;
};

} // namespace

QuotaExchange::QuotaExchange(
    QNetworkAccessManager &network, const QNetworkRequest &request, Limits limits, QObject *parent)
    : QObject(parent)
    , m_largestBody(limits.body)
{
    auto *body = new OnceOnlyBody;
    m_reply = network.post(request, body);
    body->setParent(m_reply);
    m_reply->setReadBufferSize(m_largestBody + 1);

    // Queued: a request that fails at once must not end within the constructor.
    connect(m_reply, &QNetworkReply::metaDataChanged, this, &QuotaExchange::readStatus,
        Qt::QueuedConnection);
    connect(
        m_reply, &QNetworkReply::readyRead, this, &QuotaExchange::readBody, Qt::QueuedConnection);
    connect(m_reply, &QNetworkReply::sslErrors, this, [this](const QList<QSslError> &faults) {
        m_certificateFault = certificateFaultText(faults);
    });
    connect(m_reply, &QNetworkReply::finished, this, &QuotaExchange::readEnd, Qt::QueuedConnection);

    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    m_deadline.callOnTimeout(
        this, [this] { conclude(Failed{transportErrorText(QNetworkReply::TimeoutError)}); });
    m_deadline.start(limits.time);
}

QuotaExchange::~QuotaExchange()
{
    if (m_reply != nullptr)
        letGo();
}

void QuotaExchange::readStatus()
{
    // What was queued before the outcome was known arrives after it.
    if (m_reply == nullptr)
        return;
    // Not waiting for a body that does not matter: it may never end.
    const auto status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid() && status.toInt() != 200)
        conclude(Refused{});
}

void QuotaExchange::readBody()
{
    if (m_reply == nullptr)
        return;
    m_body += m_reply->read(m_largestBody + 1 - m_body.size());
    if (m_body.size() > m_largestBody)
        conclude(Refused{});
}

void QuotaExchange::readEnd()
{
    readStatus();
    readBody();
    if (m_reply == nullptr)
        return;
    if (m_reply->error() != QNetworkReply::NoError)
        conclude(Failed{m_certificateFault.isEmpty() ? transportErrorText(m_reply->error())
                                                     : m_certificateFault});
    else
        conclude(Answered{m_body});
}

void QuotaExchange::conclude(const Outcome &outcome)
{
    m_deadline.stop();
    letGo();
    Q_EMIT finished(outcome);
}

void QuotaExchange::letGo()
{
    m_reply->disconnect(this);
    // Its end is the request's. Not abort(): what Qt 6.4 has still to tell of an answer then
    // arrives in an aborted request, and it warns of an internal problem.
    m_reply->deleteLater();
    m_reply = nullptr;
}

} // namespace brimwatch::service
