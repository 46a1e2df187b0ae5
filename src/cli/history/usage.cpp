#include "cli/history/usage.h"

#include "forecast/bucket_forecast.h"

#include <algorithm>
#include <map>
#include <utility>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using forecast::BucketForecast;
using forecast::HistoryRow;
using forecast::Outlook;
using forecast::Verdict;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

/// A history may hold any number of ids.
constexpr std::size_t mostBuckets = 256;
/// A course has about this many points at most.
constexpr int pointsOfCourse = 500;
/// At most one forecast in this time is scored, so that frequent readings weigh no more than rare
/// ones.
constexpr seconds betweenChances = 5min;
/// A reset that is earlier by no more than this does not cut the window short.
constexpr seconds resetJitter = 10min;

sys_seconds secondsOf(const QDateTime &moment)
{
    return sys_seconds(seconds(moment.toSecsSinceEpoch()));
}

/// The offset of a clock from UTC at any moment.
class Zone {
public:
    explicit Zone(QDateTime now)
        : m_moment(std::move(now))
    {
    }

    /// Of the hour of that time: zones change at full hours, or nearly.
    seconds offsetAt(sys_seconds time)
    {
        const auto hour = std::chrono::floor<std::chrono::hours>(time);
        if (hour != m_hour) {
            m_hour = hour;
            m_moment.setSecsSinceEpoch(time.time_since_epoch().count());
            m_offset = seconds(m_moment.offsetFromUtc());
        }
        return m_offset;
    }

private:
    QDateTime m_moment;
    std::optional<sys_seconds> m_hour;
    seconds m_offset{0};
};

/// What was forecast in one window, until it is known how it ended.
class Saying {
public:
    void add(const Outlook &outlook, sys_seconds now)
    {
        if (outlook.verdict == Verdict::RunsOut && !m_warned)
            m_warned = now;
        if (!outlook.chance || (m_last && now - *m_last < betweenChances && now >= *m_last))
            return;
        m_last = now;
        const double chance = *outlook.chance;
        auto &tenth = m_tenths.at(std::min<std::size_t>(9, static_cast<std::size_t>(chance * 10)));
        ++tenth.chances;
        tenth.said += chance;
        ++m_count;
        m_sum += chance;
        m_squares += chance * chance;
    }

    void scoreInto(ForecastScore &score, const WindowUsage &window, seconds early) const
    {
        if (m_count == 0)
            return;
        ++score.windows;
        const double outcome = window.ranOut ? 1 : 0;
        score.squares += (m_squares - 2 * outcome * m_sum) / m_count + outcome;
        if (window.ranOut) {
            ++score.ranOut;
            score.warnedInTime += m_warned && *window.ranOut - *m_warned >= early ? 1 : 0;
        } else {
            score.warnedInVain += m_warned ? 1 : 0;
        }
        for (std::size_t i = 0; i < m_tenths.size(); ++i) {
            score.tenths.at(i).chances += m_tenths.at(i).chances;
            score.tenths.at(i).said += m_tenths.at(i).said;
            score.tenths.at(i).ranOut += window.ranOut ? m_tenths.at(i).chances : 0;
        }
    }

private:
    std::array<ForecastScore::Tenth, 10> m_tenths = {};
    int m_count = 0;
    double m_sum = 0;
    double m_squares = 0;
    std::optional<sys_seconds> m_last;
    std::optional<sys_seconds> m_warned;
};

/// What is known of a bucket while its rows are read.
class Reader {
public:
    Reader(QString id, QString window, sys_seconds now)
        : m_usage{.id = std::move(id), .window = std::move(window)}
        , m_kind(forecast::windowKind(m_usage.window))
        , m_now(now)
    {
        if (m_kind != nullptr)
            m_forecast.emplace(*m_kind);
    }

    void read(const HistoryRow &row, Zone &zone)
    {
        if (!m_forecast || !row.reset)
            return;
        const forecast::Reading reading{.time = row.time,
            .left = row.left,
            .reset = *row.reset,
            .utcOffset = zone.offsetAt(row.time)};
        if (m_window && m_forecast->beginsWindow(reading))
            end(row.time);
        const Outlook outlook = m_forecast->see(reading);
        if (!m_window)
            m_window.emplace();
        auto &course = m_window->course;
        m_window->reset = *row.reset;
        m_window->start = *m_forecast->windowStart();
        if (m_window->peak <= 0)
            course.assign(1, {.time = m_window->start, .used = 0});
        // The clock was set back: what came after that moment is told again.
        while (course.size() > 1 && course.back().time >= row.time)
            course.pop_back();
        const double used = reading.used();
        const auto before = course.back();
        if (used > before.used && row.time > before.time) {
            const auto local = [&reading](sys_seconds time) {
                return forecast::LocalTime((time + reading.utcOffset).time_since_epoch());
            };
            forecast::addUse(
                m_usage.hours, local(before.time), local(row.time), used - before.used);
        }
        if (row.time > before.time)
            addPoint({.time = row.time, .used = used});
        m_window->peak = std::max(m_window->peak, used);
        if (used >= 1 && !m_window->ranOut)
            m_window->ranOut = row.time;
        if (!m_window->ranOut)
            m_saying.add(outlook, row.time);
    }

    BucketUsage finish()
    {
        if (m_window && m_now < m_window->reset) {
            m_usage.isUnderWay = m_window->peak > 0;
            if (m_usage.isUnderWay)
                m_usage.windows.append(*std::move(m_window));
        } else if (m_window) {
            end(m_now);
        }
        return std::move(m_usage);
    }

private:
    void addPoint(WindowUsage::Point point)
    {
        auto &course = m_window->course;
        const auto gap = m_kind->length / pointsOfCourse;
        if (course.size() > 1 && course.back().time - course[course.size() - 2].time < gap)
            course.back() = point;
        else
            course.push_back(point);
    }

    void end(sys_seconds now)
    {
        const bool isWhole = m_window->ranOut || now >= m_window->reset - resetJitter;
        if (isWhole && m_window->reset > m_now - scored)
            m_saying.scoreInto(m_usage.score, *m_window, inTime(*m_kind));
        m_saying = {};
        if (m_window->peak > 0) {
            m_window->course = {};
            m_usage.windows.append(*std::move(m_window));
            if (m_usage.windows.size() > mostWindowsBefore)
                m_usage.windows.removeFirst();
        }
        m_window.reset();
    }

    BucketUsage m_usage;
    const forecast::WindowKind *m_kind;
    sys_seconds m_now;
    std::optional<BucketForecast> m_forecast;
    std::optional<WindowUsage> m_window; ///< The one that is read.
    Saying m_saying; ///< In it.
};

/// The window of each bucket. Where nothing is kept, the farthest reset tells.
std::map<QString, QString> windowsOf(const forecast::History &history)
{
    std::map<QString, seconds> farthest;
    history.read([&farthest](const HistoryRow &row) {
        const auto away = row.reset ? *row.reset - row.time : 0s;
        const auto found = farthest.find(row.bucket);
        if (found != farthest.end())
            found->second = std::max(found->second, away);
        else if (farthest.size() < mostBuckets)
            farthest.emplace(row.bucket, away);
    });
    const auto kept = history.keptWindows();
    std::map<QString, QString> windows;
    for (const auto &[bucket, away] : farthest) {
        QString &window = windows[bucket];
        window = kept.value(bucket);
        for (const auto &name : {u"5h"_s, u"weekly"_s}) {
            const auto length = forecast::windowKind(name)->length;
            if (window.isEmpty() && away > length / 2 && away <= length + resetJitter)
                window = name;
        }
        if (forecast::windowKind(window) == nullptr)
            window.clear();
    }
    return windows;
}

} // namespace

void ForecastScore::add(const ForecastScore &other)
{
    windows += other.windows;
    ranOut += other.ranOut;
    warnedInTime += other.warnedInTime;
    warnedInVain += other.warnedInVain;
    squares += other.squares;
    for (std::size_t i = 0; i < tenths.size(); ++i) {
        tenths.at(i).chances += other.tenths.at(i).chances;
        tenths.at(i).said += other.tenths.at(i).said;
        tenths.at(i).ranOut += other.tenths.at(i).ranOut;
    }
}

seconds inTime(const forecast::WindowKind &kind)
{
    return kind.hasOwnHours ? seconds(6h) : seconds(15min);
}

QList<BucketUsage> usageOf(const forecast::History &history, const QDateTime &now)
{
    std::map<QString, Reader> readers;
    for (const auto &[bucket, window] : windowsOf(history))
        readers.emplace(bucket, Reader(bucket, window, secondsOf(now)));
    Zone zone(now);
    history.read([&](const HistoryRow &row) {
        const auto found = readers.find(row.bucket);
        if (found != readers.end())
            found->second.read(row, zone);
    });
    QList<BucketUsage> usages;
    for (auto &[bucket, reader] : readers)
        usages.append(reader.finish());
    return usages;
}

double usedAt(const WindowUsage &window, sys_seconds time)
{
    const auto &course = window.course;
    const auto after = std::lower_bound(course.begin(), course.end(), time,
        [](const auto &point, sys_seconds moment) { return point.time < moment; });
    if (after == course.end())
        return course.empty() ? window.peak : course.back().used;
    if (after == course.begin())
        return after->used;
    const auto before = after - 1;
    const double share = std::chrono::duration<double>(time - before->time)
        / std::chrono::duration<double>(after->time - before->time);
    return before->used + (after->used - before->used) * share;
}

double goneOf(const WindowUsage &window, const QDateTime &now)
{
    const std::chrono::duration<double> length = window.reset - window.start;
    if (length.count() <= 0)
        return 1;
    return std::clamp((secondsOf(now) - window.start) / length, 0.0, 1.0);
}

} // namespace brimwatch::cli
