#pragma once

#include "platform/linux/desktop/mail_portal.h"
#include "platform/opener.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace brimwatch::platform {

/// What an application's desktop entry says of starting it.
struct DesktopEntry {
    QString file;
    QStringList command; ///< Program and arguments, unquoted, without the codes for files to open.
    QString workingDirectory; ///< Empty: any.
};

/// Reads a desktop entry. Absent when it is unreadable, no application, hidden, kept out of menus,
/// or its program is missing.
std::optional<DesktopEntry> readDesktopEntry(const QString &file);

/// Where desktop entries stand: XDG_DATA_HOME first, then XDG_DATA_DIRS.
QStringList applicationDirectories();

/// The IDE's entry: among "antigravity*.desktop", case aside, of the first directory that has one
/// that can be started, the first by name. An entry hides those of the same file name in later
/// directories, also when it is hidden itself.
std::optional<DesktopEntry> findAntigravity(const QStringList &directories);

/// Where the IDE's own installers put it, the first choice first.
QStringList installedPaths();

/// Opens things as freedesktop desktops do.
class DesktopOpener final : public Opener {
public:
    /// The IDE is the first of `paths` that exists, or else that of its desktop entry, looked for
    /// in `directories` each time. Mails are drafted by the portal of `bus` where there is one.
    explicit DesktopOpener(QStringList paths = installedPaths(),
        std::function<QStringList()> directories = applicationDirectories,
        const QDBusConnection &bus = QDBusConnection::sessionBus());

    bool openAntigravity() override;
    void openUrl(const QUrl &url) override;

private:
    QStringList m_paths;
    std::function<QStringList()> m_directories;
    MailPortal m_mailPortal;
};

} // namespace brimwatch::platform
