#pragma once

#include "core/result.h"

#include <QString>

#include <optional>

namespace brimwatch::sample {

/// What a discovery file says. Absent is left out of it.
struct AnnouncedDaemon {
    qint64 pid = 0;
    std::optional<quint16> httpPort;
    std::optional<quint16> httpsPort;
    QString version;
    QString token;
};

/// A discovery file that stands for as long as this object does, readable by its owner alone.
class Announcement {
public:
    enum class AtEnd { Remove, Leave };

    /// Writes the file, and the folders above it that are missing. The error says what could not be
    /// written and why.
    static Result<Announcement, QString> write(
        const QString &path, const AnnouncedDaemon &daemon, AtEnd atEnd);

    ~Announcement();
    Announcement(Announcement &&other) noexcept;
    Announcement &operator=(Announcement &&other) noexcept;
    Announcement(const Announcement &) = delete;
    Announcement &operator=(const Announcement &) = delete;

    const QString &path() const { return m_path; }

private:
    Announcement(QString path, AtEnd atEnd);
    void end();

    QString m_path; ///< Empty once moved from.
    AtEnd m_atEnd;
};

} // namespace brimwatch::sample
