#pragma once

#include "platform/pasteboard.h"

namespace brimwatch::platform {

/// The desktop's clipboard. What was copied stays there for as long as the program runs, and longer
/// where a clipboard manager does.
class QtPasteboard final : public Pasteboard {
public:
    void setText(const QString &text) override;
};

} // namespace brimwatch::platform
