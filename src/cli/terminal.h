#pragma once

#include "cli/output/forms.h"

#include <QString>

namespace brimwatch::cli {

/// How this process's standard output shows text. A terminal gets bars as wide as it allows, and
/// colors unless NO_COLOR is set or it has none; anything else gets neither.
TextLook lookOfStandardOutput();

/// Notes what the terminal can show. Call it before the application object is made: that changes
/// the locale.
void detectTerminal();

/// Writes all of it and flushes. False when the reader of standard output has gone.
bool writeOut(const QString &text);

/// Writes "brimwatchctl: " and the text as a line of standard error.
void writeError(const QString &text);

} // namespace brimwatch::cli
