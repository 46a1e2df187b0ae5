#include "discovery/daemon_info.h"

#include "core/json_fields.h"

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;

namespace {

DaemonInfo readDaemonInfo(JsonFields fields)
{
    return {
        .pid = fields.optionalInteger("pid"_L1),
        .httpsPort = fields.optionalInteger("httpsPort"_L1),
        .httpPort = fields.optionalInteger("httpPort"_L1),
        .lsVersion = fields.optionalText("lsVersion"_L1),
        .csrfToken = fields.optionalText("csrfToken"_L1),
        .filePath = fields.optionalText("filePath"_L1),
    };
}

template <typename Value>
void insertIfPresent(QJsonObject &object, QLatin1StringView key, const std::optional<Value> &value)
{
    if (value)
        object.insert(key, QJsonValue(*value));
}

} // namespace

Result<DaemonInfo, DecodingError> decodeDaemonInfo(const QByteArray &json)
{
    return parseJsonObject(json).and_then(
        [](const QJsonObject &object) { return decodeRecord(object, readDaemonInfo); });
}

QJsonObject encode(const DaemonInfo &info)
{
    // QJsonValue knows qint64, which is another type than std::int64_t on some platforms.
    const auto integer = [](const std::optional<std::int64_t> &value) {
        return value ? std::optional(qint64{*value}) : std::nullopt;
    };
    QJsonObject object;
    insertIfPresent(object, "pid"_L1, integer(info.pid));
    insertIfPresent(object, "httpsPort"_L1, integer(info.httpsPort));
    insertIfPresent(object, "httpPort"_L1, integer(info.httpPort));
    insertIfPresent(object, "lsVersion"_L1, info.lsVersion);
    insertIfPresent(object, "csrfToken"_L1, info.csrfToken);
    insertIfPresent(object, "filePath"_L1, info.filePath);
    return object;
}

} // namespace brimwatch::discovery
