#include "platform/linux/popover/window_popover.h"

#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <memory>

using namespace brimwatch::platform;

namespace {

class FakeContent final : public PopoverContent {
public:
    explicit FakeContent(QList<bool> &shown)
        : m_shown(shown)
    {
    }
    QWindow &window() override { return m_window; }
    QSize size() const override { return {380, 490}; }
    void setTranslucent(bool /*translucent*/) override { }
    QMargins shadow() const override { return {}; }
    void setShown(bool shown) override { m_shown.append(shown); }
    void showSettings() override { }

private:
    QList<bool> &m_shown;
    QWindow m_window;
};

} // namespace

class PlacedPopoverTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itsContentIsLetGoAndLoadedAgain()
    {
        m_popover.prepare();
        QCOMPARE(m_loads, 1);
        m_popover.release();
        QVERIFY(!m_content);
        // What has no content has nothing to do.
        m_popover.release();
        m_popover.showSettings();
        m_popover.performClose();
        m_popover.makeKey();
        QVERIFY(!m_popover.isShown());

        m_popover.show(anchor());
        QCOMPARE(m_loads, 2);
        QVERIFY(m_popover.isShown());
        m_popover.performClose();
        QVERIFY(!m_popover.isShown());
        QCOMPARE(m_shown, (QList{true, false}));
        m_popover.release();
        QCoreApplication::processEvents();
        QVERIFY(!m_content);
        m_popover.showUnclicked({});
        QCOMPARE(m_loads, 3);
        m_popover.performClose();
    }

    void whileItIsShownItKeepsItsContent()
    {
        m_popover.show(anchor());
        m_popover.release();
        QVERIFY(m_content);
        QVERIFY(m_popover.isShown());
        const QSignalSpy closed(&m_popover, &Popover::didClose);
        m_popover.performClose();
        QCOMPARE(closed.size(), 1);
    }

private:
    static ItemAnchor anchor()
    {
        return {.bounds = QRect(100, 0, 90, 22), .pointer = QPoint(120, 10)};
    }

    int m_loads = 0;
    QList<bool> m_shown;
    QPointer<QWindow> m_content;
    WindowPopover m_popover{[this]() -> std::unique_ptr<PopoverContent> {
                                ++m_loads;
                                auto content = std::make_unique<FakeContent>(m_shown);
                                m_content = &content->window();
                                return content;
                            },
        {.workArea = [](const QScreen &screen) { return screen.geometry(); },
            .isComposited = [] { return false; }}};
};

QTEST_MAIN(PlacedPopoverTest)
#include "placed_popover_test.moc"
