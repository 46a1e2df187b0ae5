#include "platform/published_state.h"

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

QString tierName(model::QuotaTier tier)
{
    switch (tier) {
    case model::QuotaTier::healthy:
        return u"healthy"_s;
    case model::QuotaTier::warning:
        return u"warning"_s;
    case model::QuotaTier::critical:
        break;
    }
    return u"critical"_s;
}

QString connectionName(PublishedState::Connection connection)
{
    switch (connection) {
    case PublishedState::Connection::Connected:
        return u"connected"_s;
    case PublishedState::Connection::Offline:
        return u"offline"_s;
    case PublishedState::Connection::Connecting:
        break;
    }
    return u"connecting"_s;
}

} // namespace brimwatch::platform
