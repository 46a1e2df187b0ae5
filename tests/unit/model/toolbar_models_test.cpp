#include "model/toolbar_models.h"

#include <QTest>

namespace brimwatch::model {

using namespace Qt::Literals::StringLiterals;

class ToolbarModelsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyModelHasItsNames_data();
    void everyModelHasItsNames();
    void theModelsStandInTheirOrder();
    void everyStyleHasItsNames_data();
    void everyStyleHasItsNames();
    void theStylesStandInTheirOrder();
    void anUnknownStyleIsLetter_data();
    void anUnknownStyleIsLetter();
};

void ToolbarModelsTest::everyModelHasItsNames_data()
{
    QTest::addColumn<ToolbarModel>("model");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("gemini") << ToolbarModel::gemini
                            << QStringList{u"gemini"_s, u"Gemini"_s, u"G"_s, u"Gem"_s, u"\u2726"_s,
                                   u"sparkles"_s};
    QTest::newRow("argon") << ToolbarModel::argon
                           << QStringList{
                                  u"argon"_s, u"Argon"_s, u"A"_s, u"Arg"_s, u"\u26A1"_s, u"cpu"_s};
    QTest::newRow("claude") << ToolbarModel::claude
                            << QStringList{u"claude"_s, u"Claude"_s, u"C"_s, u"Cla"_s,
                                   u"\U0001F9E0"_s, u"brain"_s};
}

void ToolbarModelsTest::everyModelHasItsNames()
{
    QFETCH(const ToolbarModel, model);
    QFETCH(const QStringList, names);
    QCOMPARE((QStringList{rawValue(model), displayName(model), shortAbbreviation(model),
                 mediumAbbreviation(model), iconSymbol(model), sfSymbolName(model)}),
        names);
}

void ToolbarModelsTest::theModelsStandInTheirOrder()
{
    QVERIFY((allToolbarModels
        == std::array{ToolbarModel::gemini, ToolbarModel::argon, ToolbarModel::claude}));
}

void ToolbarModelsTest::everyStyleHasItsNames_data()
{
    QTest::addColumn<ToolbarLabelStyle>("style");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QString>("shown");
    QTest::newRow("letter") << ToolbarLabelStyle::letter << u"letter"_s << u"Letters (G, A, C)"_s;
    QTest::newRow("icon") << ToolbarLabelStyle::icon << u"icon"_s
                          << u"Icons (Sparkle, CPU, Brain)"_s;
    QTest::newRow("shortName") << ToolbarLabelStyle::shortName << u"shortName"_s
                               << u"Short Names (Gem, Arg, Cla)"_s;
}

void ToolbarModelsTest::everyStyleHasItsNames()
{
    QFETCH(const ToolbarLabelStyle, style);
    QFETCH(const QString, raw);
    QFETCH(const QString, shown);
    QCOMPARE(rawValue(style), raw);
    QCOMPARE(displayName(style), shown);
    QCOMPARE(toolbarLabelStyle(raw), style);
}

void ToolbarModelsTest::theStylesStandInTheirOrder()
{
    QVERIFY((allToolbarLabelStyles
        == std::array{
            ToolbarLabelStyle::letter, ToolbarLabelStyle::icon, ToolbarLabelStyle::shortName}));
}

void ToolbarModelsTest::anUnknownStyleIsLetter_data()
{
    QTest::addColumn<QString>("text");
    for (const auto &text : {u""_s, u"Icon"_s, u"shortname"_s, u"icon "_s, u"words"_s})
        QTest::addRow("\"%s\"", qUtf8Printable(text)) << text;
}

void ToolbarModelsTest::anUnknownStyleIsLetter()
{
    QFETCH(const QString, text);
    QCOMPARE(toolbarLabelStyle(text), ToolbarLabelStyle::letter);
}

} // namespace brimwatch::model

QTEST_GUILESS_MAIN(brimwatch::model::ToolbarModelsTest)
#include "toolbar_models_test.moc"
