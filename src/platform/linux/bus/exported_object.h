#pragma once

class QDBusConnection;
class QObject;
class QString;

namespace brimwatch::platform::bus {

/// Puts the adaptors of an object on the bus at this path; false if the path is taken or there is
/// no bus. From then on Qt no longer logs calls that fit no method: from Qt 6.8 on each is a
/// warning, so that any caller could fill the journal. QT_LOGGING_RULES brings them back.
bool exportAdaptors(QDBusConnection bus, const QString &path, QObject *object);

} // namespace brimwatch::platform::bus
