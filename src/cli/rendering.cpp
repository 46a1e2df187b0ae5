#include "cli/rendering.h"

#include "core/plain_text.h"
#include "model/percent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cwchar>
#include <optional>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

using model::QuotaTier;
using platform::PublishedBucket;
using platform::PublishedGroup;
using platform::PublishedState;

/// Of the colours that the label has on dark panels.
QString colorOf(QuotaTier tier)
{
    switch (tier) {
    case QuotaTier::healthy:
        return u"#33d473"_s;
    case QuotaTier::warning:
        return u"#ff9f2e"_s;
    case QuotaTier::critical:
        break;
    }
    return u"#ff655b"_s;
}

constexpr auto noColor = "#a9a9b0"_L1;

/// What terminals are told for it.
QString escapeOf(QuotaTier tier)
{
    switch (tier) {
    case QuotaTier::healthy:
        return u"\x1b[32m"_s;
    case QuotaTier::warning:
        return u"\x1b[33m"_s;
    case QuotaTier::critical:
        break;
    }
    return u"\x1b[31m"_s;
}

constexpr auto escapeBold = "\x1b[1m"_L1;
constexpr auto escapeFaint = "\x1b[2m"_L1;
constexpr auto escapeEnd = "\x1b[0m"_L1;

std::optional<QDateTime> resetOf(const PublishedBucket &bucket)
{
    return bucket.resetTime ? std::optional(QDateTime::fromSecsSinceEpoch(*bucket.resetTime))
                            : std::nullopt;
}

QString countdownOf(const PublishedBucket &bucket, const QDateTime &now)
{
    const auto reset = resetOf(bucket);
    return reset ? model::countdownText(now, *reset) : QString();
}

QString resetText(const PublishedBucket &bucket, const QDateTime &now)
{
    const auto reset = resetOf(bucket);
    if (!reset)
        return {};
    return *reset <= now ? u"refreshed"_s
                         : QString("resets in "_L1 + model::countdownText(now, *reset));
}

QString whyOffline(const PublishedState &state)
{
    if (state.connection == PublishedState::Connection::Connecting)
        return u"connecting"_s;
    return state.error.isEmpty() ? u"offline"_s : state.error;
}

/// Columns that a terminal takes for it.
int columnsOf(const QString &text)
{
    int columns = 0;
    const auto codePoints = text.toUcs4();
    for (const uint codePoint : codePoints)
        columns += std::max(0, ::wcwidth(static_cast<wchar_t>(codePoint)));
    return columns;
}

QString padded(const QString &text, int columns)
{
    return text + QString(std::max(0, columns - columnsOf(text)), u' ');
}

/// The beginning of `text` that fits, with "…" for what does not.
QString fitted(const QString &text, int columns)
{
    if (columnsOf(text) <= columns)
        return text;
    QString beginning = text;
    while (!beginning.isEmpty() && columnsOf(beginning) >= columns)
        beginning = truncated(beginning, beginning.size() - 1);
    return beginning + u'…';
}

QString barOf(double percentage, int columns, TextLook::Bars bars)
{
    const int full = qRound(percentage / 100.0 * columns);
    const bool blocks = bars == TextLook::Bars::Blocks;
    return QString(full, blocks ? u'█' : u'#') + QString(columns - full, blocks ? u'░' : u'-');
}

constexpr int gap = 2; // Before each column.
constexpr int percentageColumns = 6; // "100.0%"

/// How wide the columns of the text's lines are; 0 where there is no room for one.
struct Columns {
    int name = 0;
    int bar = 0;
    int reset = 0;
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
        }
    }
    if (look.bars == TextLook::Bars::None)
        return columns;
    // The times give way first, then the bar, and names are cut as far as it takes.
    const int room = look.width - gap - gap - percentageColumns;
    const int leastName = std::min(usualName, columns.name);
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
    const QString before = look.colours ? escapeOf(bucket.tier) : QString();
    const QString after = look.colours ? QString(escapeEnd) : QString();
    if (columns.bar > 0)
        line += "  "_L1 + before + barOf(bucket.percentage, columns.bar, look.bars) + after;
    line += "  "_L1 + before + percentage.rightJustified(percentageColumns) + after;
    if (columns.reset > 0 && !reset.isEmpty())
        line += "  "_L1 + (look.colours ? QString(escapeFaint) : QString()) + reset + after;
    return line;
}

QString pangoEscaped(const QString &text)
{
    return text.toHtmlEscaped();
}

QString pangoColored(const QString &text, const QString &color)
{
    return u"<span color=\"%1\">%2</span>"_s.arg(color, pangoEscaped(text));
}

/// The label with each number in its colour; grey while it is old.
QString pangoTitle(const Status &status)
{
    constexpr auto star = "✦"_L1;
    const auto &state = status.state;
    if (!status.isOnline() || state.items.isEmpty())
        return pangoColored(
            state.title.isEmpty() ? QString::fromUtf8("✦ –") : state.title, noColor);
    QStringList items;
    for (const auto &item : state.items)
        items.append(pangoColored(item.text, colorOf(item.tier)));
    const QString starText = QString::fromUtf8(star.data(), star.size());
    return (state.title.startsWith(starText) ? QString(starText + u' ') : QString())
        + items.join(u" · "_s);
}

QJsonValue orNull(const std::optional<std::int64_t> &number)
{
    return number ? QJsonValue(qint64{*number}) : QJsonValue();
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject toJson(const PublishedBucket &bucket)
{
    return {{u"id"_s, bucket.id}, {u"name"_s, bucket.name}, {u"window"_s, orNull(bucket.window)},
        {u"fraction"_s, bucket.fraction}, {u"percentage"_s, bucket.percentage},
        {u"tier"_s, platform::tierName(bucket.tier)}, {u"resetTime"_s, orNull(bucket.resetTime)}};
}

QString sourceName(Status::Source source)
{
    switch (source) {
    case Status::Source::Program:
        return u"program"_s;
    case Status::Source::Daemon:
        return u"daemon"_s;
    case Status::Source::None:
        break;
    }
    return u"none"_s;
}

/// What a field of a template that is about one bucket says.
using BucketField = QString (*)(const PublishedBucket &, const QDateTime &now);
struct NamedBucketField {
    QLatin1StringView name;
    BucketField text;
};
constexpr auto bucketFields = std::to_array<NamedBucketField>({
    {.name = "percentage"_L1,
        .text =
            [](const PublishedBucket &bucket, const QDateTime &) {
                QString percentage = model::wholePercent(bucket.percentage);
                percentage.chop(1);
                return percentage;
            }},
    {.name = "fraction"_L1,
        .text = [](const PublishedBucket &bucket,
                    const QDateTime &) { return QString::number(bucket.fraction); }},
    {.name = "tier"_L1,
        .text = [](const PublishedBucket &bucket,
                    const QDateTime &) { return platform::tierName(bucket.tier); }},
    {.name = "color"_L1,
        .text
        = [](const PublishedBucket &bucket, const QDateTime &) { return colorOf(bucket.tier); }},
    {.name = "name"_L1,
        .text = [](const PublishedBucket &bucket, const QDateTime &) { return bucket.name; }},
    {.name = "window"_L1,
        .text = [](const PublishedBucket &bucket, const QDateTime &) { return bucket.window; }},
    {.name = "reset"_L1,
        .text =
            [](const PublishedBucket &bucket, const QDateTime &) {
                const auto reset = resetOf(bucket);
                return reset ? reset->toString(Qt::ISODate) : QString();
            }},
    {.name = "countdown"_L1, .text = countdownOf},
});

using StateField = QString (*)(const Status &);
struct NamedStateField {
    QLatin1StringView name;
    StateField text;
};
constexpr auto stateFields = std::to_array<NamedStateField>({
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

/// The bucket that "gemini.5h" names: of the first such group the first with that window.
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

std::optional<QString> bucketFieldText(
    const QString &field, const PublishedBucket *bucket, const QDateTime &now)
{
    const auto *found = std::find_if(bucketFields.begin(), bucketFields.end(),
        [&field](const auto &candidate) { return candidate.name == field; });
    if (found == bucketFields.end())
        return std::nullopt;
    if (bucket != nullptr)
        return found->text(*bucket, now);
    // So that a template may always put it where a colour has to stand.
    return found->name == "color"_L1 ? QString(noColor) : QString();
}

std::optional<QString> fieldText(const QString &field, const Status &status, const QDateTime &now)
{
    const auto &state = status.state;
    const auto *found = std::find_if(stateFields.begin(), stateFields.end(),
        [&field](const auto &candidate) { return candidate.name == field; });
    if (found != stateFields.end())
        return found->text(status);
    const auto parts = field.split(u'.');
    if (parts.size() == 1)
        return bucketFieldText(field, state.lowest ? &*state.lowest : nullptr, now);
    const bool isFamily = std::find(families.begin(), families.end(), parts[0]) != families.end();
    if (!isFamily || parts[1].isEmpty() || parts.size() > 3)
        return std::nullopt;
    return bucketFieldText(
        parts.size() == 3 ? parts[2] : u"percentage"_s, bucketOf(state, parts[0], parts[1]), now);
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
        text += (look.colours ? escapeBold + name + escapeEnd : name) + u'\n';
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
    const QString why = whyOffline(status.state);
    return title.isEmpty() ? why : QString(title + " ("_L1 + why + u')');
}

QString renderJson(const Status &status, JsonShape shape)
{
    const auto &state = status.state;
    QJsonArray items;
    for (const auto &item : state.items)
        items.append(
            QJsonObject{{u"text"_s, item.text}, {u"tier"_s, platform::tierName(item.tier)}});
    QJsonArray groups;
    for (const auto &group : state.groups) {
        QJsonArray buckets;
        for (const auto &bucket : group.buckets)
            buckets.append(toJson(bucket));
        groups.append(QJsonObject{
            {u"name"_s, group.name}, {u"family"_s, group.family}, {u"buckets"_s, buckets}});
    }
    const QJsonObject object{{u"schema"_s, 1}, {u"source"_s, sourceName(status.source)},
        {u"state"_s, platform::connectionName(state.connection)},
        {u"port"_s, state.port == 0 ? QJsonValue() : QJsonValue(qint64{state.port})},
        {u"lastUpdate"_s, orNull(state.lastUpdate)}, {u"error"_s, orNull(state.error)},
        {u"title"_s, orNull(state.title)}, {u"items"_s, items},
        {u"lowest"_s, state.lowest ? QJsonValue(toJson(*state.lowest)) : QJsonValue()},
        {u"groups"_s, groups}};
    const auto format
        = shape == JsonShape::OneLine ? QJsonDocument::Compact : QJsonDocument::Indented;
    return QString::fromUtf8(QJsonDocument(object).toJson(format)).trimmed();
}

QString renderWaybar(const Status &status, const QDateTime &now)
{
    const auto &state = status.state;
    QStringList lines;
    for (const auto &group : state.groups) {
        lines.append("<b>"_L1 + pangoEscaped(group.name) + "</b>"_L1);
        for (const auto &bucket : group.buckets) {
            const QString reset = resetText(bucket, now);
            lines.append(pangoEscaped(bucket.name) + ": "_L1
                + pangoColored(
                    model::percentWithOneDecimal(bucket.percentage), colorOf(bucket.tier))
                + (reset.isEmpty() ? QString() : QString(", "_L1 + reset)));
        }
    }
    if (!status.isOnline())
        lines.append(pangoEscaped(whyOffline(state)));
    QJsonArray classes;
    if (!status.isOnline())
        classes.append(platform::connectionName(state.connection));
    if (state.lowest)
        classes.append(platform::tierName(state.lowest->tier));
    QJsonObject object{
        {u"text"_s, pangoTitle(status)}, {u"tooltip"_s, lines.join(u'\n')}, {u"class"_s, classes}};
    if (state.lowest)
        object.insert(u"percentage"_s, qRound(state.lowest->percentage));
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QString renderI3blocks(const Status &status, BlockShape shape)
{
    QString title = pangoTitle(status);
    if (shape == BlockShape::OneLine)
        return title;
    const auto &lowest = status.state.lowest;
    const QString color = status.isOnline() && lowest ? colorOf(lowest->tier) : QString(noColor);
    const QString percentage = lowest ? model::wholePercent(lowest->percentage) : u"–"_s;
    return QStringList{title, pangoColored(percentage, color), color}.join(u'\n');
}

Result<QString, QString> renderTemplate(
    const QString &formatTemplate, const Status &status, const QDateTime &now)
{
    QString text;
    for (qsizetype i = 0; i < formatTemplate.size(); ++i) {
        const QChar c = formatTemplate[i];
        const QChar next = i + 1 < formatTemplate.size() ? formatTemplate[i + 1] : QChar();
        if ((c == u'{' || c == u'}') && next == c) {
            text += c;
            ++i;
        } else if (c == u'\\' && (next == u'n' || next == u't' || next == u'\\')) {
            if (next == u'\\')
                text += next;
            else
                text += next == u'n' ? u'\n' : u'\t';
            ++i;
        } else if (c == u'{') {
            const auto end = formatTemplate.indexOf(u'}', i);
            if (end < 0)
                return fail(u"a brace is not closed in the template"_s);
            const QString field = formatTemplate.mid(i + 1, end - i - 1);
            const auto filled = fieldText(field, status, now);
            if (!filled)
                return fail(u"the template's field '{%1}' does not exist"_s.arg(field));
            text += *filled;
            i = end;
        } else if (c == u'}') {
            return fail(u"a brace is not opened in the template"_s);
        } else {
            text += c;
        }
    }
    return text;
}

QStringList templateFields()
{
    QStringList names;
    for (const auto &field : stateFields)
        names.append(field.name);
    for (const auto &field : bucketFields)
        names.append(field.name);
    return names;
}

} // namespace brimwatch::cli
