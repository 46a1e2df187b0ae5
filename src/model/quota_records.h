#pragma once

#include "core/date_styles.h"
#include "model/color_token.h"
#include "model/iso8601.h"

#include <QDateTime>
#include <QList>
#include <QMetaType>
#include <QString>

#include <optional>

namespace brimwatch::model {

/// The health of a bucket. From 60 % on healthy, from 20 % on warning, below that critical.
enum class QuotaTier { healthy, warning, critical };

/// How long it is from `now` to `reset`: "2d 3h", "5h 2m", "12m 5s"; "Refreshed" when it has come.
QString countdownText(const QDateTime &now, const QDateTime &reset);
/// A countdown for what is not written anew each second: "12m" for "12m 5s".
QString withoutSeconds(const QString &countdown);

/// One quota window of a group of models, as the daemon gives it.
struct QuotaBucket {
    Q_GADGET
    Q_PROPERTY(QString bucketId MEMBER bucketId CONSTANT FINAL)
    Q_PROPERTY(QString displayName MEMBER displayName CONSTANT FINAL)
    Q_PROPERTY(bool hasWindow READ hasWindow CONSTANT FINAL)
    Q_PROPERTY(QString windowText READ windowText CONSTANT FINAL)
    Q_PROPERTY(double percentage READ percentage CONSTANT FINAL)
    Q_PROPERTY(QString formattedPercentage READ formattedPercentage CONSTANT FINAL)
    Q_PROPERTY(brimwatch::model::ColorToken statusColor READ statusColor CONSTANT FINAL)

public:
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
    /// For the panel's label: healthy is our adaptive green.
    ColorToken statusNSColor() const;

    /// Absent when `resetTime` is absent or no ISO 8601 internet date-time.
    std::optional<QDateTime> parsedResetDate() const;
    /// When the reset comes, in the time zone of `now`: the time alone today or for a time gone by,
    /// else date and time. Absent without a parsed date.
    std::optional<QString> formattedResetTimestamp(
        const QDateTime &now, const DateStyles &styles = DateStyles::user()) const;
    /// "2d 3h", "5h 2m", "12m 5s"; "Active" without a date, "Refreshed" when it has come.
    Q_INVOKABLE QString resetCountdownString(const QDateTime &now) const;

    /// What views read of the optional fields: empty means absent.
    Q_INVOKABLE QString resetTimestampText(const QDateTime &now) const;
    bool hasWindow() const { return window.has_value(); }
    /// The window in upper case as the locale-independent full mapping has it ("straße" gives
    /// "STRASSE"); empty when absent.
    QString windowText() const;

    bool operator==(const QuotaBucket &) const = default;
};

/// A family of models that share quota.
struct QuotaGroup {
    Q_GADGET
    Q_PROPERTY(QString displayName MEMBER displayName CONSTANT FINAL)
    Q_PROPERTY(QString descriptionText READ descriptionText CONSTANT FINAL)
    Q_PROPERTY(QString iconName READ iconName CONSTANT FINAL)
    Q_PROPERTY(int bucketCount READ bucketCount CONSTANT FINAL)
    Q_PROPERTY(QList<brimwatch::model::QuotaBucket> sortedBuckets READ sortedBuckets CONSTANT FINAL)

public:
    QString displayName;
    std::optional<QString> description = {};
    QList<QuotaBucket> buckets = {}; ///< In the daemon's order.

    /// Identity in lists.
    const QString &id() const { return displayName; }

    /// Five-hour buckets first, then weekly ones, then the rest; the daemon's order among equals.
    /// The id alone can give a bucket its rank.
    QList<QuotaBucket> sortedBuckets() const;
    /// The symbol of the family: "cpu", "sparkles", "brain" or "gauge.medium".
    QString iconName() const;
    /// Where the group stands: Gemini 0, Argon 1, Claude 2, others 3.
    int groupSortPriority() const;

    /// The description, empty when absent.
    QString descriptionText() const { return description.value_or(QString()); }
    int bucketCount() const { return static_cast<int>(buckets.size()); }

    bool operator==(const QuotaGroup &) const = default;
};

/// What the daemon says of all quota.
struct QuotaSummary {
    Q_GADGET

public:
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

/// The whole body of the daemon's answer. `code` and `message` are carried as they came and mean
/// nothing here.
struct QuotaSummaryEnvelope {
    std::optional<QuotaSummary> response = {};
    std::optional<QString> code = {};
    std::optional<QString> message = {};

    bool operator==(const QuotaSummaryEnvelope &) const = default;
};

} // namespace brimwatch::model
