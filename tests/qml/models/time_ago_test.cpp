#include "views/models/time_ago.h"

#include <QTest>
#include <QTimeZone>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class TimeAgoTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void timeAgoInWords_data();
    void timeAgoInWords();
    void aFractionOfASecondIsDropped();
    void accessibleTextsHaveNoSeconds();
};

void TimeAgoTest::timeAgoInWords_data()
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

void TimeAgoTest::timeAgoInWords()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, words);
    const QDateTime now(QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc());
    QCOMPARE(views::timeAgo(now.addSecs(-seconds), now), words);
}

void TimeAgoTest::aFractionOfASecondIsDropped()
{
    const QDateTime now(QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc());
    QCOMPARE(views::timeAgo(now.addMSecs(-4999), now), u"just now"_s);
    QCOMPARE(views::timeAgo(now.addMSecs(-59999), now), u"59s ago"_s);
}

void TimeAgoTest::accessibleTextsHaveNoSeconds()
{
    const QDateTime now(QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc());
    QCOMPARE(views::accessibleTimeAgo(now.addSecs(100), now), u"just now"_s);
    QCOMPARE(views::accessibleTimeAgo(now.addMSecs(-59999), now), u"just now"_s);
    QCOMPARE(views::accessibleTimeAgo(now.addSecs(-60), now), u"1m ago"_s);
    QCOMPARE(views::accessibleTimeAgo(now.addSecs(-7500), now), u"2h ago"_s);
}

QTEST_MAIN(TimeAgoTest)
#include "time_ago_test.moc"
