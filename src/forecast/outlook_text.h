#pragma once

#include "core/date_styles.h"
#include "forecast/outlook.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace brimwatch::model {
struct QuotaBucket;
}

namespace brimwatch::forecast {

/// An outlook as others may know it: no more exact than it is likely to be right.
struct RoundedOutlook {
    Verdict verdict = Verdict::Silent;
    std::optional<double> chance = {}; ///< In steps of 0.05.
    /// A quarter of an hour of the five-hour window, an hour of the week; the reset itself when
    /// that comes before.
    std::optional<std::chrono::sys_seconds> runOut = {};

    bool operator==(const RoundedOutlook &) const = default;
};

/// `window` is as the daemon names it; `reset` that of the bucket.
RoundedOutlook rounded(
    const Outlook &outlook, QStringView window, std::optional<std::chrono::sys_seconds> reset);

/// "lasts", "close", "runs-out" or "used-up"; empty where silent.
QString verdictName(Verdict verdict);
/// Silent for any other text.
Verdict verdictNamed(QStringView name);

/// What the words are made from, whoever tells it.
struct OutlookText {
    Verdict verdict = Verdict::Silent;
    QString window; ///< As the daemon names it.
    std::optional<QDateTime> runOut = {}; ///< As RoundedOutlook has it.
    std::optional<QDateTime> reset = {};
    std::optional<double> chance = {}; ///< As RoundedOutlook has it; in no words.

    /// "runs out around 15:45" in the styles given, "runs out within half an hour", "runs out
    /// around Thursday evening", "runs out shortly before the reset"; "used up, full again in 1h
    /// 12m"; empty while it lasts or may run out.
    QString words(const QDateTime &now, const DateStyles &styles = DateStyles::user()) const;
};

/// The text of a bucket's outlook.
OutlookText textOf(const model::QuotaBucket &bucket, const Outlook &outlook);

} // namespace brimwatch::forecast
