#pragma once

#include "cli/history/usage.h"

#include <QDateTime>
#include <QString>

namespace brimwatch::cli {

/// A drawing in SVG, without the <svg> around it.
struct Picture {
    QString title; ///< Says as text what it shows, in two sentences with the next.
    QString description;
    int height = 0; ///< In units of which it is `pictureWidth` wide.
    QString content;
};

inline constexpr int pictureWidth = 360;

/// What was used of the window under way until now, beside the line of even use.
Picture coursePicture(const WindowUsage &window, const QDateTime &now);
/// A bar for each of these windows of a bucket, with its peak.
Picture windowsPicture(
    const BucketUsage &usage, const QList<WindowUsage> &windows, const QDateTime &now);
/// The hours of the week, the darker the more was used in them. Empty content where nothing was.
Picture hoursPicture(const BucketUsage &usage);

/// The colors and fonts of pictures and page, for light and dark surroundings and for paper.
QString pictureStyle();

} // namespace brimwatch::cli
