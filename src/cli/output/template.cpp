#include "cli/output/template.h"

#include "cli/output/pango.h"
#include "model/percent.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::PublishedBucket;
using platform::PublishedGroup;
using platform::PublishedState;

struct BucketField {
    QLatin1StringView name;
    QString (*text)(const PublishedBucket &, const QDateTime &now);
    QString (*withoutBucket)() = nullptr; ///< The text when there is no such bucket; none: empty.
};
constexpr auto bucketFields = std::to_array<BucketField>({
    {.name = "percentage"_L1,
        .text
        = [](const PublishedBucket &bucket,
              const QDateTime &) { return model::wholePercent(bucket.percentage).chopped(1); }},
    {.name = "used"_L1,
        .text =
            [](const PublishedBucket &bucket, const QDateTime &) {
                constexpr double full = 100;
                return model::wholePercent(full - bucket.percentage).chopped(1);
            }},
    {.name = "outlook"_L1,
        .text = [](const PublishedBucket &bucket, const QDateTime &) { return bucket.outlook; }},
    {.name = "runout"_L1,
        .text =
            [](const PublishedBucket &bucket, const QDateTime &) {
                const auto &time = bucket.runOutTime;
                return time ? QDateTime::fromSecsSinceEpoch(*time).toString(Qt::ISODate)
                            : QString();
            }},
    {.name = "fraction"_L1,
        .text = [](const PublishedBucket &bucket,
                    const QDateTime &) { return QString::number(bucket.fraction); }},
    {.name = "tier"_L1,
        .text = [](const PublishedBucket &bucket,
                    const QDateTime &) { return platform::tierName(bucket.tier); }},
    {.name = "color"_L1,
        .text
        = [](const PublishedBucket &bucket, const QDateTime &) { return colorOf(bucket.tier); },
        .withoutBucket = noColor},
    {.name = "name"_L1,
        .text = [](const PublishedBucket &bucket, const QDateTime &) { return bucket.name; }},
    {.name = "window"_L1,
        .text = [](const PublishedBucket &bucket, const QDateTime &) { return bucket.window; }},
    {.name = "reset"_L1,
        .text =
            [](const PublishedBucket &bucket, const QDateTime &) {
                const auto reset = resetTimeOf(bucket);
                return reset ? reset->toString(Qt::ISODate) : QString();
            }},
    {.name = "countdown"_L1,
        .text =
            [](const PublishedBucket &bucket, const QDateTime &now) {
                const auto reset = resetTimeOf(bucket);
                return reset ? model::countdownText(now, *reset) : QString();
            }},
});

struct StatusField {
    QLatin1StringView name;
    QString (*text)(const Status &);
};
constexpr auto statusFields = std::to_array<StatusField>({
    {.name = "title"_L1, .text = [](const Status &status) { return status.state.title; }},
    {.name = "state"_L1,
        .text
        = [](const Status &status) { return platform::connectionName(status.state.connection); }},
    {.name = "error"_L1, .text = [](const Status &status) { return status.state.error; }},
    {.name = "source"_L1, .text = [](const Status &status) { return sourceName(status.source); }},
    {.name = "port"_L1,
        .text =
            [](const Status &status) {
                return status.state.port == 0 ? QString() : QString::number(status.state.port);
            }},
    {.name = "updated"_L1,
        .text =
            [](const Status &status) {
                const auto &updated = status.state.lastUpdate;
                return updated ? QDateTime::fromSecsSinceEpoch(*updated).toString(Qt::ISODate)
                               : QString();
            }},
});

constexpr std::array families{"gemini"_L1, "argon"_L1, "claude"_L1, "other"_L1};

/// The row of a table that has that name; null when there is none.
template <typename Table> auto *named(const Table &table, const QString &name)
{
    const auto *row = std::find_if(table.begin(), table.end(),
        [&name](const auto &candidate) { return candidate.name == name; });
    return row == table.end() ? nullptr : row;
}

const PublishedBucket *lowestBucket(const PublishedState &state)
{
    return state.lowest ? &*state.lowest : nullptr;
}

/// The bucket that "gemini.5h" names: of the first group of that family the first with that window.
const PublishedBucket *bucketOf(
    const PublishedState &state, const QString &family, const QString &window)
{
    const auto group = std::find_if(state.groups.cbegin(), state.groups.cend(),
        [&family](const PublishedGroup &candidate) { return candidate.family == family; });
    if (group == state.groups.cend())
        return nullptr;
    const auto bucket = std::find_if(group->buckets.cbegin(), group->buckets.cend(),
        [&window](const PublishedBucket &candidate) { return candidate.window == window; });
    return bucket == group->buckets.cend() ? nullptr : &*bucket;
}

QString textOf(const BucketField &field, const PublishedBucket *bucket, const QDateTime &now)
{
    if (bucket != nullptr)
        return field.text(*bucket, now);
    return field.withoutBucket == nullptr ? QString() : field.withoutBucket();
}

/// The character that a backslash and `next` are; none when they are just those two.
std::optional<QChar> escaped(QChar next)
{
    switch (next.unicode()) {
    case u'n':
        return u'\n';
    case u't':
        return u'\t';
    case u'\\':
        return next;
    default:
        return std::nullopt;
    }
}

} // namespace

Result<Template, QString> Template::parse(const QString &text)
{
    Template result;
    result.m_text = text;
    QString literal;
    const auto endLiteral = [&result, &literal] {
        if (!literal.isEmpty())
            result.m_parts.append([text = std::exchange(literal, {})](
                                      const Status &, const QDateTime &) { return text; });
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const QChar next = i + 1 < text.size() ? text[i + 1] : QChar();
        const auto escape = c == u'\\' ? escaped(next) : std::nullopt;
        if (escape || ((c == u'{' || c == u'}') && next == c)) {
            literal += escape.value_or(c);
            ++i;
        } else if (c == u'{') {
            const auto end = text.indexOf(u'}', i);
            if (end < 0)
                return fail(u"a brace is not closed in the template"_s);
            const QString name = text.mid(i + 1, end - i - 1);
            const auto part = field(name);
            if (!part)
                return fail(u"the template's field '{%1}' does not exist"_s.arg(name));
            endLiteral();
            result.m_parts.append(*part);
            i = end;
        } else if (c == u'}') {
            return fail(u"a brace is not opened in the template"_s);
        } else {
            literal += c;
        }
    }
    endLiteral();
    return result;
}

QString Template::render(const Status &status, const QDateTime &now) const
{
    QString text;
    for (const auto &part : m_parts)
        text += part(status, now);
    return text;
}

std::optional<Template::Part> Template::field(const QString &name)
{
    if (const auto *row = named(statusFields, name))
        return [row](const Status &status, const QDateTime &) { return row->text(status); };
    const auto words = name.split(u'.');
    const bool isOfLowest = words.size() == 1;
    const auto *row = named(
        bucketFields, isOfLowest || words.size() == 3 ? words.constLast() : u"percentage"_s);
    if (row == nullptr)
        return std::nullopt;
    if (isOfLowest) {
        return [row](const Status &status, const QDateTime &now) {
            return textOf(*row, lowestBucket(status.state), now);
        };
    }
    const bool isFamily = std::find(families.begin(), families.end(), words[0]) != families.end();
    if (!isFamily || words[1].isEmpty() || words.size() > 3)
        return std::nullopt;
    return [row, family = words[0], window = words[1]](const Status &status, const QDateTime &now) {
        return textOf(*row, bucketOf(status.state, family, window), now);
    };
}

QStringList templateFields()
{
    QStringList names;
    for (const auto &field : statusFields)
        names.append(field.name);
    for (const auto &field : bucketFields)
        names.append(field.name);
    return names;
}

} // namespace brimwatch::cli
