#pragma once

#include <QVariant>

namespace brimwatch::platform {

/// The system's own store of what the user has chosen, where there is one (macOS).
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// A bool, a double or a QString; invalid when there is no such key, or a value of another
    /// kind.
    virtual QVariant value(const char *key) const = 0;
    /// `value` is one of the three. It holds at once, and the system stores it.
    virtual void setValue(const char *key, const QVariant &value) = 0;
};

} // namespace brimwatch::platform
