#include "core/clock.h"

#include <QTest>

#include <limits>

namespace brimwatch {

using namespace std::chrono_literals;

class ClockTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nowIsTheSystemsTimeInTheUsersZone();
    void aTimerGoesOnUntilItIsDestroyed();
    void aTimerMayEndItselfAndMayBeReplacedWhenItFires();
    void aPeriodKeepsItsMilliseconds();
    void aPeriodThatNoTimerHoldsIsTheLongestOne_data();
    void aPeriodThatNoTimerHoldsIsTheLongestOne();
    void aPeriodOfNothingDoesNotSpin();
};

void ClockTest::nowIsTheSystemsTimeInTheUsersZone()
{
    const auto before = QDateTime::currentMSecsSinceEpoch();
    const auto now = SystemClock().now();
    QVERIFY(now.toMSecsSinceEpoch() >= before);
    QVERIFY(now.toMSecsSinceEpoch() <= QDateTime::currentMSecsSinceEpoch());
    QCOMPARE(now.timeSpec(), Qt::LocalTime);
}

void ClockTest::aTimerGoesOnUntilItIsDestroyed()
{
    SystemClock clock;
    int fired = 0;
    auto timer = clock.every(1ms, [&fired] { ++fired; });
    QCOMPARE(fired, 0);
    QTRY_VERIFY(fired >= 3);
    timer.reset();
    const int last = fired;
    // A second timer shows that time goes on without the first one.
    int others = 0;
    const auto other = clock.every(1ms, [&others] { ++others; });
    QTRY_VERIFY(others >= 3);
    QCOMPARE(fired, last);
}

void ClockTest::aTimerMayEndItselfAndMayBeReplacedWhenItFires()
{
    SystemClock clock;
    std::unique_ptr<RepeatingTimer> timer;
    const auto lasting = std::make_shared<int>(0); // Gone with the last of the actions.
    std::weak_ptr<int> fired = lasting;
    timer = clock.every(1ms, [&, fired] {
        timer = clock.every(1ms, [&, fired] {
            timer.reset();
            ++*fired.lock();
        });
        ++*fired.lock();
    });
    QTRY_COMPARE(*lasting, 2);
    QVERIFY(!timer);
}

void ClockTest::aPeriodKeepsItsMilliseconds()
{
    QCOMPARE(SystemClock().every(1.5s, [] { })->interval(), 1500ms);
}

void ClockTest::aPeriodThatNoTimerHoldsIsTheLongestOne_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("a year") << 365.0 * 24 * 3600;
    QTest::newRow("the largest number") << std::numeric_limits<double>::max();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
}

void ClockTest::aPeriodThatNoTimerHoldsIsTheLongestOne()
{
    QFETCH(const double, seconds);
    const auto timer = SystemClock().every(std::chrono::duration<double>(seconds), [] { });
    QCOMPARE(timer->interval(), std::chrono::milliseconds(std::numeric_limits<int>::max()));
}

void ClockTest::aPeriodOfNothingDoesNotSpin()
{
    QCOMPARE(SystemClock().every(0s, [] { })->interval(), 1ms);
    QCOMPARE(SystemClock().every(-5s, [] { })->interval(), 1ms);
}

} // namespace brimwatch

QTEST_GUILESS_MAIN(brimwatch::ClockTest)
#include "clock_test.moc"
