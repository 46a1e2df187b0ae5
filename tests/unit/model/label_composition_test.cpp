#include "model/label_composition.h"
#include "support/quota_samples.h"

#include <QTest>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

namespace {

bool hasAllSymbols(const QString & /*name*/)
{
    return true;
}

bool hasNoSymbols(const QString & /*name*/)
{
    return false;
}

/// "G 5h: 80%" in green and "G W: 55%" in orange.
LabelInput twoItems(const QString &style = u"letter"_s)
{
    const auto items
        = toolbarStatItems(QuotaSummary{.groups = {sampleGroup(u"Gemini"_s, 0.8, 0.55)}},
            {.showArgonInToolbar = true, .toolbarLabelStyle = style});
    return {.items = items, .labelStyle = style, .tint = ColorToken::SystemOrange};
}

LabelImage sparkle()
{
    return {
        .symbol = {.name = u"sparkles"_s, .pointSize = 12, .weight = FontWeight::Semibold},
        .accessibleName = u"Gemini"_s,
        .paddingLeft = 4,
        .paddingRight = 2,
        .paddingVertical = 2,
    };
}

LabelRun gap()
{
    return TextRun{.text = u" "_s, .color = std::nullopt};
}

LabelRun dot()
{
    return TextRun{.text = u" \u00B7 "_s, .color = ColorToken::SecondaryLabel};
}

LabelRun text(const QString &text, ColorToken color)
{
    return TextRun{.text = text, .color = color};
}

LabelRun symbol(const QString &name, const QString &text)
{
    return SymbolRun{
        .symbol = {.name = name, .pointSize = 10, .weight = FontWeight::Semibold}, .text = text};
}

BadgeComposition greenOverOrange()
{
    return {.numbers = {{.text = u"80"_s, .color = ColorToken::AdaptiveHealthyGreen},
                {.text = u"55"_s, .color = ColorToken::SystemOrange}}};
}

LabelComposition composed(const LabelInput &input)
{
    return composeLabel(input, {}, hasAllSymbols);
}

const LabelComposition iconOnly{
    .image = sparkle(), .imagePosition = ImagePosition::Only, .title = {}, .badge = {}};

} // namespace

class LabelCompositionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theWorkedExample();
    void theWorkedExampleWithSymbols();
    void theTextIsTwelvePointsHigh();

    void withoutItemsThereIsTheIconAlone();
    void withoutPercentagesThereIsTheIconAlone();
    void withoutTheIconTheTitleStartsWithTheFirstItem();
    void oneItemHasNoSeparator();
    void withoutColoursTheItemsAreInTheLabelColour();
    void anUnknownStyleShowsTexts_data();
    void anUnknownStyleShowsTexts();
    void everyModelHasItsSymbol();

    void aDesktopWithoutTheSparkleKeepsTheImageThereWas();
    void aDesktopWithoutTheSparkleStillHasTheTitle();
    void switchingTheIconOffTakesTheImageAway();
    void aDesktopWithoutAModelsSymbolShowsTheItemsText();

    void thePlainTitleIsTheTexts();
    void theTitleInTextsNamesTheModels();
    void equalInputsGiveEqualLabels();

    void theViewShowsTheSameItems();
    void theViewsItemsHaveTheColoursOfViews();
    void theViewWithSymbols();
    void theViewsIconHasTheTint();
    void theViewWithoutColours();
    void theViewWithoutItemsIsTheIconAlone();
    void theViewWithoutTheIcon();
};

void LabelCompositionTest::theWorkedExample()
{
    const LabelComposition expected{
        .image = sparkle(),
        .imagePosition = ImagePosition::Leading,
        .title = {gap(), text(u"G 5h: 80%"_s, ColorToken::AdaptiveHealthyGreen), dot(),
            text(u"G W: 55%"_s, ColorToken::SystemOrange)},
        .badge = greenOverOrange(),
    };
    QVERIFY(composed(twoItems()) == expected);
}

void LabelCompositionTest::theWorkedExampleWithSymbols()
{
    const LabelComposition expected{
        .image = sparkle(),
        .imagePosition = ImagePosition::Leading,
        .title = {gap(), symbol(u"sparkles"_s, u"✦"_s),
            text(u" 5h: 80%"_s, ColorToken::AdaptiveHealthyGreen), dot(),
            symbol(u"sparkles"_s, u"✦"_s), text(u" W: 55%"_s, ColorToken::SystemOrange)},
        .badge = greenOverOrange(),
    };
    QVERIFY(composed(twoItems(u"icon"_s)) == expected);
}

void LabelCompositionTest::theTextIsTwelvePointsHigh()
{
    QCOMPARE(LabelComposition::fontSize, 12.0);
}

void LabelCompositionTest::withoutItemsThereIsTheIconAlone()
{
    for (const bool showIcon : {true, false}) {
        LabelInput input;
        input.showIcon = showIcon;
        QVERIFY(composed(input) == iconOnly);
    }
}

void LabelCompositionTest::withoutPercentagesThereIsTheIconAlone()
{
    for (const bool showIcon : {true, false}) {
        auto input = twoItems();
        input.showPercentage = false;
        input.showIcon = showIcon;
        QVERIFY(composed(input) == iconOnly);
    }
}

void LabelCompositionTest::withoutTheIconTheTitleStartsWithTheFirstItem()
{
    auto input = twoItems();
    input.showIcon = false;
    const auto label = composed(input);
    QVERIFY(!label.image);
    QCOMPARE(label.plainTitle(), u"G 5h: 80% · G W: 55%"_s);
    QVERIFY(label.title.at(0) == text(u"G 5h: 80%"_s, ColorToken::AdaptiveHealthyGreen));
}

void LabelCompositionTest::oneItemHasNoSeparator()
{
    auto input = twoItems();
    input.items.removeLast();
    const QList<LabelRun> expected{gap(), text(u"G 5h: 80%"_s, ColorToken::AdaptiveHealthyGreen)};
    QVERIFY(composed(input).title == expected);
}

void LabelCompositionTest::withoutColoursTheItemsAreInTheLabelColour()
{
    auto input = twoItems();
    input.colored = false;
    const QList<LabelRun> expected{gap(), text(u"G 5h: 80%"_s, ColorToken::Label), dot(),
        text(u"G W: 55%"_s, ColorToken::Label)};
    QVERIFY(composed(input).title == expected);

    auto symbols = twoItems(u"icon"_s);
    symbols.colored = false;
    QVERIFY(composed(symbols).title.at(2) == text(u" 5h: 80%"_s, ColorToken::Label));
}

void LabelCompositionTest::anUnknownStyleShowsTexts_data()
{
    QTest::addColumn<QString>("style");
    for (const auto &style : {u""_s, u"Icon"_s, u"icons"_s, u"shortName"_s})
        QTest::addRow("\"%s\"", qUtf8Printable(style)) << style;
}

void LabelCompositionTest::anUnknownStyleShowsTexts()
{
    QFETCH(const QString, style);
    auto input = twoItems();
    input.labelStyle = style;
    QVERIFY(composed(input) == composed(twoItems()));
}

void LabelCompositionTest::everyModelHasItsSymbol()
{
    auto input = twoItems(u"icon"_s);
    input.items = {input.items.first(), input.items.first(), input.items.first()};
    input.items[1].model = ToolbarModel::argon;
    input.items[2].model = ToolbarModel::claude;
    const auto label = composed(input);
    QVERIFY(label.title.at(1) == symbol(u"sparkles"_s, u"✦"_s));
    QVERIFY(label.title.at(4) == symbol(u"cpu"_s, u"⚡"_s));
    QVERIFY(label.title.at(7) == symbol(u"brain"_s, u"🧠"_s));
}

void LabelCompositionTest::aDesktopWithoutTheSparkleKeepsTheImageThereWas()
{
    // Neither set nor cleared, and it stays where it was.
    QVERIFY(composeLabel(twoItems(), iconOnly, hasNoSymbols).image == iconOnly.image);
    QCOMPARE(composeLabel(twoItems(), iconOnly, hasNoSymbols).imagePosition, ImagePosition::Only);
    QVERIFY(!composeLabel(twoItems(), {}, hasNoSymbols).image);
    QVERIFY(composeLabel({}, iconOnly, hasNoSymbols) == iconOnly);
}

void LabelCompositionTest::aDesktopWithoutTheSparkleStillHasTheTitle()
{
    // The gap too: it goes with the setting.
    QCOMPARE(composeLabel(twoItems(), {}, hasNoSymbols).plainTitle(), u" G 5h: 80% · G W: 55%"_s);
}

void LabelCompositionTest::switchingTheIconOffTakesTheImageAway()
{
    auto input = twoItems();
    input.showIcon = false;
    QVERIFY(!composeLabel(input, iconOnly, hasAllSymbols).image);
    QVERIFY(!composeLabel(input, iconOnly, hasNoSymbols).image);
}

void LabelCompositionTest::aDesktopWithoutAModelsSymbolShowsTheItemsText()
{
    auto input = twoItems(u"icon"_s);
    input.items[1].model = ToolbarModel::argon;
    const auto label
        = composeLabel(input, {}, [](const QString &name) { return name != u"cpu"_s; });
    const QList<LabelRun> expected{gap(), symbol(u"sparkles"_s, u"✦"_s),
        text(u" 5h: 80%"_s, ColorToken::AdaptiveHealthyGreen), dot(),
        text(u"✦ W: 55%"_s, ColorToken::SystemOrange)};
    QVERIFY(label.title == expected);
    QVERIFY(label.image == sparkle());
}

void LabelCompositionTest::thePlainTitleIsTheTexts()
{
    QCOMPARE(composed(twoItems()).plainTitle(), u" G 5h: 80% · G W: 55%"_s);
    QCOMPARE(composed(twoItems(u"icon"_s)).plainTitle(), u" \uFFFC 5h: 80% · \uFFFC W: 55%"_s);
    QCOMPARE(LabelComposition{}.plainTitle(), QString());
}

void LabelCompositionTest::theTitleInTextsNamesTheModels()
{
    QCOMPARE(composed(twoItems()).titleInTexts(), u" G 5h: 80% · G W: 55%"_s);
    QCOMPARE(composed(twoItems(u"icon"_s)).titleInTexts(), u" ✦ 5h: 80% · ✦ W: 55%"_s);
    QCOMPARE(LabelComposition{}.titleInTexts(), QString());
}

void LabelCompositionTest::equalInputsGiveEqualLabels()
{
    QVERIFY(composed(twoItems()) == composed(twoItems()));
    auto other = twoItems();
    other.items[0].text = u"G 5h: 79%"_s;
    QVERIFY(composed(other) != composed(twoItems()));
    auto otherColor = twoItems();
    otherColor.items[0].nsColor = ColorToken::SystemRed;
    QVERIFY(composed(otherColor) != composed(twoItems()));
}

void LabelCompositionTest::theViewShowsTheSameItems()
{
    const auto view = composeLabelView(twoItems());
    QVERIFY(view.showIcon);
    QCOMPARE(view.items.size(), 2);
    QCOMPARE(view.items.at(0).symbolName, QString());
    QCOMPARE(view.items.at(0).text, u"G 5h: 80%"_s);
    QCOMPARE(view.items.at(1).text, u"G W: 55%"_s);
}

void LabelCompositionTest::theViewsItemsHaveTheColoursOfViews()
{
    const auto view = composeLabelView(twoItems());
    QCOMPARE(view.items.at(0).color, ColorToken::SystemGreen);
    QCOMPARE(view.items.at(1).color, ColorToken::SystemOrange);
}

void LabelCompositionTest::theViewWithSymbols()
{
    const auto view = composeLabelView(twoItems(u"icon"_s));
    QCOMPARE(view.items.at(0).symbolName, u"sparkles"_s);
    QCOMPARE(view.items.at(0).text, u"5h: 80%"_s);
    QCOMPARE(view.items.at(1).symbolName, u"sparkles"_s);
    QCOMPARE(view.items.at(1).text, u"W: 55%"_s);
}

void LabelCompositionTest::theViewsIconHasTheTint()
{
    auto input = twoItems();
    input.tint = ColorToken::SystemRed;
    QCOMPARE(composeLabelView(input).iconColor, ColorToken::SystemRed);
}

void LabelCompositionTest::theViewWithoutColours()
{
    auto input = twoItems();
    input.colored = false;
    const auto view = composeLabelView(input);
    QCOMPARE(view.iconColor, ColorToken::Label);
    QCOMPARE(view.items.at(0).color, ColorToken::Label);
    QCOMPARE(view.items.at(1).color, ColorToken::Label);
}

void LabelCompositionTest::theViewWithoutItemsIsTheIconAlone()
{
    for (const bool showIcon : {true, false}) {
        LabelInput input;
        input.showIcon = showIcon;
        QVERIFY(composeLabelView(input).showIcon);
        QVERIFY(composeLabelView(input).items.isEmpty());

        auto switchedOff = twoItems();
        switchedOff.showPercentage = false;
        switchedOff.showIcon = showIcon;
        QVERIFY(composeLabelView(switchedOff).showIcon);
        QVERIFY(composeLabelView(switchedOff).items.isEmpty());
    }
}

void LabelCompositionTest::theViewWithoutTheIcon()
{
    auto input = twoItems();
    input.showIcon = false;
    QVERIFY(!composeLabelView(input).showIcon);
    QCOMPARE(composeLabelView(input).items.size(), 2);
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::LabelCompositionTest)
#include "label_composition_test.moc"
