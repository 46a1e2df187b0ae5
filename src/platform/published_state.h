#pragma once

#include "model/quota_records.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

namespace brimwatch::platform {

/// One bucket as other programs see it.
struct PublishedBucket {
    QString id;
    QString name;
    QString window; ///< "5h", "weekly" or anything else the daemon says; empty when it says none.
    double fraction = 0; ///< As the daemon gave it; values outside 0 to 1 occur.
    double percentage = 0; ///< 0 to 100.
    model::QuotaTier tier = model::QuotaTier::critical;
    std::optional<std::int64_t> resetTime = {}; ///< Seconds since the epoch; absent when not known.

    bool operator==(const PublishedBucket &) const = default;
};

/// One group of models as other programs see it.
struct PublishedGroup {
    QString name;
    QString family; ///< "gemini", "argon", "claude" or "other".
    QList<PublishedBucket> buckets; ///< In the order of the popover.

    bool operator==(const PublishedGroup &) const = default;
};

/// One number of the label as other programs see it.
struct PublishedItem {
    QString text; ///< "G 5h: 80%"
    model::QuotaTier tier = model::QuotaTier::critical;

    bool operator==(const PublishedItem &) const = default;
};

/// What other programs of the user's session may know of us. Whoever makes it keeps it within the
/// bounds, and leaves out what is private: the daemon's token, and where the user's files are.
struct PublishedState {
    static constexpr qsizetype longestName = 200; ///< In UTF-16 units; ids and windows too.
    static constexpr qsizetype longestText = 400; ///< Title and error.
    static constexpr qsizetype mostItems = 16;
    static constexpr qsizetype mostGroups = 64;
    static constexpr qsizetype mostBuckets = 256; ///< Of all groups together.

    enum class Connection { Connecting, Connected, Offline };

    Connection connection = Connection::Connecting;
    std::int64_t port = 0; ///< That the daemon answered on; 0 unless connected.
    std::optional<std::int64_t> lastUpdate = {}; ///< Seconds since the epoch; absent before.
    QString error = {}; ///< Why it is offline; empty unless it is.
    QString title = {}; ///< The label as a line of text.
    QList<PublishedItem> items = {}; ///< The numbers in the label, from left to right.
    /// The bucket of the label with least left, which colours it; absent without quota.
    std::optional<PublishedBucket> lowest = {};
    QList<PublishedGroup> groups = {}; ///< The last good ones, in the order of the popover.

    bool operator==(const PublishedState &) const = default;
};

/// "healthy", "warning" or "critical".
QString tierName(model::QuotaTier tier);
/// "connecting", "connected" or "offline".
QString connectionName(PublishedState::Connection connection);

} // namespace brimwatch::platform
