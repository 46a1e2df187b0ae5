#pragma once

#include "cli/status.h"

#include <QDateTime>
#include <QString>

namespace brimwatch::cli {

// The forms of a status, each in a file of its own; a template is a value: template.h.

/// Whether an output may have several lines. Programs that follow changes read a line for each.
enum class Layout { Block, OneLine };

/// How text is shown.
struct TextLook {
    enum class Bars { None, Ascii, Blocks };

    bool colors = false; ///< By the escape sequences of ECMA-48.
    Bars bars = Bars::None;
    int width = 80; ///< Columns; a bar takes what is left of them. Not used without bars.
};

/// A block of lines for people, each ended by a line feed: each group with its buckets, and how old
/// that is while offline. Empty when no quota is known and it is offline.
QString renderText(const Status &status, const QDateTime &now, const TextLook &look);

// None of those below ends with a line feed.

/// One line for people: the label, and while offline the reason.
QString renderLine(const Status &status);

/// What docs/brimwatchctl.schema.json describes.
QString renderJson(const Status &status, Layout layout);

/// The line that waybar's custom module reads with "return-type": "json".
QString renderWaybar(const Status &status, const QDateTime &now);

/// What i3blocks reads with markup=pango: long text, short text and color, a line each; for
/// interval=persist the long text alone.
QString renderI3blocks(const Status &status, Layout layout);

} // namespace brimwatch::cli
