#pragma once

#include <QByteArray>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <chrono>
#include <variant>

class QNetworkAccessManager;

namespace brimwatch::service {

/// One request to one daemon and what came of it. Ends with its object.
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
    QuotaExchange(QNetworkAccessManager &network, const QNetworkRequest &request, Limits limits,
        QObject *parent = nullptr);
    ~QuotaExchange() override;

Q_SIGNALS:
    /// Comes once, never from within the constructor.
    void finished(const brimwatch::service::QuotaExchange::Outcome &outcome);

private:
    void readStatus();
    void readBody();
    void readEnd();
    void conclude(const Outcome &outcome);
    void letGo();

    QPointer<QNetworkReply> m_reply; ///< The network's; gone once the outcome is known.
    QTimer m_deadline;
    qint64 m_largestBody;
    QByteArray m_body;
    QString m_certificateFault;
};

} // namespace brimwatch::service
