#pragma once

#include "core/clock.h"
#include "discovery/daemon_info.h"
#include "forecast/outlook.h"
#include "model/label_composition.h"
#include "model/quota_records.h"
#include "model/toolbar_stat_items.h"
#include "service/connection_status.h"
#include "service/quota_fetching.h"
#include "service/settings.h"

#include <QDateTime>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace brimwatch::service {

class ForecastAlerts;
class LaunchAtLoginService;
class LowQuotaAlerts;
class QuotaForecasts;

/// The one observable model of the program: the latest quota, the connection, the settings, and the
/// refreshes that keep them current. Everything happens on the main thread.
///
/// Every change is announced by objectWillChange just before it and by the property's own signal
/// just after. When revision() has changed, stateChanged follows, once per turn of the event loop.
/// Setting a property to the value that it has is no change.
class QuotaService final : public QObject {
    Q_OBJECT
    Q_PROPERTY(double refreshInterval READ refreshInterval WRITE setRefreshInterval NOTIFY
            refreshIntervalChanged FINAL)
    Q_PROPERTY(bool showPercentageInMenuBar READ showPercentageInMenuBar WRITE
            setShowPercentageInMenuBar NOTIFY showPercentageInMenuBarChanged FINAL)
    Q_PROPERTY(bool showFiveHourInMenuBar READ showFiveHourInMenuBar WRITE setShowFiveHourInMenuBar
            NOTIFY showFiveHourInMenuBarChanged FINAL)
    Q_PROPERTY(bool showWeeklyInMenuBar READ showWeeklyInMenuBar WRITE setShowWeeklyInMenuBar NOTIFY
            showWeeklyInMenuBarChanged FINAL)
    Q_PROPERTY(bool showIconInMenuBar READ showIconInMenuBar WRITE setShowIconInMenuBar NOTIFY
            showIconInMenuBarChanged FINAL)
    Q_PROPERTY(bool useColoredStatusIndicator READ useColoredStatusIndicator WRITE
            setUseColoredStatusIndicator NOTIFY useColoredStatusIndicatorChanged FINAL)
    Q_PROPERTY(bool notifyOnLowQuota READ notifyOnLowQuota WRITE setNotifyOnLowQuota NOTIFY
            notifyOnLowQuotaChanged FINAL)
    Q_PROPERTY(double lowQuotaThreshold READ lowQuotaThreshold WRITE setLowQuotaThreshold NOTIFY
            lowQuotaThresholdChanged FINAL)
    Q_PROPERTY(bool showGeminiInToolbar READ showGeminiInToolbar WRITE setShowGeminiInToolbar NOTIFY
            showGeminiInToolbarChanged FINAL)
    Q_PROPERTY(bool showArgonInToolbar READ showArgonInToolbar WRITE setShowArgonInToolbar NOTIFY
            showArgonInToolbarChanged FINAL)
    Q_PROPERTY(bool showClaudeInToolbar READ showClaudeInToolbar WRITE setShowClaudeInToolbar NOTIFY
            showClaudeInToolbarChanged FINAL)
    Q_PROPERTY(QString toolbarLabelStyle READ toolbarLabelStyle WRITE setToolbarLabelStyle NOTIFY
            toolbarLabelStyleChanged FINAL)

public:
    /// What the service uses. The pointers are null in a program without alerts or without a login
    /// item, without forecasts or alerts about them. Everything outlives the service.
    struct Dependencies {
        Clock &clock;
        QuotaFetching &fetching;
        SettingsStore &settings;
        LowQuotaAlerts *alerts = nullptr;
        LaunchAtLoginService *launchAtLogin = nullptr;
        QuotaForecasts *forecasts = nullptr;
        ForecastAlerts *forecastAlerts = nullptr;
    };

    /// Starts the timers and a first refresh, which runs with the next turn of the event loop.
    explicit QuotaService(const Dependencies &dependencies, QObject *parent = nullptr);
    ~QuotaService() override;

    const std::optional<model::QuotaSummary> &quotaSummary() const { return m_quotaSummary; }
    const std::optional<discovery::DaemonInfo> &activeDaemon() const { return m_activeDaemon; }
    const ConnectionStatus &connectionStatus() const { return m_connectionStatus; }
    /// In the user's time zone of now, also after a move to another zone.
    std::optional<QDateTime> lastUpdated() const;
    bool isRefreshing() const { return m_isRefreshing; }
    const std::optional<QString> &errorMessage() const { return m_errorMessage; }
    /// Now. While somebody watches the time it changes once a second, and each change is announced.
    QDateTime currentTime() const;

    /// As long as one of these lives, the time is watched: currentTime() is the present second at
    /// once, and is set and announced each second from then on. The service outlives it.
    class TimeWatch {
    public:
        explicit TimeWatch(QuotaService &service);
        ~TimeWatch();
        Q_DISABLE_COPY_MOVE(TimeWatch)

    private:
        QuotaService &m_service;
    };

    /// The forecast for a bucket of the summary. Silent while offline, and when the summary is
    /// older than three refresh intervals.
    forecast::Outlook outlook(const model::QuotaBucket &bucket) const;

    /// Fetches the quota. Does nothing while a fetch is under way.
    void refresh();

    /// Stores the interval in seconds and restarts the refresh timer with it. Deliberate:
    /// setRefreshInterval() alone does not restart the timer.
    void updateRefreshInterval(double seconds);
    void startPeriodicRefresh();

    /// The login item's state, false without one; writing changes it.
    bool launchAtLogin() const;
    void setLaunchAtLogin(bool enabled);

    double refreshInterval() const { return m_settings.value(settings::refreshInterval); }
    void setRefreshInterval(double seconds);
    bool showPercentageInMenuBar() const
    {
        return m_settings.value(settings::showPercentageInMenuBar);
    }
    void setShowPercentageInMenuBar(bool show);
    bool showFiveHourInMenuBar() const { return m_settings.value(settings::showFiveHourInMenuBar); }
    void setShowFiveHourInMenuBar(bool show);
    bool showWeeklyInMenuBar() const { return m_settings.value(settings::showWeeklyInMenuBar); }
    void setShowWeeklyInMenuBar(bool show);
    bool showIconInMenuBar() const { return m_settings.value(settings::showIconInMenuBar); }
    void setShowIconInMenuBar(bool show);
    bool useColoredStatusIndicator() const
    {
        return m_settings.value(settings::useColoredStatusIndicator);
    }
    void setUseColoredStatusIndicator(bool use);
    bool notifyOnLowQuota() const { return m_settings.value(settings::notifyOnLowQuota); }
    void setNotifyOnLowQuota(bool notify);
    double lowQuotaThreshold() const { return m_settings.value(settings::lowQuotaThreshold); }
    void setLowQuotaThreshold(double percent);
    bool showGeminiInToolbar() const { return m_settings.value(settings::showGeminiInToolbar); }
    void setShowGeminiInToolbar(bool show);
    bool showArgonInToolbar() const { return m_settings.value(settings::showArgonInToolbar); }
    void setShowArgonInToolbar(bool show);
    bool showClaudeInToolbar() const { return m_settings.value(settings::showClaudeInToolbar); }
    void setShowClaudeInToolbar(bool show);
    QString toolbarLabelStyle() const { return m_settings.value(settings::toolbarLabelStyle); }
    void setToolbarLabelStyle(const QString &rawValue);

    /// Counts the changes of what label, tooltip and other programs' view are derived from: the
    /// summary, the daemon, the connection and the settings.
    quint64 revision() const { return m_revision; }

    // Derived once per revision, by the first that reads one of them.
    const QList<model::ToolbarStatItem> &toolbarStatItems() const { return derived().items; }
    const std::optional<model::QuotaBucket> &lowestSelectedBucket() const
    {
        return derived().lowestBucket;
    }
    const QString &menuBarTitle() const { return derived().title; }
    model::ColorToken menuBarTint() const { return derived().tint; }
    model::ColorToken menuBarNSTint() const;
    /// All that decides the label.
    model::LabelInput labelInput() const;

Q_SIGNALS:
    void objectWillChange();

    /// The revision is another one. Comes once for all the changes of a turn of the event loop, in
    /// a later turn, when all of them are stored.
    void stateChanged();
    /// A refresh has ended. Comes after the stateChanged of what it brought.
    void refreshFinished();

    void quotaSummaryChanged();
    void activeDaemonChanged();
    void connectionStatusChanged();
    void lastUpdatedChanged();
    void isRefreshingChanged();
    void errorMessageChanged();
    void currentTimeChanged();
    void launchAtLoginChanged();

    void refreshIntervalChanged();
    void showPercentageInMenuBarChanged();
    void showFiveHourInMenuBarChanged();
    void showWeeklyInMenuBarChanged();
    void showIconInMenuBarChanged();
    void useColoredStatusIndicatorChanged();
    void notifyOnLowQuotaChanged();
    void lowQuotaThresholdChanged();
    void showGeminiInToolbarChanged();
    void showArgonInToolbarChanged();
    void showClaudeInToolbarChanged();
    void toolbarLabelStyleChanged();

private:
    using Changed = void (QuotaService::*)();

    /// What label, tooltip and bus read of the state.
    struct Derived {
        quint64 revision = 0; ///< From which it was derived.
        QList<model::ToolbarStatItem> items;
        std::optional<model::QuotaBucket> lowestBucket;
        QString title;
        model::ColorToken tint = model::ColorToken::SecondaryLabel;
    };

    template <typename Store> void publish(Store store, Changed changed);
    /// Sets a member, announced before and after; nothing when it holds that value already.
    template <typename T> void change(T QuotaService::*member, T value, Changed changed);
    /// The same for a member that counts in revision().
    template <typename T> void changeState(T QuotaService::*member, T value, Changed changed);
    template <typename T, typename Value>
    void changeSetting(const Setting<T> &setting, const Value &value, Changed changed);
    void startNextRevision();
    void announceLater();
    void announce();
    void apply(const FetchResult &result);
    void setCurrentTime();
    void startSecondTick();
    const Derived &derived() const;

    Clock &m_clock;
    QuotaFetching &m_fetching;
    SettingsStore &m_settings;
    LowQuotaAlerts *m_alerts;
    LaunchAtLoginService *m_launchAtLogin;
    QuotaForecasts *m_forecasts;
    ForecastAlerts *m_forecastAlerts;

    std::optional<model::QuotaSummary> m_quotaSummary;
    std::optional<discovery::DaemonInfo> m_activeDaemon;
    ConnectionStatus m_connectionStatus;
    std::optional<QDateTime> m_lastUpdated; ///< In UTC: a local time moves with the zone.
    bool m_isRefreshing = false;
    std::optional<QString> m_errorMessage;
    int m_timeWatches = 0;
    QDateTime m_currentTime; ///< Set by the second tick; out of date while there is no TimeWatch.
    quint64 m_revision = 0;
    mutable std::optional<Derived> m_derived; ///< Absent before the first read.
    bool m_announcementPending = false;
    quint64 m_announcedRevision = 0;
    bool m_refreshEnded = false; ///< Since the last announcement.

    // Destroyed in this order's reverse: the refresh timer ends first.
    std::unique_ptr<RepeatingTimer> m_secondTickTimer; ///< While somebody watches the time.
    std::unique_ptr<RepeatingTimer> m_refreshTimer;
};

} // namespace brimwatch::service
