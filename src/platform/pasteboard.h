#pragma once

#include <QtGlobal>

class QString;

namespace brimwatch::platform {

/// Where copied text goes.
class Pasteboard {
public:
    Pasteboard() = default;
    virtual ~Pasteboard() = default;
    Q_DISABLE_COPY_MOVE(Pasteboard)

    /// Replaces all that is there with plain text.
    virtual void setText(const QString &text) = 0;
};

} // namespace brimwatch::platform
