#include "platform/linux/desktop/qt_application_presence.h"

#include <QGuiApplication>
#include <QTest>
#include <QTimer>
#include <QWindow>

using namespace brimwatch;

class QtApplicationPresenceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramOutlivesItsLastWindow()
    {
        QGuiApplication::setQuitOnLastWindowClosed(true);
        m_presence.becomeAccessory();
        QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
    }

    void everyWindowIsHiddenAndClosed()
    {
        QWindow first;
        QWindow second;
        QWindow never;
        first.show();
        second.show();
        QVERIFY(QTest::qWaitForWindowExposed(&first));
        QVERIFY(QTest::qWaitForWindowExposed(&second));
        m_presence.closeWindows();
        for (const QWindow *window : {&first, &second, &never}) {
            QVERIFY(!window->isVisible());
            QVERIFY(window->handle() == nullptr); // Closed, not only out of sight.
        }
    }

    void terminatingEndsTheEventLoop()
    {
        QTimer::singleShot(0, [this] { m_presence.terminate(); });
        QCOMPARE(QGuiApplication::exec(), 0);
    }

private:
    platform::QtApplicationPresence m_presence;
};

QTEST_MAIN(QtApplicationPresenceTest)
#include "qt_application_presence_test.moc"
