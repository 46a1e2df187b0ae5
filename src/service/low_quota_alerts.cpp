#include "service/low_quota_alerts.h"

#include "core/clock.h"
#include "model/quota_records.h"
#include "platform/notifier.h"
#include "service/settings.h"

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

LowQuotaAlerts::LowQuotaAlerts(
    const Clock &clock, const SettingsStore &settings, platform::Notifier &notifier)
    : m_clock(clock)
    , m_settings(settings)
    , m_notifier(notifier)
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
        if (bucket.percentage() <= threshold) {
            if (!m_lastNotifiedBucketIds.contains(bucket.bucketId)) {
                m_lastNotifiedBucketIds.insert(bucket.bucketId);
                sendLowQuotaNotification(bucket);
            }
        } else {
            m_lastNotifiedBucketIds.remove(bucket.bucketId);
        }
    }
    // A daemon with new ids in each answer must not fill our memory.
    if (m_lastNotifiedBucketIds.size() > longestMemory) {
        QSet<QString> present;
        for (const auto &bucket : group->buckets)
            present.insert(bucket.bucketId);
        m_lastNotifiedBucketIds.intersect(present);
    }
}

void LowQuotaAlerts::sendLowQuotaNotification(const model::QuotaBucket &bucket)
{
    const QString percentage = bucket.formattedPercentage();
    m_notifier.post({.identifier = "low_quota_"_L1 + bucket.bucketId,
        .title = "Brimwatch Alert: "_L1 + percentage + " Remaining"_L1,
        .body = bucket.displayName + " has dropped to "_L1 + percentage + ". Fully refreshes in "_L1
            + bucket.resetCountdownString(m_clock.now()) + u'.'});
}

} // namespace brimwatch::service
