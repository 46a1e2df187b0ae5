#pragma once

#include <QLatin1StringView>
#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <memory>

namespace brimwatch {
class Clock;
class RepeatingTimer;
} // namespace brimwatch

namespace brimwatch::platform {

class Notifier;
struct Notification;

/// Says in a notification that no panel has taken the item within `timeout` of the start, what to
/// do about it, and how to see the quota until then.
///
/// Once a session: an empty file in the session's folder says that it was shown. Where that cannot
/// be kept, each start shows it.
class NoPanelNotice final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::seconds timeout{60};
    static constexpr QLatin1StringView identifier{"no_panel"};
    static constexpr QLatin1StringView toldFile{"brimwatch.no-panel-told"};

    /// Starts to wait. Clock and notifier outlive it. `sessionFolder` is the user's folder for what
    /// lives as long as the session, empty where there is none; `desktops` are the names of the
    /// current desktop, the most specific first.
    NoPanelNotice(Clock &clock, Notifier &notifier, QString sessionFolder, QStringList desktops,
        QObject *parent = nullptr);
    ~NoPanelNotice() override;

    /// A panel has taken the item: no notice is needed.
    void panelCame();

private:
    void timeOut();
    bool isFirstOfSession() const;

    Notifier &m_notifier;
    QString m_sessionFolder;
    QStringList m_desktops;
    std::unique_ptr<RepeatingTimer> m_timer; ///< Null once there is nothing to wait for.
    bool m_timedOut = false;
};

/// The notification as it reads on such a desktop.
Notification noPanelNotification(const QStringList &desktops);

} // namespace brimwatch::platform
