#pragma once

#include "core/result.h"

#include <QString>

namespace brimwatch::sample {

/// What a discovery file says.
struct AnnouncedDaemon {
    qint64 pid = 0;
    QString portKey; ///< "httpPort" or "httpsPort".
    quint16 port = 0;
    QString version;
    QString token;
};

/// A discovery file that exists as long as this object does, readable by its owner alone.
class Announcement {
public:
    /// Writes the file, and the folders above it that are missing. The error says what could not be
    /// written and why.
    static Result<Announcement, QString> write(const QString &path, const AnnouncedDaemon &daemon);

    ~Announcement();
    Announcement(Announcement &&other) noexcept;
    Announcement &operator=(Announcement &&other) noexcept;
    Announcement(const Announcement &) = delete;
    Announcement &operator=(const Announcement &) = delete;

    const QString &path() const { return m_path; }

private:
    explicit Announcement(QString path);
    void end();

    QString m_path; ///< Empty once moved from.
};

} // namespace brimwatch::sample
