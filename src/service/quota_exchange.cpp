#include "service/quota_exchange.h"

#include "core/shared_library.h"
#include "service/loopback_connection.h"
#include "service/quota_request.h"
#include "service/tls/tls_library.h"
#include "service/transport_error_text.h"

#include <QLoggingCategory>

namespace brimwatch::service {
namespace {

Q_LOGGING_CATEGORY(serviceLog, "brimwatch.service", QtInfoMsg)

} // namespace

QuotaExchange::QuotaExchange(
    const QuotaRequest &request, Limits limits, const QByteArray &authorities, QObject *parent)
    : QObject(parent)
    , m_reader({.body = limits.body})
{
    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    m_deadline.callOnTimeout(
        this, [this] { failed(transportErrorText(TransportError::TimedOut)); });
    m_deadline.start(limits.time);
    ConnectionListener &listener = *this;
    if (request.overTls)
        connectSecurely(request, authorities);
    else
        m_connection = std::make_unique<LoopbackConnection>(request.port, request.bytes, listener);
}

void QuotaExchange::connectSecurely(const QuotaRequest &request, const QByteArray &authorities)
{
    const auto connect = loadFunction<decltype(brimwatch_connect_securely)>(
        BRIMWATCH_TLS_LIBRARY, "brimwatch_connect_securely");
    if (connect) {
        m_connection.reset((*connect)(request.port, request.bytes, authorities, *this));
        return;
    }
    qCWarning(serviceLog, "No daemon can be asked over https: %s", qPrintable(connect.error()));
    QMetaObject::invokeMethod(
        this, [this] { failed(transportErrorText(TransportError::TlsFailed)); },
        Qt::QueuedConnection);
}

void QuotaExchange::received(QByteArrayView bytes)
{
    m_reader.feed(bytes);
    checkResponse();
}

void QuotaExchange::closed()
{
    m_reader.end();
    checkResponse();
}

void QuotaExchange::failed(const QString &reason)
{
    finish(Failed{reason});
}

void QuotaExchange::checkResponse()
{
    using State = HttpResponseReader::State;
    // The body of another status is not read: it may never end.
    if (m_reader.status() && m_reader.status() != 200) {
        finish(Refused{});
        return;
    }
    switch (m_reader.state()) {
    case State::Unfinished:
        break;
    case State::Complete:
        finish(Answered{m_reader.body()});
        break;
    case State::TooLarge:
        finish(Refused{});
        break;
    case State::Truncated:
        finish(Failed{transportErrorText(TransportError::ConnectionLost)});
        break;
    case State::Malformed:
        finish(Failed{transportErrorText(TransportError::Malformed)});
        break;
    }
}

void QuotaExchange::finish(const Outcome &outcome)
{
    m_deadline.stop();
    m_connection.reset();
    Q_EMIT finished(outcome);
}

} // namespace brimwatch::service
