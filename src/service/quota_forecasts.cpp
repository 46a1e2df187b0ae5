#include "service/quota_forecasts.h"

#include "model/quota_records.h"
#include "service/settings.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using forecast::BucketForecast;
using forecast::HistoryRow;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

Q_LOGGING_CATEGORY(log, "brimwatch.service")

constexpr seconds betweenKeeps = 10min;
/// The end of a flat stretch is recorded when the stretch was longer.
constexpr seconds flat = 5min;

sys_seconds toSeconds(const QDateTime &moment)
{
    return sys_seconds(seconds(moment.toSecsSinceEpoch()));
}

/// What a bucket is called in the history: a daemon may give ids of any length.
QString keyOf(const QString &id)
{
    if (id.size() <= forecast::History::longestBucketId)
        return id;
    return QString::fromLatin1(
        QCryptographicHash::hash(id.toUtf8(), QCryptographicHash::Sha256).toHex());
}

/// Whether the history has to tell of it. While nothing is used the reset moves along with the
/// clock, and later it jitters.
bool isChange(const HistoryRow &before, const HistoryRow &now)
{
    constexpr double least = 1e-6;
    constexpr seconds jitter = 10min;
    if (std::abs(before.left - now.left) >= least
        || before.reset.has_value() != now.reset.has_value())
        return true;
    return now.left < 1 && now.reset && std::chrono::abs(*now.reset - *before.reset) > jitter;
}

} // namespace

QuotaForecasts::QuotaForecasts(const SettingsStore &settings, QString folder, Redact redact)
    : m_settings(settings)
    , m_history(std::move(folder))
    , m_redact(std::move(redact))
{
}

QuotaForecasts::~QuotaForecasts()
{
    if (m_isRead && isRecording() && m_hasRecorded && !m_history.isEmpty())
        keep();
}

bool QuotaForecasts::isRecording() const
{
    return m_settings.value(settings::keepHistory);
}

forecast::Outlook QuotaForecasts::outlook(const QString &bucketId) const
{
    const auto key = m_keys.constFind(bucketId);
    if (key == m_keys.cend() || key->isNull())
        return {};
    const auto found = m_buckets.find(*key);
    return found == m_buckets.end() ? forecast::Outlook() : found->second.outlook;
}

void QuotaForecasts::update(const model::QuotaSummary &summary, const QDateTime &now)
{
    m_keys.clear();
    std::set<QString> keys;
    for (const auto &group : summary.groups) {
        for (const auto &bucket : group.buckets) {
            if (keys.size() >= mostBuckets) {
                m_keys[bucket.bucketId] = QString();
                continue;
            }
            const QString key = keyOf(m_redact(bucket.bucketId));
            // Of two buckets with one id nobody knows which is which.
            const bool isKnown = m_keys.contains(bucket.bucketId) || keys.contains(key);
            m_keys[bucket.bucketId] = isKnown ? QString() : key;
            keys.insert(key);
        }
    }
    if (m_buckets.size() > mostBuckets)
        std::erase_if(
            m_buckets, [&keys](const auto &entry) { return !keys.contains(entry.first); });
    if (!std::exchange(m_isRead, true) && isRecording())
        readHistory(summary);

    // Cleared meanwhile: what was learned goes too.
    if (m_hasRecorded && isRecording() && m_history.isEmpty()) {
        m_buckets.clear();
        m_hasRecorded = false;
    }
    QList<HistoryRow> changes;
    for (const auto &group : summary.groups) {
        for (const auto &bucket : group.buckets)
            follow(bucket, now, changes);
    }
    if (isRecording())
        record(changes, toSeconds(now));
}

void QuotaForecasts::follow(
    const model::QuotaBucket &bucket, const QDateTime &now, QList<HistoryRow> &changes)
{
    const QString key = m_keys.value(bucket.bucketId);
    if (key.isNull() || !std::isfinite(bucket.remainingFraction))
        return;
    const auto reset = bucket.parsedResetDate();
    const HistoryRow row{.time = toSeconds(now),
        .bucket = key,
        .left = std::clamp(bucket.remainingFraction, 0.0, 1.0),
        .reset = reset ? std::optional(toSeconds(*reset)) : std::nullopt};
    auto &followed = m_buckets[key];
    const QString window = bucket.window.value_or(QString());
    const auto *kind = forecast::windowKind(window);
    if (!followed.forecast || followed.window != window) {
        followed.forecast
            = kind == nullptr ? std::nullopt : std::optional<BucketForecast>(std::in_place, *kind);
        followed.window = window;
    }
    followed.outlook = followed.forecast && row.reset
        ? followed.forecast->see({.time = row.time,
              .left = row.left,
              .reset = *row.reset,
              .utcOffset = seconds(now.offsetFromUtc())})
        : forecast::Outlook();
    if (!followed.recorded || isChange(*followed.recorded, row)) {
        // Between two rows use is a straight line, so a flat stretch needs both its ends.
        if (followed.seen && followed.seen->time - followed.recorded->time > flat)
            changes.append(*followed.seen);
        changes.append(row);
        followed.recorded = row;
        followed.seen.reset();
    } else {
        followed.seen = row;
    }
}

void QuotaForecasts::record(const QList<HistoryRow> &changes, sys_seconds now)
{
    if (changes.isEmpty())
        return;
    const auto today = std::chrono::floor<std::chrono::days>(now);
    if (m_thinnedAt != today) {
        m_thinnedAt = today;
        if (const auto done = m_history.thin(now); !done)
            warnOnce(done.error());
    }
    const auto done = m_history.append(changes);
    if (!done)
        warnOnce(done.error());
    m_hasRecorded = m_hasRecorded || done;
    if (!m_keptAt || now - *m_keptAt >= betweenKeeps || now < *m_keptAt) {
        m_keptAt = now;
        keep();
    }
}

void QuotaForecasts::keep()
{
    QJsonObject buckets;
    for (const auto &[key, followed] : m_buckets) {
        if (!followed.forecast)
            continue;
        auto json = followed.forecast->toJson();
        json.insert(u"kind"_s, followed.window);
        buckets.insert(key, json);
    }
    const QJsonObject json{{u"version"_s, 1}, {u"buckets"_s, buckets}};
    if (const auto done = m_history.keep(QJsonDocument(json).toJson(QJsonDocument::Compact)); !done)
        warnOnce(done.error());
}

/// What is kept, and after it the rows that came later.
void QuotaForecasts::readHistory(const model::QuotaSummary &summary)
{
    const auto buckets
        = QJsonDocument::fromJson(m_history.kept()).object()["buckets"_L1].toObject();
    for (const auto &group : summary.groups) {
        for (const auto &bucket : group.buckets) {
            const QString key = m_keys.value(bucket.bucketId);
            const QString window = bucket.window.value_or(QString());
            const auto *kind = forecast::windowKind(window);
            if (key.isNull() || kind == nullptr)
                continue;
            auto &followed = m_buckets[key];
            followed.window = window;
            const auto json = buckets[key].toObject();
            if (json["kind"_L1].toString() == window)
                followed.forecast = BucketForecast::fromJson(*kind, json);
            if (!followed.forecast)
                followed.forecast.emplace(*kind);
        }
    }
    const auto utcOffset = seconds(QDateTime::currentDateTime().offsetFromUtc());
    m_history.read([&](const HistoryRow &row) {
        const auto found = m_buckets.find(row.bucket);
        if (found == m_buckets.end())
            return;
        auto &followed = found->second;
        followed.recorded = row;
        const auto last = followed.forecast->lastReading();
        if (!row.reset || (last && row.time <= *last))
            return;
        followed.outlook = followed.forecast->see(
            {.time = row.time, .left = row.left, .reset = *row.reset, .utcOffset = utcOffset});
    });
    m_hasRecorded = !m_history.isEmpty();
}

void QuotaForecasts::warnOnce(const QString &reason)
{
    if (!std::exchange(m_hasWarned, true))
        qCInfo(log).noquote() << "the history cannot be written:" << reason;
}

} // namespace brimwatch::service
