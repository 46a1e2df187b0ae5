#pragma once

#include "platform/pasteboard.h"

namespace brimwatch::platform {

class MacPasteboard final : public Pasteboard {
public:
    void setText(const QString &text) override;
};

} // namespace brimwatch::platform
