#include "platform/linux/desktop/desktop_notifier.h"

#include "core/plain_text.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QLoggingCategory>

#include <algorithm>
#include <utility>

namespace brimwatch::platform {

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
};

// NOLINTBEGIN(bugprone-return-const-ref-from-parameter): the signature that the library asks for.
[[maybe_unused]] static QDBusArgument &operator<<(
    QDBusArgument &argument, const NotificationImage &image)
{
    argument.beginStructure();
    argument << image.width << image.height << image.rowStride << image.hasAlpha
             << image.bitsPerSample << image.channels << image.bytes;
    argument.endStructure();
    return argument;
}

[[maybe_unused]] static const QDBusArgument &operator>>(
    const QDBusArgument &argument, NotificationImage &image)
{
    argument.beginStructure();
    argument >> image.width >> image.height >> image.rowStride >> image.hasAlpha
        >> image.bitsPerSample >> image.channels >> image.bytes;
    argument.endStructure();
    return argument;
}
// NOLINTEND(bugprone-return-const-ref-from-parameter)

} // namespace brimwatch::platform

Q_DECLARE_METATYPE(brimwatch::platform::NotificationImage)

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto service = "org.freedesktop.Notifications"_L1;
constexpr auto path = "/org/freedesktop/Notifications"_L1;
constexpr auto interface = "org.freedesktop.Notifications"_L1;
constexpr auto busItself = "org.freedesktop.DBus"_L1;

// A server that dies of being asked, and is started each time, is asked so often for one
// notification.
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

/// Whether a server said that, whatever it is. Else it comes from the bus, or from nobody: a time
/// that ran out has no sender.
bool isFromServer(const QDBusMessage &answer)
{
    return !answer.service().isEmpty() && answer.service() != busItself;
}

} // namespace

DesktopNotifier::DesktopNotifier(
    const QDBusConnection &bus, Sender sender, const Patience &patience, QObject *parent)
    : Notifier(parent)
    , m_bus(bus)
    , m_sender(std::move(sender))
    , m_patience(patience)
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
        .until = QDeadlineTimer(m_patience.server)};
    if (!m_expiry.isActive())
        m_expiry.start(m_patience.server);
    m_questionsLeft = questionsPerNotification;
    proceed();
}

void DesktopNotifier::call(const QDBusMessage &call, Answered answered)
{
    const auto milliseconds = static_cast<int>(m_patience.answer.count());
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, milliseconds), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [answered = std::move(answered)](QDBusPendingCallWatcher *finished) {
            finished->deleteLater();
            answered(finished->reply());
        });
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
        // Of all senders, as the connection that serves is known later; the slots look at it. With
        // the service's name the library would wait for the bus to say who owns it.
        m_bus.connect({}, path, interface, u"NotificationClosed"_s, this,
            SLOT(notificationClosed(QDBusMessage)));
        m_bus.connect(
            {}, path, interface, u"ActionInvoked"_s, this, SLOT(actionInvoked(QDBusMessage)));
    }
    m_asking = true;
    m_ownerChangedMeanwhile = false;
    call(QDBusMessage::createMethodCall(service, path, interface, u"GetCapabilities"_s),
        [this](const QDBusMessage &answer) { takeCapabilities(answer); });
}

void DesktopNotifier::takeCapabilities(const QDBusMessage &answer)
{
    m_asking = false;
    if (m_ownerChangedMeanwhile && !m_owner.isEmpty() && answer.service() != m_owner) {
        // There is another one now.
        proceed();
        return;
    }
    if (!isFromServer(answer)) {
        logFailure("no notification server answers; waiting for one for a while", answer);
        return;
    }
    m_server = answer.service();
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
    call(message,
        [this, identifier = entry.identifier, number = entry.call, server = m_server](
            const QDBusMessage &answer) { takeAnswer(identifier, number, server, answer); });
}

void DesktopNotifier::takeAnswer(
    const QString &identifier, quint64 call, const QString &server, const QDBusMessage &answer)
{
    const auto entry = std::ranges::find(m_entries, identifier, &Entry::identifier);
    if (entry == m_entries.end() || entry->call != call)
        return;
    entry->call = 0;
    auto sent = std::exchange(entry->sent, std::nullopt);

    if (answer.service() == busItself) {
        // It left before it could answer. The next one is to show it, unless there is newer news.
        logFailure("the notification server has gone; looking for another", answer);
        if (!entry->waiting && !sent->until.hasExpired())
            entry->waiting = std::move(sent);
        if (m_server == server)
            forgetServer();
        dropIdle();
        proceed();
        return;
    }
    if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == "u"_L1) {
        m_failureLogged = false;
        // The numbers of a server that has left meanwhile mean nothing.
        entry->serverId = server == m_server ? answer.arguments().constFirst().toUInt() : 0;
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
    m_ownerChangedMeanwhile = true;
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
