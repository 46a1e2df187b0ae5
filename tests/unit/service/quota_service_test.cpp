#include "support/quota_samples.h"
#include "support/service_fixture.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace brimwatch;
using namespace brimwatch::service;
using discovery::DaemonError;
using discovery::DaemonInfo;

namespace {

/// What happened, in its order.
using Log = QStringList;

class LoggedLaunchAtLogin final : public LaunchAtLoginService {
public:
    LoggedLaunchAtLogin(platform::LoginItem &loginItem, Log &log)
        : LaunchAtLoginService(loginItem)
        , m_log(log)
    {
    }

protected:
    void connectNotify(const QMetaMethod & /*signal*/) override { m_log += u"subscribe"_s; }

private:
    Log &m_log;
};

const QDateTime start{QDate(2026, 11, 16), QTime(4, 59, 24), Qt::UTC};

model::QuotaSummary sampleSummary(double fiveHours = 0.8)
{
    return {.groups = {model::sampleGroup(u"Gemini Models"_s, fiveHours, 0.55),
                model::sampleGroup(u"Argon Models"_s, 0.12, 0.3),
                model::sampleGroup(u"Claude & GPT Models"_s, 1.0, 0.64)}};
}

FetchResult success(const DaemonInfo &daemon = {.httpPort = 42},
    const model::QuotaSummary &summary = sampleSummary())
{
    return FetchedQuota{.summary = summary, .daemon = daemon};
}

FetchResult noDaemon(const std::optional<QDateTime> &last = {})
{
    return fail(DaemonError{.kind = DaemonError::Kind::noDaemonFound, .lastUpdate = last});
}

const QString noDaemonText
    = u"No running Antigravity daemon found. Make sure Antigravity is open (Last update: Never)."_s;

} // namespace

class QuotaServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_parts.emplace(start);
        m_login.emplace(m_parts->loginItem, m_parts->log);
    }
    void cleanup()
    {
        m_service.reset();
        m_login.reset();
        m_parts.reset();
    }

    // Construction and end

    void theServiceBeginsInItsOrderAndFetchesWithTheNextTurn()
    {
        makeService();
        QCOMPARE(
            m_parts->log, Log({u"timer 60"_s, u"permission"_s, u"subscribe"_s, u"subscribe"_s}));
        QVERIFY(!m_service->isRefreshing());
        QTRY_COMPARE(m_parts->fetching.asked.size(), size_t(1));
        QVERIFY(m_service->isRefreshing());
        QCoreApplication::processEvents();
        QCOMPARE(m_parts->fetching.asked.size(), size_t(1));
    }

    void theServiceBeginsEmptyAndConnecting()
    {
        makeService();
        QVERIFY(!m_service->quotaSummary());
        QVERIFY(!m_service->activeDaemon());
        QVERIFY(m_service->connectionStatus().isConnecting());
        QVERIFY(!m_service->lastUpdated());
        QVERIFY(!m_service->errorMessage());
        QCOMPARE(m_service->currentTime(), start);
        QCOMPARE(m_service->menuBarTitle(), u"✦ ..."_s);
    }

    void theTimersEndWithTheService()
    {
        makeService();
        m_service.reset();
        QVERIFY(m_parts->clock.periods().empty());
    }

    void aServiceWithoutAlertsAndLoginItemWorks()
    {
        QuotaService service({.clock = m_parts->clock,
            .fetching = m_parts->fetching,
            .settings = m_parts->settings});
        QTRY_COMPARE(m_parts->fetching.asked.size(), size_t(1));
        m_parts->fetching.answer(success());
        QTRY_VERIFY(!service.isRefreshing());
        QVERIFY(service.quotaSummary());
        QVERIFY(!service.launchAtLogin());
        service.setLaunchAtLogin(true);
        QVERIFY(!service.launchAtLogin());
    }

    void anAnswerAfterTheServiceIsGoneIsHarmless()
    {
        makeServiceThatFetches();
        m_service.reset();
        m_parts->fetching.answer(success({.httpPort = 42}, sampleSummary(0.1)));
        QCoreApplication::processEvents();
        QVERIFY(!m_parts->log.contains(u"notification"_s));
    }

    // Refreshes

    void aSuccessIsPublishedInItsOrder()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(noDaemon());
        QTRY_VERIFY(!m_service->isRefreshing());
        m_parts->clock.setNow(start.addSecs(30));
        m_service->refresh();

        record();
        m_parts->fetching.answer(success({.httpPort = 42}, sampleSummary(0.1)));
        QTRY_VERIFY(!m_service->isRefreshing());
        QCOMPARE(m_parts->log,
            Log({
                u"will: refreshing offline"_s,
                u"quotaSummary: summary refreshing offline"_s,
                u"will: summary refreshing offline"_s,
                u"activeDaemon: summary daemon refreshing offline"_s,
                u"will: summary daemon refreshing offline"_s,
                u"connectionStatus: summary daemon refreshing connected"_s,
                u"will: summary daemon refreshing connected"_s,
                u"lastUpdated: summary daemon updated refreshing connected"_s,
                u"will: summary daemon updated refreshing connected"_s,
                u"isRefreshing: summary daemon updated connected"_s,
                u"notification"_s,
            }));
        QCOMPARE(m_service->lastUpdated(), start.addSecs(30));
        QCOMPARE(m_service->quotaSummary(), sampleSummary(0.1));
    }

    void aFailureIsPublishedInItsOrder()
    {
        makeServiceThatFetches();
        record();
        m_parts->fetching.answer(noDaemon());
        QTRY_VERIFY(m_service->connectionStatus().isOffline());
        QCOMPARE(m_parts->log,
            Log({
                u"will: refreshing connecting"_s,
                u"isRefreshing: connecting"_s,
                u"will: connecting"_s,
                u"errorMessage: error connecting"_s,
                u"will: error connecting"_s,
                u"connectionStatus: error offline"_s,
            }));
        QCOMPARE(m_service->errorMessage(), noDaemonText);
        QCOMPARE(m_service->connectionStatus(), ConnectionStatus::offline(noDaemonText));
        QCOMPARE(m_service->connectionStatus().displayText(), noDaemonText);
        QCOMPARE(m_service->menuBarTitle(), u"✦ Gemini"_s);
    }

    void aRefreshClearsTheErrorAndLeavesTheConnectionAsItWas()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(noDaemon());
        QTRY_VERIFY(m_service->connectionStatus().isOffline());
        record();
        m_service->refresh();
        QCOMPARE(m_parts->log,
            Log({
                u"will: error offline"_s,
                u"isRefreshing: error refreshing offline"_s,
                u"will: error refreshing offline"_s,
                u"errorMessage: refreshing offline"_s,
                u"fetch"_s,
            }));
    }

    void aFailureAfterASuccessKeepsTheLastGoodData()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_service->connectionStatus().isConnected());
        m_parts->clock.setNow(start.addSecs(60));
        m_service->refresh();
        QCOMPARE(m_parts->fetching.asked.back(), start);
        m_parts->fetching.answer(noDaemon(start));
        QTRY_VERIFY(m_service->connectionStatus().isOffline());
        QCOMPARE(m_service->quotaSummary(), sampleSummary());
        QCOMPARE(m_service->activeDaemon(), (DaemonInfo{.httpPort = 42}));
        QCOMPARE(m_service->lastUpdated(), start);
        const QString text = u"No running Antigravity daemon found. Make sure Antigravity is open "
                             "(Last update: Nov 16, 2026 at 4:59:24 AM)."_s;
        QCOMPARE(m_service->errorMessage(), text);
        QCOMPARE(m_service->connectionStatus(), ConnectionStatus::offline(text));
    }

    void theLastUpdateIsToldInTheTimeZoneOfNow()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_service->lastUpdated());
        // After a flight.
        constexpr int nineHours = 9 * 3600;
        m_parts->clock.setNow(start.addSecs(60).toOffsetFromUtc(nineHours));
        QCOMPARE(m_service->lastUpdated(), start);
        QCOMPARE(m_service->lastUpdated()->offsetFromUtc(), nineHours);
    }

    void theChangesOfOneTurnAreToldOnceWhenAllAreStored()
    {
        makeServiceThatFetches();
        QCoreApplication::processEvents();
        record();
        connect(&*m_service, &QuotaService::stateChanged, this,
            [this] { m_parts->log += u"state:"_s + readable(); });
        connect(&*m_service, &QuotaService::refreshFinished, this,
            [this] { m_parts->log += u"finished:"_s + readable(); });
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_parts->log.contains(u"finished: summary daemon updated connected"_s));
        QCOMPARE(m_parts->log.filter(u"state:"_s),
            QStringList{u"state: summary daemon updated connected"_s});
        QCOMPARE(m_parts->log.mid(m_parts->log.size() - 2),
            Log({u"state: summary daemon updated connected"_s,
                u"finished: summary daemon updated connected"_s}));

        m_service->refresh();
        m_parts->fetching.answer(noDaemon());
        m_parts->log.clear();
        QTRY_VERIFY(m_parts->log.contains(u"finished: summary daemon updated error offline"_s));
        QCOMPARE(m_parts->log.filter(u"state:"_s),
            QStringList{u"state: summary daemon updated error offline"_s});

        m_parts->log.clear();
        m_service->setShowIconInMenuBar(false);
        m_service->setShowWeeklyInMenuBar(false);
        QVERIFY(m_parts->log.filter(u"state:"_s).isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(m_parts->log.filter(u"state:"_s).size(), 1);
    }

    void theTimeAndTheRefreshThatBeginsAreNoChangeOfTheState()
    {
        makeServiceThatFetches();
        const QuotaService::TimeWatch watch(*m_service);
        QSignalSpy told(&*m_service, &QuotaService::stateChanged);
        QSignalSpy ticks(&*m_service, &QuotaService::currentTimeChanged);
        QVERIFY(m_service->isRefreshing());
        m_parts->clock.advance(5s);
        QCoreApplication::processEvents();
        QCOMPARE(ticks.count(), 5);
        QCOMPARE(told.count(), 0);
        QCOMPARE(m_service->revision(), 0U);
    }

    void aRefreshThatChangesNothingStillFinishes()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_service->quotaSummary());
        QCoreApplication::processEvents();
        QSignalSpy told(&*m_service, &QuotaService::stateChanged);
        QSignalSpy finished(&*m_service, &QuotaService::refreshFinished);
        const auto *derived = m_service->toolbarStatItems().constData();
        m_parts->clock.advance(5s);
        m_service->refresh();
        m_parts->fetching.answer(success());
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(told.count(), 0);
        QCOMPARE(m_service->toolbarStatItems().constData(), derived);
        QCOMPARE(m_service->lastUpdated(), start.addSecs(5));
    }

    void aRefreshThatFailsAsBeforeChangesNoState()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(noDaemon());
        QTRY_VERIFY(m_service->connectionStatus().isOffline());
        QCoreApplication::processEvents();
        QSignalSpy told(&*m_service, &QuotaService::stateChanged);
        QSignalSpy finished(&*m_service, &QuotaService::refreshFinished);
        m_service->refresh();
        m_parts->fetching.answer(noDaemon());
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(told.count(), 0);
        QCOMPARE(m_service->errorMessage(), noDaemonText);
    }

    void theConnectionNamesThePortThatWasAsked_data()
    {
        QTest::addColumn<std::optional<std::int64_t>>("httpPort");
        QTest::addColumn<std::optional<std::int64_t>>("httpsPort");
        QTest::addColumn<QString>("text");
        using Port = std::optional<std::int64_t>;
        QTest::newRow("plain") << Port(42) << Port() << u"Connected (Port 42)"_s;
        QTest::newRow("both") << Port(42) << Port(43) << u"Connected (Port 42)"_s;
        QTest::newRow("secure") << Port() << Port(43) << u"Connected (Port 43)"_s;
        QTest::newRow("none") << Port() << Port() << u"Connected (Port 0)"_s;
    }
    void theConnectionNamesThePortThatWasAsked()
    {
        QFETCH(std::optional<std::int64_t>, httpPort);
        QFETCH(std::optional<std::int64_t>, httpsPort);
        QFETCH(QString, text);
        makeServiceThatFetches();
        m_parts->fetching.answer(success({.httpsPort = httpsPort, .httpPort = httpPort}));
        QTRY_COMPARE(m_service->connectionStatus().displayText(), text);
    }

    void theDotHasAColourForEachState()
    {
        QCOMPARE(ConnectionStatus::connecting().displayText(), u"Connecting..."_s);
        QCOMPARE(ConnectionStatus::connecting().statusDotColor(), model::ColorToken::SystemOrange);
        QCOMPARE(ConnectionStatus::offline(u"x"_s).statusDotColor(), model::ColorToken::SystemRed);
        QCOMPARE(ConnectionStatus::connected(1).statusDotColor(), model::ColorToken::SystemGreen);
        QVERIFY(ConnectionStatus::connected(1) != ConnectionStatus::connected(2));
        QVERIFY(ConnectionStatus::offline(u"x"_s) != ConnectionStatus::offline(u"y"_s));
    }

    void aRefreshDuringAnotherIsDropped()
    {
        makeServiceThatFetches();
        m_service->refresh();
        m_parts->clock.advance(5min);
        QCOMPARE(m_parts->fetching.asked.size(), size_t(1));
        m_parts->fetching.answer(success());
        QTRY_VERIFY(!m_service->isRefreshing());
        QCoreApplication::processEvents();
        QCOMPARE(m_parts->fetching.asked.size(), size_t(1));
        m_service->refresh();
        QCOMPARE(m_parts->fetching.asked.size(), size_t(2));
    }

    // Timers

    void theClockTicksEachSecondForThoseWhoWatch()
    {
        makeService();
        const QuotaService::TimeWatch watch(*m_service);
        QSignalSpy ticks(&*m_service, &QuotaService::currentTimeChanged);
        QSignalSpy announced(&*m_service, &QuotaService::objectWillChange);
        m_parts->clock.advance(999ms);
        QCOMPARE(ticks.count(), 0);
        m_parts->clock.advance(1ms);
        QCOMPARE(ticks.count(), 1);
        QCOMPARE(announced.count(), 1);
        QCOMPARE(m_service->currentTime(), start.addSecs(1));
        m_parts->clock.advance(9s);
        QCOMPARE(ticks.count(), 10);
    }

    void withoutAWatcherNothingTicksAndTheTimeIsThatOfTheClock()
    {
        makeService();
        QSignalSpy announced(&*m_service, &QuotaService::objectWillChange);
        m_parts->clock.advance(5500ms);
        QCOMPARE(announced.count(), 0);
        QCOMPARE(m_parts->clock.periods(), std::vector<std::chrono::milliseconds>{60s});
        QCOMPARE(m_service->currentTime(), start.addMSecs(5500));
    }

    void theFirstWatcherBringsTheTickAtOnceAndTheLastEndsIt()
    {
        makeService();
        QSignalSpy ticks(&*m_service, &QuotaService::currentTimeChanged);
        m_parts->clock.advance(5s);
        std::optional<QuotaService::TimeWatch> first(std::in_place, *m_service);
        QCOMPARE(ticks.count(), 1);
        QCOMPARE(m_service->currentTime(), start.addSecs(5));

        std::optional<QuotaService::TimeWatch> second(std::in_place, *m_service);
        QCOMPARE(ticks.count(), 1);
        first.reset();
        m_parts->clock.advance(2s);
        QCOMPARE(ticks.count(), 3);
        second.reset();
        m_parts->clock.advance(5s);
        QCOMPARE(ticks.count(), 3);
        QCOMPARE(m_parts->clock.periods(), std::vector<std::chrono::milliseconds>{60s});

        // On return, at once.
        first.emplace(*m_service);
        QCOMPARE(ticks.count(), 4);
        QCOMPARE(m_service->currentTime(), start.addSecs(12));
    }

    void afterAJumpTheTimeIsRight_data()
    {
        QTest::addColumn<std::chrono::seconds>("jump");
        QTest::newRow("forward") << std::chrono::seconds(2h);
        QTest::newRow("back") << -std::chrono::seconds(2h);
    }
    void afterAJumpTheTimeIsRight()
    {
        QFETCH(std::chrono::seconds, jump);
        makeService();
        m_parts->clock.setNow(start.addSecs(jump.count()));
        QCOMPARE(m_service->currentTime(), start.addSecs(jump.count()));

        // Watched, with the next tick.
        const QuotaService::TimeWatch watch(*m_service);
        QSignalSpy ticks(&*m_service, &QuotaService::currentTimeChanged);
        m_parts->clock.setNow(start);
        m_parts->clock.advance(1s);
        QCOMPARE(ticks.count(), 1);
        QCOMPARE(m_service->currentTime(), start.addSecs(1));
    }

    void aRefreshComesWithEachInterval()
    {
        makeServiceThatFetches();
        for (size_t i = 2; i < 5; ++i) {
            m_parts->fetching.answer(success());
            QTRY_VERIFY(!m_service->isRefreshing());
            m_parts->clock.advance(59999ms);
            QCOMPARE(m_parts->fetching.asked.size(), i - 1);
            m_parts->clock.advance(1ms);
            QCOMPARE(m_parts->fetching.asked.size(), i);
        }
    }

    void theIntervalHasBoundsWhenItIsApplied_data()
    {
        QTest::addColumn<double>("stored");
        QTest::addColumn<std::chrono::milliseconds>("applied");
        constexpr std::chrono::milliseconds longest{std::numeric_limits<int>::max()};
        QTest::newRow("five seconds") << 5.0 << std::chrono::milliseconds(10s);
        QTest::newRow("ten seconds") << 10.0 << std::chrono::milliseconds(10s);
        QTest::newRow("half seconds") << 10.5 << 10500ms;
        QTest::newRow("five minutes") << 300.0 << std::chrono::milliseconds(300s);
        QTest::newRow("zero") << 0.0 << std::chrono::milliseconds(10s);
        QTest::newRow("negative") << -1e300 << std::chrono::milliseconds(10s);
        QTest::newRow("a year") << 31536000.0 << longest;
        QTest::newRow("huge") << 1e300 << longest;
        QTest::newRow("no number") << std::nan("") << std::chrono::milliseconds(60s);
        QTest::newRow("infinity") << std::numeric_limits<double>::infinity()
                                  << std::chrono::milliseconds(60s);
    }
    void theIntervalHasBoundsWhenItIsApplied()
    {
        QFETCH(double, stored);
        QFETCH(std::chrono::milliseconds, applied);
        makeService();
        m_service->updateRefreshInterval(stored);
        QCOMPARE(m_parts->clock.periods(), std::vector<std::chrono::milliseconds>{applied});
        QCOMPARE(m_service->refreshInterval(), std::isfinite(stored) ? stored : 60.0);
    }

    void anUpdatedIntervalStartsTheTimerAnew()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(!m_service->isRefreshing());
        m_parts->clock.advance(50s);
        m_parts->log.clear();
        m_service->updateRefreshInterval(60);
        QCOMPARE(m_parts->log, Log({u"end of timer 60"_s, u"timer 60"_s}));
        m_parts->clock.advance(59s);
        QCOMPARE(m_parts->fetching.asked.size(), size_t(1));
        m_parts->clock.advance(1s);
        QCOMPARE(m_parts->fetching.asked.size(), size_t(2));
    }

    void anIntervalStoredByAnotherWayLeavesTheTimerAlone()
    {
        makeService();
        m_parts->log.clear();
        m_service->setRefreshInterval(300);
        QCOMPARE(m_service->refreshInterval(), 300.0);
        QVERIFY(m_parts->log.isEmpty());
    }

    // Settings

    void everySettingHasItsKeyItsDefaultAndAnnouncesItsChange_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QVariant>("defaultValue");
        QTest::addColumn<QVariant>("other");
        QTest::newRow("1") << QByteArray("refreshInterval") << QVariant(60.0) << QVariant(120.0);
        QTest::newRow("2") << QByteArray("showPercentageInMenuBar") << QVariant(true)
                           << QVariant(false);
        QTest::newRow("3") << QByteArray("showFiveHourInMenuBar") << QVariant(true)
                           << QVariant(false);
        QTest::newRow("4") << QByteArray("showWeeklyInMenuBar") << QVariant(true)
                           << QVariant(false);
        QTest::newRow("5") << QByteArray("showIconInMenuBar") << QVariant(true) << QVariant(false);
        QTest::newRow("6") << QByteArray("useColoredStatusIndicator") << QVariant(true)
                           << QVariant(false);
        QTest::newRow("7") << QByteArray("notifyOnLowQuota") << QVariant(true) << QVariant(false);
        QTest::newRow("8") << QByteArray("lowQuotaThreshold") << QVariant(20.0) << QVariant(35.0);
        QTest::newRow("9") << QByteArray("showGeminiInToolbar") << QVariant(true)
                           << QVariant(false);
        QTest::newRow("10") << QByteArray("showArgonInToolbar") << QVariant(false)
                            << QVariant(true);
        QTest::newRow("11") << QByteArray("showClaudeInToolbar") << QVariant(false)
                            << QVariant(true);
        QTest::newRow("12") << QByteArray("toolbarLabelStyle") << QVariant(u"letter"_s)
                            << QVariant(u"icon"_s);
    }
    void everySettingHasItsKeyItsDefaultAndAnnouncesItsChange()
    {
        QFETCH(QByteArray, key);
        QFETCH(QVariant, defaultValue);
        QFETCH(QVariant, other);
        const QTemporaryDir folder;
        const QString file = folder.filePath(u"settings.conf"_s);
        startOn(file);
        QCOMPARE(m_service->property(key.constData()), defaultValue);

        QVariantList seen;
        const auto read = [&] { seen += m_service->property(key.constData()); };
        connect(&*m_service, &QuotaService::objectWillChange, this, read);
        const auto &meta = *m_service->metaObject();
        const auto notify = meta.property(meta.indexOfProperty(key.constData())).notifySignal();
        QSignalSpy after(&*m_service, notify);

        QVERIFY(m_service->setProperty(key.constData(), other));
        QCOMPARE(seen, QVariantList{defaultValue}); // Just before.
        QCOMPARE(after.count(), 1);
        QCOMPARE(m_service->property(key.constData()), other);

        QVERIFY(m_service->setProperty(key.constData(), other));
        QCOMPARE(seen.size(), 1);
        QCOMPARE(after.count(), 1);

        // The same after a restart of the program.
        startOn(file);
        QCOMPARE(m_service->property(key.constData()), other);
    }

    void aNumberThatIsNoneIsTheDefault()
    {
        makeService();
        m_service->setLowQuotaThreshold(35);
        m_service->setLowQuotaThreshold(std::nan(""));
        QCOMPARE(m_service->lowQuotaThreshold(), 20.0);
        QSignalSpy announced(&*m_service, &QuotaService::objectWillChange);
        m_service->setLowQuotaThreshold(std::numeric_limits<double>::infinity());
        QCOMPARE(announced.count(), 0);
    }

    // The login item

    void theLoginItemIsReadWrittenAndItsChangesAreAnnounced()
    {
        makeService();
        QList<bool> before;
        QList<bool> after;
        connect(&*m_service, &QuotaService::objectWillChange, this,
            [&] { before += m_service->launchAtLogin(); });
        connect(&*m_service, &QuotaService::launchAtLoginChanged, this,
            [&] { after += m_service->launchAtLogin(); });
        m_service->setLaunchAtLogin(true);
        QVERIFY(m_login->isEnabled());
        // requiresApproval is announced first.
        QCOMPARE(before, QList({false, false}));
        QCOMPARE(after, QList({false, true}));
        m_login->setEnabled(false);
        QVERIFY(!m_service->launchAtLogin());
        QCOMPARE(after, QList({false, true, true, false}));
    }

    // What the label is made of

    void theLabelFollowsTheSummaryAndTheSettings()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_service->quotaSummary());
        QCOMPARE(m_service->menuBarTitle(), u"✦ 5h: 80% · W: 55%"_s);
        QCOMPARE(m_service->lowestSelectedBucket()->remainingFraction, 0.55);
        QCOMPARE(m_service->menuBarTint(), model::ColorToken::SystemOrange);
        QCOMPARE(m_service->menuBarNSTint(), model::ColorToken::SystemOrange);

        m_service->setShowIconInMenuBar(false);
        m_service->setShowArgonInToolbar(true);
        m_service->setShowClaudeInToolbar(true);
        m_service->setToolbarLabelStyle(u"shortName"_s);
        m_service->setShowWeeklyInMenuBar(false);
        QCOMPARE(m_service->menuBarTitle(), u"Gem: 80% · Arg: 12% · Cla: 100%"_s);
        QCOMPARE(m_service->lowestSelectedBucket()->remainingFraction, 0.12);
        QCOMPARE(m_service->menuBarTint(), model::ColorToken::SystemRed);

        m_service->setShowGeminiInToolbar(false);
        m_service->setShowArgonInToolbar(false);
        m_service->setShowClaudeInToolbar(false);
        QCOMPARE(m_service->menuBarTitle(), u"✦ Gemini"_s);
        QVERIFY(m_service->toolbarStatItems().isEmpty());
        QCOMPARE(m_service->lowestSelectedBucket()->remainingFraction, 0.55);
    }

    void whatTheLabelReadsIsDerivedOncePerRevision()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(!m_service->isRefreshing());
        // A list that is kept shares its memory with no other derivation.
        const auto items = m_service->toolbarStatItems();
        m_service->menuBarTitle();
        m_service->menuBarTint();
        m_service->lowestSelectedBucket();
        m_service->labelInput();
        m_parts->clock.advance(5s);
        m_service->refresh();
        QCOMPARE(m_service->toolbarStatItems().constData(), items.constData());

        m_service->setShowIconInMenuBar(false);
        QVERIFY(m_service->toolbarStatItems().constData() != items.constData());
        QCOMPARE(m_service->toolbarStatItems(), items);
        QCOMPARE(m_service->menuBarTitle(), u"5h: 80% · W: 55%"_s);
    }

    void aReaderOfTheLastMomentBeforeAChangeLeavesNothingStale()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_service->quotaSummary());
        QStringList before;
        QStringList after;
        connect(&*m_service, &QuotaService::objectWillChange, this,
            [&] { before += m_service->menuBarTitle(); });
        connect(&*m_service, &QuotaService::showIconInMenuBarChanged, this,
            [&] { after += m_service->menuBarTitle(); });
        m_service->setShowIconInMenuBar(false);
        QCOMPARE(before, QStringList{u"✦ 5h: 80% · W: 55%"_s});
        QCOMPARE(after, QStringList{u"5h: 80% · W: 55%"_s});
    }

    void withoutASummaryThereIsNoBucketAndTheTwoTintsDiffer()
    {
        makeService();
        QVERIFY(!m_service->lowestSelectedBucket());
        QCOMPARE(m_service->menuBarTint(), model::ColorToken::SecondaryLabel);
        QCOMPARE(m_service->menuBarNSTint(), model::ColorToken::AdaptiveHealthyGreen);
    }

    void theLabelsInputIsWhatTheSettingsAndTheItemsSay()
    {
        makeServiceThatFetches();
        m_parts->fetching.answer(success());
        QTRY_VERIFY(m_service->quotaSummary());
        auto input = m_service->labelInput();
        QCOMPARE(input.items, m_service->toolbarStatItems());
        QCOMPARE(input.items.size(), 2);
        QVERIFY(input.showPercentage);
        QVERIFY(input.showIcon);
        QVERIFY(input.colored);
        QCOMPARE(input.labelStyle, u"letter"_s);
        QCOMPARE(input.tint, model::ColorToken::SystemOrange);

        m_service->setShowPercentageInMenuBar(false);
        m_service->setShowIconInMenuBar(false);
        m_service->setUseColoredStatusIndicator(false);
        m_service->setToolbarLabelStyle(u"roman"_s);
        m_service->setShowWeeklyInMenuBar(false);
        input = m_service->labelInput();
        QVERIFY(!input.showPercentage);
        QVERIFY(!input.showIcon);
        QVERIFY(!input.colored);
        QCOMPARE(input.labelStyle, u"roman"_s);
        QCOMPARE(input.items.size(), 1);
        QCOMPARE(input.items.first().text, u"G: 80%"_s);
        QCOMPARE(input.tint, model::ColorToken::SystemGreen);
    }

private:
    /// Starts over with the settings of that file.
    void startOn(const QString &settingsFile)
    {
        cleanup();
        m_parts.emplace(start, settingsFile);
        m_login.emplace(m_parts->loginItem, m_parts->log);
        makeService();
    }

    void makeService()
    {
        auto dependencies = m_parts->dependencies();
        dependencies.launchAtLogin = &*m_login;
        m_service.emplace(dependencies);
    }

    void makeServiceThatFetches()
    {
        makeService();
        QTRY_COMPARE(m_parts->fetching.asked.size(), size_t(1));
    }

    /// From now on logs each announcement with what could be read at that moment.
    void record()
    {
        m_parts->log.clear();
        const auto log = [this](const QString &name) {
            return [this, name] { m_parts->log += name + u':' + readable(); };
        };
        auto *service = &*m_service;
        connect(service, &QuotaService::objectWillChange, this, log(u"will"_s));
        connect(service, &QuotaService::quotaSummaryChanged, this, log(u"quotaSummary"_s));
        connect(service, &QuotaService::activeDaemonChanged, this, log(u"activeDaemon"_s));
        connect(service, &QuotaService::connectionStatusChanged, this, log(u"connectionStatus"_s));
        connect(service, &QuotaService::lastUpdatedChanged, this, log(u"lastUpdated"_s));
        connect(service, &QuotaService::isRefreshingChanged, this, log(u"isRefreshing"_s));
        connect(service, &QuotaService::errorMessageChanged, this, log(u"errorMessage"_s));
    }

    QString readable() const
    {
        QString text;
        if (m_service->quotaSummary())
            text += u" summary"_s;
        if (m_service->activeDaemon())
            text += u" daemon"_s;
        if (m_service->lastUpdated())
            text += u" updated"_s;
        if (m_service->errorMessage())
            text += u" error"_s;
        if (m_service->isRefreshing())
            text += u" refreshing"_s;
        const auto &status = m_service->connectionStatus();
        if (status.isConnected())
            text += u" connected"_s;
        else
            text += status.isOffline() ? u" offline"_s : u" connecting"_s;
        return text;
    }

    std::optional<test::ServiceParts> m_parts;
    std::optional<LoggedLaunchAtLogin> m_login;
    std::optional<QuotaService> m_service;
};

QTEST_GUILESS_MAIN(QuotaServiceTest)
#include "quota_service_test.moc"
