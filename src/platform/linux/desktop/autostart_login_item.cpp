#include "platform/linux/desktop/autostart_login_item.h"

#include "core/read_file.h"
#include "core/replace_file.h"
#include "platform/linux/desktop/desktop_entry.h"
#include "platform/opener.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto typeKey = "Type"_L1;
constexpr auto nameKey = "Name"_L1;
constexpr auto tryExecKey = "TryExec"_L1;
constexpr auto execKey = "Exec"_L1;
constexpr auto hiddenKey = "Hidden"_L1;
constexpr auto onlyShowInKey = "OnlyShowIn"_L1;
constexpr auto notShowInKey = "NotShowIn"_L1;
// gnome-session's, and so that of Cinnamon, Budgie and systemd's generator too.
constexpr auto gnomeEnabledKey = "X-GNOME-Autostart-enabled"_L1;
// xfce4-session's: the user wants an entry of another desktop here as well.
constexpr auto xfceOverrideKey = "X-XFCE-Autostart-Override"_L1;
constexpr auto xfce = "XFCE"_L1;

const QString newEntry = u"[Desktop Entry]\n"
                         "Type=Application\n"
                         "Name=Brimwatch\n"
                         "Comment=Shows in the panel how much Antigravity model quota is left\n"
                         "Icon=" BRIMWATCH_IDENTIFIER "\n"
                         "Terminal=false\n"_s;

/// The Exec key that starts the program.
QString execOf(const QString &program)
{
    // GLib looks for the first word among the programs before it makes one percent sign of two.
    if (program.contains(u'%'))
        return execOfCommand({u"sh"_s, u"-c"_s, u"exec \"$0\""_s, program});
    return execOfCommand({program});
}

/// Whether files can be made in that folder, or the folder itself where it is missing.
bool isWritable(const QString &folder)
{
    QFileInfo place(folder);
    // A link that leads nowhere is no folder, and none can be made under its name.
    while (!place.exists() && !place.isSymLink() && !place.isRoot())
        place.setFile(place.path());
    return place.isDir() && place.isWritable() && place.isExecutable();
}

} // namespace

AutostartLoginItem::AutostartLoginItem(Surroundings surroundings, Opener &opener)
    : m_surroundings(std::move(surroundings))
    , m_opener(opener)
{
}

QString AutostartLoginItem::folder() const
{
    return m_surroundings.configHome + "/autostart"_L1;
}

QString AutostartLoginItem::file() const
{
    return folder() + "/" BRIMWATCH_IDENTIFIER ".desktop"_L1;
}

LoginItem::Status AutostartLoginItem::status() const
{
    const auto entry = DesktopEntryText::read(file());
    if (entry && !entry->startableCommand().isEmpty())
        return isSwitchedOff(*entry) || !isShownHere(*entry) ? Status::requiresApproval
                                                             : Status::enabled;
    return isWritable(folder()) ? Status::notRegistered : Status::notFound;
}

bool AutostartLoginItem::isSwitchedOff(const DesktopEntryText &entry) const
{
    return entry.boolean(hiddenKey).value_or(false)
        || !entry.boolean(gnomeEnabledKey).value_or(true);
}

bool AutostartLoginItem::isShownHere(const DesktopEntryText &entry) const
{
    if (m_surroundings.currentDesktops.contains(xfce)
        && entry.boolean(xfceOverrideKey).value_or(false))
        return true;
    const QStringList onlyShowIn = entry.list(onlyShowInKey);
    const QStringList notShowIn = entry.list(notShowInKey);
    // The first name that an entry mentions decides; case counts.
    for (const QString &desktop : m_surroundings.currentDesktops) {
        if (onlyShowIn.contains(desktop))
            return true;
        if (notShowIn.contains(desktop))
            return false;
    }
    return !entry.has(onlyShowInKey);
}

void AutostartLoginItem::switchOn(DesktopEntryText &entry) const
{
    if (entry.boolean(hiddenKey).value_or(false))
        entry.remove(hiddenKey);
    if (!entry.boolean(gnomeEnabledKey).value_or(true))
        entry.remove(gnomeEnabledKey);
    if (!isShownHere(entry))
        showHere(entry);
}

void AutostartLoginItem::showHere(DesktopEntryText &entry) const
{
    const QStringList &here = m_surroundings.currentDesktops;
    QStringList notShowIn = entry.list(notShowInKey);
    const auto removed
        = notShowIn.removeIf([&here](const QString &desktop) { return here.contains(desktop); });
    if (notShowIn.isEmpty())
        entry.remove(notShowInKey);
    else if (removed > 0)
        entry.setList(notShowInKey, notShowIn);
    if (isShownHere(entry))
        return;
    // Other desktops that are named there stay.
    if (here.isEmpty())
        entry.remove(onlyShowInKey);
    else
        entry.setList(onlyShowInKey, entry.list(onlyShowInKey) << here.last());
}

Result<void, QString> AutostartLoginItem::registerItem()
{
    if (!canBeStarted(m_surroundings.program))
        return fail(u"The program %1 is gone."_s.arg(m_surroundings.program));
    if (!QDir().mkpath(folder()))
        return fail(u"The folder %1 cannot be made."_s.arg(folder()));

    const auto content = readFile(file(), DesktopEntryText::largestFile);
    // What the user has changed in it would be lost.
    if (!content && content.error() == ReadFileError::Unreadable && QFileInfo(file()).isFile())
        return fail(u"The entry %1 cannot be read."_s.arg(file()));
    auto entry = content ? DesktopEntryText::parse(*content) : std::nullopt;
    if (!entry)
        entry = DesktopEntryText::parse(newEntry.toUtf8());
    if (!entry->has(nameKey))
        entry->set(nameKey, u"Brimwatch"_s);
    if (entry->startableCommand().isEmpty()) {
        entry->set(typeKey, u"Application"_s);
        entry->set(tryExecKey, m_surroundings.program);
        entry->set(execKey, execOf(m_surroundings.program));
    }
    switchOn(*entry);

    // What is no file makes way: a link that leads nowhere, a FIFO. A link to a file is followed,
    // so that an entry kept elsewhere stays there; a folder may hold anything and stays.
    const QFileInfo standing(file());
    if (!standing.isFile() && !standing.isDir() && (standing.exists() || standing.isSymLink()))
        QFile::remove(file());
    return replaceFile(file(), entry->toBytes()).map_error([this](const QString &error) {
        return u"%1: %2"_s.arg(file(), error);
    });
}

Result<void, QString> AutostartLoginItem::unregisterItem()
{
    QFile entry(file());
    const QFileInfo standing(file());
    if (!standing.exists() && !standing.isSymLink())
        return {};
    if (!entry.remove())
        return fail(u"%1: %2"_s.arg(file(), entry.errorString()));
    return {};
}

void AutostartLoginItem::openSystemSettings()
{
    const auto panels = autostartPanels(m_surroundings.currentDesktops);
    const bool started = std::any_of(panels.cbegin(), panels.cend(), [](const QStringList &panel) {
        const QString program = QStandardPaths::findExecutable(panel.first());
        return !program.isEmpty() && QProcess::startDetached(program, panel.mid(1));
    });
    if (!started)
        m_opener.openUrl(QUrl::fromLocalFile(folder()));
}

QStringList currentDesktops()
{
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts);
}

QList<QStringList> autostartPanels(const QStringList &desktops)
{
    // Where a desktop has had several, the newest comes first.
    static const QList<std::pair<QLatin1StringView, QStringList>> known{
        {"XFCE"_L1, {u"xfce4-session-settings"_s}},
        {"MATE"_L1, {u"mate-session-properties"_s}},
        {"LXQt"_L1, {u"lxqt-config-session"_s}},
        {"LXDE"_L1, {u"lxsession-edit"_s}},
        {"KDE"_L1, {u"systemsettings"_s, u"kcm_autostart"_s}},
        {"KDE"_L1, {u"systemsettings5"_s, u"kcm_autostart"_s}},
        {"KDE"_L1, {u"kcmshell6"_s, u"kcm_autostart"_s}},
        {"KDE"_L1, {u"kcmshell5"_s, u"kcm_autostart"_s}},
        {"X-Cinnamon"_L1, {u"cinnamon-settings"_s, u"startup"_s}},
        {"Budgie"_L1, {u"budgie-desktop-settings"_s}},
        {"GNOME"_L1, {u"gnome-session-properties"_s}},
        {"GNOME"_L1, {u"gnome-tweaks"_s}},
        {"Unity"_L1, {u"gnome-session-properties"_s}},
    };
    QList<QStringList> commands;
    for (const QString &desktop : desktops) {
        for (const auto &[name, command] : known) {
            if (desktop == name && !commands.contains(command))
                commands.append(command);
        }
    }
    return commands;
}

} // namespace brimwatch::platform
