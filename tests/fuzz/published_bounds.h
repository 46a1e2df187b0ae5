#pragma once

#include "fuzz.h"
#include "platform/published_state.h"

#include <cmath>

namespace brimwatch::fuzz {

inline void requireLine(const QString &text, qsizetype longest)
{
    require(text.size() <= longest, "a text is within its bound");
    require(isOneLine(text), "a text is one line");
    require(text.isValidUtf16(), "a text is valid UTF-16");
}

inline void requireBounds(const platform::PublishedBucket &bucket)
{
    using platform::PublishedState;
    requireLine(bucket.id, PublishedState::longestName);
    requireLine(bucket.name, PublishedState::longestName);
    requireLine(bucket.window, PublishedState::longestName);
    require(std::isfinite(bucket.fraction), "a fraction is finite");
    require(
        bucket.percentage >= 0 && bucket.percentage <= 100, "a percentage is between 0 and 100");
}

/// What the bus shows of a state is within its bounds, wherever the state came from.
inline void requireBounds(const platform::PublishedState &state)
{
    using platform::PublishedState;
    require(state.items.size() <= PublishedState::mostItems
            && state.groups.size() <= PublishedState::mostGroups,
        "there are at most so many items and groups");
    requireLine(state.title, PublishedState::longestText);
    requireLine(state.error, PublishedState::longestText);
    for (const auto &item : state.items)
        requireLine(item.text, PublishedState::longestName);
    if (state.lowest)
        requireBounds(*state.lowest);
    qsizetype buckets = 0;
    for (const auto &group : state.groups) {
        requireLine(group.name, PublishedState::longestName);
        requireLine(group.family, PublishedState::longestName);
        for (const auto &bucket : group.buckets)
            requireBounds(bucket);
        buckets += group.buckets.size();
    }
    require(buckets <= PublishedState::mostBuckets, "there are at most so many buckets");
}

} // namespace brimwatch::fuzz
