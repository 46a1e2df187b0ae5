#pragma once

#include "cli/output/template.h"
#include "core/result.h"

#include <QString>
#include <QStringList>

namespace brimwatch::cli {

enum class Command { Status, Refresh, Toggle, Settings, Diagnostics, History, Version, Help };
enum class Format { Text, Json, Waybar, I3blocks, Template, Csv, Svg, Html };

/// What is done with the history.
enum class HistoryTask {
    Print,
    Score, ///< Prints how often the forecasts were right.
    Open, ///< Opens it as a page in the browser.
    Clear, ///< Deletes it.
};

/// What was asked on the command line.
struct Options {
    Command command = Command::Status;
    Format format = Format::Text;
    Template formatTemplate = {}; ///< Empty unless the format is Format::Template.
    bool watch = false;
    HistoryTask historyTask = HistoryTask::Print;

    bool operator==(const Options &) const = default;
};

/// Reads the arguments after the program's name. The error is one line that says what is wrong.
Result<Options, QString> parseCommandLine(const QStringList &arguments);

/// The text of --help.
QString helpText();

} // namespace brimwatch::cli
