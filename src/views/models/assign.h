#pragma once

#include <type_traits>
#include <utility>

namespace brimwatch::views {

/// Stores a value and returns whether it differs from the one before. Every property that C++ sets
/// changes by this: `if (assign(m_text, text)) Q_EMIT textChanged();`. Those that QML sets are
/// MEMBERs with a NOTIFY, for which moc writes the same.
template <typename T> [[nodiscard]] bool assign(T &member, std::type_identity_t<T> value)
{
    if (member == value)
        return false;
    member = std::move(value);
    return true;
}

} // namespace brimwatch::views
