#include "core/read_file.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <vector>

namespace brimwatch {

namespace {

ReadFileError errorOf(int number)
{
    return number == ENOENT || number == ENOTDIR ? ReadFileError::NotFound
                                                 : ReadFileError::Unreadable;
}

/// Absent when a file with that status may be read.
std::optional<ReadFileError> objection(const struct stat &status, qint64 largest)
{
    if (!S_ISREG(status.st_mode))
        return ReadFileError::NotRegular;
    if (status.st_size > largest)
        return ReadFileError::TooLarge;
    return {};
}

/// Opens it for reading. The error is why there is nothing to read.
Result<void, ReadFileError> openRegular(
    QFile &file, int folder, const QByteArray &name, qint64 largest)
{
    // Checked before it is opened: to open a device can do something.
    struct stat status = {};
    if (::fstatat(folder, name.constData(), &status, 0) != 0)
        return fail(errorOf(errno));
    if (const auto error = objection(status, largest))
        return fail(*error);
    // Without O_NONBLOCK a FIFO that has taken its place would wait here for a writer.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): POSIX has no other.
    const int descriptor
        = ::openat(folder, name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0)
        return fail(errorOf(errno));
    // Unbuffered: a buffer would read beyond the bound.
    if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered,
            QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return fail(ReadFileError::Unreadable);
    }
    if (::fstat(descriptor, &status) != 0)
        return fail(ReadFileError::Unreadable);
    if (const auto error = objection(status, largest))
        return fail(*error);
    return {};
}

} // namespace

Result<QByteArray, ReadFileError> readFile(const QString &path, qint64 largest)
{
    return readFile(AT_FDCWD, QFile::encodeName(path), largest);
}

Result<QByteArray, ReadFileError> readFile(int folder, const QByteArray &name, qint64 largest)
{
    QFile file;
    if (const auto opened = openRegular(file, folder, name, largest); !opened)
        return fail(opened.error());
    QByteArray content = file.read(largest + 1);
    if (file.error() != QFileDevice::NoError)
        return fail(ReadFileError::Unreadable);
    if (content.size() > largest)
        return fail(ReadFileError::LargerThanItsSize);
    return content;
}

Result<void, ReadFileError> readPieces(
    const QString &path, qint64 largest, const std::function<void(QByteArrayView)> &visit)
{
    QFile file;
    if (auto opened = openRegular(file, AT_FDCWD, QFile::encodeName(path), largest); !opened)
        return opened;
    constexpr std::size_t most = 16384;
    std::vector<char> piece(most);
    qint64 total = 0;
    while (true) {
        const qint64 size = file.read(piece.data(), qint64{most});
        if (size < 0 || file.error() != QFileDevice::NoError)
            return fail(ReadFileError::Unreadable);
        if (size == 0)
            return {};
        total += size;
        if (total > largest)
            return fail(ReadFileError::LargerThanItsSize);
        visit(QByteArrayView(piece.data(), size));
    }
}

} // namespace brimwatch
