#pragma once

#include "announcement.h"
#include "answers.h"
#include "options.h"

#include <QObject>
#include <QSslConfiguration>
#include <QTcpServer>

#include <memory>
#include <optional>

namespace brimwatch::sample {

/// The daemon: its port, its file, and what it answers.
class SampleDaemon final : public QObject {
public:
    explicit SampleDaemon(const Options &options, QObject *parent = nullptr);

    /// Listens, announces itself and says so on standard output. The error says what went wrong.
    Result<void, QString> start();

    /// Closes its port and connections, removes its file, and starts on another port with another
    /// file, in the way of a daemon that was started anew.
    Result<void, QString> move();

private:
    Result<QSslConfiguration, QString> tlsConfiguration() const;
    Result<void, QString> listen();
    Result<void, QString> announce();
    QString filePath() const;

    Options m_options;
    Answers m_answers;
    std::unique_ptr<QTcpServer> m_server; ///< With its connections.
    std::optional<Announcement> m_announcement;
    int m_moves = 0;
};

} // namespace brimwatch::sample
