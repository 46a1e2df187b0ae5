#include "model/percent.h"

#include <QTest>

#include <clocale>
#include <cmath>
#include <limits>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

class PercentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFractionBecomesAPercentageBetween0And100_data();
    void aFractionBecomesAPercentageBetween0And100();
    void aNegativeZeroHasNoSign();
    void notANumberStaysOne();
    void tiesGoToEven();
    void theDecimalPointIsAPointInEveryLocale();
};

void PercentTest::aFractionBecomesAPercentageBetween0And100_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<double>("percentage");
    QTest::newRow("none") << 0.0 << 0.0;
    QTest::newRow("some") << 0.425 << 42.5;
    QTest::newRow("all") << 1.0 << 100.0;
    QTest::newRow("more than all") << 1.7 << 100.0;
    QTest::newRow("less than none") << -0.3 << 0.0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 100.0;
    QTest::newRow("the largest number") << std::numeric_limits<double>::max() << 100.0;
}

void PercentTest::aFractionBecomesAPercentageBetween0And100()
{
    QFETCH(const double, fraction);
    QFETCH(const double, percentage);
    QCOMPARE(clampedPercentage(fraction), percentage);
}

void PercentTest::aNegativeZeroHasNoSign()
{
    QVERIFY(!std::signbit(clampedPercentage(-0.0)));
    QCOMPARE(percentWithOneDecimal(clampedPercentage(-0.0)), u"0.0%"_s);
}

void PercentTest::notANumberStaysOne()
{
    QVERIFY(std::isnan(clampedPercentage(std::numeric_limits<double>::quiet_NaN())));
}

void PercentTest::tiesGoToEven()
{
    QCOMPARE(wholePercent(0.5), u"0%"_s);
    QCOMPARE(wholePercent(1.5), u"2%"_s);
    QCOMPARE(wholePercent(2.5), u"2%"_s);
    QCOMPARE(percentWithOneDecimal(0.25), u"0.2%"_s);
    QCOMPARE(percentWithOneDecimal(0.75), u"0.8%"_s);
}

void PercentTest::theDecimalPointIsAPointInEveryLocale()
{
    // Where no locale with a comma is installed this changes nothing, and the answer must be the
    // same.
    const char *before
        = std::setlocale(LC_NUMERIC, nullptr); // NOLINT(concurrency-mt-unsafe): one thread.
    const QByteArray kept(before);
    for (const char *name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C.UTF-8"}) {
        std::setlocale(LC_NUMERIC, name); // NOLINT(concurrency-mt-unsafe): one thread.
        QCOMPARE(percentWithOneDecimal(42.5), u"42.5%"_s);
    }
    std::setlocale(LC_NUMERIC, kept.constData()); // NOLINT(concurrency-mt-unsafe): one thread.
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::PercentTest)
#include "percent_test.moc"
