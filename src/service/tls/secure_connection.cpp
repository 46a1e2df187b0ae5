#include "service/tls/secure_connection.h"

#include "service/tls/tls_errors.h"
#include "service/transport_error_text.h"

#include <QHostAddress>
#include <QMetaObject>
#include <QNetworkProxy>
#include <QSslCertificate>
#include <QSslConfiguration>

#include <utility>

namespace brimwatch::service {
namespace {

/// Read in one turn of the event loop at most, and buffered by the socket at most.
constexpr qint64 readAtATime = 64LL * 1024;

QSslConfiguration secureConfiguration(const QByteArray &authorities)
{
    auto configuration = QSslConfiguration::defaultConfiguration();
    // Once any authority is set, Qt no longer loads the system's on demand: they are set as well.
    if (!authorities.isEmpty())
        configuration.setCaCertificates(QSslConfiguration::systemCaCertificates()
            + QSslCertificate::fromData(authorities, QSsl::Pem));
    return configuration;
}

} // namespace

SecureConnection::SecureConnection(
    quint16 port, QByteArray request, const QByteArray &authorities, ConnectionListener &listener)
    : m_request(std::move(request))
    , m_listener(listener)
    , m_socket(new QSslSocket(this))
{
    m_socket->setProxy(QNetworkProxy::NoProxy);
    m_socket->setReadBufferSize(readAtATime);
    m_socket->setSslConfiguration(secureConfiguration(authorities));
    connect(m_socket, &QSslSocket::readyRead, this, &SecureConnection::read);
    connect(m_socket, &QSslSocket::errorOccurred, this, &SecureConnection::handleError);
    connect(m_socket, &QSslSocket::sslErrors, this, [this](const QList<QSslError> &faults) {
        m_certificateFault = certificateFaultText(faults);
    });
    connect(m_socket, &QSslSocket::encrypted, this,
        [this] { m_socket->write(std::exchange(m_request, {})); });
    // Queued: a connection within the machine can fail at once, before anyone listens.
    QMetaObject::invokeMethod(
        this,
        [this, port] {
            m_socket->connectToHostEncrypted(
                QHostAddress(QHostAddress::LocalHost).toString(), port);
        },
        Qt::QueuedConnection);
}

SecureConnection::~SecureConnection()
{
    m_socket->disconnect(this);
    // abort() and not close(), which would wait for data to be sent.
    m_socket->abort();
    // Not deleted here: this may run within one of the socket's own signals.
    m_socket->setParent(nullptr);
    m_socket->deleteLater();
}

void SecureConnection::read()
{
    const QByteArray bytes = m_socket->read(readAtATime);
    if (m_socket->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, &SecureConnection::read, Qt::QueuedConnection);
    else if (m_closed)
        QMetaObject::invokeMethod(this, [this] { m_listener.closed(); }, Qt::QueuedConnection);
    // Nothing follows the calls of the listener, which may destroy this.
    if (!bytes.isEmpty())
        m_listener.received(bytes);
}

void SecureConnection::handleError(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::RemoteHostClosedError) {
        m_closed = true;
        read();
        return;
    }
    m_listener.failed(m_certificateFault.isEmpty() ? transportErrorText(transportErrorOf(error))
                                                   : m_certificateFault);
}

} // namespace brimwatch::service
