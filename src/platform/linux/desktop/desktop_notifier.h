#pragma once

#include "platform/notifier.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDeadlineTimer>
#include <QImage>
#include <QList>
#include <QString>
#include <QTimer>

#include <chrono>
#include <functional>
#include <optional>

namespace brimwatch::platform {

/// Notifications through the owner of org.freedesktop.Notifications on the session bus, by the
/// Desktop Notifications Specification 1.2.
///
/// There is no authorisation to ask for: on these desktops everybody may notify, and what the user
/// has switched off the server drops.
///
/// A server has numbers of its own for what it shows. Ours are kept by identifier for as long as it
/// shows them, so that a newer notification takes the place of the older one; one that is posted
/// while the server has not yet answered for the older one waits for that answer.
///
/// Nothing here blocks. Who owns the name is asked of the bus, which starts a server that is
/// installed but not running; calls go to that very connection. While there is none, the newest
/// notification of each identifier waits for `Timeouts::server` and is dropped then. What a server
/// refuses or leaves unanswered is dropped; the first failure in a row is logged at debug level.
/// Servers are not trusted: what they send is looked at, not kept.
class DesktopNotifier final : public Notifier {
    Q_OBJECT

public:
    /// Who notifies.
    struct Sender {
        QString name; ///< For people.
        QString identifier; ///< Of the desktop entry and of the icon.
        /// Draws the icon for servers that find none of that name. Asked for each notification, so
        /// that nobody has to keep it.
        std::function<QImage()> icon;
    };

    /// How long it waits for what others do; tests wait shorter.
    struct Timeouts {
        std::chrono::milliseconds server = std::chrono::minutes(1); ///< For one to appear.
        /// For an answer; a server may have to be started first.
        std::chrono::milliseconds answer = std::chrono::seconds(25);
    };

    /// So many identifiers are known at a time; the one posted longest ago makes room.
    static constexpr qsizetype mostIdentifiers = 64;
    /// So many notifications may be on their way to the server at a time.
    static constexpr qsizetype mostOnTheirWay = 8;
    static constexpr qsizetype longestTitle = 200;
    static constexpr qsizetype longestBody = 1000;

    DesktopNotifier(const QDBusConnection &bus, Sender sender, const Timeouts &timeouts,
        QObject *parent = nullptr);

    void requestAuthorization() override;
    void post(const Notification &notification) override;

    /// How many identifiers it knows: what is shown, on its way or waiting.
    qsizetype known() const { return m_entries.size(); }

private Q_SLOTS:
    void notificationClosed(const QDBusMessage &signal);
    void actionInvoked(const QDBusMessage &signal);

private:
    /// How a server reads a body.
    enum class BodyText { Plain, Markup, Unknown };

    struct Waiting {
        Notification notification;
        QDeadlineTimer until;
    };

    struct Entry {
        QString identifier;
        std::optional<Waiting> waiting; ///< The newest that the server has not been sent.
        std::optional<Waiting> sent; ///< On its way.
        quint64 call = 0; ///< Our number of the call that is under way; 0 for none.
        uint serverId = 0; ///< 0 when the server shows nothing of ours.
    };

    /// One call of Notify.
    struct Sending {
        QString identifier;
        quint64 call = 0;
        QString server; ///< The connection that was called.
    };

    /// Whether the bus starts a server that is installed.
    enum class Start { No, IfMissing };

    void proceed();
    void askForServer();
    void findServer(Start start);
    void startServer();
    void askForCapabilities();
    void takeCapabilities(const QString &server, const QDBusMessage &answer);
    void sendWaiting();
    void send(Entry &entry);
    Entry *entryOf(const Sending &sending); ///< Null when it is not on its way any more.
    void checkServer(const Sending &sending, const QDBusMessage &answer);
    void sendToNextServer(const Sending &sending, const QDBusMessage &answer);
    void takeAnswer(const Sending &sending, const QDBusMessage &answer);
    void ownerChanged(const QString &newOwner);
    void forgetServer();
    void dropExpired();
    void dropIdle();
    void makeRoom();
    QString bodyFor(const QString &text) const;
    void logFailure(const char *what, const QDBusMessage &answer);

    QDBusConnection m_bus;
    Sender m_sender;
    Timeouts m_timeouts;
    QDBusServiceWatcher m_watcher;
    QTimer m_expiry;

    QList<Entry> m_entries; ///< The one posted longest ago first.
    quint64 m_calls = 0;

    QString m_owner; ///< Of the service's name, as the bus last said.
    QString m_server; ///< The owner whose capabilities are known; empty without one.
    BodyText m_bodyText = BodyText::Unknown;
    bool m_takesActions = false;
    bool m_asking = false;
    int m_questionsLeft = 0;
    bool m_listens = false;
    bool m_failureLogged = false;
};

} // namespace brimwatch::platform
