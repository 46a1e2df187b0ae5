#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QString>

namespace brimwatch {

/// Gives the file at `path` this content, wholly or not at all: on an error, which is told for
/// people, it stays as it was. A link to a file is followed.
Result<void, QString> replaceFile(const QString &path, const QByteArray &content);

} // namespace brimwatch
