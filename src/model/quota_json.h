#pragma once

#include "core/json_fields.h"
#include "core/result.h"
#include "model/quota_records.h"

#include <QByteArray>
#include <QJsonObject>

namespace brimwatch::model {

/// Decodes a whole body. All or nothing: one missing, null or wrongly typed required field refuses
/// it whole, as does a wrongly typed optional one, and nothing after it is read. Unknown keys are
/// ignored; of two equal keys one wins.
Result<QuotaSummaryEnvelope, DecodingError> decodeQuotaSummaryEnvelope(const QByteArray &body);
/// The same for a body that is a summary without an envelope.
Result<QuotaSummary, DecodingError> decodeQuotaSummary(const QByteArray &body);

/// What a daemon's answer says: the summary of an envelope, or else a bare summary.
Result<QuotaSummary, DecodingError> decodeAnswer(const QByteArray &body);

// The same keys back; absent fields are left out.
QJsonObject encode(const QuotaSummaryEnvelope &envelope);
QJsonObject encode(const QuotaSummary &summary);
QJsonObject encode(const QuotaGroup &group);
QJsonObject encode(const QuotaBucket &bucket);

} // namespace brimwatch::model
