#include "views/models/popover_model.h"

#include "platform/opener.h"
#include "platform/wording.h"
#include "service/quota_service.h"
#include "views/models/assign.h"
#include "views/models/theme.h"
#include "views/models/time_ago.h"

#include <QMetaObject>
#include <QUrl>

#include <algorithm>

namespace brimwatch::views {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qsizetype groupsPerTurn = 4;

/// The web page of the daemon at that port; invalid when there cannot be one.
QUrl daemonPage(std::int64_t port)
{
    constexpr std::int64_t largestPort = 65535;
    if (port < 0 || port > largestPort)
        return {};
    QUrl url;
    url.setScheme(u"http"_s);
    url.setHost(u"127.0.0.1"_s);
    url.setPort(static_cast<int>(port));
    url.setPath(u"/"_s);
    return url;
}

/// The groups that get a card, each with the rows that are left for it.
QList<ShownGroup> shownGroups(const QList<model::QuotaGroup> &groups)
{
    QList<ShownGroup> shown;
    qsizetype rowsLeft = PopoverModel::maximumRows;
    for (const auto &group : groups) {
        if (shown.size() == PopoverModel::maximumGroups)
            break;
        const qsizetype rows = std::min<qsizetype>(group.bucketCount(), rowsLeft);
        rowsLeft -= rows;
        shown.append({.group = group, .rows = rows});
    }
    return shown;
}

} // namespace

PopoverModel::PopoverModel(Dependencies dependencies, QObject *parent)
    : QObject(parent)
    , m_dependencies(std::move(dependencies))
    , m_service(m_dependencies.quotaService)
    , m_groups("group", [&theme = m_dependencies.theme] { return new GroupEntry(theme); })
    // A hidden icon need not turn.
    , m_spin([this] { return m_isShown && m_service.isRefreshing(); })
{
    connect(&m_dependencies.theme, &Theme::changed, this, &PopoverModel::statusColorChanged);
    connect(this, &PopoverModel::showingSettingsChanged, this, &PopoverModel::watchTime);
    readAll();
}

void PopoverModel::setShown(bool shown)
{
    if (!assign(m_isShown, shown))
        return;
    watchTime();
    if (!shown) {
        m_service.disconnect(this);
    } else {
        connectService();
        readAll();
        // The other cards follow after the first frame was requested.
        QMetaObject::invokeMethod(this, &PopoverModel::addGroups, Qt::QueuedConnection);
    }
    Q_EMIT isShownChanged();
}

/// The dashboard alone shows seconds.
void PopoverModel::watchTime()
{
    if (!m_isShown || m_showingSettings)
        m_timeWatch.reset();
    else if (!m_timeWatch)
        m_timeWatch.emplace(m_service);
}

void PopoverModel::connectService()
{
    using service::QuotaService;
    connect(&m_service, &QuotaService::quotaSummaryChanged, this, [this] {
        readGroups();
        readBody();
    });
    connect(&m_service, &QuotaService::connectionStatusChanged, this, &PopoverModel::readStatus);
    connect(&m_service, &QuotaService::isRefreshingChanged, this, [this] {
        readRefreshing();
        readBody();
    });
    connect(&m_service, &QuotaService::errorMessageChanged, this, &PopoverModel::readError);
    connect(&m_service, &QuotaService::lastUpdatedChanged, this, &PopoverModel::readUpdated);
    connect(&m_service, &QuotaService::currentTimeChanged, this, &PopoverModel::readTime);
}

void PopoverModel::readAll()
{
    readGroups();
    readStatus();
    readRefreshing();
    readError();
    readUpdated();
    readBody();
}

void PopoverModel::readGroups()
{
    const auto &summary = m_service.quotaSummary();
    const auto sorted = summary ? summary->sortedGroups() : QList<model::QuotaGroup>{};
    m_sortedGroups = shownGroups(sorted);
    if (assign(m_moreText, andMore(sorted.size() - m_sortedGroups.size())))
        Q_EMIT moreTextChanged();
    m_groups.update(m_sortedGroups.mid(0, m_groupsShown), m_service.currentTime());
    if (m_isShown && m_groupsShown < m_sortedGroups.size())
        QMetaObject::invokeMethod(this, &PopoverModel::addGroups, Qt::QueuedConnection);
}

void PopoverModel::addGroups()
{
    if (!m_isShown || m_groupsShown >= m_sortedGroups.size())
        return;
    m_groupsShown += groupsPerTurn;
    readGroups();
}

void PopoverModel::readStatus()
{
    const auto &status = m_service.connectionStatus();
    if (assign(m_statusText, shownText(status.displayText())))
        Q_EMIT statusTextChanged();
    if (assign(m_statusColor, status.statusDotColor()))
        Q_EMIT statusColorChanged();
}

void PopoverModel::readError()
{
    if (assign(m_errorText, shownText(m_service.errorMessage().value_or(QString()))))
        Q_EMIT errorTextChanged();
}

void PopoverModel::readRefreshing()
{
    if (assign(m_isRefreshing, m_service.isRefreshing()))
        Q_EMIT isRefreshingChanged();
    if (m_isRefreshing && m_isShown)
        m_spin.trigger();
}

void PopoverModel::readBody()
{
    Body body = Body::Offline;
    if (const auto &summary = m_service.quotaSummary(); summary && !summary->groups.isEmpty())
        body = Body::Cards;
    else if (m_service.isRefreshing())
        body = Body::Loading;
    if (assign(m_body, body))
        Q_EMIT bodyChanged();
}

void PopoverModel::readUpdated()
{
    const auto lastUpdated = m_service.lastUpdated();
    const QDateTime now = m_service.currentTime();
    const QString waiting = u"Waiting for update"_s;
    if (assign(m_updatedText, lastUpdated ? "Updated "_L1 + timeAgo(*lastUpdated, now) : waiting))
        Q_EMIT updatedTextChanged();
    if (assign(m_updatedAccessibleName,
            lastUpdated ? "Updated "_L1 + accessibleTimeAgo(*lastUpdated, now) : waiting))
        Q_EMIT updatedAccessibleNameChanged();
}

void PopoverModel::readTime()
{
    m_groups.setTime(m_service.currentTime());
    readUpdated();
}

QColor PopoverModel::statusColor() const
{
    return m_dependencies.theme.fill(m_statusColor);
}

QString PopoverModel::refreshToolTip() const
{
    return platform::wording().refreshToolTip;
}

void PopoverModel::performRefresh()
{
    if (m_spin.isSpinning() || m_service.isRefreshing())
        return;
    triggerSpinAnimation();
    // Queued, so that the caller's event ends before the refresh changes what is shown.
    QMetaObject::invokeMethod(&m_service, &service::QuotaService::refresh, Qt::QueuedConnection);
}

void PopoverModel::openAntigravity()
{
    if (m_dependencies.opener.openAntigravity()) {
        // Before the new window can be there.
        close();
        return;
    }
    const auto &daemon = m_service.activeDaemon();
    if (!daemon || !daemon->httpPort)
        return;
    if (const QUrl page = daemonPage(*daemon->httpPort); page.isValid()) {
        close();
        m_dependencies.opener.openUrl(page);
    }
}

void PopoverModel::quit() const
{
    if (m_dependencies.terminate)
        m_dependencies.terminate();
}

void PopoverModel::close() const
{
    if (m_dependencies.close)
        m_dependencies.close();
}

} // namespace brimwatch::views
