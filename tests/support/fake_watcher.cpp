#include "support/fake_watcher.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QTest>

#include <algorithm>
#include <utility>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QString nextConnectionName()
{
    static int number = 0;
    return u"other-program-%1"_s.arg(++number);
}

} // namespace

OtherProgram::OtherProgram()
    : m_connectionName(nextConnectionName())
    , m_bus(QDBusConnection::connectToBus(QDBusConnection::SessionBus, m_connectionName))
{
}

OtherProgram::~OtherProgram()
{
    QDBusConnection::disconnectFromBus(m_connectionName);
}

bool OtherProgram::takeName(const QString &name)
{
    return m_bus.registerService(name);
}

QDBusMessage OtherProgram::call(const QDBusMessage &call)
{
    const QDBusPendingCall pending = m_bus.asyncCall(call);
    // Not a blocking call: who answers may need this thread.
    if (!QTest::qWaitFor([&pending] { return pending.isFinished(); }, 20'000))
        return QDBusMessage::createError(QDBusError::NoReply, u"no answer"_s);
    return pending.reply();
}

QDBusMessage OtherProgram::call(const QString &service, const QString &path,
    const QString &interface, const QString &member, const QVariantList &arguments)
{
    auto message = QDBusMessage::createMethodCall(service, path, interface, member);
    message.setArguments(arguments);
    return call(message);
}

QString OtherProgram::ownerOf(const QString &name)
{
    const auto answer = call(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
        u"org.freedesktop.DBus"_s, u"GetNameOwner"_s, {name});
    return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toString()
                                                       : QString();
}

FakeWatcher::FakeWatcher(Manners manners)
    : m_manners(manners)
{
    m_program.bus().registerObject(u"/StatusNotifierWatcher"_s, this,
        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals
            | QDBusConnection::ExportAllProperties);
    if (!m_program.takeName(u"org.kde.StatusNotifierWatcher"_s))
        qFatal("another program is the watcher on this bus");
}

void FakeWatcher::RegisterStatusNotifierItem(const QString &service)
{
    m_items.append(service);
    m_senders.append(message().service());
    if (m_manners == Manners::RefusesItems)
        sendErrorReply(QDBusError::AccessDenied, u"not here"_s);
    else
        Q_EMIT StatusNotifierItemRegistered(service);
}

void FakeWatcher::RegisterStatusNotifierHost(const QString & /*service*/)
{
    Q_EMIT StatusNotifierHostRegistered();
}

FakeHost::FakeHost(QString service, QString path, QString interface, const QStringList &signalNames)
    : m_service(std::move(service))
    , m_path(std::move(path))
    , m_interface(std::move(interface))
{
    for (const auto &name : signalNames)
        m_program.bus().connect(
            m_service, m_path, m_interface, name, this, SLOT(hear(QDBusMessage)));
    // Calls of one connection arrive in their order: the matches stand once the bus has answered
    // this one.
    m_program.ownerOf(m_service);
}

QVariantMap FakeHost::readAll()
{
    const auto answer = m_program.call(
        m_service, m_path, u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, {m_interface});
    return qdbus_cast<QVariantMap>(answer.arguments().value(0));
}

QDBusMessage FakeHost::read(const QString &property)
{
    return m_program.call(
        m_service, m_path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, {m_interface, property});
}

QDBusMessage FakeHost::call(const QString &member, const QVariantList &arguments)
{
    return m_program.call(m_service, m_path, m_interface, member, arguments);
}

QStringList FakeHost::heard()
{
    // Messages of one sender arrive in their order: what it signalled before it answers is here
    // with the answer.
    m_program.call(m_service, m_path, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
    QCoreApplication::processEvents();
    QStringList names;
    for (const auto &message : std::as_const(m_heard))
        names.append(message.member());
    return names;
}

QVariantList FakeHost::lastArguments(const QString &signal) const
{
    const auto last = std::find_if(m_heard.crbegin(), m_heard.crend(),
        [&signal](const QDBusMessage &message) { return message.member() == signal; });
    return last == m_heard.crend() ? QVariantList() : last->arguments();
}

void FakeHost::hear(const QDBusMessage &signal)
{
    m_heard.append(signal);
}

} // namespace brimwatch::test
