#pragma once

#include "platform/linux/tray/host_table.h"
#include "platform/linux/x11/manager_selection.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>
#include <QTimer>

#include <xcb/xcb.h>

#include <chrono>
#include <functional>

class QDBusMessage;

namespace brimwatch::platform {

class XConnection;

/// Which host shows our item now, and how. Two are equal only when neither has been replaced in
/// between.
struct Host {
    QString name;
    PresentationKind presentation = PresentationKind::None;
    xcb_window_t trayManager = XCB_WINDOW_NONE; ///< Where to embed; none with the other protocols.
    QString watcher; ///< The bus name of the watcher to register with; empty when embedding.

    bool operator==(const Host &) const = default;
};

/// The path of the program of a process; empty when the system does not reveal it.
using ExecutableOf = std::function<QString(qint64 pid)>;

/// From the proc file system; where that hides the program, the first word of its command line.
QString executableOfProcess(qint64 pid);

/// Follows who could show the item: the watcher on the session bus and the tray manager on the X
/// screen, either of which may be missing for good. It waits for neither the bus nor a host.
///
/// Panels bring their two halves one after the other. Where the second would change the choice, the
/// detector waits for it, but not for long, so that the item does not jump from one protocol to the
/// other at login.
class HostDetector final : public QObject {
    Q_OBJECT

public:
    /// How long it waits for the rest of a panel.
    static constexpr std::chrono::milliseconds timeout{1000};

    HostDetector(XConnection &x, QDBusConnection bus,
        ExecutableOf executableOf = executableOfProcess, QObject *parent = nullptr);

    /// Starts to look. A tray manager that suits whatever the bus answers is announced before this
    /// returns.
    void start();
    const Host &host() const { return m_host; }

Q_SIGNALS:
    void hostChanged(const brimwatch::platform::Host &host);

private:
    void trayManagerChanged();
    TrayManagerFacts describeTrayManager();
    void watcherOwnerChanged(const QString &owner);
    void askForWatcher();
    void askForProcess(const QString &owner);
    void askForHosts(const QString &owner);
    Q_SLOT void watcherHostsChanged(const QDBusMessage &message);
    void choose();
    void publish(const Host &host);

    XConnection &m_x;
    QDBusConnection m_bus;
    ExecutableOf m_executableOf;
    QDBusServiceWatcher m_ownerWatcher;
    ManagerSelection m_tray;
    QTimer m_timeout;
    xcb_window_t m_manager = XCB_WINDOW_NONE;
    QString m_watcher;
    TrayFacts m_facts;
    bool m_timedOut = false;
    Host m_host;
};

} // namespace brimwatch::platform
