#include "platform/wording.h"
#include "qml/popover_fixture.h"
#include "qml/samples.h"
#include "views/models/popover_model.h"
#include "views/models/theme.h"

#include <QAccessible>
#include <QDir>
#include <QGuiApplication>
#include <QQuickItem>
#include <QSignalSpy>
#include <QTest>

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

/// What Qt reports of an item to screen readers.
struct Accessible {
    QAccessible::Role role = QAccessible::NoRole;
    QString name;
};

Accessible accessible(QQuickItem *item)
{
    const QAccessibleInterface *interface = item != nullptr
        ? QAccessible::queryAccessibleInterface(item)
        : nullptr;
    return interface != nullptr
        ? Accessible{.role = interface->role(), .name = interface->text(QAccessible::Name)}
        : Accessible{};
}

double rotationOf(const PopoverFixture &fixture)
{
    return fixture.item(u"refreshIcon"_s)->rotation();
}

bool isTruncated(const QQuickItem *item)
{
    return item->property("truncated").toBool();
}

double right(const QQuickItem *item)
{
    return item->mapToScene(QPointF(item->width(), 0)).x();
}

/// A translucent popover on a white background.
QImage onWhite(PopoverFixture &fixture)
{
    if (fixture.window().color().alpha() != 0)
        qFatal("the window is not translucent");
    fixture.window().setColor(Qt::white);
    fixture.show();
    return fixture.window().grabWindow();
}

} // namespace

class QuotaPopoverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theWindowIs380By490();
    void largerTextMakesTheWholePopoverLarger();
    void smallerTextCutsNothingOff();
    void aTranslucentPopoverHasRoundCornersAndAShadow();
    void onADarkBackgroundTheShadowIsDarker();
    void aPressOnTheShadowCloses();
    void withoutATranslucentWindowItIsSquareAgain();
    void beforeTheFirstAnswerTheLoadingStateShows();
    void anAnswerShowsACardForEachGroupInOrder();
    void cardsAreThereBeforeTheFirstFrame();
    void aSummaryWithoutGroupsIsOffline();
    void aSummaryWithoutGroupsIsLoadingWhileARefreshRuns();
    void withoutDataAFailureShowsTheOfflineState();
    void retryConnectionRefreshes();
    void anErrorShowsBesideTheLastGoodData();
    void theErrorGoesWithTheNextRefresh();
    void theStatusLineFollowsTheConnection();
    void aLongErrorTakesTwoLinesAndATooltipSaysAllOfIt();
    void theTooltipOfTheRefreshButtonNamesTheShortcut();
    void theTooltipOfTheGearNamesWhatItOpens();
    void theRefreshButtonRefreshesAndIsDisabledMeanwhile();
    void controlRTwiceIsOneRefreshAndOneSpin();
    void aRefreshByTheTimerSpins();
    void aSpinLastsAsLongAsTheRefreshAndEndsOnAWholeTurn();
    void withoutMotionASpinIsInstantAndItsGuardKeepsItsTime();
    void aRefreshThatRunsWhenThePopoverOpensSpins();
    void aHiddenPopoverDoesNotMove();
    void whatHappenedWhileHiddenIsThereWhenShown();
    void countdownsRunWithTheClock();
    void madeAnewItIsAsItWasLeft();
    void madeAndLetGoItLeavesNothingBehind();
    void theTimeTicksOnlyWhileTheDashboardIsShown();
    void theUpdateTextCountsFromTheLastUpdate();
    void aRefreshKeepsCardsAndScrollPosition();
    void moreThanAPersonCanReadIsOnlyCounted();
    void fiftyGroupsAllGetTheirCard();
    void keysScroll_data();
    void keysScroll();
    void theWheelScrolls();
    void quitEndsTheProgram();
    void controlQEndsTheProgram();
    void escapeCloses();
    void openAntigravityStartsTheInstalledIde();
    void withoutTheIdeTheDaemonsPageOpens();
    void withoutIdeAndDaemonNothingOpens();
    void withoutIdeAndHttpPortNothingOpens();
    void aPortThatCannotBeOneOpensNothing();
    void tabGoesFromHeaderOverBodyToFooterAndShowsWhereItIs();
    void aClickLeavesNoFocusRing();
    void aPressThatIsReleasedElsewhereIsNoClick();
    void aTooltipDoesNotWaitForThePopoverToComeBack();
    void returnAndSpacePressAButton();
    void everyControlCardAndRowHasRoleAndName();
    void accessibleNamesOfRowsChangeOnceAMinute();
    void namesWithMarkupAreShownAsTyped();
    void namesOf300CharactersStayInsideTheirCards();
    void rightToLeftAndEmojiNamesAreShownAsTheyAre();
    void colorsFollowTheDesktop();
    void whatHappensAfterThePopoverIsGoneIsHarmless();
};

void QuotaPopoverTest::theWindowIs380By490()
{
    PopoverFixture fixture;
    fixture.load();
    QCOMPARE(fixture.window().size(), QSize(380, 490));
}

void QuotaPopoverTest::largerTextMakesTheWholePopoverLarger()
{
    PopoverFixture fixture;
    fixture.appearance.scale = 1.5;
    fixture.show();
    QCOMPARE(fixture.window().size(), QSize(570, 735));
    QCOMPARE(fixture.item(u"body"_s)->width(), 380.0);
    fixture.appearance.scale = 1;
    Q_EMIT fixture.appearance.changed();
    QTRY_COMPARE(fixture.window().size(), QSize(380, 490));
}

void QuotaPopoverTest::smallerTextCutsNothingOff()
{
    PopoverFixture fixture;
    fixture.appearance.scale = 0.75;
    fixture.show();
    QCOMPARE(fixture.window().size(), QSize(380, 490));
    QCOMPARE(fixture.item(u"body"_s)->width(), 380.0);
    QCOMPARE(fixture.item(u"body"_s)->mapRectToScene(QRectF(0, 0, 380, 1)).width(), 380.0);
}

void QuotaPopoverTest::aTranslucentPopoverHasRoundCornersAndAShadow()
{
    PopoverFixture fixture;
    fixture.load();
    fixture.content->setTranslucent(true);
    const QMargins shadow = fixture.content->shadow();
    QVERIFY(shadow.left() > 0 && shadow.right() > 0 && shadow.top() > 0 && shadow.bottom() > 0);
    QCOMPARE(fixture.content->size(), QSize(380, 490));
    QCOMPARE(fixture.window().size(), QSize(380, 490).grownBy(shadow));
    QCOMPARE(fixture.window().requestedFormat().alphaBufferSize(), 8);
    const QImage picture = onWhite(fixture);
    QCOMPARE(picture.size(), fixture.window().size());
    const QRect frame = QRect(QPoint(), picture.size()) - shadow;
    const auto shade = [&picture](QPoint point) { return 255 - qGray(picture.pixel(point)); };

    // The corners are cut off: there is some shadow, and neither outline nor background.
    const int besideTheFrame = shade({frame.center().x(), frame.bottom() + 1});
    QVERIFY(besideTheFrame >= 30);
    for (const QPoint &corner :
        {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight()}) {
        QVERIFY2(shade(corner) > 0, "a corner of the popover is drawn");
        QVERIFY2(shade(corner) < besideTheFrame, "a corner of the popover has a line");
    }
    // The line is all around.
    const QPoint middle = frame.center();
    for (const QPoint &onFrame :
        {QPoint(frame.left(), middle.y()), QPoint(frame.right(), middle.y()),
            QPoint(middle.x(), frame.top()), QPoint(middle.x(), frame.bottom())})
        QVERIFY(std::abs(shade(onFrame) - shade({frame.left(), middle.y()})) <= 8);
    QVERIFY(shade({frame.left(), middle.y()}) > shade({frame.left() + 2, middle.y()}));
    // The shadow begins at the frame and ends within the window.
    QVERIFY(besideTheFrame > shade({middle.x(), frame.bottom() + 9}));
    QVERIFY(shade({frame.left() - 1, middle.y()}) >= 20);
    for (const QPoint &rim : {QPoint(0, middle.y()), QPoint(picture.width() - 1, middle.y()),
             QPoint(middle.x(), 0), QPoint(middle.x(), picture.height() - 1), QPoint(0, 0)})
        QVERIFY2(shade(rim) <= 2, "the shadow is cut off");
}

void QuotaPopoverTest::onADarkBackgroundTheShadowIsDarker()
{
    const auto shade = [](PopoverFixture &fixture) {
        fixture.load();
        fixture.content->setTranslucent(true);
        const QImage picture = onWhite(fixture);
        return 255
            - qGray(picture.pixel(
                picture.width() / 2, picture.height() - fixture.content->shadow().bottom()));
    };
    PopoverFixture light;
    PopoverFixture dark;
    dark.appearance.background = platform::Background::Dark;
    QVERIFY(shade(dark) > shade(light));
}

void QuotaPopoverTest::aPressOnTheShadowCloses()
{
    PopoverFixture fixture;
    fixture.load();
    fixture.content->setTranslucent(true);
    fixture.show();
    const QMargins shadow = fixture.content->shadow();
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, QPoint(shadow.left(), shadow.top()));
    QTest::mouseClick(
        &fixture.window(), Qt::LeftButton, {}, QPoint(fixture.window().width() / 2, 2));
    QTRY_COMPARE(fixture.closed, 1);
}

void QuotaPopoverTest::withoutATranslucentWindowItIsSquareAgain()
{
    PopoverFixture fixture;
    fixture.load();
    fixture.content->setTranslucent(true);
    fixture.show();
    fixture.hide();
    fixture.content->setTranslucent(false);
    QVERIFY(fixture.content->shadow().isNull());
    QCOMPARE(fixture.window().size(), QSize(380, 490));
    fixture.show();
    const QImage picture = fixture.window().grabWindow();
    QCOMPARE(picture.size(), QSize(380, 490));
    QCOMPARE(qAlpha(picture.pixel(0, 0)), 255);
    QCOMPARE(qAlpha(picture.pixel(379, 489)), 255);
}

void QuotaPopoverTest::beforeTheFirstAnswerTheLoadingStateShows()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.awaitRefresh();
    QVERIFY(fixture.item(u"loadingState"_s));
    QCOMPARE(
        accessible(fixture.item(u"loadingState"_s)).name, u"Fetching quota from Antigravity..."_s);
    QCOMPARE(fixture.text(u"statusText"_s), u"Connecting..."_s);
    QCOMPARE(fixture.text(u"updatedText"_s), u"Waiting for update"_s);
}

void QuotaPopoverTest::anAnswerShowsACardForEachGroupInOrder()
{
    PopoverFixture fixture;
    fixture.show();
    auto summary = test::sampleSummary();
    summary.groups.append({.displayName = u"Unknown models"_s});
    std::reverse(summary.groups.begin(), summary.groups.end());
    fixture.answer(summary);
    fixture.awaitCards(4);
    QStringList names;
    const auto items = fixture.items(u"groupName"_s);
    for (const QQuickItem *item : items)
        names.append(item->property("text").toString());
    QCOMPARE(names,
        QStringList({u"Gemini Models"_s, u"Gemini 3 Pro (Argon)"_s, u"Claude and GPT models"_s,
            u"Unknown models"_s}));
}

void QuotaPopoverTest::cardsAreThereBeforeTheFirstFrame()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.load();
    fixture.content->setShown(true);
    QCOMPARE(fixture.items(u"groupCard"_s).size(), 3);
    QCOMPARE(fixture.items(u"countdown"_s).constFirst()->property("text").toString(),
        u"Resets in 2h 3m"_s);
    QCOMPARE(fixture.text(u"statusText"_s), u"Connected (Port 42424)"_s);
}

void QuotaPopoverTest::aSummaryWithoutGroupsIsOffline()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(model::QuotaSummary{});
    QTRY_VERIFY(fixture.item(u"offlineState"_s));
    QVERIFY(!fixture.item(u"groupList"_s));
}

void QuotaPopoverTest::aSummaryWithoutGroupsIsLoadingWhileARefreshRuns()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(model::QuotaSummary{});
    fixture.service.refresh();
    QVERIFY(fixture.item(u"loadingState"_s));
    QVERIFY(!fixture.item(u"offlineState"_s));
}

void QuotaPopoverTest::withoutDataAFailureShowsTheOfflineState()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.fail(u"Could not connect to the server."_s);
    QTRY_VERIFY(fixture.item(u"offlineState"_s));
    QVERIFY(fixture.text(u"statusText"_s).contains(u"Could not connect to the server."_s));
    QVERIFY(!fixture.item(u"loadingState"_s));
}

void QuotaPopoverTest::retryConnectionRefreshes()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.fail(u"no"_s);
    // The spin of the first refresh has to end: as long as it runs a refresh is refused.
    QTRY_VERIFY(!fixture.model().spin()->isSpinning());
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"retryButton"_s));
    fixture.awaitRefresh();
    QCOMPARE(fixture.fetching.asked.size(), 2U);
    QVERIFY(fixture.item(u"loadingState"_s));
}

void QuotaPopoverTest::anErrorShowsBesideTheLastGoodData()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    QVERIFY(!fixture.item(u"errorText"_s));
    fixture.service.refresh();
    fixture.fail(u"The request timed out."_s);
    QCOMPARE(fixture.items(u"groupCard"_s).size(), 3);
    const QQuickItem *error = fixture.item(u"errorText"_s);
    QVERIFY(error);
    QVERIFY(error->property("text").toString().contains(u"The request timed out."_s));
    const QQuickItem *lastCard = fixture.items(u"groupCard"_s).constLast();
    QVERIFY(error->mapToScene(QPointF()).y()
        >= lastCard->mapToScene(QPointF(0, lastCard->height())).y() + 4);
}

void QuotaPopoverTest::theErrorGoesWithTheNextRefresh()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    fixture.service.refresh();
    fixture.fail(u"The request timed out."_s);
    fixture.service.refresh();
    QVERIFY(!fixture.item(u"errorText"_s));
}

void QuotaPopoverTest::theStatusLineFollowsTheConnection()
{
    PopoverFixture fixture;
    fixture.show();
    const auto dot
        = [&fixture] { return fixture.item(u"statusDot"_s)->property("color").value<QColor>(); };
    const views::Theme theme(fixture.appearance, fixture.symbols);
    QCOMPARE(fixture.text(u"statusText"_s), u"Connecting..."_s);
    QCOMPARE(dot(), theme.orangeFill());
    fixture.answer(test::sampleSummary());
    QCOMPARE(fixture.text(u"statusText"_s), u"Connected (Port 42424)"_s);
    QCOMPARE(dot(), theme.color(model::ColorToken::SystemGreen));
    fixture.service.refresh();
    QCOMPARE(fixture.text(u"statusText"_s), u"Connected (Port 42424)"_s);
    fixture.fail(u"gone"_s);
    QCOMPARE(fixture.text(u"statusText"_s), *fixture.service.errorMessage());
    QCOMPARE(dot(), theme.red());
}

void QuotaPopoverTest::aLongErrorTakesTwoLinesAndATooltipSaysAllOfIt()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    const double oneLine = fixture.item(u"statusText"_s)->height();
    QVERIFY(!isTruncated(fixture.item(u"statusText"_s)));
    fixture.service.refresh();
    fixture.fail(u"a very long error "_s.repeated(20));
    QTRY_VERIFY(isTruncated(fixture.item(u"statusText"_s)));
    QCOMPARE(fixture.item(u"statusText"_s)->property("lineCount").toInt(), 2);
    QVERIFY(fixture.item(u"statusText"_s)->height() > oneLine);
    QVERIFY(right(fixture.item(u"statusText"_s))
        < fixture.item(u"refreshButton"_s)->mapToScene(QPointF()).x());

    QTest::mouseMove(&fixture.window(), fixture.middle(u"statusText"_s));
    QTRY_VERIFY(fixture.item(u"toolTip"_s));
    QCOMPARE(fixture.text(u"toolTip"_s), *fixture.service.errorMessage());
    const QQuickItem *bubble = fixture.item(u"toolTip"_s);
    QVERIFY(bubble->x() >= 0);
    QVERIFY(right(bubble) <= 380);
    QTest::mouseMove(&fixture.window(), QPoint(190, 300));
    QTRY_VERIFY(!fixture.item(u"toolTip"_s));
}

void QuotaPopoverTest::theTooltipOfTheRefreshButtonNamesTheShortcut()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    QTest::mouseMove(&fixture.window(), fixture.middle(u"refreshButton"_s));
    QTRY_COMPARE(fixture.text(u"toolTip"_s), platform::wording().refreshToolTip);
    QVERIFY(fixture.text(u"toolTip"_s).startsWith(u"Refresh Quota ("_s));
}

void QuotaPopoverTest::theTooltipOfTheGearNamesWhatItOpens()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    QTest::mouseMove(&fixture.window(), fixture.middle(u"settingsButton"_s));
    QTRY_COMPARE(fixture.text(u"toolTip"_s), u"Preferences"_s);
}

void QuotaPopoverTest::theRefreshButtonRefreshesAndIsDisabledMeanwhile()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QVERIFY(fixture.item(u"refreshButton"_s)->property("ready").toBool());
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"refreshButton"_s));
    fixture.awaitRefresh();
    QVERIFY(!fixture.item(u"refreshButton"_s)->property("ready").toBool());
    fixture.answer(test::sampleSummary());
    QVERIFY(fixture.item(u"refreshButton"_s)->property("ready").toBool());
}

void QuotaPopoverTest::controlRTwiceIsOneRefreshAndOneSpin()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QTest::keyClick(&fixture.window(), Qt::Key_R, Qt::ControlModifier);
    QTest::keyClick(&fixture.window(), Qt::Key_R, Qt::ControlModifier);
    fixture.answer(test::sampleSummary());
    // Also when the refresh has ended but the icon still turns.
    QTest::keyClick(&fixture.window(), Qt::Key_R, Qt::ControlModifier);
    QTRY_COMPARE(rotationOf(fixture), 360.0);
    QCOMPARE(fixture.fetching.asked.size(), 2U);
    QVERIFY(!fixture.service.isRefreshing());
}

void QuotaPopoverTest::aRefreshByTheTimerSpins()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QCOMPARE(rotationOf(fixture), 0.0);
    fixture.clock.advance(std::chrono::seconds(60));
    fixture.answer(test::sampleSummary());
    QTRY_COMPARE(rotationOf(fixture), 360.0);
}

void QuotaPopoverTest::aSpinLastsAsLongAsTheRefreshAndEndsOnAWholeTurn()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QTest::keyClick(&fixture.window(), Qt::Key_R, Qt::ControlModifier);
    fixture.awaitRefresh();
    QTRY_VERIFY(rotationOf(fixture) > 360);
    fixture.answer(test::sampleSummary());
    QTRY_VERIFY(rotationOf(fixture) >= 720);
    QTRY_VERIFY(!fixture.model().spin()->isSpinning());
    QTRY_COMPARE(rotationOf(fixture), fixture.model().spin()->rotationDegrees());
    QCOMPARE(std::fmod(rotationOf(fixture), 360.0), 0.0);
}

void QuotaPopoverTest::withoutMotionASpinIsInstantAndItsGuardKeepsItsTime()
{
    PopoverFixture fixture;
    fixture.appearance.still = true;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QTRY_VERIFY(!fixture.model().spin()->isSpinning());
    const double before = rotationOf(fixture);
    QTest::keyClick(&fixture.window(), Qt::Key_R, Qt::ControlModifier);
    QCOMPARE(rotationOf(fixture), before + 360);
    QVERIFY(fixture.model().spin()->isSpinning());
    fixture.awaitRefresh();
    // The icon is pale instead.
    QTRY_COMPARE(fixture.item(u"refreshIcon"_s)->opacity(), 0.45);
    fixture.answer(test::sampleSummary());
    QTRY_VERIFY(!fixture.model().spin()->isSpinning());
    QTRY_COMPARE(fixture.item(u"refreshIcon"_s)->opacity(), 1.0);
    QCOMPARE(std::fmod(rotationOf(fixture), 360.0), 0.0);
}

void QuotaPopoverTest::aRefreshThatRunsWhenThePopoverOpensSpins()
{
    PopoverFixture fixture;
    fixture.awaitRefresh();
    fixture.show();
    fixture.answer(test::sampleSummary());
    QTRY_COMPARE(rotationOf(fixture), 360.0);
}

void QuotaPopoverTest::aHiddenPopoverDoesNotMove()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    fixture.hide();
    views::PopoverModel &model = fixture.model();
    QSignalSpy updated(&model, &views::PopoverModel::updatedTextChanged);
    QSignalSpy refreshing(&model, &views::PopoverModel::isRefreshingChanged);
    QSignalSpy moved(model.spin(), &views::RefreshSpin::rotationDegreesChanged);
    fixture.clock.advance(std::chrono::seconds(60));
    fixture.answer(test::lowSummary());
    QCOMPARE(updated.size() + refreshing.size() + moved.size(), 0);
    QCOMPARE(model.groups()->rowCount(), 3);
}

void QuotaPopoverTest::whatHappenedWhileHiddenIsThereWhenShown()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    fixture.hide();
    fixture.clock.advance(std::chrono::seconds(60));
    fixture.answer(test::lowSummary());
    fixture.clock.advance(std::chrono::seconds(7));
    fixture.load();
    fixture.content->setShown(true);
    QCOMPARE(fixture.text(u"updatedText"_s), u"Updated 7s ago"_s);
    fixture.show();
    QCOMPARE(fixture.items(u"groupCard"_s).size(), 2);
}

void QuotaPopoverTest::countdownsRunWithTheClock()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer({.groups = {{.displayName = u"Gemini"_s,
                        .buckets = {test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 62)}}}});
    QTRY_COMPARE(fixture.text(u"countdown"_s), u"Resets in 1m 2s"_s);
    fixture.clock.advance(std::chrono::seconds(1));
    QCOMPARE(fixture.text(u"countdown"_s), u"Resets in 1m 1s"_s);
    fixture.clock.advance(std::chrono::seconds(61));
    QCOMPARE(fixture.text(u"countdown"_s), u"Resets in Refreshed"_s);
}

void QuotaPopoverTest::madeAnewItIsAsItWasLeft()
{
    const auto position = [](const PopoverFixture &fixture, const QString &list) {
        const auto *area = fixture.item(list);
        return area != nullptr ? area->property("contentY").toDouble() : -1;
    };
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::manyGroups(12));
    fixture.awaitCards(12);
    QVERIFY(fixture.item(u"groupList"_s)->setProperty("contentY", 700));
    fixture.showSettings();
    QVERIFY(fixture.item(u"settingsList"_s)->setProperty("contentY", 120));
    fixture.hide();
    fixture.content.reset();

    fixture.show();
    QVERIFY(fixture.model().showingSettings());
    QTRY_COMPARE(position(fixture, u"settingsList"_s), 120.0);
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    QTRY_COMPARE(position(fixture, u"groupList"_s), 700.0);
    // Where the user goes then, it stays.
    QVERIFY(fixture.item(u"groupList"_s)->setProperty("contentY", 10));
    fixture.hide();
    fixture.content.reset();
    fixture.service.refresh();
    fixture.answer(test::manyGroups(2));
    fixture.show();
    QVERIFY(!fixture.model().showingSettings());
    QTRY_COMPARE(fixture.items(u"groupCard"_s).size(), 2);
}

void QuotaPopoverTest::madeAndLetGoItLeavesNothingBehind()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    const auto openAndLetGo = [&fixture] {
        fixture.load();
        fixture.content->showSettings();
        fixture.content->setShown(true);
        fixture.window().show();
        QCoreApplication::processEvents();
        fixture.hide();
        fixture.content.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    };
    const auto descriptors
        = [] { return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size(); };
    // In use of the heap; the sanitizers, which look for leaks themselves, have another.
    const auto heap = [] { return static_cast<qint64>(::mallinfo2().uordblks); };
    constexpr int rounds = 30;
    // Least of all rounds: what the QML engine's thread happens to hold comes and goes.
    const auto leastHeap = [&] {
        auto least = std::numeric_limits<qint64>::max();
        for (int i = 0; i < rounds; ++i) {
            openAndLetGo();
            least = std::min(least, heap());
        }
        return least;
    };
    leastHeap();
    const auto descriptorsBefore = descriptors();
    const qint64 before = leastHeap();
    const qint64 growth = leastHeap() - before;
    QCOMPARE(QGuiApplication::allWindows().size(), 0);
    QCOMPARE(descriptors(), descriptorsBefore);
    constexpr qint64 most = 32LL * 1024;
    QVERIFY2(growth <= most, qPrintable(QString::number(growth / rounds) + u" bytes a round"));
}

void QuotaPopoverTest::theTimeTicksOnlyWhileTheDashboardIsShown()
{
    using namespace std::chrono_literals;
    const auto ticking = [](const PopoverFixture &fixture) {
        const auto periods = fixture.clock.periods();
        return std::ranges::count(periods, std::chrono::milliseconds(1s)) == 1;
    };
    PopoverFixture fixture;
    fixture.load();
    QVERIFY(!ticking(fixture));
    fixture.show();
    QVERIFY(ticking(fixture));
    fixture.showSettings();
    QVERIFY(!ticking(fixture));
    // The time is right again before the dashboard slides in.
    fixture.answer(test::sampleSummary());
    fixture.clock.advance(42s);
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    QVERIFY(ticking(fixture));
    QCOMPARE(fixture.model().updatedText(), u"Updated 42s ago"_s);
    fixture.hide();
    QVERIFY(!ticking(fixture));
    fixture.show();
    QVERIFY(ticking(fixture));
}

void QuotaPopoverTest::theUpdateTextCountsFromTheLastUpdate()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    QCOMPARE(fixture.text(u"updatedText"_s), u"Updated just now"_s);
    fixture.clock.advance(std::chrono::seconds(42));
    QCOMPARE(fixture.text(u"updatedText"_s), u"Updated 42s ago"_s);
}

void QuotaPopoverTest::moreThanAPersonCanReadIsOnlyCounted()
{
    PopoverFixture fixture;
    fixture.show();
    auto summary = test::manyGroups(130);
    auto &wide = summary.groups.first();
    for (int i = 0; i < 2999; ++i) {
        wide.buckets.append(test::sampleBucket(
            u"bucket-%1"_s.arg(i), u"Bucket %1"_s.arg(i), u"5h"_s, 0.5, std::nullopt));
    }
    fixture.answer(summary);
    fixture.awaitCards(views::PopoverModel::maximumGroups);
    QCOMPARE(fixture.text(u"moreGroups"_s), u"and 30 more"_s);
    QCOMPARE(fixture.items(u"bucketRow"_s).size(), views::PopoverModel::maximumRows);
    const auto hidden = fixture.items(u"moreRows"_s);
    QVERIFY(std::any_of(hidden.begin(), hidden.end(),
        [](const QQuickItem *line) { return line->property("text") == u"and 2800 more"_s; }));
    fixture.service.refresh();
    fixture.answer(test::sampleSummary());
    fixture.awaitCards(3);
    QVERIFY(fixture.item(u"moreGroups"_s) == nullptr);
    QVERIFY(fixture.item(u"moreRows"_s) == nullptr);
}

void QuotaPopoverTest::aRefreshKeepsCardsAndScrollPosition()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::manyGroups(20));
    fixture.awaitCards(20);
    QQuickItem *list = fixture.item(u"groupList"_s);
    const auto cards = fixture.items(u"groupCard"_s);
    QTest::keyClick(&fixture.window(), Qt::Key_PageDown);
    const double position = list->property("contentY").toDouble();
    QVERIFY(position > 0);

    auto summary = test::manyGroups(20);
    for (auto &group : summary.groups)
        group.buckets.front().remainingFraction = 0.123;
    fixture.service.refresh();
    fixture.answer(summary);
    QCOMPARE(fixture.item(u"groupList"_s), list);
    QCOMPARE(fixture.items(u"groupCard"_s), cards);
    QCOMPARE(list->property("contentY").toDouble(), position);
    QCOMPARE(fixture.text(u"percentageText"_s), u"12.3%"_s);

    // Fewer groups end where the list ends.
    QTest::keyClick(&fixture.window(), Qt::Key_End);
    fixture.service.refresh();
    fixture.answer(test::manyGroups(5));
    QTRY_COMPARE(fixture.items(u"groupCard"_s).size(), 5);
    QTRY_COMPARE(list->property("contentY").toDouble(), list->property("furthest").toDouble());
    QCOMPARE(fixture.items(u"groupCard"_s), cards.first(5));
}

void QuotaPopoverTest::fiftyGroupsAllGetTheirCard()
{
    PopoverFixture fixture;
    fixture.answer(test::manyGroups(50));
    fixture.show();
    fixture.awaitCards(50);
    QCOMPARE(fixture.items(u"groupName"_s).constLast()->property("text").toString(), u"Group 50"_s);
}

void QuotaPopoverTest::keysScroll_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<Qt::Key>("back");
    QTest::newRow("line") << Qt::Key_Down << Qt::Key_Up;
    QTest::newRow("page") << Qt::Key_PageDown << Qt::Key_PageUp;
    QTest::newRow("all") << Qt::Key_End << Qt::Key_Home;
}

void QuotaPopoverTest::keysScroll()
{
    QFETCH(Qt::Key, key);
    QFETCH(Qt::Key, back);
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::manyGroups(20));
    fixture.awaitCards(20);
    const QQuickItem *list = fixture.item(u"groupList"_s);
    QTest::keyClick(&fixture.window(), key);
    QTRY_VERIFY(list->property("contentY").toDouble() > 0);
    QTest::keyClick(&fixture.window(), back);
    QTRY_COMPARE(list->property("contentY").toDouble(), 0.0);
}

void QuotaPopoverTest::theWheelScrolls()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::manyGroups(20));
    fixture.awaitCards(20);
    const QPoint middle = fixture.middle(u"body"_s);
    QWheelEvent event(middle, fixture.window().mapToGlobal(middle), {}, QPoint(0, -120),
        Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&fixture.window(), &event);
    QTRY_VERIFY(fixture.item(u"groupList"_s)->property("contentY").toDouble() > 0);
}

void QuotaPopoverTest::quitEndsTheProgram()
{
    PopoverFixture fixture;
    fixture.show();
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"quitButton"_s));
    QCOMPARE(fixture.terminated, 1);
}

void QuotaPopoverTest::controlQEndsTheProgram()
{
    PopoverFixture fixture;
    fixture.show();
    QTest::keyClick(&fixture.window(), Qt::Key_Q);
    QCOMPARE(fixture.terminated, 0);
    QTest::keyClick(&fixture.window(), Qt::Key_Q, Qt::ControlModifier);
    QCOMPARE(fixture.terminated, 1);
}

void QuotaPopoverTest::escapeCloses()
{
    PopoverFixture fixture;
    fixture.show();
    QTest::keyClick(&fixture.window(), Qt::Key_Escape);
    QCOMPARE(fixture.closed, 1);
}

void QuotaPopoverTest::openAntigravityStartsTheInstalledIde()
{
    PopoverFixture fixture;
    fixture.opener.installed = true;
    fixture.show();
    fixture.answer(test::sampleSummary());
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"openButton"_s));
    QCOMPARE(fixture.opener.started, 1);
    QVERIFY(fixture.opener.opened.isEmpty());
}

void QuotaPopoverTest::withoutTheIdeTheDaemonsPageOpens()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"openButton"_s));
    QCOMPARE(fixture.opener.opened, QList{QUrl(u"http://127.0.0.1:42424/"_s)});
}

void QuotaPopoverTest::withoutIdeAndDaemonNothingOpens()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.fail(u"no"_s);
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"openButton"_s));
    QVERIFY(fixture.opener.opened.isEmpty());
    QCOMPARE(fixture.opener.started, 0);
}

void QuotaPopoverTest::withoutIdeAndHttpPortNothingOpens()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.awaitRefresh();
    fixture.fetching.answer(service::FetchedQuota{
        .summary = test::sampleSummary(), .daemon = {.pid = 1, .httpsPort = 443}});
    QTRY_VERIFY(fixture.service.activeDaemon());
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"openButton"_s));
    QVERIFY(fixture.opener.opened.isEmpty());
}

void QuotaPopoverTest::aPortThatCannotBeOneOpensNothing()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.awaitRefresh();
    fixture.fetching.answer(service::FetchedQuota{
        .summary = test::sampleSummary(), .daemon = {.pid = 1, .httpPort = -1}});
    QTRY_VERIFY(fixture.service.activeDaemon());
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"openButton"_s));
    QVERIFY(fixture.opener.opened.isEmpty());
}

void QuotaPopoverTest::tabGoesFromHeaderOverBodyToFooterAndShowsWhereItIs()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    const QStringList order{u"refreshButton"_s, u"settingsButton"_s, u"groupList"_s,
        u"openButton"_s, u"quitButton"_s, u"refreshButton"_s};
    QVERIFY(fixture.items(u"focusRing"_s).isEmpty());
    for (const QString &name : order) {
        QTest::keyClick(&fixture.window(), Qt::Key_Tab);
        QCOMPARE(fixture.window().activeFocusItem(), fixture.item(name));
        const auto rings = fixture.items(u"focusRing"_s);
        QCOMPARE(rings.size(), 1);
        const auto *ring = rings.constFirst();
        QVERIFY(ring->mapRectToScene(ring->boundingRect()).contains(fixture.middle(name)));
    }
    fixture.hide();
    fixture.show();
    QVERIFY(fixture.items(u"focusRing"_s).isEmpty());
}

void QuotaPopoverTest::aClickLeavesNoFocusRing()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QTest::mouseClick(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"quitButton"_s));
    QVERIFY(fixture.items(u"focusRing"_s).isEmpty());
}

void QuotaPopoverTest::aPressThatIsReleasedElsewhereIsNoClick()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QTest::mousePress(&fixture.window(), Qt::LeftButton, {}, fixture.middle(u"quitButton"_s));
    QTest::mouseMove(&fixture.window(), QPoint(190, 200));
    QTest::mouseRelease(&fixture.window(), Qt::LeftButton, {}, QPoint(190, 200));
    QCOMPARE(fixture.terminated, 0);
}

void QuotaPopoverTest::aTooltipDoesNotWaitForThePopoverToComeBack()
{
    PopoverFixture fixture;
    fixture.answer(test::sampleSummary());
    fixture.show();
    QTest::mouseMove(&fixture.window(), fixture.middle(u"refreshButton"_s));
    QTRY_VERIFY(fixture.item(u"toolTip"_s));
    fixture.hide();
    fixture.show();
    QVERIFY(!fixture.item(u"toolTip"_s));
}

void QuotaPopoverTest::returnAndSpacePressAButton()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.item(u"quitButton"_s)->forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(&fixture.window(), Qt::Key_Space);
    QCOMPARE(fixture.terminated, 1);
    QTest::keyClick(&fixture.window(), Qt::Key_Return);
    QCOMPARE(fixture.terminated, 2);
    QTest::keyClick(&fixture.window(), Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(fixture.terminated, 3);
}

void QuotaPopoverTest::everyControlCardAndRowHasRoleAndName()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.fail(u"no"_s);
    QTRY_VERIFY(fixture.item(u"retryButton"_s));
    const QHash<QString, QString> buttons{{u"refreshButton"_s, u"Refresh Quota"_s},
        {u"openButton"_s, u"Open Antigravity"_s}, {u"quitButton"_s, u"Quit"_s},
        {u"retryButton"_s, u"Retry Connection"_s}};
    for (auto button = buttons.cbegin(); button != buttons.cend(); ++button) {
        const Accessible found = accessible(fixture.item(button.key()));
        QCOMPARE(found.role, QAccessible::Button);
        QCOMPARE(found.name, button.value());
    }

    fixture.service.refresh();
    fixture.answer(test::sampleSummary());
    QTRY_VERIFY(fixture.item(u"groupList"_s));
    QCOMPARE(accessible(fixture.item(u"groupList"_s)).role, QAccessible::List);
    const Accessible card = accessible(fixture.item(u"groupCard"_s));
    QCOMPARE(card.role, QAccessible::List);
    QCOMPARE(card.name, u"Gemini Models, 2 buckets"_s);
    const Accessible row = accessible(fixture.item(u"bucketRow"_s));
    QCOMPARE(row.role, QAccessible::ListItem);
    QCOMPARE(row.name, u"Gemini Models, Five-hour limit, 80.4 percent left, resets in 2h 3m"_s);
}

void QuotaPopoverTest::accessibleNamesOfRowsChangeOnceAMinute()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer({.groups = {{.displayName = u"Gemini"_s,
                        .buckets = {test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 125)}}}});
    QTRY_VERIFY(fixture.item(u"bucketRow"_s));
    QCOMPARE(accessible(fixture.item(u"bucketRow"_s)).name,
        u"Gemini, A, 50.0 percent left, resets in 2m"_s);
    fixture.clock.advance(std::chrono::seconds(5));
    QCOMPARE(accessible(fixture.item(u"bucketRow"_s)).name,
        u"Gemini, A, 50.0 percent left, resets in 2m"_s);
    fixture.clock.advance(std::chrono::seconds(1));
    QCOMPARE(accessible(fixture.item(u"bucketRow"_s)).name,
        u"Gemini, A, 50.0 percent left, resets in 1m"_s);
}

void QuotaPopoverTest::namesWithMarkupAreShownAsTyped()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::oddNames());
    QTRY_COMPARE(fixture.text(u"groupName"_s), u"<b>Gemini</b> & <i>friends</i> &amp; more"_s);
    QCOMPARE(fixture.text(u"bucketName"_s), u"<h1>5 & 10</h1>"_s);
    for (const QString &name : {u"groupName"_s, u"groupDescription"_s, u"bucketName"_s,
             u"bucketWindow"_s, u"statusText"_s, u"timestamp"_s, u"countText"_s}) {
        QVERIFY2(fixture.item(name), qPrintable(name));
        QCOMPARE(
            fixture.item(name)->property("textFormat").toInt(), static_cast<int>(Qt::PlainText));
    }
    // A line break in a name becomes a blank.
    QVERIFY(fixture.text(u"groupDescription"_s).endsWith(u"</a> second line"_s));
}

void QuotaPopoverTest::namesOf300CharactersStayInsideTheirCards()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::longNames());
    fixture.awaitCards(2);
    const auto names = fixture.items(u"groupName"_s);
    const auto counts = fixture.items(u"countText"_s);
    QCOMPARE(names.size(), counts.size());
    for (qsizetype i = 0; i < names.size(); ++i) {
        QVERIFY(isTruncated(names.at(i)));
        QCOMPARE(names.at(i)->property("lineCount").toInt(), 1);
        QVERIFY(right(names.at(i)) < counts.at(i)->mapToScene(QPointF()).x());
        QVERIFY(right(counts.at(i)) < 380 - 24);
    }
    const auto buckets = fixture.items(u"bucketName"_s) + fixture.items(u"bucketWindow"_s);
    for (const QQuickItem *bucket : buckets) {
        QVERIFY(isTruncated(bucket));
        QVERIFY(right(bucket) < fixture.item(u"percentagePill"_s)->mapToScene(QPointF()).x());
    }
}

void QuotaPopoverTest::rightToLeftAndEmojiNamesAreShownAsTheyAre()
{
    PopoverFixture fixture;
    fixture.show();
    const auto summary = test::oddNames();
    fixture.answer(summary);
    fixture.awaitCards(3);
    QStringList shown;
    const auto items = fixture.items(u"groupName"_s);
    for (const QQuickItem *item : items)
        shown.append(item->property("text").toString());
    for (const auto &group : summary.sortedGroups())
        QVERIFY(shown.contains(group.displayName));
}

void QuotaPopoverTest::colorsFollowTheDesktop()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    const auto color = [&fixture](const QString &name) {
        return fixture.item(name)->property("color").value<QColor>();
    };
    const QColor lightName = color(u"groupName"_s);
    const QColor lightPercentage = color(u"percentageText"_s);
    const QImage light = fixture.window().grabWindow();
    fixture.appearance.background = platform::Background::Dark;
    Q_EMIT fixture.appearance.changed();
    QVERIFY(color(u"groupName"_s).lightnessF() > lightName.lightnessF());
    QVERIFY(color(u"percentageText"_s) != lightPercentage);
    QVERIFY(fixture.window().color().lightnessF() < 0.3F);
    QVERIFY(fixture.window().grabWindow() != light);
}

void QuotaPopoverTest::whatHappensAfterThePopoverIsGoneIsHarmless()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    fixture.content.reset();
    fixture.service.refresh();
    fixture.answer(test::lowSummary());
    Q_EMIT fixture.appearance.changed();
    fixture.load();
    fixture.content->setShown(true);
    QCOMPARE(fixture.items(u"groupCard"_s).size(), 2);
}

QTEST_MAIN(QuotaPopoverTest)
#include "quota_popover_test.moc"
