#pragma once

#include "discovery/daemon_info.h"

#include <QList>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QUrl>

#include <optional>

namespace brimwatch::service {

/// What the daemon is sent: an empty JSON object.
inline constexpr QByteArrayView quotaRequestBody{"{}"};

/// Where the daemon is asked: on its plain port, which is preferred on purpose, else on its secure
/// one. Absent without either, and when the port makes no address.
std::optional<QUrl> quotaUrl(const discovery::DaemonInfo &daemon);

/// The request for the daemon's quota, less its body. Absent when the daemon cannot be asked:
/// without an address, without a token, or with a token that no header can carry.
///
/// It asks for no redirect, cookie, cache, compression or connection kept for later. `trusted` are
/// authorities beside the system's own; the TLS library is loaded only for a daemon that is asked
/// securely.
std::optional<QNetworkRequest> quotaRequest(
    const discovery::DaemonInfo &daemon, const QList<QSslCertificate> &trusted);

} // namespace brimwatch::service
