#pragma once

#include <QByteArrayView>
#include <QString>

namespace brimwatch::service {

/// Is told what happens on a connection, each time in a turn of the event loop of its own. It may
/// destroy the connection in answer.
class ConnectionListener {
public:
    ConnectionListener() = default;
    Q_DISABLE_COPY_MOVE(ConnectionListener)

    /// The next bytes of the answer. They are valid during the call.
    virtual void received(QByteArrayView bytes) = 0;
    /// The daemon has closed the connection, and all that it sent before was received.
    virtual void closed() = 0;
    /// There is no connection, or no longer. The reason is a text for the user.
    virtual void failed(const QString &reason) = 0;

protected:
    ~ConnectionListener() = default;
};

/// A connection to one daemon that sends one request and receives what is answered. It has no
/// timeout of its own. Destroying it ends it at once, and nothing is told any more.
///
/// Deliberate: no QObject. One kind of connection lives in a library of its own, and shares nothing
/// with the other but this.
class Connection {
public:
    Connection() = default;
    virtual ~Connection() = default;
    Q_DISABLE_COPY_MOVE(Connection)
};

} // namespace brimwatch::service
