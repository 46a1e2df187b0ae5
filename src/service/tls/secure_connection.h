#pragma once

#include "service/connection.h"

#include <QByteArray>
#include <QObject>
#include <QSslSocket>
#include <QString>

namespace brimwatch::service {

/// A connection to a port of 127.0.0.1 over TLS, by QSslSocket.
class SecureConnection final : public QObject, public Connection {
    Q_OBJECT

public:
    /// Connects with the next turn of the event loop, and sends `request` when the server has shown
    /// that it is trusted. `authorities` are certificates in the PEM format that are trusted beside
    /// the system's own; empty: the system's alone. The listener outlives the connection.
    SecureConnection(quint16 port, QByteArray request, const QByteArray &authorities,
        ConnectionListener &listener);
    ~SecureConnection() override;

private:
    void read();
    void handleError(QAbstractSocket::SocketError error);

    QByteArray m_request;
    ConnectionListener &m_listener;
    QSslSocket *m_socket; ///< Owned; deleted later by the destructor.
    bool m_closed = false; ///< By the daemon; what it sent before may not be read yet.
    QString m_certificateFault;
};

} // namespace brimwatch::service
