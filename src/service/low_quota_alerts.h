#pragma once

#include "service/low_quota_alerting.h"

#include <QSet>
#include <QString>

namespace brimwatch {
class Clock;
}

namespace brimwatch::model {
struct QuotaBucket;
}

namespace brimwatch::platform {
class Notifier;
}

namespace brimwatch::service {

class SettingsStore;

/// Announces each bucket of the Gemini group that has fallen to the user's threshold or below it,
/// once per fall: one that stays low is announced again only after it has risen above the
/// threshold. The other groups never raise an alert, whatever the label shows.
///
/// What was announced is kept in memory alone: after a restart of the program, what is low then is
/// announced once more. It is kept while alerts are switched off, so that switching them on again
/// repeats nothing.
class LowQuotaAlerts final : public LowQuotaAlerting {
public:
    /// So many announcements are remembered for buckets that the daemon no longer speaks of.
    static constexpr qsizetype longestMemory = 4096;

    /// All of it outlives the alerts.
    LowQuotaAlerts(const Clock &clock, const SettingsStore &settings, platform::Notifier &notifier);

    void requestNotificationPermission() override;
    void checkLowQuotaNotifications(const model::QuotaSummary &summary) override;

private:
    void sendLowQuotaNotification(const model::QuotaBucket &bucket);

    const Clock &m_clock;
    const SettingsStore &m_settings;
    platform::Notifier &m_notifier;
    QSet<QString> m_lastNotifiedBucketIds;
};

} // namespace brimwatch::service
