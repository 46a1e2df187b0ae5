#include "app/item_description.h"

#include "app/state_description.h"
#include "core/date_styles.h"
#include "core/plain_text.h"
#include "service/quota_service.h"

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::ItemDescription;

/// Of each of the two names before a percentage.
constexpr qsizetype longestName = 150;
// ", ", ": ", "100.0%", ", resets in " and as many days as a date can be away.
constexpr qsizetype longestRest = 50;
constexpr qsizetype longestTitle = 300; // The rest is the last update's.
static_assert(2 * longestName + longestRest <= ItemDescription::longestLine);

/// What a daemon puts into its names: everyone on the session bus reads them in a tooltip.
QString publicLine(const QString &text, const service::QuotaService &service, qsizetype longest)
{
    return asOneLine(withoutSecrets(text, service, QString()), longest);
}

/// When the bucket is full again, to be written behind its percentage; empty when nobody knows, or
/// when that has passed and the next refresh will tell.
QString resetText(const model::QuotaBucket &bucket, const QDateTime &now)
{
    const auto reset = bucket.parsedResetDate();
    if (!reset || *reset <= now)
        return {};
    return ", resets in "_L1 + model::withoutSeconds(model::countdownText(now, *reset));
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
                + u": "_s + bucket.formattedPercentage()
                + resetText(bucket, service.currentTime()));
        }
    }
    return lines;
}

} // namespace

ItemDescription describeItem(const service::QuotaService &service)
{
    ItemDescription description;
    description.title = publicLine(service.menuBarTitle(), service, longestTitle);
    const auto &status = service.connectionStatus();
    if (status.isOffline() && service.lastUpdated())
        description.title += " (last update: "_L1
            + DateStyles::user().dateAbbreviatedTimeStandard(*service.lastUpdated()) + u')';
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
