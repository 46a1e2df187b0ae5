#pragma once

#include "platform/application_presence.h"
#include "platform/macos/native_application.h"

namespace brimwatch::platform {

/// To be called before the application object is made. Otherwise Qt activates the program when it
/// has been launched, and takes the keyboard from whatever the user types in.
void keepQtFromActivating();

class MacApplicationPresence final : public ApplicationPresence {
public:
    /// Calls it once, when launching has finished.
    void whenLaunched(std::function<void()> launched)
    {
        m_native.whenLaunched(std::move(launched));
    }
    /// Calls it each time the machine has woken from sleep.
    void whenWoken(std::function<void()> woken) { m_native.whenWoken(std::move(woken)); }
    /// Calls it each time a second start asks for the popover.
    void whenAskedToShow(std::function<void()> asked)
    {
        m_native.whenAskedToShow(std::move(asked));
    }

    void becomeAccessory() override;
    void closeWindows() override { m_native.closeWindows(); }
    void terminate() override { m_native.terminate(); }

private:
    NativeApplication m_native;
};

} // namespace brimwatch::platform
