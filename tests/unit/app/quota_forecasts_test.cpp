#include "app/item_description.h"
#include "app/state_description.h"
#include "service/forecast_alerts.h"
#include "service/quota_forecasts.h"
#include "support/full_disk.h"
#include "support/quota_samples.h"
#include "support/service_fixture.h"

#include <QFile>
#include <QTest>

#include <cmath>
#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace std::chrono_literals;
using forecast::HistoryRow;
using forecast::Verdict;
using service::ForecastAlerts;
using service::QuotaForecasts;

/// The forecasts in a QuotaService, with a history in a folder of their own.
class QuotaForecastsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_parts.emplace();
        start();
    }
    void cleanup()
    {
        m_forecasts.reset();
        m_parts.reset();
    }

    void useThatIsTooFastRunsOut()
    {
        play(0, 60, 0.009);
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
        QVERIFY(outlook().runOut);
        QCOMPARE(m_forecasts->outlook(u"unknown"_s).verdict, Verdict::Silent);
    }

    void ofTwoBucketsWithOneIdNothingIsSaid()
    {
        for (int minute = 0; minute < 60; ++minute) {
            auto group = gemini(1 - 0.009 * minute);
            group.buckets.append(group.buckets.constFirst());
            m_forecasts->update({.groups = {group}}, at(minute));
        }
        QCOMPARE(outlook().verdict, Verdict::Silent);
    }

    void aChangeIsALineAndNoChangeIsNone()
    {
        for (const double left : {1.0, 1.0, 0.9, 0.9, 0.85})
            update(static_cast<int>(rows().size()) + 1, left);
        QCOMPARE(rows().size(), 3);
        QCOMPARE(rows().at(1).left, 0.9);
    }

    void whileNothingIsUsedTheResetMovesAlongWithoutALine()
    {
        for (int minute = 0; minute < 100; ++minute) {
            auto group = gemini(1);
            group.buckets[0].resetTime = at(minute + 300).toString(Qt::ISODate);
            m_forecasts->update({.groups = {group}}, at(minute));
        }
        QCOMPARE(rows().size(), 1);
    }

    void aFlatStretchHasBothItsEnds()
    {
        for (int minute = 0; minute < 20; ++minute)
            update(minute, 0.8);
        update(20, 0.7);
        const auto found = rows();
        QCOMPARE(found.size(), 3);
        QCOMPARE(found[1].time - found[0].time, 19min);
        QCOMPARE(found[1].left, 0.8);
    }

    void aRestartGoesOnFromWhatIsKept()
    {
        play(0, 60, 0.009);
        const auto before = outlook();
        start();
        update(60, 1 - 0.009 * 60);
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
        QVERIFY(!outlook().isFirstWarning);
        QVERIFY(std::abs(*outlook().chance - *before.chance) < 0.05);
    }

    void whatIsKeptIsRebuiltFromTheHistory()
    {
        play(0, 60, 0.009);
        start();
        QVERIFY(QFile::remove(folder() + u"/forecasts.json"));
        update(60, 1 - 0.009 * 60);
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
        start();
        QFile file(folder() + u"/forecasts.json");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(R"({"buckets":{"five":{"window":7}}})");
        file.close();
        update(61, 1 - 0.009 * 61);
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
    }

    void switchedOffItWritesNothingAndKnowsWhatWasSeen()
    {
        m_parts->settings.setValue(service::settings::keepHistory, false);
        play(0, 60, 0.009);
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
        start();
        QVERIFY(!QFile::exists(folder()));
        update(60, 1 - 0.009 * 60);
        QVERIFY(outlook().verdict != Verdict::RunsOut);
    }

    void clearedMeanwhileItForgets()
    {
        play(0, 60, 0.009);
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
        QVERIFY(forecast::History(folder()).clear());
        update(60, 1 - 0.009 * 60);
        QVERIFY(outlook().verdict != Verdict::RunsOut);
        QCOMPARE(rows().size(), 1);
        // Nor does the end bring back what was cleared.
        QVERIFY(forecast::History(folder()).clear());
        m_forecasts.reset();
        QVERIFY(!QFile::exists(folder()));
    }

    void aFullDiskCostsTheLineAndOneMessage()
    {
        update(0, 0.9);
        QTest::ignoreMessage(QtInfoMsg, QRegularExpression(u"^the history cannot be written: "_s));
        {
            const test::FullDisk disk;
            update(1, 0.8);
            update(2, 0.7);
        }
        update(3, 0.6);
        QCOMPARE(rows().size(), 2);
    }

    void whatIsPrivateIsInNoFile()
    {
        m_forecasts = std::make_unique<QuotaForecasts>(m_parts->settings, folder(),
            [](const QString &text) { return QString(text).replace(u"SECRET"_s, u"…"_s); });
        m_forecasts->update({.groups = {{.displayName = u"G"_s,
                                 .buckets = {model::sampleBucket(u"a SECRET, b"_s, u"5h"_s, 0.5),
                                     model::sampleBucket(QString(5000, u'x'), u"5h"_s, 0.5)}}}},
            at(0));
        QCOMPARE(rows().size(), 2);
        QCOMPARE(rows().at(0).bucket, u"a …, b"_s);
        QVERIFY(rows().at(1).bucket.size() <= 128);
    }

    void manyBucketsAreBounded()
    {
        for (int number = 0; number < 20; ++number) {
            model::QuotaGroup group{.displayName = u"G"_s, .buckets = {}};
            for (int i = 0; i < 400; ++i)
                group.buckets.append(
                    model::sampleBucket(QString::number(number * 1000 + i), u"5h"_s, 0.5));
            m_forecasts->update({.groups = {group}}, at(number));
        }
        QCOMPARE(rows().size(), 20 * 256);
    }

    void theServiceIsSilentWhileItIsOffline()
    {
        playService(60);
        auto &service = *m_service;
        const auto bucket = service.quotaSummary()->groups[0].buckets[0];
        QCOMPARE(service.outlook(bucket).verdict, Verdict::RunsOut);
        // Three refreshes later nobody knows.
        m_parts->clock.setNow(m_parts->clock.now().addSecs(181));
        QCOMPARE(service.outlook(bucket).verdict, Verdict::Silent);
        m_parts->clock.setNow(m_parts->clock.now().addSecs(-181));
        QCOMPARE(service.outlook(bucket).verdict, Verdict::RunsOut);
        service.refresh();
        QTRY_VERIFY(m_parts->fetching.isWaiting());
        m_parts->fetching.answer(fail(discovery::DaemonError{}));
        QTRY_VERIFY(service.connectionStatus().isOffline());
        QCOMPARE(service.outlook(bucket).verdict, Verdict::Silent);
        m_service.reset();
    }

    void whereItRunsOutTooltipTitleAndBusSayWhen()
    {
        // One number in the label, then two.
        m_parts->settings.setValue(service::settings::showWeeklyInMenuBar, false);
        playService(60);
        const auto reset = at(300);
        const auto item = app::describeItem(*m_service);
        const QRegularExpression line(
            u"^Gemini, five: 46\\.9%, resets in 4h 1m, runs out around \\d+:(00|15|30|45) [AP]M$"_s);
        QVERIFY2(
            line.match(item.lines.constFirst()).hasMatch(), qPrintable(item.lines.constFirst()));
        const QRegularExpression title(u" \\(runs out around \\d+:(00|15|30|45) [AP]M\\)$"_s);
        QVERIFY2(title.match(item.title).hasMatch(), qPrintable(item.title));

        const auto bucket = app::describeState(*m_service, {}).groups.at(0).buckets.at(0);
        QCOMPARE(bucket.outlook, u"runs-out"_s);
        QVERIFY(bucket.runOutTime);
        QCOMPARE(*bucket.runOutTime % 900, 0);
        QVERIFY(*bucket.runOutTime > at(60).toSecsSinceEpoch());
        QVERIFY(*bucket.runOutTime <= reset.toSecsSinceEpoch());
        QVERIFY(bucket.runOutChance);
        QCOMPARE(*bucket.runOutChance, std::round(*bucket.runOutChance * 20) / 20);
        QVERIFY(*bucket.runOutChance > 0.5);
        m_service.reset();
    }

    void whatIsUsedUpSaysWhenItIsFullAgain()
    {
        playService(1);
        m_parts->clock.setNow(at(10));
        m_service->refresh();
        QTRY_VERIFY(m_parts->fetching.isWaiting());
        m_parts->fetching.answer(
            service::FetchedQuota{.summary = {.groups = {gemini(0)}}, .daemon = {.httpPort = 1}});
        QTRY_VERIFY(!m_service->isRefreshing());
        m_parts->clock.advance(1s);
        const auto item = app::describeItem(*m_service);
        QCOMPARE(item.lines.constFirst(), u"Gemini, five: 0.0%, used up, full again in 4h 49m"_s);
        QCOMPARE(
            app::describeState(*m_service, {}).groups.at(0).buckets.at(0).outlook, u"used-up"_s);
        m_service.reset();
    }

    void alertsAreOffUntilTheyAreSwitchedOn_data()
    {
        QTest::addColumn<bool>("alerts");
        QTest::addColumn<bool>("runOut");
        QTest::addColumn<int>("posted");
        QTest::newRow("default") << true << false << 0;
        QTest::newRow("on") << true << true << 1;
        QTest::newRow("alerts off") << false << true << 0;
    }
    void alertsAreOffUntilTheyAreSwitchedOn()
    {
        QFETCH(bool, alerts);
        QFETCH(bool, runOut);
        QFETCH(int, posted);
        m_parts->settings.setValue(service::settings::notifyOnLowQuota, alerts);
        m_parts->settings.setValue(service::settings::notifyOnRunOut, runOut);
        ForecastAlerts alertsOfForecasts = makeAlerts();
        // Of a family that raises no other alert, until just above the threshold.
        for (int minute = 0; minute < 85; ++minute) {
            const model::QuotaSummary summary{.groups = {claude(1 - 0.009 * minute)}};
            m_forecasts->update(summary, at(minute));
            check(alertsOfForecasts, summary, minute);
        }
        QCOMPARE(m_parts->notifier.posted.size(), posted);
        if (posted > 0) {
            const auto &notification = m_parts->notifier.posted.constFirst();
            QCOMPARE(notification.identifier, u"run_out_five"_s);
            QVERIFY2(notification.body.startsWith(u"five runs out around "_s),
                qPrintable(notification.body));
        }
    }

    void whatIsLowAlreadyIsNotWarnedOf()
    {
        m_parts->settings.setValue(service::settings::notifyOnRunOut, true);
        m_parts->settings.setValue(service::settings::lowQuotaThreshold, 99.0);
        ForecastAlerts alerts = makeAlerts();
        for (int minute = 0; minute < 60; ++minute) {
            const model::QuotaSummary summary{.groups = {gemini(1 - 0.009 * minute)}};
            m_forecasts->update(summary, at(minute));
            check(alerts, summary, minute);
        }
        QCOMPARE(outlook().verdict, Verdict::RunsOut);
        QVERIFY(m_parts->notifier.posted.isEmpty());
    }

    void whatIsBackIsTold_data()
    {
        QTest::addColumn<double>("low");
        QTest::addColumn<double>("after");
        QTest::addColumn<bool>("switchedOn");
        QTest::addColumn<QString>("end");
        QTest::newRow("used up") << 0.0 << 1.0 << true << u" is full again."_s;
        QTest::newRow("low") << 0.15 << 1.0 << true << u" is full again."_s;
        QTest::newRow("used meanwhile") << 0.15 << 0.7 << true << u" has been refilled."_s;
        QTest::newRow("not low") << 0.5 << 1.0 << true << QString();
        QTest::newRow("a correction") << 0.19 << 0.21 << true << QString();
        QTest::newRow("off") << 0.0 << 1.0 << false << QString();
    }
    void whatIsBackIsTold()
    {
        QFETCH(double, low);
        QFETCH(double, after);
        QFETCH(bool, switchedOn);
        QFETCH(QString, end);
        m_parts->settings.setValue(service::settings::notifyOnReturn, switchedOn);
        ForecastAlerts alerts = makeAlerts();
        int minute = 0;
        for (const double left : {0.6, low, low, after, after, 0.9})
            check(alerts, {.groups = {claude(left)}}, ++minute);
        QCOMPARE(m_parts->notifier.posted.size(), end.isEmpty() ? 0 : 1);
        if (!end.isEmpty()) {
            QCOMPARE(m_parts->notifier.posted[0].identifier, u"refilled_five"_s);
            QVERIFY(m_parts->notifier.posted[0].body.endsWith(end));
        }
    }

private:
    static QDateTime at(int minute)
    {
        return test::ServiceParts::nineOClock().addSecs(qint64{minute} * 60);
    }

    static model::QuotaGroup groupOf(const QString &name, double left)
    {
        auto bucket = model::sampleBucket(u"five"_s, u"5h"_s, left);
        bucket.resetTime = at(300).toString(Qt::ISODate);
        return {.displayName = name, .buckets = {bucket}};
    }
    static model::QuotaGroup gemini(double left) { return groupOf(u"Gemini"_s, left); }
    static model::QuotaGroup claude(double left) { return groupOf(u"Claude"_s, left); }

    QString folder() const { return m_parts->folder.filePath(u"history"_s); }

    /// Ends the forecasts, if there are any, and begins anew.
    void start()
    {
        m_forecasts.reset();
        m_forecasts = std::make_unique<QuotaForecasts>(
            m_parts->settings, folder(), [](const QString &text) { return text; });
    }

    void update(int minute, double left) const
    {
        m_forecasts->update({.groups = {gemini(left)}}, at(minute));
    }
    void play(int from, int to, double perMinute) const
    {
        for (int minute = from; minute < to; ++minute)
            update(minute, 1 - perMinute * minute);
    }
    void playService(int minutes)
    {
        auto dependencies = m_parts->dependencies();
        dependencies.forecasts = m_forecasts.get();
        m_service = std::make_unique<service::QuotaService>(dependencies);
        for (int minute = 0; minute < minutes; ++minute) {
            m_parts->clock.setNow(at(minute));
            m_service->refresh();
            QTRY_VERIFY(m_parts->fetching.isWaiting());
            m_parts->fetching.answer(service::FetchedQuota{
                .summary = {.groups = {gemini(1 - 0.009 * minute)}}, .daemon = {.httpPort = 1}});
            QTRY_VERIFY(!m_service->isRefreshing());
        }
    }

    ForecastAlerts makeAlerts()
    {
        return {m_parts->settings, m_parts->notifier, [](const QString &text) { return text; }};
    }
    void check(ForecastAlerts &alerts, const model::QuotaSummary &summary, int minute) const
    {
        alerts.check(
            summary,
            [this](
                const model::QuotaBucket &bucket) { return m_forecasts->outlook(bucket.bucketId); },
            at(minute));
    }

    forecast::Outlook outlook() const { return m_forecasts->outlook(u"five"_s); }
    QList<HistoryRow> rows() const
    {
        QList<HistoryRow> found;
        forecast::History(folder()).read([&found](const HistoryRow &row) { found.append(row); });
        return found;
    }

    std::optional<test::ServiceParts> m_parts;
    std::unique_ptr<QuotaForecasts> m_forecasts;
    std::unique_ptr<service::QuotaService> m_service;
};

QTEST_GUILESS_MAIN(QuotaForecastsTest)
#include "quota_forecasts_test.moc"
