#pragma once

#include <QByteArray>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimwatch::platform {

/// The text of a desktop entry (Desktop Entry Specification 1.5): the keys of its [Desktop Entry]
/// group, read and changed without touching anything else, be it comments, translations, other
/// groups or bytes that are no text.
class DesktopEntryText {
public:
    /// Larger files are no entries.
    static constexpr qint64 largestFile = 256LL * 1024;

    /// Absent when the file is no regular file (or a link to one), too large, unreadable, or has no
    /// [Desktop Entry] group. Waits for nothing.
    static std::optional<DesktopEntryText> read(const QString &path);
    /// Absent when there is no [Desktop Entry] group.
    static std::optional<DesktopEntryText> parse(const QByteArray &bytes);

    /// The last value of that key without its escapes undone; empty without such a key.
    QString rawValue(QLatin1StringView key) const;
    /// The same with its escapes undone.
    QString value(QLatin1StringView key) const;
    /// The items of a list, undone.
    QStringList list(QLatin1StringView key) const;
    /// Absent without the key and when its value is no boolean. "1" and "0" count, as they did
    /// before version 1.0 of the format and do for GLib.
    std::optional<bool> boolean(QLatin1StringView key) const;
    bool has(QLatin1StringView key) const;

    /// Sets the key, where it stands or else at the end of the group, escaping what must be.
    void set(QLatin1StringView key, const QString &value);
    void setList(QLatin1StringView key, const QStringList &items);
    /// Takes the key away, each time that it stands there; translations of it stay.
    void remove(QLatin1StringView key);

    /// The program that it starts, and its arguments. Empty when it is no application, or its
    /// program or the one that TryExec names cannot be started.
    QStringList startableCommand() const;

    QByteArray toBytes() const { return m_lines.join('\n'); }

private:
    void setRaw(QLatin1StringView key, const QByteArray &value);
    /// The numbers of the lines that set the key.
    QList<qsizetype> linesOf(QLatin1StringView key) const;

    QList<QByteArray> m_lines;
};

/// The program and arguments of an Exec key, its escapes as a text undone already: quotes and
/// backslashes undone as desktop entries have them, field codes left out. Empty when the quoting is
/// broken.
QStringList commandOfExec(const QString &exec);

/// The opposite: an Exec key that starts that program with these arguments, nothing in them taken
/// for a quote, a variable or a field code.
QString execOfCommand(const QStringList &command);

/// Whether that is an executable file or, without a slash in front, one is found on the PATH.
bool canBeStarted(const QString &program);

} // namespace brimwatch::platform
