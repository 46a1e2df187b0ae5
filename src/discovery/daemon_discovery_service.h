#pragma once

#include "discovery/daemon_info.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace brimwatch::discovery {

/// Whether the file of that name can announce a daemon: "ls_" or "hub_" at its start, ".json" at
/// its end, case counts.
bool isCandidateName(const QString &fileName);

/// Finds the daemons that announce themselves in the user's discovery directory.
class DaemonDiscoveryService {
public:
    /// What one scan takes in, in a directory that anything may have written to. An announcement is
    /// a few hundred bytes, and a daemon that crashed leaves one behind.
    struct Limits {
        qint64 file = 64LL * 1024; ///< Bytes; larger files count as unreadable.
        qsizetype files = 16'384; ///< Where there are more candidates, the newest are read.
        /// Bytes of all files. The newest are read first; what does not fit counts as unreadable.
        qint64 bytes = 8LL * 1024 * 1024;
    };

    /// `home` is the user's home directory.
    explicit DaemonDiscoveryService(const QString &home);
    DaemonDiscoveryService(const QString &home, const Limits &limits);

    /// $HOME/.gemini/antigravity/daemon
    const QString &directory() const { return m_directory; }
    bool directoryExists() const;

    /// The daemons that announce themselves, those alive first, among equals the newest file first,
    /// then in listing order. What cannot be read or decoded is skipped; nothing is waited for,
    /// only regular files (or links to them) are opened. A link counts with the time at which it
    /// was made, as the entry of the directory that it is.
    ///
    /// A pid that is no 32-bit process id ends the program with a message that names the file.
    QList<DaemonInfo> discoverDaemons();

    /// The newest modification among the candidates of the last scan that could list the directory;
    /// absent when there was none.
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
