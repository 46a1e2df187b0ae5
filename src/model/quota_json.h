#pragma once

#include "core/json_fields.h"
#include "core/result.h"
#include "model/quota_records.h"

#include <QByteArray>
#include <QJsonObject>

namespace brimwatch::model {

/// Decodes a whole body. A required field that is missing, null or of the wrong type rejects the
/// body, as does an optional one of the wrong type, and nothing after it is read. Unknown keys are
/// ignored; of two equal keys one counts.
Result<QuotaSummaryEnvelope, DecodingError> decodeQuotaSummaryEnvelope(const QByteArray &body);
/// The same for a body that is a summary without an envelope.
Result<QuotaSummary, DecodingError> decodeQuotaSummary(const QByteArray &body);

/// The summary in a daemon's answer, which is an envelope or a bare summary.
Result<QuotaSummary, DecodingError> decodeAnswer(const QByteArray &body);

// Encoded under the same keys; absent fields are left out.
QJsonObject encode(const QuotaSummaryEnvelope &envelope);
QJsonObject encode(const QuotaSummary &summary);
QJsonObject encode(const QuotaGroup &group);
QJsonObject encode(const QuotaBucket &bucket);

} // namespace brimwatch::model
