#include "cli/status.h"

#include "forecast/outlook_text.h"
#include "model/percent.h"

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

Status offlineStatus(const QString &reason)
{
    Status status;
    status.state.connection = platform::PublishedState::Connection::Offline;
    status.state.error = reason;
    return status;
}

QString sourceName(Status::Source source)
{
    switch (source) {
    case Status::Source::Program:
        return u"program"_s;
    case Status::Source::Daemon:
        return u"daemon"_s;
    case Status::Source::None:
        break;
    }
    return u"none"_s;
}

QString offlineReason(const Status &status)
{
    if (status.state.connection == platform::PublishedState::Connection::Connecting)
        return u"connecting"_s;
    return status.state.error.isEmpty() ? u"offline"_s : status.state.error;
}

std::optional<QDateTime> resetTimeOf(const platform::PublishedBucket &bucket)
{
    return bucket.resetTime ? std::optional(QDateTime::fromSecsSinceEpoch(*bucket.resetTime))
                            : std::nullopt;
}

namespace {

forecast::OutlookText outlookOf(const platform::PublishedBucket &bucket)
{
    return {.verdict = forecast::verdictNamed(bucket.outlook),
        .window = bucket.window,
        .runOut = bucket.runOutTime
            ? std::optional(QDateTime::fromSecsSinceEpoch(*bucket.runOutTime))
            : std::nullopt,
        .reset = resetTimeOf(bucket)};
}

} // namespace

QString resetText(const platform::PublishedBucket &bucket, const QDateTime &now)
{
    const auto outlook = outlookOf(bucket);
    if (outlook.verdict == forecast::Verdict::UsedUp)
        return outlook.words(now);
    const auto reset = resetTimeOf(bucket);
    if (!reset)
        return {};
    return *reset <= now ? u"refreshed"_s
                         : QString("resets in "_L1 + model::countdownText(now, *reset));
}

QString outlookText(const platform::PublishedBucket &bucket, const QDateTime &now)
{
    const auto outlook = outlookOf(bucket);
    switch (outlook.verdict) {
    case forecast::Verdict::RunsOut:
        return outlook.words(now);
    case forecast::Verdict::Close:
        return u"may run out"_s;
    case forecast::Verdict::UsedUp:
    case forecast::Verdict::Lasts:
    case forecast::Verdict::Silent:
        break;
    }
    return {};
}

QString timesText(const platform::PublishedBucket &bucket, const QDateTime &now)
{
    const QString reset = resetText(bucket, now);
    const QString outlook = outlookText(bucket, now);
    return reset.isEmpty() || outlook.isEmpty() ? QString(reset + outlook)
                                                : QString(reset + ", "_L1 + outlook);
}

} // namespace brimwatch::cli
