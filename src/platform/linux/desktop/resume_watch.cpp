#include "platform/linux/desktop/resume_watch.h"

#include <utility>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

ResumeWatch::ResumeWatch(QDBusConnection bus)
    : m_bus(std::move(bus))
{
    // With the name of the service, so that no other sender counts.
    m_bus.connect(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
        u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s, this,
        SLOT(prepareForSleep(bool)));
}

void ResumeWatch::prepareForSleep(bool start)
{
    // Announced twice: before the machine goes to sleep, and after it is back.
    if (!start)
        Q_EMIT resumed();
}

} // namespace brimwatch::platform
