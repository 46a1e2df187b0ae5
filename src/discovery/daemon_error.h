#pragma once

#include "core/date_styles.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace brimwatch::discovery {

/// Why no quota could be fetched, with the time of the last success, absent before the first.
struct DaemonError {
    enum class Kind {
        directoryNotFound,
        noDaemonFound,
        /// Never used, but it has its text: a daemon with a malformed answer counts as none.
        invalidResponse,
        daemonUnreachable,
    };

    Kind kind = Kind::noDaemonFound;
    QString message = {}; ///< For daemonUnreachable only: the text of the transport error.
    std::optional<QDateTime> lastUpdate = {};

    /// The text for the user.
    QString errorDescription(const DateStyles &styles = DateStyles::user()) const;
    /// The time of the last success with seconds, or "Never".
    QString lastUpdateString(const DateStyles &styles = DateStyles::user()) const;

    bool operator==(const DaemonError &) const = default;
};

} // namespace brimwatch::discovery
