#include "model/quota_json.h"

#include "core/json_fields.h"

#include <QJsonArray>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

// A braced list is evaluated in order, so the error reported is that of the first invalid field.

QuotaBucket readBucket(JsonFields fields)
{
    return {
        .bucketId = fields.text("bucketId"_L1),
        .displayName = fields.text("displayName"_L1),
        .description = fields.optionalText("description"_L1),
        .window = fields.optionalText("window"_L1),
        // Deliberate: one bucket without it rejects the whole body. A default of 0 would raise a
        // false alarm, and one of 1 would hide that quota is low.
        .remainingFraction = fields.number("remainingFraction"_L1),
        .resetTime = fields.optionalText("resetTime"_L1),
    };
}

QuotaGroup readGroup(JsonFields fields)
{
    return {
        .displayName = fields.text("displayName"_L1),
        .description = fields.optionalText("description"_L1),
        .buckets = fields.records("buckets"_L1, readBucket),
    };
}

QuotaSummary readSummary(JsonFields fields)
{
    return {
        .groups = fields.records("groups"_L1, readGroup),
        .description = fields.optionalText("description"_L1),
    };
}

QuotaSummaryEnvelope readEnvelope(JsonFields fields)
{
    return {
        .response = fields.optionalRecord("response"_L1, readSummary),
        .code = fields.optionalText("code"_L1),
        .message = fields.optionalText("message"_L1),
    };
}

void insertIfPresent(QJsonObject &object, QLatin1StringView key, const std::optional<QString> &text)
{
    if (text)
        object.insert(key, *text);
}

template <typename Record> QJsonArray encodeAll(const QList<Record> &records)
{
    QJsonArray array;
    for (const auto &record : records)
        array.append(encode(record));
    return array;
}

} // namespace

Result<QuotaSummaryEnvelope, DecodingError> decodeQuotaSummaryEnvelope(const QByteArray &body)
{
    return parseJsonObject(body).and_then(
        [](const QJsonObject &object) { return decodeRecord(object, readEnvelope); });
}

Result<QuotaSummary, DecodingError> decodeQuotaSummary(const QByteArray &body)
{
    return parseJsonObject(body).and_then(
        [](const QJsonObject &object) { return decodeRecord(object, readSummary); });
}

Result<QuotaSummary, DecodingError> decodeAnswer(const QByteArray &body)
{
    return parseJsonObject(body).and_then(
        [](const QJsonObject &object) -> Result<QuotaSummary, DecodingError> {
            auto envelope = decodeRecord(object, readEnvelope);
            if (envelope && envelope->response)
                return *std::move(envelope->response);
            auto bare = decodeRecord(object, readSummary);
            // The error of an invalid envelope says more than the missing groups of a bare summary.
            if (!bare && !envelope)
                return fail(std::move(envelope.error()));
            return bare;
        });
}

QJsonObject encode(const QuotaSummaryEnvelope &envelope)
{
    QJsonObject object;
    if (envelope.response)
        object.insert("response"_L1, encode(*envelope.response));
    insertIfPresent(object, "code"_L1, envelope.code);
    insertIfPresent(object, "message"_L1, envelope.message);
    return object;
}

QJsonObject encode(const QuotaSummary &summary)
{
    QJsonObject object{{"groups"_L1, encodeAll(summary.groups)}};
    insertIfPresent(object, "description"_L1, summary.description);
    return object;
}

QJsonObject encode(const QuotaGroup &group)
{
    QJsonObject object{
        {"displayName"_L1, group.displayName}, {"buckets"_L1, encodeAll(group.buckets)}};
    insertIfPresent(object, "description"_L1, group.description);
    return object;
}

QJsonObject encode(const QuotaBucket &bucket)
{
    QJsonObject object{
        {"bucketId"_L1, bucket.bucketId},
        {"displayName"_L1, bucket.displayName},
        {"remainingFraction"_L1, bucket.remainingFraction},
    };
    insertIfPresent(object, "description"_L1, bucket.description);
    insertIfPresent(object, "window"_L1, bucket.window);
    if (bucket.resetTime)
        object.insert("resetTime"_L1, bucket.resetTime->text());
    return object;
}

} // namespace brimwatch::model
