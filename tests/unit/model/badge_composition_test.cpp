#include "model/badge_composition.h"
#include "support/quota_samples.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace brimwatch::model {

namespace {

QList<ToolbarStatItem> itemsOf(const QList<QuotaGroup> &groups, ToolbarSettings settings = {})
{
    settings.showArgonInToolbar = true;
    settings.showClaudeInToolbar = true;
    return toolbarStatItems(QuotaSummary{.groups = groups}, settings);
}

QStringList textsOf(const BadgeComposition &badge)
{
    QStringList texts;
    for (const auto &number : badge.numbers)
        texts.append(number.text);
    return texts;
}

} // namespace

class BadgeCompositionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theLowestOfEachWindowIsShown()
    {
        const auto badge = composeBadge(
            itemsOf({sampleGroup(u"Gemini"_s, 0.8, 0.3), sampleGroup(u"Claude"_s, 0.42, 0.9)}),
            BadgeColors::Health);
        QCOMPARE(textsOf(badge), QStringList({u"42"_s, u"30"_s}));
    }

    void aBucketWithoutAWindowCountsWithTheFiveHourOnes()
    {
        const QuotaGroup claude{
            .displayName = u"Claude"_s, .buckets = {sampleBucket(u"a"_s, std::nullopt, 0.1)}};
        const auto badge = composeBadge(
            itemsOf({sampleGroup(u"Gemini"_s, 0.8, 0.3), claude}), BadgeColors::Health);
        QCOMPARE(textsOf(badge), QStringList({u"10"_s, u"30"_s}));
    }

    void withOneWindowThereIsOneNumber()
    {
        const auto badge
            = composeBadge(itemsOf({sampleGroup(u"Gemini"_s, 0.8, 0.3)},
                               {.showFiveHourInMenuBar = false, .toolbarLabelStyle = {}}),
                BadgeColors::Health);
        QCOMPARE(textsOf(badge), QStringList({u"30"_s}));
    }

    void withoutItemsThereAreNoNumbers()
    {
        QVERIFY(composeBadge({}, BadgeColors::Health).numbers.isEmpty());
    }

    void numbersAreWholePercentsWithinTheScale_data()
    {
        QTest::addColumn<double>("fraction");
        QTest::addColumn<QString>("text");
        QTest::addColumn<ColorToken>("color");
        QTest::addColumn<bool>("critical");
        QTest::newRow("beyond full")
            << 1.2 << u"100"_s << ColorToken::AdaptiveHealthyGreen << false;
        QTest::newRow("exactly 60") << 0.6 << u"60"_s << ColorToken::AdaptiveHealthyGreen << false;
        QTest::newRow("just below") << 0.5999 << u"60"_s << ColorToken::SystemOrange << false;
        QTest::newRow("exactly 20") << 0.2 << u"20"_s << ColorToken::SystemOrange << false;
        QTest::newRow("just critical") << 0.1999 << u"20"_s << ColorToken::SystemRed << true;
        QTest::newRow("below empty") << -0.1 << u"0"_s << ColorToken::SystemRed << true;
    }
    void numbersAreWholePercentsWithinTheScale()
    {
        QFETCH(double, fraction);
        QFETCH(QString, text);
        QFETCH(ColorToken, color);
        QFETCH(bool, critical);
        const auto items = itemsOf({sampleGroup(u"Gemini"_s, fraction, 1)});
        const BadgeNumber expected{.text = text, .color = color, .isCritical = critical};
        QVERIFY(composeBadge(items, BadgeColors::Health).numbers.constFirst() == expected);
        const BadgeNumber plain{.text = text, .color = ColorToken::Label, .isCritical = critical};
        QVERIFY(composeBadge(items, BadgeColors::Plain).numbers.constFirst() == plain);
    }
};

} // namespace brimwatch::model

QTEST_APPLESS_MAIN(brimwatch::model::BadgeCompositionTest)
#include "badge_composition_test.moc"
