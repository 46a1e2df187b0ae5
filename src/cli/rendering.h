#pragma once

#include "cli/status.h"
#include "core/result.h"

#include <QDateTime>
#include <QString>

namespace brimwatch::cli {

/// How text is shown.
struct TextLook {
    enum class Bars { None, Ascii, Blocks };

    bool colours = false; ///< As a terminal shows them (ECMA-48).
    Bars bars = Bars::None;
    int width = 80; ///< Columns; a bar takes what is left of them. Without bars it counts nothing.
};

/// A block of lines for people, each ended by a line feed: each group with its buckets, and how old
/// that is while offline. Empty when there is no quota to tell.
QString renderText(const Status &status, const QDateTime &now, const TextLook &look);

/// One line for people: the label, and why it is old while offline.
QString renderLine(const Status &status);

enum class JsonShape { Lines, OneLine };

/// What docs/brimwatchctl.schema.json describes. No line feed at its end.
QString renderJson(const Status &status, JsonShape shape);

/// The line that waybar's custom module reads with "return-type": "json".
QString renderWaybar(const Status &status, const QDateTime &now);

enum class BlockShape { Whole, OneLine };

/// What i3blocks reads with markup=pango: long text, short text and colour, a line each; for
/// interval=persist the long text alone. No line feed at its end.
QString renderI3blocks(const Status &status, BlockShape shape);

/// `formatTemplate` with its fields filled in: "{title}", "{gemini.5h}". "{{" and "}}" stand for
/// braces, "\n", "\t" and "\\" for a line feed, a tab and a backslash. What a field has nothing to
/// say for is empty. The error names the field that does not exist.
Result<QString, QString> renderTemplate(
    const QString &formatTemplate, const Status &status, const QDateTime &now);

/// The names of all fields that do not name a group, for the documentation's test.
QStringList templateFields();

} // namespace brimwatch::cli
