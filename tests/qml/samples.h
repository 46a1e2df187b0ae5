#pragma once

#include "discovery/daemon_info.h"
#include "model/quota_records.h"

namespace brimwatch::test {

/// Noon of a day in the tests' own time zone.
QDateTime sampleNow();
/// A daemon at port 42424.
discovery::DaemonInfo sampleDaemon();

/// A bucket that resets `resetIn` seconds after `sampleNow()`.
model::QuotaBucket sampleBucket(const QString &id, const QString &name,
    const std::optional<QString> &window, double fraction, std::optional<qint64> resetIn);

/// Gemini, Argon and Claude, healthy and less so.
model::QuotaSummary sampleSummary();
/// The same three, all nearly used up or beyond.
model::QuotaSummary lowSummary();
/// Groups "Group 1" to "Group N", one bucket each.
model::QuotaSummary manyGroups(int count);
/// Names of 300 characters, everywhere that a daemon can put one.
model::QuotaSummary longNames();
/// Right-to-left, emoji, markup and line breaks.
model::QuotaSummary oddNames();

} // namespace brimwatch::test
