#pragma once

#include <QDBusArgument>

#include <tuple>

namespace brimwatch::platform {

/// A record that D-Bus carries as a structure: `T::members(record)` ties its members in their order
/// on the wire.
template <typename T>
concept BusStructure = requires(T &record) { T::members(record); };

// NOLINTBEGIN(bugprone-return-const-ref-from-parameter): the signatures that QtDBus asks for.
template <BusStructure T> QDBusArgument &operator<<(QDBusArgument &argument, const T &record)
{
    argument.beginStructure();
    std::apply(
        [&argument](const auto &...member) { (argument << ... << member); }, T::members(record));
    argument.endStructure();
    return argument;
}

template <BusStructure T> const QDBusArgument &operator>>(const QDBusArgument &argument, T &record)
{
    argument.beginStructure();
    std::apply([&argument](auto &...member) { (argument >> ... >> member); }, T::members(record));
    argument.endStructure();
    return argument;
}
// NOLINTEND(bugprone-return-const-ref-from-parameter)

} // namespace brimwatch::platform
