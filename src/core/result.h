#pragma once

#include <tl/expected.hpp>

#include <utility>

namespace brimwatch {

/// The outcome of an operation that can fail: a value, or an error that says why there is none.
template <typename T, typename E> using Result = tl::expected<T, E>;

template <typename E> auto fail(E &&error)
{
    return tl::unexpected<std::decay_t<E>>(std::forward<E>(error));
}

} // namespace brimwatch
