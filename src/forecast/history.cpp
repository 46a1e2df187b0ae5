#include "forecast/history.h"

#include "core/read_file.h"
#include "core/replace_file.h"
#include "forecast/csv.h"

#include <QByteArrayView>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QSet>
#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace brimwatch::forecast {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using std::chrono::sys_seconds;

namespace {

/// A month has less than half a megabyte; whoever fills it with lines makes us read no more.
constexpr qint64 largestMonth = 64LL * 1024 * 1024;
constexpr qint64 largestKept = 4LL * 1024 * 1024;
constexpr qsizetype longestLine = 512;

std::optional<HistoryRow> rowOf(QByteArrayView line)
{
    constexpr qsizetype columns = 4;
    if (line.size() > longestLine)
        return std::nullopt;
    const auto fields = csvFields(line);
    if (!fields || fields->size() != columns)
        return std::nullopt;
    const auto time = csvTime(fields->at(0));
    const auto left = csvNumber(fields->at(2));
    const auto reset = csvTime(fields->at(3));
    if (!time || !left || *left < 0 || *left > 1 || (!reset && !fields->at(3).isEmpty()))
        return std::nullopt;
    const auto bucket = QString::fromUtf8(fields->at(1));
    const bool isPlain = std::none_of(
        bucket.begin(), bucket.end(), [](QChar c) { return c.category() == QChar::Other_Control; });
    if (!isPlain || bucket.size() > History::longestBucketId)
        return std::nullopt;
    return HistoryRow{.time = *time, .bucket = bucket, .left = *left, .reset = reset};
}

/// Calls `visit(row)` for each row that was written to its end. False when the file cannot be read.
template <typename VisitRow> bool visitRows(const QString &path, VisitRow visit)
{
    QByteArray line; // The beginning of one that goes on in the next piece.
    bool isTooLong = false;
    const auto done = readPieces(path, largestMonth, [&](QByteArrayView piece) {
        while (!piece.isEmpty()) {
            const auto end = piece.indexOf('\n');
            const auto part = piece.first(end < 0 ? piece.size() : end);
            isTooLong = isTooLong || line.size() + part.size() > longestLine;
            if (!isTooLong)
                line += part;
            if (end < 0)
                return;
            if (line.endsWith('\r'))
                line.chop(1);
            if (const auto row = isTooLong ? std::nullopt : rowOf(line))
                visit(*row);
            line.clear();
            isTooLong = false;
            piece = piece.sliced(end + 1);
        }
    });
    return done || done.error() == ReadFileError::NotFound;
}

QString monthOf(sys_seconds time)
{
    return QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count(), Qt::UTC)
        .toString(u"yyyy-MM"_s);
}

/// "2026-11.csv". Not by a regular expression: compiling one takes memory that stays.
bool isMonth(const QString &name)
{
    constexpr auto pattern = "0000-00.csv"_L1;
    return name.size() == pattern.size()
        && std::equal(name.begin(), name.end(), pattern.begin(), [](QChar c, char expected) {
               return expected == '0' ? c >= u'0' && c <= u'9' : c == QLatin1Char(expected);
           });
}

QString systemError()
{
    return QString::fromLocal8Bit(
        std::strerror(errno)); // NOLINT(concurrency-mt-unsafe): main thread only
}

/// Appends with one write, so that what another program of the user appends stays whole too.
Result<void, QString> appendTo(const QString &path, const QByteArray &lines)
{
    const auto name = QFile::encodeName(path);
    constexpr int mode = S_IRUSR | S_IWUSR;
    const int file = ::open(name.constData(),
        O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW, mode);
    if (file < 0)
        return fail(systemError());
    Result<void, QString> result;
    struct stat status = {};
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode)) {
        result = fail(u"it is no regular file"_s);
    } else {
        QByteArray text = status.st_size == 0 ? csvHeader + ('\n' + lines) : lines;
        // A line that was torn before must not take the next one along.
        char last = '\n';
        const int reader = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (reader >= 0) {
            if (status.st_size > 0 && ::pread(reader, &last, 1, status.st_size - 1) == 1
                && last != '\n')
                text.prepend('\n');
            ::close(reader);
        }
        const auto written = ::write(file, text.constData(), static_cast<std::size_t>(text.size()));
        if (written < 0)
            result = fail(systemError());
        else if (written < text.size())
            result = fail(u"the disk is full"_s);
    }
    ::close(file);
    return result;
}

std::int64_t hourOf(const HistoryRow &row)
{
    return row.time.time_since_epoch() / 1h;
}

/// Whether an hour before `limit` has several rows of a bucket. It takes little memory, for it is
/// asked of each file each day, and of all but one there is nothing to thin.
bool hasTooMany(const QString &path, sys_seconds limit)
{
    constexpr qsizetype mostBuckets = 256;
    QHash<QString, std::int64_t> hours; // Of the last row of each bucket.
    bool found = false;
    visitRows(path, [&](const HistoryRow &row) {
        if (row.time >= limit || hours.size() > mostBuckets)
            return;
        const auto hour = hourOf(row);
        const auto last = hours.constFind(row.bucket);
        found = found || (last != hours.cend() && *last == hour);
        hours[row.bucket] = hour;
    });
    return found;
}

/// The rows of a file, with those before `limit` thinned to the one with least left of each hour.
/// Absent when nothing goes. The file is read twice, so that its rows need not be kept.
std::optional<QByteArray> thinned(const QString &path, sys_seconds limit)
{
    if (!hasTooMany(path, limit))
        return std::nullopt;
    struct Lowest {
        double left = 1;
        qsizetype row = 0;
    };
    QHash<QString, int> numbers; // Of the buckets.
    QHash<std::pair<int, std::int64_t>, Lowest> lowest; // By bucket and hour.
    qsizetype row = 0;
    const auto place = [&](const HistoryRow &each) {
        const auto number = static_cast<int>(numbers.size());
        return std::pair(
            numbers.emplace(each.bucket, numbers.value(each.bucket, number)).value(), hourOf(each));
    };
    bool isRead = visitRows(path, [&](const HistoryRow &each) {
        const qsizetype number = row++;
        if (each.time >= limit)
            return;
        const auto key = place(each);
        const auto found = lowest.constFind(key);
        if (found == lowest.cend() || each.left <= found->left)
            lowest.insert(key, {.left = each.left, .row = number});
    });
    row = 0;
    QByteArray text = QByteArray(csvHeader) + '\n';
    isRead = isRead && visitRows(path, [&](const HistoryRow &each) {
        const qsizetype number = row++;
        if (each.time >= limit || lowest.value(place(each)).row == number)
            text += csvLine(each) + '\n';
    });
    return isRead ? std::optional(text) : std::nullopt;
}

} // namespace

QByteArray csvLine(const HistoryRow &row)
{
    constexpr int digits = 6;
    const auto number = [](sys_seconds time) {
        return QByteArray::number(qlonglong{time.time_since_epoch().count()});
    };
    return number(row.time) + ',' + csvField(row.bucket.toUtf8()) + ','
        + QByteArray::number(row.left, 'g', digits) + ','
        + (row.reset ? number(*row.reset) : QByteArray());
}

QString historyFolder()
{
#ifdef Q_OS_MACOS
    return QDir::homePath() + u"/Library/Application Support/Brimwatch/history"_s;
#else
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    // The base directory specification has paths that are not absolute ignored.
    if (!QDir::isAbsolutePath(state))
        state = QDir::homePath() + u"/.local/state"_s;
    return state + u"/brimwatch/history"_s;
#endif
}

History::History(QString folder)
    : m_folder(std::move(folder))
{
}

/// The paths of the files, the oldest first.
QStringList History::months() const
{
    QStringList paths;
    const auto names = QDir(m_folder).entryList(QDir::Files, QDir::Name);
    for (const auto &name : names) {
        if (isMonth(name))
            paths.append(m_folder + u'/' + name);
    }
    return paths;
}

QString History::keptFile() const
{
    return m_folder + u"/forecasts.json"_s;
}

void History::read(const Visit &visit) const
{
    const auto paths = months();
    for (const auto &path : paths)
        visitRows(path, visit);
}

Result<void, QString> History::check() const
{
    const QFileInfo folder(m_folder);
    if (folder.exists() && !(folder.isDir() && folder.isReadable() && folder.isExecutable()))
        return fail(u"the history cannot be read: %1"_s.arg(m_folder));
    const auto paths = months();
    for (const auto &path : paths) {
        if (!visitRows(path, [](const HistoryRow &) { }))
            return fail(u"the history cannot be read: %1"_s.arg(path));
    }
    return {};
}

Result<void, QString> History::append(const QList<HistoryRow> &rows)
{
    if (auto done = makeFolder(); !done)
        return done;
    QMap<QString, QByteArray> lines;
    for (const auto &row : rows)
        lines[monthOf(row.time)] += csvLine(row) + '\n';
    for (auto month = lines.cbegin(); month != lines.cend(); ++month) {
        if (auto done = appendTo(m_folder + u'/' + month.key() + u".csv", month.value()); !done)
            return done;
    }
    return {};
}

Result<void, QString> History::thin(sys_seconds now)
{
    const sys_seconds limit = now - keptInFull;
    const auto paths = months();
    for (const auto &path : paths) {
        // By the name, so that months that are kept in full are not read.
        if (QFileInfo(path).completeBaseName() > monthOf(limit))
            break;
        const auto text = thinned(path, limit);
        if (!text)
            continue;
        if (auto done = replaceFile(path, *text); !done)
            return done;
    }
    return {};
}

QByteArray History::kept() const
{
    return readFile(keptFile(), largestKept).value_or(QByteArray());
}

Result<void, QString> History::keep(const QByteArray &content)
{
    return replace(keptFile(), content);
}

QMap<QString, QString> History::keptWindows() const
{
    QMap<QString, QString> windows;
    const auto buckets = QJsonDocument::fromJson(kept()).object()["buckets"_L1].toObject();
    for (auto bucket = buckets.begin(); bucket != buckets.end(); ++bucket)
        windows.insert(bucket.key(), bucket.value()["kind"_L1].toString());
    return windows;
}

QString History::pageFile() const
{
    return m_folder + u"/usage.html"_s;
}

Result<QString, QString> History::keepPage(const QByteArray &content)
{
    return replace(pageFile(), content).map([this] { return pageFile(); });
}

/// Makes the folder, for its owner alone, where there is none.
Result<void, QString> History::makeFolder()
{
    if (QFileInfo(m_folder).isDir())
        return {};
    if (!QDir().mkpath(m_folder))
        return fail(u"the folder cannot be made"_s);
    QFile::setPermissions(
        m_folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    return {};
}

/// Gives a file of the folder this content, for its owner alone.
Result<void, QString> History::replace(const QString &path, const QByteArray &content)
{
    if (auto done = makeFolder(); !done)
        return done;
    auto done = replaceFile(path, content);
    if (done)
        QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    return done;
}

bool History::isEmpty() const
{
    // Asked with each answer. Mostly what was there still is, which is seen without listing all.
    if (!m_someMonth.isNull() && QFileInfo::exists(m_someMonth))
        return false;
    m_someMonth = months().value(0);
    return m_someMonth.isNull();
}

Result<void, QString> History::clear()
{
    auto paths = months();
    for (const auto &path : {keptFile(), pageFile()}) {
        if (QFileInfo::exists(path))
            paths.append(path);
    }
    for (const auto &path : std::as_const(paths)) {
        QFile file(path);
        if (!file.remove())
            return fail(QString(path + ": "_L1 + file.errorString()));
    }
    QDir().rmdir(m_folder);
    return {};
}

} // namespace brimwatch::forecast
