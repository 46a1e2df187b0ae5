#include "views/dashboard/refresh_spin.h"

#include <QTest>

using namespace brimwatch;

class RefreshSpinTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aSpinIsOneTurnWhenNothingRuns();
    void aSpinTurnsAgainWhileItShouldContinue();
    void onlyTheFirstTurnEases();
    void aSpinThatRunsIsNotStartedAgain();
};

void RefreshSpinTest::aSpinIsOneTurnWhenNothingRuns()
{
    views::RefreshSpin spin([] { return false; });
    QCOMPARE(spin.rotationDegrees(), 0.0);
    QVERIFY(!spin.isSpinning());
    spin.trigger();
    QVERIFY(spin.isSpinning());
    QCOMPARE(spin.rotationDegrees(), 360.0);
    QCOMPARE(spin.turnDuration(), 700);
    QTRY_VERIFY(!spin.isSpinning());
    QCOMPARE(spin.rotationDegrees(), 360.0);
}

void RefreshSpinTest::aSpinTurnsAgainWhileItShouldContinue()
{
    int left = 2;
    views::RefreshSpin spin([&left] { return left-- > 0; });
    spin.trigger();
    QTRY_VERIFY(!spin.isSpinning());
    QCOMPARE(spin.rotationDegrees(), 3 * 360.0);
}

void RefreshSpinTest::onlyTheFirstTurnEases()
{
    int left = 1;
    views::RefreshSpin spin([&left] { return left-- > 0; });
    QList<bool> eases;
    connect(&spin, &views::RefreshSpin::rotationDegreesChanged, this,
        [&] { eases.append(spin.easesInOut()); });
    spin.trigger();
    QTRY_VERIFY(!spin.isSpinning());
    spin.trigger();
    QCOMPARE(eases, QList<bool>({true, false, true}));
}

void RefreshSpinTest::aSpinThatRunsIsNotStartedAgain()
{
    views::RefreshSpin spin([] { return false; });
    spin.trigger();
    spin.trigger();
    QCOMPARE(spin.rotationDegrees(), 360.0);
}

QTEST_MAIN(RefreshSpinTest)
#include "refresh_spin_test.moc"
