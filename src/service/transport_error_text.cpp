#include "service/transport_error_text.h"

#include <cerrno>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

TransportError transportErrorOf(int errorNumber)
{
    switch (errorNumber) {
    case ECONNREFUSED:
        return TransportError::Refused;
    case ECONNRESET:
    case EPIPE:
        return TransportError::ConnectionLost;
    case ETIMEDOUT:
        return TransportError::TimedOut;
    // The host is out of reach, a firewall forbids the connection, or there are too many.
    case ENETUNREACH:
    case EHOSTUNREACH:
    case ENETDOWN:
    case EADDRNOTAVAIL:
    case EACCES:
    case EPERM:
    case EMFILE:
    case ENFILE:
    case ENOBUFS:
    case ENOMEM:
        return TransportError::Unreachable;
    default:
        return TransportError::Other;
    }
}

QString transportErrorText(TransportError error)
{
    switch (error) {
    case TransportError::Refused:
        return u"Could not connect to the server."_s;
    case TransportError::ConnectionLost:
        return u"The network connection was lost."_s;
    case TransportError::TimedOut:
        return u"The request timed out."_s;
    case TransportError::Unreachable:
        return u"The server could not be reached."_s;
    case TransportError::TlsFailed:
        return u"A secure connection to the server could not be made."_s;
    case TransportError::Malformed:
        return u"The server's answer made no sense."_s;
    case TransportError::Other:
        break;
    }
    return u"The request failed."_s;
}

} // namespace brimwatch::service
