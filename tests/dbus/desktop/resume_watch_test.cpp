#include "platform/linux/desktop/resume_watch.h"
#include "support/fake_watcher.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

class ResumeWatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itTellsOfTheReturnAndNotOfGoingToSleep()
    {
        test::OtherProgram logind;
        QVERIFY(logind.takeName(u"org.freedesktop.login1"_s));
        const platform::ResumeWatch watch(QDBusConnection::sessionBus());
        QSignalSpy resumed(&watch, &platform::ResumeWatch::resumed);
        QVERIFY(announce(logind, true));
        QVERIFY(announce(logind, false));
        QTRY_COMPARE(resumed.size(), 1);
        QVERIFY(announce(logind, true));
        QVERIFY(announce(logind, false));
        QTRY_COMPARE(resumed.size(), 2);
    }

    void itListensToALogindThatComesLater()
    {
        const platform::ResumeWatch watch(QDBusConnection::sessionBus());
        QSignalSpy resumed(&watch, &platform::ResumeWatch::resumed);
        test::OtherProgram logind;
        QVERIFY(logind.takeName(u"org.freedesktop.login1"_s));
        // It may speak before the bus has told us who it is.
        QTRY_VERIFY(announce(logind, false) && !resumed.isEmpty());
    }

    void nobodyElseIsBelieved()
    {
        test::OtherProgram logind;
        QVERIFY(logind.takeName(u"org.freedesktop.login1"_s));
        test::OtherProgram other;
        const platform::ResumeWatch watch(QDBusConnection::sessionBus());
        QSignalSpy resumed(&watch, &platform::ResumeWatch::resumed);
        QVERIFY(announce(other, false));
        // What is answered comes after what was sent before.
        QVERIFY(!other.ownerOf(u"org.freedesktop.login1"_s).isEmpty());
        QVERIFY(announce(logind, false));
        QTRY_VERIFY(!resumed.isEmpty());
        QCOMPARE(resumed.size(), 1);
    }

    void withoutABusItIsSilent()
    {
        const platform::ResumeWatch watch(QDBusConnection(u"none"_s));
        const QSignalSpy resumed(&watch, &platform::ResumeWatch::resumed);
        QCoreApplication::processEvents();
        QVERIFY(resumed.isEmpty());
    }

private:
    static bool announce(test::OtherProgram &program, bool goesToSleep)
    {
        auto signal = QDBusMessage::createSignal(u"/org/freedesktop/login1"_s,
            u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s);
        signal << goesToSleep;
        return program.bus().send(signal);
    }
};

QTEST_GUILESS_MAIN(ResumeWatchTest)
#include "resume_watch_test.moc"
