#include "platform/linux/tray/dbus_menu.h"
#include "support/fake_watcher.h"

#include <QDBusError>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;
using brimwatch::test::FakeHost;

namespace {

constexpr auto path = "/Menu"_L1;
constexpr auto interface = "com.canonical.dbusmenu"_L1;

QList<DBusMenuEntry> someEntries()
{
    return {{.id = 1, .label = u"Open"_s}, {.id = 2, .label = u"Refresh my_quota"_s},
        {.id = 3, .label = {}, .separator = true}, {.id = 4, .label = u"Quit"_s}};
}

bool isError(const QDBusMessage &answer)
{
    return answer.type() == QDBusMessage::ErrorMessage;
}

QVariant ids(const QList<int> &list)
{
    return QVariant::fromValue(list);
}

QVariantList eventOf(int id, const QString &name)
{
    return {id, name, QVariant::fromValue(QDBusVariant(QString())), 0U};
}

QVariant events(const QList<int> &list)
{
    QList<DBusMenuEvent> group;
    for (const int id : list)
        group.append({.id = id, .name = u"clicked"_s, .data = QDBusVariant(0), .timestamp = 0});
    return QVariant::fromValue(group);
}

QList<int> idsIn(const QDBusMessage &answer, int argument)
{
    return qdbus_cast<QList<int>>(answer.arguments().value(argument));
}

} // namespace

class DBusMenuTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aLayoutHoldsEveryEntryInOrder();
    void aLayoutGoesNoDeeperThanAsked();
    void aLayoutOfOneEntryIsThatEntry();
    void aLayoutHoldsOnlyThePropertiesThatAreAskedFor();
    void anUnderscoreInALabelMarksNoKey();
    void groupPropertiesAreThoseOfTheIdsThatExist();
    void aPropertyIsReadByIdAndName();
    void theMenuDescribesItself();
    void aClickOnAnEntryTriggersIt();
    void noOtherEventTriggersAnything();
    void separatorsAreNeverTriggered();
    void aGroupOfEventsNamesTheIdsThatItDoesNotKnow();
    void nothingIsFilledInBeforeItShows();
    void malformedCallsGetErrors_data();
    void malformedCallsGetErrors();
    void longGroupsAreRefused();
    void theMenuLeavesTheBusAtItsEnd();

private:
    DBusMenuLayout layout(int parent, int depth, const QStringList &names = {});

    std::unique_ptr<DBusMenu> m_menu;
    std::unique_ptr<FakeHost> m_host;
};

void DBusMenuTest::init()
{
    m_menu
        = std::make_unique<DBusMenu>(QDBusConnection::sessionBus(), path, someEntries(), nullptr);
    m_host = std::make_unique<FakeHost>(QDBusConnection::sessionBus().baseService(), path,
        interface, QStringList{u"LayoutUpdated"_s, u"ItemsPropertiesUpdated"_s});
}

void DBusMenuTest::cleanup()
{
    m_host.reset();
    m_menu.reset();
}

DBusMenuLayout DBusMenuTest::layout(int parent, int depth, const QStringList &names)
{
    const auto answer = m_host->call(u"GetLayout"_s, {parent, depth, names});
    return qdbus_cast<DBusMenuLayout>(answer.arguments().value(1));
}

void DBusMenuTest::aLayoutHoldsEveryEntryInOrder()
{
    const auto answer = m_host->call(u"GetLayout"_s, {0, -1, QStringList()});
    QCOMPARE(answer.signature(), u"u(ia{sv}av)"_s);

    const auto root = layout(0, -1);
    QCOMPARE(root.id, 0);
    QCOMPARE(root.properties.value(u"children-display"_s).toString(), u"submenu"_s);
    QCOMPARE(root.children.size(), 4);
    QCOMPARE(root.children[0].id, 1);
    QCOMPARE(root.children[0].properties.value(u"label"_s).toString(), u"Open"_s);
    QCOMPARE(root.children[0].properties.value(u"enabled"_s), QVariant(true));
    QCOMPARE(root.children[2].properties.value(u"type"_s).toString(), u"separator"_s);
    QCOMPARE(root.children[3].id, 4);
    QCOMPARE(root.children[3].properties.value(u"label"_s).toString(), u"Quit"_s);
    for (const auto &child : root.children)
        QVERIFY(child.children.isEmpty());
}

void DBusMenuTest::aLayoutGoesNoDeeperThanAsked()
{
    QVERIFY(layout(0, 0).children.isEmpty());
    QCOMPARE(layout(0, 1).children.size(), 4);
    QCOMPARE(layout(0, 99).children.size(), 4);
}

void DBusMenuTest::aLayoutOfOneEntryIsThatEntry()
{
    const auto quit = layout(4, -1);
    QCOMPARE(quit.id, 4);
    QCOMPARE(quit.properties.value(u"label"_s).toString(), u"Quit"_s);
    QVERIFY(quit.children.isEmpty());
}

void DBusMenuTest::aLayoutHoldsOnlyThePropertiesThatAreAskedFor()
{
    const auto root = layout(0, -1, {u"label"_s});
    QVERIFY(root.properties.isEmpty());
    QCOMPARE(root.children[0].properties.keys(), QStringList{u"label"_s});
    QVERIFY(root.children[2].properties.isEmpty());
}

void DBusMenuTest::anUnderscoreInALabelMarksNoKey()
{
    QCOMPARE(layout(2, 0).properties.value(u"label"_s).toString(), u"Refresh my__quota"_s);
}

void DBusMenuTest::groupPropertiesAreThoseOfTheIdsThatExist()
{
    const auto read = [this](const QList<int> &list) {
        const auto answer = m_host->call(u"GetGroupProperties"_s, {ids(list), QStringList()});
        return qdbus_cast<QList<DBusMenuProperties>>(answer.arguments().value(0));
    };
    const auto two = read({4, 1, 77, 4});
    QCOMPARE(two.size(), 2);
    QCOMPARE(two[0].id, 1);
    QCOMPARE(two[0].properties.value(u"label"_s).toString(), u"Open"_s);
    QCOMPARE(two[1].id, 4);
    QCOMPARE(read({}).size(), 5);
    QVERIFY(read({77}).isEmpty());

    const auto answer
        = m_host->call(u"GetGroupProperties"_s, {ids({1}), QStringList{u"enabled"_s}});
    QCOMPARE(answer.signature(), u"a(ia{sv})"_s);
    const auto enabled = qdbus_cast<QList<DBusMenuProperties>>(answer.arguments().value(0));
    QCOMPARE(enabled.value(0).properties.keys(), QStringList{u"enabled"_s});
}

void DBusMenuTest::aPropertyIsReadByIdAndName()
{
    const auto read = [this](int id, const QString &name) {
        return qdbus_cast<QDBusVariant>(
            m_host->call(u"GetProperty"_s, {id, name}).arguments().value(0))
            .variant();
    };
    QCOMPARE(read(1, u"label"_s).toString(), u"Open"_s);
    QCOMPARE(read(1, u"enabled"_s), QVariant(true));
    QCOMPARE(read(0, u"children-display"_s).toString(), u"submenu"_s);
}

void DBusMenuTest::theMenuDescribesItself()
{
    const auto all = m_host->readAll();
    QCOMPARE(all.size(), 4);
    QCOMPARE(all.value(u"Version"_s), QVariant(3U));
    QCOMPARE(all.value(u"TextDirection"_s).toString(), u"ltr"_s);
    QCOMPARE(all.value(u"Status"_s).toString(), u"normal"_s);
    QCOMPARE(all.value(u"IconThemePath"_s).metaType(), QMetaType::fromType<QStringList>());
}

void DBusMenuTest::aClickOnAnEntryTriggersIt()
{
    QSignalSpy triggered(m_menu.get(), &DBusMenu::triggered);
    const auto answer = m_host->call(u"Event"_s, eventOf(4, u"clicked"_s));
    QCOMPARE(answer.type(), QDBusMessage::ReplyMessage);
    QTRY_COMPARE(triggered.size(), 1);
    QCOMPARE(triggered[0][0].toInt(), 4);
}

void DBusMenuTest::noOtherEventTriggersAnything()
{
    QSignalSpy triggered(m_menu.get(), &DBusMenu::triggered);
    for (const auto &name :
        {u"opened"_s, u"closed"_s, u"hovered"_s, u"x-unheard-of"_s, QString()}) {
        QVERIFY(!isError(m_host->call(u"Event"_s, eventOf(4, name))));
        QVERIFY(!isError(m_host->call(u"Event"_s, eventOf(0, name))));
    }
    QVERIFY(!isError(m_host->call(u"Event"_s, eventOf(0, u"clicked"_s))));
    QVERIFY(!isError(m_host->call(u"Event"_s, eventOf(1, u"clicked"_s))));
    // The one click that counts comes last: none before it was taken for one.
    QTRY_COMPARE(triggered.size(), 1);
    QCOMPARE(triggered[0][0].toInt(), 1);
}

void DBusMenuTest::separatorsAreNeverTriggered()
{
    QSignalSpy triggered(m_menu.get(), &DBusMenu::triggered);
    for (const int id : {3, 1})
        QVERIFY(!isError(m_host->call(u"Event"_s, eventOf(id, u"clicked"_s))));
    QTRY_COMPARE(triggered.size(), 1);
    QCOMPARE(triggered[0][0].toInt(), 1);
}

void DBusMenuTest::aGroupOfEventsNamesTheIdsThatItDoesNotKnow()
{
    QSignalSpy triggered(m_menu.get(), &DBusMenu::triggered);
    const auto answer = m_host->call(u"EventGroup"_s, {events({1, 77, 4, -5})});
    QCOMPARE(answer.signature(), u"ai"_s);
    QCOMPARE(idsIn(answer, 0), QList<int>({77, -5}));
    QTRY_COMPARE(triggered.size(), 2);
    QCOMPARE(triggered[0][0].toInt(), 1);
    QCOMPARE(triggered[1][0].toInt(), 4);

    QVERIFY(isError(m_host->call(u"EventGroup"_s, {events({77})})));
    QVERIFY(!isError(m_host->call(u"EventGroup"_s, {events({})})));
}

void DBusMenuTest::nothingIsFilledInBeforeItShows()
{
    QCOMPARE(m_host->call(u"AboutToShow"_s, {0}).arguments(), QVariantList{false});
    const auto answer = m_host->call(u"AboutToShowGroup"_s, {ids({0, 1, 77})});
    QCOMPARE(answer.signature(), u"aiai"_s);
    QVERIFY(idsIn(answer, 0).isEmpty());
    QCOMPARE(idsIn(answer, 1), QList<int>{77});
}

void DBusMenuTest::malformedCallsGetErrors_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<QVariantList>("arguments");

    const QStringList noNames;
    QTest::newRow("layout of an unknown entry") << u"GetLayout"_s << QVariantList{77, -1, noNames};
    QTest::newRow("layout without names") << u"GetLayout"_s << QVariantList{0, -1};
    QTest::newRow("layout of a text") << u"GetLayout"_s << QVariantList{u"0"_s, -1, noNames};
    QTest::newRow("group of texts") << u"GetGroupProperties"_s << QVariantList{noNames, noNames};
    QTest::newRow("property of an unknown entry")
        << u"GetProperty"_s << QVariantList{77, u"label"_s};
    QTest::newRow("unknown property") << u"GetProperty"_s << QVariantList{1, u"colour"_s};
    QTest::newRow("property without a name") << u"GetProperty"_s << QVariantList{1};
    QTest::newRow("event of an unknown entry") << u"Event"_s << eventOf(77, u"clicked"_s);
    QTest::newRow("event without data") << u"Event"_s << QVariantList{1, u"clicked"_s};
    QTest::newRow("event with plain data")
        << u"Event"_s << QVariantList{1, u"clicked"_s, u""_s, 0U};
    QTest::newRow("group of ids for events") << u"EventGroup"_s << QVariantList{ids({1})};
    QTest::newRow("about to show an unknown entry") << u"AboutToShow"_s << QVariantList{77};
    QTest::newRow("about to show unknown entries")
        << u"AboutToShowGroup"_s << QVariantList{ids({77, 78})};
    QTest::newRow("unknown method") << u"Explode"_s << QVariantList{};
}

void DBusMenuTest::malformedCallsGetErrors()
{
    QFETCH(QString, member);
    QFETCH(QVariantList, arguments);
    QSignalSpy triggered(m_menu.get(), &DBusMenu::triggered);

    QVERIFY(isError(m_host->call(member, arguments)));

    // It keeps working, and took nothing of it for a click.
    m_host->call(u"Event"_s, eventOf(4, u"clicked"_s));
    QTRY_COMPARE(triggered.size(), 1);
    QCOMPARE(triggered[0][0].toInt(), 4);
}

void DBusMenuTest::longGroupsAreRefused()
{
    const QList<int> many(100'000, 1);
    QSignalSpy triggered(m_menu.get(), &DBusMenu::triggered);
    const QList<QDBusMessage> answers{m_host->call(u"EventGroup"_s, {events(many)}),
        m_host->call(u"AboutToShowGroup"_s, {ids(many)}),
        m_host->call(u"GetGroupProperties"_s, {ids(many), QStringList()})};
    for (const auto &answer : answers)
        QCOMPARE(QDBusError(answer).type(), QDBusError::LimitsExceeded);
    m_host->call(u"Event"_s, eventOf(4, u"clicked"_s));
    QTRY_COMPARE(triggered.size(), 1);
}

void DBusMenuTest::theMenuLeavesTheBusAtItsEnd()
{
    m_menu.reset();
    QVERIFY(isError(m_host->call(u"AboutToShow"_s, {0})));
}

QTEST_GUILESS_MAIN(DBusMenuTest)

#include "dbus_menu_test.moc"
