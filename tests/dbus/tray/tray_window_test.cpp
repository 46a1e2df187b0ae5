#include "dbus/tray/fake_tray_manager.h"
#include "platform/linux/tray/tray_window.h"
#include "support/private_display.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace brimwatch::platform {

using namespace test;

namespace {

constexpr QPoint elsewhere(50, 650);

} // namespace

/// The window in a panel's tray, whatever is drawn there.
class TrayWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_pointer.moveTo(elsewhere);
        m_x = std::make_unique<XConnection>();
        m_manager = std::make_unique<FakeTrayManager>();
        m_window = std::make_unique<TrayWindow>(*m_x, m_manager->window());
    }
    void cleanup()
    {
        m_window.reset();
        m_manager.reset();
        m_x.reset();
    }

    void beforeItDocksThereIsNoWindow()
    {
        QVERIFY(!m_window->exists());
        QVERIFY(!m_window->isDocked());
        QVERIFY(!m_window->place());
        QVERIFY(!m_window->askForWidth(30));
    }

    void theTrayTakesItInTheWidthAskedFor()
    {
        dock(77);
        QCOMPARE(m_window->slot().width(), 77);
        QCOMPARE(m_window->place(), m_manager->slot());
        QCOMPARE(m_manager->hintedSize().width(), 77);
    }

    void anotherWidthIsAskedForOnce()
    {
        dock(77);
        QSignalSpy resized(m_window.get(), &TrayWindow::resized);
        QVERIFY(!m_window->askForWidth(77));
        QVERIFY(m_window->askForWidth(120));
        QVERIFY(!m_window->askForWidth(120));
        QTRY_COMPARE(m_window->slot().width(), 120);
        QCOMPARE(m_manager->hintedSize().width(), 120);
        QVERIFY(!resized.isEmpty());
    }

    void theSlotIsWhatAnEnclosingWindowShows()
    {
        m_manager = std::make_unique<FakeTrayManager>(
            FakeTrayManager::Manners{.symbols = {}, .height = 16, .squares = true, .program = {}});
        m_window = std::make_unique<TrayWindow>(*m_x, m_manager->window());
        dock(77);
        QCOMPARE(m_window->slot(), QSize(16, 16));
        QCOMPARE(m_window->place(), m_manager->slot());
        QSignalSpy resized(m_window.get(), &TrayWindow::resized);
        m_manager->setSquareSize({40, 16});
        QTRY_COMPARE(m_window->slot(), QSize(40, 16));
        QCOMPARE(resized.size(), 1);
        m_manager->setSquareSize({400, 400});
        QTRY_COMPARE(m_window->slot(), QSize(77, 16));
    }

    // GTK makes its sockets one pixel high. In an upright panel the item kept that height.
    void aParentThatIsNotLaidOutSaysNothingOfTheSlot()
    {
        m_manager = std::make_unique<FakeTrayManager>(
            FakeTrayManager::Manners{.symbols = {}, .height = 16, .squares = true, .program = {}});
        m_window = std::make_unique<TrayWindow>(*m_x, m_manager->window());
        dock(77);
        QList<QSize> seen;
        connect(m_window.get(), &TrayWindow::resized, this,
            [this, &seen] { seen += m_window->slot(); });
        m_manager->setSquareSize({30, 1});
        m_manager->setSquareSize({40, 16});
        QTRY_COMPARE(m_window->slot(), QSize(40, 16));
        QCOMPARE(seen, (QList<QSize>{{77, 16}, {40, 16}}));
    }

    void whatIsDrawnIsShown()
    {
        dock(40);
        QSignalSpy damaged(m_window.get(), &TrayWindow::damaged);
        QImage picture(m_window->slot(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::red);
        m_window->draw(picture);
        QTRY_COMPARE(m_manager->picture().pixelColor(20, 10), QColor(Qt::red));
        m_manager->damage();
        QTRY_VERIFY(!damaged.isEmpty());
    }

    void theColorsThatThePanelAnnouncesAreFollowed()
    {
        dock(40);
        QVERIFY(m_window->symbolColors().isEmpty());
        QSignalSpy changed(m_window.get(), &TrayWindow::symbolColorsChanged);
        m_manager->setColors({Qt::white, Qt::red, Qt::yellow, Qt::green});
        QTRY_VERIFY(!changed.isEmpty());
        QCOMPARE(m_window->symbolColors().mid(0, 6),
            (QList<std::uint32_t>{65535, 65535, 65535, 65535, 0, 0}));
    }

    void buttonsAreReportedWithTheirPlaces()
    {
        constexpr int middle = 2;
        dock(40);
        QSignalSpy pressed(m_window.get(), &TrayWindow::buttonPressed);
        QSignalSpy released(m_window.get(), &TrayWindow::buttonReleased);
        const QPoint corner = m_manager->slot().topLeft();
        m_pointer.moveTo(corner + QPoint(5, 6));
        m_pointer.press(middle);
        m_pointer.moveTo(elsewhere);
        m_pointer.release(middle);
        QTRY_COMPARE(released.size(), 1);
        QCOMPARE(pressed.size(), 1);
        QCOMPARE(pressed.first().first().value<std::uint8_t>(), std::uint8_t{middle});
        QCOMPARE(released.first().at(1).toPoint(), elsewhere - corner);
        QCOMPARE(released.first().at(2).toPoint(), elsewhere);
    }

    void theEndOfThePanelIsReportedOnceAndNothingAfterIt()
    {
        dock(40);
        QSignalSpy lost(m_window.get(), &TrayWindow::lost);
        QSignalSpy resized(m_window.get(), &TrayWindow::resized);
        m_manager.reset();
        QTRY_COMPARE(lost.size(), 1);
        m_x->selectionOwner(XCB_ATOM_PRIMARY);
        QCoreApplication::processEvents();
        QCOMPARE(lost.size(), 1);
        QCOMPARE(resized.size(), 0);
        QVERIFY(!m_window->place());
    }

private:
    void dock(int width)
    {
        QSignalSpy docked(m_window.get(), &TrayWindow::docked);
        m_window->dock({width, TrayWindow::usualHeight});
        QTRY_COMPARE(docked.size(), 1);
        QVERIFY(m_window->isDocked());
        QTRY_COMPARE(m_window->slot(), m_manager->slot().size());
    }

    Pointer m_pointer;
    std::unique_ptr<XConnection> m_x;
    std::unique_ptr<FakeTrayManager> m_manager;
    std::unique_ptr<TrayWindow> m_window;
};

} // namespace brimwatch::platform

int main(int argc, char **argv)
{
    const brimwatch::test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    brimwatch::platform::TrayWindowTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tray_window_test.moc"
