#pragma once

#include <QSet>
#include <QString>

#include <functional>

namespace brimwatch {
class Clock;
}

namespace brimwatch::model {
struct QuotaBucket;
struct QuotaSummary;
} // namespace brimwatch::model

namespace brimwatch::platform {
class Notifier;
}

namespace brimwatch::service {

class SettingsStore;

/// A daemon may give ids of any length, which are remembered here and by the desktop.
QString boundedId(const QString &bucketId);

/// Posts an alert for each bucket of the Gemini group that has fallen to the user's threshold or
/// below it. A bucket that stays low raises no other alert until it has risen above the threshold.
/// The other groups never raise one, whatever the label shows.
///
/// The alerts raised are remembered in memory only: after a restart of the program, a bucket that
/// is still low raises one again. They are remembered while alerts are switched off, so that
/// switching them on again repeats none.
class LowQuotaAlerts {
public:
    /// As many alerts are remembered, also for buckets that are no longer in the daemon's answer.
    static constexpr qsizetype longestMemory = 4096;

    /// What is private taken out of a text that leaves the program.
    using Redact = std::function<QString(const QString &)>;

    /// All references outlive the alerts.
    LowQuotaAlerts(const Clock &clock, const SettingsStore &settings, platform::Notifier &notifier,
        Redact redact);

    /// Asks the desktop once whether we may notify, without waiting for the answer.
    void requestNotificationPermission();
    void checkLowQuotaNotifications(const model::QuotaSummary &summary);

private:
    void sendLowQuotaNotification(const model::QuotaBucket &bucket);

    const Clock &m_clock;
    const SettingsStore &m_settings;
    platform::Notifier &m_notifier;
    Redact m_redact;
    QSet<QString> m_lastNotifiedBucketIds; ///< As boundedId() has them.
};

} // namespace brimwatch::service
