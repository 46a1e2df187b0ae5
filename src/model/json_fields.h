#pragma once

#include "core/result.h"
#include "model/quota_json.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1StringView>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>

namespace brimwatch::model {

/// The fields of one JSON object, read strictly: a required field that is missing or null and any
/// field of the wrong type is an error; an optional one that is missing or null is absent.
///
/// Reading goes on after an error, with empty values; the first error is what counts, and the
/// caller throws the record away. So a record's fields can be read in one expression.
class JsonFields {
public:
    /// `path` names the object in error texts, empty for the outermost one. `firstError` is shared
    /// by the objects of one body and must outlive them.
    JsonFields(QJsonObject object, QString path, std::optional<DecodingError> &firstError);

    QString text(QLatin1StringView key);
    std::optional<QString> optionalText(QLatin1StringView key);
    double number(QLatin1StringView key);
    /// Integers of 64 bits; 1.0 is one of them, 1.5 and 2^63 are none.
    std::optional<std::int64_t> optionalInteger(QLatin1StringView key);

    /// The records of an array of objects, each read by `read(JsonFields)`.
    template <typename Read> auto records(QLatin1StringView key, Read read)
    {
        const auto array = requiredArray(key);
        QList<decltype(read(std::declval<JsonFields>()))> records;
        records.reserve(array.size());
        for (qsizetype i = 0; i < array.size(); ++i) {
            const QString path = pathOf(key) + u'[' + QString::number(i) + u']';
            records.append(read(JsonFields(objectAt(array.at(i), path), path, m_firstError)));
        }
        return records;
    }

    /// The record of an object, read by `read(JsonFields)`.
    template <typename Read>
    auto optionalRecord(QLatin1StringView key, Read read)
        -> std::optional<decltype(read(std::declval<JsonFields>()))>
    {
        const auto value = m_object.value(key);
        if (value.isUndefined() || value.isNull())
            return std::nullopt;
        return read(JsonFields(objectAt(value, pathOf(key)), pathOf(key), m_firstError));
    }

private:
    QString pathOf(QLatin1StringView key) const;
    void fails(const QString &path, QLatin1StringView expected);
    QJsonArray requiredArray(QLatin1StringView key);
    QJsonObject objectAt(const QJsonValue &value, const QString &path);

    QJsonObject m_object;
    QString m_path;
    std::optional<DecodingError> &m_firstError;
};

/// The object that a whole body is. Bodies that are no JSON or another value fail.
Result<QJsonObject, DecodingError> parseJsonObject(const QByteArray &body);

/// The record that `read(JsonFields)` makes of `object`.
template <typename Read>
auto decodeRecord(const QJsonObject &object, Read read)
    -> Result<decltype(read(std::declval<JsonFields>())), DecodingError>
{
    std::optional<DecodingError> error;
    auto record = read(JsonFields(object, {}, error));
    if (error)
        return fail(*std::move(error));
    return record;
}

} // namespace brimwatch::model
