#include "cli/history/words.h"

#include "core/clock.h"
#include "core/date_styles.h"
#include "core/plain_text.h"
#include "model/percent.h"
#include "model/quota_records.h"

#include <QLocale>

#include <algorithm>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;
using std::chrono::sys_seconds;

namespace {

constexpr int hoursOfDay = 24;
constexpr int daysOfWeek = 7;

QString lengthWords(sys_seconds from, sys_seconds to)
{
    const auto moment = [](sys_seconds time) {
        return QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count(), Qt::UTC);
    };
    return model::withoutSeconds(model::countdownText(moment(from), moment(to)));
}

QString clockTime(int hour)
{
    return QString::number(hour) + ":00"_L1;
}

} // namespace

QString nameOf(const BucketUsage &usage)
{
    constexpr qsizetype longest = 60;
    // No XML document may have these two.
    QString name = usage.id;
    name.removeIf([](QChar c) { return c.unicode() >= 0xfffe; });
    return asOneLine(name, longest);
}

QString windowName(const BucketUsage &usage)
{
    if (usage.window.isEmpty())
        return {};
    return usage.window == "weekly"_L1 ? u"week"_s : u"five hours"_s;
}

QDateTime momentOf(sys_seconds time, const QDateTime &now)
{
    return inZoneOf(now, QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count(), Qt::UTC));
}

QString momentText(sys_seconds time, const QDateTime &now)
{
    return DateStyles::user().dateAbbreviatedTimeShortened(momentOf(time, now));
}

QString percentOf(double share)
{
    return model::wholePercent(model::clampedPercentage(share));
}

QString courseWords(const WindowUsage &window, const QDateTime &now)
{
    const auto time = sys_seconds(std::chrono::seconds(now.toSecsSinceEpoch()));
    const double used = usedAt(window, time);
    const QString reset = lengthWords(time, window.reset);
    if (used >= 1)
        return "used up, full again in "_L1 + reset;
    return percentOf(used) + " used, resets in "_L1 + reset + ", evenly used it would be "_L1
        + percentOf(goneOf(window, now));
}

QString ranOutWords(const WindowUsage &window)
{
    if (!window.ranOut)
        return {};
    return *window.ranOut >= window.reset
        ? u"ran out"_s
        : QString(
              "ran out "_L1 + lengthWords(*window.ranOut, window.reset) + " before the reset"_L1);
}

QString windowWords(const WindowUsage &window)
{
    const QString used = percentOf(window.peak) + " used"_L1;
    return window.ranOut ? QString(used + ", "_L1 + ranOutWords(window)) : used;
}

QString hoursWords(const BucketUsage &usage)
{
    const double most = *std::max_element(usage.hours.begin(), usage.hours.end());
    if (most <= 0)
        return {};
    for (int day = 1; day <= daysOfWeek; ++day) {
        for (int hour = 0; hour < hoursOfDay; ++hour) {
            if (usage.hours.at(hourIndex(day, hour)) < most)
                continue;
            return "most is used on "_L1 + QLocale(QLocale::English).dayName(day) + "s from "_L1
                + clockTime(hour) + " to "_L1 + clockTime(hour + 1);
        }
    }
    return {};
}

std::size_t hourIndex(int day, int hour)
{
    // The epoch began with a Thursday.
    constexpr int thursday = 4;
    const int index = (day - thursday + daysOfWeek) % daysOfWeek * hoursOfDay + hour;
    return static_cast<std::size_t>(index);
}

} // namespace brimwatch::cli
