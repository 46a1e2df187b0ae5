#pragma once

#include "platform/published_state.h"

namespace brimwatch::cli {

/// What brimwatchctl knows, and from whom.
struct Status {
    enum class Source {
        None, ///< Nobody told: the state is empty but for its error.
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

/// 0 when the lowest bucket of the label is healthy or a warning, or there is none; 1 when it is
/// critical; 2 when offline.
int exitStatusOf(const Status &status);

/// What is known when nobody could be asked, for the reason given.
Status offlineStatus(const QString &why);

} // namespace brimwatch::cli
