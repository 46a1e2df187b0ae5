#pragma once

#include "cli/output/forms.h"

#include <QString>

#include <cstdint>

namespace brimwatch::cli {

/// How this process's standard output shows text. A terminal gets bars as wide as it allows, and
/// colors unless NO_COLOR is set or it has none; anything else gets neither.
TextLook lookOfStandardOutput();

/// Notes what the terminal can show. Call it before the application object is made: that changes
/// the locale.
void detectTerminal();

enum class Written : std::uint8_t {
    All,
    NobodyReads, ///< The reader has gone, which is no failure: `brimwatchctl | head` is done.
    Failed, ///< Said on standard error.
};

/// Writes all of it to standard output and flushes.
Written writeOut(const QString &text);

/// Writes "brimwatchctl: " and the text, as one line and without control characters, to standard
/// error.
void writeError(const QString &text);

} // namespace brimwatch::cli
