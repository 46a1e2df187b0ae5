#include "platform/linux/tray/host_detector.h"

#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/x11/x_connection.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QFile>
#include <QLoggingCategory>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(hostLog, "brimwatch.tray", QtInfoMsg)

const auto watcherService = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;
const auto watcherInterface = u"org.kde.StatusNotifierWatcher"_s;

// A watcher that does not answer within this time counts as one with a host.
constexpr std::chrono::seconds answerTimeout{2};
constexpr qint64 longestCommandLine = 4096;

} // namespace

QString executableOfProcess(qint64 pid)
{
    const QString folder = u"/proc/%1/"_s.arg(pid);
    if (const QString target = QFile::symLinkTarget(folder + "exe"_L1); !target.isEmpty())
        return target;
    // Hidden for programs with capabilities of their own, such as compositors.
    QFile commandLine(folder + "cmdline"_L1);
    if (!commandLine.open(QIODevice::ReadOnly))
        return {};
    const QByteArray arguments = commandLine.read(longestCommandLine);
    return QString::fromUtf8(arguments.constData(),
        static_cast<qsizetype>(
            qstrnlen(arguments.constData(), static_cast<size_t>(arguments.size()))));
}

HostDetector::HostDetector(
    XConnection &x, QDBusConnection bus, ExecutableOf executableOf, QObject *parent)
    : QObject(parent)
    , m_x(x)
    , m_bus(std::move(bus))
    , m_executableOf(std::move(executableOf))
    , m_tray(x, "_NET_SYSTEM_TRAY_S", 0)
{
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(timeout);
    connect(&m_timeout, &QTimer::timeout, this, [this] {
        m_timedOut = true;
        choose();
    });
}

void HostDetector::start()
{
    connect(&m_tray, &ManagerSelection::changed, this, &HostDetector::trayManagerChanged);
    trayManagerChanged();
    if (!m_bus.isConnected()) {
        m_facts.watcherKnown = true;
        choose();
        return;
    }
    m_ownerWatcher.setConnection(m_bus);
    m_ownerWatcher.addWatchedService(watcherService);
    connect(&m_ownerWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) {
            watcherOwnerChanged(owner);
        });
    for (const QString &signal :
        {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s}) {
        // From any sender: given the watcher's name, QtDBus would wait for the bus to say who owns
        // it.
        m_bus.connect(QString(), watcherPath, watcherInterface, signal, this,
            SLOT(watcherHostsChanged(QDBusMessage)));
    }
    askForWatcher();
    choose();
}

void HostDetector::trayManagerChanged()
{
    if (m_tray.manager() == m_manager)
        return;
    m_manager = m_tray.manager();
    m_facts.manager.reset();
    if (m_manager != XCB_WINDOW_NONE)
        m_facts.manager = describeTrayManager();
    m_timeout.stop();
    m_timedOut = false;
    choose();
}

TrayManagerFacts HostDetector::describeTrayManager()
{
    if (const auto pid = m_x.cardinals(m_manager, "_NET_WM_PID"); !pid.isEmpty()) {
        if (const QString executable = m_executableOf(pid.first()); !executable.isEmpty())
            return {.executable = executable};
    }
    return {.executable = QString::fromUtf8(m_x.property(m_manager, XCB_ATOM_WM_NAME))};
}

void HostDetector::watcherOwnerChanged(const QString &owner)
{
    if (m_facts.watcherKnown && owner == m_watcher)
        return;
    m_watcher = owner;
    m_facts.watcher.reset();
    m_facts.watcherKnown = owner.isEmpty();
    m_timeout.stop();
    m_timedOut = false;
    if (!owner.isEmpty())
        askForProcess(owner);
    choose();
}

void HostDetector::askForWatcher()
{
    bus::findOwner(m_bus, watcherService, this, bus::usualTimeout,
        [this](const std::optional<QString> &owner) {
            // A watcher that started since has been noticed by its name on the bus.
            if (!m_watcher.isEmpty() || m_facts.watcherKnown)
                return;
            if (owner)
                watcherOwnerChanged(*owner);
            else
                askForWatcher(); // The bus is slow, as at some logins.
        });
}

void HostDetector::askForProcess(const QString &owner)
{
    bus::whenAnswered(m_bus, bus::daemonCall(u"GetConnectionUnixProcessID"_s, {owner}), this,
        answerTimeout, [this, owner](const QDBusReply<uint> &reply) {
            if (owner != m_watcher)
                return;
            m_facts.watcherKnown = true;
            const auto hasHost = m_facts.watcher ? m_facts.watcher->hasHost : std::nullopt;
            m_facts.watcher = WatcherFacts{
                .executable = reply.isValid() ? m_executableOf(reply.value()) : QString(),
                .hasHost = hasHost};
            askForHosts(owner);
            choose();
        });
}

void HostDetector::askForHosts(const QString &owner)
{
    auto message = QDBusMessage::createMethodCall(
        owner, watcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message << watcherInterface << u"IsStatusNotifierHostRegistered"_s;
    // A question must not start the panel of a desktop that is not running.
    message.setAutoStartService(false);
    bus::whenAnswered(
        m_bus, message, this, answerTimeout, [this, owner](const QDBusReply<QDBusVariant> &reply) {
            if (owner != m_watcher || !m_facts.watcher)
                return;
            // A watcher without the property may have a host.
            const QVariant value = reply.isValid() ? reply.value().variant() : QVariant(true);
            m_facts.watcher->hasHost = value.toBool();
            choose();
        });
}

void HostDetector::watcherHostsChanged(const QDBusMessage &message)
{
    if (m_facts.watcher && message.service() == m_watcher)
        askForHosts(m_watcher);
}

void HostDetector::choose()
{
    const HostChoice choice = chooseHost(m_facts);
    if (choice.settled || m_timedOut) {
        m_timeout.stop();
        const bool embeds = isXembed(choice.presentation);
        const bool registers = !embeds && choice.presentation != PresentationKind::None;
        publish({.name = choice.host,
            .presentation = choice.presentation,
            .trayManager = embeds ? m_manager : xcb_window_t{XCB_WINDOW_NONE},
            .watcher = registers ? m_watcher : QString()});
        return;
    }
    if (!m_timeout.isActive())
        m_timeout.start();
    // The item stays with its host until the choice is settled, unless that host is gone.
    if (m_host.trayManager != XCB_WINDOW_NONE ? m_host.trayManager != m_manager
                                              : m_host.watcher != m_watcher)
        publish({});
}

void HostDetector::publish(const Host &host)
{
    if (host == m_host)
        return;
    qCDebug(hostLog) << "the item's host is now" << host.name << "tray manager" << host.trayManager
                     << "watcher" << host.watcher;
    m_host = host;
    Q_EMIT hostChanged(m_host);
}

} // namespace brimwatch::platform
