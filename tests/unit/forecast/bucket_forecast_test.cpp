#include "forecast/bucket_forecast.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::forecast;
using namespace std::chrono_literals;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

const WindowKind &fiveHours = *windowKind(u"5h");
const WindowKind &week = *windowKind(u"weekly");

/// Monday 2026-01-05 00:00 UTC.
constexpr sys_seconds monday{1767571200s};
constexpr auto day = 24h;

/// What has been used so long after the start of a window.
using Course = std::function<double(seconds)>;

Course steady(double perHour)
{
    return [perHour](seconds gone) {
        return perHour * std::chrono::duration<double, std::ratio<3600>>(gone).count();
    };
}

/// The use of a course until then, and nothing after it.
Course stopped(const Course &course, seconds then)
{
    return [course, then](seconds gone) { return course(std::min(gone, then)); };
}

/// What one window shows from its start on, read so often.
struct WindowOf {
    const WindowKind &kind;
    sys_seconds start;
    Course course;
    seconds every = 60s;
    double step = 0; ///< What is left comes in steps of this, rounded up; 0 for none.

    Reading at(seconds gone) const
    {
        double left = std::max(0.0, 1 - course(gone));
        if (step > 0)
            left = std::ceil(left / step - 1e-9) * step;
        return {.time = start + gone, .left = left, .reset = start + kind.length};
    }

    /// The outlook at `until`, which is a multiple of the interval.
    Outlook play(BucketForecast &forecast, seconds until) const
    {
        Outlook outlook;
        for (auto gone = every; gone <= until; gone += every)
            outlook = forecast.see(at(gone));
        return outlook;
    }
};

double chanceOf(const Outlook &outlook)
{
    return outlook.chance.value_or(std::nan(""));
}

/// Plays `weeks` weeks in which a share of the quota is used in the same hours of some days.
void playWeeks(BucketForecast &forecast, int weeks, double share, const Course &course)
{
    for (int number = 0; number < weeks; ++number) {
        const WindowOf one{.kind = week,
            .start = monday + number * week.length,
            .course = [&](seconds gone) { return share * course(gone); },
            .every = 15min};
        one.play(forecast, week.length - 15min);
    }
}

/// The share of the week's work that is done: evenly from 8 to 12 on Monday to Wednesday.
double mondayToWednesday(seconds gone)
{
    double done = 0;
    for (int i = 0; i < 3; ++i) {
        const auto begin = i * day + 8h;
        done += std::clamp(std::chrono::duration<double>(gone - begin) / 4h, 0.0, 1.0) / 3;
    }
    return done;
}

} // namespace

class BucketForecastTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyTwoWindowsAreForecast()
    {
        QVERIFY(windowKind(u"5h") != nullptr);
        QVERIFY(windowKind(u"weekly") != nullptr);
        for (const auto *other : {u"", u"5H", u"monthly", u"daily", u"5h "})
            QVERIFY(windowKind(other) == nullptr);
    }

    void whereItIsTooEarlyToTellItIsSilent_data()
    {
        QTest::addColumn<int>("timeToGo");
        QTest::addColumn<double>("left");
        QTest::addColumn<bool>("isSilent");
        QTest::newRow("in the middle") << 9000 << 0.5 << false;
        QTest::newRow("reset now") << 0 << 0.5 << true;
        QTest::newRow("reset has passed") << -60 << 0.5 << true;
        QTest::newRow("a second before the reset") << 1 << 0.5 << false;
        QTest::newRow("after nine minutes") << 18000 - 540 << 0.5 << false;
        QTest::newRow("before nine minutes") << 18000 - 539 << 0.5 << true;
        QTest::newRow("the clocks disagree") << 18361 << 0.5 << true;
        QTest::newRow("two percent used") << 9000 << 0.98 << false;
        QTest::newRow("less than two percent") << 9000 << 0.981 << true;
        QTest::newRow("nothing used") << 9000 << 1.0 << true;
        QTest::newRow("more than full") << 9000 << 1.7 << true;
    }
    void whereItIsTooEarlyToTellItIsSilent()
    {
        QFETCH(int, timeToGo);
        QFETCH(double, left);
        QFETCH(bool, isSilent);
        BucketForecast forecast(fiveHours);
        const auto outlook
            = forecast.see({.time = monday, .left = left, .reset = monday + seconds(timeToGo)});
        QCOMPARE(outlook.verdict == Verdict::Silent, isSilent);
        QCOMPARE(!outlook.chance, isSilent);
        QVERIFY(!outlook.runOut);
    }

    void nothingLeftIsAFactAndNoForecast_data()
    {
        QTest::addColumn<double>("left");
        QTest::newRow("nothing") << 0.0;
        QTest::newRow("less than nothing") << -0.2;
    }
    void nothingLeftIsAFactAndNoForecast()
    {
        QFETCH(double, left);
        BucketForecast forecast(fiveHours);
        const auto outlook = forecast.see({.time = monday, .left = left, .reset = monday + 1min});
        QCOMPARE(outlook.verdict, Verdict::UsedUp);
        QVERIFY(!outlook.chance);
        QVERIFY(!outlook.runOut);
    }

    void heavyUseRunsOutWhenItWillBeUsed()
    {
        BucketForecast forecast(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = steady(0.35)};
        const auto outlook = window.play(forecast, 2h);
        QCOMPARE(outlook.verdict, Verdict::RunsOut);
        QVERIFY(outlook.runOut);
        // A third of an hour's use, and less than that later, as the rate sinks to the usual one.
        QVERIFY(*outlook.runOut > monday + 2h + 45min);
        QVERIFY(*outlook.runOut < monday + 3h + 30min);
    }

    void lightUseLasts()
    {
        BucketForecast forecast(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = steady(0.08)};
        const auto outlook = window.play(forecast, 3h);
        QCOMPARE(outlook.verdict, Verdict::Lasts);
        QVERIFY(!outlook.runOut);
    }

    void whatRunsOutOnlyAtTheResetIsToldSo()
    {
        // Late in a window that was warned of, with less used now than the warning expected.
        BucketForecast forecast(fiveHours);
        const WindowOf window{
            .kind = fiveHours, .start = monday, .course = stopped(steady(0.25), 3h + 20min)};
        bool wasAtReset = false;
        for (auto gone = 1min; gone < 5h; gone += 1min) {
            const auto outlook = forecast.see(window.at(gone));
            if (outlook.runOut)
                QVERIFY(*outlook.runOut <= monday + 5h && *outlook.runOut >= monday + gone);
            wasAtReset |= outlook.runOut == monday + 5h;
        }
        QVERIFY(wasAtReset);
    }

    void moreUsedNeverLowersTheChance_data()
    {
        QTest::addColumn<QString>("window");
        QTest::newRow("five hours") << u"5h"_s;
        QTest::newRow("week") << u"weekly"_s;
    }
    void moreUsedNeverLowersTheChance()
    {
        QFETCH(QString, window);
        const auto &kind = *windowKind(window);
        std::mt19937 random(20260105);
        std::uniform_real_distribution<double> share(0, 1);
        int compared = 0;
        for (int course = 0; course < 300; ++course) {
            BucketForecast forecast(kind);
            if (kind.hasOwnHours && course % 2 == 0)
                playWeeks(forecast, 3, 0.8, mondayToWednesday);
            const auto start = monday + 3 * week.length;
            double used = 0;
            const auto step = std::chrono::duration_cast<seconds>(kind.length / 40);
            for (auto gone = step; gone < kind.length; gone += step) {
                if (share(random) < 0.4)
                    used += 0.08 * share(random);
                double before = -1;
                for (const double more : {0.0, 0.001, 0.01, 0.05, 0.2}) {
                    if (used + more >= 1)
                        break;
                    BucketForecast other = forecast;
                    const auto outlook = other.see({.time = start + gone,
                        .left = 1 - used - more,
                        .reset = start + kind.length});
                    if (!outlook.chance)
                        continue;
                    QVERIFY2(*outlook.chance >= before - 1e-12,
                        qPrintable(u"%1 after %2 at %3 + %4"_s.arg(*outlook.chance)
                                .arg(before)
                                .arg(used)
                                .arg(more)));
                    before = *outlook.chance;
                    ++compared;
                }
                forecast.see({.time = start + gone,
                    .left = std::max(0.0, 1 - used),
                    .reset = start + kind.length});
            }
        }
        QVERIFY(compared > 10'000);
    }

    void theRateOfRefreshesHardlyMatters_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<double>("perHour");
        QTest::addColumn<double>("step");
        QTest::newRow("five hours") << u"5h"_s << 0.25 << 0.0;
        QTest::newRow("five hours, in steps of 1 %") << u"5h"_s << 0.25 << 0.01;
        QTest::newRow("five hours, little use") << u"5h"_s << 0.1 << 0.0;
        QTest::newRow("week") << u"weekly"_s << 0.01 << 0.0;
        QTest::newRow("week, in steps of 1 %") << u"weekly"_s << 0.01 << 0.01;
    }
    void theRateOfRefreshesHardlyMatters()
    {
        QFETCH(QString, window);
        QFETCH(double, perHour);
        QFETCH(double, step);
        const auto &kind = *windowKind(window);
        // Spells of work with pauses between them.
        const Course course = [&](seconds gone) {
            const auto spell = kind.length / 6;
            const auto spells = gone / spell;
            const auto rest = std::min(gone - spells * spell, spell * 2 / 3);
            return steady(perHour)(rest + spells * (spell * 2 / 3));
        };
        std::vector<BucketForecast> forecasts(3, BucketForecast(kind));
        int compared = 0;
        for (auto gone = 300s; gone < kind.length; gone += 300s) {
            std::vector<double> chances;
            for (std::size_t i = 0; i < forecasts.size(); ++i) {
                const std::array every{15s, 60s, 300s};
                const WindowOf one{.kind = kind, .start = monday, .course = course, .step = step};
                Outlook outlook;
                for (auto then = gone - 300s + every.at(i); then <= gone; then += every.at(i))
                    outlook = forecasts[i].see(one.at(then));
                if (outlook.chance)
                    chances.push_back(*outlook.chance);
            }
            if (chances.size() < forecasts.size())
                continue;
            const auto [least, most] = std::minmax_element(chances.begin(), chances.end());
            QVERIFY2(*most - *least <= 0.05,
                qPrintable(u"%1 to %2 after %3 s"_s.arg(*least).arg(*most).arg(gone.count())));
            ++compared;
        }
        QVERIFY(compared > 30);
    }

    void stepsOfOnePercentChangeLittle()
    {
        BucketForecast fine(fiveHours);
        BucketForecast coarse(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = steady(0.15)};
        WindowOf steps = window;
        steps.step = 0.01;
        int different = 0;
        for (auto gone = 1min; gone < 5h; gone += 1min) {
            const auto expected = fine.see(window.at(gone));
            const auto found = coarse.see(steps.at(gone));
            if (expected.chance && found.chance) {
                QVERIFY2(std::abs(*expected.chance - *found.chance) < 0.1,
                    qPrintable(u"%1 and %2"_s.arg(*expected.chance).arg(*found.chance)));
                different += expected.verdict == found.verdict ? 0 : 1;
            }
        }
        QVERIFY2(different <= 10, qPrintable(QString::number(different)));
    }

    void whereWhatIsLeftComesInLargeStepsAPauseMeansNothing()
    {
        // The one has seen a rise of 0.1 % before, in a window that was cut short.
        BucketForecast fine(fiveHours);
        fine.see({.time = monday - 1h, .left = 1, .reset = monday + 1h});
        fine.see({.time = monday - 1min, .left = 0.999, .reset = monday + 1h});
        BucketForecast coarse(fiveHours);
        const WindowOf window{
            .kind = fiveHours, .start = monday, .course = steady(0.2), .step = 0.05};
        window.play(fine, 3h + 14min);
        window.play(coarse, 3h + 14min);
        // A step takes a quarter of an hour, and the next one is due.
        const double pause = chanceOf(fine.see(window.at(3h + 14min)));
        const double noPause = chanceOf(coarse.see(window.at(3h + 14min)));
        QVERIFY2(pause < 0.75 * noPause, qPrintable(u"%1 and %2"_s.arg(noPause).arg(pause)));
    }

    void whoPausesMayHaveStopped()
    {
        BucketForecast forecast(fiveHours);
        const WindowOf window{
            .kind = fiveHours, .start = monday, .course = stopped(steady(0.4), 2h)};
        const double atWork = chanceOf(window.play(forecast, 2h));
        double chance = atWork;
        for (auto gone = 2h + 1min; gone <= 2h + 45min; gone += 1min)
            chance = chanceOf(forecast.see(window.at(gone)));
        // By the rates alone it would still be likely: 0.2 is left for more than two hours.
        QVERIFY2(atWork > 0.85, qPrintable(QString::number(atWork)));
        QVERIFY2(chance < 0.5, qPrintable(QString::number(chance)));
    }

    void earlierWindowsTellWhatThisOneWillNeed()
    {
        const auto afterWindowsOf = [](double perHour) {
            BucketForecast forecast(fiveHours);
            for (int i = 0; i < 12; ++i)
                WindowOf{.kind = fiveHours, .start = monday + i * day, .course = steady(perHour)}
                    .play(forecast, 5h - 1min);
            return chanceOf(
                WindowOf{.kind = fiveHours, .start = monday + 12 * day, .course = steady(0.2)}.play(
                    forecast, 1h));
        };
        const double light = afterWindowsOf(0.02);
        const double heavy = afterWindowsOf(0.19);
        QVERIFY2(heavy - light > 0.1, qPrintable(u"%1 and %2"_s.arg(light).arg(heavy)));
    }

    void aWindowThatWasCutShortDoesNotTellWhatTheNextWillNeed()
    {
        BucketForecast untouched(fiveHours);
        BucketForecast forecast(fiveHours);
        // The provider fills up after an hour, again and again, with the reset where it was.
        for (int i = 0; i < 12; ++i) {
            const WindowOf cut{
                .kind = fiveHours, .start = monday + i * day, .course = steady(0.15)};
            cut.play(forecast, 1h);
            forecast.see({.time = cut.start + 61min, .left = 1, .reset = cut.start + 5h});
        }
        const WindowOf next{.kind = fiveHours, .start = monday + 12 * day, .course = steady(0.2)};
        const double expected = chanceOf(next.play(untouched, 1h));
        const double found = chanceOf(next.play(forecast, 1h));
        QVERIFY2(
            std::abs(expected - found) < 1e-6, qPrintable(u"%1 and %2"_s.arg(expected).arg(found)));
    }

    void anEarlyResetBeginsAShortWindow()
    {
        // Half is used in three hours; then it is full again, with the reset where it was.
        BucketForecast forecast(fiveHours);
        const WindowOf before{.kind = fiveHours, .start = monday, .course = steady(0.17)};
        before.play(forecast, 3h);
        Outlook outlook;
        for (auto gone = 3h + 1min; gone <= 3h + 30min; gone += 1min) {
            outlook = forecast.see({.time = monday + gone,
                .left = 1 - 0.5 * std::chrono::duration<double>(gone - 3h) / 30min,
                .reset = monday + 5h});
        }
        // Half in half an hour, not in three and a half, and 1.5 hours to go.
        QVERIFY2(chanceOf(outlook) > 0.4, qPrintable(QString::number(chanceOf(outlook))));
        // Nine minutes of the new window were silent.
        BucketForecast silent(fiveHours);
        before.play(silent, 3h);
        QCOMPARE(
            silent.see({.time = monday + 3h + 8min, .left = 0.9, .reset = monday + 5h}).verdict,
            Verdict::Silent);
    }

    void aWarningDoesNotOutliveItsWindow()
    {
        BucketForecast forecast(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = steady(0.35)};
        QCOMPARE(window.play(forecast, 2h).verdict, Verdict::RunsOut);
        const WindowOf next{.kind = fiveHours, .start = monday + 5h, .course = steady(0.3)};
        QVERIFY(next.play(forecast, 10min).verdict != Verdict::RunsOut);
    }

    void resetsThatJitterDoNotMoveTheStart_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<double>("perHour");
        QTest::newRow("five hours") << u"5h"_s << 0.25;
        QTest::newRow("week") << u"weekly"_s << 0.008;
    }
    void resetsThatJitterDoNotMoveTheStart()
    {
        QFETCH(QString, window);
        QFETCH(double, perHour);
        const auto &kind = *windowKind(window);
        const auto jitter = kind.length / 60;
        BucketForecast exact(kind);
        BucketForecast forecast(kind);
        const WindowOf one{.kind = kind, .start = monday, .course = steady(perHour)};
        std::mt19937 random(1);
        std::uniform_int_distribution<int> wobble(-1, 1);
        for (auto gone = 1min; gone < kind.length; gone += 1min) {
            auto reading = one.at(gone);
            const auto expected = exact.see(reading);
            if (gone > 5min)
                reading.reset += wobble(random) * jitter;
            const auto found = forecast.see(reading);
            if (!expected.chance || !found.chance)
                continue;
            QVERIFY2(std::abs(*expected.chance - *found.chance) < 0.06,
                qPrintable(u"%1 and %2 after %3 s"_s.arg(*expected.chance)
                        .arg(*found.chance)
                        .arg(gone.count())));
        }
    }

    void jitterDoesNotMoveTheStartOfTheFirstMinutes()
    {
        // A reset that comes a quarter of an hour too late for once would move the start to now,
        // and it would be too early to tell.
        BucketForecast forecast(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = steady(0.3)};
        window.play(forecast, 12min);
        auto reading = window.at(13min);
        reading.reset += 6min;
        QVERIFY(forecast.see(reading).chance);
    }

    void aWindowWithoutUseHasNotBegun()
    {
        // Its reset moves along with the clock; what counts is the time since the first use.
        BucketForecast idle(fiveHours);
        for (auto gone = 0min; gone < 3h; gone += 5min)
            QCOMPARE(
                idle.see({.time = monday + gone, .left = 1, .reset = monday + gone + 5h}).verdict,
                Verdict::Silent);
        BucketForecast fresh(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday + 3h, .course = steady(0.3)};
        QCOMPARE(window.play(idle, 1h), window.play(fresh, 1h));
    }

    void aSuspendChangesNothingButWhatItHides()
    {
        BucketForecast awake(fiveHours);
        BucketForecast asleep(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = [](seconds gone) {
                                  // The machine sleeps in the second hour.
                                  return steady(0.2)(
                                      gone < 1h ? gone : std::max<seconds>(gone - 1h, 1h));
                              }};
        window.play(awake, 4h);
        window.play(asleep, 1h);
        for (seconds gone = 2h; gone < 4h; gone += 1min)
            asleep.see(window.at(gone));
        const double expected = chanceOf(awake.see(window.at(4h)));
        QVERIFY(std::abs(chanceOf(asleep.see(window.at(4h))) - expected) < 0.05);
    }

    void aClockThatWasSetBackCostsNoMoreThanThatTime()
    {
        BucketForecast forecast(fiveHours);
        BucketForecast straight(fiveHours);
        const WindowOf window{.kind = fiveHours, .start = monday, .course = steady(0.2)};
        window.play(straight, 3h);
        window.play(forecast, 2h);
        // Set back by 40 minutes for one reading, then right again.
        auto wrong = window.at(2h);
        wrong.time -= 40min;
        const auto outlook = forecast.see(wrong);
        QVERIFY(!outlook.chance || (*outlook.chance >= 0 && *outlook.chance <= 1));
        for (auto gone = 2h + 1min; gone <= 3h; gone += 1min)
            forecast.see(window.at(gone));
        QVERIFY(std::abs(chanceOf(forecast.see(window.at(3h + 1min)))
                    - chanceOf(straight.see(window.at(3h + 1min))))
            < 0.05);
    }

    void aClockFarInTheFutureOrThePastIsHarmless()
    {
        for (const auto *kind : {&fiveHours, &week}) {
            BucketForecast forecast(*kind);
            const sys_seconds last{253402300799s};
            for (const auto time : {monday, last, sys_seconds{}, monday + 1h, last, monday + 2h}) {
                for (const auto reset : {monday, last, sys_seconds{}, time + kind->length}) {
                    for (const double left : {0.9, 0.5, 1.0, 0.0}) {
                        const auto outlook
                            = forecast.see({.time = time, .left = left, .reset = reset});
                        if (outlook.chance)
                            QVERIFY(*outlook.chance >= 0 && *outlook.chance <= 1);
                    }
                }
            }
        }
    }

    void aWindowIsWarnedOfOnce()
    {
        BucketForecast forecast(fiveHours);
        // Work, a long pause, and work again: the warning comes, goes and comes.
        const WindowOf window{.kind = fiveHours, .start = monday, .course = [](seconds gone) {
                                  return steady(0.35)(std::min<seconds>(gone, 100min))
                                      + steady(0.4)(
                                          std::clamp<seconds>(gone - 190min, 0min, 45min));
                              }};
        int begins = 0;
        int first = 0;
        bool isWarned = false;
        for (auto gone = 1min; gone < 5h; gone += 1min) {
            const auto outlook = forecast.see(window.at(gone));
            first += outlook.isFirstWarning ? 1 : 0;
            const bool warns = outlook.verdict == Verdict::RunsOut;
            begins += warns && !isWarned ? 1 : 0;
            isWarned = warns;
        }
        QVERIFY2(begins > 1, "the course does not let the warning come and go");
        QCOMPARE(first, 1);
    }

    void ownHoursTellARestFromWork()
    {
        // Two thirds are used from Monday to Wednesday, as in the weeks before.
        BucketForecast known(week);
        playWeeks(known, 6, 0.66, mondayToWednesday);
        BucketForecast unknown(week);
        const WindowOf now{.kind = week,
            .start = monday + 6 * week.length,
            .course = [](seconds gone) { return 0.66 * mondayToWednesday(gone); },
            .every = 15min};
        const double withHours = chanceOf(now.play(known, 3 * day));
        const double without = chanceOf(now.play(unknown, 3 * day));
        QVERIFY2(withHours < without - 0.2, qPrintable(u"%1 and %2"_s.arg(withHours).arg(without)));
    }

    void hoursAfterAWeekRanOutAreNoRest()
    {
        // Every other week is used up by Wednesday noon, and lasts to its end otherwise, with as
        // much use on Fridays as on other days.
        BucketForecast forecast(week);
        for (int number = 0; number < 8; ++number) {
            const auto pace = number % 2 == 0 ? 60h : 168h;
            const WindowOf one{.kind = week,
                .start = monday + number * week.length,
                .course =
                    [pace](seconds gone) {
                        return std::min(1.0, std::chrono::duration<double>(gone) / pace);
                    },
                .every = 15min};
            one.play(forecast, week.length - 15min);
        }
        const auto &means = forecast.ownHours().means();
        const double friday = means.at(24 + 12);
        // A 168th of the quota, and a little of the other days; much less if the weeks that ran out
        // had counted.
        QVERIFY2(friday > 1.0 / 168, qPrintable(QString::number(friday * 168)));
    }

    void theHoursAreThoseOfTheUsersClock()
    {
        OwnHours hours;
        const LocalTime nine{(monday + 9h).time_since_epoch()};
        hours.addUse(nine, nine + 1h, 0.5);
        hours.endWindow(nine - 9h, nine - 9h + 168h);
        const auto &means = hours.means();
        const auto top = std::max_element(means.begin(), means.end()) - means.begin();
        QCOMPARE(static_cast<int>(top), 4 * 24 + 9);
        QCOMPARE(hourOfWeek(nine), 4 * 24 + 9);
        QCOMPARE(hourOfWeek(LocalTime(-1s)), 167);

        // The same hour for who works in another zone.
        BucketForecast forecast(week);
        for (int i = 0; i < 3; ++i) {
            for (auto gone = 0h; gone < 168h; gone += 1h) {
                forecast.see({.time = monday + i * week.length + gone,
                    .left = gone < 20h ? 0.9 : 0.5,
                    .reset = monday + (i + 1) * week.length,
                    .utcOffset = -11h});
            }
        }
        const auto &west = forecast.ownHours().means();
        const auto westTop = std::max_element(west.begin(), west.end()) - west.begin();
        // From 19 to 20 in UTC.
        QCOMPARE(static_cast<int>(westTop), 4 * 24 + 8);
    }

    void aRestartGoesOnFromWhatIsKept_data()
    {
        QTest::addColumn<QString>("window");
        QTest::newRow("five hours") << u"5h"_s;
        QTest::newRow("week") << u"weekly"_s;
    }
    void aRestartGoesOnFromWhatIsKept()
    {
        QFETCH(QString, window);
        const auto &kind = *windowKind(window);
        BucketForecast straight(kind);
        std::optional<BucketForecast> restarted(kind);
        std::mt19937 random(7);
        std::uniform_real_distribution<double> share(0, 1);
        int warned = 0;
        for (int number = 0; number < 5; ++number) {
            const auto start = monday + number * kind.length;
            double used = 0;
            const auto step = std::chrono::duration_cast<seconds>(kind.length / 200);
            for (auto gone = step; gone < kind.length; gone += step) {
                if (share(random) < 0.5)
                    used = std::min(1.0, used + 0.02 * share(random));
                const Reading reading{
                    .time = start + gone, .left = 1 - used, .reset = start + kind.length};
                const auto expected = straight.see(reading);
                const auto text = QJsonDocument(restarted->toJson()).toJson();
                restarted = BucketForecast::fromJson(kind, QJsonDocument::fromJson(text).object());
                QVERIFY(restarted);
                QCOMPARE(restarted->see(reading), expected);
                warned += expected.verdict == Verdict::RunsOut ? 1 : 0;
            }
        }
        QVERIFY(warned > 10);
    }

    void whatIsKeptAndMakesNoSenseIsRefused()
    {
        BucketForecast forecast(week);
        playWeeks(forecast, 2, 0.5, mondayToWednesday);
        const auto good = forecast.toJson();
        QVERIFY(BucketForecast::fromJson(week, good));
        QVERIFY(!BucketForecast::fromJson(week, {}));
        const auto changed = [&good](const QString &key, const QJsonValue &value) {
            auto json = good;
            if (json.contains(key)) {
                json[key] = value;
                return json;
            }
            auto window = json["window"_L1].toObject();
            window[key] = value;
            json["window"_L1] = window;
            return json;
        };
        const QJsonArray hundred(QJsonArray::fromVariantList(QVariantList(100, 0.5)));
        const std::vector<std::pair<QString, QJsonValue>> bad{{u"smallestRise"_s, 7},
            {u"smallestRise"_s, u"x"_s}, {u"finalUses"_s, hundred},
            {u"finalUses"_s, QJsonArray{1.5}}, {u"ownHours"_s, 1}, {u"window"_s, QJsonArray()},
            {u"start"_s, 1e300}, {u"used"_s, -1}, {u"steadied"_s, 2}, {u"samples"_s, QJsonArray()},
            {u"samples"_s, QJsonArray{QJsonArray{5, 0.1}, QJsonArray{4, 0.2}}}};
        for (const auto &[key, value] : bad)
            QVERIFY2(!BucketForecast::fromJson(week, changed(key, value)), qPrintable(key));
    }

    void itsMemoryIsBounded()
    {
        BucketForecast forecast(week);
        for (int i = 0; i < 100'000; ++i) {
            // Of each reading something is new, and so often that nobody would ask.
            forecast.see(
                {.time = monday + 5s * i, .left = 1 - 9e-6 * i, .reset = monday + week.length});
        }
        const auto samples = forecast.toJson()["window"_L1]["samples"_L1].toArray().size();
        QVERIFY2(samples < 400, qPrintable(QString::number(samples)));
    }
};

QTEST_APPLESS_MAIN(BucketForecastTest)
#include "bucket_forecast_test.moc"
