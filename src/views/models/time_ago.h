#pragma once

#include <QDateTime>
#include <QString>

namespace brimwatch::views {

/// How long ago `date` was at `now`, in whole seconds, minutes or hours: "just now" (less than 5
/// seconds ago, or in the future), "42s ago", "5m ago", "2h ago".
QString timeAgo(const QDateTime &date, const QDateTime &now);
/// The same for screen readers, which read out each change: "just now" during the first minute.
QString accessibleTimeAgo(const QDateTime &date, const QDateTime &now);

} // namespace brimwatch::views
