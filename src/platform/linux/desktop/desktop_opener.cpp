#include "platform/linux/desktop/desktop_opener.h"

#include "platform/linux/desktop/desktop_entry.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

std::optional<DesktopEntry> readDesktopEntry(const QString &file)
{
    const auto text = DesktopEntryText::read(file);
    if (!text || text->boolean("Hidden"_L1).value_or(false)
        || text->boolean("NoDisplay"_L1).value_or(false))
        return {};
    const QStringList command = text->startableCommand();
    if (command.isEmpty())
        return {};
    return DesktopEntry{
        .file = file, .command = command, .workingDirectory = text->value("Path"_L1)};
}

QStringList applicationDirectories()
{
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

std::optional<DesktopEntry> findAntigravity(const QStringList &directories)
{
    QSet<QString> seen;
    for (const QString &directory : directories) {
        const auto names = QDir(directory).entryList({u"antigravity*.desktop"_s},
            QDir::Files | QDir::System | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
        std::optional<DesktopEntry> found;
        for (const QString &name : names) {
            if (seen.contains(name))
                continue;
            seen.insert(name);
            if (!found)
                found = readDesktopEntry(directory + u'/' + name);
        }
        if (found)
            return found;
    }
    return {};
}

QStringList installedPaths()
{
    return {u"/Applications/Antigravity IDE.app"_s, u"/Applications/Antigravity-IDE.app"_s,
        u"/Applications/Antigravity.app"_s, u"/Applications/Google Antigravity.app"_s};
}

DesktopOpener::DesktopOpener(
    QStringList paths, std::function<QStringList()> directories, const QDBusConnection &bus)
    : m_paths(std::move(paths))
    , m_directories(std::move(directories))
    , m_mailPortal(bus)
{
}

bool DesktopOpener::openAntigravity()
{
    for (const QString &path : std::as_const(m_paths)) {
        if (QFileInfo::exists(path)) {
            openUrl(QUrl::fromLocalFile(path));
            return true;
        }
    }
    const auto entry = findAntigravity(m_directories());
    if (!entry)
        return false;
    return QProcess::startDetached(
        entry->command.first(), entry->command.mid(1), entry->workingDirectory);
}

void DesktopOpener::openUrl(const QUrl &url)
{
    // The desktop's opener would show a window saying that the file is missing.
    if (url.isLocalFile() && !QFileInfo::exists(url.toLocalFile()))
        return;
    if (url.scheme() == "mailto"_L1)
        m_mailPortal.compose(url, [url] { QDesktopServices::openUrl(url); });
    else
        QDesktopServices::openUrl(url);
}

} // namespace brimwatch::platform
