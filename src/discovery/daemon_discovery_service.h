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
    /// Larger files count as unreadable: an announcement is a few hundred bytes.
    static constexpr qint64 largestFile = qint64{1024} * 1024;

    /// `home` is the user's home directory.
    explicit DaemonDiscoveryService(const QString &home);

    /// $HOME/.gemini/antigravity/daemon
    const QString &directory() const { return m_directory; }
    bool directoryExists() const;

    /// The daemons that announce themselves, those alive first, among equals the newest file first,
    /// then in listing order. What cannot be read or decoded is skipped; nothing is waited for,
    /// only regular files (or links to them) are opened.
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
    std::optional<QDateTime> m_latestDaemonModDate;
    std::optional<QDateTime> m_lastSuccessfulUpdate;
};

} // namespace brimwatch::discovery
