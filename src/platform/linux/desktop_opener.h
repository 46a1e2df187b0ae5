#pragma once

#include "platform/opener.h"

#include <QString>
#include <QStringList>

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

/// Opens things as freedesktop desktops do.
class DesktopOpener final : public Opener {
public:
    bool openAntigravity() override;
    void openUrl(const QUrl &url) override;
};

} // namespace brimwatch::platform
