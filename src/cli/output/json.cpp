#include "cli/output/forms.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

QJsonValue orNull(const std::optional<std::int64_t> &number)
{
    return number ? QJsonValue(qint64{*number}) : QJsonValue();
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject toJson(const platform::PublishedBucket &bucket)
{
    return {{u"id"_s, bucket.id}, {u"name"_s, bucket.name}, {u"window"_s, orNull(bucket.window)},
        {u"fraction"_s, bucket.fraction}, {u"percentage"_s, bucket.percentage},
        {u"tier"_s, platform::tierName(bucket.tier)}, {u"resetTime"_s, orNull(bucket.resetTime)},
        {u"outlook"_s, orNull(bucket.outlook)}, {u"runOutTime"_s, orNull(bucket.runOutTime)},
        {u"runOutChance"_s, bucket.runOutChance ? QJsonValue(*bucket.runOutChance) : QJsonValue()}};
}

} // namespace

QString renderJson(const Status &status, Layout layout)
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
    const QJsonObject object{{u"schema"_s, 1}, {u"addition"_s, 1},
        {u"source"_s, sourceName(status.source)},
        {u"state"_s, platform::connectionName(state.connection)},
        {u"port"_s, state.port == 0 ? QJsonValue() : QJsonValue(qint64{state.port})},
        {u"lastUpdate"_s, orNull(state.lastUpdate)}, {u"error"_s, orNull(state.error)},
        {u"title"_s, orNull(state.title)}, {u"items"_s, items},
        {u"lowest"_s, state.lowest ? QJsonValue(toJson(*state.lowest)) : QJsonValue()},
        {u"groups"_s, groups}};
    const auto format
        = layout == Layout::OneLine ? QJsonDocument::Compact : QJsonDocument::Indented;
    return QString::fromUtf8(QJsonDocument(object).toJson(format)).trimmed();
}

} // namespace brimwatch::cli
