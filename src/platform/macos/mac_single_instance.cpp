#include "platform/macos/mac_single_instance.h"

#include "platform/macos/native_application.h"

#include <QDir>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

MacSingleInstance::MacSingleInstance(const QString &folder)
    : m_lock(folder + "/brimwatch.lock"_L1)
{
    QDir().mkpath(folder);
    // Never stale, however long the other has been running.
    m_lock.setStaleLockTime(0);
}

bool MacSingleInstance::claim()
{
    // Only a lock held by another process counts; an error does not.
    return m_lock.isLocked() || m_lock.tryLock() || m_lock.error() != QLockFile::LockFailedError;
}

void MacSingleInstance::askOther()
{
    NativeApplication::askOtherToShow();
}

} // namespace brimwatch::platform
