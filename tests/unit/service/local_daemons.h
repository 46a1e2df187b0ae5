#pragma once

#include "discovery/daemon_discovery_service.h"
#include "service/quota_fetching.h"
#include "support/sample_daemon_process.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

namespace brimwatch::test {

/// A user's home with the daemons that announce themselves there.
class LocalDaemons {
public:
    LocalDaemons() { QDir().mkpath(m_discovery.directory()); }

    discovery::DaemonDiscoveryService &discovery() { return m_discovery; }

    /// Starts a sample daemon that announces itself here.
    [[nodiscard]] bool start(SampleDaemonProcess &daemon, const QStringList &options = {}) const
    {
        QStringList all{QStringLiteral("--directory"), m_discovery.directory()};
        all += options;
        return daemon.start(all);
    }

    /// Announces a daemon that is alive, with these keys.
    [[nodiscard]] bool announce(const QString &name, QJsonObject keys) const
    {
        keys.insert(QStringLiteral("pid"), QCoreApplication::applicationPid());
        QFile file(pathOf(name));
        return file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(keys).toJson()) != -1;
    }

    /// Makes the file older than all others, so that its daemon is asked last.
    [[nodiscard]] bool askLast(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadWrite)
            && file.setFileTime(QDateTime::currentDateTime().addDays(-++m_daysOfTheOldest),
                QFileDevice::FileModificationTime);
    }

    QString pathOf(const QString &name) const { return m_discovery.directory() + u'/' + name; }

private:
    QTemporaryDir m_home;
    int m_daysOfTheOldest = 0;
    discovery::DaemonDiscoveryService m_discovery{m_home.path()};
};

/// A port of the loopback address on which nothing listens.
inline quint16 closedPort()
{
    QTcpServer server;
    if (!server.listen(QHostAddress::LocalHost))
        qFatal("cannot listen: %s", qPrintable(server.errorString()));
    return server.serverPort();
}

/// The error that the fetch ended with; a fetch that succeeded gives a kind that is never used.
inline discovery::DaemonError errorOf(const service::FetchResult &result)
{
    return result ? discovery::DaemonError{.kind = discovery::DaemonError::Kind::invalidResponse}
                  : result.error();
}

} // namespace brimwatch::test
