#pragma once

#include "discovery/daemon_info.h"

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace brimwatch::service {

/// What the daemon is sent: an empty JSON object.
inline constexpr QByteArrayView quotaRequestBody{"{}"};

/// Where the daemon is asked. Absent without a port, and when it is no valid one.
std::optional<QUrl> quotaUrl(const discovery::DaemonInfo &daemon);

/// What goes to 127.0.0.1, and how.
struct QuotaRequest {
    quint16 port = 0;
    QByteArray bytes; ///< The whole request, with its body.
    bool overTls = false;
};

/// The request for the daemon's quota. Absent when the daemon cannot be asked: without an address,
/// without a token, or with a token that no header can carry.
///
/// It asks for an answer without compression, and for the connection to be closed afterwards.
std::optional<QuotaRequest> quotaRequest(const discovery::DaemonInfo &daemon);

} // namespace brimwatch::service
