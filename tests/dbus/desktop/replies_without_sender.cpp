#include <QDBusMessage>

#include <dlfcn.h>

/// QDBusMessage::service() as it is from Qt 6.8 on, where a reply does not name its sender, for the
/// program that this is linked into. Signals and calls name theirs.
QString QDBusMessage::service() const
{
    if (type() == ReplyMessage || type() == ErrorMessage)
        return {};
    using Service = QString (*)(const QDBusMessage *);
    static const auto original
        = reinterpret_cast<Service>(dlsym(RTLD_NEXT, "_ZNK12QDBusMessage7serviceEv"));
    return original(this);
}
