#pragma once

#include "core/date_styles.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace brimwatch::discovery {

/// Why no quota could be fetched. Each case carries the time of the last success, absent before the
/// first.
struct DaemonError {
    enum class Kind {
        directoryNotFound,
        noDaemonFound,
        invalidResponse, ///< Has its text, but nothing raises it: an answer that makes no sense
                         ///< counts as no daemon.
        daemonUnreachable,
    };

    Kind kind = Kind::noDaemonFound;
    QString message = {}; ///< Of daemonUnreachable alone: the transport error in words.
    std::optional<QDateTime> lastUpdate = {};

    /// The text for the user.
    QString errorDescription(const DateStyles &styles = DateStyles::user()) const;
    /// The time of the last success with seconds, or "Never".
    QString lastUpdateString(const DateStyles &styles = DateStyles::user()) const;

    bool operator==(const DaemonError &) const = default;
};

} // namespace brimwatch::discovery
