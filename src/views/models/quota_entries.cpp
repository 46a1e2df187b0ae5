#include "views/models/quota_entries.h"

#include "core/plain_text.h"
#include "views/models/assign.h"
#include "views/models/theme.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace brimwatch::views {

using namespace Qt::Literals::StringLiterals;

QString shownText(const QString &text)
{
    // More than any view has room for, but few enough to be laid out quickly.
    constexpr qsizetype longest = 1000;
    QString shown = truncated(text, longest);
    for (QChar &character : shown) {
        switch (character.category()) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            character = u' ';
            break;
        default:
            break;
        }
    }
    return shown;
}

QString andMore(qsizetype count)
{
    return count > 0 ? "and "_L1 + QString::number(count) + " more"_L1 : QString();
}

BucketEntry::BucketEntry(const Theme &theme, QString groupName, QObject *parent)
    : QObject(parent)
    , m_theme(theme)
    , m_groupName(std::move(groupName))
{
    connect(&theme, &Theme::changed, this, &BucketEntry::colorChanged);
}

void BucketEntry::update(const model::QuotaBucket &bucket, const QDateTime &now)
{
    const model::ColorToken color = m_bucket.statusColor();
    if (assign(m_bucket, bucket)) {
        m_timestampFor.reset();
        Q_EMIT changed();
        if (m_bucket.statusColor() != color)
            Q_EMIT colorChanged();
    }
    setTime(now);
}

void BucketEntry::setTime(const QDateTime &now)
{
    const QString countdown = m_bucket.resetCountdownString(now);
    if (assign(m_resetLine, "Resets in "_L1 + countdown))
        Q_EMIT resetLineChanged();
    // ICU writes the timestamp, which takes longer than all else here. It stays the same all day.
    const auto reset = m_bucket.parsedResetDate();
    const TimestampFor timestampFor{
        .day = now.date(), .utcOffset = now.offsetFromUtc(), .isOver = reset && *reset <= now};
    if (assign(m_timestampFor, std::optional(timestampFor))
        && assign(m_timestampText, m_bucket.resetTimestampText(now)))
        Q_EMIT timestampTextChanged();
    QString percentage = percentageText();
    percentage.chop(1);
    if (assign(m_accessibleName,
            m_groupName + ", "_L1 + displayName() + ", "_L1 + percentage
                + " percent left, resets in "_L1 + model::withoutSeconds(countdown)))
        Q_EMIT accessibleNameChanged();
}

QString BucketEntry::windowText() const
{
    if (!m_bucket.hasWindow())
        return {};
    return shownText(m_bucket.windowText() + " WINDOW"_L1);
}

double BucketEntry::fill() const
{
    const double fill = m_bucket.percentage() / 100;
    return std::isnan(fill) ? 0 : fill;
}

QColor BucketEntry::color() const
{
    return m_theme.color(m_bucket.statusColor());
}

QColor BucketEntry::fillColor() const
{
    return m_theme.fill(m_bucket.statusColor());
}

GroupEntry::GroupEntry(const Theme &theme, QObject *parent)
    : QObject(parent)
    // A group is identified by its name, so that its rows can keep it.
    , m_buckets("bucket", [this, &theme] { return new BucketEntry(theme, displayName()); })
{
}

void GroupEntry::update(const ShownGroup &shown, const QDateTime &now)
{
    if (assign(m_shown, shown))
        Q_EMIT changed();
    m_buckets.update(m_shown.group.sortedBuckets().mid(0, m_shown.rows), now);
}

void GroupEntry::setTime(const QDateTime &now)
{
    m_buckets.setTime(now);
}

QString GroupEntry::countText() const
{
    const int count = m_shown.group.bucketCount();
    return QString::number(count) + (count == 1 ? " bucket"_L1 : " buckets"_L1);
}

QString GroupEntry::moreText() const
{
    return andMore(m_shown.group.bucketCount() - m_shown.rows);
}

} // namespace brimwatch::views
