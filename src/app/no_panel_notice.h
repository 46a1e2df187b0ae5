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
} // namespace brimwatch::platform

namespace brimwatch::app {

/// Tells the user, in a notification, when nothing has taken the item within `patience` of the
/// start: the program runs, but nobody would know. Says what to do about it, and how to see the
/// quota until then.
///
/// Once per session: the folder of the session keeps an empty file that says that it was told. A
/// start that cannot keep it there tells.
class NoPanelNotice final : public QObject {
    Q_OBJECT

public:
    static constexpr std::chrono::seconds patience{60};
    static constexpr QLatin1StringView identifier{"no_panel"};
    static constexpr QLatin1StringView toldFile{"brimwatch.no-panel-told"};

    /// Begins to wait. Clock and notifier outlive it. `sessionFolder` is the user's own folder for
    /// what lives as long as the session, empty when there is none; `desktops` are the names of the
    /// current desktop, the most specific first.
    NoPanelNotice(Clock &clock, platform::Notifier &notifier, QString sessionFolder,
        QStringList desktops, QObject *parent = nullptr);
    ~NoPanelNotice() override;
    NoPanelNotice(const NoPanelNotice &) = delete;
    NoPanelNotice &operator=(const NoPanelNotice &) = delete;
    NoPanelNotice(NoPanelNotice &&) = delete;
    NoPanelNotice &operator=(NoPanelNotice &&) = delete;

    /// A panel has taken the item: nothing more is to be told.
    void panelCame();

private:
    void tell();
    bool isToldFirst() const;

    platform::Notifier &m_notifier;
    QString m_sessionFolder;
    QStringList m_desktops;
    std::unique_ptr<RepeatingTimer> m_timer; ///< Null once there is nothing to wait for.
    bool m_due = false; ///< The time was up, and nobody had come.
};

/// What it says on such a desktop.
platform::Notification noPanelNotification(const QStringList &desktops);

} // namespace brimwatch::app
