#include "platform/linux/bus/exported_object.h"

#include <QDBusConnection>
#include <QLoggingCategory>
#include <QString>

namespace brimwatch::platform::bus {

using namespace Qt::Literals::StringLiterals;

bool exportAdaptors(QDBusConnection bus, const QString &path, QObject *object)
{
    QLoggingCategory::setFilterRules(u"qt.dbus.integration.warning=false"_s);
    return bus.registerObject(path, object, QDBusConnection::ExportAdaptors);
}

} // namespace brimwatch::platform::bus
