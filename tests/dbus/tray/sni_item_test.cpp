#include "platform/linux/tray/sni_item.h"
#include "support/fake_watcher.h"

#include <QDBusConnection>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;
using brimwatch::test::FakeHost;

namespace {

constexpr auto itemPath = "/StatusNotifierItem"_L1;
constexpr auto itemInterface = "org.kde.StatusNotifierItem"_L1;

SniItem::Texts texts(const QString &title)
{
    return {.title = title, .toolTip = u"Lines"_s, .label = u"80%"_s, .labelGuide = u"100%"_s};
}

SniPixmaps pixels(char value)
{
    return {{.width = 1, .height = 1, .bytes = QByteArray(4, value)}};
}

} // namespace

/// The object of the protocol, without any policy.
class SniItemTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_drawings = 0;
        m_value = 'a';
        m_item = makeItem();
        m_host = std::make_unique<FakeHost>(QDBusConnection::sessionBus().baseService(), itemPath,
            itemInterface,
            QStringList{u"NewIcon"_s, u"NewTitle"_s, u"NewToolTip"_s, u"XAyatanaNewLabel"_s});
    }
    void cleanup()
    {
        m_host.reset();
        m_item.reset();
    }

    void hostsReadWhatItWasGiven()
    {
        const auto values = m_host->readAll();
        QCOMPARE(values.value(u"Id"_s).toString(), u"brimwatch"_s);
        QCOMPARE(values.value(u"Title"_s).toString(), u"One"_s);
        QCOMPARE(values.value(u"XAyatanaLabelGuide"_s).toString(), u"100%"_s);
        QVERIFY(!values.contains(u"Menu"_s));
    }

    void picturesAreDrawnWhenAHostAsksForThem()
    {
        QVERIFY(!m_item->update(texts(u"One"_s), true));
        QCOMPARE(m_drawings, 0);
        m_host->readAll();
        m_host->readAll();
        QCOMPARE(m_drawings, 1);
    }

    void whatNobodyHasReadIsNotSignalled()
    {
        QVERIFY(!m_item->update(texts(u"Two"_s), true));
        QCOMPARE(m_host->heard(), QStringList());
        QCOMPARE(m_host->readAll().value(u"Title"_s).toString(), u"Two"_s);
    }

    void whatHasBeenReadIsSignalledWhenItChanges()
    {
        m_host->readAll();
        QVERIFY(!m_item->update(texts(u"One"_s), false));
        QVERIFY(m_item->update(texts(u"Two"_s), false));
        QCOMPARE(m_host->heard(), QStringList(u"NewTitle"_s));
    }

    void anotherDrawingOfTheSamePixelsIsNotSignalled()
    {
        m_host->readAll();
        QVERIFY(!m_item->update(texts(u"One"_s), true));
        QCOMPARE(m_drawings, 2);
        m_value = 'b';
        QVERIFY(m_item->update(texts(u"One"_s), true));
        QCOMPARE(m_host->heard(), QStringList(u"NewIcon"_s));
    }

    void aClickCarriesTheHostsCoordinates()
    {
        QSignalSpy activated(m_item.get(), &SniItem::activated);
        m_host->call(u"Activate"_s, {3, -4});
        m_host->call(u"ContextMenu"_s, {70'000, 2});
        QTRY_COMPARE(activated.size(), 2);
        QCOMPARE(activated.at(0).at(0).toPoint(), QPoint(3, -4));
        QCOMPARE(activated.at(1).at(0).toPoint(), QPoint(70'000, 2));
    }

    void aSecondOneLeavesTheFirstOnTheBus()
    {
        QVERIFY(m_item->isOnBus());
        QVERIFY(!makeItem()->isOnBus());
        QVERIFY(m_item->isOnBus());
        QCOMPARE(m_host->readAll().value(u"Title"_s).toString(), u"One"_s);
    }

private:
    std::unique_ptr<SniItem> makeItem()
    {
        return std::make_unique<SniItem>(
            QDBusConnection::sessionBus(), SniItem::Menu::No, texts(u"One"_s), [this] {
                ++m_drawings;
                return pixels(m_value);
            });
    }

    int m_drawings = 0;
    char m_value = 'a';
    std::unique_ptr<SniItem> m_item;
    std::unique_ptr<FakeHost> m_host;
};

QTEST_GUILESS_MAIN(SniItemTest)
#include "sni_item_test.moc"
