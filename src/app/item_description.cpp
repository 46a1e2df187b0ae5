#include "app/item_description.h"

#include "app/state_description.h"
#include "core/date_styles.h"
#include "core/redactor.h"
#include "forecast/outlook_text.h"
#include "service/quota_service.h"

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::ItemDescription;

/// Of each of the two names before a percentage.
constexpr qsizetype longestName = 150;
// ", ", ": ", "100.0%", ", resets in " and as many days as a date can be away.
// And ", runs out shortly before the reset", or another outlook.
constexpr qsizetype longestRest = 100;
constexpr qsizetype longestTitle = 300; // Leaves room for the time of the last update.
static_assert(2 * longestName + longestRest <= ItemDescription::longestLine);

/// When the bucket is full again, to be written behind its percentage, and whether it runs out
/// before; empty when nobody knows, or when that moment has passed and the next refresh will say
/// more.
QString resetText(
    const service::QuotaService &service, const model::QuotaBucket &bucket, const QDateTime &now)
{
    const auto outlook = service.outlook(bucket);
    const QString words = forecast::textOf(bucket, outlook).words(now);
    if (outlook.verdict == forecast::Verdict::UsedUp)
        return ", "_L1 + words;
    const auto reset = bucket.parsedResetDate();
    if (!reset || *reset <= now)
        return {};
    return ", resets in "_L1 + model::withoutSeconds(model::countdownText(now, *reset))
        + (words.isEmpty() ? QString() : QString(", "_L1 + words));
}

qsizetype countBuckets(const model::QuotaSummary &summary)
{
    qsizetype count = 0;
    for (const auto &group : summary.groups)
        count += group.buckets.size();
    return count;
}

/// Which of the numbers in the label runs out first, to be written behind them; empty where none
/// does.
QString titleOutlook(const service::QuotaService &service, const QDateTime &now)
{
    const auto &items = service.toolbarStatItems();
    const model::ToolbarStatItem *first = nullptr;
    forecast::Outlook earliest;
    for (const auto &item : items) {
        const auto outlook = service.outlook(item.bucket);
        if (outlook.runOut && (first == nullptr || *outlook.runOut < *earliest.runOut)) {
            first = &item;
            earliest = outlook;
        }
    }
    if (first == nullptr)
        return {};
    const QString words = forecast::textOf(first->bucket, earliest).words(now);
    const QString name = first->text.left(first->text.lastIndexOf(u':'));
    return " ("_L1 + (items.size() > 1 ? QString(name + u' ') : QString()) + words + u')';
}

/// The lines of the first buckets, at most so many.
QStringList firstBuckets(const service::QuotaService &service, const model::QuotaSummary &summary,
    const Redactor &redactor, const QDateTime &now, qsizetype most)
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
                + u": "_s + bucket.formattedPercentage() + resetText(service, bucket, now));
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
    description.title += titleOutlook(service, now);
    const auto &status = service.connectionStatus();
    if (const auto updated = service.lastUpdated(); status.isOffline() && updated)
        description.title += " (last update: "_L1
            + DateStyles::user().dateAbbreviatedTimeStandard(*updated) + u')';
    if (const auto &summary = service.quotaSummary()) {
        const auto room = ItemDescription::mostLines - (status.isConnected() ? 0 : 1);
        if (countBuckets(*summary) <= room)
            description.lines = firstBuckets(service, *summary, redactor, now, room);
        else
            description.lines = firstBuckets(service, *summary, redactor, now, room - 1) << u"…"_s;
    }
    if (!status.isConnected())
        description.lines.append(redactor.line(status.displayText(), ItemDescription::longestLine));
    return description;
}

} // namespace brimwatch::app
