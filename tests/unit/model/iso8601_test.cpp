#include "model/iso8601.h"

#include <QTest>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

class Iso8601Test : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMomentIsParsed_data();
    void aMomentIsParsed();
    void anythingElseIsAbsent_data();
    void anythingElseIsAbsent();
    void aTimestampKeepsItsTextBesideTheMoment();
};

void Iso8601Test::aMomentIsParsed_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("without a fraction") << u"2026-11-16T09:00:00Z"_s << qint64{1794819600000};
    QTest::newRow("milliseconds") << u"2026-11-16T09:00:00.123Z"_s << qint64{1794819600123};
    QTest::newRow("tenths") << u"2026-11-16T09:00:00.1Z"_s << qint64{1794819600100};
    QTest::newRow("nanoseconds, cut not rounded")
        << u"2026-11-16T09:00:00.123999999Z"_s << qint64{1794819600123};
    QTest::newRow("east of Greenwich") << u"2026-11-16T14:30:00+05:30"_s << qint64{1794819600000};
    QTest::newRow("west of Greenwich") << u"2026-11-16T05:30:00-03:30"_s << qint64{1794819600000};
    QTest::newRow("a leap day") << u"2024-02-29T12:00:00Z"_s << qint64{1709208000000};
    QTest::newRow("before 1970") << u"1969-12-31T23:59:59.5Z"_s << qint64{-500};
    QTest::newRow("the last one") << u"9999-12-31T23:59:59Z"_s << qint64{253402300799000};
    QTest::newRow("the first one") << u"1583-01-01T00:00:00Z"_s << qint64{-12212553600000};
}

void Iso8601Test::aMomentIsParsed()
{
    QFETCH(const QString, text);
    QFETCH(const qint64, milliseconds);
    const auto moment = parseInternetDateTime(text);
    QVERIFY(moment.has_value());
    QCOMPARE(moment->toMSecsSinceEpoch(), milliseconds);
    QCOMPARE(moment->timeSpec(), Qt::UTC);
}

void Iso8601Test::anythingElseIsAbsent_data()
{
    QTest::addColumn<QString>("text");
    for (const auto &text : {
             u""_s,
             u"junk"_s,
             u"2026-11-16"_s,
             u"2026-11-16 10:00"_s,
             u"2026-11-16 09:00:00Z"_s,
             u"2026-11-16T09:00Z"_s,
             u"2026-11-16T09:00:00"_s,
             u"2026-11-16T09:00:00.Z"_s,
             u"2026-11-16T09:00:00.123"_s,
             u"2026-11-16T09:00:00,123Z"_s,
             u"2026-11-16T09:00:00.1234567890Z"_s,
             u"2026-11-16t09:00:00Z"_s,
             u"2026-11-16T09:00:00z"_s,
             u"20261116T090000Z"_s,
             u"2026-W47-1T09:00:00Z"_s,
             u"2026-320T09:00:00Z"_s,
             u"2026-13-01T00:00:00Z"_s,
             u"2026-00-10T00:00:00Z"_s,
             u"2026-02-30T00:00:00Z"_s,
             u"2026-11-16T24:00:00Z"_s,
             u"2026-11-16T09:60:00Z"_s,
             u"2026-11-16T23:59:60Z"_s,
             u"2026-11-16T09:00:00+05"_s,
             u"2026-11-16T09:00:00+0530"_s,
             u"2026-11-16T09:00:00+24:00"_s,
             u"2026-11-16T09:00:00+05:60"_s,
             u"2026-11-16T09:00:00 Z"_s,
             u" 2026-11-16T09:00:00Z"_s,
             u"2026-11-16T09:00:00Z "_s,
             u"2026-11-16T09:00:00ZZ"_s,
             u"+026-11-16T09:00:00Z"_s,
             u"10000-01-01T00:00:00Z"_s,
             u"1582-12-31T23:59:59Z"_s,
             u"0000-01-01T00:00:00Z"_s,
             u"٢٠٢٦-11-16T09:00:00Z"_s,
             u"1794823164"_s,
         })
        QTest::newRow(qUtf8Printable(text)) << text;
}

void Iso8601Test::anythingElseIsAbsent()
{
    QFETCH(const QString, text);
    QVERIFY(!parseInternetDateTime(text));
}

void Iso8601Test::aTimestampKeepsItsTextBesideTheMoment()
{
    const QString text = u"2026-11-16T14:30:00.000+05:30"_s;
    const Timestamp timestamp(text);
    QCOMPARE(timestamp.text(), text);
    QCOMPARE(timestamp.moment(), parseInternetDateTime(text));
    QVERIFY(timestamp.moment().has_value());
    // The same moment in other words is another text.
    QVERIFY(timestamp != Timestamp(u"2026-11-16T09:00:00Z"_s));
    QVERIFY(timestamp == Timestamp(text));

    const Timestamp senseless(u"tomorrow"_s);
    QCOMPARE(senseless.text(), u"tomorrow"_s);
    QVERIFY(!senseless.moment());
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::Iso8601Test)
#include "iso8601_test.moc"
