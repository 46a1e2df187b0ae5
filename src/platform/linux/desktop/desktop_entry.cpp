#include "platform/linux/desktop/desktop_entry.h"

#include "core/read_file.h"

#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr QByteArrayView groupHeader = "[Desktop Entry]";

/// Undoes the escapes that every value knows.
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

QString escaped(const QString &value)
{
    QString result;
    for (const QChar c : value) {
        switch (c.unicode()) {
        case u'\n':
            result += R"(\n)"_L1;
            break;
        case u'\t':
            result += R"(\t)"_L1;
            break;
        case u'\r':
            result += R"(\r)"_L1;
            break;
        case u'\\':
            result += R"(\\)"_L1;
            break;
        default:
            // A blank before a value is not part of it.
            if (c == u' ' && result.isEmpty())
                result += R"(\s)"_L1;
            else
                result += c;
        }
    }
    // Nor is one behind it, for most readers.
    if (result.endsWith(u' '))
        result.replace(result.size() - 1, 1, R"(\s)"_L1);
    return result;
}

/// Without blanks around it, and without the carriage return of another system's line end. Other
/// white space is part of a value.
QByteArray withoutBlanks(QByteArrayView value)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!value.isEmpty() && isBlank(value.front()))
        value = value.sliced(1);
    while (!value.isEmpty() && isBlank(value.back()))
        value.chop(1);
    return value.toByteArray();
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

/// Deliberate: not QChar::isSpace(). Readers split at the blanks of ASCII alone; others, as U+3000,
/// are letters of a name.
bool separatesArguments(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

} // namespace

std::optional<DesktopEntryText> DesktopEntryText::read(const QString &path)
{
    const auto content = readFile(path, largestFile);
    return content ? parse(*content) : std::nullopt;
}

std::optional<DesktopEntryText> DesktopEntryText::parse(const QByteArray &bytes)
{
    DesktopEntryText text;
    text.m_lines = bytes.split('\n');
    const bool isEntry = std::any_of(text.m_lines.cbegin(), text.m_lines.cend(),
        [](const QByteArray &line) { return line.trimmed() == groupHeader; });
    if (!isEntry)
        return {};
    return text;
}

QList<qsizetype> DesktopEntryText::linesOf(QLatin1StringView key) const
{
    QList<qsizetype> numbers;
    bool inGroup = false;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const QByteArray line = m_lines[i].trimmed();
        if (line.startsWith('[')) {
            inGroup = line == groupHeader;
        } else if (inGroup && !line.startsWith('#')) {
            const qsizetype equals = line.indexOf('=');
            if (equals > 0 && line.left(equals).trimmed() == QByteArrayView(key))
                numbers.append(i);
        }
    }
    return numbers;
}

bool DesktopEntryText::has(QLatin1StringView key) const
{
    return !linesOf(key).isEmpty();
}

QString DesktopEntryText::rawValue(QLatin1StringView key) const
{
    const auto lines = linesOf(key);
    if (lines.isEmpty())
        return {};
    const QByteArray &line = m_lines[lines.last()];
    return QString::fromUtf8(withoutBlanks(QByteArrayView(line).sliced(line.indexOf('=') + 1)));
}

QString DesktopEntryText::value(QLatin1StringView key) const
{
    return unescaped(rawValue(key));
}

QStringList DesktopEntryText::list(QLatin1StringView key) const
{
    QStringList items;
    QString item;
    const QString raw = rawValue(key);
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (raw[i] == u';') {
            items.append(unescaped(item));
            item.clear();
        } else if (raw[i] == u'\\' && i + 1 < raw.size()) {
            ++i;
            if (raw[i] != u';')
                item += u'\\';
            item += raw[i];
        } else {
            item += raw[i];
        }
    }
    if (!item.isEmpty())
        items.append(unescaped(item));
    return items;
}

std::optional<bool> DesktopEntryText::boolean(QLatin1StringView key) const
{
    const QString raw = rawValue(key);
    if (raw == "true"_L1 || raw == "1"_L1)
        return true;
    if (raw == "false"_L1 || raw == "0"_L1)
        return false;
    return {};
}

void DesktopEntryText::set(QLatin1StringView key, const QString &value)
{
    setRaw(key, escaped(value).toUtf8());
}

void DesktopEntryText::setList(QLatin1StringView key, const QStringList &items)
{
    QString value;
    for (const QString &item : items)
        value += escaped(item).replace(u';', R"(\;)"_L1) + u';';
    setRaw(key, value.toUtf8());
}

void DesktopEntryText::setRaw(QLatin1StringView key, const QByteArray &value)
{
    const QByteArray line = QByteArray(key.data(), key.size()) + '=' + value;
    const auto lines = linesOf(key);
    if (!lines.isEmpty()) {
        // The last one counts.
        m_lines[lines.last()] = line;
        return;
    }
    qsizetype end = 0;
    bool inGroup = false;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        const QByteArray trimmed = m_lines[i].trimmed();
        if (trimmed.startsWith('['))
            inGroup = trimmed == groupHeader;
        if (inGroup && !trimmed.isEmpty())
            end = i + 1;
    }
    m_lines.insert(end, line);
    if (end + 1 == m_lines.size())
        m_lines.append(QByteArray());
}

void DesktopEntryText::remove(QLatin1StringView key)
{
    // From the end, so that the numbers hold.
    auto lines = linesOf(key);
    std::reverse(lines.begin(), lines.end());
    for (const qsizetype line : std::as_const(lines))
        m_lines.removeAt(line);
}

bool canBeStarted(const QString &program)
{
    // No file has such a name, and Qt complains of one.
    if (program.contains(QChar::Null))
        return false;
    if (program.startsWith(u'/')) {
        const QFileInfo info(program);
        return info.isFile() && info.isExecutable();
    }
    return !QStandardPaths::findExecutable(program).isEmpty();
}

QStringList DesktopEntryText::startableCommand() const
{
    if (rawValue("Type"_L1) != "Application"_L1)
        return {};
    if (const QString tryExec = value("TryExec"_L1); !tryExec.isEmpty() && !canBeStarted(tryExec))
        return {};
    const QStringList command = commandOfExec(value("Exec"_L1));
    return !command.isEmpty() && canBeStarted(command.first()) ? command : QStringList();
}

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
            command.append(argument.replace("%%"_L1, "%"_L1));
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
        } else if (!quoted && separatesArguments(c)) {
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

QString execOfCommand(const QStringList &command)
{
    QStringList arguments;
    for (const QString &argument : command) {
        QString text;
        // The characters that the standard for desktop entries reserves, and every blank.
        bool mustBeQuoted = argument.isEmpty();
        for (const QChar c : argument) {
            mustBeQuoted = mustBeQuoted || c.isSpace() || u"\"'\\><~|&;$*?#()`"_s.contains(c);
            if (u"\"`$\\"_s.contains(c))
                text += u'\\';
            if (c == u'%')
                text += u'%';
            text += c;
        }
        arguments.append(mustBeQuoted ? QString(u'"' + text + u'"') : text);
    }
    return arguments.join(u' ');
}

} // namespace brimwatch::platform
