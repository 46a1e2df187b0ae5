#pragma once

#include "platform/login_item.h"
#include "platform/macos/native_login_item.h"

namespace brimwatch::platform {

/// The login item as the system's settings list it.
class MacLoginItem final : public LoginItem {
public:
    Status status() const override;
    Result<void, QString> registerItem() override;
    Result<void, QString> unregisterItem() override;
    void openSystemSettings() override;

private:
    NativeLoginItem m_native;
};

} // namespace brimwatch::platform
