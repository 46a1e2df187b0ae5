#pragma once

#include "service/http_response_reader.h"

#include <QAbstractSocket>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <variant>

class QSslSocket;
class QTcpSocket;

namespace brimwatch::service {

struct QuotaRequest;

/// One request to one daemon and what came of it. Ends with its object.
///
/// All of it happens in the thread of the object, on a connection of its own. Whatever the daemon
/// sends, and however fast: the connection is gone once the outcome is known, what is kept of the
/// answer stays within the limits, and other events have their turn in between.
///
/// (Not QNetworkAccessManager. Qt 6.4 reads in a thread of its own for as long as bytes come, and
/// ends a request only between two of them: an answer that floods outlives its request, fills the
/// memory, and holds up every request after it.)
class QuotaExchange final : public QObject {
    Q_OBJECT

public:
    /// A body that came with the status 200.
    struct Answered {
        QByteArray body;
    };
    /// Something answered, but with another status, or with more than a summary can be.
    struct Refused { };
    /// No answer, or only a part of one: why, in words for the user.
    struct Failed {
        QString reason;
    };
    using Outcome = std::variant<Answered, Refused, Failed>;

    struct Limits {
        /// From now to the last byte.
        std::chrono::milliseconds time;
        qint64 body;
    };

    /// Sends the request. It goes out once, whatever becomes of the connection.
    QuotaExchange(const QuotaRequest &request, Limits limits, QObject *parent = nullptr);
    ~QuotaExchange() override;

Q_SIGNALS:
    /// Comes once, never from within the constructor.
    void finished(const brimwatch::service::QuotaExchange::Outcome &outcome);

private:
    void connectTo(QSslSocket *secure, quint16 port);
    void read();
    void takeError(QAbstractSocket::SocketError error);
    void judge();
    void conclude(const Outcome &outcome);
    void letGo();

    QTcpSocket *m_socket = nullptr; ///< A child; null once the outcome is known.
    QTimer m_deadline;
    HttpResponseReader m_reader;
    bool m_closed = false; ///< By the daemon. What it sent before may still have to be read.
    QString m_certificateFault;
};

} // namespace brimwatch::service
