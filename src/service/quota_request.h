#pragma once

#include "discovery/daemon_info.h"

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <QSslConfiguration>
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
    /// Absent when the daemon is asked without TLS.
    std::optional<QSslConfiguration> security;
};

/// The request for the daemon's quota. Absent when the daemon cannot be asked: without an address,
/// without a token, or with a token that no header can carry.
///
/// It asks for an answer without compression, and for the connection to be closed afterwards.
/// `trusted` are authorities beside the system's own. The TLS library is loaded only for a daemon
/// that is asked over https.
std::optional<QuotaRequest> quotaRequest(
    const discovery::DaemonInfo &daemon, const QList<QSslCertificate> &trusted);

} // namespace brimwatch::service
