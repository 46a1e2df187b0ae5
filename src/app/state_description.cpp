#include "app/state_description.h"

#include "core/plain_text.h"
#include "forecast/outlook_text.h"
#include "service/diagnostics.h"
#include "service/quota_service.h"

#include <utility>

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::PublishedBucket;
using platform::PublishedGroup;
using platform::PublishedState;

/// Describes the parts of the state, their texts redacted and within their bounds.
class Publisher {
public:
    Publisher(const service::QuotaService &service, Redactor redactor)
        : m_service(service)
        , m_redactor(std::move(redactor))
    {
    }

    QString text(const QString &text) const
    {
        return m_redactor.line(text, PublishedState::longestText);
    }

    QString name(const QString &text) const
    {
        return m_redactor.line(text, PublishedState::longestName);
    }

    PublishedBucket bucket(const model::QuotaBucket &bucket) const
    {
        const auto reset = bucket.parsedResetDate();
        const auto outlook = m_service.outlook(bucket);
        const auto text = forecast::textOf(bucket, outlook);
        return {.id = name(bucket.bucketId),
            .name = name(bucket.displayName),
            .window = name(bucket.window.value_or(QString())),
            .fraction = bucket.remainingFraction,
            .percentage = bucket.percentage(),
            .tier = bucket.statusTier(),
            .resetTime = reset ? std::optional(reset->toSecsSinceEpoch()) : std::nullopt,
            .outlook = forecast::verdictName(text.verdict),
            .runOutTime
            = text.runOut ? std::optional(text.runOut->toSecsSinceEpoch()) : std::nullopt,
            .runOutChance = text.chance};
    }

    PublishedGroup group(const model::QuotaGroup &group, qsizetype mostBuckets) const
    {
        PublishedGroup published{
            .name = name(group.displayName), .family = family(group), .buckets = {}};
        const auto buckets = group.sortedBuckets().mid(0, mostBuckets);
        for (const auto &one : buckets)
            published.buckets.append(bucket(one));
        return published;
    }

private:
    static QString family(const model::QuotaGroup &group)
    {
        switch (group.groupSortPriority()) {
        case 0:
            return u"gemini"_s;
        case 1:
            return u"argon"_s;
        case 2:
            return u"claude"_s;
        default:
            return u"other"_s;
        }
    }

    const service::QuotaService &m_service;
    Redactor m_redactor;
};

} // namespace

Redactor redactorFor(const service::QuotaService &service, const QString &home)
{
    const auto &daemon = service.activeDaemon();
    return {daemon ? daemon->csrfToken : std::nullopt, home};
}

std::optional<std::int64_t> lastUpdateOf(const service::QuotaService &service)
{
    const auto updated = service.lastUpdated();
    return updated ? std::optional<std::int64_t>(updated->toSecsSinceEpoch()) : std::nullopt;
}

PublishedState describeState(const service::QuotaService &service, const QString &home)
{
    using Connection = PublishedState::Connection;
    const Publisher publisher(service, redactorFor(service, home));
    PublishedState state;
    const auto &status = service.connectionStatus();
    if (const auto *connected
        = std::get_if<service::ConnectionStatus::Connected>(&status.state())) {
        state.connection = Connection::Connected;
        state.port = connected->port;
    } else if (status.isOffline()) {
        state.connection = Connection::Offline;
        state.error = publisher.text(status.displayText());
    }
    state.lastUpdate = lastUpdateOf(service);
    state.title = publisher.text(service.menuBarTitle());
    const auto items = service.toolbarStatItems().mid(0, PublishedState::mostItems);
    for (const auto &item : items)
        state.items.append({.text = publisher.name(item.text), .tier = item.bucket.statusTier()});
    if (const auto &lowest = service.lowestSelectedBucket())
        state.lowest = publisher.bucket(*lowest);
    if (const auto &summary = service.quotaSummary()) {
        qsizetype room = PublishedState::mostBuckets;
        const auto groups = summary->sortedGroups().mid(0, PublishedState::mostGroups);
        for (const auto &group : groups) {
            state.groups.append(publisher.group(group, room));
            room -= state.groups.constLast().buckets.size();
        }
    }
    return state;
}

QString reportForOthers(const service::Diagnostics &diagnostics,
    const service::QuotaService &service, const QString &home)
{
    constexpr qsizetype longestReport = 16LL * 1024;
    const auto report = diagnostics.generateDiagnosticInfo(service::Diagnostics::Token::Truncated);
    return truncated(redactorFor(service, home).redacted(report), longestReport);
}

} // namespace brimwatch::app
