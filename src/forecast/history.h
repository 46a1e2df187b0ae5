#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

namespace brimwatch::forecast {

/// A row of the history: the state of a bucket after a change.
struct HistoryRow {
    std::chrono::sys_seconds time;
    QString bucket; ///< Its id, without control characters and of bounded length.
    double left = 1; ///< 0 to 1.
    std::optional<std::chrono::sys_seconds> reset = {};

    bool operator==(const HistoryRow &) const = default;
};

/// A row as the files have it, without the end of its line.
QByteArray csvLine(const HistoryRow &row);
/// The names of its columns.
inline constexpr auto csvHeader = "time,bucket,left,reset";

/// The user's state folder for it: $XDG_STATE_HOME/brimwatch/history, or below ~/.local/state. On
/// macOS a folder of the application's support files.
QString historyFolder();

/// The course of what was left, in a folder of its own: a file of comma-separated values for each
/// month of UTC, "2026-11.csv", that only its owner may read. Rows are "time,bucket,left,reset",
/// times in seconds since the epoch. Beside them stand what the forecasts keep, "forecasts.json",
/// and the page that was opened last, "usage.html".
class History {
public:
    /// Younger rows are all kept; of older ones one an hour for each bucket.
    static constexpr std::chrono::hours keptInFull{35 * 24};
    static constexpr qsizetype longestBucketId = 128;

    explicit History(QString folder);

    using Visit = std::function<void(const HistoryRow &)>;
    /// Visits all rows, file by file, as they were written. What is no row, a torn last line above
    /// all, is skipped, and so is a file that is too large or no regular file. The memory that it
    /// takes does not depend on what is there.
    void read(const Visit &visit) const;

    /// Whether all of it can be read; the error names what cannot.
    Result<void, QString> check() const;

    /// Appends the rows with one write for each month. The error is told for people; what was
    /// written of a row then is skipped when it is read.
    Result<void, QString> append(const QList<HistoryRow> &rows);

    /// Of what is older than keptInFull, keeps for each bucket the row with least left of each
    /// hour.
    Result<void, QString> thin(std::chrono::sys_seconds now);

    /// What was kept, empty when there is nothing.
    QByteArray kept() const;
    Result<void, QString> keep(const QByteArray &content);
    /// The window of each bucket, as what is kept has it: {"buckets": {ID: {"kind": "5h"}}}.
    QMap<QString, QString> keptWindows() const;

    /// A page with pictures of it, which stands beside it. Returns its path.
    Result<QString, QString> keepPage(const QByteArray &content);

    /// Whether there are rows.
    bool isEmpty() const;
    /// Deletes rows, what is kept, and the page.
    Result<void, QString> clear();

private:
    QStringList months() const;
    QString keptFile() const;
    QString pageFile() const;
    Result<void, QString> makeFolder();
    Result<void, QString> replace(const QString &path, const QByteArray &content);

    QString m_folder;
    mutable QString m_someMonth; ///< A file that was there; null before one was.
};

} // namespace brimwatch::forecast
