#include "model/toolbar_stat_items.h"
#include "support/quota_samples.h"

#include <QTest>

#include <limits>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

const ToolbarSettings everything{
    .showGeminiInToolbar = true,
    .showArgonInToolbar = true,
    .showClaudeInToolbar = true,
    .showFiveHourInMenuBar = true,
    .showWeeklyInMenuBar = true,
    .toolbarLabelStyle = u"letter"_s,
};

QuotaSummary allFamilies()
{
    return {.groups = {sampleGroup(u"Claude"_s, 1.0, 0.64), sampleGroup(u"Argon"_s, 0.12, 0.3),
                sampleGroup(u"Gemini"_s, 0.8, 0.55)}};
}

QStringList textsOf(const QList<ToolbarStatItem> &items)
{
    QStringList texts;
    for (const auto &item : items)
        texts.append(item.text);
    return texts;
}

QStringList textsOf(const QuotaSummary &summary, const ToolbarSettings &settings)
{
    return textsOf(toolbarStatItems(summary, settings));
}

QStringList valuesOf(const QuotaSummary &summary, const ToolbarSettings &settings)
{
    QStringList values;
    for (const auto &item : toolbarStatItems(summary, settings))
        values.append(item.formattedValue);
    return values;
}

ToolbarSettings withStyle(const QString &style)
{
    auto settings = everything;
    settings.toolbarLabelStyle = style;
    return settings;
}

ToolbarSettings onlyModel(ToolbarModel model)
{
    auto settings = everything;
    settings.showGeminiInToolbar = model == ToolbarModel::gemini;
    settings.showArgonInToolbar = model == ToolbarModel::argon;
    settings.showClaudeInToolbar = model == ToolbarModel::claude;
    return settings;
}

ToolbarSettings withWindows(bool fiveHour, bool weekly)
{
    auto settings = everything;
    settings.showFiveHourInMenuBar = fiveHour;
    settings.showWeeklyInMenuBar = weekly;
    return settings;
}

QuotaSummary geminiWith(const QList<QuotaBucket> &buckets)
{
    return {.groups = {{.displayName = u"Gemini"_s, .buckets = buckets}}};
}

} // namespace

class ToolbarStatItemsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutASummaryThereAreNoItems();
    void withAllModelsOffThereAreNoItems();
    void withBothWindowsOffThereAreNoItems();
    void modelsAndWindowsStandInTheirOrder();
    void theDefaultSettingsShowGeminisTwoWindows();
    void oneWindowNeedsNoTag();
    void onlyGeminiWithTwoWindowsNeedsNoLetter();
    void onlyGeminiWithOneWindowKeepsItsLetter();
    void onlyGeminiKeepsItsOtherPrefixes();
    void onlyArgonOrClaudeKeepTheirLetter();
    void theSymbolStyleHasNoColon();
    void theShortNameStyleHasShortNames();
    void anUnknownStyleIsLetter();
    void aModelWithoutAGroupIsLeftOut();
    void aModelWithoutBucketsIsLeftOut();
    void otherWindowsShowTheFirstBucketAlone();
    void aMissingFiveHourBucketShowsTheWeeklyOneAlone();
    void bothWindowsWithOneBucketShowItUntagged();
    void theFirstBucketOfAWindowIsTheOne();
    void theWindowCountsAndNotTheId();
    void numbersAreClampedAndColoursAreNot_data();
    void numbersAreClampedAndColoursAreNot();
    void anItemKeepsItsBucketWhole();
    void idsMayBeEqual();

    void theLowestSelectedBucketIsThatOfTheItems();
    void withoutItemsTheLowestBucketIsGeminis();
    void withoutASummaryThereIsNoLowestBucket();

    void theTitleJoinsTheItems();
    void withoutItemsTheTitleIsTheStar();
    void withoutItemsTheStarStaysWithTheIconSwitchedOff();
    void beforeTheFirstAnswerTheTitleSaysSo();
    void afterAFailureWithoutDataTheTitleIsTheName();

    void theTintIsTheHealthOfTheLowestBucket_data();
    void theTintIsTheHealthOfTheLowestBucket();
    void theTintWithoutABucketIsSecondaryForViewsAndGreenForPanels();
};

void ToolbarStatItemsTest::withoutASummaryThereAreNoItems()
{
    QVERIFY(toolbarStatItems(std::nullopt, everything).isEmpty());
    QVERIFY(toolbarStatItems(QuotaSummary{}, everything).isEmpty());
}

void ToolbarStatItemsTest::withAllModelsOffThereAreNoItems()
{
    auto settings = everything;
    settings.showGeminiInToolbar = false;
    settings.showArgonInToolbar = false;
    settings.showClaudeInToolbar = false;
    QVERIFY(toolbarStatItems(allFamilies(), settings).isEmpty());
}

void ToolbarStatItemsTest::withBothWindowsOffThereAreNoItems()
{
    QVERIFY(toolbarStatItems(allFamilies(), withWindows(false, false)).isEmpty());
}

void ToolbarStatItemsTest::modelsAndWindowsStandInTheirOrder()
{
    QCOMPARE(textsOf(allFamilies(), everything),
        (QStringList{u"G 5h: 80%"_s, u"G W: 55%"_s, u"A 5h: 12%"_s, u"A W: 30%"_s, u"C 5h: 100%"_s,
            u"C W: 64%"_s}));
    QCOMPARE(valuesOf(allFamilies(), everything),
        (QStringList{
            u"5h: 80%"_s, u"W: 55%"_s, u"5h: 12%"_s, u"W: 30%"_s, u"5h: 100%"_s, u"W: 64%"_s}));
    // The weekly bucket may come first in the group: the order is ours.
    const auto summary
        = geminiWith({sampleBucket(u"w"_s, u"weekly"_s, 0.55), sampleBucket(u"f"_s, u"5h"_s, 0.8)});
    QCOMPARE(textsOf(summary, everything), (QStringList{u"G 5h: 80%"_s, u"G W: 55%"_s}));
}

void ToolbarStatItemsTest::theDefaultSettingsShowGeminisTwoWindows()
{
    QCOMPARE(textsOf(allFamilies(), ToolbarSettings{}), (QStringList{u"5h: 80%"_s, u"W: 55%"_s}));
}

void ToolbarStatItemsTest::oneWindowNeedsNoTag()
{
    QCOMPARE(textsOf(allFamilies(), withWindows(true, false)),
        (QStringList{u"G: 80%"_s, u"A: 12%"_s, u"C: 100%"_s}));
    QCOMPARE(textsOf(allFamilies(), withWindows(false, true)),
        (QStringList{u"G: 55%"_s, u"A: 30%"_s, u"C: 64%"_s}));
    QCOMPARE(valuesOf(allFamilies(), withWindows(true, false)),
        (QStringList{u"80%"_s, u"12%"_s, u"100%"_s}));
}

void ToolbarStatItemsTest::onlyGeminiWithTwoWindowsNeedsNoLetter()
{
    QCOMPARE(textsOf(allFamilies(), onlyModel(ToolbarModel::gemini)),
        (QStringList{u"5h: 80%"_s, u"W: 55%"_s}));
    // Another model that is switched on but has no group brings the letter back: the switches
    // count, not the groups.
    auto settings = onlyModel(ToolbarModel::gemini);
    settings.showClaudeInToolbar = true;
    const QuotaSummary summary{.groups = {sampleGroup(u"Gemini"_s, 0.8, 0.55)}};
    QCOMPARE(textsOf(summary, settings), (QStringList{u"G 5h: 80%"_s, u"G W: 55%"_s}));
}

void ToolbarStatItemsTest::onlyGeminiWithOneWindowKeepsItsLetter()
{
    auto settings = onlyModel(ToolbarModel::gemini);
    settings.showWeeklyInMenuBar = false;
    QCOMPARE(textsOf(allFamilies(), settings), QStringList{u"G: 80%"_s});
}

void ToolbarStatItemsTest::onlyGeminiKeepsItsOtherPrefixes()
{
    auto settings = onlyModel(ToolbarModel::gemini);
    settings.toolbarLabelStyle = u"icon"_s;
    QCOMPARE(textsOf(allFamilies(), settings), (QStringList{u"✦ 5h: 80%"_s, u"✦ W: 55%"_s}));
    settings.toolbarLabelStyle = u"shortName"_s;
    QCOMPARE(textsOf(allFamilies(), settings), (QStringList{u"Gem 5h: 80%"_s, u"Gem W: 55%"_s}));
}

void ToolbarStatItemsTest::onlyArgonOrClaudeKeepTheirLetter()
{
    QCOMPARE(textsOf(allFamilies(), onlyModel(ToolbarModel::argon)),
        (QStringList{u"A 5h: 12%"_s, u"A W: 30%"_s}));
    QCOMPARE(textsOf(allFamilies(), onlyModel(ToolbarModel::claude)),
        (QStringList{u"C 5h: 100%"_s, u"C W: 64%"_s}));
}

void ToolbarStatItemsTest::theSymbolStyleHasNoColon()
{
    QCOMPARE(textsOf(allFamilies(), withStyle(u"icon"_s)),
        (QStringList{u"✦ 5h: 80%"_s, u"✦ W: 55%"_s, u"⚡ 5h: 12%"_s, u"⚡ W: 30%"_s,
            u"🧠 5h: 100%"_s, u"🧠 W: 64%"_s}));
    auto settings = withWindows(true, false);
    settings.toolbarLabelStyle = u"icon"_s;
    QCOMPARE(
        textsOf(allFamilies(), settings), (QStringList{u"✦ 80%"_s, u"⚡ 12%"_s, u"🧠 100%"_s}));
}

void ToolbarStatItemsTest::theShortNameStyleHasShortNames()
{
    QCOMPARE(textsOf(allFamilies(), withStyle(u"shortName"_s)).mid(0, 3),
        (QStringList{u"Gem 5h: 80%"_s, u"Gem W: 55%"_s, u"Arg 5h: 12%"_s}));
    auto settings = withWindows(true, false);
    settings.toolbarLabelStyle = u"shortName"_s;
    QCOMPARE(textsOf(allFamilies(), settings),
        (QStringList{u"Gem: 80%"_s, u"Arg: 12%"_s, u"Cla: 100%"_s}));
}

void ToolbarStatItemsTest::anUnknownStyleIsLetter()
{
    for (const auto &style : {u"Icon"_s, u"words"_s, QString()})
        QCOMPARE(textsOf(allFamilies(), withStyle(style)), textsOf(allFamilies(), everything));
}

void ToolbarStatItemsTest::aModelWithoutAGroupIsLeftOut()
{
    auto summary = allFamilies();
    summary.groups.remove(1);
    QCOMPARE(textsOf(summary, everything),
        (QStringList{u"G 5h: 80%"_s, u"G W: 55%"_s, u"C 5h: 100%"_s, u"C W: 64%"_s}));
}

void ToolbarStatItemsTest::aModelWithoutBucketsIsLeftOut()
{
    auto summary = allFamilies();
    summary.groups[1].buckets.clear();
    QCOMPARE(textsOf(summary, everything),
        (QStringList{u"G 5h: 80%"_s, u"G W: 55%"_s, u"C 5h: 100%"_s, u"C W: 64%"_s}));
}

void ToolbarStatItemsTest::otherWindowsShowTheFirstBucketAlone()
{
    const auto summary = geminiWith(
        {sampleBucket(u"a"_s, u"monthly"_s, 0.5), sampleBucket(u"b"_s, std::nullopt, 0.7)});
    QCOMPARE(textsOf(summary, everything), QStringList{u"G: 50%"_s});
    QCOMPARE(textsOf(summary, withWindows(true, false)), QStringList{u"G: 50%"_s});
    QCOMPARE(textsOf(summary, withWindows(false, true)), QStringList{u"G: 50%"_s});
    QCOMPARE(textsOf(summary, withWindows(false, false)), QStringList{});
}

void ToolbarStatItemsTest::aMissingFiveHourBucketShowsTheWeeklyOneAlone()
{
    const auto summary = geminiWith({sampleBucket(u"w"_s, u"weekly"_s, 0.5)});
    QCOMPARE(textsOf(summary, withWindows(true, false)), QStringList{u"G: 50%"_s});
    QCOMPARE(valuesOf(summary, withWindows(true, false)), QStringList{u"50%"_s});
}

void ToolbarStatItemsTest::bothWindowsWithOneBucketShowItUntagged()
{
    const auto summary = geminiWith(
        {sampleBucket(u"m"_s, u"monthly"_s, 0.9), sampleBucket(u"w"_s, u"weekly"_s, 0.5)});
    QCOMPARE(textsOf(summary, onlyModel(ToolbarModel::gemini)), QStringList{u"G: 50%"_s});
}

void ToolbarStatItemsTest::theFirstBucketOfAWindowIsTheOne()
{
    const auto summary
        = geminiWith({sampleBucket(u"a"_s, u"5h"_s, 0.1), sampleBucket(u"b"_s, u"5h"_s, 0.2),
            sampleBucket(u"c"_s, u"weekly"_s, 0.3), sampleBucket(u"d"_s, u"weekly"_s, 0.4)});
    QCOMPARE(textsOf(summary, everything), (QStringList{u"G 5h: 10%"_s, u"G W: 30%"_s}));
}

void ToolbarStatItemsTest::theWindowCountsAndNotTheId()
{
    const auto summary = geminiWith({sampleBucket(u"first"_s, std::nullopt, 0.1),
        sampleBucket(u"x-5h"_s, u"5H"_s, 0.2), sampleBucket(u"weekly"_s, std::nullopt, 0.3)});
    QCOMPARE(textsOf(summary, everything), QStringList{u"G: 10%"_s});
}

void ToolbarStatItemsTest::numbersAreClampedAndColoursAreNot_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<QString>("text");
    QTest::addColumn<ColorToken>("color");
    QTest::addColumn<ColorToken>("nsColor");
    const auto row
        = [](const char *name, double fraction, const QString &text, ColorToken color,
              ColorToken nsColor) { QTest::newRow(name) << fraction << text << color << nsColor; };
    using enum ColorToken;
    row("more than full", 1.2, u"G: 100%"_s, SystemGreen, AdaptiveHealthyGreen);
    row("60", 0.6, u"G: 60%"_s, SystemGreen, AdaptiveHealthyGreen);
    row("rounded to 60", 0.5999, u"G: 60%"_s, SystemOrange, SystemOrange);
    row("20", 0.2, u"G: 20%"_s, SystemOrange, SystemOrange);
    row("rounded to 20", 0.1999, u"G: 20%"_s, SystemRed, SystemRed);
    row("none", 0, u"G: 0%"_s, SystemRed, SystemRed);
    row("less than none", -0.1, u"G: 0%"_s, SystemRed, SystemRed);
}

void ToolbarStatItemsTest::numbersAreClampedAndColoursAreNot()
{
    QFETCH(const double, fraction);
    QFETCH(const QString, text);
    QFETCH(const ColorToken, color);
    QFETCH(const ColorToken, nsColor);
    const auto items
        = toolbarStatItems(geminiWith({sampleBucket(u"b"_s, u"5h"_s, fraction)}), everything);
    QCOMPARE(items.size(), 1);
    QCOMPARE(items.at(0).text, text);
    QCOMPARE(items.at(0).color, color);
    QCOMPARE(items.at(0).nsColor, nsColor);
}

void ToolbarStatItemsTest::anItemKeepsItsBucketWhole()
{
    auto bucket = sampleBucket(u"b"_s, u"5h"_s, 0.5);
    bucket.description = u"d"_s;
    bucket.resetTime = u"2026-11-16T10:00:00Z"_s;
    const auto items = toolbarStatItems(geminiWith({bucket}), everything);
    QCOMPARE(items.size(), 1);
    QCOMPARE(items.at(0).bucket, bucket);
    QCOMPARE(items.at(0).model, ToolbarModel::gemini);
    QCOMPARE(items.at(0).id(), u"gemini_b"_s);
}

void ToolbarStatItemsTest::idsMayBeEqual()
{
    const auto items = toolbarStatItems(
        geminiWith({sampleBucket(u"b"_s, u"5h"_s, 0.5), sampleBucket(u"b"_s, u"weekly"_s, 0.6)}),
        everything);
    QCOMPARE(items.size(), 2);
    QCOMPARE(items.at(0).id(), items.at(1).id());
    QCOMPARE(textsOf(items), (QStringList{u"G 5h: 50%"_s, u"G W: 60%"_s}));
}

void ToolbarStatItemsTest::theLowestSelectedBucketIsThatOfTheItems()
{
    const QuotaSummary summary = allFamilies();
    QCOMPARE(lowestSelectedBucket(summary, toolbarStatItems(summary, everything))->id(),
        u"Argon-five"_s);
    QCOMPARE(
        lowestSelectedBucket(summary, toolbarStatItems(summary, onlyModel(ToolbarModel::claude)))
            ->id(),
        u"Claude-week"_s);
}

void ToolbarStatItemsTest::withoutItemsTheLowestBucketIsGeminis()
{
    const QuotaSummary summary = allFamilies();
    QCOMPARE(lowestSelectedBucket(summary, {})->id(), u"Gemini-week"_s);
    QVERIFY(!lowestSelectedBucket(QuotaSummary{}, {}));
}

void ToolbarStatItemsTest::withoutASummaryThereIsNoLowestBucket()
{
    QVERIFY(!lowestSelectedBucket(std::nullopt, {}));
}

void ToolbarStatItemsTest::theTitleJoinsTheItems()
{
    const QuotaSummary summary = allFamilies();
    const auto items = toolbarStatItems(summary, withWindows(true, false));
    QCOMPARE(menuBarTitle(summary, items, StarAtStart::Yes, ConnectionPhase::Settled),
        u"\u2726 G: 80% \u00B7 A: 12% \u00B7 C: 100%"_s);
    QCOMPARE(menuBarTitle(summary, items, StarAtStart::No, ConnectionPhase::Connecting),
        u"G: 80% \u00B7 A: 12% \u00B7 C: 100%"_s);
}

void ToolbarStatItemsTest::withoutItemsTheTitleIsTheStar()
{
    QCOMPARE(menuBarTitle(allFamilies(), {}, StarAtStart::Yes, ConnectionPhase::Settled), u"✦"_s);
}

void ToolbarStatItemsTest::withoutItemsTheStarStaysWithTheIconSwitchedOff()
{
    QCOMPARE(
        menuBarTitle(allFamilies(), {}, StarAtStart::No, ConnectionPhase::Settled), u"✦ Gemini"_s);
}

void ToolbarStatItemsTest::beforeTheFirstAnswerTheTitleSaysSo()
{
    QCOMPARE(
        menuBarTitle(std::nullopt, {}, StarAtStart::Yes, ConnectionPhase::Connecting), u"✦ ..."_s);
    QCOMPARE(
        menuBarTitle(std::nullopt, {}, StarAtStart::No, ConnectionPhase::Connecting), u"✦ ..."_s);
}

void ToolbarStatItemsTest::afterAFailureWithoutDataTheTitleIsTheName()
{
    QCOMPARE(
        menuBarTitle(std::nullopt, {}, StarAtStart::Yes, ConnectionPhase::Settled), u"✦ Gemini"_s);
}

void ToolbarStatItemsTest::theTintIsTheHealthOfTheLowestBucket_data()
{
    QTest::addColumn<double>("fraction");
    QTest::addColumn<ColorToken>("tint");
    QTest::addColumn<ColorToken>("nsTint");
    using enum ColorToken;
    QTest::newRow("full") << 1.5 << SystemGreen << AdaptiveHealthyGreen;
    QTest::newRow("60") << 0.6 << SystemGreen << AdaptiveHealthyGreen;
    QTest::newRow("below 60") << 0.5999 << SystemOrange << SystemOrange;
    QTest::newRow("20") << 0.2 << SystemOrange << SystemOrange;
    QTest::newRow("below 20") << 0.1999 << SystemRed << SystemRed;
    QTest::newRow("none") << 0.0 << SystemRed << SystemRed;
    QTest::newRow("less than none") << -1.0 << SystemRed << SystemRed;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << SystemRed
                                  << SystemRed;
}

void ToolbarStatItemsTest::theTintIsTheHealthOfTheLowestBucket()
{
    QFETCH(const double, fraction);
    QFETCH(const ColorToken, tint);
    QFETCH(const ColorToken, nsTint);
    const auto bucket = sampleBucket(u"b"_s, u"5h"_s, fraction);
    QCOMPARE(menuBarTint(bucket), tint);
    QCOMPARE(menuBarNSTint(bucket), nsTint);
}

void ToolbarStatItemsTest::theTintWithoutABucketIsSecondaryForViewsAndGreenForPanels()
{
    QCOMPARE(menuBarTint(std::nullopt), ColorToken::SecondaryLabel);
    QCOMPARE(menuBarNSTint(std::nullopt), ColorToken::AdaptiveHealthyGreen);
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::ToolbarStatItemsTest)
#include "toolbar_stat_items_test.moc"
