#pragma once

#include "service/connection.h"
#include "service/http_response_reader.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <memory>
#include <variant>

namespace brimwatch::service {

struct QuotaRequest;

/// One request to one daemon, and its outcome. Destroying the object ends it.
///
/// Everything happens in the object's thread, on a connection of its own. Whatever the daemon
/// sends, and however fast: the connection is closed once the outcome is known, no more of the
/// answer is kept than the limits allow, and other events are handled in between.
///
/// Not QNetworkAccessManager: in Qt 6.4 it reads in a thread of its own for as long as bytes come,
/// and ends a request only between two reads. An answer that never pauses outlives its request,
/// fills the memory, and delays every later request.
class QuotaExchange final : public QObject, private ConnectionListener {
    Q_OBJECT

public:
    /// A body that came with the status 200.
    struct Answered {
        QByteArray body;
    };
    /// An answer came, but with another status, or with a body larger than a summary can be.
    struct Refused { };
    /// No answer came, or only a part of one. The reason is a text for the user.
    struct Failed {
        QString reason;
    };
    using Outcome = std::variant<Answered, Refused, Failed>;

    struct Limits {
        /// From the start to the last byte.
        std::chrono::milliseconds time;
        qint64 body;
    };

    /// Sends the request. It is sent only once, even if the connection fails. Qt Network, and the
    /// library for TLS with it, is loaded only for a request that goes over TLS; `authorities` are
    /// certificates in the PEM format that are trusted then, beside the system's own.
    QuotaExchange(const QuotaRequest &request, Limits limits, const QByteArray &authorities = {},
        QObject *parent = nullptr);

Q_SIGNALS:
    /// Emitted once, never from within the constructor.
    void finished(const brimwatch::service::QuotaExchange::Outcome &outcome);

private:
    void connectSecurely(const QuotaRequest &request, const QByteArray &authorities);
    void received(QByteArrayView bytes) override;
    void closed() override;
    void failed(const QString &reason) override;
    void checkResponse();
    void finish(const Outcome &outcome);

    QTimer m_deadline;
    HttpResponseReader m_reader;
    std::unique_ptr<Connection> m_connection; ///< Null once the outcome is known.
};

} // namespace brimwatch::service
