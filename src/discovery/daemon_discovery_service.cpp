#include "discovery/daemon_discovery_service.h"

#include "core/read_file.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
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
        // A file can have any time; the year 9999 is late enough.
        constexpr std::int64_t latest = 253'402'300'799;
        return QDateTime::fromMSecsSinceEpoch(
            std::clamp(seconds, -latest, latest) * 1000 + nanoseconds / 1'000'000);
    }
};

/// An entry of the directory with the name of an announcement.
struct Entry {
    QByteArray name;
    ModificationTime modified; ///< Of the entry: a link's own.
    qsizetype position = 0; ///< In the listing.
};

bool isNewer(const Entry &a, const Entry &b)
{
    return a.modified != b.modified ? a.modified > b.modified : a.position < b.position;
}

struct Candidate {
    DaemonInfo info;
    ModificationTime modified;
    bool isAlive = false;
};

struct CloseDirectory {
    void operator()(DIR *directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, CloseDirectory>;

/// The name of the field differs between Linux and macOS.
template <typename Status> ModificationTime modificationTime(const Status &status)
{
    const auto from = [](const auto &time) {
        return ModificationTime{.seconds = time.tv_sec, .nanoseconds = time.tv_nsec};
    };
    if constexpr (requires { status.st_mtimespec; })
        return from(status.st_mtimespec);
    else
        return from(status.st_mtim);
}

/// Drops all but the `most` newest.
void keepNewest(QList<Entry> &entries, qsizetype most)
{
    if (entries.size() <= most)
        return;
    qCDebug(logDiscovery) << "of" << entries.size() << "files the newest" << most << "are kept";
    std::nth_element(entries.begin(), entries.begin() + most, entries.end(), isNewer);
    entries.resize(most);
}

/// The `most` newest entries with the names of announcements, the newest first. However large the
/// directory is, no more than twice as many are held in memory.
QList<Entry> listEntries(DIR *directory, qsizetype most)
{
    QList<Entry> entries;
    qsizetype position = 0;
    // Each scan has a directory stream of its own, which makes readdir safe.
    while (const dirent *entry = ::readdir(directory)) { // NOLINT(concurrency-mt-unsafe): see above
        if (!isCandidateName(QFile::decodeName(entry->d_name)))
            continue;
        struct stat status = {};
        if (::fstatat(::dirfd(directory), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue; // Removed meanwhile.
        entries.append(
            {.name = entry->d_name, .modified = modificationTime(status), .position = position++});
        if (entries.size() >= 2 * most)
            keepNewest(entries, most);
    }
    keepNewest(entries, most);
    std::sort(entries.begin(), entries.end(), isNewer);
    return entries;
}

/// The content of the file of that name; absent when it cannot be read, or is larger than `largest`
/// or than `left`, from which all that was read is subtracted.
std::optional<QByteArray> contentOf(
    int directory, const QByteArray &name, qint64 largest, qint64 &left)
{
    largest = std::min(largest, left);
    auto content = readFile(directory, name, largest);
    if (content) {
        left -= content->size();
        return *std::move(content);
    }
    if (content.error() == ReadFileError::LargerThanItsSize)
        left -= largest + 1;
    return {};
}

/// Signal 0 tests whether the process exists and is ours: a process of another user counts as dead.
bool isAlive(const DaemonInfo &info)
{
    if (!info.pid || *info.pid <= 0)
        return false;
    if (*info.pid > std::numeric_limits<pid_t>::max()) {
        // Deliberate: no daemon ever writes that, so the program ends instead of hiding the fault.
        // The message names the file and none of its content.
        qFatal("brimwatch: the discovery file %s names a process that cannot exist",
            qUtf8Printable(info.filePath.value_or(QString())));
    }
    return ::kill(static_cast<pid_t>(*info.pid), 0) == 0;
}

} // namespace

QString daemonFolder(const QString &home)
{
    return home + "/.gemini/antigravity/daemon"_L1;
}

bool isCandidateName(const QString &fileName)
{
    return fileName.endsWith(".json"_L1)
        && (fileName.startsWith("hub_"_L1) || fileName.startsWith("ls_"_L1));
}

DaemonDiscoveryService::DaemonDiscoveryService(const QString &home)
    : DaemonDiscoveryService(home, Limits())
{
}

DaemonDiscoveryService::DaemonDiscoveryService(const QString &home, const Limits &limits)
    : m_directory(daemonFolder(home))
    , m_limits(limits)
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

    // The newest are read first, so that the bound on all bytes leaves out the oldest.
    const auto entries = listEntries(directory.get(), m_limits.files);
    QList<Candidate> candidates;
    qint64 bytesLeft = m_limits.bytes;
    for (const auto &entry : entries) {
        const QString name = QFile::decodeName(entry.name);
        const auto content
            = contentOf(::dirfd(directory.get()), entry.name, m_limits.file, bytesLeft);
        if (!content) {
            qCDebug(logDiscovery) << name << "is skipped: it cannot be read, or is too large";
            continue;
        }
        auto info = decodeDaemonInfo(*content);
        if (!info) {
            qCDebug(logDiscovery) << name << "is skipped:" << info.error().description;
            continue;
        }
        info->filePath = m_directory + u'/' + name;
        const bool alive = isAlive(*info);
        candidates.append({.info = *std::move(info), .modified = entry.modified, .isAlive = alive});
    }

    // Stable: equal ones keep the order of the entries above.
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
