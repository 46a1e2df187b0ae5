#include "platform/linux/bus/single_instance.h"

#include "platform/linux/bus/bus_names.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFileInfo>
#include <QLockFile>
#include <QTimer>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

SingleInstance::SingleInstance(QDBusConnection bus, const QString &runtimeFolder, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    const QFileInfo folder(runtimeFolder);
    if (!runtimeFolder.isEmpty() && folder.isDir() && folder.isWritable()) {
        m_lock = std::make_unique<QLockFile>(runtimeFolder + "/brimwatch.lock"_L1);
        // However long the other has been running.
        m_lock->setStaleLockTime(0);
    }
}

SingleInstance::~SingleInstance() = default;

void SingleInstance::claim()
{
    if (m_bus.isConnected())
        requestName(Attempt::First);
    else
        QTimer::singleShot(0, this, &SingleInstance::decideByLock);
}

void SingleInstance::requestName(Attempt attempt)
{
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    constexpr uint exists = 3;
    auto request = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
        u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"RequestName"_s);
    request << QString(bus::service) << doNotQueue;
    auto *watcher
        = new QDBusPendingCallWatcher(m_bus.asyncCall(request, int(timeout.count())), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
        [this, attempt](QDBusPendingCallWatcher *call) {
            call->deleteLater();
            const QDBusPendingReply<uint> reply = *call;
            if (reply.isError())
                decideByLock();
            else if (reply.value() == primaryOwner)
                decideByName();
            else if (reply.value() == exists && attempt == Attempt::First)
                askOther();
            else
                Q_EMIT decided(Outcome::OtherSilent);
        });
}

void SingleInstance::askOther()
{
    auto show = QDBusMessage::createMethodCall(bus::service, bus::path, bus::interface, u"Show"_s);
    show.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(show, int(timeout.count())), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *call) {
            call->deleteLater();
            if (!call->isError())
                Q_EMIT decided(Outcome::OtherShown);
            else
                // It may have been about to end: then the name is free now.
                requestName(Attempt::AfterSilence);
        });
}

void SingleInstance::decideByName()
{
    // For starts after the bus has gone. That another holds it says nothing here: it may be of
    // another session's bus.
    if (m_lock)
        m_lock->tryLock();
    Q_EMIT decided(Outcome::First);
}

void SingleInstance::decideByLock()
{
    // Only a lock that another holds says that there is another: no room for one says nothing.
    if (m_lock && !m_lock->tryLock() && m_lock->error() == QLockFile::LockFailedError)
        Q_EMIT decided(Outcome::OtherLocked);
    else
        Q_EMIT decided(Outcome::First);
}

} // namespace brimwatch::platform
