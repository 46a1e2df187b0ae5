#include "forecast/window_kind.h"

#include <QLatin1StringView>

namespace brimwatch::forecast {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr WindowKind fiveHours{.length = 5h,
    .recent = 30min,
    .change = 30min,
    .priorWeight = 0.5,
    .spread = 1.0,
    .spreadWithOwnHours = 1.0,
    .usersStop = true,
    .hasOwnHours = false,
    .warnAbove = 0.5,
    .takeBackAt = 0.25,
    .steadying = 15min};

constexpr WindowKind week{.length = 168h,
    .recent = 24h,
    .change = 24h,
    .priorWeight = 0.3,
    .spread = 0.6,
    .spreadWithOwnHours = 0.4,
    .usersStop = false,
    .hasOwnHours = true,
    .warnAbove = 0.8,
    .takeBackAt = 0.55,
    .steadying = 1h};

} // namespace

const WindowKind *windowKind(QStringView window)
{
    if (window == "5h"_L1)
        return &fiveHours;
    return window == "weekly"_L1 ? &week : nullptr;
}

} // namespace brimwatch::forecast
