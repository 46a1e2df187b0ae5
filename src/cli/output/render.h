#pragma once

#include "cli/command_line.h"
#include "cli/output/forms.h"
#include "cli/status.h"

#include <QDateTime>
#include <QString>

namespace brimwatch::cli {

/// The status in the form that was asked for, each line ended by a line feed.
QString render(
    const Options &options, const Status &status, const QDateTime &now, const TextLook &look);

} // namespace brimwatch::cli
