#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimwatch::test {

/// A sample daemon as a process of its own, for as long as this object lives. Its discovery file
/// goes to the test's home unless the options say otherwise. No call here runs the test's event
/// loop; each that waits does so for a condition, and gives up after half a minute.
class SampleDaemonProcess {
public:
    /// A request as it came over the wire.
    struct Request {
        QString method;
        QString path; ///< With its query.
        QList<QPair<QByteArray, QByteArray>> headers; ///< In the order and spelling of the caller.
        QByteArray body;

        /// The value of the first header of that name, in any case; absent when there is none.
        std::optional<QByteArray> header(const QByteArray &name) const;
    };

    struct Stats {
        qint64 requests = 0;
        qint64 connections = 0; ///< Those of stats() excepted.
        qint64 floods = 0; ///< That it is still sending.
        qint64 flooded = 0; ///< Bytes that the system took from it for them.
        std::optional<Request> last; ///< Absent before the first request.
    };

    /// The daemon's executable.
    static QString program();

    SampleDaemonProcess() = default;
    ~SampleDaemonProcess();
    Q_DISABLE_COPY_MOVE(SampleDaemonProcess)

    /// Starts the daemon with these options and waits until it listens and its file stands. False
    /// when it does not come to that; errorText() then says why.
    bool start(const QStringList &options = {});

    /// What the daemon wrote on its standard error, or why there is nothing.
    QString errorText() const { return m_errorText; }

    /// The port that it listens on now, http or https; 0 for the other.
    quint16 httpPort() const { return m_httpPort; }
    quint16 httpsPort() const { return m_httpsPort; }

    /// The discovery file that stands now, and the token in it (empty when the file is not there).
    QString filePath() const { return m_filePath; }
    QByteArray token() const;

    /// The daemon's own process id, whatever its file says.
    qint64 pid() const { return m_process.processId(); }

    /// Every line of its standard output that is not a "ready" line, so far.
    QStringList logLines();

    /// What it saw of its callers. Absent when it does not answer.
    std::optional<Stats> stats() const;

    /// Tells it to move to another port and file, and waits until it has.
    bool move();

    /// Ends it as a user does, and waits for the end: its file goes. False when it was
    /// not running, or did not end with status 0.
    bool terminate();

    /// Ends it as a crash does: its file stays.
    void kill();

private:
    bool waitForReadyLine();
    void readLines();
    void readReadyLine(const QString &line);

    QProcess m_process;
    QString m_errorText;
    QStringList m_logLines;
    int m_readyLines = 0;
    int m_readyLinesSeen = 0;
    quint16 m_httpPort = 0;
    quint16 m_httpsPort = 0;
    QString m_filePath;
};

} // namespace brimwatch::test
