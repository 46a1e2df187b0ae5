#include "app/item_description.h"

#include "app/state_description.h"
#include "core/date_styles.h"
#include "core/redactor.h"
#include "service/quota_service.h"

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::ItemDescription;

/// Of each of the two names before a percentage.
constexpr qsizetype longestName = 150;
// ", ", ": ", "100.0%", ", resets in " and as many days as a date can be away.
constexpr qsizetype longestRest = 50;
constexpr qsizetype longestTitle = 300; // Leaves room for the time of the last update.
static_assert(2 * longestName + longestRest <= ItemDescription::longestLine);

/// When the bucket is full again, to be written behind its percentage; empty when nobody knows, or
/// when that moment has passed and the next refresh will say more.
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
QStringList firstBuckets(const model::QuotaSummary &summary, const Redactor &redactor,
    const QDateTime &now, qsizetype most)
{
    QStringList lines;
    const auto groups = summary.sortedGroups();
    for (const auto &group : groups) {
        const QString groupName = redactor.line(group.displayName, longestName);
        const auto buckets = group.sortedBuckets();
        for (const auto &bucket : buckets) {
            if (lines.size() == most)
                return lines;
            lines.append(groupName + u", "_s + redactor.line(bucket.displayName, longestName)
                + u": "_s + bucket.formattedPercentage() + resetText(bucket, now));
        }
    }
    return lines;
}

} // namespace

ItemDescription describeItem(const service::QuotaService &service, const QString &home)
{
    // Everyone on the session bus reads a tooltip.
    const auto redactor = redactorFor(service, home);
    const QDateTime now = service.currentTime();
    ItemDescription description;
    description.title = redactor.line(service.menuBarTitle(), longestTitle);
    const auto &status = service.connectionStatus();
    if (const auto updated = service.lastUpdated(); status.isOffline() && updated)
        description.title += " (last update: "_L1
            + DateStyles::user().dateAbbreviatedTimeStandard(*updated) + u')';
    if (const auto &summary = service.quotaSummary()) {
        const auto room = ItemDescription::mostLines - (status.isConnected() ? 0 : 1);
        if (countBuckets(*summary) <= room)
            description.lines = firstBuckets(*summary, redactor, now, room);
        else
            description.lines = firstBuckets(*summary, redactor, now, room - 1) << u"…"_s;
    }
    if (!status.isConnected())
        description.lines.append(redactor.line(status.displayText(), ItemDescription::longestLine));
    return description;
}

} // namespace brimwatch::app
