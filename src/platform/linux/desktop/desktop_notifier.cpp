#include "platform/linux/desktop/desktop_notifier.h"

#include "core/plain_text.h"
#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/bus/bus_structure.h"

#include <QDBusMetaType>
#include <QLoggingCategory>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

Q_LOGGING_CATEGORY(notifierLog, "brimwatch.desktop", QtInfoMsg)

/// A picture as the protocol carries it, `(iiibiiay)`: red, green, blue and alpha, a byte each,
/// straight.
struct NotificationImage {
    int width = 0;
    int height = 0;
    int rowStride = 0;
    bool hasAlpha = true;
    int bitsPerSample = 8;
    int channels = 4;
    QByteArray bytes;

    static auto members(auto &self)
    {
        return std::tie(self.width, self.height, self.rowStride, self.hasAlpha, self.bitsPerSample,
            self.channels, self.bytes);
    }
};

namespace {

constexpr auto service = "org.freedesktop.Notifications"_L1;
constexpr auto path = "/org/freedesktop/Notifications"_L1;
constexpr auto interface = "org.freedesktop.Notifications"_L1;

// How often a server that dies of being asked is asked for one notification.
constexpr int questionsPerNotification = 5;

NotificationImage toNotificationImage(const QImage &picture)
{
    constexpr int pixelBytes = 4;
    const QImage image = picture.convertToFormat(QImage::Format_RGBA8888);
    NotificationImage out{.width = image.width(),
        .height = image.height(),
        .rowStride = image.width() * pixelBytes,
        .bytes = {}};
    for (int y = 0; y < image.height(); ++y)
        out.bytes.append(QByteArrayView(image.constScanLine(y), out.rowStride));
    return out;
}

QString replaced(
    QString text, QLatin1StringView ampersand, const QString &less, const QString &greater)
{
    text.replace(u'&', ampersand);
    text.replace(u'<', less);
    text.replace(u'>', greater);
    return text;
}

/// Whether the server did not answer, but the bus or QtDBus in its place. Deliberate: the answer is
/// not asked for its sender, which it does not name from Qt 6.8 on.
bool isUnanswered(const QDBusMessage &answer)
{
    return bus::outcomeOf(answer) != bus::CallOutcome::Replied;
}

} // namespace

DesktopNotifier::DesktopNotifier(
    const QDBusConnection &bus, Sender sender, const Timeouts &timeouts, QObject *parent)
    : Notifier(parent)
    , m_bus(bus)
    , m_sender(std::move(sender))
    , m_timeouts(timeouts)
    , m_watcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange)
{
    qDBusRegisterMetaType<NotificationImage>();
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](
            const QString &, const QString &, const QString &newOwner) { ownerChanged(newOwner); });
    m_expiry.setSingleShot(true);
    connect(&m_expiry, &QTimer::timeout, this, &DesktopNotifier::dropExpired);
}

void DesktopNotifier::requestAuthorization() { }

void DesktopNotifier::post(const Notification &notification)
{
    const auto found = std::ranges::find(m_entries, notification.identifier, &Entry::identifier);
    if (found != m_entries.end()) {
        std::rotate(found, std::next(found), m_entries.end());
    } else {
        makeRoom();
        m_entries.append(Entry{.identifier = notification.identifier, .waiting = {}, .sent = {}});
    }
    m_entries.back().waiting = Waiting{.notification = {.identifier = notification.identifier,
                                           .title = asOneLine(notification.title, longestTitle),
                                           .body = asOneLine(notification.body, longestBody)},
        .until = QDeadlineTimer(m_timeouts.server)};
    if (!m_expiry.isActive())
        m_expiry.start(m_timeouts.server);
    m_questionsLeft = questionsPerNotification;
    proceed();
}

void DesktopNotifier::proceed()
{
    if (!m_server.isEmpty())
        sendWaiting();
    else if (!m_asking && std::ranges::any_of(m_entries, [](const Entry &entry) {
                 return entry.waiting.has_value();
             }))
        askForServer();
}

void DesktopNotifier::askForServer()
{
    if (m_questionsLeft == 0)
        return;
    --m_questionsLeft;
    if (!m_listens) {
        m_listens = true;
        // From any sender, as the connection that serves is known later; the slots check it. Given
        // the service's name, QtDBus would wait for the bus to say who owns it.
        m_bus.connect({}, path, interface, u"NotificationClosed"_s, this,
            SLOT(notificationClosed(QDBusMessage)));
        m_bus.connect(
            {}, path, interface, u"ActionInvoked"_s, this, SLOT(actionInvoked(QDBusMessage)));
    }
    m_asking = true;
    findServer(Start::IfMissing);
}

void DesktopNotifier::findServer(Start start)
{
    bus::findOwner(m_bus, service, this, m_timeouts.answer,
        [this, start](const std::optional<QString> &owner) {
            // A slow bus may have told of an owner without having been asked.
            m_owner = owner.value_or(m_owner);
            if (!m_owner.isEmpty()) {
                askForCapabilities();
            } else if (owner && start == Start::IfMissing) {
                startServer();
            } else {
                m_asking = false;
                if (!owner)
                    proceed();
            }
        });
}

void DesktopNotifier::startServer()
{
    constexpr uint noFlags = 0;
    bus::whenAnswered(m_bus, bus::daemonCall(u"StartServiceByName"_s, {QString(service), noFlags}),
        this, m_timeouts.answer, [this](const QDBusMessage &answer) {
            if (answer.type() != QDBusMessage::ReplyMessage)
                logFailure("no notification server answers; waiting for one for a while", answer);
            findServer(Start::No);
        });
}

void DesktopNotifier::askForCapabilities()
{
    auto call = QDBusMessage::createMethodCall(m_owner, path, interface, u"GetCapabilities"_s);
    call.setAutoStartService(false);
    bus::whenAnswered(m_bus, call, this, m_timeouts.answer,
        [this, server = m_owner](const QDBusMessage &answer) { takeCapabilities(server, answer); });
}

void DesktopNotifier::takeCapabilities(const QString &server, const QDBusMessage &answer)
{
    m_asking = false;
    if (server != m_owner) {
        // There is another one now, or none.
        if (!m_owner.isEmpty())
            proceed();
        return;
    }
    if (isUnanswered(answer)) {
        logFailure("the notification server does not answer; waiting for another", answer);
        return;
    }
    m_server = server;
    m_bodyText = BodyText::Unknown;
    m_takesActions = false;
    if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == "as"_L1) {
        const QStringList capabilities = answer.arguments().constFirst().toStringList();
        m_bodyText = capabilities.contains("body-markup"_L1) ? BodyText::Markup : BodyText::Plain;
        m_takesActions = capabilities.contains("actions"_L1);
    } else {
        logFailure("the notification server does not say what it can do", answer);
    }
    sendWaiting();
}

void DesktopNotifier::sendWaiting()
{
    if (m_server.isEmpty())
        return;
    auto onTheirWay = std::ranges::count_if(
        std::as_const(m_entries), [](const Entry &entry) { return entry.call != 0; });
    for (auto &entry : m_entries) {
        if (onTheirWay >= mostOnTheirWay)
            break;
        if (!entry.waiting || entry.call != 0)
            continue;
        send(entry);
        ++onTheirWay;
    }
}

void DesktopNotifier::send(Entry &entry)
{
    entry.call = ++m_calls;
    entry.sent = std::exchange(entry.waiting, std::nullopt);
    const auto &notification = entry.sent->notification;

    constexpr uchar normalUrgency = 1;
    constexpr int serversOwnTime = -1;
    const QVariantMap hints{{u"desktop-entry"_s, m_sender.identifier},
        {u"image-data"_s, QVariant::fromValue(toNotificationImage(m_sender.icon()))},
        {u"sound-name"_s, u"message-new-instant"_s},
        {u"urgency"_s, QVariant::fromValue(normalUrgency)}};
    // An action of that name is what a click on the notification itself does.
    const QStringList actions
        = m_takesActions ? QStringList{u"default"_s, u"Open"_s} : QStringList();

    // To that very connection: another server may read bodies in another way.
    auto message = QDBusMessage::createMethodCall(m_server, path, interface, u"Notify"_s);
    message.setAutoStartService(false);
    message << m_sender.name << entry.serverId << m_sender.identifier << notification.title
            << bodyFor(notification.body) << actions << hints << serversOwnTime;
    bus::whenAnswered(m_bus, message, this, m_timeouts.answer,
        [this,
            sending
            = Sending{.identifier = entry.identifier, .call = entry.call, .server = m_server}](
            const QDBusMessage &answer) {
            if (isUnanswered(answer))
                checkServer(sending, answer);
            else
                takeAnswer(sending, answer);
        });
}

void DesktopNotifier::checkServer(const Sending &sending, const QDBusMessage &answer)
{
    // The error is the same for a server that has left the bus and for one that is slow.
    bus::findOwner(m_bus, sending.server, this, m_timeouts.answer,
        [this, sending, answer](const std::optional<QString> &owner) {
            const Entry *entry = entryOf(sending);
            if (!owner && entry != nullptr && !entry->sent->until.hasExpired())
                checkServer(sending, answer); // A second server would show it a second time.
            else if (owner && owner->isEmpty())
                sendToNextServer(sending, answer);
            else
                takeAnswer(sending, answer);
        });
}

DesktopNotifier::Entry *DesktopNotifier::entryOf(const Sending &sending)
{
    const auto entry = std::ranges::find(m_entries, sending.identifier, &Entry::identifier);
    return entry != m_entries.end() && entry->call == sending.call ? &*entry : nullptr;
}

void DesktopNotifier::sendToNextServer(const Sending &sending, const QDBusMessage &answer)
{
    Entry *entry = entryOf(sending);
    if (entry == nullptr)
        return;
    logFailure("the notification server has gone; looking for another", answer);
    entry->call = 0;
    auto sent = std::exchange(entry->sent, std::nullopt);
    // Newer news for the same identifier takes its place.
    if (!entry->waiting && !sent->until.hasExpired())
        entry->waiting = std::move(sent);
    if (m_server == sending.server)
        forgetServer();
    dropExpired();
    proceed();
}

void DesktopNotifier::takeAnswer(const Sending &sending, const QDBusMessage &answer)
{
    Entry *entry = entryOf(sending);
    if (entry == nullptr)
        return;
    entry->call = 0;
    entry->sent.reset();
    if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == "u"_L1) {
        m_failureLogged = false;
        // The numbers of a server that has left meanwhile mean nothing.
        entry->serverId = sending.server == m_server ? answer.arguments().constFirst().toUInt() : 0;
    } else {
        entry->serverId = 0;
        logFailure("the notification server did not take a notification; dropping it", answer);
    }
    dropIdle();
    proceed();
}

void DesktopNotifier::ownerChanged(const QString &newOwner)
{
    m_owner = newOwner;
    if (newOwner != m_server)
        forgetServer();
    if (!newOwner.isEmpty())
        proceed();
}

void DesktopNotifier::notificationClosed(const QDBusMessage &signal)
{
    if (m_server.isEmpty() || signal.service() != m_server || signal.signature() != "uu"_L1)
        return;
    const uint id = signal.arguments().constFirst().toUInt();
    for (auto &entry : m_entries) {
        if (entry.serverId == id)
            entry.serverId = 0;
    }
    dropIdle();
}

void DesktopNotifier::actionInvoked(const QDBusMessage &signal)
{
    if (m_server.isEmpty() || signal.service() != m_server || signal.signature() != "us"_L1)
        return;
    const uint id = signal.arguments().at(0).toUInt();
    const auto entry = std::ranges::find(std::as_const(m_entries), id, &Entry::serverId);
    if (id != 0 && entry != m_entries.cend() && signal.arguments().at(1).toString() == "default"_L1)
        Q_EMIT activated(QString(entry->identifier));
}

void DesktopNotifier::forgetServer()
{
    m_server.clear();
    for (auto &entry : m_entries)
        entry.serverId = 0;
    dropIdle();
}

void DesktopNotifier::dropExpired()
{
    std::optional<QDeadlineTimer> next;
    for (auto &entry : m_entries) {
        if (!entry.waiting)
            continue;
        if (entry.waiting->until.hasExpired())
            entry.waiting.reset();
        else if (!next || entry.waiting->until < *next)
            next = entry.waiting->until;
    }
    dropIdle();
    if (next)
        m_expiry.start(
            std::chrono::ceil<std::chrono::milliseconds>(next->remainingTimeAsDuration()));
}

void DesktopNotifier::dropIdle()
{
    m_entries.removeIf([](const Entry &entry) {
        return !entry.waiting && entry.call == 0 && entry.serverId == 0;
    });
}

void DesktopNotifier::makeRoom()
{
    if (m_entries.size() < mostIdentifiers)
        return;
    // There are more of them than can be on their way.
    const auto oldest = std::ranges::find(m_entries, quint64(0), &Entry::call);
    if (oldest != m_entries.end())
        m_entries.erase(oldest);
}

QString DesktopNotifier::bodyFor(const QString &text) const
{
    switch (m_bodyText) {
    case BodyText::Plain:
        return text;
    case BodyText::Markup:
        return replaced(text, "&amp;"_L1, u"&lt;"_s, u"&gt;"_s);
    case BodyText::Unknown:
        break;
    }
    // Without a second meaning either way.
    return replaced(text, "and"_L1, u"‹"_s, u"›"_s);
}

void DesktopNotifier::logFailure(const char *what, const QDBusMessage &answer)
{
    if (!std::exchange(m_failureLogged, true))
        qCDebug(notifierLog).noquote() << what << answer.errorName();
}

} // namespace brimwatch::platform
