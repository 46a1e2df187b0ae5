#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace brimwatch::sample {

/// The quota that the sample daemon reports. `Normal` is everyday use; the others are the extremes
/// that a view has to bear: no group, fifty groups, names of 300 characters, names in other
/// scripts and with markup in them, and a Gemini five-hour quota that is nearly used up.
enum class Scenario { Normal, Empty, Many, LongNames, OddNames, Low };

std::optional<Scenario> scenarioNamed(const QString &name);

/// Quota that somebody is using: it falls steadily, down to nothing, until its window ends, and is
/// full again then.
///
/// The speed says how many seconds of use pass in one second: 60 makes an hour of a minute. A reset
/// time is announced as far in the future as it is in that faster time. At speed 0 nobody uses
/// anything: the shares stay where they start, while the windows end as they do in real time.
class SampleQuota {
public:
    SampleQuota(Scenario scenario, double speed, QDateTime start);

    /// The quota summary at a moment: `groups` and `description`, without an envelope. A moment
    /// before the start counts as the start.
    QJsonObject summaryAt(const QDateTime &moment) const;

private:
    struct Bucket {
        QString id;
        QString name;
        QString window;
        std::chrono::milliseconds windowLength;
        std::chrono::milliseconds firstReset;
        double startFraction;
        double usedPerHour;
    };

    struct Group {
        QString name;
        QString description;
        std::vector<Bucket> buckets;
    };

    static Group groupOf(const QString &name, const QString &id, double fiveHour, double weekly);
    static std::vector<Group> groupsOf(Scenario scenario);
    QJsonObject bucketAt(
        const Bucket &bucket, const QDateTime &moment, std::chrono::milliseconds elapsed) const;

    std::vector<Group> m_groups;
    double m_speed;
    QDateTime m_start;
};

} // namespace brimwatch::sample
