#include "sample_quota.h"

#include <QHash>
#include <QJsonArray>

#include <algorithm>
#include <utility>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto fiveHours = std::chrono::milliseconds(5h);
constexpr auto week = std::chrono::milliseconds(7 * 24h);

// Half a minute and half an hour beyond the round figure, so that a countdown that cuts off what is
// smaller than its last unit still reads "3h 12m" and "4d 6h" for a while.
constexpr auto firstFiveHourReset = std::chrono::milliseconds(3h + 12min + 30s);
constexpr auto firstWeeklyReset = std::chrono::milliseconds(4 * 24h + 6h + 30min);

// A five-hour window that starts full ends nearly used up, which takes it through every colour.
constexpr double fiveHourUsePerHour = 0.19;
constexpr double weeklyUsePerHour = 0.005;

} // namespace

std::optional<Scenario> scenarioNamed(const QString &name)
{
    static const QHash<QString, Scenario> scenarios{
        {u"normal"_s, Scenario::Normal},
        {u"empty"_s, Scenario::Empty},
        {u"many"_s, Scenario::Many},
        {u"long-names"_s, Scenario::LongNames},
        {u"odd-names"_s, Scenario::OddNames},
        {u"low"_s, Scenario::Low},
    };
    const auto found = scenarios.constFind(name);
    return found == scenarios.cend() ? std::nullopt : std::optional(*found);
}

SampleQuota::SampleQuota(Scenario scenario, double speed, QDateTime start)
    : m_groups(groupsOf(scenario))
    , m_speed(speed)
    , m_start(std::move(start))
{
}

SampleQuota::Group SampleQuota::groupOf(
    const QString &name, const QString &id, double fiveHour, double weekly)
{
    return {
        .name = name,
        .description = u"Quota that these models share"_s,
        .buckets = {
            { .id = id + "-5h"_L1,
                .name = u"Five-hour limit"_s,
                .window = u"5h"_s,
                .windowLength = fiveHours,
                .firstReset = firstFiveHourReset,
                .startFraction = fiveHour,
                .usedPerHour = fiveHourUsePerHour },
            { .id = id + "-weekly"_L1,
                .name = u"Weekly limit"_s,
                .window = u"weekly"_s,
                .windowLength = week,
                .firstReset = firstWeeklyReset,
                .startFraction = weekly,
                .usedPerHour = weeklyUsePerHour },
        },
    };
}

std::vector<SampleQuota::Group> SampleQuota::groupsOf(Scenario scenario)
{
    if (scenario == Scenario::Empty)
        return {};

    std::vector groups{
        groupOf(u"Gemini Models"_s, u"gemini"_s, 0.80, 0.55),
        groupOf(u"Claude & GPT Models"_s, u"claude"_s, 1.0, 0.64),
        groupOf(u"Argon Models"_s, u"argon"_s, 0.12, 0.30),
    };
    switch (scenario) {
    case Scenario::Normal:
    case Scenario::Empty:
        break;
    case Scenario::Many:
        for (int number = int(groups.size()) + 1; number <= 50; ++number) {
            groups.push_back(groupOf(u"Model family %1"_s.arg(number), u"family-%1"_s.arg(number),
                (number % 11) / 10.0, (number % 7) / 6.0));
        }
        break;
    case Scenario::LongNames:
        for (auto &group : groups) {
            group.name = group.name.leftJustified(300, u'm');
            group.description = group.description.leftJustified(300, u'd');
            for (auto &bucket : group.buckets)
                bucket.name = bucket.name.leftJustified(300, u'b');
        }
        break;
    case Scenario::OddNames:
        groups[0].name = u"ג'מיני Gemini مودلز"_s;
        groups[0].description = u"‏מכסה משותפת לכל הדגמים‏"_s;
        groups[0].buckets[0].name = u"حد الخمس ساعات"_s;
        groups[1].name = u"🧠🚀 Claude 👩🏽‍💻 & GPT"_s;
        groups[1].description = u"🇪🇺 One line\nand a second one\twith a tab"_s;
        groups[2].name = u"<b>Argon</b> & <img src=\"file:///nothing.png\"> &amp; &lt;Sons&gt;"_s;
        groups[2].description = u"<a href=\"http://127.0.0.1/\">Not a link</a> %1 %s"_s;
        groups[2].buckets[1].name = u"<h1>Weekly</h1>"_s;
        break;
    case Scenario::Low:
        groups[0].buckets[0].startFraction = 0.08;
        break;
    }
    return groups;
}

QJsonObject SampleQuota::summaryAt(const QDateTime &moment) const
{
    const auto elapsed = std::max(
        std::chrono::milliseconds(m_start.msecsTo(moment)), std::chrono::milliseconds(0));
    QJsonArray groups;
    for (const auto &group : m_groups) {
        QJsonArray buckets;
        for (const auto &bucket : group.buckets)
            buckets.append(bucketAt(bucket, moment, elapsed));
        groups.append(QJsonObject{
            {u"displayName"_s, group.name},
            {u"description"_s, group.description},
            {u"buckets"_s, buckets},
        });
    }
    return {
        {u"groups"_s, groups},
        {u"description"_s, u"Sample quota"_s},
    };
}

QJsonObject SampleQuota::bucketAt(
    const Bucket &bucket, const QDateTime &moment, std::chrono::milliseconds elapsed) const
{
    const bool frozen = m_speed == 0;
    const auto passed
        = frozen ? elapsed : std::chrono::milliseconds(qint64(double(elapsed.count()) * m_speed));

    auto untilReset = bucket.firstReset - passed;
    auto inUseFor = passed;
    double fraction = bucket.startFraction;
    if (untilReset <= 0ms) {
        inUseFor = (passed - bucket.firstReset) % bucket.windowLength;
        untilReset = bucket.windowLength - inUseFor;
        fraction = 1.0;
    }
    if (frozen) {
        fraction = bucket.startFraction;
    } else {
        const auto hours = std::chrono::duration<double, std::ratio<3600>>(inUseFor).count();
        fraction = std::max(0.0, fraction - hours * bucket.usedPerHour);
    }

    // Both forms of a time are in use, with and without a fraction of a second.
    const auto reset = moment.toUTC().addMSecs(untilReset.count());
    const auto form = bucket.windowLength == fiveHours ? Qt::ISODateWithMs : Qt::ISODate;
    return {
        {u"bucketId"_s, bucket.id},
        {u"displayName"_s, bucket.name},
        {u"window"_s, bucket.window},
        {u"remainingFraction"_s, fraction},
        {u"resetTime"_s, reset.toString(form)},
    };
}

} // namespace brimwatch::sample
