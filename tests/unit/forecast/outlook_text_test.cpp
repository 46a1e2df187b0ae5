#include "forecast/outlook_text.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::forecast;
using namespace std::chrono_literals;
using std::chrono::sys_seconds;

namespace {

QDateTime at(int day, int hour, int minute)
{
    return {QDate(2026, 11, day), QTime(hour, minute), Qt::UTC};
}

} // namespace

class OutlookTextTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theseAreTheWords_data()
    {
        QTest::addColumn<QString>("verdict");
        QTest::addColumn<QString>("window");
        QTest::addColumn<QDateTime>("runOut");
        QTest::addColumn<QString>("words");
        // Monday, 12:00; the reset is on Friday at 9:00.
        QTest::newRow("silent") << QString() << u"5h"_s << QDateTime() << QString();
        QTest::newRow("lasts") << u"lasts"_s << u"5h"_s << QDateTime() << QString();
        QTest::newRow("close") << u"close"_s << u"5h"_s << QDateTime() << QString();
        QTest::newRow("five hours")
            << u"runs-out"_s << u"5h"_s << at(16, 15, 45) << u"runs out around 15:45"_s;
        QTest::newRow("half an hour")
            << u"runs-out"_s << u"5h"_s << at(16, 12, 30) << u"runs out around 12:30"_s;
        QTest::newRow("less") << u"runs-out"_s << u"5h"_s << at(16, 12, 15)
                              << u"runs out within half an hour"_s;
        QTest::newRow("at the reset")
            << u"runs-out"_s << u"5h"_s << at(20, 9, 0) << u"runs out shortly before the reset"_s;
        QTest::newRow("morning") << u"runs-out"_s << u"weekly"_s << at(19, 11, 0)
                                 << u"runs out around Thursday morning"_s;
        QTest::newRow("evening") << u"runs-out"_s << u"weekly"_s << at(19, 12, 0)
                                 << u"runs out around Thursday evening"_s;
        QTest::newRow("half a day")
            << u"runs-out"_s << u"weekly"_s << at(16, 23, 0) << u"runs out within half a day"_s;
        QTest::newRow("the week's reset") << u"runs-out"_s << u"weekly"_s << at(20, 9, 0)
                                          << u"runs out shortly before the reset"_s;
        QTest::newRow("used up") << u"used-up"_s << u"weekly"_s << QDateTime()
                                 << u"used up, full again in 3d 21h"_s;
        QTest::newRow("from a newer program")
            << u"something else"_s << u"5h"_s << at(16, 15, 45) << QString();
    }
    void theseAreTheWords()
    {
        QFETCH(QString, verdict);
        QFETCH(QString, window);
        QFETCH(QDateTime, runOut);
        QFETCH(QString, words);
        const DateStyles german(u"de_DE"_s);
        const OutlookText text{.verdict = verdictNamed(verdict),
            .window = window,
            .runOut = runOut.isValid() ? std::optional(runOut) : std::nullopt,
            .reset = at(20, 9, 0)};
        const QString found = text.words(at(16, 12, 0), german);
        QCOMPARE(found, words);
        for (const auto *never : {u"ahead", u"behind", u"pace", u"deficit", u"%"})
            QVERIFY(!found.contains(QStringView(never)));
    }

    void theTimeIsInTheUsersFormatAndZone()
    {
        const DateStyles american(u"en_US"_s);
        const OutlookText text{
            .verdict = Verdict::RunsOut, .window = u"5h"_s, .runOut = at(16, 15, 45)};
        const auto now = at(16, 12, 0).toOffsetFromUtc(2 * 3600);
        QCOMPARE(text.words(now, american), u"runs out around 5:45 PM"_s);
    }

    void usedUpWithoutAResetToComeSaysNoMore()
    {
        OutlookText text{.verdict = Verdict::UsedUp, .window = u"5h"_s};
        QCOMPARE(text.words(at(16, 12, 0)), u"used up"_s);
        text.reset = at(16, 11, 59);
        QCOMPARE(text.words(at(16, 12, 0)), u"used up"_s);
    }

    void momentsAreRoundedAsFarAsTheyAreRight()
    {
        const sys_seconds noon{1794830400s}; // 2026-11-16 12:00 UTC
        const auto rounding = [noon](const QString &window, std::chrono::seconds runOut) {
            return *rounded({.verdict = Verdict::RunsOut, .chance = 0.8, .runOut = noon + runOut},
                       window, noon + 5h)
                        .runOut
                - noon;
        };
        QCOMPARE(rounding(u"5h"_s, 1h + 7min + 29s), std::chrono::seconds(1h));
        QCOMPARE(rounding(u"5h"_s, 1h + 7min + 30s), std::chrono::seconds(1h + 15min));
        QCOMPARE(rounding(u"weekly"_s, 1h + 59min), std::chrono::seconds(1h));
        // Never after the reset, and the reset itself where it is that.
        QCOMPARE(rounding(u"5h"_s, 4h + 58min), std::chrono::seconds(5h));
        QCOMPARE(rounding(u"weekly"_s, 5h), std::chrono::seconds(5h));
    }

    void chancesComeInStepsOfATwentieth()
    {
        const auto chance = [](double exact) {
            return *rounded({.verdict = Verdict::Lasts, .chance = exact}, u"5h", {}).chance;
        };
        QCOMPARE(chance(0.0), 0.0);
        QCOMPARE(chance(0.024), 0.0);
        QCOMPARE(chance(0.026), 0.05);
        QCOMPARE(chance(0.783), 0.8);
        QCOMPARE(chance(1.0), 1.0);
        QVERIFY(!rounded({}, u"5h", {}).chance);
    }

    void namesAreReadAsTheyAreWritten()
    {
        for (const auto verdict :
            {Verdict::Silent, Verdict::Lasts, Verdict::Close, Verdict::RunsOut, Verdict::UsedUp})
            QCOMPARE(verdictNamed(verdictName(verdict)), verdict);
    }
};

QTEST_APPLESS_MAIN(OutlookTextTest)
#include "outlook_text_test.moc"
