#include "model/percent.h"

#include <fmt/format.h>

namespace brimwatch::model {
namespace {

QString formatted(double percentage, int decimals)
{
    fmt::memory_buffer buffer;
    fmt::format_to(std::back_inserter(buffer), "{:.{}f}%", percentage, decimals);
    return QString::fromLatin1(buffer.data(), static_cast<qsizetype>(buffer.size()));
}

} // namespace

double clampedPercentage(double fraction)
{
    const double percentage = fraction * 100;
    // Not std::clamp: a negative zero would keep its sign and print it.
    if (percentage <= 0)
        return 0;
    return percentage > 100 ? 100 : percentage;
}

QString percentWithOneDecimal(double percentage)
{
    return formatted(percentage, 1);
}

QString wholePercent(double percentage)
{
    return formatted(percentage, 0);
}

} // namespace brimwatch::model
