#pragma once

#include <QAbstractSocket>
#include <QList>
#include <QSslError>
#include <QString>

namespace brimwatch::service {

/// Why there is no answer.
enum class TransportError {
    Refused, ///< Nothing listens on the port.
    ConnectionLost, ///< The connection ended before the answer did.
    TimedOut,
    Unreachable,
    TlsFailed, ///< No secure connection could be made.
    Malformed, ///< The answer is not HTTP.
    Other,
};

/// What the socket's error means.
TransportError transportErrorOf(QAbstractSocket::SocketError error);

/// A transport error in words for the user, not as Qt names it: "Could not connect to the
/// server."
QString transportErrorText(TransportError error);

/// The same for a server whose certificate is not accepted: the text of the first fault that has
/// one of its own.
QString certificateFaultText(const QList<QSslError> &faults);

} // namespace brimwatch::service
