#include "support/fake_bus.h"

#include <QCoreApplication>
#include <QTest>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

const auto connectionName = u"fake bus"_s;

} // namespace

FakeBus::FakeBus()
    : m_server(u"unix:tmpdir=/tmp"_s)
    , m_programs(QString())
    , m_connection(QString())
{
    m_server.setAnonymousAuthenticationAllowed(true);
    connect(&m_server, &QDBusServer::newConnection, this, [this](const QDBusConnection &programs) {
        m_programs = programs;
        m_programs.registerObject(
            u"/org/freedesktop/DBus"_s, this, QDBusConnection::ExportAllSlots);
    });
    m_connection = QDBusConnection::connectToPeer(m_server.address(), connectionName);
    if (!QTest::qWaitFor([this] { return m_programs.isConnected(); }))
        qFatal("the fake bus has no connection");
}

FakeBus::~FakeBus()
{
    QDBusConnection::disconnectFromPeer(connectionName);
}

QString FakeBus::GetNameOwner(const QString &name)
{
    ++asked;
    const Manners manners
        = onGetNameOwner.size() > 1 ? onGetNameOwner.takeFirst() : onGetNameOwner.constFirst();
    if (manners == Manners::Holds)
        setDelayedReply(true);
    else if (manners == Manners::TimesOut)
        sendErrorReply(u"org.freedesktop.DBus.Error.NoReply"_s, u"too late"_s);
    else if (!owners.contains(name))
        sendErrorReply(u"org.freedesktop.DBus.Error.NameHasNoOwner"_s, u"no owner"_s);
    return owners.value(name);
}

uint FakeBus::GetConnectionUnixProcessID(const QString & /*name*/)
{
    return static_cast<uint>(QCoreApplication::applicationPid());
}

} // namespace brimwatch::test
