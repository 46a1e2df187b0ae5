#include "qml/popover_fixture.h"
#include "qml/samples.h"
#include "views/models/theme.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::PopoverFixture;

namespace {

/// The declarative label, with what the fixture plays around it.
class Label {
public:
    explicit Label(PopoverFixture &fixture)
        : m_theme(fixture.appearance, fixture.symbols)
    {
        m_theme.attachTo(m_engine);
        m_engine.addImportPath(u"qrc:/qt/qml"_s);
        QQmlComponent component(&m_engine, QUrl(u"qrc:/qt/qml/Brimwatch/MenuBarLabelView.qml"_s));
        m_root.reset(qobject_cast<QQuickItem *>(component.createWithInitialProperties(
            {{u"quotaService"_s, QVariant::fromValue(&fixture.service)}})));
        if (!m_root)
            qFatal("%s", qPrintable(component.errorString()));
    }

    QStringList texts() const
    {
        QStringList texts;
        collect(m_root.get(), texts);
        return texts;
    }

    bool hasIcon() const { return m_root->findChild<QQuickItem *>(u"labelIcon"_s)->isVisible(); }

    const QQuickItem *root() const { return m_root.get(); }

    QColor iconColor() const
    {
        return m_root->findChild<QQuickItem *>(u"labelIcon"_s)->property("color").value<QColor>();
    }

    const views::Theme &theme() const { return m_theme; }

private:
    static void collect(const QQuickItem *item, QStringList &texts)
    {
        if (!item->isVisible())
            return;
        if (item->property("text").isValid())
            texts.append(item->property("text").toString());
        const auto children = item->childItems();
        for (const QQuickItem *child : children)
            collect(child, texts);
    }

    views::Theme m_theme;
    QQmlEngine m_engine;
    std::unique_ptr<QQuickItem> m_root;
};

} // namespace

class MenuBarLabelViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void withoutDataItIsTheIconAlone();
    void itemsHaveDotsBetweenThem();
    void theIconCanBeSwitchedOffBesideText();
    void itFollowsTheSettings();
    void theIconHasTheTint();
    void symbolsAndTextsHaveTheirSizes();
};

void MenuBarLabelViewTest::withoutDataItIsTheIconAlone()
{
    PopoverFixture fixture;
    const Label label(fixture);
    QVERIFY(label.hasIcon());
    QCOMPARE(label.texts(), QStringList());
}

void MenuBarLabelViewTest::itemsHaveDotsBetweenThem()
{
    PopoverFixture fixture;
    const Label label(fixture);
    fixture.answer(test::sampleSummary());
    const auto items = fixture.service.toolbarStatItems();
    QCOMPARE(items.size(), 2);
    QTRY_COMPARE(label.texts(), QStringList({items.at(0).text, u"·"_s, items.at(1).text}));
    QVERIFY(label.hasIcon());
}

void MenuBarLabelViewTest::theIconCanBeSwitchedOffBesideText()
{
    PopoverFixture fixture;
    const Label label(fixture);
    fixture.answer(test::sampleSummary());
    fixture.service.setShowIconInMenuBar(false);
    QTRY_VERIFY(!label.hasIcon());
    fixture.service.setShowPercentageInMenuBar(false);
    QTRY_VERIFY(label.hasIcon());
    QCOMPARE(label.texts(), QStringList());
}

void MenuBarLabelViewTest::itFollowsTheSettings()
{
    PopoverFixture fixture;
    const Label label(fixture);
    fixture.answer(test::sampleSummary());
    fixture.service.setShowClaudeInToolbar(true);
    fixture.service.setShowWeeklyInMenuBar(false);
    fixture.service.setToolbarLabelStyle(u"shortName"_s);
    QTRY_COMPARE(label.texts().size(), 3);
    QTRY_VERIFY(label.texts().constFirst().startsWith(u"Gem"_s));
    QVERIFY(label.texts().constLast().startsWith(u"Cla"_s));
    fixture.service.setToolbarLabelStyle(u"icon"_s);
    QTRY_VERIFY(!label.texts().constFirst().startsWith(u"Gem"_s));
}

void MenuBarLabelViewTest::theIconHasTheTint()
{
    PopoverFixture fixture;
    const Label label(fixture);
    QCOMPARE(label.iconColor(), label.theme().color(fixture.service.menuBarTint()));
    fixture.answer(test::lowSummary());
    QTRY_COMPARE(label.iconColor(), label.theme().color(fixture.service.menuBarTint()));
    fixture.service.setUseColoredStatusIndicator(false);
    QTRY_COMPARE(label.iconColor(), label.theme().label());
}

void MenuBarLabelViewTest::symbolsAndTextsHaveTheirSizes()
{
    PopoverFixture fixture;
    const Label label(fixture);
    fixture.answer(test::sampleSummary());
    fixture.service.setToolbarLabelStyle(u"icon"_s);
    QTRY_COMPARE(label.texts().size(), 3);
    const QQuickItem *icon = label.root()->findChild<QQuickItem *>(u"labelIcon"_s);
    QCOMPARE(icon->property("name"), u"sparkles"_s);
    QCOMPARE(icon->property("pointSize").toDouble(), 13.0);
    QList<const QQuickItem *> texts;
    QList<const QQuickItem *> rest{label.root()};
    while (!rest.isEmpty()) {
        const QQuickItem *item = rest.takeFirst();
        if (item->objectName() == "labelText"_L1)
            texts.append(item);
        const auto children = item->childItems();
        for (const QQuickItem *child : children)
            rest.append(child);
    }
    QCOMPARE(texts.size(), 2);
    for (const QQuickItem *text : std::as_const(texts)) {
        QCOMPARE(text->property("pixelSize").toDouble(), 12.0);
        QCOMPARE(text->property("weight").toInt(), int(QFont::Medium));
        const QQuickItem *pair = text->parentItem();
        QCOMPARE(pair->property("spacing").toDouble(), 2.0);
        const QQuickItem *symbol = pair->childItems().constFirst();
        QCOMPARE(symbol->property("pointSize").toDouble(), 11.0);
        QCOMPARE(symbol->property("weight").toInt(), 1); // Medium.
        const QQuickItem *item = pair->parentItem();
        QCOMPARE(item->property("spacing").toDouble(), 4.0);
        const QQuickItem *dot = item->childItems().constFirst();
        QCOMPARE(dot->property("text"), u"·"_s);
        QCOMPARE(dot->property("color").value<QColor>(), label.theme().secondaryLabel());
        const auto font = dot->property("font").value<QFont>();
        QCOMPARE(font.pixelSize(), 12);
        QCOMPARE(font.weight(), QFont::Medium);
        QCOMPARE(item->parentItem()->property("spacing").toDouble(), 4.0);
    }
}

QTEST_MAIN(MenuBarLabelViewTest)
#include "menu_bar_label_view_test.moc"
