#pragma once

#include <QDateTime>
#include <QString>

namespace brimwatch::views {

/// How long ago `date` was at `now`, in whole seconds, minutes or hours: "just now" (less than 5
/// seconds, or still to come), "42s ago", "5m ago", "2h ago".
QString timeAgo(const QDateTime &date, const QDateTime &now);
/// The same for those to whom each change is read out: "just now" for all of the first minute.
QString spokenTimeAgo(const QDateTime &date, const QDateTime &now);

} // namespace brimwatch::views
