#pragma once

#include <QAbstractSocket>
#include <QList>
#include <QSslError>
#include <QString>

namespace brimwatch::service {

/// Why there is no answer.
enum class TransportError {
    Refused, ///< Nobody listens there.
    Lost, ///< The connection ended before the answer did.
    TimedOut,
    Unreachable,
    Insecure, ///< No secure connection came about.
    Senseless, ///< What came is no HTTP.
    Other,
};

/// What the socket's error means.
TransportError transportErrorOf(QAbstractSocket::SocketError error);

/// A transport error in words for the user, not as the library names it: "Could not connect to the
/// server."
QString transportErrorText(TransportError error);

/// The same for a server whose certificate was found wanting. The first fault that has words of its
/// own counts.
QString certificateFaultText(const QList<QSslError> &faults);

} // namespace brimwatch::service
