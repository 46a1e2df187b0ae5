#include "forecast/bucket_forecast.h"

#include "forecast/kept_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <vector>

namespace brimwatch::forecast {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

constexpr std::size_t mostFinalUses = 12;
/// What a window is taken to use before any was seen to its end.
constexpr double usualBeforeAny = 0.5;
/// Use that falls by so much means that the provider has filled up before the time.
constexpr double leastRefill = 0.1;
/// Resets may be wrong by some minutes.
constexpr seconds resetJitter = 10min;
constexpr double leastUsed = 0.02;
constexpr double leastGone = 0.03; ///< As a share of the window.
/// Shares come in decimal digits, and their differences are inexact.
constexpr double inexact = 1e-9;

/// Samples of the recent use are at least so far apart, however often the daemon is asked.
seconds sampleGap(const WindowKind &kind)
{
    return kind.recent / 360;
}

double toSeconds(std::chrono::duration<double> time)
{
    return time.count();
}

double decay(std::chrono::duration<double> time, std::chrono::duration<double> constant)
{
    return std::exp(-(time / constant));
}

} // namespace

BucketForecast::BucketForecast(const WindowKind &kind)
    : m_kind(&kind)
{
}

std::optional<sys_seconds> BucketForecast::windowStart() const
{
    return m_window ? std::optional(m_window->start) : std::nullopt;
}

std::optional<sys_seconds> BucketForecast::lastReading() const
{
    return m_window ? std::optional(m_window->lastReading) : std::nullopt;
}

Outlook BucketForecast::see(const Reading &reading)
{
    m_utcOffset = reading.utcOffset;
    follow(reading);
    auto &window = *m_window;
    if (window.used >= 1)
        return {.verdict = Verdict::UsedUp};
    const Time now = reading.time;
    const Seconds toGo = window.reset - now;
    const Seconds gone = now - window.start;
    const Seconds length = m_kind->length;
    if (toGo <= 0s || toGo > 1.02 * length || gone < leastGone * length
        || window.used < leastUsed - inexact)
        return {};
    const auto expectation = expect(now);
    Outlook outlook;
    outlook.chance = chance(expectation, now);
    outlook.verdict = judge(now, *outlook.chance);
    if (outlook.verdict == Verdict::RunsOut) {
        outlook.runOut = runOut(expectation, now);
        outlook.isFirstWarning = !window.wasWarned;
        window.wasWarned = true;
    }
    return outlook;
}

LocalTime BucketForecast::local(Time time) const
{
    return LocalTime(time.time_since_epoch() + m_utcOffset);
}

bool BucketForecast::beginsWindow(const Reading &reading) const
{
    if (!m_window)
        return true;
    return std::chrono::abs(reading.reset - m_window->reset) > m_kind->length / 4
        || m_window->used - reading.used() >= leastRefill - inexact;
}

void BucketForecast::follow(const Reading &reading)
{
    const double used = reading.used();
    const Time begin = reading.reset - m_kind->length;
    if (beginsWindow(reading)) {
        const Time notBefore = m_window ? m_window->lastReading : begin;
        if (m_window)
            endWindow(reading.time);
        Window window;
        window.notBefore = notBefore;
        m_window = std::move(window);
    }
    auto &window = *m_window;
    window.reset = reading.reset;
    // Nothing was used at the last reading: the window had not begun, and its reset moved along
    // with the clock.
    if (window.samples.empty() || window.used == 0) {
        window.start = std::max(begin, window.notBefore);
        window.samples.assign(1, Sample{.time = window.start, .used = 0});
    }
    // The clock was set back: what was used since counts from the last moment before.
    while (window.samples.size() > 1 && window.samples.back().time >= reading.time)
        window.samples.pop_back();
    if (used > window.used) {
        window.lastRise = reading.time;
        m_smallestRise = std::min(m_smallestRise, used - window.used);
        if (m_kind->hasOwnHours)
            m_ownHours.addUse(
                local(window.samples.back().time), local(reading.time), used - window.used);
    }
    if (reading.time > window.samples.back().time)
        addSample({.time = reading.time, .used = used});
    if (used >= 1 && !window.ranOut)
        window.ranOut = reading.time;
    window.used = used;
    window.lastReading = reading.time;
}

void BucketForecast::endWindow(Time now)
{
    const auto &window = *m_window;
    const bool isWhole = now >= window.reset - resetJitter;
    const Seconds length = window.reset - window.start;
    if (isWhole && window.used > 0 && length > 0.75 * Seconds(m_kind->length)) {
        m_finalUses.push_back(window.used);
        if (m_finalUses.size() > mostFinalUses)
            m_finalUses.pop_front();
    }
    if (m_kind->hasOwnHours) {
        // Once all is used, nothing shows what would have been used: those hours do not count.
        const Time end = window.ranOut.value_or(isWhole ? window.reset : window.lastReading);
        m_ownHours.endWindow(local(window.start), local(end));
    }
}

void BucketForecast::addSample(Sample sample)
{
    auto &samples = m_window->samples;
    if (samples.size() > 1) {
        const Sample &last = samples.back();
        const Sample &before = samples[samples.size() - 2];
        const bool isFlat = before.used == last.used && last.used == sample.used;
        if (isFlat || last.time - before.time < sampleGap(*m_kind))
            samples.pop_back();
    }
    samples.push_back(sample);
    while (samples.size() > 2 && samples[1].time <= sample.time - m_kind->recent)
        samples.pop_front();
}

/// Between two readings use is a straight line.
double BucketForecast::usedAt(Time time) const
{
    const auto &samples = m_window->samples;
    if (samples.size() < 2)
        return samples.front().used;
    const Sample &a = samples[0];
    const Sample &b = samples[1];
    const double share = Seconds(time - a.time) / Seconds(b.time - a.time);
    return a.used + (b.used - a.used) * std::clamp(share, 0.0, 1.0);
}

BucketForecast::Expectation BucketForecast::expect(Time now) const
{
    const auto &window = *m_window;
    const double usual = m_finalUses.empty()
        ? usualBeforeAny
        : std::accumulate(m_finalUses.begin(), m_finalUses.end(), 0.0)
            / static_cast<double>(m_finalUses.size());
    const double gone = toSeconds(now - window.start);
    const double prior = m_kind->priorWeight * toSeconds(m_kind->length);
    Expectation expectation;
    expectation.sustained = (window.used + usual * m_kind->priorWeight) / (gone + prior);
    const auto recent = std::min(m_kind->recent, now - window.start);
    expectation.recent = (window.used - usedAt(now - recent)) / toSeconds(recent);
    if (m_kind->hasOwnHours && m_ownHours.areKnown()) {
        // A little is added on both sides, as the first hours of a week say little.
        constexpr double steady = 0.15;
        expectation.scale
            = (window.used + steady) / (m_ownHours.use(local(window.start), local(now)) + steady);
    }
    return expectation;
}

/// What is expected to be used in the next `ahead`.
double BucketForecast::furtherUse(const Expectation &expectation, Time now, Seconds ahead) const
{
    const double byRates = std::max(0.0,
        expectation.sustained * toSeconds(ahead)
            + (expectation.recent - expectation.sustained) * toSeconds(m_kind->change)
                * (1 - decay(ahead, m_kind->change)));
    if (!expectation.scale)
        return byRates;
    const auto end = now + std::chrono::round<seconds>(ahead);
    return 0.7 * *expectation.scale * m_ownHours.use(local(now), local(end)) + 0.3 * byRates;
}

/// That more is needed than is left, with a need that is log-normal.
double BucketForecast::chance(const Expectation &expectation, Time now) const
{
    const auto &window = *m_window;
    const double mean = furtherUse(expectation, now, window.reset - now);
    if (mean < inexact)
        return 0;
    const double spread = expectation.scale ? m_kind->spreadWithOwnHours : m_kind->spread;
    const double prior = m_kind->priorWeight * toSeconds(m_kind->length);
    const double variance = 0.06 * mean
        + spread * mean * spread * mean * prior / (toSeconds(now - window.start) + prior);
    const double sigmaSquared = std::log1p(variance / (mean * mean));
    const double mu = std::log(mean) - sigmaSquared / 2;
    const double needsMore
        = 0.5 * std::erfc((std::log(1 - window.used) - mu) / std::sqrt(2 * sigmaSquared));
    return m_kind->usersStop ? needsMore * chanceOfGoingOn(expectation, now) : needsMore;
}

/// The chance that the user goes on in this window. It falls while nothing is used.
double BucketForecast::chanceOfGoingOn(const Expectation &expectation, Time now) const
{
    const auto &window = *m_window;
    // A quota reported in steps shows no use until the next step, so that time is not idle.
    const Seconds betweenSteps(m_smallestRise / expectation.sustained);
    const Seconds idle = std::max(
        Seconds(0), Seconds(now - window.lastRise.value_or(window.start)) - betweenSteps);
    return 0.9 * (1 - (1 - decay(idle, 15min)) * decay(window.reset - now, 3h));
}

/// The verdict follows the chance steadied over a while, so that neither a spike nor frequent
/// refreshes sway it.
Verdict BucketForecast::judge(Time now, double chance)
{
    auto &window = *m_window;
    if (window.judged) {
        const Seconds gone = std::max(0s, now - *window.judged);
        window.steadied += (1 - decay(gone, m_kind->steadying)) * (chance - window.steadied);
    }
    window.judged = now;
    window.isWarned = window.steadied > (window.isWarned ? m_kind->takeBackAt : m_kind->warnAbove);
    if (window.isWarned)
        return Verdict::RunsOut;
    return std::max(window.steadied, chance) > m_kind->takeBackAt ? Verdict::Close : Verdict::Lasts;
}

/// When what is left will have been used; the reset where that is not expected before.
BucketForecast::Time BucketForecast::runOut(const Expectation &expectation, Time now) const
{
    const auto &window = *m_window;
    const double left = 1 - window.used;
    Seconds early(0);
    Seconds late = window.reset - now;
    while (late - early > 30s) {
        const Seconds middle = (early + late) / 2;
        if (furtherUse(expectation, now, middle) < left)
            early = middle;
        else
            late = middle;
    }
    return now + std::chrono::round<seconds>(late);
}

namespace {

double kept(sys_seconds time)
{
    return static_cast<double>(time.time_since_epoch().count());
}

std::optional<sys_seconds> readTime(const QJsonObject &json, QLatin1StringView key)
{
    const auto number = keptNumber(json, key, -longestKept, longestKept);
    return number ? std::optional(sys_seconds(seconds(static_cast<std::int64_t>(*number))))
                  : std::nullopt;
}

} // namespace

QJsonObject BucketForecast::toJson() const
{
    QJsonObject json{
        {u"finalUses"_s, keptNumbers(m_finalUses)}, {u"smallestRise"_s, m_smallestRise}};
    if (m_kind->hasOwnHours)
        json.insert(u"ownHours"_s, m_ownHours.toJson());
    if (!m_window)
        return json;
    QJsonArray samples;
    for (const auto &sample : m_window->samples)
        samples.append(QJsonArray{kept(sample.time), sample.used});
    QJsonObject window{{u"start"_s, kept(m_window->start)}, {u"reset"_s, kept(m_window->reset)},
        {u"used"_s, m_window->used}, {u"lastReading"_s, kept(m_window->lastReading)},
        {u"notBefore"_s, kept(m_window->notBefore)}, {u"steadied"_s, m_window->steadied},
        {u"isWarned"_s, m_window->isWarned}, {u"wasWarned"_s, m_window->wasWarned},
        {u"samples"_s, samples}};
    const auto insert = [&window](const QString &key, const std::optional<Time> &time) {
        if (time)
            window.insert(key, kept(*time));
    };
    insert(u"lastRise"_s, m_window->lastRise);
    insert(u"ranOut"_s, m_window->ranOut);
    insert(u"judged"_s, m_window->judged);
    json.insert(u"window"_s, window);
    return json;
}

std::optional<BucketForecast> BucketForecast::fromJson(
    const WindowKind &kind, const QJsonObject &json)
{
    constexpr qsizetype mostSamples = 4096;
    BucketForecast forecast(kind);
    const auto smallestRise = keptNumber(json, "smallestRise"_L1, 0, 1);
    const auto finalUses = json.value("finalUses"_L1).toArray();
    std::vector<double> uses(static_cast<std::size_t>(finalUses.size()));
    if (!smallestRise || uses.size() > mostFinalUses
        || !readNumbers(json, "finalUses"_L1, 0, 1, uses))
        return std::nullopt;
    forecast.m_smallestRise = *smallestRise;
    forecast.m_finalUses.assign(uses.begin(), uses.end());
    if (kind.hasOwnHours) {
        const auto ownHours = OwnHours::fromJson(json.value("ownHours"_L1).toObject());
        if (!ownHours)
            return std::nullopt;
        forecast.m_ownHours = *ownHours;
    }
    if (!json.contains("window"_L1))
        return forecast;

    const auto object = json.value("window"_L1).toObject();
    const auto start = readTime(object, "start"_L1);
    const auto reset = readTime(object, "reset"_L1);
    const auto used = keptNumber(object, "used"_L1, 0, 1);
    const auto lastReading = readTime(object, "lastReading"_L1);
    const auto notBefore = readTime(object, "notBefore"_L1);
    const auto steadied = keptNumber(object, "steadied"_L1, 0, 1);
    const auto samples = object.value("samples"_L1).toArray();
    if (!start || !reset || !used || !lastReading || !notBefore || !steadied || samples.isEmpty()
        || samples.size() > mostSamples)
        return std::nullopt;
    Window window{.start = *start,
        .reset = *reset,
        .used = *used,
        .lastReading = *lastReading,
        .notBefore = *notBefore,
        .lastRise = readTime(object, "lastRise"_L1),
        .ranOut = readTime(object, "ranOut"_L1),
        .samples = {},
        .steadied = *steadied,
        .judged = readTime(object, "judged"_L1),
        .isWarned = object.value("isWarned"_L1).toBool(),
        .wasWarned = object.value("wasWarned"_L1).toBool()};
    for (const auto &pair : samples) {
        const QJsonObject sample{{u"time"_s, pair[0]}, {u"used"_s, pair[1]}};
        const auto time = readTime(sample, "time"_L1);
        const auto usedThen = keptNumber(sample, "used"_L1, 0, 1);
        if (!time || !usedThen || (!window.samples.empty() && *time <= window.samples.back().time))
            return std::nullopt;
        window.samples.push_back({.time = *time, .used = *usedThen});
    }
    forecast.m_window = std::move(window);
    return forecast;
}

} // namespace brimwatch::forecast
