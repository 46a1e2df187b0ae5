// What mouse, wheel, finger and keys do in the popover.

#include "qml/popover_fixture.h"
#include "qml/samples.h"

#include <QAccessible>
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

void click(const PopoverFixture &fixture, const QString &name)
{
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(name));
}

void reveal(const PopoverFixture &fixture, const QString &name)
{
    QVERIFY(QMetaObject::invokeMethod(
        fixture.item(u"settingsList"_s), "reveal", Q_ARG(QQuickItem *, fixture.item(name))));
}

void wheel(const PopoverFixture &fixture, const QString &over, QPoint pixels, QPoint angle)
{
    const QPoint place = fixture.middle(over);
    QWheelEvent event(place, fixture.window().mapToGlobal(place), pixels, angle, Qt::NoButton,
        Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&fixture.window(), &event);
}

/// A key that is held: its press, a few repetitions, and its release.
void hold(const PopoverFixture &fixture, Qt::Key key)
{
    QTest::keyPress(&fixture.window(), key);
    for (int i = 0; i < 4; ++i) {
        for (const auto type : {QEvent::KeyRelease, QEvent::KeyPress}) {
            QKeyEvent event(type, key, Qt::NoModifier, QString(), true);
            QCoreApplication::sendEvent(&fixture.window(), &event);
        }
    }
    QTest::keyRelease(&fixture.window(), key);
}

double position(const PopoverFixture &fixture)
{
    return fixture.item(u"groupList"_s)->property("contentY").toDouble();
}

double furthest(const PopoverFixture &fixture)
{
    return fixture.item(u"groupList"_s)->property("furthest").toDouble();
}

QRectF place(const QQuickItem *item)
{
    return item->mapRectToScene(QRectF(QPointF(), item->size()));
}

QString focused(const PopoverFixture &fixture)
{
    const QQuickItem *item = fixture.window().activeFocusItem();
    return item != nullptr ? item->objectName() : QString();
}

void collectRoles(QAccessibleInterface *interface, QList<QAccessible::Role> &roles)
{
    if (interface == nullptr)
        return;
    roles.append(interface->role());
    for (int i = 0; i < interface->childCount(); ++i)
        collectRoles(interface->child(i), roles);
}

} // namespace

class PopoverInputTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<PopoverFixture>();
        m_fixture->show();
    }
    void cleanup()
    {
        // The next window is entered where the mouse was.
        QTest::mouseMove(&m_fixture->window(), QPoint(190, 100));
        m_fixture.reset();
    }

    void whatLeavesThePopoverClosesItFirst_data()
    {
        QTest::addColumn<QString>("button");
        QTest::newRow("daemon's page") << u"openButton"_s;
        QTest::newRow("folder") << u"openFolder"_s;
        QTest::newRow("mail") << u"contactSupport"_s;
    }
    void whatLeavesThePopoverClosesItFirst()
    {
        QFETCH(const QString, button);
        m_fixture->answer(test::sampleSummary());
        if (button != u"openButton"_s) {
            m_fixture->showSettings();
            reveal(*m_fixture, button);
        }
        int closedBefore = -1;
        m_fixture->opener.aboutToOpen = [&] { closedBefore = m_fixture->closed; };
        click(*m_fixture, button);
        QCOMPARE(m_fixture->opener.opened.size(), 1);
        QCOMPARE(closedBefore, 1);
    }

    void theIdeAndTheLoginSettingsCloseThePopoverToo()
    {
        m_fixture->opener.installed = true;
        m_fixture->answer(test::sampleSummary());
        click(*m_fixture, u"openButton"_s);
        QCOMPARE(m_fixture->opener.started, 1);
        QCOMPARE(m_fixture->closed, 1);
        m_fixture->showSettings();
        m_fixture->setLoginItem(platform::LoginItem::Status::requiresApproval);
        click(*m_fixture, u"openLoginSettings"_s);
        QCOMPARE(m_fixture->loginItem.settingsOpened, 1);
        QCOMPARE(m_fixture->closed, 2);
    }

    void whatOpensNothingLeavesThePopoverOpen()
    {
        m_fixture->fail(u"no"_s);
        click(*m_fixture, u"openButton"_s);
        m_fixture->showSettings();
        reveal(*m_fixture, u"copyDiagnostics"_s);
        click(*m_fixture, u"copyDiagnostics"_s);
        QCOMPARE(m_fixture->pasteboard.texts.size(), 1);
        QCOMPARE(m_fixture->closed, 0);
    }

    void turningBackAndForthQuicklyKeepsTheKeyboard()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->item(u"settingsButton"_s)->forceActiveFocus(Qt::TabFocusReason);
        // All in one turn of the event loop, in which the faces do not move.
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        QCOMPARE(focused(*m_fixture), u"backButton"_s);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Return);
        QCOMPARE(focused(*m_fixture), u"settingsButton"_s);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        QCOMPARE(focused(*m_fixture), u"backButton"_s);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        QCOMPARE(m_fixture->closed, 0);
        QVERIFY(!m_fixture->model().showingSettings());
    }

    void escapeGoesBackAlsoWhileTheFacesMove()
    {
        m_fixture->answer(test::sampleSummary());
        for (int i = 0; i < 2; ++i) {
            click(*m_fixture, u"settingsButton"_s);
            QVERIFY(m_fixture->model().showingSettings());
            QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
            QVERIFY(!m_fixture->model().showingSettings());
        }
        QCOMPARE(m_fixture->closed, 0);
    }

    void retryKeepsTheFocusAcrossARefresh()
    {
        m_fixture->fail(u"no"_s);
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        m_fixture->item(u"retryButton"_s)->forceActiveFocus(Qt::TabFocusReason);
        m_fixture->service.refresh();
        QVERIFY(m_fixture->item(u"loadingState"_s) != nullptr);
        QVERIFY(m_fixture->item(u"retryButton"_s) == nullptr);
        m_fixture->fail(u"no"_s);
        QCOMPARE(focused(*m_fixture), u"retryButton"_s);
        QVERIFY(m_fixture->item(u"retryButton"_s) != nullptr);
        // And with the next data it is gone.
        m_fixture->service.refresh();
        m_fixture->answer(test::sampleSummary());
        QVERIFY(m_fixture->item(u"groupList"_s) != nullptr);
        QVERIFY(m_fixture->existing(u"retryButton"_s) == nullptr);
    }

    void aPressOnRetryLastsAcrossARefresh()
    {
        m_fixture->fail(u"no"_s);
        const QPoint retry = m_fixture->middle(u"retryButton"_s);
        QTest::mousePress(&m_fixture->window(), Qt::LeftButton, {}, retry);
        m_fixture->service.refresh();
        m_fixture->fail(u"no"_s);
        // A refresh is refused while the icon turns.
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        QTest::mouseRelease(&m_fixture->window(), Qt::LeftButton, {}, retry);
        m_fixture->awaitRefresh();
        QCOMPARE(m_fixture->fetching.asked.size(), 3U);
    }

    void aListTakesTheClickThatClosesIt()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->showSettings();
        const bool before = m_fixture->service.showArgonInToolbar();
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_COMPARE(m_fixture->items(u"pickerOption"_s).size(), 3);
        click(*m_fixture, u"showArgon"_s);
        QTRY_VERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
        QCOMPARE(m_fixture->service.showArgonInToolbar(), before);
        click(*m_fixture, u"showArgon"_s);
        QCOMPARE(m_fixture->service.showArgonInToolbar(), !before);
    }

    void aClickOnItsBoxClosesAList()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->showSettings();
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_COMPARE(m_fixture->items(u"pickerOption"_s).size(), 3);
        click(*m_fixture, u"labelStyleBox"_s);
        QTRY_VERIFY(m_fixture->items(u"pickerOption"_s).isEmpty());
    }

    void aListThatOpensUpwardTouchesItsBox_data()
    {
        QTest::addColumn<double>("scale");
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("%.2f", scale) << scale;
    }
    void aListThatOpensUpwardTouchesItsBox()
    {
        QFETCH(const double, scale);
        m_fixture->answer(test::sampleSummary());
        m_fixture->appearance.scale = scale;
        Q_EMIT m_fixture->appearance.changed();
        m_fixture->showSettings();
        QQuickItem *list = m_fixture->item(u"settingsList"_s);
        const QQuickItem *box = m_fixture->item(u"refreshIntervalBox"_s);
        // At the lower end of what is visible.
        const double below
            = box->mapToItem(list, QPointF(0, box->height())).y() - list->height() + 4;
        list->setProperty("contentY", list->property("contentY").toDouble() + below);
        click(*m_fixture, u"refreshIntervalBox"_s);
        QTRY_COMPARE(m_fixture->items(u"pickerOption"_s).size(), 5);
        const auto bottom
            = [this] { return place(m_fixture->items(u"pickerOption"_s).constLast()).bottom(); };
        // The list's padding is 4, and there are 2 between it and its box.
        QTRY_COMPARE(bottom() + 6 * scale, place(box).top());
    }

    void oneNotchIsThreeLinesWhateverThePace()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Down);
        const double line = position(*m_fixture);
        QVERIFY(line > 0);
        for (int i = 0; i < 3; ++i)
            wheel(*m_fixture, u"body"_s, {}, {0, -120});
        QCOMPARE(position(*m_fixture), 10 * line);
        const QQuickItem *bar = m_fixture->item(u"scrollBar"_s);
        QTRY_VERIFY(!bar->property("used").toBool());
        QCOMPARE(position(*m_fixture), 10 * line);
        for (int i = 0; i < 8; ++i)
            wheel(*m_fixture, u"body"_s, {}, {0, 15});
        QCOMPARE(position(*m_fixture), 7 * line);
    }

    void pixelsOfATouchpadAreExact()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        for (int i = 0; i < 5; ++i)
            wheel(*m_fixture, u"body"_s, {0, -3}, {0, -36});
        QCOMPARE(position(*m_fixture), 15.0);
        m_fixture->appearance.scale = 1.5;
        Q_EMIT m_fixture->appearance.changed();
        wheel(*m_fixture, u"body"_s, {0, 15}, {0, 180});
        QCOMPARE(position(*m_fixture), 5.0);
    }

    void theWheelStopsAtTheEnds()
    {
        m_fixture->answer(test::manyGroups(5));
        m_fixture->awaitCards(5);
        wheel(*m_fixture, u"body"_s, {}, {0, 120});
        QCOMPARE(position(*m_fixture), 0.0);
        for (int i = 0; i < 50; ++i)
            wheel(*m_fixture, u"body"_s, {}, {0, -120});
        QCOMPARE(position(*m_fixture), furthest(*m_fixture));
    }

    void aMouseDoesNotDragTheCards()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        QTest::mousePress(&m_fixture->window(), Qt::LeftButton, {}, QPoint(190, 300));
        for (int y = 290; y >= 100; y -= 10)
            QTest::mouseMove(&m_fixture->window(), QPoint(190, y));
        QTest::mouseRelease(&m_fixture->window(), Qt::LeftButton, {}, QPoint(190, 100));
        QCOMPARE(position(*m_fixture), 0.0);
    }

    void aFingerDragsTheCards()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        QTest::touchEvent(&m_fixture->window(), m_finger).press(0, QPoint(190, 300));
        for (int y = 290; y >= 200; y -= 10)
            QTest::touchEvent(&m_fixture->window(), m_finger).move(0, QPoint(190, y));
        QTest::touchEvent(&m_fixture->window(), m_finger).release(0, QPoint(190, 200));
        QCOMPARE_GE(position(*m_fixture), 80.0);
        QCOMPARE_LE(position(*m_fixture), 100.0);
    }

    void aFingerScrollsTheSettingsOverASwitchWithoutTurningIt()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->showSettings();
        const bool before = m_fixture->service.showArgonInToolbar();
        const QPoint from = m_fixture->middle(u"showArgon"_s);
        QTest::touchEvent(&m_fixture->window(), m_finger).press(0, from);
        for (int up = 10; up <= 90; up += 10)
            QTest::touchEvent(&m_fixture->window(), m_finger).move(0, from - QPoint(0, up));
        QTest::touchEvent(&m_fixture->window(), m_finger).release(0, from - QPoint(0, 90));
        QVERIFY(m_fixture->item(u"settingsList"_s)->property("contentY").toDouble() > 50);
        QCOMPARE(m_fixture->service.showArgonInToolbar(), before);
        QTest::touchEvent(&m_fixture->window(), m_finger)
            .press(0, m_fixture->middle(u"showArgon"_s));
        QTest::touchEvent(&m_fixture->window(), m_finger)
            .release(0, m_fixture->middle(u"showArgon"_s));
        QCOMPARE(m_fixture->service.showArgonInToolbar(), !before);
    }

    void theScrollBarIsPulled()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        const QRectF bar = place(m_fixture->item(u"scrollBar"_s));
        const QRectF thumb = place(m_fixture->item(u"scrollThumb"_s));
        QCOMPARE(thumb.top(), bar.top());
        const QPoint hold = thumb.center().toPoint();
        const double way = bar.height() - thumb.height();
        QTest::mousePress(&m_fixture->window(), Qt::LeftButton, {}, hold);
        const QPoint half = hold + QPoint(0, qRound(way / 2));
        QTest::mouseMove(&m_fixture->window(), half);
        QVERIFY(std::abs(position(*m_fixture) / furthest(*m_fixture) - 0.5) < 0.01);
        // The thumb is where the mouse is.
        QVERIFY(place(m_fixture->item(u"scrollThumb"_s)).contains(half));
        // Beside the bar it is still pulled, and stops at the end.
        QTest::mouseMove(&m_fixture->window(), QPoint(100, 489));
        QCOMPARE(position(*m_fixture), furthest(*m_fixture));
        QTest::mouseRelease(&m_fixture->window(), Qt::LeftButton, {}, QPoint(100, 489));
    }

    void aPressBesideTheThumbScrollsByAPage()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        QTest::keyClick(&m_fixture->window(), Qt::Key_PageDown);
        const double page = position(*m_fixture);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Home);
        const QRectF bar = place(m_fixture->item(u"scrollBar"_s));
        QTest::mouseClick(&m_fixture->window(), Qt::LeftButton, {},
            QPointF(bar.center().x(), bar.bottom() - 3).toPoint());
        QCOMPARE(position(*m_fixture), page);
        QTest::mouseClick(&m_fixture->window(), Qt::LeftButton, {},
            QPointF(bar.center().x(), bar.top() + 1).toPoint());
        QCOMPARE(position(*m_fixture), 0.0);
    }

    void theScrollBarIsStrongerWhileOneScrolls()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        const auto opacity = [this] { return m_fixture->item(u"scrollThumb"_s)->opacity(); };
        QTRY_COMPARE(opacity(), 0.35);
        wheel(*m_fixture, u"body"_s, {}, {0, -120});
        QCOMPARE(opacity(), 0.7);
        QTRY_COMPARE(opacity(), 0.35);
    }

    void aHeldReturnPressesAButtonOnce()
    {
        m_fixture->opener.installed = true;
        m_fixture->item(u"openButton"_s)->forceActiveFocus(Qt::TabFocusReason);
        hold(*m_fixture, Qt::Key_Return);
        QCOMPARE(m_fixture->opener.started, 1);
        hold(*m_fixture, Qt::Key_Enter);
        QCOMPARE(m_fixture->opener.started, 2);
        hold(*m_fixture, Qt::Key_Space);
        QCOMPARE(m_fixture->opener.started, 3);
    }

    void aHeldEscapeGoesBackOnce()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->showSettings();
        hold(*m_fixture, Qt::Key_Escape);
        QVERIFY(!m_fixture->model().showingSettings());
        QCOMPARE(m_fixture->closed, 0);
        hold(*m_fixture, Qt::Key_Escape);
        QCOMPARE(m_fixture->closed, 1);
    }

    void aHeldSpaceTurnsASwitchOnce()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->showSettings();
        const bool before = m_fixture->service.showIconInMenuBar();
        m_fixture->item(u"showIcon"_s)->forceActiveFocus(Qt::TabFocusReason);
        hold(*m_fixture, Qt::Key_Space);
        QCOMPARE(m_fixture->service.showIconInMenuBar(), !before);
    }

    void aHeldArrowScrollsOn()
    {
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        hold(*m_fixture, Qt::Key_Down);
        QCOMPARE(position(*m_fixture), 5 * 24.0);
    }

    void aTooltipGoesWithWhatItBelongsTo()
    {
        const QString longText = u"word "_s.repeated(100).trimmed();
        auto summary = test::manyGroups(20);
        summary.groups.first().displayName = longText;
        m_fixture->answer(summary);
        m_fixture->awaitCards(20);
        const auto names = m_fixture->items(u"groupName"_s);
        const auto *name = *std::find_if(names.begin(), names.end(),
            [](const QQuickItem *item) { return item->property("truncated").toBool(); });
        const auto point = [&] {
            QTest::mouseMove(&m_fixture->window(), QPoint(190, 5));
            QTest::mouseMove(&m_fixture->window(), place(name).center().toPoint());
        };
        point();
        QTRY_COMPARE(m_fixture->text(u"toolTip"_s), longText);
        // Scrolled away under the pointer.
        wheel(*m_fixture, u"body"_s, {}, {0, -240});
        QTRY_VERIFY(m_fixture->item(u"toolTip"_s) == nullptr);

        QTest::keyClick(&m_fixture->window(), Qt::Key_Home);
        point();
        QTRY_COMPARE(m_fixture->text(u"toolTip"_s), longText);
        m_fixture->service.refresh();
        m_fixture->answer(test::sampleSummary());
        QTRY_VERIFY(m_fixture->item(u"toolTip"_s) == nullptr);
    }

    void refreshKeepsTheFocusAndIsNotReadOut()
    {
        m_fixture->answer(test::sampleSummary());
        QQuickItem *refresh = m_fixture->item(u"refreshButton"_s);
        refresh->forceActiveFocus(Qt::TabFocusReason);
        const auto *interface = QAccessible::queryAccessibleInterface(refresh);
        const QString description = interface->text(QAccessible::Description);
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        m_fixture->service.refresh();
        QCOMPARE(m_fixture->window().activeFocusItem(), refresh);
        QCOMPARE(interface->text(QAccessible::Description), description);
        hold(*m_fixture, Qt::Key_Return);
        m_fixture->answer(test::sampleSummary());
        QCOMPARE(m_fixture->window().activeFocusItem(), refresh);
        QCOMPARE(m_fixture->fetching.asked.size(), 2U);
    }

    void aListThatNeedNoLongerScrollWarnsOfNothing()
    {
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        m_fixture->answer(test::manyGroups(20));
        m_fixture->awaitCards(20);
        m_fixture->item(u"groupList"_s)->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_End);
        m_fixture->service.refresh();
        m_fixture->answer(test::manyGroups(1));
        QTRY_COMPARE(m_fixture->items(u"groupCard"_s).size(), 1);
        QTRY_COMPARE(position(*m_fixture), 0.0);
        QVERIFY(m_fixture->item(u"scrollBar"_s) == nullptr);
    }

    void aHiddenSliderIsNotReadOut()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->service.setNotifyOnLowQuota(true);
        m_fixture->showSettings();
        const auto roles = [this] {
            QList<QAccessible::Role> found;
            collectRoles(QAccessible::queryAccessibleInterface(&m_fixture->window()), found);
            return found;
        };
        QVERIFY(roles().contains(QAccessible::Slider));
        m_fixture->service.setNotifyOnLowQuota(false);
        QVERIFY(!roles().contains(QAccessible::Slider));
    }

    void aMouseClickOnDoneLeavesNoRing()
    {
        m_fixture->answer(test::sampleSummary());
        m_fixture->item(u"settingsButton"_s)->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Space);
        m_fixture->showSettings();
        QCOMPARE(focused(*m_fixture), u"backButton"_s);
        click(*m_fixture, u"doneButton"_s);
        QTRY_VERIFY(m_fixture->item(u"doneButton"_s) == nullptr);
        QVERIFY(m_fixture->items(u"focusRing"_s).isEmpty());
    }

    void whereThereIsLittleRoomOfflineAndLoadingScroll()
    {
        m_fixture->fail(u"no"_s);
        m_fixture->window().resize(380, 220);
        const QRectF body = place(m_fixture->item(u"body"_s));
        QTRY_VERIFY(m_fixture->item(u"scrollBar"_s) != nullptr);
        QTest::keyClick(&m_fixture->window(), Qt::Key_End);
        QVERIFY(body.contains(place(m_fixture->item(u"retryButton"_s))));
        m_fixture->window().resize(380, 130);
        m_fixture->service.refresh();
        QVERIFY(m_fixture->item(u"loadingState"_s) != nullptr);
        QTRY_VERIFY(m_fixture->item(u"loadingState"_s)->property("furthest").toDouble() > 0);
        QTest::keyClick(&m_fixture->window(), Qt::Key_End);
        QVERIFY(m_fixture->item(u"loadingState"_s)->property("contentY").toDouble() > 0);
    }

    void aRefreshBehindTheSettingsDrawsNothing()
    {
        m_fixture->answer(test::sampleSummary());
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        m_fixture->showSettings();
        QSignalSpy frames(&m_fixture->window(), &QQuickWindow::frameSwapped);
        m_fixture->service.refresh();
        m_fixture->answer(test::sampleSummary());
        QVERIFY(m_fixture->model().spin()->isSpinning());
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        // A few for what the settings themselves show of the daemon.
        QCOMPARE_LE(frames.size(), 4);
    }

    void aTurnThatIsUnderWayEndsWithTheDashboard()
    {
        m_fixture->answer(test::sampleSummary());
        QTRY_VERIFY(!m_fixture->model().spin()->isSpinning());
        m_fixture->appearance.still = false;
        QTest::keyClick(&m_fixture->window(), Qt::Key_R, Qt::ControlModifier);
        const auto *icon = m_fixture->existing(u"refreshIcon"_s);
        m_fixture->showSettings();
        QCOMPARE(icon->rotation(), m_fixture->model().spin()->rotationDegrees());
    }

    void theLoadingWheelStandsWhereMotionIsReducedOrUnseen()
    {
        m_fixture->awaitRefresh();
        const auto *wheelItem = m_fixture->existing(u"progress"_s);
        QTRY_VERIFY(wheelItem->rotation() > 0);
        m_fixture->showSettings();
        QSignalSpy turned(wheelItem, &QQuickItem::rotationChanged);
        // A turn of the refresh icon takes longer than seven steps of the wheel.
        views::RefreshSpin *spin = m_fixture->model().spin();
        const double degrees = spin->rotationDegrees();
        QTRY_VERIFY(spin->rotationDegrees() > degrees);
        QCOMPARE(turned.size(), 0);

        m_fixture->appearance.still = true;
        Q_EMIT m_fixture->appearance.changed();
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        QTRY_VERIFY(m_fixture->item(u"loadingState"_s) != nullptr);
        const double later = spin->rotationDegrees();
        QTRY_VERIFY(spin->rotationDegrees() > later);
        QCOMPARE(turned.size(), 0);
    }

    void theBodyStaysWhereItIsWhenTheStatusTakesTwoLines()
    {
        m_fixture->answer(test::sampleSummary());
        const QRectF body = place(m_fixture->item(u"body"_s));
        m_fixture->service.refresh();
        m_fixture->fail(u"a very long error "_s.repeated(20));
        QTRY_COMPARE(m_fixture->item(u"statusText"_s)->property("lineCount").toInt(), 2);
        QCOMPARE(place(m_fixture->item(u"body"_s)), body);
        const QRectF status = place(m_fixture->item(u"statusText"_s));
        QVERIFY(status.bottom() < body.top());
        QVERIFY(status.top() > 14);
    }

private:
    std::unique_ptr<PopoverFixture> m_fixture;
    QPointingDevice *m_finger = QTest::createTouchDevice();
};

QTEST_MAIN(PopoverInputTest)
#include "popover_input_test.moc"
