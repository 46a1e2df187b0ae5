#pragma once

#include <QLatin1StringView>

namespace brimwatch::platform::bus {

using namespace Qt::Literals::StringLiterals;

inline constexpr auto service = "app.brimwatch.Brimwatch"_L1;
inline constexpr auto path = "/app/brimwatch/Brimwatch"_L1;
inline constexpr auto interface = "app.brimwatch.Brimwatch1"_L1;
inline constexpr auto refreshFailed = "app.brimwatch.Brimwatch1.Error.RefreshFailed"_L1;

} // namespace brimwatch::platform::bus
