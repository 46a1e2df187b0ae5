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
