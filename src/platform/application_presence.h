#pragma once

#include <QtGlobal>

namespace brimwatch::platform {

/// How the program appears on the desktop as a whole.
class ApplicationPresence {
public:
    ApplicationPresence() = default;
    virtual ~ApplicationPresence() = default;
    Q_DISABLE_COPY_MOVE(ApplicationPresence)

    /// From now on the program has no entry in a dock, a task bar or a window list, and does not
    /// end with its last window.
    virtual void becomeAccessory() = 0;
    /// Hides every window, then closes it.
    virtual void closeWindows() = 0;
    /// Ends the program.
    virtual void terminate() = 0;
};

} // namespace brimwatch::platform
