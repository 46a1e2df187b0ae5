#pragma once

#include "options.h"
#include "sample_quota.h"

#include <QByteArray>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QJsonObject>
#include <QList>
#include <QObject>

#include <optional>

namespace brimwatch::sample {

/// What the daemon says to a request, over whichever port it came, and what it remembers of it.
class Answers final : public QObject {
    Q_OBJECT

public:
    explicit Answers(const Options &options, QObject *parent = nullptr);

    /// The token that callers must bring from now on.
    void setToken(const QByteArray &token) { m_token = token; }

    /// Somebody connected. A connection that turns out to ask for statistics is taken back.
    void countConnection() { ++m_connections; }

    /// Answers, or misbehaves as told.
    void answer(const QHttpServerRequest &request, QHttpServerResponder &&responder);

Q_SIGNALS:
    /// The answer before which the daemon was told to move is on its way.
    void moveDue();

private:
    struct Reply {
        QHttpServerResponder::StatusCode status;
        QByteArray body;
    };

    static Reply errorReply(
        QHttpServerResponder::StatusCode status, const char *code, const QString &message);
    static void send(QHttpServerResponder &responder, const Reply &reply);
    void sendStatistics(QHttpServerResponder &responder);
    void remember(const QHttpServerRequest &request);
    bool shouldMisbehave() const;
    void misbehave(Misbehaviour kind, const Reply &properReply, QHttpServerResponder &responder);
    Reply replyTo(const QHttpServerRequest &request) const;
    Reply quotaReply() const;
    void countFlood(QTcpSocket *socket);

    Options m_options;
    SampleQuota m_quota;
    QByteArray m_token;
    qint64 m_requests = 0;
    qint64 m_connections = 0;
    qint64 m_floods = 0; ///< That still go on.
    qint64 m_flooded = 0; ///< Bytes that the system took from us in floods.
    QJsonObject m_last; ///< The last request, empty before the first.
};

} // namespace brimwatch::sample
