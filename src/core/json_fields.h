#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QLatin1StringView>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>

namespace brimwatch {

/// Why a body cannot be decoded: the path of a key, and what was expected there. It contains none
/// of the body's values.
struct DecodingError {
    QString description;
};

/// The fields of one JSON object, read strictly: a required field that is missing or null and any
/// field of the wrong type is an error; an optional one that is missing or null is absent.
///
/// The first error ends the reading: every field after it is empty, no further record of an array
/// is read, and the caller discards the result. So a record's fields can be read in one expression,
/// and a body with a million errors takes no longer than one with the first of them.
class JsonFields {
public:
    /// The outermost object of a body. `firstError` must outlive the fields.
    JsonFields(QJsonObject object, std::optional<DecodingError> &firstError);

    QString text(QLatin1StringView key);
    std::optional<QString> optionalText(QLatin1StringView key);
    double number(QLatin1StringView key);
    /// An integer of 64 bits: 1.0 is one, 1.5 and 2^63 are not.
    std::optional<std::int64_t> optionalInteger(QLatin1StringView key);

    /// The records of an array of objects, each read by `read(JsonFields)`, which must not keep the
    /// fields.
    template <typename Read> auto records(QLatin1StringView key, Read read)
    {
        const auto array = requiredArray(key);
        // No memory is reserved: reading may stop at the first record.
        QList<decltype(read(std::declval<JsonFields>()))> records;
        for (qsizetype i = 0; i < array.size() && !m_firstError; ++i)
            records.append(read(fieldsOf(array.at(i), Step{.key = key, .index = i})));
        return records;
    }

    /// The record of an object, read by `read(JsonFields)`, which must not keep the fields.
    template <typename Read>
    auto optionalRecord(QLatin1StringView key, Read read)
        -> std::optional<decltype(read(std::declval<JsonFields>()))>
    {
        const auto value = valueOf(key);
        if (value.isUndefined() || value.isNull())
            return std::nullopt;
        return read(fieldsOf(value, Step{.key = key, .index = std::nullopt}));
    }

private:
    /// From an object to a nested one.
    struct Step {
        QLatin1StringView key;
        std::optional<qsizetype> index; ///< In the array of that key.
    };

    JsonFields(QJsonObject object, const JsonFields &parent, Step step);

    /// Undefined when it is missing and after an error.
    QJsonValue valueOf(QLatin1StringView key) const;
    QJsonArray requiredArray(QLatin1StringView key);
    JsonFields fieldsOf(const QJsonValue &value, const Step &step);
    void fails(const Step &step, QLatin1StringView expected);
    QString pathOf(const Step &step) const;

    QJsonObject m_object;
    const JsonFields *m_parent = nullptr; ///< Null for the outermost object.
    Step m_step; ///< From the parent to here.
    std::optional<DecodingError> &m_firstError;
};

/// The object that a body consists of. A body that is no JSON, or another value, is an error.
Result<QJsonObject, DecodingError> parseJsonObject(const QByteArray &body);

/// The record that `read(JsonFields)` decodes from `object`.
template <typename Read>
auto decodeRecord(const QJsonObject &object, Read read)
    -> Result<decltype(read(std::declval<JsonFields>())), DecodingError>
{
    std::optional<DecodingError> error;
    auto record = read(JsonFields(object, error));
    if (error)
        return fail(*std::move(error));
    return record;
}

} // namespace brimwatch
