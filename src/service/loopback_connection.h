#pragma once

#include "service/connection.h"

#include <QByteArray>
#include <QObject>

class QSocketNotifier;

namespace brimwatch::service {

/// A connection to a port of 127.0.0.1 without TLS.
///
/// Not QTcpSocket: Qt Network of Debian 13 links libproxy, which links libcurl, which links
/// OpenSSL. These take 6 MiB and 25 ms of each start for a request that needs none of them.
class LoopbackConnection final : public QObject, public Connection {
    Q_OBJECT

public:
    /// Connects with the next turn of the event loop, and sends `request` then. The listener
    /// outlives the connection.
    LoopbackConnection(quint16 port, QByteArray request, ConnectionListener &listener);
    ~LoopbackConnection() override;

private:
    void open();
    void handleWritable();
    void handleReadable();
    void send();
    void close();
    void fail(int errorNumber);

    quint16 m_port;
    QByteArray m_unsent;
    ConnectionListener &m_listener;
    int m_descriptor = -1; ///< -1: it is closed.
    bool m_connected = false;
    QSocketNotifier *m_readable = nullptr;
    QSocketNotifier *m_writable = nullptr;
};

} // namespace brimwatch::service
