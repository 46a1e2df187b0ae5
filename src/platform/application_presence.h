#pragma once

namespace brimwatch::platform {

/// How the program as a whole stands on the desktop.
class ApplicationPresence {
public:
    ApplicationPresence() = default;
    virtual ~ApplicationPresence() = default;
    ApplicationPresence(const ApplicationPresence &) = delete;
    ApplicationPresence &operator=(const ApplicationPresence &) = delete;
    ApplicationPresence(ApplicationPresence &&) = delete;
    ApplicationPresence &operator=(ApplicationPresence &&) = delete;

    /// From now on: no entry in a dock, a task bar or a window list, and no end with the last
    /// window.
    virtual void becomeAccessory() = 0;
    /// Takes every window that there is off the screen, then closes it.
    virtual void closeWindows() = 0;
    /// Ends the program.
    virtual void terminate() = 0;
};

} // namespace brimwatch::platform
