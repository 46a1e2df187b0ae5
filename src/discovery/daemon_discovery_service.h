#pragma once

#include "discovery/daemon_info.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace brimwatch::discovery {

/// Where daemons announce themselves, whether it exists or not: ~/.gemini/antigravity/daemon
QString daemonFolder(const QString &home);

/// Whether a file of that name can announce a daemon: it starts with "ls_" or "hub_" and ends in
/// ".json", case-sensitively.
bool isCandidateName(const QString &fileName);

/// Finds the daemons that announce themselves in the user's discovery directory.
class DaemonDiscoveryService {
public:
    /// What one scan reads at most: any program may write to the directory. An announcement has a
    /// few hundred bytes, and a daemon that crashed leaves one behind.
    struct Limits {
        qint64 file = 64LL * 1024; ///< Bytes of one file; larger ones count as unreadable.
        qsizetype files = 16'384; ///< If there are more, only the newest are read.
        /// Bytes of all files. The newest are read first; those that do not fit count as
        /// unreadable.
        qint64 bytes = 8LL * 1024 * 1024;
    };

    /// `home` is the user's home directory.
    explicit DaemonDiscoveryService(const QString &home);
    DaemonDiscoveryService(const QString &home, const Limits &limits);

    const QString &directory() const { return m_directory; }
    bool directoryExists() const;

    /// The daemons that announce themselves: those alive first, among equals the newest file first,
    /// then in the order of the listing. Files that cannot be read or decoded are skipped. Only
    /// regular files, or links to them, are opened, so that nothing blocks. The time of a link is
    /// its own, not that of its target.
    ///
    /// Deliberate: a pid that is no 32-bit process id ends the program with a message that names
    /// the file.
    QList<DaemonInfo> discoverDaemons();

    /// The newest modification time among the candidates of the last scan that could list the
    /// directory; absent without candidates.
    const std::optional<QDateTime> &latestDaemonModDate() const { return m_latestDaemonModDate; }

    /// When a daemon last answered with a summary; absent before the first time.
    const std::optional<QDateTime> &lastSuccessfulUpdate() const { return m_lastSuccessfulUpdate; }
    void setLastSuccessfulUpdate(const QDateTime &time) { m_lastSuccessfulUpdate = time; }

private:
    QString m_directory;
    Limits m_limits;
    std::optional<QDateTime> m_latestDaemonModDate;
    std::optional<QDateTime> m_lastSuccessfulUpdate;
};

} // namespace brimwatch::discovery
