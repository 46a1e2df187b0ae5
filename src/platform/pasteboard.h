#pragma once

class QString;

namespace brimwatch::platform {

/// Where copied text goes.
class Pasteboard {
public:
    Pasteboard() = default;
    virtual ~Pasteboard() = default;
    Pasteboard(const Pasteboard &) = delete;
    Pasteboard &operator=(const Pasteboard &) = delete;
    Pasteboard(Pasteboard &&) = delete;
    Pasteboard &operator=(Pasteboard &&) = delete;

    /// Replaces all that is there with plain text.
    virtual void setText(const QString &text) = 0;
};

} // namespace brimwatch::platform
