#include "cli/output/columns.h"
#include "cli/output/forms.h"
#include "model/percent.h"

#include <algorithm>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::PublishedBucket;
using platform::PublishedGroup;

constexpr int gap = 2; // Before each column.
constexpr int percentageColumns = 6; // "100.0%"

/// How wide the columns of the text's lines are; 0 where there is no room for one.
struct Columns {
    int name = 0;
    int bar = 0;
    int reset = 0;
    int outlook = 0;
};

Columns columnsFor(const QList<PublishedGroup> &groups, const QDateTime &now, const TextLook &look)
{
    constexpr int usualName = 12;
    constexpr int leastBar = 8;
    constexpr int mostBar = 40;
    Columns columns;
    for (const auto &group : groups) {
        for (const auto &bucket : group.buckets) {
            columns.name = std::max(columns.name, columnsOf(bucket.name));
            columns.reset = std::max(columns.reset, columnsOf(resetText(bucket, now)));
            columns.outlook = std::max(columns.outlook, columnsOf(outlookText(bucket, now)));
        }
    }
    if (look.bars == TextLook::Bars::None)
        return columns;
    // The outlook gives way first, then the times, then the bar, and names are cut as far as it
    // takes.
    int room = look.width - gap - gap - percentageColumns;
    const int leastName = std::min(usualName, columns.name);
    if (columns.outlook > 0) {
        const int others = leastName + gap + leastBar + gap + columns.reset;
        if (others + gap + columns.outlook > room)
            columns.outlook = 0;
        else
            room -= gap + columns.outlook;
    }
    if (leastName + gap + leastBar + gap + columns.reset > room)
        columns.reset = 0;
    const int withoutTimes = columns.reset > 0 ? room - gap - columns.reset : room;
    if (leastName + gap + leastBar > withoutTimes) {
        columns.name = std::clamp(withoutTimes, 1, std::max(1, columns.name));
        return columns;
    }
    columns.name = std::min(columns.name, withoutTimes - gap - leastBar);
    columns.bar = std::min(mostBar, withoutTimes - gap - columns.name);
    return columns;
}

QString lineOf(const PublishedBucket &bucket, const QDateTime &now, const TextLook &look,
    const Columns &columns)
{
    const QString percentage = model::percentWithOneDecimal(bucket.percentage);
    const QString reset = resetText(bucket, now);
    QString line = "  "_L1 + padded(fitted(bucket.name, columns.name), columns.name);
    const QString before = look.colors ? escapeOf(bucket.tier) : QString();
    const QString after = look.colors ? QString(escapeEnd) : QString();
    if (columns.bar > 0)
        line += "  "_L1 + before + barOf(bucket.percentage, columns.bar, look.bars) + after;
    line += "  "_L1 + before + percentage.rightJustified(percentageColumns) + after;
    const QString outlook = columns.outlook > 0 ? outlookText(bucket, now) : QString();
    if (columns.reset > 0 && (!reset.isEmpty() || !outlook.isEmpty()))
        line += "  "_L1 + (look.colors ? QString(escapeFaint) : QString())
            + (outlook.isEmpty() ? reset : padded(reset, columns.reset)) + after;
    if (!outlook.isEmpty())
        line += "  "_L1 + outlook;
    return line;
}

} // namespace

QString renderText(const Status &status, const QDateTime &now, const TextLook &look)
{
    const auto &state = status.state;
    const auto columns = columnsFor(state.groups, now, look);
    QString text;
    for (const auto &group : state.groups) {
        const QString name
            = look.bars == TextLook::Bars::None ? group.name : fitted(group.name, look.width);
        text += (look.colors ? escapeBold + name + escapeEnd : name) + u'\n';
        for (const auto &bucket : group.buckets)
            text += lineOf(bucket, now, look, columns) + u'\n';
    }
    if (status.isOnline() && state.groups.isEmpty())
        text += "No quota\n"_L1;
    if (!status.isOnline() && !state.groups.isEmpty() && state.lastUpdate) {
        text += "As of "_L1
            + QDateTime::fromSecsSinceEpoch(*state.lastUpdate).toString(u"yyyy-MM-dd HH:mm:ss"_s)
            + u'\n';
    }
    return text;
}

QString renderLine(const Status &status)
{
    const auto &title = status.state.title;
    if (status.isOnline())
        return title;
    const QString reason = offlineReason(status);
    return title.isEmpty() ? reason : QString(title + " ("_L1 + reason + u')');
}

} // namespace brimwatch::cli
