#include "service/low_quota_alerts.h"

#include "core/clock.h"
#include "model/quota_records.h"
#include "platform/notifier.h"
#include "service/settings.h"

#include <QCryptographicHash>

#include <utility>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

QString boundedId(const QString &bucketId)
{
    constexpr qsizetype longest = 128;
    if (bucketId.size() <= longest)
        return bucketId;
    return QString::fromLatin1(
        QCryptographicHash::hash(bucketId.toUtf8(), QCryptographicHash::Sha256).toHex());
}

LowQuotaAlerts::LowQuotaAlerts(
    const Clock &clock, const SettingsStore &settings, platform::Notifier &notifier, Redact redact)
    : m_clock(clock)
    , m_settings(settings)
    , m_notifier(notifier)
    , m_redact(std::move(redact))
{
}

void LowQuotaAlerts::requestNotificationPermission()
{
    m_notifier.requestAuthorization();
}

void LowQuotaAlerts::checkLowQuotaNotifications(const model::QuotaSummary &summary)
{
    if (!m_settings.value(settings::notifyOnLowQuota))
        return;
    const auto group = summary.geminiGroup();
    if (!group)
        return;
    const double threshold = m_settings.value(settings::lowQuotaThreshold);
    for (const auto &bucket : group->buckets) {
        const QString id = boundedId(bucket.bucketId);
        if (bucket.percentage() <= threshold) {
            if (!m_lastNotifiedBucketIds.contains(id)) {
                m_lastNotifiedBucketIds.insert(id);
                sendLowQuotaNotification(bucket);
            }
        } else {
            m_lastNotifiedBucketIds.remove(id);
        }
    }
    // A daemon with new ids in each answer must not fill our memory.
    if (m_lastNotifiedBucketIds.size() > longestMemory) {
        QSet<QString> present;
        for (const auto &bucket : group->buckets)
            present.insert(boundedId(bucket.bucketId));
        m_lastNotifiedBucketIds.intersect(present);
    }
}

void LowQuotaAlerts::sendLowQuotaNotification(const model::QuotaBucket &bucket)
{
    const QString percentage = bucket.formattedPercentage();
    m_notifier.post({.identifier = "low_quota_"_L1 + boundedId(bucket.bucketId),
        .title = "Brimwatch Alert: "_L1 + percentage + " Remaining"_L1,
        .body = m_redact(bucket.displayName + " has dropped to "_L1 + percentage
            + ". Fully refreshes in "_L1 + bucket.resetCountdownString(m_clock.now()) + u'.')});
}

} // namespace brimwatch::service
