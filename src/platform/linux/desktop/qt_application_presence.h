#pragma once

#include "platform/application_presence.h"

namespace brimwatch::platform {

/// Freedesktop desktops know a program by its windows: one without any has no entry anywhere.
class QtApplicationPresence final : public ApplicationPresence {
public:
    void becomeAccessory() override;
    void closeWindows() override;
    void terminate() override;
};

} // namespace brimwatch::platform
