#pragma once

#include <string>
#include <variant>

namespace brimwatch::platform {

/// What the standard user defaults hold under a key; text is UTF-8. Nothing: no such key, or a
/// value of another kind.
using NativeDefault = std::variant<std::monostate, bool, double, std::string>;

/// Looks through the domains of the standard user defaults, that of the program's bundle before
/// those that all programs share.
NativeDefault userDefault(const std::string &key);
/// Stores it in the domain of the program's bundle; the system writes it soon. Nothing
/// removes what is there.
void setUserDefault(const std::string &key, const NativeDefault &value);

} // namespace brimwatch::platform
