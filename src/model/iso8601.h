#pragma once

#include <QDateTime>
#include <QStringView>

#include <optional>

namespace brimwatch::model {

/// The moment that an ISO 8601 internet date-time names (RFC 3339 with "T", seconds and a zone, "Z"
/// or "+05:30"), with a fraction of one to nine digits (cut to milliseconds) or without. In UTC.
///
/// Absent for everything else, among it what other readers roll over or guess: 30 February, 24:00,
/// a leap second, spaces around the text, years before 1583, when the calendar was another one.
std::optional<QDateTime> parseInternetDateTime(QStringView text);

} // namespace brimwatch::model
