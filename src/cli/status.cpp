#include "cli/status.h"

namespace brimwatch::cli {

int exitStatusOf(const Status &status)
{
    if (!status.isOnline())
        return 2;
    const auto &lowest = status.state.lowest;
    return lowest && lowest->tier == model::QuotaTier::critical ? 1 : 0;
}

Status offlineStatus(const QString &why)
{
    Status status;
    status.state.connection = platform::PublishedState::Connection::Offline;
    status.state.error = why;
    return status;
}

} // namespace brimwatch::cli
