#include "discovery/daemon_error.h"

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;

QString DaemonError::errorDescription(const DateStyles &styles) const
{
    const QString last = lastUpdateString(styles);
    // Deliberate: the first and the last text end without a full stop, the others with one.
    switch (kind) {
    case Kind::directoryNotFound:
        return u"Antigravity daemon directory not found in ~/.gemini/antigravity/daemon (Last update: "_s
            + last + u')';
    case Kind::noDaemonFound:
        break;
    case Kind::invalidResponse:
        return u"Received invalid or empty response from Antigravity service (Last update: "_s
            + last + u").";
    case Kind::daemonUnreachable:
        return u"Cannot connect to Antigravity: "_s + message + u" (Last update: " + last + u')';
    }
    return u"No running Antigravity daemon found. Make sure Antigravity is open (Last update: "_s
        + last + u").";
}

QString DaemonError::lastUpdateString(const DateStyles &styles) const
{
    return lastUpdate ? styles.dateAbbreviatedTimeStandard(*lastUpdate) : u"Never"_s;
}

} // namespace brimwatch::discovery
