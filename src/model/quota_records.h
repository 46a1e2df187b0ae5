#pragma once

#include "core/date_styles.h"
#include "model/color_token.h"
#include "model/iso8601.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace brimwatch::model {

/// The health of a bucket: healthy from 60 % left, warning from 20 %, critical below that.
enum class QuotaTier { healthy, warning, critical };

/// The time from `now` to `reset`: "2d 3h", "5h 2m", "12m 5s"; "Refreshed" once it has passed.
QString countdownText(const QDateTime &now, const QDateTime &reset);
/// A countdown for a text that is not updated each second: "12m" for "12m 5s".
QString withoutSeconds(const QString &countdown);

/// The color of a tier in the label: green, orange or red. The green is AdaptiveHealthyGreen, which
/// differs on light and dark panels.
ColorToken labelColor(QuotaTier tier);

/// One quota window of a group of models, as the daemon gives it.
struct QuotaBucket {
    QString bucketId;
    QString displayName;
    std::optional<QString> description = {};
    std::optional<QString> window = {}; ///< "5h", "weekly" or anything else the daemon says.
    double remainingFraction = 0; ///< 1.0 is the full quota; values outside 0 to 1 occur.
    std::optional<Timestamp> resetTime = {};

    /// Identity in lists.
    const QString &id() const { return bucketId; }

    /// Percent left, 0 to 100.
    double percentage() const;
    /// Percent left with one decimal: "42.5%".
    QString formattedPercentage() const;
    /// Percent left, whole: "43%".
    QString compactPercentage() const;
    QuotaTier statusTier() const;
    /// For views: healthy is the system's green.
    ColorToken statusColor() const;
    /// For the panel's label: labelColor() of the tier.
    ColorToken statusNSColor() const;

    /// Absent when `resetTime` is absent or no ISO 8601 internet date-time.
    std::optional<QDateTime> parsedResetDate() const;
    /// The time of the reset in the time zone of `now`: without its date when that is today or
    /// past, else with it. Absent without a parsed date.
    std::optional<QString> formattedResetTimestamp(
        const QDateTime &now, const DateStyles &styles = DateStyles::user()) const;
    /// countdownText(), or "Active" without a parsed date.
    QString resetCountdownString(const QDateTime &now) const;

    /// For views: formattedResetTimestamp(), empty when absent.
    QString resetTimestampText(const QDateTime &now) const;
    bool hasWindow() const { return window.has_value(); }
    /// The window in upper case as the locale-independent full mapping has it ("straße" gives
    /// "STRASSE"); empty when absent.
    QString windowText() const;

    bool operator==(const QuotaBucket &) const = default;
};

/// A family of models that share quota.
struct QuotaGroup {
    QString displayName;
    std::optional<QString> description = {};
    QList<QuotaBucket> buckets = {}; ///< In the daemon's order.

    /// Identity in lists.
    const QString &id() const { return displayName; }

    /// Five-hour buckets first, then weekly ones, then the rest; the daemon's order among equals.
    /// The id alone can give a bucket its rank.
    QList<QuotaBucket> sortedBuckets() const;
    /// The name of the family's symbol: "cpu", "sparkles", "brain" or "gauge.medium".
    QString iconName() const;
    /// The family's place in the list: Gemini 0, Argon 1, Claude 2, others 3.
    int groupSortPriority() const;

    /// The description, empty when absent.
    QString descriptionText() const { return description.value_or(QString()); }
    int bucketCount() const { return static_cast<int>(buckets.size()); }

    bool operator==(const QuotaGroup &) const = default;
};

/// All quota groups that the daemon knows.
struct QuotaSummary {
    QList<QuotaGroup> groups = {}; ///< In the daemon's order.
    std::optional<QString> description = {};

    // The first group of each family; absent without one.
    std::optional<QuotaGroup> geminiGroup() const;
    std::optional<QuotaGroup> argonGroup() const;
    std::optional<QuotaGroup> claudeGroup() const;

    /// By family; the daemon's order within one.
    QList<QuotaGroup> sortedGroups() const;
    /// Gemini's five-hour bucket, else its first one; without Gemini the first bucket of the first
    /// group.
    std::optional<QuotaBucket> primaryBucket() const;
    /// Gemini's bucket with least left, the first of equals.
    std::optional<QuotaBucket> lowestGeminiBucket() const;

    bool operator==(const QuotaSummary &) const = default;
};

/// The whole body of the daemon's answer. `code` and `message` are kept as the daemon sent them and
/// not interpreted.
struct QuotaSummaryEnvelope {
    std::optional<QuotaSummary> response = {};
    std::optional<QString> code = {};
    std::optional<QString> message = {};

    bool operator==(const QuotaSummaryEnvelope &) const = default;
};

} // namespace brimwatch::model
