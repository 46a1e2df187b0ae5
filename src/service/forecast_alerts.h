#pragma once

#include "forecast/outlook.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <functional>

namespace brimwatch::model {
struct QuotaBucket;
struct QuotaSummary;
} // namespace brimwatch::model

namespace brimwatch::platform {
class Notifier;
}

namespace brimwatch::service {

class SettingsStore;

/// Two alerts for the buckets of all families, both off unless the settings file switches them on.
///
/// - A quota is going to run out before its reset. Given once for each bucket and window, and not
///   for a quota that is low already.
/// - A quota that was low or used up is full again, also when that is before its reset.
///
/// Neither is given while alerts are switched off.
class ForecastAlerts {
public:
    /// What is private taken out of a text that leaves the program.
    using Redact = std::function<QString(const QString &)>;
    using OutlookOf = std::function<forecast::Outlook(const model::QuotaBucket &)>;

    /// All references outlive the alerts.
    ForecastAlerts(const SettingsStore &settings, platform::Notifier &notifier, Redact redact);

    /// To be called once for each refresh that has brought quota.
    void check(
        const model::QuotaSummary &summary, const OutlookOf &outlookOf, const QDateTime &now);

private:
    void warn(const model::QuotaBucket &bucket, const QString &key,
        const forecast::Outlook &outlook, const QDateTime &now);
    void tellReturn(const model::QuotaBucket &bucket, const QString &key);

    const SettingsStore &m_settings;
    platform::Notifier &m_notifier;
    Redact m_redact;
    QHash<QString, double> m_lowest; ///< Percent left of the buckets that are low, by bounded id.
};

} // namespace brimwatch::service
