#include "platform/linux/desktop_opener.h"

#include "platform/linux/desktop_entry.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QUrl>

#include <array>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

// Where the IDE's own installers put it.
constexpr std::array fixedPaths{
    "/Applications/Antigravity IDE.app",
    "/Applications/Antigravity-IDE.app",
    "/Applications/Antigravity.app",
    "/Applications/Google Antigravity.app",
};

} // namespace

std::optional<DesktopEntry> readDesktopEntry(const QString &file)
{
    const auto text = DesktopEntryText::read(file);
    if (!text || text->rawValue("Type"_L1) != "Application"_L1
        || text->boolean("Hidden"_L1).value_or(false)
        || text->boolean("NoDisplay"_L1).value_or(false))
        return {};
    const QString tryExec = text->value("TryExec"_L1);
    if (!tryExec.isEmpty() && !canBeStarted(tryExec))
        return {};
    const QStringList command = commandOfExec(text->value("Exec"_L1));
    if (command.isEmpty() || !canBeStarted(command.first()))
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

bool DesktopOpener::openAntigravity()
{
    for (const char *path : fixedPaths) {
        const QString file = QString::fromLatin1(path);
        if (QFileInfo::exists(file)) {
            openUrl(QUrl::fromLocalFile(file));
            return true;
        }
    }
    const auto entry = findAntigravity(applicationDirectories());
    if (!entry)
        return false;
    return QProcess::startDetached(
        entry->command.first(), entry->command.mid(1), entry->workingDirectory);
}

void DesktopOpener::openUrl(const QUrl &url)
{
    QDesktopServices::openUrl(url);
}

} // namespace brimwatch::platform
