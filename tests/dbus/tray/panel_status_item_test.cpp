#include "dbus/tray/fake_tray_manager.h"
#include "dbus/tray/item_samples.h"
#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/tray/label_painter.h"
#include "platform/linux/tray/panel_status_item.h"
#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/x_scale.h"
#include "platform/linux/x11/xsettings.h"
#include "support/fake_appearance.h"
#include "support/fake_watcher.h"
#include "support/private_display.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace brimwatch::platform {

using namespace test;
using model::ColorToken;

namespace {

const auto xfceTray = u"/usr/lib/x86_64-linux-gnu/xfce4/panel/wrapper-2.0"_s;
constexpr QPoint elsewhere(50, 650);
// Longer than the item waits by design: for the rest of a panel, and before the first retry.
constexpr int timeout = 20'000; // Milliseconds, as QTest takes them.

FakeTrayManager::Manners panelOf(const QString &program)
{
    return {.symbols = {}, .program = program};
}

} // namespace

class PanelStatusItemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void withoutAPanelItWaits();
    void aTrayManagerTakesTheItemOnce();
    void withoutALabelItDoesNotStandThereEmpty();
    void aTrayManagerThatAnnouncesItselfAgainHasTheItemOnce();
    void aTrayManagerThatStartsLateTakesTheItem();
    void aTrayManagerThatRestartsTakesTheItemOnceMore();
    void withoutASessionBusItStillEmbeds();
    void withoutAnXServerItStillRegistersOnTheBus();
    void aWatcherAloneGetsTheItem();
    void aWatcherThatStartsLateGetsTheItem();
    void aWatcherThatRestartsGetsTheItemOnceMore();
    void aPanelOfBothProtocolsGetsTheItemByEmbeddingAlone();
    void aPanelWhoseTrayManagerDoesNotComeGetsTheItemOnTheBus();
    void aTrayManagerThatComesTooLateTakesTheItemOver();
    void theSameThingsAreNotDrawnAgain();
    void whatChangesReachesThePanel();
    void clicksAreHandedOn();
    void anItemThatIsThrownOutComesAgain();

private:
    void makeItem() { makeItem(QDBusConnection::sessionBus()); }
    void makeItem(const QDBusConnection &bus);
    void show(const PresentedItem &shown);
    bool isDrawn()
    {
        const QImage picture = m_manager->picture();
        return countPixels(picture, ColorToken::AdaptiveHealthyGreen, Background::Dark) > 0
            && countPixels(picture, ColorToken::SystemOrange, Background::Dark) > 0;
    }
    void settle();

    SvgSymbols m_symbols;
    LabelPainter m_painter{m_symbols};
    FakeAppearance m_appearance{Background::Dark};
    QString m_watcherProgram; // What this process passes for when it plays the watcher.
    std::unique_ptr<XConnection> m_x;
    std::unique_ptr<XSettings> m_settings;
    std::unique_ptr<XScale> m_scale;
    std::unique_ptr<FakeTrayManager> m_manager;
    std::unique_ptr<FakeWatcher> m_watcher;
    std::unique_ptr<PanelStatusItem> m_item;
    std::unique_ptr<QSignalSpy> m_registered;
};

void PanelStatusItemTest::initTestCase()
{
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void PanelStatusItemTest::init()
{
    m_watcherProgram.clear();
    m_x = std::make_unique<XConnection>();
    QVERIFY(m_x->isValid());
    m_settings = std::make_unique<XSettings>(*m_x);
    m_scale = std::make_unique<XScale>(*m_x, *m_settings);
}

void PanelStatusItemTest::cleanup()
{
    m_registered.reset();
    m_item.reset();
    m_watcher.reset();
    m_manager.reset();
    m_scale.reset();
    m_settings.reset();
    m_x.reset();
}

void PanelStatusItemTest::makeItem(const QDBusConnection &bus)
{
    m_item = std::make_unique<PanelStatusItem>(
        *m_x, bus, m_painter, m_appearance, *m_scale, [this](qint64 pid) {
            return pid == QCoreApplication::applicationPid() ? m_watcherProgram : QString();
        });
    m_registered = std::make_unique<QSignalSpy>(m_item.get(), &PanelStatusItem::registered);
    show(sampleItem());
}

void PanelStatusItemTest::show(const PresentedItem &shown)
{
    m_item->setLabel(shown.label);
    m_item->setDescription(shown.description);
}

void PanelStatusItemTest::settle()
{
    constexpr int rounds = 3;
    for (int i = 0; i < rounds; ++i) {
        m_x->selectionOwner(XCB_ATOM_PRIMARY);
        if (m_manager)
            m_manager->connection().selectionOwner(XCB_ATOM_PRIMARY);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
}

void PanelStatusItemTest::withoutAPanelItWaits()
{
    makeItem();
    QVERIFY(m_item->hasButton());
    settle();
    QCOMPARE(m_item->host(), Host{});
    QCOMPARE(m_registered->count(), 0);
}

void PanelStatusItemTest::aTrayManagerTakesTheItemOnce()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
    makeItem();
    // It need not ask the bus first.
    QCOMPARE(m_item->host().presentation, PresentationKind::XembedWide);
    QTRY_COMPARE(m_registered->count(), 1);
    QTRY_VERIFY(isDrawn());
    settle();
    QCOMPARE(m_manager->docked().size(), 1);
}

void PanelStatusItemTest::aTrayManagerThatAnnouncesItselfAgainHasTheItemOnce()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(xfceTray));
    makeItem();
    show(sampleItem());
    QTRY_VERIFY_WITH_TIMEOUT(isDrawn(), timeout);
    for (int i = 0; i < 3; ++i)
        m_manager->announce();
    settle();
    QCOMPARE(m_manager->docked().size(), 1);
    QVERIFY(isDrawn());
}

void PanelStatusItemTest::withoutALabelItDoesNotStandThereEmpty()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
    m_item = std::make_unique<PanelStatusItem>(
        *m_x, QDBusConnection::sessionBus(), m_painter, m_appearance, *m_scale);
    settle();
    QVERIFY(m_manager->docked().isEmpty());
    show(sampleItem());
    QTRY_COMPARE(m_manager->docked().size(), 1);
}

void PanelStatusItemTest::aTrayManagerThatStartsLateTakesTheItem()
{
    makeItem();
    settle();
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"bar"_s));
    QTRY_COMPARE(m_registered->count(), 1);
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->docked().size(), 1);
}

void PanelStatusItemTest::aTrayManagerThatRestartsTakesTheItemOnceMore()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
    makeItem();
    QTRY_COMPARE(m_registered->count(), 1);
    constexpr int restarts = 5;
    for (int i = 1; i <= restarts; ++i) {
        m_manager.reset();
        QTRY_COMPARE(m_item->host(), Host{});
        m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
        QTRY_COMPARE(m_registered->count(), i + 1);
        QTRY_VERIFY(isDrawn());
        settle();
        QCOMPARE(m_manager->docked().size(), 1);
    }
}

void PanelStatusItemTest::withoutASessionBusItStillEmbeds()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"bar"_s));
    makeItem(QDBusConnection(u"no such connection"_s));
    QTRY_COMPARE(m_registered->count(), 1);
    QTRY_VERIFY(isDrawn());
}

void PanelStatusItemTest::withoutAnXServerItStillRegistersOnTheBus()
{
    const QByteArray display = qgetenv("DISPLAY");
    qputenv("DISPLAY", "no such display");
    m_x = std::make_unique<XConnection>();
    qputenv("DISPLAY", display);
    QVERIFY(!m_x->isValid());
    m_watcher = std::make_unique<FakeWatcher>();
    makeItem();
    QTRY_COMPARE(m_registered->count(), 1);
    QCOMPARE(m_watcher->items().size(), 1);
}

void PanelStatusItemTest::aWatcherAloneGetsTheItem()
{
    m_watcher = std::make_unique<FakeWatcher>();
    makeItem();
    QTRY_COMPARE(m_registered->count(), 1);
    QCOMPARE(m_watcher->items().size(), 1);
    QCOMPARE(m_item->host().presentation, PresentationKind::SniPortable);
}

void PanelStatusItemTest::aWatcherThatStartsLateGetsTheItem()
{
    makeItem();
    settle();
    m_watcher = std::make_unique<FakeWatcher>();
    QTRY_COMPARE(m_registered->count(), 1);
    QCOMPARE(m_watcher->items().size(), 1);
}

void PanelStatusItemTest::aWatcherThatRestartsGetsTheItemOnceMore()
{
    m_watcher = std::make_unique<FakeWatcher>();
    makeItem();
    QTRY_COMPARE(m_registered->count(), 1);
    constexpr int restarts = 5;
    for (int i = 1; i <= restarts; ++i) {
        m_watcher.reset();
        QTRY_COMPARE(m_item->host(), Host{});
        m_watcher = std::make_unique<FakeWatcher>();
        QTRY_COMPARE(m_registered->count(), i + 1);
        settle();
        QCOMPARE(m_watcher->items().size(), 1);
    }
}

void PanelStatusItemTest::aPanelOfBothProtocolsGetsTheItemByEmbeddingAlone()
{
    m_watcherProgram = xfceTray;
    m_watcher = std::make_unique<FakeWatcher>();
    // Its program is not told, so that only the watcher can be recognised.
    m_manager = std::make_unique<FakeTrayManager>(panelOf({}));
    makeItem();
    QTRY_COMPARE(m_registered->count(), 1);
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_item->host().name, u"xfce4-panel"_s);
    settle();
    QCOMPARE(m_manager->docked().size(), 1);
    QVERIFY(m_watcher->items().isEmpty());
}

void PanelStatusItemTest::aPanelWhoseTrayManagerDoesNotComeGetsTheItemOnTheBus()
{
    m_watcherProgram = xfceTray;
    m_watcher = std::make_unique<FakeWatcher>();
    makeItem();
    QTRY_COMPARE_WITH_TIMEOUT(m_registered->count(), 1, timeout);
    QCOMPARE(m_watcher->items().size(), 1);
}

void PanelStatusItemTest::aTrayManagerThatComesTooLateTakesTheItemOver()
{
    m_watcherProgram = xfceTray;
    m_watcher = std::make_unique<FakeWatcher>();
    makeItem();
    QTRY_COMPARE_WITH_TIMEOUT(m_watcher->items().size(), 1, timeout);
    OtherProgram asker;
    QVERIFY(!asker.ownerOf(m_watcher->items().first()).isEmpty());
    m_manager = std::make_unique<FakeTrayManager>(panelOf({}));
    QTRY_VERIFY(isDrawn());
    // Not both.
    QTRY_VERIFY(asker.ownerOf(m_watcher->items().first()).isEmpty());
    QCOMPARE(m_manager->docked().size(), 1);
}

void PanelStatusItemTest::theSameThingsAreNotDrawnAgain()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
    makeItem();
    QTRY_VERIFY(isDrawn());
    settle();
    const auto isMarked = [this] {
        return m_manager->picture().pixelColor(0, 0).rgb() == QColor(Qt::magenta).rgb();
    };
    m_manager->mark(Qt::magenta);
    QVERIFY(isMarked());
    show(sampleItem());
    settle();
    QVERIFY(isMarked());
    show(sampleItem(u"5h: 12%"_s));
    QTRY_VERIFY(!isMarked());
}

void PanelStatusItemTest::whatChangesReachesThePanel()
{
    m_watcher = std::make_unique<FakeWatcher>();
    makeItem();
    QTRY_COMPARE(m_registered->count(), 1);
    FakeHost host(
        m_watcher->items().first(), u"/StatusNotifierItem"_s, u"org.kde.StatusNotifierItem"_s, {});
    show(sampleItem(u"5h: 12%"_s));
    const QString title = u"5h: 12% · W: 55%"_s;
    QTRY_COMPARE_WITH_TIMEOUT(
        host.read(u"Title"_s).arguments().value(0).value<QDBusVariant>().variant().toString(),
        title, timeout);
}

void PanelStatusItemTest::clicksAreHandedOn()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
    makeItem();
    QTRY_VERIFY(isDrawn());
    QSignalSpy clicked(m_item.get(), &StatusItem::clicked);
    Pointer pointer;
    pointer.moveTo(m_manager->slot().center());
    pointer.click(1);
    QTRY_COMPARE(clicked.count(), 1);
    QCOMPARE(clicked.first().first().value<ItemAnchor>().bounds, m_manager->slot());
    pointer.moveTo(elsewhere);
}

void PanelStatusItemTest::anItemThatIsThrownOutComesAgain()
{
    m_manager = std::make_unique<FakeTrayManager>(panelOf(u"trayer"_s));
    makeItem();
    QTRY_VERIFY(isDrawn());
    m_manager->throwOut();
    QTRY_COMPARE_WITH_TIMEOUT(m_manager->docked().size(), 2, timeout);
    QTRY_VERIFY(isDrawn());
}

} // namespace brimwatch::platform

int main(int argc, char **argv)
{
    const brimwatch::test::PrivateDisplay display;
    const QGuiApplication application(argc, argv);
    brimwatch::platform::PanelStatusItemTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "panel_status_item_test.moc"
