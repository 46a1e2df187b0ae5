#include "platform/linux/popover/window_popover.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWindow>

#include <memory>
#include <optional>

using namespace brimwatch::platform;

namespace {

class FakeContent final : public PopoverContent {
public:
    explicit FakeContent(QWindow *&window) { window = &m_window; }
    QWindow &window() override { return m_window; }
    QSize size() const override { return {100, 120}; }
    void setTranslucent(bool /*translucent*/) override { }
    QMargins shadow() const override { return {}; }
    void setShown(bool /*shown*/) override { }
    void showSettings() override { }

private:
    QWindow m_window;
};

} // namespace

/// A popover on a screen of 800 × 800 pixels that Qt shows at scale 2.
class ScaledPopoverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QScreen *screen = QGuiApplication::primaryScreen();
        QCOMPARE(screen->devicePixelRatio(), 2.0);
        QCOMPARE(screen->geometry(), QRect(0, 0, 400, 400));
    }

    void itOpensBelowTheClickWhateverThePanelCounts_data()
    {
        QTest::addColumn<QPoint>("pointer");
        QTest::addColumn<QPoint>("told");
        QTest::addColumn<int>("middle");

        const QPoint pointer(300, 5);
        QTest::newRow("native pixels") << pointer << QPoint(600, 10) << 300;
        QTest::newRow("the panel's own") << pointer << QPoint(300, 5) << 300;
        // The pointer moves on, and panels tell a corner of the item.
        QTest::newRow("native, a little off") << pointer << QPoint(570, 0) << 300;
        QTest::newRow("own, a little off") << pointer << QPoint(285, 0) << 300;
        QTest::newRow("by a key") << QPoint(200, 390) << QPoint(600, 10) << 300;
    }
    void itOpensBelowTheClickWhateverThePanelCounts()
    {
        QFETCH(QPoint, pointer);
        QFETCH(QPoint, told);
        QFETCH(int, middle);
        QCursor::setPos(pointer);
        QTRY_COMPARE(QCursor::pos(), pointer);
        m_popover.show({.bounds = std::nullopt, .pointer = told});
        QVERIFY(m_popover.isShown());
        QVERIFY(std::abs(m_window->geometry().center().x() - middle) <= 1);
        QVERIFY(m_window->geometry().top() < 20);
        m_popover.performClose();
    }

    void theBoundsOfAnItemAreNativePixels()
    {
        QCursor::setPos(QPoint(200, 390));
        m_popover.show({.bounds = QRect(560, 0, 80, 20), .pointer = QPoint(600, 10)});
        QVERIFY(std::abs(m_window->geometry().center().x() - 300) <= 1);
        QCOMPARE(m_window->geometry().top(), 10);
        m_popover.performClose();
    }

private:
    QWindow *m_window = nullptr;
    WindowPopover m_popover{[this] { return std::make_unique<FakeContent>(m_window); },
        {.workArea = [](const QScreen &screen) { return screen.geometry(); },
            .isComposited = [] { return false; }}};
};

int main(int argc, char **argv)
{
    qputenv("QT_SCALE_FACTOR", "2");
    const QGuiApplication application(argc, argv);
    ScaledPopoverTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "scaled_popover_test.moc"
