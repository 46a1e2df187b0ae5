#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <QTcpServer>

#include <cstdint>

class QTcpSocket;

namespace brimwatch::test {

/// A daemon that answers as the plan says, over real HTTP on the loopback address.
class PlannedDaemon final : public QObject {
public:
    enum class Manners : std::uint8_t {
        Answers,
        Hangs, ///< Reads the request and never answers.
        Closes, ///< As soon as it has read the request.
        Fails, ///< With the status 500.
        Babbles, ///< With a body that is no JSON.
        Lies, ///< With JSON of the wrong types.
        Floods, ///< With a body of two megabytes.
        Truncates, ///< Closes in the middle of the body.
    };
    static constexpr int kinds = 8;

    explicit PlannedDaemon(QString folder);

    /// Listens on another port and announces it in another file.
    void start();
    /// Nobody listens any more; the announcement goes too unless it `crashes`.
    void stop(bool crashes);
    bool isRunning() const { return m_server.isListening(); }

    Manners manners = Manners::Answers;
    QByteArray body;
    qint64 requests = 0;

private:
    void accept();
    void read(QTcpSocket &caller);
    void answer(QTcpSocket &caller) const;

    QString m_folder;
    QString m_file;
    int m_starts = 0;
    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_read;
};

} // namespace brimwatch::test
