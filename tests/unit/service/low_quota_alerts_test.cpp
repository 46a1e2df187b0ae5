#include "model/quota_records.h"
#include "support/quota_samples.h"
#include "support/service_fixture.h"

#include <QLocale>
#include <QTest>

#include <limits>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::service;

namespace {

model::QuotaBucket fiveHours(double remainingFraction)
{
    return {.bucketId = u"gemini-5h"_s,
        .displayName = u"Five-hour limit"_s,
        .window = u"5h"_s,
        .remainingFraction = remainingFraction};
}

model::QuotaSummary groupNamed(const QString &name, const QList<model::QuotaBucket> &buckets)
{
    return {.groups = {{.displayName = name, .buckets = buckets}}};
}

model::QuotaSummary gemini(const QList<model::QuotaBucket> &buckets)
{
    return groupNamed(u"Gemini Models"_s, buckets);
}

} // namespace

class LowQuotaAlertsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_parts.emplace();
        m_alerts = &m_parts->alerts;
    }

    void anAlertSaysWhichBucketHowMuchIsLeftAndUntilWhen()
    {
        auto bucket = fiveHours(0.08);
        bucket.resetTime = u"2026-11-16T12:12:30Z"_s;
        m_alerts->checkLowQuotaNotifications(gemini({bucket}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
        const auto &alert = m_parts->notifier.posted.constFirst();
        QCOMPARE(alert.identifier, u"low_quota_gemini-5h"_s);
        QCOMPARE(alert.title, u"Brimwatch Alert: 8.0% Remaining"_s);
        QCOMPARE(alert.body, u"Five-hour limit has dropped to 8.0%. Fully refreshes in 3h 12m."_s);
    }

    void whatIsPrivateIsTakenOutOfTheText()
    {
        LowQuotaAlerts alerts(m_parts->clock, m_parts->settings, m_parts->notifier,
            [](QString text) { return text.replace(u"secret"_s, u"…"_s); });
        auto bucket = fiveHours(0.08);
        bucket.displayName = u"A secret limit"_s;
        alerts.checkLowQuotaNotifications(gemini({bucket}));
        QVERIFY(m_parts->notifier.posted.constFirst().body.startsWith(u"A … limit has dropped"));
    }

    void longIdsAreToldApartAndNotKept()
    {
        const QString id(100'000, u'x');
        auto one = fiveHours(0.08);
        one.bucketId = id + u'1';
        auto other = fiveHours(0.08);
        other.bucketId = id + u'2';
        m_alerts->checkLowQuotaNotifications(gemini({one, other}));
        m_alerts->checkLowQuotaNotifications(gemini({one, other}));
        const auto &posted = m_parts->notifier.posted;
        QCOMPARE(posted.size(), 2);
        QVERIFY(posted.at(0).identifier != posted.at(1).identifier);
        QVERIFY(posted.at(0).identifier.size() < 100);
    }

    void theTextTakesTheCountdownAsItIs_data()
    {
        QTest::addColumn<QString>("resetTime");
        QTest::addColumn<QString>("end");
        QTest::newRow("none") << QString() << u"Fully refreshes in Active."_s;
        QTest::newRow("no date") << u"soon"_s << u"Fully refreshes in Active."_s;
        QTest::newRow("past") << u"2026-11-16T08:59:59Z"_s << u"Fully refreshes in Refreshed."_s;
    }

    void theTextTakesTheCountdownAsItIs()
    {
        QFETCH(QString, resetTime);
        QFETCH(QString, end);
        auto bucket = fiveHours(0.1);
        if (!resetTime.isNull())
            bucket.resetTime = resetTime;
        m_alerts->checkLowQuotaNotifications(gemini({bucket}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
        QVERIFY2(m_parts->notifier.posted.constFirst().body.endsWith(end),
            qPrintable(m_parts->notifier.posted.constFirst().body));
    }

    void aBucketIsLowUpToTheThresholdItself_data()
    {
        QTest::addColumn<double>("threshold");
        QTest::addColumn<double>("fraction");
        QTest::addColumn<bool>("announced");
        QTest::newRow("at the default") << 20.0 << 0.2 << true;
        QTest::newRow("just above") << 20.0 << 0.2001 << false;
        QTest::newRow("below") << 20.0 << 0.1999 << true;
        QTest::newRow("nothing left at 0") << 0.0 << 0.0 << true;
        QTest::newRow("little left at 0") << 0.0 << 0.001 << false;
        QTest::newRow("full at 100") << 100.0 << 1.0 << true;
        QTest::newRow("more than full at 100") << 100.0 << 1.5 << true;
        QTest::newRow("less than nothing at 0") << 0.0 << -0.5 << true;
        QTest::newRow("no number") << 100.0 << std::numeric_limits<double>::quiet_NaN() << false;
    }

    void aBucketIsLowUpToTheThresholdItself()
    {
        QFETCH(double, threshold);
        QFETCH(double, fraction);
        QFETCH(bool, announced);
        m_parts->settings.setValue(settings::lowQuotaThreshold, threshold);
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(fraction)}));
        QCOMPARE(m_parts->notifier.posted.size(), announced ? 1 : 0);
    }

    void sharesOutsideTheRangeAreShownAsItsEnds()
    {
        m_parts->settings.setValue(settings::lowQuotaThreshold, 100.0);
        auto above = fiveHours(1.7);
        above.bucketId = u"above"_s;
        auto below = fiveHours(-0.3);
        below.bucketId = u"below"_s;
        m_alerts->checkLowQuotaNotifications(gemini({above, below}));
        QCOMPARE(titles(),
            QStringList(
                {u"Brimwatch Alert: 100.0% Remaining"_s, u"Brimwatch Alert: 0.0% Remaining"_s}));
        QVERIFY(m_parts->notifier.posted.at(0).body.contains(u"dropped to 100.0%."_s));
        QVERIFY(m_parts->notifier.posted.at(1).body.contains(u"dropped to 0.0%."_s));
    }

    void percentagesHaveOneDecimalAndAPointInEveryLocale()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.12345)}));
        QLocale::setDefault(QLocale::system());
        QCOMPARE(titles(), QStringList(u"Brimwatch Alert: 12.3% Remaining"_s));
    }

    void aBucketThatStaysLowIsAnnouncedOnce()
    {
        for (int refresh = 0; refresh < 3; ++refresh)
            m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.15)}));
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.05)}));
        QCOMPARE(titles(), QStringList(u"Brimwatch Alert: 15.0% Remaining"_s));
    }

    void aBucketThatRoseIsAnnouncedAtItsNextFall()
    {
        for (const double fraction : {0.15, 0.5, 0.1})
            m_alerts->checkLowQuotaNotifications(gemini({fiveHours(fraction)}));
        QCOMPARE(titles(),
            QStringList(
                {u"Brimwatch Alert: 15.0% Remaining"_s, u"Brimwatch Alert: 10.0% Remaining"_s}));
        QCOMPARE(
            m_parts->notifier.posted.at(0).identifier, m_parts->notifier.posted.at(1).identifier);
    }

    void eachBucketIsItsOwnInTheDaemonsOrder()
    {
        m_alerts->checkLowQuotaNotifications(
            gemini({model::sampleBucket(u"week"_s, u"weekly"_s, 0.1),
                model::sampleBucket(u"high"_s, u"5h"_s, 0.9),
                model::sampleBucket(u"five"_s, u"5h"_s, 0.2)}));
        QCOMPARE(identifiers(), QStringList({u"low_quota_week"_s, u"low_quota_five"_s}));
    }

    void onlyTheFirstGeminiGroupIsAnnounced()
    {
        model::QuotaSummary summary;
        for (const auto *name : {"Claude & GPT Models", "Argon Models", "Gemini Argon", "Others",
                 "GEMINI one", "Gemini two"})
            summary.groups.append(model::sampleGroup(QString::fromLatin1(name), 0.01, 0.9));
        m_parts->settings.setValue(settings::showClaudeInToolbar, true);
        m_parts->settings.setValue(settings::showArgonInToolbar, true);
        m_alerts->checkLowQuotaNotifications(summary);
        QCOMPARE(identifiers(), QStringList(u"low_quota_GEMINI one-five"_s));
    }

    void aSummaryWithoutGeminiPostsNothingAndForgetsNothing()
    {
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        m_alerts->checkLowQuotaNotifications({});
        // The same bucket, full, in a group that does not count.
        m_alerts->checkLowQuotaNotifications(groupNamed(u"Claude"_s, {fiveHours(1.0)}));
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
    }

    void aBucketThatIsMissingForAWhileIsNotForgotten()
    {
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        m_alerts->checkLowQuotaNotifications(gemini({}));
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
    }

    void switchedOffNothingIsPostedOrRemembered()
    {
        m_parts->settings.setValue(settings::notifyOnLowQuota, false);
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        QVERIFY(m_parts->notifier.posted.isEmpty());
        m_parts->settings.setValue(settings::notifyOnLowQuota, true);
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
    }

    void switchingOffAndOnRepeatsNoAnnouncement()
    {
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        m_parts->settings.setValue(settings::notifyOnLowQuota, false);
        // Neither does a rise that nobody was to hear of count.
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.9)}));
        m_parts->settings.setValue(settings::notifyOnLowQuota, true);
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
    }

    void aThresholdThatIsRaisedOverABucketAnnouncesIt()
    {
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.3)}));
        QVERIFY(m_parts->notifier.posted.isEmpty());
        m_parts->settings.setValue(settings::lowQuotaThreshold, 30.0);
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.3)}));
        QCOMPARE(m_parts->notifier.posted.size(), 1);
    }

    void afterARestartWhatIsLowIsAnnouncedOnceMore()
    {
        m_alerts->checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        LowQuotaAlerts restarted(m_parts->clock, m_parts->settings, m_parts->notifier,
            [](const QString &text) { return text; });
        restarted.checkLowQuotaNotifications(gemini({fiveHours(0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), 2);
    }

    void aDaemonThatInventsIdsIsForgottenButNotWhatItStillHas()
    {
        QList<model::QuotaBucket> buckets{fiveHours(0.1)};
        for (qsizetype i = 0; i < LowQuotaAlerts::longestMemory; ++i)
            buckets.append(model::sampleBucket(u"old-%1"_s.arg(i), u"5h"_s, 0.1));
        m_alerts->checkLowQuotaNotifications(gemini(buckets));
        const auto first = m_parts->notifier.posted.size();
        QCOMPARE(first, LowQuotaAlerts::longestMemory + 1);

        m_alerts->checkLowQuotaNotifications(
            gemini({fiveHours(0.1), model::sampleBucket(u"new"_s, u"5h"_s, 0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), first + 1);
        m_alerts->checkLowQuotaNotifications(
            gemini({fiveHours(0.1), model::sampleBucket(u"old-7"_s, u"5h"_s, 0.1)}));
        QCOMPARE(m_parts->notifier.posted.size(), first + 2);
        QCOMPARE(identifiers().last(), u"low_quota_old-7"_s);
    }

    void theServiceAsksForPermissionOnceAndAlertsAfterASuccessAlone()
    {
        test::ServiceFixture fixture;
        QCOMPARE(fixture.notifier.authorizationsAsked, 1);
        fixture.answer(gemini({fiveHours(0.1)}));
        QCOMPARE(fixture.notifier.posted.size(), 1);
        fixture.service.refresh();
        fixture.fail();
        QCOMPARE(fixture.notifier.posted.size(), 1);
        QCOMPARE(fixture.notifier.authorizationsAsked, 1);
    }

private:
    QStringList titles() const
    {
        QStringList titles;
        for (const auto &notification : m_parts->notifier.posted)
            titles.append(notification.title);
        return titles;
    }

    QStringList identifiers() const
    {
        QStringList identifiers;
        for (const auto &notification : m_parts->notifier.posted)
            identifiers.append(notification.identifier);
        return identifiers;
    }

    std::optional<test::ServiceParts> m_parts;
    LowQuotaAlerts *m_alerts = nullptr;
};

QTEST_GUILESS_MAIN(LowQuotaAlertsTest)
#include "low_quota_alerts_test.moc"
