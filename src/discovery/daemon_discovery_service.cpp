#include "discovery/daemon_discovery_service.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <limits>
#include <memory>
#include <utility>

namespace brimwatch::discovery {

using namespace Qt::Literals::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(logDiscovery, "brimwatch.discovery", QtInfoMsg)

/// Seconds and nanoseconds: two files written in the same millisecond still have an order.
struct ModificationTime {
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;

    auto operator<=>(const ModificationTime &) const = default;

    QDateTime toDateTime() const
    {
        // Anyone can set a file's time to anything; the year 9999 is late enough.
        constexpr std::int64_t latest = 253'402'300'799;
        return QDateTime::fromMSecsSinceEpoch(
            std::clamp(seconds, -latest, latest) * 1000 + nanoseconds / 1'000'000);
    }
};

struct File {
    QByteArray content;
    ModificationTime modified;
};

struct Candidate {
    DaemonInfo info;
    ModificationTime modified;
    bool isAlive = false;
};

class Descriptor {
public:
    explicit Descriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    ~Descriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    Descriptor(Descriptor &&) = delete;
    Descriptor &operator=(Descriptor &&) = delete;

    int get() const { return m_descriptor; }

private:
    int m_descriptor;
};

struct CloseDirectory {
    void operator()(DIR *directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

ModificationTime modificationTime(const struct stat &status)
{
#ifdef __APPLE__
    const auto &time = status.st_mtimespec;
#else
    const auto &time = status.st_mtim;
#endif
    return {.seconds = time.tv_sec, .nanoseconds = time.tv_nsec};
}

/// The content of the regular file of that name, or of the one that a link of that name leads to.
/// Absent when there is none, it cannot be read or is larger than the cap.
std::optional<File> readFile(int directory, const char *name)
{
    // Looked at before it is opened: opening alone can hang (a FIFO) or do something (a device).
    struct stat status = {};
    if (::fstatat(directory, name, &status, 0) != 0 || !S_ISREG(status.st_mode)
        || status.st_size > DaemonDiscoveryService::largestFile)
        return std::nullopt;
    const Descriptor file(::openat(directory, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    // Looked at again: another file may have taken the name meanwhile.
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;

    // One byte more than the cap tells a file that has grown beyond it from one that just fits.
    constexpr qint64 most = DaemonDiscoveryService::largestFile + 1;
    File read{.content = {}, .modified = modificationTime(status)};
    qint64 size = 0;
    for (;;) {
        // Sizes are what files say of themselves; those in /proc say 0.
        constexpr qint64 smallestStep = 4096;
        const qint64 step = std::clamp(qint64{status.st_size} + 1 - size, smallestStep, most);
        read.content.resize(std::min(size + step, most));
        const auto got = ::read(file.get(), read.content.data() + size,
            static_cast<std::size_t>(read.content.size() - size));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        size += got;
        if (size == most)
            return std::nullopt;
        if (got == 0)
            break;
    }
    read.content.truncate(size);
    return read;
}

/// Signal 0 tests whether the process exists and is ours: one of another user counts as dead.
bool isAlive(const DaemonInfo &info)
{
    if (!info.pid || *info.pid <= 0)
        return false;
    if (*info.pid > std::numeric_limits<pid_t>::max()) {
        // No daemon ever writes that, so something is wrong that must not be glossed over. It is
        // meant so. The file is named, nothing of what it holds is.
        qFatal("brimwatch: the discovery file %s names a process that cannot exist",
            qUtf8Printable(info.filePath.value_or(QString())));
    }
    return ::kill(static_cast<pid_t>(*info.pid), 0) == 0;
}

} // namespace

bool isCandidateName(const QString &fileName)
{
    return fileName.endsWith(".json"_L1)
        && (fileName.startsWith("hub_"_L1) || fileName.startsWith("ls_"_L1));
}

DaemonDiscoveryService::DaemonDiscoveryService(const QString &home)
    : m_directory(home + u"/.gemini/antigravity/daemon")
{
}

bool DaemonDiscoveryService::directoryExists() const
{
    return QFileInfo::exists(m_directory);
}

QList<DaemonInfo> DaemonDiscoveryService::discoverDaemons()
{
    const Directory directory(::opendir(QFile::encodeName(m_directory).constData()));
    if (!directory)
        return {};

    QList<Candidate> candidates;
    // One scan at a time on a directory of its own: readdir is safe there.
    while (const dirent *entry = ::readdir(directory.get())) { // NOLINT(concurrency-mt-unsafe)
        const QString name = QFile::decodeName(entry->d_name);
        if (!isCandidateName(name))
            continue;
        const auto file = readFile(::dirfd(directory.get()), entry->d_name);
        if (!file) {
            qCDebug(logDiscovery) << name << "is skipped: it cannot be read";
            continue;
        }
        auto info = decodeDaemonInfo(file->content);
        if (!info) {
            qCDebug(logDiscovery) << name << "is skipped:" << info.error().description;
            continue;
        }
        info->filePath = m_directory + u'/' + name;
        const bool alive = isAlive(*info);
        candidates.append({.info = *std::move(info), .modified = file->modified, .isAlive = alive});
    }

    std::stable_sort(
        candidates.begin(), candidates.end(), [](const Candidate &a, const Candidate &b) {
            return std::pair(a.isAlive, a.modified) > std::pair(b.isAlive, b.modified);
        });
    m_latestDaemonModDate.reset();
    QList<DaemonInfo> infos;
    infos.reserve(candidates.size());
    for (auto &candidate : candidates) {
        const auto modified = candidate.modified.toDateTime();
        if (!m_latestDaemonModDate || modified > *m_latestDaemonModDate)
            m_latestDaemonModDate = modified;
        infos.append(std::move(candidate.info));
    }
    return infos;
}

} // namespace brimwatch::discovery
