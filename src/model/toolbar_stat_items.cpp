#include "model/toolbar_stat_items.h"

#include <QStringList>

#include <algorithm>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A bucket in the label, with the tag that distinguishes it from a second one of the same model.
struct Entry {
    QuotaBucket bucket;
    QString windowTag;
};

bool isShown(ToolbarModel model, const ToolbarSettings &settings)
{
    switch (model) {
    case ToolbarModel::gemini:
        break;
    case ToolbarModel::argon:
        return settings.showArgonInToolbar;
    case ToolbarModel::claude:
        return settings.showClaudeInToolbar;
    }
    return settings.showGeminiInToolbar;
}

std::optional<QuotaGroup> groupOf(ToolbarModel model, const QuotaSummary &summary)
{
    switch (model) {
    case ToolbarModel::gemini:
        break;
    case ToolbarModel::argon:
        return summary.argonGroup();
    case ToolbarModel::claude:
        return summary.claudeGroup();
    }
    return summary.geminiGroup();
}

QList<Entry> entriesOf(const QuotaGroup &group, const ToolbarSettings &settings)
{
    QList<Entry> entries;
    const auto appendFirst = [&](const QString &window, const QString &tag) {
        const auto found = std::find_if(group.buckets.cbegin(), group.buckets.cend(),
            [&window](const QuotaBucket &bucket) { return bucket.window == window; });
        if (found != group.buckets.cend())
            entries.append({.bucket = *found, .windowTag = tag});
    };
    if (settings.showFiveHourInMenuBar)
        appendFirst(u"5h"_s, u"5h"_s);
    if (settings.showWeeklyInMenuBar)
        appendFirst(u"weekly"_s, u"W"_s);
    const bool anyWindow = settings.showFiveHourInMenuBar || settings.showWeeklyInMenuBar;
    if (entries.isEmpty() && anyWindow && !group.buckets.isEmpty())
        entries.append({.bucket = group.buckets.front(), .windowTag = {}});
    return entries;
}

QString prefixOf(ToolbarModel model, ToolbarLabelStyle style)
{
    switch (style) {
    case ToolbarLabelStyle::letter:
        break;
    case ToolbarLabelStyle::icon:
        return iconSymbol(model);
    case ToolbarLabelStyle::shortName:
        return mediumAbbreviation(model);
    }
    return shortAbbreviation(model);
}

} // namespace

QString ToolbarStatItem::id() const
{
    return rawValue(model) + u'_' + bucket.bucketId;
}

QList<ToolbarStatItem> toolbarStatItems(
    const std::optional<QuotaSummary> &summary, const ToolbarSettings &settings)
{
    QList<ToolbarStatItem> items;
    if (!summary)
        return items;
    const auto style = toolbarLabelStyle(settings.toolbarLabelStyle);
    const bool isGeminiAlone = settings.showGeminiInToolbar && !settings.showArgonInToolbar
        && !settings.showClaudeInToolbar;
    for (const auto model : allToolbarModels) {
        if (!isShown(model, settings))
            continue;
        const auto group = groupOf(model, *summary);
        if (!group)
            continue;
        const auto entries = entriesOf(*group, settings);
        const bool areTwo = entries.size() == 2;
        // Deliberate: only Gemini's two windows have no letter. Argon and Claude keep theirs, and
        // so does a single Gemini item.
        const bool needsNone = isGeminiAlone && areTwo && style == ToolbarLabelStyle::letter;
        const QString prefix = needsNone ? QString() : prefixOf(model, style);
        for (const auto &entry : entries) {
            const QString number = entry.bucket.compactPercentage();
            const QString value = areTwo ? entry.windowTag + u": " + number : number;
            const QString separator = areTwo || style == ToolbarLabelStyle::icon ? u" "_s : u": "_s;
            items.append({
                .model = model,
                .bucket = entry.bucket,
                .text = prefix.isEmpty() ? value : prefix + separator + value,
                .formattedValue = value,
                .color = entry.bucket.statusColor(),
                .nsColor = entry.bucket.statusNSColor(),
            });
        }
    }
    return items;
}

std::optional<QuotaBucket> lowestSelectedBucket(
    const std::optional<QuotaSummary> &summary, const QList<ToolbarStatItem> &items)
{
    if (!summary)
        return std::nullopt;
    if (items.isEmpty())
        return summary->lowestGeminiBucket();
    return std::min_element(items.cbegin(), items.cend(),
        [](const ToolbarStatItem &a, const ToolbarStatItem &b) {
            return a.bucket.remainingFraction < b.bucket.remainingFraction;
        })
        ->bucket;
}

QString menuBarTitle(const std::optional<QuotaSummary> &summary,
    const QList<ToolbarStatItem> &items, StarAtStart star, ConnectionPhase phase)
{
    if (!summary)
        return phase == ConnectionPhase::Connecting ? u"✦ ..."_s : u"✦ Gemini"_s;
    if (items.isEmpty()) {
        // Deliberate: the star stays when the icon is switched off.
        return star == StarAtStart::Yes ? u"✦"_s : u"✦ Gemini"_s;
    }
    QStringList texts;
    texts.reserve(items.size());
    for (const auto &item : items)
        texts.append(item.text);
    const QString joined = texts.join(u" · "_s);
    return star == StarAtStart::Yes ? u"✦ "_s + joined : joined;
}

ColorToken menuBarTint(const std::optional<QuotaBucket> &lowest)
{
    return lowest ? lowest->statusColor() : ColorToken::SecondaryLabel;
}

ColorToken menuBarNSTint(const std::optional<QuotaBucket> &lowest)
{
    return lowest ? lowest->statusNSColor() : ColorToken::AdaptiveHealthyGreen;
}

} // namespace brimwatch::model
