#include "model/json_fields.h"

#include <QJsonDocument>

#include <cmath>
#include <utility>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

bool isAbsent(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull();
}

/// A text with half of a surrogate pair is none: it could neither be shown nor sent on.
bool isText(const QJsonValue &value)
{
    return value.isString() && value.toString().isValidUtf16();
}

} // namespace

JsonFields::JsonFields(QJsonObject object, QString path, std::optional<DecodingError> &firstError)
    : m_object(std::move(object))
    , m_path(std::move(path))
    , m_firstError(firstError)
{
}

QString JsonFields::text(QLatin1StringView key)
{
    const auto value = m_object.value(key);
    if (!isText(value))
        fails(pathOf(key), "a text"_L1);
    return value.toString();
}

std::optional<QString> JsonFields::optionalText(QLatin1StringView key)
{
    if (isAbsent(m_object.value(key)))
        return std::nullopt;
    return text(key);
}

double JsonFields::number(QLatin1StringView key)
{
    const auto value = m_object.value(key);
    if (!value.isDouble() || !std::isfinite(value.toDouble()))
        fails(pathOf(key), "a number"_L1);
    return value.toDouble();
}

std::optional<std::int64_t> JsonFields::optionalInteger(QLatin1StringView key)
{
    const auto value = m_object.value(key);
    if (isAbsent(value))
        return std::nullopt;
    // toInteger gives its default for what is no integer; two defaults tell that from an integer
    // that happens to be one.
    const auto integer = value.toInteger(0);
    if (!value.isDouble() || integer != value.toInteger(1))
        fails(pathOf(key), "an integer"_L1);
    return integer;
}

QString JsonFields::pathOf(QLatin1StringView key) const
{
    return m_path.isEmpty() ? QString(key) : m_path + u'.' + key;
}

void JsonFields::fails(const QString &path, QLatin1StringView expected)
{
    if (!m_firstError)
        m_firstError = DecodingError{path + u": " + expected + u" is needed"};
}

QJsonArray JsonFields::requiredArray(QLatin1StringView key)
{
    const auto value = m_object.value(key);
    if (!value.isArray())
        fails(pathOf(key), "an array"_L1);
    return value.toArray();
}

QJsonObject JsonFields::objectAt(const QJsonValue &value, const QString &path)
{
    if (!value.isObject())
        fails(path, "an object"_L1);
    return value.toObject();
}

Result<QJsonObject, DecodingError> parseJsonObject(const QByteArray &body)
{
    QJsonParseError error;
    const auto document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError)
        return fail(DecodingError{
            u"no JSON at byte "_s + QString::number(error.offset) + u": " + error.errorString()});
    if (!document.isObject())
        return fail(DecodingError{u"an object is needed"_s});
    return document.object();
}

} // namespace brimwatch::model
