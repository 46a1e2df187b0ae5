#pragma once

#include "platform/application_presence.h"
#include "platform/macos/native_application.h"

namespace brimwatch::platform {

class MacApplicationPresence final : public ApplicationPresence {
public:
    /// Calls it once, when launching has finished.
    void whenLaunched(std::function<void()> launched)
    {
        m_native.whenLaunched(std::move(launched));
    }

    void becomeAccessory() override;
    void closeWindows() override { m_native.closeWindows(); }
    void terminate() override { m_native.terminate(); }

private:
    NativeApplication m_native;
};

} // namespace brimwatch::platform
