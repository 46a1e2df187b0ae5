#pragma once

#include <QString>

namespace brimwatch {

/// The beginning of `text`, at most `longest` UTF-16 units of it. The cut is between characters as
/// readers see them, or, where one alone is longer, between code points.
QString truncated(const QString &text, qsizetype longest);

/// `text` on one line of at most `longest` UTF-16 units: control characters, line ends and blanks
/// become one blank each time, none stands at an end, and "…" stands for what is cut off.
QString asOneLine(const QString &text, qsizetype longest);

} // namespace brimwatch
