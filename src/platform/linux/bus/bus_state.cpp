#include "platform/linux/bus/bus_state.h"

#include "core/plain_text.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <algorithm>
#include <array>
#include <cmath>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

using Connection = PublishedState::Connection;
using model::QuotaTier;

QVariantMap toMap(const PublishedBucket &bucket)
{
    QVariantMap map{{u"id"_s, bucket.id}, {u"name"_s, bucket.name}, {u"window"_s, bucket.window},
        {u"fraction"_s, bucket.fraction}, {u"percentage"_s, bucket.percentage},
        {u"tier"_s, tierName(bucket.tier)}};
    if (bucket.resetTime)
        map.insert(u"reset-time"_s, qlonglong{*bucket.resetTime});
    if (!bucket.outlook.isEmpty())
        map.insert(u"outlook"_s, bucket.outlook);
    if (bucket.runOutTime)
        map.insert(u"run-out-time"_s, qlonglong{*bucket.runOutTime});
    if (bucket.runOutChance)
        map.insert(u"run-out-chance"_s, *bucket.runOutChance);
    return map;
}

QVariantMap toMap(const PublishedItem &item)
{
    return {{u"text"_s, item.text}, {u"tier"_s, tierName(item.tier)}};
}

QVariantMap toMap(const PublishedGroup &group)
{
    QList<QVariantMap> buckets;
    for (const auto &bucket : group.buckets)
        buckets.append(toMap(bucket));
    return {{u"name"_s, group.name}, {u"family"_s, group.family},
        {u"buckets"_s, QVariant::fromValue(buckets)}};
}

QString textIn(const QVariantMap &map, const QString &key, qsizetype longest)
{
    const QVariant value = map.value(key);
    return value.typeId() == QMetaType::QString ? asOneLine(value.toString(), longest) : QString();
}

QString nameIn(const QVariantMap &map, const QString &key)
{
    return textIn(map, key, PublishedState::longestName);
}

double numberIn(const QVariantMap &map, const QString &key)
{
    const QVariant value = map.value(key);
    const double number = value.typeId() == QMetaType::Double ? value.toDouble() : 0.0;
    return std::isfinite(number) ? number : 0.0;
}

std::optional<std::int64_t> timeIn(const QVariantMap &map, const QString &key)
{
    const QVariant value = map.value(key);
    return value.typeId() == QMetaType::LongLong ? std::optional<std::int64_t>(value.toLongLong())
                                                 : std::nullopt;
}

/// Dictionaries in dictionaries come as they were on the wire.
QVariantMap mapIn(const QVariantMap &map, const QString &key)
{
    const QVariant value = map.value(key);
    if (value.metaType() == QMetaType::fromType<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        return argument.currentSignature() == "a{sv}"_L1 ? qdbus_cast<QVariantMap>(argument)
                                                         : QVariantMap();
    }
    return value.toMap();
}

QList<QVariantMap> mapsIn(const QVariantMap &map, const QString &key)
{
    const QVariant value = map.value(key);
    if (value.metaType() == QMetaType::fromType<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        return argument.currentSignature() == "aa{sv}"_L1 ? qdbus_cast<QList<QVariantMap>>(argument)
                                                          : QList<QVariantMap>();
    }
    return value.value<QList<QVariantMap>>();
}

QuotaTier tierIn(const QVariantMap &map)
{
    const QString name = nameIn(map, u"tier"_s);
    for (const auto tier : {QuotaTier::healthy, QuotaTier::warning}) {
        if (name == tierName(tier))
            return tier;
    }
    return QuotaTier::critical;
}

PublishedBucket toBucket(const QVariantMap &map)
{
    return {.id = nameIn(map, u"id"_s),
        .name = nameIn(map, u"name"_s),
        .window = nameIn(map, u"window"_s),
        .fraction = numberIn(map, u"fraction"_s),
        .percentage = std::clamp(numberIn(map, u"percentage"_s), 0.0, 100.0),
        .tier = tierIn(map),
        .resetTime = timeIn(map, u"reset-time"_s),
        .outlook = nameIn(map, u"outlook"_s),
        .runOutTime = timeIn(map, u"run-out-time"_s),
        .runOutChance = map.contains(u"run-out-chance"_s)
            ? std::optional(std::clamp(numberIn(map, u"run-out-chance"_s), 0.0, 1.0))
            : std::nullopt};
}

} // namespace

QVariantMap toBusProperties(const PublishedState &state)
{
    static const int listOfMaps = qDBusRegisterMetaType<QList<QVariantMap>>().id();
    Q_UNUSED(listOfMaps)
    QList<QVariantMap> items;
    for (const auto &item : state.items)
        items.append(toMap(item));
    QList<QVariantMap> groups;
    for (const auto &group : state.groups)
        groups.append(toMap(group));
    return {{u"State"_s, connectionName(state.connection)}, {u"Port"_s, uint(state.port)},
        {u"LastUpdate"_s, qlonglong{state.lastUpdate.value_or(0)}}, {u"Error"_s, state.error},
        {u"Title"_s, state.title}, {u"Items"_s, QVariant::fromValue(items)},
        {u"Lowest"_s, state.lowest ? toMap(*state.lowest) : QVariantMap()},
        {u"Groups"_s, QVariant::fromValue(groups)}};
}

PublishedState fromBusProperties(const QVariantMap &properties)
{
    PublishedState state;
    const QString connection = nameIn(properties, u"State"_s);
    if (connection == connectionName(Connection::Connected))
        state.connection = Connection::Connected;
    else if (connection == connectionName(Connection::Offline))
        state.connection = Connection::Offline;
    const QVariant port = properties.value(u"Port"_s);
    state.port = port.typeId() == QMetaType::UInt ? port.toUInt() : 0;
    state.lastUpdate = timeIn(properties, u"LastUpdate"_s);
    if (state.lastUpdate == 0)
        state.lastUpdate.reset();
    state.error = textIn(properties, u"Error"_s, PublishedState::longestText);
    state.title = textIn(properties, u"Title"_s, PublishedState::longestText);
    const auto items = mapsIn(properties, u"Items"_s).mid(0, PublishedState::mostItems);
    for (const auto &map : items)
        state.items.append({.text = nameIn(map, u"text"_s), .tier = tierIn(map)});
    const QVariantMap lowest = mapIn(properties, u"Lowest"_s);
    if (!lowest.isEmpty())
        state.lowest = toBucket(lowest);
    qsizetype room = PublishedState::mostBuckets;
    const auto groups = mapsIn(properties, u"Groups"_s).mid(0, PublishedState::mostGroups);
    for (const auto &map : groups) {
        PublishedGroup group{
            .name = nameIn(map, u"name"_s), .family = nameIn(map, u"family"_s), .buckets = {}};
        const auto buckets = mapsIn(map, u"buckets"_s).mid(0, room);
        for (const auto &bucket : buckets)
            group.buckets.append(toBucket(bucket));
        room -= buckets.size();
        state.groups.append(group);
    }
    return state;
}

} // namespace brimwatch::platform
