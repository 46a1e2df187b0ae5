#pragma once

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

/// What a system call on a socket failed with, by its errno.
TransportError transportErrorOf(int errorNumber);

/// A transport error in words for the user, not as Qt names it: "Could not connect to the
/// server."
QString transportErrorText(TransportError error);

} // namespace brimwatch::service
