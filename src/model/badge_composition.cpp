#include "model/badge_composition.h"

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

void keepLower(const ToolbarStatItem *&lowest, const ToolbarStatItem &item)
{
    if (lowest == nullptr || item.bucket.remainingFraction < lowest->bucket.remainingFraction)
        lowest = &item;
}

BadgeNumber numberOf(const ToolbarStatItem &item, BadgeColors colors)
{
    QString text = item.bucket.compactPercentage();
    text.chop(1);
    return {.text = text,
        .color = colors == BadgeColors::Health ? item.nsColor : ColorToken::Label,
        .isCritical = item.bucket.statusTier() == QuotaTier::critical};
}

} // namespace

BadgeComposition composeBadge(const QList<ToolbarStatItem> &items, BadgeColors colors)
{
    const ToolbarStatItem *fiveHour = nullptr;
    const ToolbarStatItem *weekly = nullptr;
    for (const auto &item : items)
        keepLower(item.bucket.window == u"weekly"_s ? weekly : fiveHour, item);
    BadgeComposition badge;
    for (const ToolbarStatItem *item : {fiveHour, weekly}) {
        if (item != nullptr)
            badge.numbers.append(numberOf(*item, colors));
    }
    return badge;
}

} // namespace brimwatch::model
