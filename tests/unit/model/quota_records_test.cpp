#include "model/quota_records.h"
#include "support/quota_samples.h"

#include <QTest>
#include <QTimeZone>

#include <limits>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

const DateStyles &english()
{
    static const DateStyles styles(u"en_US"_s);
    return styles;
}

QuotaBucket bucketWith(double remainingFraction)
{
    return sampleBucket(u"b"_s, std::nullopt, remainingFraction);
}

QuotaBucket bucketResetting(const std::optional<QString> &resetTime)
{
    auto bucket = bucketWith(0.5);
    bucket.resetTime = resetTime;
    return bucket;
}

QuotaGroup groupNamed(const QString &name)
{
    return {.displayName = name};
}

QStringList idsOf(const QList<QuotaBucket> &buckets)
{
    QStringList ids;
    for (const auto &bucket : buckets)
        ids.append(bucket.id());
    return ids;
}

QStringList namesOf(const QList<QuotaGroup> &groups)
{
    QStringList names;
    for (const auto &group : groups)
        names.append(group.id());
    return names;
}

QString idOf(const std::optional<QuotaBucket> &bucket)
{
    return bucket ? bucket->id() : u"none"_s;
}

QString nameOf(const std::optional<QuotaGroup> &group)
{
    return group ? group->id() : u"none"_s;
}

} // namespace

class QuotaRecordsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void healthAndPercentagesFollowTheFraction_data();
    void healthAndPercentagesFollowTheFraction();
    void notANumberIsCritical();
    void thereAreTwoGreens();

    void aResetTimeWithoutAFractionParses();
    void aResetTimeWithAFractionParses();
    void aResetTimeThatIsNoDateTimeCountsAsNone();
    void aCountdownWithoutAResetTimeIsActive();
    void aCountdownTellsTheTwoLargestUnits_data();
    void aCountdownTellsTheTwoLargestUnits();
    void aCountdownDoesNotDependOnTheZone();

    void aResetTodayShowsTheTimeAlone();
    void aResetTodayThatHasPassedShowsTheTimeAlone();
    void aResetOnAnotherDayToComeShowsTheDate();
    void aResetOnAnotherDayThatHasPassedShowsTheTimeAlone();
    void todayIsTheDayInTheZoneOfNow();
    void aResetIsShownInTheZoneOfNow_data();
    void aResetIsShownInTheZoneOfNow();
    void viewsReadAbsentFieldsAsEmptyTexts();

    void theGeminiGroupIsTheFirstOfItsName();
    void aGeminiGroupOfArgonIsArgons();
    void outsideModelsCountAsClaude_data();
    void outsideModelsCountAsClaude();
    void theFirstOfAnyOutsideModelIsClaudes();
    void groupsThatAreMissingAreAbsent();
    void groupsAreSortedByFamilyAndStable();
    void iconsAskForArgonFirstAndPrioritiesForGeminiFirst();

    void bucketsAreSortedByWindowAndStable();
    void theIdAloneCanGiveABucketItsRank();
    void theRankOfABucketMindsTheCase();
    void fiveHoursWinOverWeeklyInOneBucket();

    void thePrimaryBucketIsGeminisFiveHourBucket();
    void thePrimaryBucketIsElseGeminisFirst();
    void anEmptyGeminiGroupHasNoPrimaryBucket();
    void withoutGeminiThePrimaryBucketIsTheFirstOfAll();
    void theLowestGeminiBucketIsTheFirstOfEqualMinima();
    void theLowestGeminiBucketIsComparedUnclamped();
    void thereIsNoLowestBucketWithoutGemini();
};

void QuotaRecordsTest::healthAndPercentagesFollowTheFraction_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<QuotaTier>("tier");
    QTest::addColumn<QString>("oneDecimal");
    QTest::addColumn<QString>("whole");
    QTest::newRow("full") << 1.0 << QuotaTier::healthy << u"100.0%"_s << u"100%"_s;
    QTest::newRow("more than full") << 1.7 << QuotaTier::healthy << u"100.0%"_s << u"100%"_s;
    QTest::newRow("exactly 60") << 0.6 << QuotaTier::healthy << u"60.0%"_s << u"60%"_s;
    QTest::newRow("just below 60") << 0.5999 << QuotaTier::warning << u"60.0%"_s << u"60%"_s;
    QTest::newRow("between") << 0.425 << QuotaTier::warning << u"42.5%"_s << u"42%"_s;
    QTest::newRow("exactly 20") << 0.2 << QuotaTier::warning << u"20.0%"_s << u"20%"_s;
    QTest::newRow("just below 20") << 0.1999 << QuotaTier::critical << u"20.0%"_s << u"20%"_s;
    QTest::newRow("none") << 0.0 << QuotaTier::critical << u"0.0%"_s << u"0%"_s;
    QTest::newRow("less than none") << -0.3 << QuotaTier::critical << u"0.0%"_s << u"0%"_s;
}

void QuotaRecordsTest::healthAndPercentagesFollowTheFraction()
{
    QFETCH(const double, fraction);
    QFETCH(const QuotaTier, tier);
    QFETCH(const QString, oneDecimal);
    QFETCH(const QString, whole);
    const auto bucket = bucketWith(fraction);
    QCOMPARE(bucket.statusTier(), tier);
    QCOMPARE(bucket.formattedPercentage(), oneDecimal);
    QCOMPARE(bucket.compactPercentage(), whole);
}

void QuotaRecordsTest::notANumberIsCritical()
{
    const auto bucket = bucketWith(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(bucket.statusTier(), QuotaTier::critical);
    QCOMPARE(bucket.statusColor(), ColorToken::SystemRed);
    QCOMPARE(bucket.statusNSColor(), ColorToken::SystemRed);
}

void QuotaRecordsTest::thereAreTwoGreens()
{
    QCOMPARE(bucketWith(0.9).statusColor(), ColorToken::SystemGreen);
    QCOMPARE(bucketWith(0.9).statusNSColor(), ColorToken::AdaptiveHealthyGreen);
    // The other two are one colour each.
    QCOMPARE(bucketWith(0.3).statusColor(), ColorToken::SystemOrange);
    QCOMPARE(bucketWith(0.3).statusNSColor(), ColorToken::SystemOrange);
    QCOMPARE(bucketWith(0.1).statusColor(), ColorToken::SystemRed);
    QCOMPARE(bucketWith(0.1).statusNSColor(), ColorToken::SystemRed);
}

void QuotaRecordsTest::aResetTimeWithoutAFractionParses()
{
    QCOMPARE(bucketResetting(u"2026-11-16T10:00:00Z"_s).parsedResetDate(),
        QDateTime(QDate(2026, 11, 16), QTime(10, 0), Qt::UTC));
}

void QuotaRecordsTest::aResetTimeWithAFractionParses()
{
    QCOMPARE(bucketResetting(u"2026-11-16T09:00:00.123Z"_s).parsedResetDate(),
        QDateTime(QDate(2026, 11, 16), QTime(9, 0, 0, 123), Qt::UTC));
}

void QuotaRecordsTest::aResetTimeThatIsNoDateTimeCountsAsNone()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(9, 0), Qt::UTC);
    const auto bucket = bucketResetting(u"2026-11-16 10:00"_s);
    QVERIFY(!bucket.parsedResetDate());
    QCOMPARE(bucket.resetCountdownString(now), u"Active"_s);
    QVERIFY(!bucket.formattedResetTimestamp(now, english()));
}

void QuotaRecordsTest::aCountdownWithoutAResetTimeIsActive()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(9, 0), Qt::UTC);
    QCOMPARE(bucketResetting(std::nullopt).resetCountdownString(now), u"Active"_s);
    QVERIFY(!bucketResetting(std::nullopt).parsedResetDate());
}

void QuotaRecordsTest::aCountdownTellsTheTwoLargestUnits_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<QString>("text");
    constexpr qint64 second = 1000;
    constexpr qint64 minute = 60 * second;
    constexpr qint64 hour = 60 * minute;
    constexpr qint64 day = 24 * hour;
    QTest::newRow("long ago") << -3 * day << u"Refreshed"_s;
    QTest::newRow("exactly now") << qint64{0} << u"Refreshed"_s;
    QTest::newRow("a moment") << qint64{1} << u"0m 0s"_s;
    QTest::newRow("nearly a second") << second - 1 << u"0m 0s"_s;
    QTest::newRow("59 s") << 59 * second << u"0m 59s"_s;
    QTest::newRow("12 min") << 12 * minute + 5 * second << u"12m 5s"_s;
    QTest::newRow("3599 s") << hour - 1 << u"59m 59s"_s;
    QTest::newRow("3600 s") << hour << u"1h 0m"_s;
    QTest::newRow("5 h") << 5 * hour + 2 * minute + 59 * second << u"5h 2m"_s;
    QTest::newRow("nearly a day") << day - second << u"23h 59m"_s;
    QTest::newRow("86400 s") << day << u"1d 0h"_s;
    QTest::newRow("2 days") << 2 * day + 3 * hour + 59 * minute << u"2d 3h"_s;
    QTest::newRow("years") << 1000 * day << u"1000d 0h"_s;
}

void QuotaRecordsTest::aCountdownTellsTheTwoLargestUnits()
{
    QFETCH(const qint64, milliseconds);
    QFETCH(const QString, text);
    const auto reset = QDateTime(QDate(2026, 11, 16), QTime(9, 0), Qt::UTC);
    QCOMPARE(bucketResetting(u"2026-11-16T09:00:00Z"_s)
                 .resetCountdownString(reset.addMSecs(-milliseconds)),
        text);
}

void QuotaRecordsTest::aCountdownDoesNotDependOnTheZone()
{
    const auto bucket = bucketResetting(u"2026-11-16T14:30:00+05:30"_s);
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(8, 0), Qt::UTC);
    QCOMPARE(bucket.resetCountdownString(now), u"1h 0m"_s);
    QCOMPARE(bucket.resetCountdownString(now.toOffsetFromUtc(-7 * 3600)), u"1h 0m"_s);
}

void QuotaRecordsTest::aResetTodayShowsTheTimeAlone()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(1, 0), Qt::UTC);
    QCOMPARE(bucketResetting(u"2026-11-16T09:00:00Z"_s).formattedResetTimestamp(now, english()),
        u"9:00 AM"_s);
}

void QuotaRecordsTest::aResetTodayThatHasPassedShowsTheTimeAlone()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59), Qt::UTC);
    QCOMPARE(bucketResetting(u"2026-11-16T00:00:00Z"_s).formattedResetTimestamp(now, english()),
        u"12:00 AM"_s);
}

void QuotaRecordsTest::aResetOnAnotherDayToComeShowsTheDate()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(23, 59, 59), Qt::UTC);
    QCOMPARE(bucketResetting(u"2026-11-17T09:00:00Z"_s).formattedResetTimestamp(now, english()),
        u"Nov 17, 2026 at 9:00 AM"_s);
    QCOMPARE(bucketResetting(u"2026-11-17T00:00:00Z"_s).formattedResetTimestamp(now, english()),
        u"Nov 17, 2026 at 12:00 AM"_s);
}

void QuotaRecordsTest::aResetOnAnotherDayThatHasPassedShowsTheTimeAlone()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(0, 0), Qt::UTC);
    QCOMPARE(bucketResetting(u"2026-11-15T23:59:59Z"_s).formattedResetTimestamp(now, english()),
        u"11:59 PM"_s);
    QCOMPARE(bucketResetting(u"2024-01-01T09:00:00Z"_s).formattedResetTimestamp(now, english()),
        u"9:00 AM"_s);
}

void QuotaRecordsTest::todayIsTheDayInTheZoneOfNow()
{
    // 23:30 UTC is tomorrow in Berlin and today in New York.
    const auto bucket = bucketResetting(u"2026-11-16T23:30:00Z"_s);
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(20, 0), Qt::UTC);
    QCOMPARE(bucket.formattedResetTimestamp(now.toTimeZone(QTimeZone("Europe/Berlin")), english()),
        u"Nov 17, 2026 at 12:30 AM"_s);
    QCOMPARE(
        bucket.formattedResetTimestamp(now.toTimeZone(QTimeZone("America/New_York")), english()),
        u"6:30 PM"_s);
}

void QuotaRecordsTest::aResetIsShownInTheZoneOfNow_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("text");
    const auto now = QDateTime(QDate(2026, 7, 1), QTime(6, 0), Qt::UTC);
    QTest::newRow("UTC") << now << u"9:00 AM"_s;
    QTest::newRow("offset") << now.toOffsetFromUtc(3600) << u"10:00 AM"_s;
    QTest::newRow("zone") << now.toTimeZone(QTimeZone("Asia/Kolkata")) << u"2:30 PM"_s;
    QTest::newRow("zone with summer time")
        << now.toTimeZone(QTimeZone("Europe/Berlin")) << u"11:00 AM"_s;
    // The tests run with TZ=UTC.
    QTest::newRow("local time") << now.toLocalTime() << u"9:00 AM"_s;
}

void QuotaRecordsTest::aResetIsShownInTheZoneOfNow()
{
    QFETCH(const QDateTime, now);
    QFETCH(const QString, text);
    QCOMPARE(
        bucketResetting(u"2026-07-01T09:00:00Z"_s).formattedResetTimestamp(now, english()), text);
}

void QuotaRecordsTest::viewsReadAbsentFieldsAsEmptyTexts()
{
    const auto now = QDateTime(QDate(2026, 11, 16), QTime(1, 0), Qt::UTC);
    auto bucket = bucketResetting(std::nullopt);
    QCOMPARE(bucket.resetTimestampText(now), QString());
    QVERIFY(!bucket.hasWindow());
    QCOMPARE(bucket.windowText(), QString());
    bucket.resetTime = u"2026-11-16T09:00:00Z"_s;
    bucket.window = u"straße"_s;
    QCOMPARE(bucket.resetTimestampText(now), u"9:00 AM"_s);
    QVERIFY(bucket.hasWindow());
    QCOMPARE(bucket.windowText(), u"STRASSE"_s);

    QuotaGroup group;
    QCOMPARE(group.descriptionText(), QString());
    QCOMPARE(group.bucketCount(), 0);
    group.description = u"d"_s;
    group.buckets.append(bucket);
    QCOMPARE(group.descriptionText(), u"d"_s);
    QCOMPARE(group.bucketCount(), 1);
}

void QuotaRecordsTest::theGeminiGroupIsTheFirstOfItsName()
{
    QuotaSummary summary{
        .groups = {groupNamed(u"Claude"_s), groupNamed(u"my GEMINI"_s), groupNamed(u"Gemini"_s)}};
    QCOMPARE(nameOf(summary.geminiGroup()), u"my GEMINI"_s);
}

void QuotaRecordsTest::aGeminiGroupOfArgonIsArgons()
{
    const auto group = groupNamed(u"Gemini 3 Pro (Argon)"_s);
    const QuotaSummary summary{.groups = {group}};
    QCOMPARE(nameOf(summary.geminiGroup()), u"none"_s);
    QCOMPARE(nameOf(summary.argonGroup()), group.id());
    QCOMPARE(group.iconName(), u"cpu"_s);
    QCOMPARE(group.groupSortPriority(), 1);
}

void QuotaRecordsTest::outsideModelsCountAsClaude_data()
{
    QTest::addColumn<QString>("name");
    for (const auto &name : {u"Claude"_s, u"GPT-OSS"_s, u"3P Models"_s})
        QTest::newRow(qUtf8Printable(name)) << name;
}

void QuotaRecordsTest::outsideModelsCountAsClaude()
{
    QFETCH(const QString, name);
    const auto group = groupNamed(name);
    const QuotaSummary summary{.groups = {group}};
    QCOMPARE(nameOf(summary.claudeGroup()), name);
    QCOMPARE(group.groupSortPriority(), 2);
    QCOMPARE(group.iconName(), u"brain"_s);
}

void QuotaRecordsTest::theFirstOfAnyOutsideModelIsClaudes()
{
    const QuotaSummary summary{.groups = {groupNamed(u"GPT"_s), groupNamed(u"Claude"_s)}};
    QCOMPARE(nameOf(summary.claudeGroup()), u"GPT"_s);
}

void QuotaRecordsTest::groupsThatAreMissingAreAbsent()
{
    const QuotaSummary summary{.groups = {groupNamed(u"Other"_s)}};
    QVERIFY(!summary.geminiGroup());
    QVERIFY(!summary.argonGroup());
    QVERIFY(!summary.claudeGroup());
    QCOMPARE(summary.groups.front().groupSortPriority(), 3);
    QCOMPARE(summary.groups.front().iconName(), u"gauge.medium"_s);
}

void QuotaRecordsTest::groupsAreSortedByFamilyAndStable()
{
    const QuotaSummary summary{
        .groups = {groupNamed(u"Other B"_s), groupNamed(u"GPT"_s), groupNamed(u"Argon"_s),
            groupNamed(u"Other A"_s), groupNamed(u"Gemini 2"_s), groupNamed(u"Claude"_s),
            groupNamed(u"Gemini 1"_s)}};
    QCOMPARE(namesOf(summary.sortedGroups()),
        (QStringList{u"Gemini 2"_s, u"Gemini 1"_s, u"Argon"_s, u"GPT"_s, u"Claude"_s, u"Other B"_s,
            u"Other A"_s}));
}

void QuotaRecordsTest::iconsAskForArgonFirstAndPrioritiesForGeminiFirst()
{
    // A name with two families' words shows both orders.
    QCOMPARE(groupNamed(u"argon gemini claude"_s).iconName(), u"cpu"_s);
    QCOMPARE(groupNamed(u"gemini claude"_s).iconName(), u"sparkles"_s);
    QCOMPARE(groupNamed(u"argon claude"_s).iconName(), u"cpu"_s);
    QCOMPARE(groupNamed(u"gemini claude"_s).groupSortPriority(), 0);
    QCOMPARE(groupNamed(u"argon claude"_s).groupSortPriority(), 1);
    QCOMPARE(groupNamed(u"argon gemini"_s).groupSortPriority(), 1);
}

void QuotaRecordsTest::bucketsAreSortedByWindowAndStable()
{
    const QuotaGroup group{.displayName = u"g"_s,
        .buckets = {sampleBucket(u"a"_s, u"weekly"_s, 0), sampleBucket(u"b"_s, std::nullopt, 0),
            sampleBucket(u"c"_s, u"5h"_s, 0), sampleBucket(u"d"_s, u"monthly"_s, 0),
            sampleBucket(u"e"_s, u"5h"_s, 0), sampleBucket(u"f"_s, u"weekly"_s, 0)}};
    QCOMPARE(idsOf(group.sortedBuckets()),
        (QStringList{u"c"_s, u"e"_s, u"a"_s, u"f"_s, u"b"_s, u"d"_s}));
    QCOMPARE(idsOf(group.buckets).first(), u"a"_s);
}

void QuotaRecordsTest::theIdAloneCanGiveABucketItsRank()
{
    const QuotaGroup group{.displayName = u"g"_s,
        .buckets = {sampleBucket(u"other"_s, std::nullopt, 0),
            sampleBucket(u"x-weekly-x"_s, std::nullopt, 0),
            sampleBucket(u"x-5h-x"_s, u"monthly"_s, 0)}};
    QCOMPARE(idsOf(group.sortedBuckets()), (QStringList{u"x-5h-x"_s, u"x-weekly-x"_s, u"other"_s}));
}

void QuotaRecordsTest::theRankOfABucketMindsTheCase()
{
    const QuotaGroup group{.displayName = u"g"_s,
        .buckets = {sampleBucket(u"x-5H"_s, u"5H"_s, 0), sampleBucket(u"WEEKLY"_s, u"Weekly"_s, 0),
            sampleBucket(u"w"_s, u"weekly"_s, 0)}};
    QCOMPARE(idsOf(group.sortedBuckets()), (QStringList{u"w"_s, u"x-5H"_s, u"WEEKLY"_s}));
}

void QuotaRecordsTest::fiveHoursWinOverWeeklyInOneBucket()
{
    const QuotaGroup group{.displayName = u"g"_s,
        .buckets = {sampleBucket(u"w"_s, u"weekly"_s, 0), sampleBucket(u"5h"_s, u"weekly"_s, 0),
            sampleBucket(u"weekly"_s, u"5h"_s, 0)}};
    QCOMPARE(idsOf(group.sortedBuckets()), (QStringList{u"5h"_s, u"weekly"_s, u"w"_s}));
}

void QuotaRecordsTest::thePrimaryBucketIsGeminisFiveHourBucket()
{
    QuotaSummary summary{.groups = {sampleGroup(u"Claude"_s, 0.1, 0.2),
                             {.displayName = u"Gemini"_s,
                                 .buckets = {sampleBucket(u"id-5h"_s, u"weekly"_s, 0.3),
                                     sampleBucket(u"five"_s, u"5h"_s, 0.4)}}}};
    // The window counts here, not the id.
    QCOMPARE(idOf(summary.primaryBucket()), u"five"_s);
}

void QuotaRecordsTest::thePrimaryBucketIsElseGeminisFirst()
{
    const QuotaSummary summary{.groups = {{.displayName = u"Gemini"_s,
                                   .buckets = {sampleBucket(u"a"_s, std::nullopt, 1),
                                       sampleBucket(u"b"_s, u"weekly"_s, 0)}}}};
    QCOMPARE(idOf(summary.primaryBucket()), u"a"_s);
}

void QuotaRecordsTest::anEmptyGeminiGroupHasNoPrimaryBucket()
{
    const QuotaSummary summary{
        .groups = {sampleGroup(u"Claude"_s, 0.1, 0.2), groupNamed(u"Gemini"_s)}};
    QCOMPARE(idOf(summary.primaryBucket()), u"none"_s);
}

void QuotaRecordsTest::withoutGeminiThePrimaryBucketIsTheFirstOfAll()
{
    const QuotaSummary summary{
        .groups = {{.displayName = u"Claude"_s,
            .buckets = {sampleBucket(u"w"_s, u"weekly"_s, 0), sampleBucket(u"f"_s, u"5h"_s, 0)}}}};
    QCOMPARE(idOf(summary.primaryBucket()), u"w"_s);
    const QuotaSummary emptyFirst{
        .groups = {groupNamed(u"Other"_s), sampleGroup(u"Claude"_s, 0.1, 0.2)}};
    QCOMPARE(idOf(emptyFirst.primaryBucket()), u"none"_s);
    QCOMPARE(idOf(QuotaSummary{}.primaryBucket()), u"none"_s);
}

void QuotaRecordsTest::theLowestGeminiBucketIsTheFirstOfEqualMinima()
{
    const QuotaSummary summary{.groups = {sampleGroup(u"Claude"_s, 0.01, 0.01),
                                   {.displayName = u"Gemini"_s,
                                       .buckets = {sampleBucket(u"a"_s, std::nullopt, 0.5),
                                           sampleBucket(u"b"_s, std::nullopt, 0.2),
                                           sampleBucket(u"c"_s, std::nullopt, 0.2)}}}};
    QCOMPARE(idOf(summary.lowestGeminiBucket()), u"b"_s);
}

void QuotaRecordsTest::theLowestGeminiBucketIsComparedUnclamped()
{
    const QuotaSummary summary{.groups = {{.displayName = u"Gemini"_s,
                                   .buckets = {sampleBucket(u"a"_s, std::nullopt, 0),
                                       sampleBucket(u"b"_s, std::nullopt, -0.5)}}}};
    QCOMPARE(idOf(summary.lowestGeminiBucket()), u"b"_s);
}

void QuotaRecordsTest::thereIsNoLowestBucketWithoutGemini()
{
    QCOMPARE(idOf(QuotaSummary{.groups = {sampleGroup(u"Claude"_s, 0, 0)}}.lowestGeminiBucket()),
        u"none"_s);
    QCOMPARE(
        idOf(QuotaSummary{.groups = {groupNamed(u"Gemini"_s)}}.lowestGeminiBucket()), u"none"_s);
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::QuotaRecordsTest)
#include "quota_records_test.moc"
