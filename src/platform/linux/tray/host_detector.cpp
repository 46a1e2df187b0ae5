#include "platform/linux/tray/host_detector.h"

#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/x11/x_connection.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(hostLog, "brimwatch.tray", QtInfoMsg)

const auto watcherService = u"org.kde.StatusNotifierWatcher"_s;
const auto watcherPath = u"/StatusNotifierWatcher"_s;
const auto watcherInterface = u"org.kde.StatusNotifierWatcher"_s;

// The bus itself answers at once. A panel that does not within this time is taken as one that shows
// items.
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
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(patienceMilliseconds);
    connect(&m_patience, &QTimer::timeout, this, [this] {
        m_patienceOver = true;
        choose();
    });
}

HostDetector::~HostDetector() = default;

void HostDetector::start()
{
    if (m_x.isValid()) {
        connect(&m_x, &XConnection::eventReceived, this, &HostDetector::handle);
        connect(&m_x, &XConnection::closed, this, &HostDetector::findTrayManager);
        const QByteArray selection = "_NET_SYSTEM_TRAY_S" + QByteArray::number(m_x.screenNumber());
        m_x.prefetchAtoms({selection.constData(), "MANAGER", "_NET_WM_PID"});
        m_traySelection = m_x.atom(selection.constData());
        // A new manager announces itself to the root window.
        m_x.selectInput(m_x.screen()->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        findTrayManager();
    }
    if (!m_bus.isConnected()) {
        m_facts.watcherKnown = true;
        choose();
        return;
    }
    m_ownerWatcher = new QDBusServiceWatcher(
        watcherService, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(m_ownerWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) {
            watcherOwnerChanged(owner);
        });
    for (const QString &signal :
        {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s}) {
        // Of whatever sender: naming the watcher here would block until the bus has said who that
        // is.
        m_bus.connect(QString(), watcherPath, watcherInterface, signal, this,
            SLOT(watcherHostsChanged(QDBusMessage)));
    }
    askForWatcher();
    choose();
}

void HostDetector::handle(const xcb_generic_event_t *event)
{
    switch (event->response_type & 0x7f) {
    case XCB_CLIENT_MESSAGE: {
        const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event);
        if (message->type == m_x.atom("MANAGER") && message->format == 32
            && message->data.data32[1] == m_traySelection)
            findTrayManager();
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (reinterpret_cast<const xcb_destroy_notify_event_t *>(event)->window == m_manager)
            findTrayManager();
        break;
    default:
        break;
    }
}

void HostDetector::findTrayManager()
{
    xcb_window_t manager = m_x.selectionOwner(m_traySelection);
    // One that goes between the answer and our asking for its end would be taken for one that
    // stays.
    while (manager != XCB_WINDOW_NONE) {
        m_x.selectInput(manager, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
        const xcb_window_t still = m_x.selectionOwner(m_traySelection);
        if (still == manager)
            break;
        manager = still;
    }
    if (manager == m_manager)
        return;
    m_manager = manager;
    m_facts.manager.reset();
    if (manager != XCB_WINDOW_NONE)
        m_facts.manager = describeTrayManager();
    m_patience.stop();
    m_patienceOver = false;
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
    m_patience.stop();
    m_patienceOver = false;
    if (!owner.isEmpty())
        askForProcess(owner);
    choose();
}

void HostDetector::askForWatcher()
{
    bus::findOwner(m_bus, watcherService, this, answerTimeout, [this](const QString &owner) {
        // A watcher that came meanwhile has announced itself.
        if (m_watcher.isEmpty() && !m_facts.watcherKnown)
            watcherOwnerChanged(owner);
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
            // A watcher without the property is an odd one, not one without hosts.
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
    if (choice.settled || m_patienceOver) {
        m_patience.stop();
        const bool embeds = isXembed(choice.wished);
        const bool registers = !embeds && choice.wished != PresentationKind::None;
        publish({.name = choice.host,
            .wished = choice.wished,
            .trayManager = embeds ? m_manager : xcb_window_t{XCB_WINDOW_NONE},
            .watcher = registers ? m_watcher : QString()});
        return;
    }
    if (!m_patience.isActive())
        m_patience.start();
    // Whom the item stands with now may stay until it is known better, unless it is gone.
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
