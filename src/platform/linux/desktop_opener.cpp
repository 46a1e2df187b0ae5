#include "platform/linux/desktop_opener.h"

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
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

constexpr qint64 largestEntry = 256LL * 1024;

/// The keys of the [Desktop Entry] group; empty when the file is no readable desktop entry.
QHash<QString, QString> keysOf(const QString &path)
{
    const QFileInfo info(path);
    QFile file(path);
    // Looked at first: a FIFO would keep us waiting.
    if (!info.isFile() || info.size() > largestEntry || !file.open(QIODevice::ReadOnly))
        return {};
    QHash<QString, QString> keys;
    bool inGroup = false;
    const auto lines = QString::fromUtf8(file.read(largestEntry)).split(u'\n');
    for (const QString &line : lines) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(u'[')) {
            inGroup = trimmed == "[Desktop Entry]"_L1;
        } else if (inGroup && !trimmed.startsWith(u'#')) {
            const qsizetype equals = trimmed.indexOf(u'=');
            if (equals > 0)
                keys.insert(trimmed.left(equals).trimmed(), trimmed.mid(equals + 1).trimmed());
        }
    }
    return keys;
}

/// Undoes the escapes that every value of a desktop entry knows.
QString unescaped(const QString &value)
{
    QString result;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        const QChar next = value[++i];
        switch (next.unicode()) {
        case u's':
            result += u' ';
            break;
        case u'n':
            result += u'\n';
            break;
        case u't':
            result += u'\t';
            break;
        case u'r':
            result += u'\r';
            break;
        case u'\\':
            result += u'\\';
            break;
        default:
            result += u'\\';
            result += next;
        }
    }
    return result;
}

bool isTrue(const QHash<QString, QString> &keys, QLatin1StringView key)
{
    return keys.value(key) == "true"_L1;
}

bool canBeStarted(const QString &program)
{
    if (program.startsWith(u'/'))
        return QFileInfo(program).isExecutable();
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/// What is left of an argument without its field codes; absent when it was nothing but a code for
/// files.
std::optional<QString> withoutFieldCodes(const QString &argument)
{
    QString result;
    bool hadCode = false;
    for (qsizetype i = 0; i < argument.size(); ++i) {
        if (argument[i] != u'%' || i + 1 == argument.size()) {
            result += argument[i];
            continue;
        }
        ++i;
        if (argument[i] == u'%')
            result += u'%';
        else
            hadCode = true;
    }
    if (hadCode && result.isEmpty())
        return {};
    return result;
}

} // namespace

QStringList commandOfExec(const QString &exec)
{
    QStringList command;
    QString argument;
    bool quoted = false;
    bool inArgument = false;
    bool wasQuoted = false;
    const auto finish = [&] {
        // A field code inside quotes is undefined; left alone, it is at least not lost.
        if (wasQuoted)
            command.append(argument);
        else if (const auto plain = withoutFieldCodes(argument))
            command.append(*plain);
        argument.clear();
        inArgument = false;
        wasQuoted = false;
    };
    for (qsizetype i = 0; i < exec.size(); ++i) {
        const QChar c = exec[i];
        if (quoted && c == u'\\' && i + 1 < exec.size() && u"\"`$\\"_s.contains(exec[i + 1])) {
            argument += exec[++i];
        } else if (c == u'"') {
            quoted = !quoted;
            inArgument = true;
            wasQuoted = true;
        } else if (!quoted && c.isSpace()) {
            if (inArgument)
                finish();
        } else {
            argument += c;
            inArgument = true;
        }
    }
    if (quoted)
        return {};
    if (inArgument)
        finish();
    return command;
}

std::optional<DesktopEntry> readDesktopEntry(const QString &file)
{
    const auto keys = keysOf(file);
    if (keys.value(u"Type"_s) != "Application"_L1 || isTrue(keys, "Hidden"_L1)
        || isTrue(keys, "NoDisplay"_L1))
        return {};
    const QString tryExec = unescaped(keys.value(u"TryExec"_s));
    if (!tryExec.isEmpty() && !canBeStarted(tryExec))
        return {};
    const QStringList command = commandOfExec(unescaped(keys.value(u"Exec"_s)));
    if (command.isEmpty() || !canBeStarted(command.first()))
        return {};
    return DesktopEntry{
        .file = file, .command = command, .workingDirectory = unescaped(keys.value(u"Path"_s))};
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
