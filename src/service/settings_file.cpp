#include "service/settings_file.h"

#include "core/read_file.h"
#include "core/replace_file.h"

#include <QDir>
#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

Q_LOGGING_CATEGORY(settingsLog, "brimwatch.service", QtInfoMsg)

/// The content of the file, empty when there is none; absent when there is something else or it
/// cannot be read.
std::optional<QByteArray> contentOf(const QString &path)
{
    auto content = readFile(path, SettingsFile::largestFile);
    if (!content)
        return content.error() == ReadFileError::NotFound ? std::optional(QByteArray())
                                                          : std::nullopt;
    return *std::move(content);
}

/// The place behind the line that begins at `start`. A backslash before a line's end continues it.
qsizetype endOfLine(const QByteArray &content, qsizetype start)
{
    for (qsizetype i = start; i < content.size(); ++i) {
        if (content.at(i) == '\n')
            return i + 1;
        if (content.at(i) == '\\' && content.at(start) != ';')
            ++i; // It escapes the next character.
    }
    return content.size();
}

/// Lines with their ends, so that together they are the content.
QList<QByteArray> linesOf(const QByteArray &content)
{
    QList<QByteArray> lines;
    for (qsizetype start = 0; start < content.size();) {
        const qsizetype next = endOfLine(content, start);
        lines.append(content.mid(start, next - start));
        start = next;
    }
    return lines;
}

constexpr QByteArrayView byteOrderMark("\xef\xbb\xbf");

/// Follows the sections of the lines that it is shown, from the first on.
class SectionTracker {
public:
    /// Whether `line` is the header of a section.
    bool enters(const QByteArray &line)
    {
        const QByteArray text = line.trimmed();
        if (!text.startsWith('['))
            return false;
        // What follows the bracket, such as a comment, does not count.
        const qsizetype end = text.indexOf(']');
        const QByteArray name = end < 0 ? QByteArray() : text.mid(1, end - 1);
        m_inGeneral = name.trimmed().compare("General", Qt::CaseInsensitive) == 0;
        return true;
    }
    bool isInGeneral() const { return m_inGeneral; }

private:
    bool m_inGeneral = true; // What comes before the first header counts as of [General].
};

/// The key of a line `key=value`; empty when it is none.
QByteArray keyOf(const QByteArray &line)
{
    const qsizetype equals = line.indexOf('=');
    const QByteArray key = equals < 0 ? QByteArray() : line.left(equals).trimmed();
    return key.startsWith(';') ? QByteArray() : key;
}

struct NamedEscape {
    char16_t name;
    char16_t meaning;
};
constexpr std::array<NamedEscape, 7> namedEscapes{{{.name = u'a', .meaning = u'\a'},
    {.name = u'b', .meaning = u'\b'}, {.name = u'f', .meaning = u'\f'},
    {.name = u'n', .meaning = u'\n'}, {.name = u'r', .meaning = u'\r'},
    {.name = u't', .meaning = u'\t'}, {.name = u'v', .meaning = u'\v'}}};

/// -1 for what is no such digit.
int hexadecimalDigit(QChar character)
{
    const char16_t code = character.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    const char16_t lower = code | 0x20U;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

/// Undoes the escapes and quotes of QSettings.
class ValueReader {
public:
    explicit ValueReader(const QString &text)
        : m_text(text)
    {
    }

    /// Absent when the value is a list.
    std::optional<QString> read()
    {
        while (m_at < m_text.size()) {
            const QChar character = m_text.at(m_at++);
            if (character == u'\\')
                readEscape();
            else if (character == u'"')
                m_quoted = !m_quoted;
            else if (m_quoted)
                append(character);
            else if (character == u',')
                return std::nullopt;
            else if (character == u';')
                break;
            else
                m_value.append(character);
        }
        // Blanks at the end count within quotes alone.
        while (m_value.size() > m_kept && m_value.back().isSpace())
            m_value.chop(1);
        return m_value;
    }

private:
    void append(QChar character)
    {
        m_value.append(character);
        m_kept = m_value.size();
    }

    void readEscape()
    {
        if (m_at == m_text.size())
            return;
        const QChar character = m_text.at(m_at++);
        if (character == u'x') {
            append(readHexadecimal());
            return;
        }
        const auto *const named = std::find_if(namedEscapes.begin(), namedEscapes.end(),
            [character](const NamedEscape &escape) { return escape.name == character; });
        append(named == namedEscapes.end() ? character : QChar(named->meaning));
    }

    /// Any number of digits; what is larger than a character counts by its lowest 16 bits.
    QChar readHexadecimal()
    {
        uint code = 0;
        for (; m_at < m_text.size(); ++m_at) {
            const int digit = hexadecimalDigit(m_text.at(m_at));
            if (digit < 0)
                break;
            code = (code << 4U) | static_cast<uint>(digit);
        }
        return {static_cast<char16_t>(code & 0xffffU)};
    }

    const QString &m_text;
    QString m_value;
    qsizetype m_at = 0;
    qsizetype m_kept = 0; ///< As much of the value stays, whatever blanks it ends with.
    bool m_quoted = false;
};

/// The text of a value as it is in the file; absent when it is a list, or another type.
std::optional<QString> readValue(const QByteArray &line)
{
    const QString text = QString::fromUtf8(line.mid(line.indexOf('=') + 1)).trimmed();
    auto value = ValueReader(text).read();
    if (!value || !value->startsWith(u'@'))
        return value;
    // QSettings writes other types as "@Type(...)", and doubles an @ that begins a text.
    return value->startsWith("@@"_L1) ? std::optional(value->mid(1)) : std::nullopt;
}

QByteArray writtenValue(const QString &value)
{
    const auto isPlain = [](QChar character) {
        return character.unicode() < 0x80
            && (character.isLetterOrNumber() || u"+-._ "_s.contains(character));
    };
    if (!value.isEmpty() && value == value.trimmed()
        && std::all_of(value.begin(), value.end(), isPlain))
        return value.toUtf8();
    QString text;
    bool afterHexadecimal = false;
    for (const QChar character : value) {
        const bool isDigitOfEscape = afterHexadecimal && hexadecimalDigit(character) >= 0;
        afterHexadecimal = false;
        if (character == u'"' || character == u'\\') {
            text += u'\\';
            text += character;
        } else if (character.unicode() < 0x20 || character.isSurrogate() || isDigitOfEscape) {
            text += R"(\x)"_L1 + QString::number(character.unicode(), 16);
            afterHexadecimal = true;
        } else {
            text += character;
        }
    }
    if (value.startsWith(u'@'))
        text.prepend(u'@');
    return '"' + text.toUtf8() + '"';
}

/// `content` with that line for the key, where the key is or else at the end of [General].
QByteArray withLine(const QByteArray &content, const QByteArray &key, const QByteArray &line)
{
    if (content.startsWith(byteOrderMark))
        return byteOrderMark.toByteArray() + withLine(content.mid(byteOrderMark.size()), key, line);
    auto lines = linesOf(content);
    qsizetype place = -1;
    qsizetype end = -1; // Of the section.
    SectionTracker section;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const bool isHeader = section.enters(lines.at(i));
        if (!section.isInGeneral())
            continue;
        if (isHeader || !lines.at(i).trimmed().isEmpty())
            end = i + 1;
        // Of several the last one counts.
        if (keyOf(lines.at(i)) == key)
            place = i;
    }
    if (place >= 0) {
        lines[place] = line;
        return lines.join();
    }
    if (end < 0) {
        lines.prepend(lines.isEmpty() ? QByteArray() : QByteArray("\n"));
        lines.prepend(line);
        lines.prepend("[General]\n");
        return lines.join();
    }
    QByteArray &before = lines[end - 1];
    if (!before.endsWith('\n'))
        before.append('\n');
    // A backslash at the end of the file would continue that line into ours.
    if (linesOf(before + line).size() == 1)
        before.append('\n');
    lines.insert(end, line);
    return lines.join();
}

} // namespace

SettingsFile::SettingsFile(QString path, const QList<QByteArray> &keys)
    : m_path(std::move(path))
{
    // A slider that is dragged sets a value many times.
    constexpr auto delay = 100ms;
    m_writing.setSingleShot(true);
    m_writing.setInterval(delay);
    QObject::connect(&m_writing, &QTimer::timeout, &m_writing, [this] { write(); });

    SectionTracker section;
    auto content = contentOf(m_path).value_or(QByteArray());
    if (content.startsWith(byteOrderMark))
        content.remove(0, byteOrderMark.size());
    const auto lines = linesOf(content);
    for (const QByteArray &line : lines) {
        if (section.enters(line) || !section.isInGeneral())
            continue;
        const QByteArray key = keyOf(line);
        if (!keys.contains(key))
            continue;
        if (const auto value = readValue(line))
            m_values.insert(key, *value);
        else
            m_values.remove(key);
    }
}

SettingsFile::~SettingsFile()
{
    write();
}

std::optional<QString> SettingsFile::value(const QByteArray &key) const
{
    const auto found = m_values.constFind(key);
    return found == m_values.cend() ? std::nullopt : std::optional(*found);
}

void SettingsFile::setValue(const QByteArray &key, const QString &value)
{
    m_values.insert(key, value);
    m_unwritten.insert(key);
    if (!m_writing.isActive())
        m_writing.start();
}

void SettingsFile::write()
{
    m_writing.stop();
    if (m_unwritten.isEmpty())
        return;
    // Read again: others may have changed the rest of it.
    auto content = contentOf(m_path);
    if (content) {
        auto keys = m_unwritten.values();
        std::sort(keys.begin(), keys.end());
        for (const QByteArray &key : std::as_const(keys))
            content = withLine(*content, key, key + '=' + writtenValue(m_values.value(key)) + '\n');
    }
    if (!content || content->size() > largestFile || !QDir().mkpath(QFileInfo(m_path).path())
        || !replaceFile(m_path, *content)) {
        qCDebug(settingsLog, "The settings cannot be written to %ls; they hold until the end",
            qUtf16Printable(m_path));
        return;
    }
    m_unwritten.clear();
}

} // namespace brimwatch::service
