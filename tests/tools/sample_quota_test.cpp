#include "sample_quota.h"

#include <QJsonArray>
#include <QTest>

using namespace brimwatch::sample;
using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QDateTime start(QDate(2026, 11, 16), QTime(9, 0), Qt::UTC);

QDateTime after(std::chrono::milliseconds time)
{
    return start.addMSecs(time.count());
}

QJsonObject bucketOf(const SampleQuota &quota, const QDateTime &moment, int group, int bucket)
{
    return quota.summaryAt(moment)["groups"_L1][group]["buckets"_L1][bucket].toObject();
}

double fractionOf(const QJsonObject &bucket)
{
    return bucket["remainingFraction"_L1].toDouble();
}

QDateTime resetOf(const QJsonObject &bucket)
{
    return QDateTime::fromString(bucket["resetTime"_L1].toString(), Qt::ISODateWithMs);
}

} // namespace

class SampleQuotaTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyGroupHasAFiveHourAndAWeeklyWindow()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        const auto groups = quota.summaryAt(start)["groups"_L1].toArray();
        QStringList names;
        for (const auto group : groups) {
            names.append(group["displayName"_L1].toString());
            QCOMPARE(group["buckets"_L1].toArray().size(), 2);
            QCOMPARE(group["buckets"_L1][0]["window"_L1].toString(), u"5h"_s);
            QCOMPARE(group["buckets"_L1][1]["window"_L1].toString(), u"weekly"_s);
        }
        QCOMPARE(
            names, (QStringList{u"Gemini Models"_s, u"Claude & GPT Models"_s, u"Argon Models"_s}));
    }

    void theSharesStartAsPlanned()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        const QList<QList<double>> expected{{0.80, 0.55}, {1.0, 0.64}, {0.12, 0.30}};
        for (int group = 0; group < expected.size(); ++group) {
            for (int bucket = 0; bucket < 2; ++bucket)
                QCOMPARE(
                    fractionOf(bucketOf(quota, start, group, bucket)), expected[group][bucket]);
        }
    }

    void aShareFallsSteadily()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        const auto atOnce = fractionOf(bucketOf(quota, start, 0, 0));
        const auto later = fractionOf(bucketOf(quota, after(1h), 0, 0));
        const auto evenLater = fractionOf(bucketOf(quota, after(2h), 0, 0));
        QVERIFY(later < atOnce);
        QCOMPARE(atOnce - later, later - evenLater);
    }

    void aShareDoesNotFallBelowNothing()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        QCOMPARE(fractionOf(bucketOf(quota, after(2h), 2, 0)), 0.0);
    }

    void aShareIsFullAgainWhenItsWindowEnds()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        const auto reset = resetOf(bucketOf(quota, start, 0, 0));
        QVERIFY(fractionOf(bucketOf(quota, reset.addMSecs(-1), 0, 0)) < 0.5);
        QCOMPARE(fractionOf(bucketOf(quota, reset, 0, 0)), 1.0);
    }

    void aWindowIsFollowedByTheNext()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        const auto first = resetOf(bucketOf(quota, start, 0, 0));
        const auto second = resetOf(bucketOf(quota, first, 0, 0));
        const auto third = resetOf(bucketOf(quota, second.addSecs(1), 0, 0));
        QCOMPARE(first.secsTo(second), 5 * 3600);
        QCOMPARE(second.secsTo(third), 5 * 3600);
    }

    void theFirstWindowsEndAfterThreeHoursAndFourDays()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        const auto minutes
            = [](const QJsonObject &bucket) { return start.secsTo(resetOf(bucket)) / 60; };
        QCOMPARE(minutes(bucketOf(quota, start, 0, 0)), 3 * 60 + 12);
        QCOMPARE(minutes(bucketOf(quota, start, 0, 1)), (4 * 24 + 6) * 60 + 30);
    }

    void aSpeedOfSixtyMakesAnHourOfAMinute()
    {
        const SampleQuota slow(Scenario::Normal, 1, start);
        const SampleQuota fast(Scenario::Normal, 60, start);
        const auto inReal = bucketOf(slow, after(1h), 0, 0);
        const auto inFast = bucketOf(fast, after(1min), 0, 0);
        QCOMPARE(fractionOf(inFast), fractionOf(inReal));
        QCOMPARE(after(1min).secsTo(resetOf(inFast)), after(1h).secsTo(resetOf(inReal)));
    }

    void frozenQuotaKeepsItsSharesWhileWindowsEnd()
    {
        const SampleQuota quota(Scenario::Normal, 0, start);
        const auto reset = resetOf(bucketOf(quota, start, 0, 0));
        QCOMPARE(fractionOf(bucketOf(quota, after(1h), 0, 0)), 0.80);
        QCOMPARE(resetOf(bucketOf(quota, after(1h), 0, 0)), reset);
        QCOMPARE(fractionOf(bucketOf(quota, after(4h), 0, 0)), 0.80);
        QCOMPARE(reset.secsTo(resetOf(bucketOf(quota, after(4h), 0, 0))), 5 * 3600);
    }

    void aMomentBeforeTheStartCountsAsTheStart()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        QCOMPARE(fractionOf(bucketOf(quota, after(-1h), 0, 0)), 0.80);
    }

    void bothFormsOfATimeAreInUse()
    {
        const SampleQuota quota(Scenario::Normal, 1, start);
        QCOMPARE(
            bucketOf(quota, start, 0, 0)["resetTime"_L1].toString(), u"2026-11-16T12:12:30.000Z"_s);
        QCOMPARE(
            bucketOf(quota, start, 0, 1)["resetTime"_L1].toString(), u"2026-11-20T15:30:00Z"_s);
    }

    void aTimeInAnotherZoneIsToldInUtc()
    {
        const auto elsewhere = start.toOffsetFromUtc(5 * 3600);
        const SampleQuota quota(Scenario::Normal, 1, elsewhere);
        QCOMPARE(
            bucketOf(quota, elsewhere, 0, 1)["resetTime"_L1].toString(), u"2026-11-20T15:30:00Z"_s);
    }

    void everyScenarioHasAName()
    {
        QVERIFY(scenarioNamed(u"normal"_s) == Scenario::Normal);
        QVERIFY(scenarioNamed(u"empty"_s) == Scenario::Empty);
        QVERIFY(scenarioNamed(u"many"_s) == Scenario::Many);
        QVERIFY(scenarioNamed(u"long-names"_s) == Scenario::LongNames);
        QVERIFY(scenarioNamed(u"odd-names"_s) == Scenario::OddNames);
        QVERIFY(scenarioNamed(u"low"_s) == Scenario::Low);
        QVERIFY(!scenarioNamed(u"Normal"_s));
        QVERIFY(!scenarioNamed({}));
    }

    void groupNamesOfManyAreDistinct()
    {
        const SampleQuota quota(Scenario::Many, 1, start);
        const auto groups = quota.summaryAt(start)["groups"_L1].toArray();
        QSet<QString> names;
        for (const auto group : groups)
            names.insert(group["displayName"_L1].toString());
        QCOMPARE(names.size(), 50);
    }
};

QTEST_GUILESS_MAIN(SampleQuotaTest)
#include "sample_quota_test.moc"
