#include "app/state_description.h"

#include "core/plain_text.h"
#include "service/diagnostics.h"
#include "service/quota_service.h"

#include <utility>

namespace brimwatch::app {

using namespace Qt::Literals::StringLiterals;

namespace {

using platform::PublishedBucket;
using platform::PublishedGroup;
using platform::PublishedState;

/// Turns texts into lines without what is private.
class Publisher {
public:
    Publisher(const service::QuotaService &service, const QString &home)
        : m_service(service)
        , m_home(home)
    {
    }

    QString line(const QString &text, qsizetype longest) const
    {
        // Once more at the end: a line break may have stood where the token has a blank.
        return withoutSecrets(
            asOneLine(withoutSecrets(text, m_service, m_home), longest), m_service, m_home);
    }

    PublishedBucket bucket(const model::QuotaBucket &bucket) const
    {
        const auto reset = bucket.parsedResetDate();
        return {.id = name(bucket.bucketId),
            .name = name(bucket.displayName),
            .window = name(bucket.window.value_or(QString())),
            .fraction = bucket.remainingFraction,
            .percentage = bucket.percentage(),
            .tier = bucket.statusTier(),
            .resetTime = reset ? std::optional(reset->toSecsSinceEpoch()) : std::nullopt};
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
    QString name(const QString &text) const { return line(text, PublishedState::longestName); }

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
    const QString &m_home;
};

} // namespace

QString withoutSecrets(QString text, const service::QuotaService &service, const QString &home)
{
    constexpr qsizetype shortestToken = 4;
    const auto &daemon = service.activeDaemon();
    if (daemon && daemon->csrfToken && daemon->csrfToken->size() >= shortestToken)
        text.replace(*daemon->csrfToken, u"…"_s);
    // "/" is in anything, and the home of nobody.
    if (home.size() > 1)
        text.replace(home, u"~"_s);
    return text;
}

PublishedState describeState(const service::QuotaService &service, const QString &home)
{
    using Connection = PublishedState::Connection;
    const Publisher publisher(service, home);
    PublishedState state;
    const auto &status = service.connectionStatus();
    if (const auto *connected
        = std::get_if<service::ConnectionStatus::Connected>(&status.state())) {
        state.connection = Connection::Connected;
        state.port = connected->port;
    } else if (status.isOffline()) {
        state.connection = Connection::Offline;
        state.error = publisher.line(status.displayText(), PublishedState::longestText);
    }
    if (const auto &updated = service.lastUpdated())
        state.lastUpdate = updated->toSecsSinceEpoch();
    state.title = publisher.line(service.menuBarTitle(), PublishedState::longestText);
    const auto items = service.toolbarStatItems().mid(0, PublishedState::mostItems);
    for (const auto &item : items)
        state.items.append({.text = publisher.line(item.text, PublishedState::longestName),
            .tier = item.bucket.statusTier()});
    if (const auto lowest = service.lowestSelectedBucket())
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
    return beginningOf(
        withoutSecrets(
            diagnostics.generateDiagnosticInfo(service::Diagnostics::Token::Cut), service, home),
        longestReport);
}

} // namespace brimwatch::app
