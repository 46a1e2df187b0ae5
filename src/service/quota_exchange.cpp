#include "service/quota_exchange.h"

#include "service/quota_request.h"
#include "service/transport_error_text.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QSslSocket>
#include <QTcpSocket>

namespace brimwatch::service {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Read in one turn of the event loop at most, and buffered by the socket at most.
constexpr qint64 readAtATime = 64LL * 1024;

} // namespace

QuotaExchange::QuotaExchange(const QuotaRequest &request, Limits limits, QObject *parent)
    : QObject(parent)
    , m_reader({.body = limits.body})
{
    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    m_deadline.callOnTimeout(
        this, [this] { finish(Failed{transportErrorText(TransportError::TimedOut)}); });
    m_deadline.start(limits.time);

    auto *secure = request.security ? new QSslSocket(this) : nullptr;
    m_socket = secure != nullptr ? secure : new QTcpSocket(this);
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setReadBufferSize(readAtATime);
    connect(m_socket, &QTcpSocket::readyRead, this, &QuotaExchange::read);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &QuotaExchange::handleError);
    const auto send = [this, bytes = request.bytes] { m_socket->write(bytes); };
    if (secure != nullptr) {
        secure->setSslConfiguration(*request.security);
        connect(secure, &QSslSocket::sslErrors, this, [this](const QList<QSslError> &faults) {
            m_certificateFault = certificateFaultText(faults);
        });
        connect(secure, &QSslSocket::encrypted, this, send);
    } else {
        connect(m_socket, &QTcpSocket::connected, this, send);
    }
    // Queued: a connection within the machine can fail at once, before anyone listens.
    QMetaObject::invokeMethod(
        this, [this, secure, port = request.port] { connectTo(secure, port); },
        Qt::QueuedConnection);
}

QuotaExchange::~QuotaExchange()
{
    if (m_socket != nullptr)
        closeSocket();
}

void QuotaExchange::connectTo(QSslSocket *secure, quint16 port)
{
    if (m_socket == nullptr)
        return;
    const QHostAddress here(QHostAddress::LocalHost);
    if (secure != nullptr)
        secure->connectToHostEncrypted(here.toString(), port);
    else
        m_socket->connectToHost(here, port);
}

void QuotaExchange::read()
{
    // A call that was queued below may come after the outcome.
    if (m_socket == nullptr)
        return;
    m_reader.feed(m_socket->read(readAtATime));
    if (m_socket->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &QuotaExchange::read, Qt::QueuedConnection);
    else if (m_closed)
        m_reader.end();
    checkResponse();
}

void QuotaExchange::handleError(QAbstractSocket::SocketError error)
{
    if (m_socket == nullptr)
        return;
    if (error == QAbstractSocket::RemoteHostClosedError) {
        m_closed = true;
        read();
        return;
    }
    finish(Failed{m_certificateFault.isEmpty() ? transportErrorText(transportErrorOf(error))
                                               : m_certificateFault});
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
    closeSocket();
    Q_EMIT finished(outcome);
}

void QuotaExchange::closeSocket()
{
    m_socket->disconnect(this);
    // At once: nothing that still arrives is read.
    m_socket->abort();
    // Not deleted here: this may run within one of the socket's own signals.
    m_socket->deleteLater();
    m_socket = nullptr;
}

} // namespace brimwatch::service
