#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QTimer>

#include <optional>

namespace brimwatch::service {

/// The values of some keys in the section [General] of an INI file, in the form in which QSettings
/// writes them. The rest of the file is kept byte for byte.
///
/// Reading and writing are bounded: only a regular file of up to a megabyte is read, no lock is
/// waited for, and the file is replaced atomically. A file that cannot be read counts as empty, and
/// one that cannot be written costs what was to be stored in it: the values hold while this lives,
/// and are written with the next change that can be.
///
/// It is not QSettings because that waits for a lock on the main thread, for ever where the lock is
/// a folder or was left by another user, and because its parser recurses without bound into
/// `@Variant(`.
class SettingsFile {
public:
    static constexpr qint64 largestFile = 1024LL * 1024;

    /// Reads the values of `keys`; no others are kept. The folder of `path` is made when it is
    /// written.
    SettingsFile(QString path, const QList<QByteArray> &keys);
    /// Writes what has not been written.
    ~SettingsFile();
    Q_DISABLE_COPY_MOVE(SettingsFile)

    /// Absent when the file has no such key, or a list or another value that is no text there.
    std::optional<QString> value(const QByteArray &key) const;
    /// Holds at once and is written soon after, together with other changes.
    void setValue(const QByteArray &key, const QString &value);

    /// Writes at once what has not been written.
    void write();

    const QString &path() const { return m_path; }

private:
    QString m_path;
    QHash<QByteArray, QString> m_values;
    QSet<QByteArray> m_unwritten; ///< Keys.
    QTimer m_writing;
};

} // namespace brimwatch::service
