#pragma once

#include "platform/published_state.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace brimwatch::cli {

/// What brimwatchctl knows, and from whom.
struct Status {
    enum class Source {
        None, ///< Nobody answered: the state is empty but for its error.
        Program, ///< The running program.
        Daemon, ///< A fetch of our own, because no program runs.
    };

    platform::PublishedState state = {};
    Source source = Source::None;

    bool isOnline() const
    {
        return state.connection == platform::PublishedState::Connection::Connected;
    }

    bool operator==(const Status &) const = default;
};

/// The status when nobody could be asked, for the reason given.
Status offlineStatus(const QString &reason);

/// "program", "daemon" or "none".
QString sourceName(Status::Source source);

/// Why it is not online, in words.
QString offlineReason(const Status &status);

std::optional<QDateTime> resetTimeOf(const platform::PublishedBucket &bucket);

/// "resets in 2h 3m" or "refreshed"; empty when the time is not known. Nothing is left: "used up,
/// full again in 2h 3m".
QString resetText(const platform::PublishedBucket &bucket, const QDateTime &now);

/// "runs out around 15:45", and "may run out" where it is close; empty while it lasts.
QString outlookText(const platform::PublishedBucket &bucket, const QDateTime &now);

/// Both, with a comma between them.
QString timesText(const platform::PublishedBucket &bucket, const QDateTime &now);

} // namespace brimwatch::cli
