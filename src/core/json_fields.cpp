#include "core/json_fields.h"

#include <QJsonDocument>

#include <cmath>
#include <utility>

namespace brimwatch {

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

JsonFields::JsonFields(QJsonObject object, std::optional<DecodingError> &firstError)
    : m_object(std::move(object))
    , m_firstError(firstError)
{
}

JsonFields::JsonFields(QJsonObject object, const JsonFields &parent, Step step)
    : m_object(std::move(object))
    , m_parent(&parent)
    , m_step(step)
    , m_firstError(parent.m_firstError)
{
}

QString JsonFields::text(QLatin1StringView key)
{
    const auto value = valueOf(key);
    if (isText(value))
        return value.toString();
    fails({.key = key, .index = std::nullopt}, "a text"_L1);
    return {};
}

std::optional<QString> JsonFields::optionalText(QLatin1StringView key)
{
    if (isAbsent(valueOf(key)))
        return std::nullopt;
    return text(key);
}

double JsonFields::number(QLatin1StringView key)
{
    const auto value = valueOf(key);
    if (value.isDouble() && std::isfinite(value.toDouble()))
        return value.toDouble();
    fails({.key = key, .index = std::nullopt}, "a number"_L1);
    return {};
}

std::optional<std::int64_t> JsonFields::optionalInteger(QLatin1StringView key)
{
    const auto value = valueOf(key);
    if (isAbsent(value))
        return std::nullopt;
    // toInteger gives its default for what is no integer; two defaults tell that from an integer
    // that happens to be one.
    const auto integer = value.toInteger(0);
    if (value.isDouble() && integer == value.toInteger(1))
        return integer;
    fails({.key = key, .index = std::nullopt}, "an integer"_L1);
    return std::nullopt;
}

QJsonValue JsonFields::valueOf(QLatin1StringView key) const
{
    return m_firstError ? QJsonValue(QJsonValue::Undefined) : m_object.value(key);
}

QJsonArray JsonFields::requiredArray(QLatin1StringView key)
{
    const auto value = valueOf(key);
    if (!value.isArray())
        fails({.key = key, .index = std::nullopt}, "an array"_L1);
    return value.toArray();
}

JsonFields JsonFields::fieldsOf(const QJsonValue &value, const Step &step)
{
    if (!value.isObject())
        fails(step, "an object"_L1);
    return {value.toObject(), *this, step};
}

void JsonFields::fails(const Step &step, QLatin1StringView expected)
{
    if (!m_firstError)
        m_firstError = DecodingError{pathOf(step) + u": " + expected + u" is needed"};
}

QString JsonFields::pathOf(const Step &step) const
{
    QString path = m_parent == nullptr ? QString() : m_parent->pathOf(m_step) + u'.';
    path += step.key;
    if (step.index)
        path += u'[' + QString::number(*step.index) + u']';
    return path;
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

} // namespace brimwatch
