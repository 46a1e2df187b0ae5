#include "dbus/desktop/fake_notification_server.h"

#include <QDBusArgument>
#include <QDBusError>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto service = "org.freedesktop.Notifications"_L1;
constexpr auto path = "/org/freedesktop/Notifications"_L1;

} // namespace

FakeNotificationServer::FakeNotificationServer(uint firstId)
    : m_nextId(firstId)
{
    m_program.bus().registerVirtualObject(path, this);
    if (!m_program.takeName(service))
        qFatal("another program serves notifications on this bus");
}

FakeNotificationServer::~FakeNotificationServer()
{
    m_program.bus().unregisterObject(path);
}

void FakeNotificationServer::giveUpName()
{
    m_program.bus().unregisterService(service);
}

void FakeNotificationServer::answerHeld(uint id)
{
    send(held.takeFirst().createReply(QVariant(id)));
}

void FakeNotificationServer::signal(const QString &member, const QVariantList &arguments)
{
    auto message = QDBusMessage::createSignal(path, service, member);
    message.setArguments(arguments);
    send(message);
}

void FakeNotificationServer::close(uint id)
{
    constexpr uint dismissed = 2;
    signal(u"NotificationClosed"_s, {id, dismissed});
}

void FakeNotificationServer::invoke(uint id, const QString &action)
{
    signal(u"ActionInvoked"_s, {id, action});
}

QStringList FakeNotificationServer::titles() const
{
    QStringList titles;
    for (const auto &call : calls)
        titles.append(call.title);
    return titles;
}

QString FakeNotificationServer::introspect(const QString & /*path*/) const
{
    return {};
}

bool FakeNotificationServer::handleMessage(
    const QDBusMessage &message, const QDBusConnection & /*connection*/)
{
    if (message.member() == "GetCapabilities"_L1) {
        ++asked;
        answer(onGetCapabilities, message, capabilities);
        return true;
    }
    if (message.member() != "Notify"_L1)
        return false;
    const auto arguments = message.arguments();
    calls.append({.signature = message.signature(),
        .application = arguments.value(0).toString(),
        .replaces = arguments.value(1).toUInt(),
        .icon = arguments.value(2).toString(),
        .title = arguments.value(3).toString(),
        .body = arguments.value(4).toString(),
        .actions = arguments.value(5).toStringList(),
        .hints = qdbus_cast<QVariantMap>(arguments.value(6)),
        .expires = arguments.value(7).toInt()});
    if (onNotify == Manners::Holds)
        held.append(message);
    else
        answer(onNotify, message, calls.last().replaces != 0 ? calls.last().replaces : m_nextId++);
    if (onCall)
        onCall();
    return true;
}

void FakeNotificationServer::send(const QDBusMessage &message)
{
    m_program.bus().send(message);
}

void FakeNotificationServer::answer(
    Manners manners, const QDBusMessage &call, const QVariant &value)
{
    switch (manners) {
    case Manners::Answers:
        send(call.createReply(value));
        break;
    case Manners::Holds:
        break;
    case Manners::Refuses:
        send(call.createErrorReply(QDBusError::Failed, u"not today"_s));
        break;
    case Manners::AnswersNonsense:
        send(call.createReply(QVariantList{u"seven"_s, QVariantMap{{u"a"_s, 1}}}));
        break;
    }
}

} // namespace brimwatch::test
