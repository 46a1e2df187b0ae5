#include "app/item_description.h"

#include "service/quota_service.h"

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

platform::ItemDescription describeItem(const service::QuotaService &service)
{
    platform::ItemDescription description;
    description.title = service.menuBarTitle();
    if (const auto &summary = service.quotaSummary()) {
        const auto groups = summary->sortedGroups();
        for (const auto &group : groups) {
            const auto buckets = group.sortedBuckets();
            for (const auto &bucket : buckets)
                description.lines.append(group.displayName + u", "_s + bucket.displayName + u": "_s
                    + bucket.formattedPercentage());
        }
    }
    if (!service.connectionStatus().isConnected())
        description.lines.append(service.connectionStatus().displayText());
    return description;
}

} // namespace brimwatch::app
