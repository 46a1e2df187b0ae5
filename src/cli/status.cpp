#include "cli/status.h"

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

QString resetText(const platform::PublishedBucket &bucket, const QDateTime &now)
{
    const auto reset = resetTimeOf(bucket);
    if (!reset)
        return {};
    return *reset <= now ? u"refreshed"_s
                         : QString("resets in "_L1 + model::countdownText(now, *reset));
}

} // namespace brimwatch::cli
