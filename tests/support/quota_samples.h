#pragma once

#include "model/quota_records.h"

#include <QString>

#include <optional>

namespace brimwatch::model {

/// A bucket as short as a test can say it. Without a window give std::nullopt.
inline QuotaBucket sampleBucket(
    const QString &id, const std::optional<QString> &window, double remainingFraction)
{
    return {.bucketId = id,
        .displayName = id,
        .window = window,
        .remainingFraction = remainingFraction};
}

/// A group with a five-hour and a weekly bucket.
inline QuotaGroup sampleGroup(const QString &name, double fiveHours, double weekly)
{
    using namespace Qt::Literals::StringLiterals;
    return {.displayName = name,
        .buckets = {sampleBucket(name + u"-five", u"5h"_s, fiveHours),
            sampleBucket(name + u"-week", u"weekly"_s, weekly)}};
}

} // namespace brimwatch::model
