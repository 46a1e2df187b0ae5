#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <unistd.h>

#include <csignal>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

inline constexpr int timeout = 60'000; ///< Milliseconds; nothing that works comes near it.

/// Empties the test's home, but for the run-time folder, which belongs to the session.
inline void emptyHome()
{
    const auto entries
        = QDir::home().entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const auto &entry : entries) {
        if (entry.isDir() && entry.fileName() != u"run"_s)
            QDir(entry.filePath()).removeRecursively();
        else if (!entry.isDir())
            QFile::remove(entry.filePath());
    }
}

/// The program in a process of its own, on the test's display and bus.
class Program {
public:
    explicit Program(const QProcessEnvironment &environment = usual(),
        const QString &program = QStringLiteral(BRIMWATCH_PROGRAM),
        const QStringList &arguments = {})
    {
        m_process.setProcessEnvironment(environment);
        m_process.start(program, arguments);
        m_process.waitForStarted(timeout);
    }
    ~Program()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        send(SIGCONT);
        m_process.terminate();
        if (!m_process.waitForFinished(timeout))
            m_process.kill();
        m_process.waitForFinished(timeout);
    }
    Q_DISABLE_COPY_MOVE(Program)

    static QProcessEnvironment usual()
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"QT_QPA_PLATFORM"_s);
        // What it frees is to be free for what comes next, also where the sanitizer keeps it.
        environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0:quarantine_size_mb=1"_s);
        return environment;
    }
    static QProcessEnvironment withoutBus()
    {
        auto environment = usual();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nowhere"_s);
        return environment;
    }

    qint64 pid() const { return m_process.processId(); }
    void send(int signal) { ::kill(static_cast<pid_t>(m_process.processId()), signal); }
    void crash()
    {
        m_process.kill();
        m_process.waitForFinished(timeout);
    }
    bool hasEnded()
    {
        // Without a running event loop QProcess does not notice it otherwise.
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(1);
    }
    /// False when it still runs after the timeout.
    bool waitForEnd()
    {
        // waitForFinished() alone is false as well for one that has ended before.
        return m_process.state() == QProcess::NotRunning || m_process.waitForFinished(timeout);
    }
    int exitCode() const
    {
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    QString errors() { return QString::fromLocal8Bit(m_process.readAllStandardError()); }

    /// Its resident memory in bytes.
    qint64 memory() const
    {
        QFile file(u"/proc/%1/statm"_s.arg(m_process.processId()));
        if (!file.open(QIODevice::ReadOnly))
            return -1;
        return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
    }

private:
    QProcess m_process;
};

} // namespace brimwatch::test
