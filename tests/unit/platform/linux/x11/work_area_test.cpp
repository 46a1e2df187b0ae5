#include "platform/linux/x11/work_area.h"

#include <QTest>

using namespace brimwatch::platform;

Q_DECLARE_METATYPE(Strut)

// Two monitors: a large one at the left, and a smaller one at its right whose lower end is higher.
constexpr QSize desktop(2560, 1440);
constexpr QRect large(0, 0, 1280, 1440);
constexpr QRect small(1280, 0, 1280, 720);

class X11DesktopTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aStrutTakesRoomOfTheMonitorsThatItReaches_data()
    {
        QTest::addColumn<Strut>("strut");
        QTest::addColumn<QRect>("ofLarge");
        QTest::addColumn<QRect>("ofSmall");
        QTest::newRow("above, on the large one")
            << Strut{0, 0, 28, 0, 0, 0, 0, 0, 0, 1279, 0, 0} << QRect(0, 28, 1280, 1412) << small;
        QTest::newRow("above, on both") << Strut{0, 0, 28, 0, 0, 0, 0, 0, 0, 2559, 0, 0}
                                        << QRect(0, 28, 1280, 1412) << QRect(1280, 28, 1280, 692);
        QTest::newRow("below, on the large one")
            << Strut{0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1279} << QRect(0, 0, 1280, 1400) << small;
        // Its strut goes from the lower end of the desktop.
        QTest::newRow("below, on the small one") << Strut{0, 0, 0, 760, 0, 0, 0, 0, 0, 0, 1280,
            2559} << large << QRect(1280, 0, 1280, 680);
        QTest::newRow("at the left")
            << Strut{60, 0, 0, 0, 0, 1439, 0, 0, 0, 0, 0, 0} << QRect(60, 0, 1220, 1440) << small;
        QTest::newRow("at the right")
            << Strut{0, 60, 0, 0, 0, 0, 0, 719, 0, 0, 0, 0} << large << QRect(1280, 0, 1220, 720);
        QTest::newRow("without ends it is all along the edge") << Strut{0, 0, 28, 0, 0, 0, 0, 0, 0,
            0, 0, 0} << QRect(0, 28, 1280, 1412) << QRect(1280, 28, 1280, 692);
        QTest::newRow("none") << Strut{} << large << small;
        QTest::newRow("it would leave nothing")
            << Strut{1280, 0, 0, 0, 0, 1439, 0, 0, 0, 0, 0, 0} << large << small;
        QTest::newRow("its end is before its beginning")
            << Strut{0, 0, 28, 0, 0, 0, 0, 0, 900, 100, 0, 0} << large << small;
        QTest::newRow("numbers without sense")
            << Strut{~0U, ~0U, ~0U, ~0U, ~0U, 0, ~0U, ~0U, 0, ~0U, 0, ~0U} << large << small;
    }
    void aStrutTakesRoomOfTheMonitorsThatItReaches()
    {
        QFETCH(Strut, strut);
        QTEST(withoutStruts(large, desktop, {strut}), "ofLarge");
        QTEST(withoutStruts(small, desktop, {strut}), "ofSmall");
    }

    void strutsAddUp()
    {
        const Strut above{0, 0, 28, 0, 0, 0, 0, 0, 0, 1279, 0, 0};
        const Strut below{0, 0, 0, 40, 0, 0, 0, 0, 0, 0, 0, 1279};
        const Strut thicker{0, 0, 30, 0, 0, 0, 0, 0, 100, 200, 0, 0};
        QCOMPARE(withoutStruts(large, desktop, {above, below, thicker}), QRect(0, 30, 1280, 1370));
    }

    void aWindowManagersWorkAreaThatNoDesktopCanHaveIsLeftOut()
    {
        constexpr std::uint32_t tooMany = 0x7fff'ffff;
        QCOMPARE(workAreasOf({0, 28, 1280, 1412, 1280, 28, 1280, 692}),
            (QList<QRect>{QRect(0, 28, 1280, 1412), QRect(1280, 28, 1280, 692)}));
        QCOMPARE(workAreasOf({0, 28, 0, 1412, 0, 28, 1280, 0}), QList<QRect>());
        QCOMPARE(workAreasOf({tooMany, 28, 1280, 1412, 0, tooMany, 1280, 1412}), QList<QRect>());
        QCOMPARE(workAreasOf({1, 28, tooMany, 1412, 0, 28, 1280, tooMany}), QList<QRect>());
        QCOMPARE(workAreasOf({0, 28, 1280}), QList<QRect>());
    }

    void betweenMonitorsAPanelIsKnownByItsWindow_data()
    {
        QTest::addColumn<QRect>("dock");
        QTest::addColumn<QRect>("left");
        QTest::newRow("at its left") << QRect(1280, 0, 32, 720) << QRect(1312, 0, 1248, 720);
        QTest::newRow("at its right") << QRect(2528, 0, 32, 720) << QRect(1280, 0, 1248, 720);
        QTest::newRow("above") << QRect(1280, 0, 1280, 28) << QRect(1280, 28, 1280, 692);
        QTest::newRow("below") << QRect(1280, 680, 1280, 40) << QRect(1280, 0, 1280, 680);
        QTest::newRow("nearly square, along no edge") << QRect(2500, 690, 60, 30) << small;
        QTest::newRow("on the other monitor") << QRect(0, 0, 1280, 28) << small;
        QTest::newRow("as large as the monitor") << QRect(1280, 0, 1280, 720) << small;
        QTest::newRow("away, but for its rim") << QRect(1280, -26, 1280, 28) << small;
    }
    void betweenMonitorsAPanelIsKnownByItsWindow()
    {
        QFETCH(QRect, dock);
        QTEST(withoutDocks(small, small, {dock}), "left");
    }
};

QTEST_GUILESS_MAIN(X11DesktopTest)
#include "work_area_test.moc"
