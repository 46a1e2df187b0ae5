#pragma once

#include <QString>

namespace brimwatch::model {

/// `fraction` × 100, at least 0 and at most 100. A NaN stays one.
double clampedPercentage(double fraction);

/// As printf's "%.1f%%" and "%.0f%%" do: ties go to even, the decimal point is a point in every
/// locale.
QString percentWithOneDecimal(double percentage);
QString wholePercent(double percentage);

} // namespace brimwatch::model
