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
    QString window; ///< "5h", "weekly" or another text of the daemon; empty without one.
    double fraction = 0; ///< As in the daemon's answer; values outside 0 to 1 occur.
    double percentage = 0; ///< 0 to 100.
    model::QuotaTier tier = model::QuotaTier::critical;
    std::optional<std::int64_t> resetTime = {}; ///< Seconds since the epoch; absent when unknown.
    QString outlook
        = {}; ///< "lasts", "close", "runs-out" or "used-up"; empty where nothing is said.
    std::optional<std::int64_t> runOutTime
        = {}; ///< Seconds since the epoch; with "runs-out" alone.
    std::optional<double> runOutChance = {}; ///< In steps of 0.05; absent where nothing is said.

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

/// The state that other programs of the user's session may read. It is within the bounds here, and
/// without what is private: the daemon's token and the user's home directory.
struct PublishedState {
    static constexpr qsizetype longestName = 200; ///< In UTF-16 units; ids and windows too.
    static constexpr qsizetype longestText = 400; ///< Title and error.
    static constexpr qsizetype mostItems = 16;
    static constexpr qsizetype mostGroups = 64;
    static constexpr qsizetype mostBuckets = 256; ///< Of all groups together.

    enum class Connection { Connecting, Connected, Offline };

    Connection connection = Connection::Connecting;
    std::int64_t port = 0; ///< On which the daemon was asked; 0 unless connected.
    std::optional<std::int64_t> lastUpdate
        = {}; ///< Seconds since the epoch; absent before the first.
    QString error = {}; ///< Why it is offline; empty unless it is.
    QString title = {}; ///< The label as a line of text.
    QList<PublishedItem> items = {}; ///< The numbers in the label, from left to right.
    /// The bucket in the label with least left, which gives it its color; absent without quota.
    std::optional<PublishedBucket> lowest = {};
    QList<PublishedGroup> groups = {}; ///< The last good ones, in the order of the popover.

    bool operator==(const PublishedState &) const = default;
};

/// "healthy", "warning" or "critical".
QString tierName(model::QuotaTier tier);
/// "connecting", "connected" or "offline".
QString connectionName(PublishedState::Connection connection);

} // namespace brimwatch::platform
