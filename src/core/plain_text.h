#pragma once

#include <QString>

namespace brimwatch {

/// The beginning of `text`, at most `longest` UTF-16 units. It ends between two characters as
/// readers see them (graphemes), or, when a single one is longer, between two code points.
QString truncated(const QString &text, qsizetype longest);

/// `text` as one line of at most `longest` UTF-16 units. Each run of control characters, line ends
/// and blanks becomes one blank, without any at the start and the end; a longer text ends in "…".
QString asOneLine(const QString &text, qsizetype longest);

} // namespace brimwatch
