#pragma once

#include "options.h"
#include "sample_quota.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPair>

class QTcpSocket;

namespace brimwatch::sample {

/// A request as it came over the wire.
struct Request {
    QByteArray method;
    QByteArray target; ///< The path, with its query.
    QList<QPair<QByteArray, QByteArray>> headers = {}; ///< In the order and spelling of the caller.
    QByteArray body = {};

    QByteArray path() const { return target.split('?').constFirst(); }
};

/// What the daemon answers to requests, and what it remembers of them.
class Answers final : public QObject {
public:
    explicit Answers(const Options &options, QObject *parent = nullptr);

    /// The token that callers must bring from now on.
    void setToken(const QByteArray &token) { m_token = token; }

    /// Counts a connection. One that turns out to ask for statistics is subtracted again.
    void countConnection() { ++m_connections; }

    /// Answers every request that comes over that connection, or misbehaves as told.
    void serve(QTcpSocket *socket);

private:
    struct Reply {
        QByteArray status; ///< As in the status line: "200 OK".
        QByteArray body;
    };

    static Reply errorReply(const QByteArray &status, const char *code, const QString &message);
    static void send(QTcpSocket *socket, const Reply &reply);
    void answer(const Request &request, QTcpSocket *socket);
    void sendStatistics(QTcpSocket *socket);
    void remember(const Request &request);
    void misbehave(Misbehaviour kind, const Reply &properReply, QTcpSocket *socket);
    Reply replyTo(const Request &request) const;
    Reply quotaReply() const;
    void countFlood(QTcpSocket *socket);

    Options m_options;
    SampleQuota m_quota;
    QByteArray m_token;
    qint64 m_requests = 0;
    qint64 m_connections = 0;
    qint64 m_floods = 0; ///< Those that have not ended.
    qint64 m_flooded = 0; ///< Bytes that the system took from us in floods.
    QJsonObject m_last; ///< The last request, empty before the first.
};

} // namespace brimwatch::sample
