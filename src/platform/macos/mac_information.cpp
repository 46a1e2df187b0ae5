#include "platform/macos/mac_information.h"

#include "platform/macos/native_information.h"

namespace brimwatch::platform {
namespace {

std::optional<QString> text(const std::optional<std::string> &native)
{
    if (!native)
        return std::nullopt;
    return QString::fromStdString(*native);
}

} // namespace

AppInformation macAppInformation()
{
    const NativeInformation native = nativeInformation();
    return {.version = text(native.version),
        .build = text(native.build),
        .systemVersion = QString::fromStdString(native.systemVersion)};
}

} // namespace brimwatch::platform
