#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>

#include <chrono>
#include <cstdint>
#include <optional>

namespace brimwatch::forecast {

/// The fields of one line of comma-separated values as RFC 4180 has them, without its end of line.
/// Absent when a quoted field does not end, or when something follows its end.
std::optional<QList<QByteArray>> csvFields(QByteArrayView line);

/// A field as it is written: quoted where it must be. Ends of lines are kept; who reads line by
/// line gives it none.
QByteArray csvField(const QByteArray &text);

/// A time in seconds since the epoch; absent when it is none between the years 1970 and 9999.
std::optional<std::chrono::sys_seconds> csvTime(QByteArrayView field);
/// A finite number; absent when it is none.
std::optional<double> csvNumber(QByteArrayView field);

} // namespace brimwatch::forecast
