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

/// What is taken from the daemon in one turn of the event loop, and what the socket holds for us.
constexpr qint64 readAtATime = 64LL * 1024;

} // namespace

QuotaExchange::QuotaExchange(const QuotaRequest &request, Limits limits, QObject *parent)
    : QObject(parent)
    , m_reader({.body = limits.body})
{
    m_deadline.setSingleShot(true);
    m_deadline.setTimerType(Qt::PreciseTimer);
    m_deadline.callOnTimeout(
        this, [this] { conclude(Failed{transportErrorText(TransportError::TimedOut)}); });
    m_deadline.start(limits.time);

    auto *secure = request.security ? new QSslSocket(this) : nullptr;
    m_socket = secure != nullptr ? secure : new QTcpSocket(this);
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setReadBufferSize(readAtATime);
    connect(m_socket, &QTcpSocket::readyRead, this, &QuotaExchange::read);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &QuotaExchange::takeError);
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
    // Later: a connection within the machine can fail at once.
    QMetaObject::invokeMethod(
        this, [this, secure, port = request.port] { connectTo(secure, port); },
        Qt::QueuedConnection);
}

QuotaExchange::~QuotaExchange()
{
    if (m_socket != nullptr)
        letGo();
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
    // The turn that was asked for below may come after the outcome.
    if (m_socket == nullptr)
        return;
    m_reader.feed(m_socket->read(readAtATime));
    if (m_socket->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &QuotaExchange::read, Qt::QueuedConnection);
    else if (m_closed)
        m_reader.end();
    judge();
}

void QuotaExchange::takeError(QAbstractSocket::SocketError error)
{
    if (m_socket == nullptr)
        return;
    if (error == QAbstractSocket::RemoteHostClosedError) {
        m_closed = true;
        read();
        return;
    }
    conclude(Failed{m_certificateFault.isEmpty() ? transportErrorText(transportErrorOf(error))
                                                 : m_certificateFault});
}

void QuotaExchange::judge()
{
    using State = HttpResponseReader::State;
    // Not waiting for a body that does not matter: it may never end.
    if (m_reader.status() && m_reader.status() != 200) {
        conclude(Refused{});
        return;
    }
    switch (m_reader.state()) {
    case State::Unfinished:
        break;
    case State::Whole:
        conclude(Answered{m_reader.body()});
        break;
    case State::TooLong:
        conclude(Refused{});
        break;
    case State::Cut:
        conclude(Failed{transportErrorText(TransportError::Lost)});
        break;
    case State::Senseless:
        conclude(Failed{transportErrorText(TransportError::Senseless)});
        break;
    }
}

void QuotaExchange::conclude(const Outcome &outcome)
{
    m_deadline.stop();
    letGo();
    Q_EMIT finished(outcome);
}

void QuotaExchange::letGo()
{
    m_socket->disconnect(this);
    // At once: what still comes is nobody's.
    m_socket->abort();
    // Not deleted: this may be one of its own signals.
    m_socket->deleteLater();
    m_socket = nullptr;
}

} // namespace brimwatch::service
