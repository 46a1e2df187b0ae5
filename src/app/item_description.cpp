#include "app/item_description.h"

#include "app/state_description.h"
#include "core/plain_text.h"
#include "service/quota_service.h"

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::ItemDescription;

/// Of each of the two names before a percentage.
constexpr qsizetype longestName = 150;
constexpr qsizetype longestRest = 12; // ", ", ": " and "100.0%"
static_assert(2 * longestName + longestRest <= ItemDescription::longestLine);

/// What a daemon puts into its names: everyone on the session bus reads them in a tooltip.
QString publicLine(const QString &text, const service::QuotaService &service, qsizetype longest)
{
    return asOneLine(withoutSecrets(text, service, QString()), longest);
}

qsizetype countBuckets(const model::QuotaSummary &summary)
{
    qsizetype count = 0;
    for (const auto &group : summary.groups)
        count += group.buckets.size();
    return count;
}

/// The lines of the first buckets, at most so many.
QStringList firstBuckets(
    const model::QuotaSummary &summary, const service::QuotaService &service, qsizetype most)
{
    QStringList lines;
    const auto groups = summary.sortedGroups();
    for (const auto &group : groups) {
        const QString groupName = publicLine(group.displayName, service, longestName);
        const auto buckets = group.sortedBuckets();
        for (const auto &bucket : buckets) {
            if (lines.size() == most)
                return lines;
            lines.append(groupName + u", "_s + publicLine(bucket.displayName, service, longestName)
                + u": "_s + bucket.formattedPercentage());
        }
    }
    return lines;
}

} // namespace

ItemDescription describeItem(const service::QuotaService &service)
{
    ItemDescription description;
    description.title = publicLine(service.menuBarTitle(), service, ItemDescription::longestLine);
    const auto &status = service.connectionStatus();
    if (const auto &summary = service.quotaSummary()) {
        const auto room = ItemDescription::mostLines - (status.isConnected() ? 0 : 1);
        if (countBuckets(*summary) <= room)
            description.lines = firstBuckets(*summary, service, room);
        else
            description.lines = firstBuckets(*summary, service, room - 1) << u"…"_s;
    }
    if (!status.isConnected())
        description.lines.append(
            publicLine(status.displayText(), service, ItemDescription::longestLine));
    return description;
}

} // namespace brimwatch::app
