#include "app/item_description.h"
#include "app/remote_access.h"
#include "app/status_bar_controller.h"
#include "core/date_styles.h"
#include "service/diagnostics.h"
#include "support/fake_popover.h"
#include "support/fake_remote_control.h"
#include "support/fake_status_item.h"
#include "support/service_fixture.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::test;
using namespace std::chrono_literals;

namespace {

model::QuotaSummary summaryWith(double fiveHour, double weekly)
{
    return {.groups = {{.displayName = u"Gemini Models"_s,
                .buckets = {{.bucketId = u"w"_s,
                                .displayName = u"Weekly limit"_s,
                                .window = u"weekly"_s,
                                .remainingFraction = weekly},
                    {.bucketId = u"f"_s,
                        .displayName = u"Five hours"_s,
                        .window = u"5h"_s,
                        .remainingFraction = fiveHour}}}}};
}

/// One group of so many buckets, half full.
model::QuotaSummary summaryOf(qsizetype buckets)
{
    model::QuotaGroup group{.displayName = u"Gemini Models"_s};
    for (qsizetype i = 0; i < buckets; ++i)
        group.buckets.append({.bucketId = QString::number(i),
            .displayName = u"Bucket "_s + QString::number(i),
            .remainingFraction = 0.5});
    return {.groups = {group}};
}

} // namespace

class StatusBarControllerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture.emplace();
        auto item = std::make_unique<FakeStatusItem>();
        auto popover = std::make_unique<FakePopover>();
        m_item = item.get();
        m_popover = popover.get();
        m_controller = std::make_unique<app::StatusBarController>(
            app::StatusBarController::Dependencies{.quotaService = m_fixture->service,
                .clock = m_fixture->clock,
                .statusItem = std::move(item),
                .popover = std::move(popover),
                .symbolExists = [](const QString &) { return true; }});
    }

    void cleanup()
    {
        m_controller.reset();
        m_fixture.reset();
    }

    void theLabelShowsAtOnceAsTheIconAlone()
    {
        QCOMPARE(m_item->labels.size(), 1);
        QVERIFY(m_item->labels.first().image.has_value());
        QCOMPARE(m_item->labels.first().imagePosition, model::ImagePosition::Only);
        QVERIFY(m_item->labels.first().title.isEmpty());
    }

    void thePopoverOpensWithoutAClickOnTheItem_data()
    {
        QTest::addColumn<bool>("hasItem");
        QTest::newRow("with an item") << true;
        QTest::newRow("without one") << false;
    }

    void thePopoverOpensWithoutAClickOnTheItem()
    {
        QFETCH(bool, hasItem);
        m_item->button = hasItem;
        m_controller->showPopover();
        QCOMPARE(m_popover->calls, QStringList({u"showUnclicked"_s, u"makeKey"_s}));
        QVERIFY(!m_popover->items.constFirst());
    }

    void withoutAClickThePopoverOpensWhereTheItemIs()
    {
        m_item->itemPlace = QRect(700, 0, 90, 24);
        m_controller->showPopover();
        QCOMPARE(m_popover->items.constFirst(), std::optional(QRect(700, 0, 90, 24)));
    }

    void theMenusSettingsOpenThePopoverOnThem()
    {
        Q_EMIT m_item->settingsRequested();
        QCOMPARE(m_popover->calls,
            QStringList({u"prepare"_s, u"showSettings"_s, u"showUnclicked"_s, u"makeKey"_s}));
    }

    void theMenusSettingsTurnAPopoverThatIsShown()
    {
        Q_EMIT m_item->clicked({});
        m_popover->calls.clear();
        Q_EMIT m_item->settingsRequested();
        QCOMPARE(m_popover->calls, QStringList({u"prepare"_s, u"showSettings"_s, u"makeKey"_s}));
    }

    void aPopoverThatIsShownStaysWhenItIsToBeShown()
    {
        m_controller->showPopover();
        m_controller->showPopover();
        QCOMPARE(m_popover->calls, QStringList({u"showUnclicked"_s, u"makeKey"_s, u"makeKey"_s}));
        QVERIFY(m_popover->isShown());
    }

    void whatClosedThePopoverJustNowDoesNotKeepItFromBeingShown()
    {
        m_controller->showPopover();
        m_popover->close();
        m_controller->showPopover();
        QVERIFY(m_popover->isShown());
    }

    void aChangeRebuildsTheLabelFromTheStoredValue()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u" 5h: 80% · W: 55%"_s);
    }

    void aSummaryThatChangesWhileThePopoverIsOpenUpdatesTheLabel()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u" 5h: 80% · W: 55%"_s);
        Q_EMIT m_item->clicked({});
        QVERIFY(m_popover->shown);
        m_fixture->service.refresh();
        m_fixture->answer(summaryWith(0.3, 0.2));
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u" 5h: 30% · W: 20%"_s);
        QCOMPARE(m_item->descriptions.last().lines.first(), u"Gemini Models, Five hours: 30.0%"_s);
        QVERIFY(m_popover->shown);
    }

    void aTokenInANameStaysOutOfTheDescription()
    {
        auto summary = summaryWith(0.8, 0.55);
        summary.groups[0].displayName = u"Gemini 0123-secret Models"_s;
        m_fixture->answer(summary, {.httpPort = 1, .csrfToken = u"0123-secret"_s});
        QTRY_COMPARE(m_item->descriptions.last().lines.size(), 2);
        QCOMPARE(
            m_item->descriptions.last().lines.first(), u"Gemini … Models, Five hours: 80.0%"_s);
    }

    void theChangesOfOneTurnRebuildOnce()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u" 5h: 80% · W: 55%"_s);
        const auto before = m_item->labels.size();
        m_fixture->service.setShowIconInMenuBar(false);
        m_fixture->service.setShowWeeklyInMenuBar(false);
        QCOMPARE(m_item->labels.size(), before); // Not before the values are stored.
        QTRY_COMPARE(m_item->labels.size(), before + 1);
        QCoreApplication::processEvents();
        QCOMPARE(m_item->labels.size(), before + 1);
        QCOMPARE(m_item->labels.last().plainTitle(), u"G: 80%"_s);
    }

    void aRefreshIsDerivedDrawnAndPublishedOnce()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        const service::Diagnostics diagnostics(m_fixture->service, {}, {});
        FakeRemoteControl bus;
        const app::RemoteAccess access(m_fixture->service, diagnostics, bus, {});
        QCoreApplication::processEvents();
        m_item->labels.clear();
        m_item->descriptions.clear();
        bus.published.clear();
        bus.finished.clear();
        // What each reader has just read. Lists that are kept share their memory with no other
        // derivation.
        QList<QList<model::ToolbarStatItem>> read;
        const auto note = [&] { read.append(m_fixture->service.toolbarStatItems()); };
        m_item->onDrawn = note;
        bus.onPublished = note;
        connect(&m_fixture->service, &service::QuotaService::stateChanged, &bus, note);

        m_fixture->clock.advance(5s);
        m_fixture->service.refresh();
        QCoreApplication::processEvents();
        m_fixture->answer(summaryWith(0.3, 0.2));
        QTRY_COMPARE(bus.finished, QList<std::optional<QString>>{std::nullopt});
        QCOMPARE(m_item->labels.size(), 1);
        QCOMPARE(m_item->descriptions.size(), 1);
        QCOMPARE(bus.published.size(), 1);
        QCOMPARE(bus.published.first().title, u"✦ 5h: 30% · W: 20%"_s);
        QCOMPARE(read.size(), 3);
        for (const auto &items : std::as_const(read))
            QCOMPARE(items.constData(), read.first().constData());
    }

    void aRefreshThatBringsTheSameRebuildsNothing()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        const service::Diagnostics diagnostics(m_fixture->service, {}, {});
        FakeRemoteControl bus;
        const app::RemoteAccess access(m_fixture->service, diagnostics, bus, {});
        QCoreApplication::processEvents();
        const auto *derived = m_fixture->service.toolbarStatItems().constData();
        m_item->labels.clear();
        m_item->descriptions.clear();
        bus.published.clear();

        m_fixture->clock.advance(5s);
        m_fixture->service.refresh();
        m_fixture->answer(summaryWith(0.8, 0.55));
        QCOMPARE(bus.finished, QList<std::optional<QString>>{std::nullopt});
        QCOMPARE(m_item->labels.size(), 0);
        QCOMPARE(m_item->descriptions.size(), 0);
        QCOMPARE(m_fixture->service.toolbarStatItems().constData(), derived);
        // But others learn when it was.
        QCOMPARE(bus.published.size(), 1);
        QCOMPARE(bus.published.constFirst().lastUpdate, m_fixture->clock.now().toSecsSinceEpoch());
    }

    void theTooltipIsRightAfterASuspend()
    {
        auto summary = summaryWith(0.8, 0.55);
        summary.groups[0].buckets[1].resetTime = inSeconds(2h + 30s);
        m_fixture->answer(summary);
        QVERIFY(m_item->descriptions.constLast().lines.constFirst().endsWith("resets in 2h 0m"_L1));
        // No timer has run meanwhile; the refresh after the resume brings the same.
        m_fixture->clock.setNow(m_fixture->clock.now().addSecs(3600));
        m_fixture->service.refresh();
        m_fixture->answer(summary);
        QVERIFY(m_item->descriptions.constLast().lines.constFirst().endsWith("resets in 1h 0m"_L1));
    }

    void theTimeRebuildsNothing()
    {
        QTRY_VERIFY(m_fixture->fetching.isWaiting());
        QCoreApplication::processEvents();
        const auto before = m_item->labels.size();
        const QDateTime earlier = m_fixture->service.currentTime();
        m_fixture->clock.advance(5s);
        QCOMPARE(m_fixture->service.currentTime(), earlier.addSecs(5));
        QCoreApplication::processEvents();
        QCOMPARE(m_item->labels.size(), before);
    }

    void aPressMakesThePopoverReady()
    {
        Q_EMIT m_item->pressed();
        QCOMPARE(m_popover->calls, (QStringList{u"prepare"_s}));
        QVERIFY(!m_popover->shown);
    }

    void fiveMinutesAfterItHasClosedThePopoversContentIsLetGo()
    {
        Q_EMIT m_item->clicked({});
        m_fixture->clock.advance(10min);
        QVERIFY(!m_popover->calls.contains(u"release"_s));
        m_popover->close();
        m_fixture->clock.advance(4min);
        // Used again meanwhile, it is kept as long again.
        Q_EMIT m_item->clicked({});
        m_fixture->clock.advance(3min);
        m_popover->close();
        m_fixture->clock.advance(5min - 1s);
        QVERIFY(!m_popover->calls.contains(u"release"_s));
        m_fixture->clock.advance(1s);
        QCOMPARE(m_popover->calls.count(u"release"_s), 1);
        m_fixture->clock.advance(1h);
        QCOMPARE(m_popover->calls.count(u"release"_s), 1);
    }

    void whatAPressHasMadeReadyInVainIsLetGo()
    {
        Q_EMIT m_item->pressed();
        m_fixture->clock.advance(5min);
        QCOMPARE(m_popover->calls, (QStringList{u"prepare"_s, u"release"_s}));
    }

    void aPopoverThatIsShownIsNotLetGo()
    {
        Q_EMIT m_item->pressed();
        Q_EMIT m_item->clicked({});
        m_fixture->clock.advance(1h);
        QVERIFY(!m_popover->calls.contains(u"release"_s));
    }

    void aSettingRebuildsTheLabel()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        m_fixture->service.setShowWeeklyInMenuBar(false);
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u" G: 80%"_s);
        m_fixture->service.setShowIconInMenuBar(false);
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u"G: 80%"_s);
        QVERIFY(!m_item->labels.last().image.has_value());
    }

    void withAllModelsSwitchedOffTheIconAloneIsLeft()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        QTRY_COMPARE(m_item->labels.last().plainTitle(), u" 5h: 80% · W: 55%"_s);
        m_fixture->service.setShowGeminiInToolbar(false);
        m_fixture->service.setShowArgonInToolbar(false);
        m_fixture->service.setShowClaudeInToolbar(false);
        QTRY_COMPARE(m_item->labels.last().plainTitle(), QString());
        QVERIFY(m_item->labels.last().image.has_value());
    }

    void aClickOpensThePopoverAtTheItemAndGivesItTheKeyboard()
    {
        const platform::ItemAnchor anchor{
            .bounds = QRect(10, 0, 90, 22), .pointer = QPoint(20, 10)};
        Q_EMIT m_item->clicked(anchor);
        QCOMPARE(m_popover->calls, (QStringList{u"show"_s, u"makeKey"_s}));
        QCOMPARE(m_popover->anchors.first().bounds, anchor.bounds);
        QCOMPARE(m_popover->anchors.first().pointer, anchor.pointer);
    }

    void aClickWhileThePopoverIsOpenClosesItAndItStaysClosed()
    {
        Q_EMIT m_item->clicked({});
        // The press of that click closes a transient popover; its release comes to us as a click.
        m_popover->close();
        m_fixture->clock.advance(120ms);
        Q_EMIT m_item->clicked({});
        QVERIFY(!m_popover->shown);
    }

    void twoClicksOpenAndCloseAndAThirdJustAfterDoesNothing()
    {
        Q_EMIT m_item->clicked({});
        QVERIFY(m_popover->shown);
        m_fixture->clock.advance(300ms);
        Q_EMIT m_item->clicked({});
        QVERIFY(!m_popover->shown);
        m_fixture->clock.advance(100ms);
        Q_EMIT m_item->clicked({});
        QVERIFY(!m_popover->shown);
        m_fixture->clock.advance(150ms);
        Q_EMIT m_item->clicked({});
        QVERIFY(m_popover->shown);
    }

    void aClickIsNoneUntilAQuarterOfASecondAfterTheClose()
    {
        Q_EMIT m_item->clicked({});
        m_popover->close();
        m_fixture->clock.advance(249ms);
        Q_EMIT m_item->clicked({});
        QVERIFY(!m_popover->shown);
        m_fixture->clock.advance(1ms);
        Q_EMIT m_item->clicked({});
        QVERIFY(m_popover->shown);
    }

    void aClockSetBackDoesNotLockThePopover()
    {
        Q_EMIT m_item->clicked({});
        m_popover->close();
        m_fixture->clock.setNow(m_fixture->clock.now().addSecs(-3600));
        Q_EMIT m_item->clicked({});
        QVERIFY(m_popover->shown);
    }

    void withoutAButtonNothingIsDrawnAndNothingOpens()
    {
        m_item->button = false;
        const auto before = m_item->labels.size();
        m_fixture->service.setShowIconInMenuBar(false);
        QCoreApplication::processEvents();
        QCOMPARE(m_item->labels.size(), before);
        Q_EMIT m_item->clicked({});
        QVERIFY(!m_popover->shown);
    }

    void theMenusRefreshRefreshes()
    {
        m_fixture->fail();
        Q_EMIT m_item->refreshRequested();
        QVERIFY(m_fixture->fetching.isWaiting());
    }

    void theMenusQuitIsPassedOn()
    {
        int asked = 0;
        connect(m_controller.get(), &app::StatusBarController::quitRequested, this,
            [&asked] { ++asked; });
        Q_EMIT m_item->quitRequested();
        QCOMPARE(asked, 1);
    }

    void theDescriptionHasALineForEachBucketInTheOrderOfThePopover()
    {
        m_fixture->answer(summaryWith(0.8, 0.555));
        const auto description = app::describeItem(m_fixture->service);
        QCOMPARE(description.title, u"✦ 5h: 80% · W: 56%"_s);
        QCOMPARE(description.lines,
            (QStringList{
                u"Gemini Models, Five hours: 80.0%"_s, u"Gemini Models, Weekly limit: 55.5%"_s}));
    }

    void theDescriptionCountsDownInWholeMinutes()
    {
        auto summary = summaryWith(0.8, 0.55);
        summary.groups[0].buckets[0].resetTime = inSeconds(4 * 24h + 5h);
        summary.groups[0].buckets[1].resetTime = inSeconds(12min + 30s);
        m_fixture->answer(summary);
        QTRY_COMPARE(m_item->descriptions.last().lines,
            (QStringList{u"Gemini Models, Five hours: 80.0%, resets in 12m"_s,
                u"Gemini Models, Weekly limit: 55.0%, resets in 4d 5h"_s}));
        const auto labels = m_item->labels.size();
        const auto described = m_item->descriptions.size();
        for (int second = 0; second < 59; ++second)
            m_fixture->clock.advance(1s);
        QCOMPARE(m_item->descriptions.size(), described);
        m_fixture->clock.advance(2s);
        QCOMPARE(m_item->descriptions.size(), described + 1);
        QCOMPARE(m_item->descriptions.last().lines.first(),
            u"Gemini Models, Five hours: 80.0%, resets in 11m"_s);
        QCOMPARE(m_item->labels.size(), labels);
    }

    void afterAJumpOfTheClockTheDescriptionCountsFromTheNewTime_data()
    {
        QTest::addColumn<bool>("isWatched");
        QTest::newRow("nobody looks") << false;
        QTest::newRow("the popover is open") << true;
    }
    void afterAJumpOfTheClockTheDescriptionCountsFromTheNewTime()
    {
        QFETCH(const bool, isWatched);
        std::optional<service::QuotaService::TimeWatch> watch;
        if (isWatched)
            watch.emplace(m_fixture->service);
        auto summary = summaryWith(0.8, 0.55);
        summary.groups[0].buckets[1].resetTime = inSeconds(10h + 30s);
        m_fixture->answer(summary);
        QTRY_COMPARE(m_item->descriptions.last().lines.first(),
            u"Gemini Models, Five hours: 80.0%, resets in 10h 0m"_s);
        // A night's sleep, after which the timers go on and the resume refreshes.
        m_fixture->clock.setNow(m_fixture->clock.now().addSecs(std::chrono::seconds(8h).count()));
        m_fixture->service.refresh();
        m_fixture->answer(summary);
        QTRY_COMPARE(m_item->descriptions.last().lines.first(),
            u"Gemini Models, Five hours: 80.0%, resets in 2h 0m"_s);
    }

    void aResetThatHasPassedIsNotCountedTo()
    {
        auto summary = summaryWith(0.8, 0.55);
        summary.groups[0].buckets[1].resetTime = inSeconds(0s);
        m_fixture->answer(summary);
        QTRY_COMPARE(
            m_item->descriptions.last().lines.first(), u"Gemini Models, Five hours: 80.0%"_s);
    }

    void theTitleOfWhatIsOldSaysSinceWhen()
    {
        m_fixture->answer(summaryWith(0.8, 0.55));
        const QString title = u"✦ 5h: 80% · W: 55%"_s;
        QCOMPARE(app::describeItem(m_fixture->service).title, title);
        const auto updated = m_fixture->service.lastUpdated();
        QVERIFY(updated.has_value());
        m_fixture->clock.advance(5s);
        m_fixture->service.refresh();
        m_fixture->fail({.kind = discovery::DaemonError::Kind::noDaemonFound});
        QCOMPARE(app::describeItem(m_fixture->service).title,
            title + " (last update: "_L1 + DateStyles::user().dateAbbreviatedTimeStandard(*updated)
                + u')');
    }

    void theDescriptionSaysWhatIsWrong()
    {
        QCOMPARE(app::describeItem(m_fixture->service).lines, (QStringList{u"Connecting..."_s}));
        m_fixture->fail({.kind = discovery::DaemonError::Kind::noDaemonFound});
        QCOMPARE(app::describeItem(m_fixture->service).lines,
            (QStringList{m_fixture->service.connectionStatus().displayText()}));
    }

    void aDescriptionThatFitsIsWhole()
    {
        m_fixture->answer(summaryOf(platform::ItemDescription::mostLines));
        const auto lines = app::describeItem(m_fixture->service).lines;
        QCOMPARE(lines.size(), platform::ItemDescription::mostLines);
        QCOMPARE(lines.first(), u"Gemini Models, Bucket 0: 50.0%"_s);
        QCOMPARE(lines.last(), u"Gemini Models, Bucket 39: 50.0%"_s);
    }

    void ofTooManyBucketsTheDescriptionHasTheFirst()
    {
        m_fixture->answer(summaryOf(20'000));
        const auto lines = app::describeItem(m_fixture->service).lines;
        QCOMPARE(lines.size(), platform::ItemDescription::mostLines);
        QCOMPARE(lines.at(38), u"Gemini Models, Bucket 38: 50.0%"_s);
        QCOMPARE(lines.at(39), u"…"_s);
    }

    void theDescriptionSaysWhatIsWrongHoweverManyBucketsThereAre_data()
    {
        QTest::addColumn<int>("buckets");
        QTest::addColumn<QStringList>("lastButOne");
        QTest::newRow("they fit") << 39 << QStringList{u"Gemini Models, Bucket 38: 50.0%"_s};
        QTest::newRow("one too many") << 40 << QStringList{u"…"_s};
        QTest::newRow("far too many") << 20'000 << QStringList{u"…"_s};
    }
    void theDescriptionSaysWhatIsWrongHoweverManyBucketsThereAre()
    {
        QFETCH(const int, buckets);
        QFETCH(const QStringList, lastButOne);
        m_fixture->answer(summaryOf(buckets));
        m_fixture->service.refresh();
        m_fixture->fail({.kind = discovery::DaemonError::Kind::noDaemonFound});
        const auto lines = app::describeItem(m_fixture->service).lines;
        QCOMPARE(lines.size(), platform::ItemDescription::mostLines);
        QCOMPARE(lines.mid(38, 1), lastButOne);
        QCOMPARE(lines.last(), m_fixture->service.connectionStatus().displayText());
    }

    void aLineOfLongNamesStillEndsInThePercentage()
    {
        auto summary = summaryOf(1);
        summary.groups[0].displayName = u"Gemini\n"_s.repeated(100'000);
        summary.groups[0].buckets[0].displayName = u"🟢"_s.repeated(1'000'000);
        m_fixture->answer(summary);
        const auto lines = app::describeItem(m_fixture->service).lines;
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().size() <= platform::ItemDescription::longestLine);
        QVERIFY(lines.first().startsWith(u"Gemini Gemini "_s));
        QVERIFY(lines.first().endsWith(u"🟢…: 50.0%"_s));
        QVERIFY(lines.first().isValidUtf16());
    }

    void aTextOfWhatIsWrongIsOneLine()
    {
        m_fixture->fail({.kind = discovery::DaemonError::Kind::daemonUnreachable,
            .message = u"wrong\n"_s.repeated(100'000)});
        const auto lines = app::describeItem(m_fixture->service).lines;
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().size() <= platform::ItemDescription::longestLine);
        QVERIFY(lines.first().contains(u"wrong wrong"_s));
    }

private:
    /// The moment so much later, as a daemon writes it.
    QString inSeconds(std::chrono::seconds time) const
    {
        return m_fixture->clock.now().addSecs(time.count()).toUTC().toString(Qt::ISODate);
    }

    std::optional<test::ServiceFixture> m_fixture;
    FakeStatusItem *m_item = nullptr;
    FakePopover *m_popover = nullptr;
    std::unique_ptr<app::StatusBarController> m_controller;
};

QTEST_GUILESS_MAIN(StatusBarControllerTest)
#include "status_bar_controller_test.moc"
