#include "platform/linux/popover/layer_place.h"
#include "platform/linux/popover/plasma_panels.h"
#include "platform/linux/popover/popover_place.h"

#include <QTest>

using namespace brimwatch::platform;

class PopoverPlaceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void thePopoverHangsBelowItemsAboveTheMiddleAndAboveThoseBelow()
    {
        const QRect screen(0, 0, 1280, 720);
        const QSize size(380, 490);
        QCOMPARE(popoverPlace(QRect(600, 0, 100, 28), size, screen, QRect(0, 28, 1280, 692)),
            QRect(QPoint(460, 28), size));
        QCOMPARE(popoverPlace(QRect(600, 692, 100, 28), size, screen, QRect(0, 0, 1280, 692)),
            QRect(QPoint(460, 202), size));
    }

    void thePopoverStaysWithinTheWorkArea()
    {
        const QRect screen(0, 0, 1280, 720);
        const QSize size(380, 490);
        const QRect area(0, 28, 1280, 692);
        QCOMPARE(
            popoverPlace(QRect(1260, 0, 20, 28), size, screen, area), QRect(QPoint(900, 28), size));
        QCOMPARE(popoverPlace(QRect(0, 0, 20, 28), size, screen, area), QRect(QPoint(0, 28), size));
    }

    void besideAnUprightPanelItsMiddleIsAtTheItems()
    {
        const QRect screen(0, 0, 1280, 720);
        const QSize size(380, 490);
        const QRect leftPanel(30, 0, 1250, 720);
        QCOMPARE(popoverPlace(QRect(0, 300, 30, 30), size, screen, leftPanel),
            QRect(QPoint(30, 70), size));
        QCOMPARE(popoverPlace(QRect(0, 690, 30, 30), size, screen, leftPanel),
            QRect(QPoint(30, 230), size));
        QCOMPARE(popoverPlace(QRect(1250, 0, 30, 30), size, screen, QRect(0, 0, 1250, 720)),
            QRect(QPoint(870, 0), size));
    }

    void aPopoverLargerThanTheWorkAreaFillsIt()
    {
        const QRect screen(-800, 100, 320, 240);
        const QRect area(-800, 120, 320, 220);
        QCOMPARE(popoverPlace(QRect(-700, 100, 20, 20), QSize(380, 490), screen, area), area);
    }

    void withoutAClickAnItemIsLookedForAtTheEndOfThePanel_data()
    {
        QTest::addColumn<QRect>("workArea");
        QTest::addColumn<QPoint>("place");
        QTest::newRow("panel above") << QRect(100, 28, 1280, 692) << QPoint(1379, 0);
        QTest::newRow("panel below") << QRect(100, 0, 1280, 692) << QPoint(1379, 719);
        QTest::newRow("panel at the left") << QRect(130, 0, 1250, 720) << QPoint(100, 719);
        QTest::newRow("panel at the right") << QRect(100, 0, 1250, 720) << QPoint(1379, 719);
        QTest::newRow("two panels, the lower one thicker")
            << QRect(100, 20, 1280, 660) << QPoint(1379, 719);
        QTest::newRow("no panel") << QRect(100, 0, 1280, 720) << QPoint(1379, 0);
    }
    void withoutAClickAnItemIsLookedForAtTheEndOfThePanel()
    {
        QFETCH(QRect, workArea);
        QFETCH(QPoint, place);
        QCOMPARE(likelyItemPlace(QRect(100, 0, 1280, 720), workArea), QRect(place, QSize(1, 1)));
    }

    void aLayerKeepsOffPanelsAtTheEdgesThatItHangsFrom()
    {
        using enum LayerPlace::Edge;
        const QMargins panels(40, 36, 0, 44);
        const LayerPlace above{.edges = Top | Left, .margins = QMargins(900, 0, 0, 0)};
        QCOMPARE(keptOff(panels, above).margins, QMargins(900, 36, 0, 0));
        const LayerPlace below{.edges = Bottom | Left, .margins = QMargins(0, 0, 0, 0)};
        QCOMPARE(keptOff(panels, below).margins, QMargins(40, 0, 0, 44));
        const LayerPlace whole{.edges = Top | Bottom | Right};
        QCOMPARE(keptOff(panels, whole).margins, QMargins(0, 36, 0, 44));
        QCOMPARE(keptOff(QMargins(), above).margins, above.margins);
    }

    void aLayerKeepsOffFloatingPanels_data()
    {
        QTest::addColumn<QByteArray>("plasmashellrc");
        QTest::addColumn<int>("gap");
        const QByteArray first = "[PlasmaViews][Panel 2]\n";
        const QByteArray second = "\n[PlasmaViews][Panel 21]\n";
        const QByteArray defaults = "\n[PlasmaViews][Panel 2][Defaults]\nthickness=36\n";
        QTest::newRow("no file") << QByteArray() << 8;
        QTest::newRow("nothing said") << first + defaults << 8;
        QTest::newRow("floating") << first + "floating=1\n" + defaults << 8;
        QTest::newRow("not floating") << first + "floating=0\n" + defaults << 0;
        QTest::newRow("of two one") << first + "floating=0\n" + defaults + second + "floating=1\n"
                                    << 8;
        QTest::newRow("of two none") << first + "floating=0\n" + defaults + second + "floating=0\n"
                                     << 0;
        QTest::newRow("said of something else")
            << first + defaults + "floating=0\n\n[Other]\nfloating=0\n"
            << 8;
    }
    void aLayerKeepsOffFloatingPanels()
    {
        QFETCH(QByteArray, plasmashellrc);
        QFETCH(int, gap);
        QCOMPARE(gapOfFloatingPanels(plasmashellrc), QMargins(gap, gap, gap, gap));
    }

    void aShadowLiesAroundThePlace()
    {
        using enum LayerPlace::Edge;
        const QMargins shadow(14, 10, 14, 18);
        const LayerPlace above = grownBy(
            shadow, {.edges = Top | Left, .size = {380, 490}, .margins = {900, 36, 0, 0}});
        QCOMPARE(above.size, QSize(408, 518));
        QCOMPARE(above.margins.left(), 886);
        QCOMPARE(above.margins.top(), 26);
        // Between two edges it reaches over both, and the compositor has the size.
        const LayerPlace between
            = grownBy(shadow, {.edges = Top | Bottom | Right, .size = {380, 0}});
        QCOMPARE(between.size, QSize(408, 0));
        QCOMPARE(between.margins, QMargins(-14, -10, -14, -18));
    }

    void onALayerThePopoverHangsFromTheEdgeNextToTheItem_data()
    {
        using enum LayerPlace::Edge;
        QTest::addColumn<QPoint>("item");
        QTest::addColumn<quint32>("edges");
        QTest::addColumn<QMargins>("margins");
        QTest::newRow("above") << QPoint(639, 14) << quint32(Top | Left) << QMargins(449, 0, 0, 0);
        QTest::newRow("above, right of the middle")
            << QPoint(740, 14) << quint32(Top | Right) << QMargins(0, 0, 350, 0);
        QTest::newRow("above, at the right")
            << QPoint(1270, 14) << quint32(Top | Right) << QMargins(0, 0, 0, 0);
        QTest::newRow("below, at the left")
            << QPoint(20, 710) << quint32(Bottom | Left) << QMargins(0, 0, 0, 0);
        QTest::newRow("at the left, in the middle")
            << QPoint(10, 359) << quint32(Top | Left) << QMargins(0, 114, 0, 0);
        QTest::newRow("at the left, below the middle")
            << QPoint(10, 400) << quint32(Bottom | Left) << QMargins(0, 0, 0, 75);
        QTest::newRow("at the right, low")
            << QPoint(1275, 600) << quint32(Bottom | Right) << QMargins(0, 0, 0, 0);
        QTest::newRow("in the corner")
            << QPoint(1279, 0) << quint32(Top | Right) << QMargins(0, 0, 0, 0);
    }
    void onALayerThePopoverHangsFromTheEdgeNextToTheItem()
    {
        QFETCH(QPoint, item);
        QFETCH(quint32, edges);
        QFETCH(QMargins, margins);
        const LayerPlace place = popoverLayer(item, QSize(380, 490), QSize(1280, 720));
        QCOMPARE(place.edges, edges);
        QCOMPARE(place.margins, margins);
        QCOMPARE(place.size, QSize(380, 490));
        QVERIFY(!place.coversPanels);
    }

    void onALayerWithoutRoomThePopoverTakesWhatPanelsLeave()
    {
        const quint32 both = LayerPlace::Top | LayerPlace::Bottom;
        const LayerPlace place = popoverLayer(QPoint(160, 5), QSize(380, 490), QSize(320, 540));
        QCOMPARE(place.margins, QMargins());
        QCOMPARE(place.edges & both, both);
        QCOMPARE(place.size, QSize(320, 0));
        const LayerPlace corner = cornerLayer(QSize(570, 735), QSize(1280, 720));
        QCOMPARE(corner.edges, both | LayerPlace::Right);
        QCOMPARE(corner.size, QSize(570, 0));
    }
};

QTEST_GUILESS_MAIN(PopoverPlaceTest)
#include "popover_place_test.moc"
