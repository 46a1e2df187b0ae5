#include "model/quota_records.h"

#include "core/clock.h"
#include "model/family_names.h"
#include "model/percent.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A bucket's place in its card. Deliberate: the id counts as well, case-sensitively. A bucket with
/// "5h" in its id ranks as a five-hour bucket whatever its window, but only here: the label goes by
/// the window alone.
int rank(const QuotaBucket &bucket)
{
    if (bucket.window == u"5h"_s || bucket.bucketId.contains("5h"_L1))
        return 0;
    if (bucket.window == u"weekly"_s || bucket.bucketId.contains("weekly"_L1))
        return 1;
    return 2;
}

/// Sorted by rank, from 0 to `Ranks` - 1; equal ranks keep their order. Each record is ranked only
/// once, as ranking searches texts that may be long.
template <std::size_t Ranks, typename Record, typename RankOf>
QList<Record> stablyRanked(const QList<Record> &records, const RankOf &rankOf)
{
    std::array<QList<Record>, Ranks> ranked;
    for (const Record &record : records)
        ranked[static_cast<std::size_t>(rankOf(record))].append(record);
    QList<Record> sorted;
    for (const auto &ofOneRank : ranked)
        sorted += ofOneRank;
    return sorted;
}

bool isGemini(const QuotaGroup &group)
{
    // "Gemini 3 Pro (Argon)" is Argon's.
    return containsIgnoringCase(group.displayName, u"Gemini"_s)
        && !containsIgnoringCase(group.displayName, u"argon"_s);
}

bool isArgon(const QuotaGroup &group)
{
    return containsIgnoringCase(group.displayName, u"argon"_s);
}

bool isClaude(const QuotaGroup &group)
{
    return containsIgnoringCase(group.displayName, u"claude"_s)
        || containsIgnoringCase(group.displayName, u"gpt"_s)
        || containsIgnoringCase(group.displayName, u"3p"_s);
}

template <typename Predicate>
const QuotaGroup *firstGroup(const QList<QuotaGroup> &groups, Predicate isOfFamily)
{
    const auto found = std::find_if(groups.cbegin(), groups.cend(), isOfFamily);
    return found == groups.cend() ? nullptr : &*found;
}

std::optional<QuotaGroup> copied(const QuotaGroup *group)
{
    return group != nullptr ? std::optional(*group) : std::nullopt;
}

bool isLowerCasedClaude(const QString &name)
{
    return lowerCasedContains(name, u"claude"_s) || lowerCasedContains(name, u"gpt"_s)
        || lowerCasedContains(name, u"3p"_s);
}

} // namespace

QString countdownText(const QDateTime &now, const QDateTime &reset)
{
    const qint64 milliseconds = now.msecsTo(reset);
    if (milliseconds <= 0)
        return u"Refreshed"_s;

    constexpr qint64 minute = 60;
    constexpr qint64 hour = 60 * minute;
    constexpr qint64 day = 24 * hour;
    const qint64 s = milliseconds / 1000;
    const auto text = [](qint64 high, QLatin1StringView highUnit, qint64 low, QChar lowUnit) {
        return QString(QString::number(high) + highUnit + QString::number(low) + lowUnit);
    };
    if (s >= day)
        return text(s / day, "d "_L1, s % day / hour, u'h');
    if (s < hour)
        return text(s / minute, "m "_L1, s % minute, u's');
    return text(s / hour, "h "_L1, s % hour / minute, u'm');
}

QString withoutSeconds(const QString &countdown)
{
    const auto minutes = countdown.indexOf("m "_L1);
    return minutes < 0 ? countdown : countdown.left(minutes + 1);
}

double QuotaBucket::percentage() const
{
    return clampedPercentage(remainingFraction);
}

QString QuotaBucket::formattedPercentage() const
{
    return percentWithOneDecimal(percentage());
}

QString QuotaBucket::compactPercentage() const
{
    return wholePercent(percentage());
}

QuotaTier QuotaBucket::statusTier() const
{
    // Not rounded: 59.99 % is shown as "60%" and is a warning. A NaN is critical.
    const double p = remainingFraction * 100;
    if (p >= 60)
        return QuotaTier::healthy;
    return p >= 20 ? QuotaTier::warning : QuotaTier::critical;
}

ColorToken QuotaBucket::statusColor() const
{
    const auto color = statusNSColor();
    // Deliberate: there are two greens. See ColorToken.
    return color == ColorToken::AdaptiveHealthyGreen ? ColorToken::SystemGreen : color;
}

ColorToken QuotaBucket::statusNSColor() const
{
    return labelColor(statusTier());
}

ColorToken labelColor(QuotaTier tier)
{
    switch (tier) {
    case QuotaTier::healthy:
        return ColorToken::AdaptiveHealthyGreen;
    case QuotaTier::warning:
        return ColorToken::SystemOrange;
    case QuotaTier::critical:
        break;
    }
    return ColorToken::SystemRed;
}

std::optional<QDateTime> QuotaBucket::parsedResetDate() const
{
    return resetTime ? resetTime->moment() : std::nullopt;
}

std::optional<QString> QuotaBucket::formattedResetTimestamp(
    const QDateTime &now, const DateStyles &styles) const
{
    const auto parsed = parsedResetDate();
    if (!parsed)
        return std::nullopt;
    const QDateTime reset = inZoneOf(now, *parsed);
    const bool isToday = reset.date() == now.date();
    if (!isToday && reset > now)
        return styles.dateAbbreviatedTimeShortened(reset);
    return styles.timeShortened(reset);
}

QString QuotaBucket::resetCountdownString(const QDateTime &now) const
{
    const auto reset = parsedResetDate();
    // Deliberate: the view writes "Resets in " before any of these, "Resets in Active" and "Resets
    // in Refreshed" too.
    return reset ? countdownText(now, *reset) : u"Active"_s;
}

QString QuotaBucket::resetTimestampText(const QDateTime &now) const
{
    return formattedResetTimestamp(now).value_or(QString());
}

QString QuotaBucket::windowText() const
{
    return window.value_or(QString()).toUpper();
}

QList<QuotaBucket> QuotaGroup::sortedBuckets() const
{
    return stablyRanked<3>(buckets, rank);
}

QString QuotaGroup::iconName() const
{
    // Deliberate: Argon is tested before Gemini, in groupSortPriority() after it. A name with both
    // is Argon's either way.
    if (lowerCasedContains(displayName, u"argon"_s))
        return u"cpu"_s;
    if (lowerCasedContains(displayName, u"gemini"_s))
        return u"sparkles"_s;
    if (isLowerCasedClaude(displayName))
        return u"brain"_s;
    return u"gauge.medium"_s;
}

int QuotaGroup::groupSortPriority() const
{
    // Gemini is tested before Argon: see iconName().
    if (lowerCasedContains(displayName, u"gemini"_s)
        && !lowerCasedContains(displayName, u"argon"_s))
        return 0;
    if (lowerCasedContains(displayName, u"argon"_s))
        return 1;
    return isLowerCasedClaude(displayName) ? 2 : 3;
}

std::optional<QuotaGroup> QuotaSummary::geminiGroup() const
{
    return copied(firstGroup(groups, isGemini));
}

std::optional<QuotaGroup> QuotaSummary::argonGroup() const
{
    return copied(firstGroup(groups, isArgon));
}

std::optional<QuotaGroup> QuotaSummary::claudeGroup() const
{
    return copied(firstGroup(groups, isClaude));
}

QList<QuotaGroup> QuotaSummary::sortedGroups() const
{
    return stablyRanked<4>(
        groups, [](const QuotaGroup &group) { return group.groupSortPriority(); });
}

std::optional<QuotaBucket> QuotaSummary::primaryBucket() const
{
    const QuotaGroup *gemini = firstGroup(groups, isGemini);
    const QuotaGroup *group = gemini != nullptr || groups.isEmpty() ? gemini : &groups.front();
    if (group == nullptr || group->buckets.isEmpty())
        return std::nullopt;
    const auto &buckets = group->buckets;
    const auto fiveHours = gemini != nullptr
        ? std::find_if(buckets.cbegin(), buckets.cend(),
              [](const QuotaBucket &bucket) { return bucket.window == u"5h"_s; })
        : buckets.cend();
    return fiveHours == buckets.cend() ? buckets.front() : *fiveHours;
}

std::optional<QuotaBucket> QuotaSummary::lowestGeminiBucket() const
{
    const QuotaGroup *gemini = firstGroup(groups, isGemini);
    if (gemini == nullptr || gemini->buckets.isEmpty())
        return std::nullopt;
    return *std::min_element(gemini->buckets.cbegin(), gemini->buckets.cend(),
        [](const QuotaBucket &a, const QuotaBucket &b) {
            return a.remainingFraction < b.remainingFraction;
        });
}

} // namespace brimwatch::model
