#pragma once

#include <functional>
#include <memory>

namespace brimwatch::platform {

/// The program as the system sees it. Main thread only.
class NativeApplication {
public:
    NativeApplication();
    ~NativeApplication();
    NativeApplication(const NativeApplication &) = delete;
    NativeApplication &operator=(const NativeApplication &) = delete;
    NativeApplication(NativeApplication &&) = delete;
    NativeApplication &operator=(NativeApplication &&) = delete;

    /// Calls it once, when the system says that launching has finished, which is never before the
    /// event loop runs.
    void whenLaunched(std::function<void()> launched);
    /// Calls it each time the machine has woken from sleep.
    void whenWoken(std::function<void()> woken);
    /// Calls it each time the user opens the program although it runs, and each time another
    /// process of ours asks with askOtherToShow(). Not before launching has finished: until then
    /// AppKit would take the user's request back.
    void whenAskedToShow(std::function<void()> asked);
    /// Asks the Brimwatch of this session that runs already, if any. Needs no application object.
    static void askOtherToShow();

    /// No entry in the Dock and no menus.
    void becomeAccessory();
    /// Takes every window that there is off the screen, then closes it.
    void closeWindows();
    /// Ends the program.
    void terminate();

private:
    struct Objects;
    std::unique_ptr<Objects> m_objects;
};

} // namespace brimwatch::platform
