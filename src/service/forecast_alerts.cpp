#include "service/forecast_alerts.h"

#include "core/plain_text.h"
#include "forecast/outlook_text.h"
#include "model/quota_records.h"
#include "platform/notifier.h"
#include "service/low_quota_alerts.h"
#include "service/settings.h"

#include <algorithm>
#include <utility>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Rising by so many percent is a reset, and no correction.
constexpr double leastRise = 10;
/// What is shown as full.
constexpr double full = 99.95;

} // namespace

ForecastAlerts::ForecastAlerts(
    const SettingsStore &settings, platform::Notifier &notifier, Redact redact)
    : m_settings(settings)
    , m_notifier(notifier)
    , m_redact(std::move(redact))
{
}

void ForecastAlerts::check(
    const model::QuotaSummary &summary, const OutlookOf &outlookOf, const QDateTime &now)
{
    const bool alertsAreOn = m_settings.value(settings::notifyOnLowQuota);
    const bool tellsRunOut = alertsAreOn && m_settings.value(settings::notifyOnRunOut);
    const double threshold = m_settings.value(settings::lowQuotaThreshold);
    for (const auto &group : summary.groups) {
        for (const auto &bucket : group.buckets) {
            const QString key = boundedId(bucket.bucketId);
            const double percentage = bucket.percentage();
            const auto lowest = m_lowest.constFind(key);
            const bool wasLow = lowest != m_lowest.cend();
            if (wasLow && percentage > threshold && percentage - *lowest >= leastRise) {
                if (alertsAreOn && m_settings.value(settings::notifyOnReturn))
                    tellReturn(bucket, key);
            }
            if (percentage > threshold)
                m_lowest.remove(key);
            else if (wasLow || m_lowest.size() < LowQuotaAlerts::longestMemory)
                m_lowest[key] = wasLow ? std::min(*lowest, percentage) : percentage;
            if (percentage <= threshold || !tellsRunOut)
                continue;
            if (const auto outlook = outlookOf(bucket); outlook.isFirstWarning)
                warn(bucket, key, outlook, now);
        }
    }
}

void ForecastAlerts::warn(const model::QuotaBucket &bucket, const QString &key,
    const forecast::Outlook &outlook, const QDateTime &now)
{
    const auto text = forecast::textOf(bucket, outlook);
    m_notifier.post({.identifier = "run_out_"_L1 + key,
        .title = u"Brimwatch Alert: Quota May Not Last"_s,
        .body = m_redact(bucket.displayName + u' ' + text.words(now) + ": "_L1
            + bucket.formattedPercentage() + " remaining, fully refreshes in "_L1
            + bucket.resetCountdownString(now) + u'.')});
}

void ForecastAlerts::tellReturn(const model::QuotaBucket &bucket, const QString &key)
{
    const bool isFull = bucket.percentage() >= full;
    m_notifier.post({.identifier = "refilled_"_L1 + key,
        .title = "Brimwatch Alert: "_L1 + bucket.formattedPercentage() + " Remaining"_L1,
        .body = m_redact(
            bucket.displayName + (isFull ? " is full again."_L1 : " has been refilled."_L1))});
}

} // namespace brimwatch::service
