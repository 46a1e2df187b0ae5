#include "platform/linux/bus/exported_object.h"

#include <QDBusConnection>
#include <QLoggingCategory>
#include <QString>

#include <mutex>

namespace brimwatch::platform::bus {

using namespace Qt::Literals::StringLiterals;

bool exportAdaptors(QDBusConnection bus, const QString &path, QObject *object)
{
    static std::once_flag once;
    std::call_once(
        once, [] { QLoggingCategory::setFilterRules(u"qt.dbus.integration.warning=false"_s); });
    return bus.registerObject(path, object, QDBusConnection::ExportAdaptors);
}

} // namespace brimwatch::platform::bus
