#include "platform/macos/mac_user_defaults.h"

#include "platform/macos/native_user_defaults.h"

#include <QString>

namespace brimwatch::platform {
namespace {

struct ToVariant {
    QVariant operator()(std::monostate /*none*/) const { return {}; }
    QVariant operator()(bool value) const { return value; }
    QVariant operator()(double value) const { return value; }
    QVariant operator()(const std::string &value) const { return QString::fromStdString(value); }
};

NativeDefault toNative(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::Double:
        return value.toDouble();
    default:
        return value.toString().toStdString();
    }
}

} // namespace

QVariant MacUserDefaults::value(const char *key) const
{
    return std::visit(ToVariant{}, userDefault(key));
}

void MacUserDefaults::setValue(const char *key, const QVariant &value)
{
    setUserDefault(key, toNative(value));
}

} // namespace brimwatch::platform
