#include "views/models/time_ago.h"

namespace brimwatch::views {

using namespace Qt::Literals::StringLiterals;

QString timeAgo(const QDateTime &date, const QDateTime &now)
{
    constexpr qint64 minute = 60;
    constexpr qint64 hour = 60 * minute;
    const qint64 seconds = date.msecsTo(now) / 1000;
    if (seconds < 5)
        return u"just now"_s;
    if (seconds < minute)
        return QString::number(seconds) + "s ago"_L1;
    if (seconds >= hour)
        return QString::number(seconds / hour) + "h ago"_L1;
    return QString::number(seconds / minute) + "m ago"_L1;
}

QString accessibleTimeAgo(const QDateTime &date, const QDateTime &now)
{
    constexpr qint64 minute = 60;
    return timeAgo(date, date.secsTo(now) < minute ? date : now);
}

} // namespace brimwatch::views
