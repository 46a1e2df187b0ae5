#pragma once

#include "forecast/bucket_forecast.h"
#include "forecast/history.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <functional>
#include <map>
#include <optional>

namespace brimwatch::model {
struct QuotaBucket;
struct QuotaSummary;
} // namespace brimwatch::model

namespace brimwatch::service {

class SettingsStore;

/// The forecasts of all buckets, and the history that they are made from. With the history switched
/// off they know what was seen since the start.
///
/// The history is read at the first refresh that brings quota, and what the forecasts keep is
/// written at most every ten minutes and at the end: what came after it is in the history.
class QuotaForecasts {
public:
    /// As many buckets are followed.
    static constexpr std::size_t mostBuckets = 256;

    /// What is private taken out of a text, and that made one line.
    using Redact = std::function<QString(const QString &)>;

    /// The settings outlive the forecasts. `folder` is that of the history.
    QuotaForecasts(const SettingsStore &settings, QString folder, Redact redact);
    ~QuotaForecasts();
    Q_DISABLE_COPY_MOVE(QuotaForecasts)

    /// Takes what a refresh has brought at `now`.
    void update(const model::QuotaSummary &summary, const QDateTime &now);

    /// The outlook of the last refresh; silent for a bucket that is not known, and where several
    /// buckets have the same id.
    forecast::Outlook outlook(const QString &bucketId) const;

private:
    /// What is remembered of a bucket.
    struct Followed {
        QString window;
        std::optional<forecast::BucketForecast>
            forecast; ///< Absent for windows of a length that is not forecast.
        forecast::Outlook outlook;
        std::optional<forecast::HistoryRow> recorded; ///< The last one in the history.
        std::optional<forecast::HistoryRow> seen; ///< The last one that brought nothing new.
    };

    bool isRecording() const;
    void readHistory(const model::QuotaSummary &summary);
    void follow(const model::QuotaBucket &bucket, const QDateTime &now,
        QList<forecast::HistoryRow> &changes);
    void record(const QList<forecast::HistoryRow> &changes, std::chrono::sys_seconds now);
    void keep();
    void warnOnce(const QString &reason);

    const SettingsStore &m_settings;
    forecast::History m_history;
    Redact m_redact;
    bool m_isRead = false;
    bool m_hasWarned = false; ///< Of what could not be written, once.
    std::map<QString, Followed> m_buckets; ///< By key.
    QHash<QString, QString> m_keys; ///< Of the ids in the last summary.
    std::optional<std::chrono::sys_seconds> m_keptAt;
    std::optional<std::chrono::sys_days> m_thinnedAt;
    bool m_hasRecorded = false; ///< There is a file of ours.
};

} // namespace brimwatch::service
