#pragma once

#include <QString>

namespace brimwatch::model {

/// `fraction` × 100, at least 0 and at most 100. NaN stays NaN.
double clampedPercentage(double fraction);

/// As printf's "%.1f%%" and "%.0f%%" in the C locale: ties are rounded to even.
QString percentWithOneDecimal(double percentage);
QString wholePercent(double percentage);

} // namespace brimwatch::model
