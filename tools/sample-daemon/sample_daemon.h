#pragma once

#include "announcement.h"
#include "answers.h"
#include "options.h"

#include <QObject>
#include <QSslConfiguration>

#include <memory>
#include <optional>

class QTcpServer;

namespace brimwatch::sample {

/// The daemon: its ports, its file, and what it answers.
class SampleDaemon final : public QObject {
    Q_OBJECT

public:
    explicit SampleDaemon(const Options &options, QObject *parent = nullptr);

    /// Listens, announces itself and says so on standard output. The error says what went wrong.
    Result<void, QString> start();

    /// Closes its ports and connections, removes its file, and starts on other ports with another
    /// file, in the way of a daemon that was started anew. Ports that were asked for by number are
    /// left behind too.
    Result<void, QString> move();

Q_SIGNALS:
    /// It moved, and could not start again.
    void failed(const QString &reason);

private:
    struct Listening {
        std::unique_ptr<QObject> server; ///< With its connections.
        quint16 port = 0;
    };

    Result<QSslConfiguration, QString> tlsConfiguration() const;
    Result<Listening, QString> listen(std::unique_ptr<QTcpServer> server, quint16 port);
    Result<void, QString> listenAll(quint16 httpPort, quint16 httpsPort);
    Result<void, QString> announce();
    QString filePath() const;

    Options m_options;
    Answers m_answers;
    std::optional<Listening> m_http;
    std::optional<Listening> m_https;
    std::optional<Announcement> m_announcement;
    int m_moves = 0;
};

} // namespace brimwatch::sample
