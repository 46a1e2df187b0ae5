#include "app/item_description.h"

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

QString oneLine(const QString &text)
{
    return asOneLine(text, ItemDescription::longestLine);
}

qsizetype countBuckets(const model::QuotaSummary &summary)
{
    qsizetype count = 0;
    for (const auto &group : summary.groups)
        count += group.buckets.size();
    return count;
}

/// The lines of the first buckets, at most so many.
QStringList firstBuckets(const model::QuotaSummary &summary, qsizetype most)
{
    QStringList lines;
    const auto groups = summary.sortedGroups();
    for (const auto &group : groups) {
        const QString groupName = asOneLine(group.displayName, longestName);
        const auto buckets = group.sortedBuckets();
        for (const auto &bucket : buckets) {
            if (lines.size() == most)
                return lines;
            lines.append(groupName + u", "_s + asOneLine(bucket.displayName, longestName) + u": "_s
                + bucket.formattedPercentage());
        }
    }
    return lines;
}

} // namespace

ItemDescription describeItem(const service::QuotaService &service)
{
    ItemDescription description;
    description.title = oneLine(service.menuBarTitle());
    const auto &status = service.connectionStatus();
    if (const auto &summary = service.quotaSummary()) {
        const auto room = ItemDescription::mostLines - (status.isConnected() ? 0 : 1);
        if (countBuckets(*summary) <= room)
            description.lines = firstBuckets(*summary, room);
        else
            description.lines = firstBuckets(*summary, room - 1) << u"…"_s;
    }
    if (!status.isConnected())
        description.lines.append(oneLine(status.displayText()));
    return description;
}

} // namespace brimwatch::app
