#pragma once

#include "core/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>

namespace brimwatch {

/// Why a file was not read.
enum class ReadFileError {
    NotFound, ///< Also for a link that leads nowhere.
    NotRegular, ///< A folder, a FIFO, a device, ...
    TooLarge, ///< By its size; nothing was read.
    LargerThanItsSize, ///< More bytes came than its size says, and more than allowed.
    Unreadable,
};

/// The whole content of the regular file at `path`, or of the one that a link there leads to, if it
/// has no more than `largest` bytes. For files that other programs write: it waits for nothing, and
/// opens nothing but a regular file, even where one takes the place of another meanwhile.
Result<QByteArray, ReadFileError> readFile(const QString &path, qint64 largest);

/// The same in pieces of some kilobytes, so that the memory which it takes does not depend on the
/// file. After an error those that came stay visited.
Result<void, ReadFileError> readPieces(
    const QString &path, qint64 largest, const std::function<void(QByteArrayView)> &visit);

/// The same as the first for a name in an open folder.
Result<QByteArray, ReadFileError> readFile(int folder, const QByteArray &name, qint64 largest);

} // namespace brimwatch
