#pragma once

#include "cli/history/usage.h"
#include "cli/output/forms.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>

namespace brimwatch::cli {

// The forms of the history, each in a file of its own.

/// For people: of each bucket the window under way beside the line of even use, the windows before
/// it, and a map of the hours in which it was used. What is no terminal gets no pictures, and one
/// that is not UTF-8 gets them in ASCII.
QString renderHistory(const QList<BucketUsage> &usages, const QDateTime &now, const TextLook &look);

/// What docs/bars-and-scripts.md describes, on several lines.
QString renderHistoryJson(const QList<BucketUsage> &usages);

/// All rows as the files of the history have them, in pieces of some kilobytes. Ends early when
/// `write` returns false.
void writeHistoryCsv(
    const forecast::History &history, const std::function<bool(const QString &)> &write);

/// One SVG document with the pictures of all buckets, light or dark as the viewer has it.
QString renderHistorySvg(const QList<BucketUsage> &usages, const QDateTime &now);

/// One HTML document that loads nothing and runs nothing, light or dark as the browser has it.
QString renderHistoryHtml(const QList<BucketUsage> &usages, const QDateTime &now);

/// How often the forecasts were right, for people; with few windows it says that they are too few.
QString renderScore(const QList<BucketUsage> &usages, const TextLook &look);

/// The same figures as JSON.
QString renderScoreJson(const QList<BucketUsage> &usages);

} // namespace brimwatch::cli
