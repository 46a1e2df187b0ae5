#include "views/dashboard/refresh_spin.h"
#include "views/drawing/tabular_text.h"
#include "views/models/quota_entries.h"
#include "views/models/time_ago.h"

#include <QFontDatabase>
#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class ViewsPartsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void timeAgoInWords_data();
    void timeAgoInWords();
    void aFractionOfASecondIsDropped();
    void accessibleTextsHaveNoSeconds();
    void aSpinIsOneTurnWhenNothingRuns();
    void aSpinTurnsAgainWhileItShouldContinue();
    void onlyTheFirstTurnEases();
    void aSpinThatRunsIsNotStartedAgain();
    void allDigitsAreEquallyWide();
    void shownTextsAreOneLineOfLimitedLength();
};

void ViewsPartsTest::timeAgoInWords_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("words");
    QTest::newRow("to come") << qint64(-100) << u"just now"_s;
    QTest::newRow("now") << qint64(0) << u"just now"_s;
    QTest::newRow("4 s") << qint64(4) << u"just now"_s;
    QTest::newRow("5 s") << qint64(5) << u"5s ago"_s;
    QTest::newRow("42 s") << qint64(42) << u"42s ago"_s;
    QTest::newRow("59 s") << qint64(59) << u"59s ago"_s;
    QTest::newRow("60 s") << qint64(60) << u"1m ago"_s;
    QTest::newRow("330 s") << qint64(330) << u"5m ago"_s;
    QTest::newRow("3599 s") << qint64(3599) << u"59m ago"_s;
    QTest::newRow("3600 s") << qint64(3600) << u"1h ago"_s;
    QTest::newRow("7500 s") << qint64(7500) << u"2h ago"_s;
    QTest::newRow("days") << qint64(100 * 3600) << u"100h ago"_s;
}

void ViewsPartsTest::timeAgoInWords()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, words);
    const QDateTime now(QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc());
    QCOMPARE(views::timeAgo(now.addSecs(-seconds), now), words);
}

void ViewsPartsTest::aFractionOfASecondIsDropped()
{
    const QDateTime now(QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc());
    QCOMPARE(views::timeAgo(now.addMSecs(-4999), now), u"just now"_s);
    QCOMPARE(views::timeAgo(now.addMSecs(-59999), now), u"59s ago"_s);
}

void ViewsPartsTest::accessibleTextsHaveNoSeconds()
{
    const QDateTime now(QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc());
    QCOMPARE(views::accessibleTimeAgo(now.addSecs(100), now), u"just now"_s);
    QCOMPARE(views::accessibleTimeAgo(now.addMSecs(-59999), now), u"just now"_s);
    QCOMPARE(views::accessibleTimeAgo(now.addSecs(-60), now), u"1m ago"_s);
    QCOMPARE(views::accessibleTimeAgo(now.addSecs(-7500), now), u"2h ago"_s);
}

void ViewsPartsTest::aSpinIsOneTurnWhenNothingRuns()
{
    views::RefreshSpin spin([] { return false; });
    QCOMPARE(spin.rotationDegrees(), 0.0);
    QVERIFY(!spin.isSpinning());
    spin.trigger();
    QVERIFY(spin.isSpinning());
    QCOMPARE(spin.rotationDegrees(), 360.0);
    QCOMPARE(spin.turnDuration(), 700);
    QTRY_VERIFY(!spin.isSpinning());
    QCOMPARE(spin.rotationDegrees(), 360.0);
}

void ViewsPartsTest::aSpinTurnsAgainWhileItShouldContinue()
{
    int left = 2;
    views::RefreshSpin spin([&left] { return left-- > 0; });
    spin.trigger();
    QTRY_VERIFY(!spin.isSpinning());
    QCOMPARE(spin.rotationDegrees(), 3 * 360.0);
}

void ViewsPartsTest::onlyTheFirstTurnEases()
{
    int left = 1;
    views::RefreshSpin spin([&left] { return left-- > 0; });
    QList<bool> eases;
    connect(&spin, &views::RefreshSpin::rotationDegreesChanged, this,
        [&] { eases.append(spin.easesInOut()); });
    spin.trigger();
    QTRY_VERIFY(!spin.isSpinning());
    spin.trigger();
    QCOMPARE(eases, QList<bool>({true, false, true}));
}

void ViewsPartsTest::aSpinThatRunsIsNotStartedAgain()
{
    views::RefreshSpin spin([] { return false; });
    spin.trigger();
    spin.trigger();
    QCOMPARE(spin.rotationDegrees(), 360.0);
}

void ViewsPartsTest::allDigitsAreEquallyWide()
{
    const auto families = QFontDatabase::families();
    QVERIFY(!families.isEmpty());
    for (const QString &family : families) {
        QFont font(family);
        font.setPixelSize(11);
        const qreal zeros = views::TabularText::advance(font, u"Resets in 00m 00s"_s);
        QCOMPARE(views::TabularText::advance(font, u"Resets in 11m 74s"_s), zeros);
        QVERIFY(views::TabularText::advance(font, u"Resets in 111m 74s"_s) > zeros);
    }
}

void ViewsPartsTest::shownTextsAreOneLineOfLimitedLength()
{
    QCOMPARE(views::shownText(u"a\nb\u2028c\td"_s), u"a b c d"_s);
    QCOMPARE(views::shownText(u"x"_s.repeated(100000)).size(), 1000);
    // What a reader sees as one character is not cut in two.
    const QString fits = u"x"_s.repeated(999);
    QCOMPARE(views::shownText(fits + u"🟢🟢"_s), fits);
    QCOMPARE(views::shownText(fits + u"e\u0301e"_s), fits);
    QCOMPARE(views::shownText(u"<b>&amp;  two blanks"_s), u"<b>&amp;  two blanks"_s);
}

QTEST_MAIN(ViewsPartsTest)
#include "views_parts_test.moc"
