#include "core/date_styles.h"

#include <QTest>
#include <QTimeZone>

namespace brimwatch {

using namespace Qt::Literals::StringLiterals;

class DateStylesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theThreeStylesOfEnglish();
    void dateAndTimeAreJoinedAsInTheLongForm();
    void aDateIsShownInItsOwnZone();
    void theOffsetIsThatOfTheMomentNotOfToday();
    void theYearIsGregorianEverywhere();
    void anUnknownLocaleStillWritesDates_data();
    void anUnknownLocaleStillWritesDates();
    void anInvalidDateIsNoText();
    void askingAgainGivesTheSame();

    void theLocaleIsTheFirstThatIsSet_data();
    void theLocaleIsTheFirstThatIsSet();
    void theUsersStylesFollowTheEnvironment();
};

namespace {

const QDateTime &morning()
{
    static const QDateTime date(QDate(2026, 11, 16), QTime(4, 59, 24), Qt::UTC);
    return date;
}

} // namespace

void DateStylesTest::init()
{
    qunsetenv("LC_ALL");
    qunsetenv("LC_TIME");
    qunsetenv("LANG");
}

void DateStylesTest::theThreeStylesOfEnglish()
{
    const DateStyles styles(u"en_US"_s);
    QCOMPARE(styles.timeShortened(morning()), u"4:59 AM"_s);
    QCOMPARE(styles.dateAbbreviatedTimeShortened(morning()), u"Nov 16, 2026 at 4:59 AM"_s);
    QCOMPARE(styles.dateAbbreviatedTimeStandard(morning()), u"Nov 16, 2026 at 4:59:24 AM"_s);
}

void DateStylesTest::dateAndTimeAreJoinedAsInTheLongForm()
{
    QCOMPARE(
        DateStyles(u"fr_FR"_s).dateAbbreviatedTimeShortened(morning()), u"16 nov. 2026 à 04:59"_s);
}

void DateStylesTest::aDateIsShownInItsOwnZone()
{
    const DateStyles styles(u"en_US"_s);
    QCOMPARE(styles.timeShortened(morning().toTimeZone(QTimeZone("Asia/Kolkata"))), u"10:29 AM"_s);
    QCOMPARE(styles.timeShortened(morning().toOffsetFromUtc(-9 * 3600)), u"7:59 PM"_s);
    QCOMPARE(styles.dateAbbreviatedTimeShortened(morning().toOffsetFromUtc(-9 * 3600)),
        u"Nov 15, 2026 at 7:59 PM"_s);
}

void DateStylesTest::theOffsetIsThatOfTheMomentNotOfToday()
{
    const DateStyles styles(u"en_US"_s);
    const QTimeZone berlin("Europe/Berlin");
    QCOMPARE(styles.timeShortened(
                 QDateTime(QDate(2026, 1, 5), QTime(12, 0), Qt::UTC).toTimeZone(berlin)),
        u"1:00 PM"_s);
    QCOMPARE(styles.timeShortened(
                 QDateTime(QDate(2026, 7, 5), QTime(12, 0), Qt::UTC).toTimeZone(berlin)),
        u"2:00 PM"_s);
}

void DateStylesTest::theYearIsGregorianEverywhere()
{
    // Thailand's own calendar would say 2569.
    QVERIFY(DateStyles(u"th_TH"_s).dateAbbreviatedTimeShortened(morning()).contains(u"2026"_s));
}

void DateStylesTest::anUnknownLocaleStillWritesDates_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("no such language") << u"xx_YY"_s;
    QTest::newRow("a path") << u"../../etc"_s;
    QTest::newRow("one long word") << QString(5000, u'x');
    QTest::newRow("too many parts") << u"en"_s + u"_aa"_s.repeated(500);
    QTest::newRow("too long with its calendar") << u"en_US_"_s + u"abcde_"_s.repeated(25);
    QTest::newRow("a calendar of its own") << u"en_US@calendar=buddhist"_s;
    QTest::newRow("a keyword cut short") << u"en_US@calendar"_s;
    QTest::newRow("no ASCII") << u"日本"_s;
    QTest::newRow("nothing") << QString();
}

void DateStylesTest::anUnknownLocaleStillWritesDates()
{
    QFETCH(const QString, name);
    const QString text = DateStyles(name).dateAbbreviatedTimeStandard(morning());
    QVERIFY2(text.contains(u"2026"_s), qUtf8Printable(text));
    QVERIFY2(text.contains(u"59"_s), qUtf8Printable(text));
}

void DateStylesTest::anInvalidDateIsNoText()
{
    QCOMPARE(DateStyles(u"en_US"_s).timeShortened({}), QString());
}

void DateStylesTest::askingAgainGivesTheSame()
{
    const DateStyles styles(u"en_US"_s);
    QCOMPARE(styles.timeShortened(morning()), u"4:59 AM"_s);
    QCOMPARE(styles.timeShortened(morning().addSecs(3600)), u"5:59 AM"_s);
    QCOMPARE(styles.timeShortened(morning()), u"4:59 AM"_s);
}

void DateStylesTest::theLocaleIsTheFirstThatIsSet_data()
{
    QTest::addColumn<QByteArray>("all");
    QTest::addColumn<QByteArray>("time");
    QTest::addColumn<QByteArray>("lang");
    QTest::addColumn<QString>("locale");
    const QByteArray none;
    QTest::newRow("none") << none << none << none << u"en_US"_s;
    QTest::newRow("LANG alone") << none << none << QByteArray("de_DE") << u"de_DE"_s;
    QTest::newRow("LC_TIME before LANG")
        << none << QByteArray("fr_FR") << QByteArray("de_DE") << u"fr_FR"_s;
    QTest::newRow("LC_ALL before both")
        << QByteArray("ja_JP") << QByteArray("fr_FR") << QByteArray("de_DE") << u"ja_JP"_s;
    QTest::newRow("encoding and modifier go")
        << none << none << QByteArray("de_DE.UTF-8@euro") << u"de_DE"_s;
    QTest::newRow("modifier alone goes") << none << none << QByteArray("de_DE@euro") << u"de_DE"_s;
    QTest::newRow("a script") << none << none << QByteArray("sr_RS.UTF-8@latin") << u"sr_Latn_RS"_s;
    QTest::newRow("a script without a region")
        << none << none << QByteArray("uz@cyrillic") << u"uz_Cyrl"_s;
    QTest::newRow("C") << none << none << QByteArray("C") << u"en_US"_s;
    QTest::newRow("C with an encoding") << none << none << QByteArray("C.UTF-8") << u"en_US"_s;
    QTest::newRow("POSIX") << none << none << QByteArray("POSIX") << u"en_US"_s;
    QTest::newRow("C for times before LANG")
        << none << QByteArray("C") << QByteArray("de_DE") << u"en_US"_s;
    QTest::newRow("an encoding alone") << none << none << QByteArray(".UTF-8") << u"en_US"_s;
}

void DateStylesTest::theLocaleIsTheFirstThatIsSet()
{
    QFETCH(const QByteArray, all);
    QFETCH(const QByteArray, time);
    QFETCH(const QByteArray, lang);
    QFETCH(const QString, locale);
    // Set but empty counts as not set.
    qputenv("LC_ALL", all);
    qputenv("LC_TIME", time);
    qputenv("LANG", lang);
    QCOMPARE(userDateLocale(), locale);
}

void DateStylesTest::theUsersStylesFollowTheEnvironment()
{
    // Nothing else in this program asks for them, so this is the first time and the environment is
    // read now.
    qputenv("LC_TIME", "es_ES.UTF-8");
    QCOMPARE(DateStyles::user().dateAbbreviatedTimeShortened(morning()), u"16 nov 2026, 4:59"_s);
    qputenv("LC_TIME", "en_US.UTF-8");
    QCOMPARE(&DateStyles::user(), &DateStyles::user());
    QCOMPARE(DateStyles::user().dateAbbreviatedTimeShortened(morning()), u"16 nov 2026, 4:59"_s);
}

} // namespace brimwatch

QTEST_GUILESS_MAIN(brimwatch::DateStylesTest)
#include "date_styles_test.moc"
