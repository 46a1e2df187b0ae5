#include "platform/linux/bus/single_instance.h"

#include "platform/linux/bus/bus_calls.h"
#include "platform/linux/bus/bus_names.h"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QFileInfo>
#include <QLockFile>
#include <QTimer>

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

/// Whether the process that a lock file names is there.
bool isHeld(const QLockFile &lock)
{
    qint64 pid = 0;
    QString host;
    QString program;
    return lock.getLockInfo(&pid, &host, &program) && QFileInfo::exists(u"/proc/%1"_s.arg(pid));
}

} // namespace

SingleInstance::SingleInstance(QDBusConnection bus, const QString &runtimeFolder, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
{
    const QFileInfo folder(runtimeFolder);
    if (!runtimeFolder.isEmpty() && folder.isDir() && folder.isWritable()) {
        m_lock = std::make_unique<QLockFile>(runtimeFolder + "/brimwatch.lock"_L1);
        // Never stale, however long the other has been running.
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
    bus::requestName(m_bus, bus::service, this, timeout, [this, attempt](bus::NameResult result) {
        switch (result) {
        case bus::NameResult::Owner:
            decideByName();
            break;
        case bus::NameResult::Refused:
            decideByLock();
            break;
        case bus::NameResult::Taken:
            if (attempt == Attempt::First)
                askOther();
            else
                Q_EMIT decided(Outcome::OtherSilent);
            break;
        }
    });
}

void SingleInstance::askOther()
{
    auto show = QDBusMessage::createMethodCall(bus::service, bus::path, bus::interface, u"Show"_s);
    show.setAutoStartService(false);
    bus::whenAnswered(m_bus, show, this, timeout, [this](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ReplyMessage)
            askForDisplay();
        else
            // It may have been about to end: then the name is free now.
            requestName(Attempt::AfterSilence);
    });
}

void SingleInstance::askForDisplay()
{
    auto read = QDBusMessage::createMethodCall(
        bus::service, bus::path, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    read << QString(bus::interface) << u"Display"_s;
    read.setAutoStartService(false);
    bus::whenAnswered(m_bus, read, this, timeout, [this](const QDBusMessage &answer) {
        // A program of an earlier version has no such property.
        m_otherDisplay = answer.arguments().value(0).value<QDBusVariant>().variant().toString();
        Q_EMIT decided(Outcome::OtherShown);
    });
}

void SingleInstance::decideByName()
{
    // For starts after the bus has gone. Deliberate: a lock that another holds means nothing here,
    // as its holder may be on another session's bus.
    if (m_lock)
        m_lock->tryLock();
    Q_EMIT decided(Outcome::First);
}

void SingleInstance::decideByLock()
{
    // Only a lock held by another process counts. An error does not, and neither does a lock file
    // that nobody holds but that cannot be removed.
    if (m_lock && !m_lock->tryLock() && m_lock->error() == QLockFile::LockFailedError
        && isHeld(*m_lock))
        Q_EMIT decided(Outcome::OtherLocked);
    else
        Q_EMIT decided(Outcome::First);
}

} // namespace brimwatch::platform
