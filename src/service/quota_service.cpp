#include "service/quota_service.h"

#include "core/when_done.h"
#include "service/forecast_alerts.h"
#include "service/launch_at_login_service.h"
#include "service/low_quota_alerts.h"
#include "service/quota_forecasts.h"

#include <QTimer>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace brimwatch::service {

using namespace Qt::Literals::StringLiterals;

QuotaService::QuotaService(const Dependencies &dependencies, QObject *parent)
    : QObject(parent)
    , m_clock(dependencies.clock)
    , m_fetching(dependencies.fetching)
    , m_settings(dependencies.settings)
    , m_alerts(dependencies.alerts)
    , m_launchAtLogin(dependencies.launchAtLogin)
    , m_forecasts(dependencies.forecasts)
    , m_forecastAlerts(dependencies.forecastAlerts)
    , m_currentTime(m_clock.now())
{
    startPeriodicRefresh();
    if (m_alerts != nullptr)
        m_alerts->requestNotificationPermission();
    if (m_launchAtLogin != nullptr) {
        connect(m_launchAtLogin, &LaunchAtLoginService::objectWillChange, this,
            &QuotaService::objectWillChange);
        connect(m_launchAtLogin, &LaunchAtLoginService::changed, this,
            &QuotaService::launchAtLoginChanged);
    }
    QTimer::singleShot(0, this, &QuotaService::refresh);
}

QuotaService::~QuotaService() = default;

template <typename Store> void QuotaService::publish(Store store, Changed changed)
{
    Q_EMIT objectWillChange();
    store();
    Q_EMIT(this->*changed)();
}

template <typename T> void QuotaService::change(T QuotaService::*member, T value, Changed changed)
{
    if (this->*member != value)
        publish([&] { this->*member = std::move(value); }, changed);
}

template <typename T>
void QuotaService::changeState(T QuotaService::*member, T value, Changed changed)
{
    if (this->*member == value)
        return;
    const auto store = [&] {
        this->*member = std::move(value);
        startNextRevision();
    };
    publish(store, changed);
}

template <typename T, typename Value>
void QuotaService::changeSetting(const Setting<T> &setting, const Value &value, Changed changed)
{
    if (m_settings.value(setting) == value)
        return;
    const auto store = [&] {
        m_settings.setValue(setting, value);
        startNextRevision();
    };
    publish(store, changed);
}

void QuotaService::startNextRevision()
{
    ++m_revision;
    announceLater();
}

void QuotaService::announceLater()
{
    if (m_announcementPending)
        return;
    m_announcementPending = true;
    QMetaObject::invokeMethod(this, &QuotaService::announce, Qt::QueuedConnection);
}

void QuotaService::announce()
{
    m_announcementPending = false;
    const bool refreshEnded = std::exchange(m_refreshEnded, false);
    if (std::exchange(m_announcedRevision, m_revision) != m_revision)
        Q_EMIT stateChanged();
    if (refreshEnded)
        Q_EMIT refreshFinished();
}

void QuotaService::refresh()
{
    // The only guard against overlapping refreshes. It suffices, as it is tested and set without a
    // turn of the event loop in between.
    if (m_isRefreshing)
        return;
    change(&QuotaService::m_isRefreshing, true, &QuotaService::isRefreshingChanged);
    // Cleared before the answer is known, so that an offline view without data shows the refresh.
    change(&QuotaService::m_errorMessage, std::optional<QString>(),
        &QuotaService::errorMessageChanged);
    whenDone(m_fetching.fetchQuotaSummary(lastUpdated()), this,
        [this](const FetchResult &result) { apply(result); });
}

void QuotaService::apply(const FetchResult &result)
{
    m_refreshEnded = true;
    announceLater();
    // After a suspend the refresh may end before the first tick, and the clock has jumped.
    if (m_timeWatches > 0 && std::abs(m_currentTime.secsTo(m_clock.now())) > 1)
        setCurrentTime();
    // The order of the assignments is part of the promise: observers read between them.
    if (result) {
        changeState(&QuotaService::m_quotaSummary, std::optional(result->summary),
            &QuotaService::quotaSummaryChanged);
        changeState(&QuotaService::m_activeDaemon, std::optional(result->daemon),
            &QuotaService::activeDaemonChanged);
        // Once the token that it hides is known, and before stateChanged.
        if (m_forecasts != nullptr)
            m_forecasts->update(result->summary, m_clock.now());
        changeState(&QuotaService::m_connectionStatus,
            ConnectionStatus::connected(result->daemon.askedPort().value_or(0)),
            &QuotaService::connectionStatusChanged);
        change(&QuotaService::m_lastUpdated, std::optional(m_clock.now().toUTC()),
            &QuotaService::lastUpdatedChanged);
        change(&QuotaService::m_isRefreshing, false, &QuotaService::isRefreshingChanged);
        if (m_alerts != nullptr)
            m_alerts->checkLowQuotaNotifications(result->summary);
        if (m_forecastAlerts != nullptr) {
            m_forecastAlerts->check(
                result->summary, [this](const auto &bucket) { return outlook(bucket); },
                m_clock.now());
        }
        return;
    }
    const QString description = result.error().errorDescription();
    change(&QuotaService::m_isRefreshing, false, &QuotaService::isRefreshingChanged);
    change(&QuotaService::m_errorMessage, std::optional(description),
        &QuotaService::errorMessageChanged);
    changeState(&QuotaService::m_connectionStatus, ConnectionStatus::offline(description),
        &QuotaService::connectionStatusChanged);
}

forecast::Outlook QuotaService::outlook(const model::QuotaBucket &bucket) const
{
    if (m_forecasts == nullptr || !m_lastUpdated || !m_connectionStatus.isConnected())
        return {};
    constexpr double intervals = 3;
    const double age = static_cast<double>(m_lastUpdated->msecsTo(m_clock.now())) / 1000.0;
    const bool isOld
        = age > intervals * std::max(refreshInterval(), settings::shortestRefreshInterval);
    return isOld ? forecast::Outlook() : m_forecasts->outlook(bucket.bucketId);
}

void QuotaService::updateRefreshInterval(double seconds)
{
    setRefreshInterval(seconds);
    startPeriodicRefresh();
}

void QuotaService::startPeriodicRefresh()
{
    m_refreshTimer.reset();
    const double seconds = std::clamp(
        refreshInterval(), settings::shortestRefreshInterval, settings::longestRefreshInterval);
    m_refreshTimer = m_clock.every(std::chrono::duration<double>(seconds), [this] { refresh(); });
}

QDateTime QuotaService::currentTime() const
{
    return m_timeWatches > 0 ? m_currentTime : m_clock.now();
}

void QuotaService::setCurrentTime()
{
    change(&QuotaService::m_currentTime, m_clock.now(), &QuotaService::currentTimeChanged);
}

void QuotaService::startSecondTick()
{
    setCurrentTime();
    m_secondTickTimer = m_clock.every(std::chrono::seconds(1), [this] { setCurrentTime(); });
}

QuotaService::TimeWatch::TimeWatch(QuotaService &service)
    : m_service(service)
{
    // Deliberate: there is no tick while nobody watches. It would wake the machine each second for
    // nothing, and who reads the time without watching gets that of the clock.
    if (++m_service.m_timeWatches == 1)
        m_service.startSecondTick();
}

QuotaService::TimeWatch::~TimeWatch()
{
    if (--m_service.m_timeWatches == 0)
        m_service.m_secondTickTimer.reset();
}

bool QuotaService::launchAtLogin() const
{
    return m_launchAtLogin != nullptr && m_launchAtLogin->isEnabled();
}

void QuotaService::setLaunchAtLogin(bool enabled)
{
    if (m_launchAtLogin != nullptr)
        m_launchAtLogin->setEnabled(enabled);
}

void QuotaService::setRefreshInterval(double seconds)
{
    changeSetting(settings::refreshInterval,
        std::isfinite(seconds) ? seconds : settings::refreshInterval.defaultValue,
        &QuotaService::refreshIntervalChanged);
}

void QuotaService::setShowPercentageInMenuBar(bool show)
{
    changeSetting(
        settings::showPercentageInMenuBar, show, &QuotaService::showPercentageInMenuBarChanged);
}

void QuotaService::setShowFiveHourInMenuBar(bool show)
{
    changeSetting(
        settings::showFiveHourInMenuBar, show, &QuotaService::showFiveHourInMenuBarChanged);
}

void QuotaService::setShowWeeklyInMenuBar(bool show)
{
    changeSetting(settings::showWeeklyInMenuBar, show, &QuotaService::showWeeklyInMenuBarChanged);
}

void QuotaService::setShowIconInMenuBar(bool show)
{
    changeSetting(settings::showIconInMenuBar, show, &QuotaService::showIconInMenuBarChanged);
}

void QuotaService::setUseColoredStatusIndicator(bool use)
{
    changeSetting(
        settings::useColoredStatusIndicator, use, &QuotaService::useColoredStatusIndicatorChanged);
}

void QuotaService::setNotifyOnLowQuota(bool notify)
{
    changeSetting(settings::notifyOnLowQuota, notify, &QuotaService::notifyOnLowQuotaChanged);
}

void QuotaService::setLowQuotaThreshold(double percent)
{
    changeSetting(settings::lowQuotaThreshold,
        std::isfinite(percent) ? percent : settings::lowQuotaThreshold.defaultValue,
        &QuotaService::lowQuotaThresholdChanged);
}

void QuotaService::setShowGeminiInToolbar(bool show)
{
    changeSetting(settings::showGeminiInToolbar, show, &QuotaService::showGeminiInToolbarChanged);
}

void QuotaService::setShowArgonInToolbar(bool show)
{
    changeSetting(settings::showArgonInToolbar, show, &QuotaService::showArgonInToolbarChanged);
}

void QuotaService::setShowClaudeInToolbar(bool show)
{
    changeSetting(settings::showClaudeInToolbar, show, &QuotaService::showClaudeInToolbarChanged);
}

void QuotaService::setToolbarLabelStyle(const QString &rawValue)
{
    changeSetting(settings::toolbarLabelStyle, rawValue, &QuotaService::toolbarLabelStyleChanged);
}

std::optional<QDateTime> QuotaService::lastUpdated() const
{
    return m_lastUpdated ? std::optional(inZoneOf(m_clock.now(), *m_lastUpdated)) : std::nullopt;
}

model::ColorToken QuotaService::menuBarNSTint() const
{
    return model::menuBarNSTint(lowestSelectedBucket());
}

model::LabelInput QuotaService::labelInput() const
{
    return {.items = toolbarStatItems(),
        .showPercentage = showPercentageInMenuBar(),
        .showIcon = showIconInMenuBar(),
        .colored = useColoredStatusIndicator(),
        .labelStyle = toolbarLabelStyle(),
        .tint = menuBarTint()};
}

const QuotaService::Derived &QuotaService::derived() const
{
    if (m_derived && m_derived->revision == m_revision)
        return *m_derived;
    Derived derived;
    derived.revision = m_revision;
    derived.items = model::toolbarStatItems(m_quotaSummary,
        {.showGeminiInToolbar = showGeminiInToolbar(),
            .showArgonInToolbar = showArgonInToolbar(),
            .showClaudeInToolbar = showClaudeInToolbar(),
            .showFiveHourInMenuBar = showFiveHourInMenuBar(),
            .showWeeklyInMenuBar = showWeeklyInMenuBar(),
            .toolbarLabelStyle = toolbarLabelStyle()});
    derived.lowestBucket = model::lowestSelectedBucket(m_quotaSummary, derived.items);
    derived.title = model::menuBarTitle(m_quotaSummary, derived.items,
        showIconInMenuBar() ? model::StarAtStart::Yes : model::StarAtStart::No,
        m_connectionStatus.isConnecting() ? model::ConnectionPhase::Connecting
                                          : model::ConnectionPhase::Settled);
    derived.tint = model::menuBarTint(derived.lowestBucket);
    return m_derived.emplace(std::move(derived));
}

} // namespace brimwatch::service
