#pragma once

#include "platform/opener.h"

namespace brimwatch::platform {

/// Opens things as the Finder would.
class MacOpener final : public Opener {
public:
    /// The IDE in the places where its installers put it, the first that is there.
    bool openAntigravity() override;
    void openUrl(const QUrl &url) override;
};

} // namespace brimwatch::platform
