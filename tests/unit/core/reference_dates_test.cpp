#include "core/date_styles.h"
#include "support/json_cases.h"

#include <QTest>
#include <QTimeZone>

namespace brimwatch {

using namespace Qt::Literals::StringLiterals;
using test::isRequired;

class ReferenceDatesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void datesAreWritten_data();
    void datesAreWritten();
};

void ReferenceDatesTest::datesAreWritten_data()
{
    QTest::addColumn<QJsonObject>("c");
    for (const auto &c : test::referenceCases(u"dates.json"_s)) {
        QTest::addRow("%s %s %lld%s", qUtf8Printable(c["locale"_L1].toString()),
            qUtf8Printable(c["timezone"_L1].toString()),
            static_cast<long long>(c["epoch"_L1].toInteger()), isRequired(c) ? "" : " (observed)")
            << c;
    }
}

void ReferenceDatesTest::datesAreWritten()
{
    QFETCH(const QJsonObject, c);
    const DateStyles styles(c["locale"_L1].toString());
    const QTimeZone zone(c["timezone"_L1].toString().toLatin1());
    QVERIFY(zone.isValid());
    const auto date = QDateTime::fromSecsSinceEpoch(c["epoch"_L1].toInteger(), zone);
    const QString time = styles.timeShortened(date);
    const QString dateAndTime = styles.dateAbbreviatedTimeShortened(date);
    const QString withSeconds = styles.dateAbbreviatedTimeStandard(date);
    if (isRequired(c)) {
        QCOMPARE(time, c["time_shortened"_L1].toString());
        QCOMPARE(dateAndTime, c["date_abbreviated_time_shortened"_L1].toString());
        QCOMPARE(withSeconds, c["date_abbreviated_time_standard"_L1].toString());
    } else {
        // Other versions of the locale data have other words and signs.
        QVERIFY(!time.isEmpty());
        QVERIFY(dateAndTime.size() > time.size());
        QVERIFY(dateAndTime != withSeconds);
        QVERIFY(!QString(time + dateAndTime + withSeconds).contains(QChar(0x202f)));
    }
}

} // namespace brimwatch

QTEST_GUILESS_MAIN(brimwatch::ReferenceDatesTest)
#include "reference_dates_test.moc"
