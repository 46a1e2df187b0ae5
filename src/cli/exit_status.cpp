#include "cli/exit_status.h"

namespace brimwatch::cli {

ExitStatus exitStatusOf(const Status &status)
{
    if (!status.isOnline())
        return ExitStatus::Offline;
    const auto &lowest = status.state.lowest;
    return lowest && lowest->tier == model::QuotaTier::critical ? ExitStatus::Critical
                                                                : ExitStatus::Success;
}

} // namespace brimwatch::cli
