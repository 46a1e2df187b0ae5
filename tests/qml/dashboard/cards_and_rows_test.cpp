#include "platform/wording.h"
#include "qml/popover_fixture.h"
#include "qml/samples.h"
#include "views/models/theme.h"

#include <QLocale>
#include <QQuickItem>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

model::QuotaSummary oneGroup(const QList<model::QuotaBucket> &buckets)
{
    return {.groups = {{.displayName = u"Gemini"_s, .buckets = buckets}}};
}

} // namespace

class CardsAndRowsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFractionDecidesTextColorAndBar_data();
    void theFractionDecidesTextColorAndBar();
    void theBadgeCountsBuckets_data();
    void theBadgeCountsBuckets();
    void aGroupWithoutBucketsHasNoRowsAndNoGapForThem();
    void anEmptyDescriptionLeavesNoGap();
    void aDescriptionIsBetweenHeaderAndRows();
    void aWindowIsShownInUpperCase();
    void anEmptyWindowIsShownAsOne();
    void aBucketWithoutWindowShowsOnlyItsName();
    void aBucketWithoutResetTimeIsActiveAndHasNoTimestamp();
    void aResetTodayShowsItsTime();
    void aResetOnAnotherDayShowsItsDateToo();
    void aResetTomorrowShowsItsTimeAloneFromMidnightOn();
    void whatIsCutOffIsInATooltip_data();
    void whatIsCutOffIsInATooltip();
    void aNameThatFitsHasNoTooltip();
    void fiveHourBucketsComeFirst();
    void bucketsKeepTheirRowsWhenTheyMove();
    void cardsAndRowsHaveTheirPaddings();
};

void CardsAndRowsTest::theFractionDecidesTextColorAndBar_data()
{
    using model::ColorToken;
    QTest::addColumn<double>("fraction");
    QTest::addColumn<QString>("text");
    QTest::addColumn<ColorToken>("color");
    QTest::addColumn<double>("part");
    QTest::newRow("negative") << -0.3 << u"0.0%"_s << ColorToken::SystemRed << 0.0;
    QTest::newRow("empty") << 0.0 << u"0.0%"_s << ColorToken::SystemRed << 0.0;
    QTest::newRow("just critical") << 0.1999 << u"20.0%"_s << ColorToken::SystemRed << 0.1999;
    QTest::newRow("exactly 20") << 0.2 << u"20.0%"_s << ColorToken::SystemOrange << 0.2;
    QTest::newRow("middle") << 0.425 << u"42.5%"_s << ColorToken::SystemOrange << 0.425;
    QTest::newRow("exactly 60") << 0.6 << u"60.0%"_s << ColorToken::SystemGreen << 0.6;
    QTest::newRow("full") << 1.0 << u"100.0%"_s << ColorToken::SystemGreen << 1.0;
    QTest::newRow("more than full") << 1.3 << u"100.0%"_s << ColorToken::SystemGreen << 1.0;
}

void CardsAndRowsTest::theFractionDecidesTextColorAndBar()
{
    QFETCH(double, fraction);
    QFETCH(QString, text);
    QFETCH(model::ColorToken, color);
    QFETCH(double, part);
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, fraction, 60)}));
    fixture.awaitCards(1);
    QCOMPARE(fixture.text(u"percentageText"_s), text);
    const views::Theme theme(fixture.appearance, fixture.symbols);
    QCOMPARE(
        fixture.item(u"percentageText"_s)->property("color").value<QColor>(), theme.color(color));
    for (const QString &name : {u"pillDot"_s, u"pillBackground"_s, u"barFill"_s})
        QCOMPARE(fixture.item(name)->property("color").value<QColor>(), theme.fill(color));
    const QQuickItem *track = fixture.item(u"barTrack"_s);
    const QQuickItem *fill = fixture.item(u"barFill"_s);
    QCOMPARE(track->height(), 6.0);
    QCOMPARE(fill->height(), 6.0);
    QVERIFY(qFuzzyCompare(1 + fill->width(), 1 + track->width() * part));
}

void CardsAndRowsTest::theBadgeCountsBuckets_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << 0 << u"0 buckets"_s;
    QTest::newRow("one") << 1 << u"1 bucket"_s;
    QTest::newRow("three") << 3 << u"3 buckets"_s;
}

void CardsAndRowsTest::theBadgeCountsBuckets()
{
    QFETCH(int, count);
    QFETCH(QString, text);
    QList<model::QuotaBucket> buckets;
    for (int i = 0; i < count; ++i)
        buckets.append(test::sampleBucket(QString::number(i), u"A"_s, u"5h"_s, 0.5, 60));
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup(buckets));
    fixture.awaitCards(1);
    QCOMPARE(fixture.text(u"countText"_s), text);
    QCOMPARE(fixture.items(u"bucketRow"_s).size(), count);
}

void CardsAndRowsTest::aGroupWithoutBucketsHasNoRowsAndNoGapForThem()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({}));
    fixture.awaitCards(1);
    const QQuickItem *card = fixture.item(u"groupCard"_s);
    const QQuickItem *header = fixture.item(u"groupName"_s)->parentItem();
    QCOMPARE(card->height(), header->height() + 24);
}

void CardsAndRowsTest::anEmptyDescriptionLeavesNoGap()
{
    const auto heightWith = [](const std::optional<QString> &description) {
        PopoverFixture fixture;
        fixture.show();
        fixture.answer({.groups = {{.displayName = u"Gemini"_s,
                            .description = description,
                            .buckets = {test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 60)}}}});
        fixture.awaitCards(1);
        return fixture.item(u"groupCard"_s)->height();
    };
    const double without = heightWith(std::nullopt);
    QCOMPARE(heightWith(u""_s), without);
    QVERIFY(heightWith(u"text"_s) > without + 10);
}

void CardsAndRowsTest::aDescriptionIsBetweenHeaderAndRows()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    fixture.awaitCards(3);
    const double description = fixture.item(u"groupDescription"_s)->mapToScene(QPointF()).y();
    QVERIFY(fixture.item(u"groupName"_s)->mapToScene(QPointF()).y() < description);
    QVERIFY(description < fixture.item(u"bucketRow"_s)->mapToScene(QPointF()).y());
}

void CardsAndRowsTest::aWindowIsShownInUpperCase()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 60)}));
    QTRY_COMPARE(fixture.text(u"bucketWindow"_s), u"5H WINDOW"_s);
}

void CardsAndRowsTest::anEmptyWindowIsShownAsOne()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u""_s, 0.5, 60)}));
    QTRY_COMPARE(fixture.text(u"bucketWindow"_s), u" WINDOW"_s);
}

void CardsAndRowsTest::aBucketWithoutWindowShowsOnlyItsName()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, std::nullopt, 0.5, 60)}));
    QTRY_COMPARE(fixture.text(u"bucketName"_s), u"A"_s);
    QVERIFY(!fixture.item(u"bucketWindow"_s));
}

void CardsAndRowsTest::aBucketWithoutResetTimeIsActiveAndHasNoTimestamp()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, std::nullopt)}));
    QTRY_COMPARE(fixture.text(u"countdown"_s), u"Resets in Active"_s);
    QVERIFY(!fixture.item(u"timestamp"_s));
}

void CardsAndRowsTest::aResetTodayShowsItsTime()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 3600)}));
    QTRY_COMPARE(fixture.text(u"timestamp"_s), u"1:00 PM"_s);
}

void CardsAndRowsTest::aResetOnAnotherDayShowsItsDateToo()
{
    PopoverFixture fixture;
    fixture.show();
    constexpr int day = 24 * 3600;
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"weekly"_s, 0.5, 2 * day)}));
    const QString date
        = QLocale(u"en_US"_s).toString(test::sampleNow().addDays(2).date(), u"MMM d, yyyy"_s);
    QTRY_COMPARE(fixture.text(u"timestamp"_s), date + u" at 12:00 PM"_s);
    QVERIFY(!fixture.item(u"timestamp"_s)->property("truncated").toBool());
}

void CardsAndRowsTest::aResetTomorrowShowsItsTimeAloneFromMidnightOn()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 13 * 3600)}));
    QTRY_VERIFY(fixture.text(u"timestamp"_s).endsWith(u" at 1:00 AM"_s));
    fixture.clock.advance(std::chrono::minutes(12 * 60 + 1));
    QTRY_COMPARE(fixture.text(u"timestamp"_s), u"1:00 AM"_s);
}

void CardsAndRowsTest::whatIsCutOffIsInATooltip_data()
{
    QTest::addColumn<QString>("item");
    QTest::newRow("name of a group") << u"groupName"_s;
    QTest::newRow("description") << u"groupDescription"_s;
    QTest::newRow("name of a bucket") << u"bucketName"_s;
    QTest::newRow("window") << u"bucketWindow"_s;
}

void CardsAndRowsTest::whatIsCutOffIsInATooltip()
{
    QFETCH(QString, item);
    const QString longText = u"word "_s.repeated(100).trimmed();
    PopoverFixture fixture;
    fixture.show();
    fixture.answer({.groups = {{.displayName = longText,
                        .description = longText,
                        .buckets = {test::sampleBucket(u"a"_s, longText, longText, 0.5, 60)}}}});
    fixture.awaitCards(1);
    QVERIFY(fixture.item(item)->property("truncated").toBool());
    QTest::mouseMove(&fixture.window(), fixture.middle(item));
    QTRY_VERIFY(fixture.item(u"toolTip"_s));
    QCOMPARE(fixture.text(u"toolTip"_s), fixture.text(item));
    const QQuickItem *bubble = fixture.item(u"toolTip"_s);
    const QRectF place = bubble->mapRectToScene(QRectF(0, 0, bubble->width(), bubble->height()));
    QVERIFY(QRectF(QPointF(), fixture.window().size()).contains(place));
    QTest::mouseMove(&fixture.window(), QPoint(190, 5));
    QTRY_VERIFY(!fixture.item(u"toolTip"_s));
}

void CardsAndRowsTest::aNameThatFitsHasNoTooltip()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"a"_s, u"A"_s, u"5h"_s, 0.5, 60)}));
    fixture.awaitCards(1);
    QTest::mouseMove(&fixture.window(), fixture.middle(u"bucketName"_s));
    // What is offered next shows: the name would have shown first.
    QTest::mouseMove(&fixture.window(), fixture.middle(u"refreshButton"_s));
    QTRY_VERIFY(fixture.item(u"toolTip"_s));
    QCOMPARE(fixture.text(u"toolTip"_s), platform::wording().refreshToolTip);
}

void CardsAndRowsTest::fiveHourBucketsComeFirst()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(oneGroup({test::sampleBucket(u"x"_s, u"rest"_s, std::nullopt, 0.5, 60),
        test::sampleBucket(u"y"_s, u"week"_s, u"weekly"_s, 0.5, 60),
        test::sampleBucket(u"z"_s, u"hours"_s, u"5h"_s, 0.5, 60)}));
    fixture.awaitCards(1);
    QStringList names;
    const auto items = fixture.items(u"bucketName"_s);
    for (const QQuickItem *item : items)
        names.append(item->property("text").toString());
    QCOMPARE(names, QStringList({u"hours"_s, u"week"_s, u"rest"_s}));
}

void CardsAndRowsTest::bucketsKeepTheirRowsWhenTheyMove()
{
    PopoverFixture fixture;
    fixture.show();
    const auto a = test::sampleBucket(u"a"_s, u"A"_s, std::nullopt, 0.5, 60);
    const auto b = test::sampleBucket(u"b"_s, u"B"_s, std::nullopt, 0.5, 60);
    const auto c = test::sampleBucket(u"c"_s, u"C"_s, std::nullopt, 0.5, 60);
    fixture.answer(oneGroup({a, b, c}));
    fixture.awaitCards(1);
    const auto before = fixture.items(u"bucketRow"_s);
    QCOMPARE(before.size(), 3);
    fixture.service.refresh();
    fixture.answer(oneGroup({c, a}));
    QTRY_COMPARE(fixture.items(u"bucketRow"_s).size(), 2);
    QTRY_COMPARE(fixture.items(u"bucketRow"_s), QList<QQuickItem *>({before.at(2), before.at(0)}));
    // Of two with one id, each has a row.
    fixture.service.refresh();
    fixture.answer(oneGroup({a, a, b}));
    QTRY_COMPARE(fixture.items(u"bucketRow"_s).size(), 3);
}

void CardsAndRowsTest::cardsAndRowsHaveTheirPaddings()
{
    PopoverFixture fixture;
    fixture.show();
    fixture.answer(test::sampleSummary());
    fixture.awaitCards(3);
    const QQuickItem *card = fixture.item(u"groupCard"_s);
    const QQuickItem *row = fixture.item(u"bucketRow"_s);
    QCOMPARE(card->mapToScene(QPointF()).x(), 12.0);
    QCOMPARE(card->width(), 380.0 - 24);
    QCOMPARE(row->mapToItem(card, QPointF()).x(), 12.0);
    QCOMPARE(row->width(), card->width() - 24);
    QCOMPARE(fixture.item(u"barTrack"_s)->mapToItem(row, QPointF()).x(), 10.0);
    QCOMPARE(fixture.item(u"barTrack"_s)->width(), row->width() - 20);
    const auto rows = fixture.items(u"bucketRow"_s);
    QCOMPARE(rows.at(1)->mapToItem(rows.at(0), QPointF()).y(), rows.at(0)->height() + 8);
}

QTEST_MAIN(CardsAndRowsTest)
#include "cards_and_rows_test.moc"
