#pragma once

#include "cli/command_line.h"
#include "cli/rendering.h"
#include "cli/status.h"
#include "core/result.h"

#include <QString>

namespace brimwatch::cli {

/// How this process's standard output shows text. A terminal gets bars as wide as it allows, and
/// colours unless NO_COLOR is set or it knows none; anything else gets neither.
TextLook lookOfStandardOutput();

/// Remembers what the terminal can show. Before the application object: that one changes the
/// locale.
void rememberTerminal();

/// Writes it whole and at once. False when whoever read standard output has gone.
bool writeOut(const QString &text);

/// Writes "brimwatchctl: " and the text as a line of standard error.
void writeError(const QString &text);

/// The status in that form, each line ended by a line feed. The error is one of the template.
Result<QString, QString> render(const Options &options, const Status &status, const TextLook &look);

} // namespace brimwatch::cli
