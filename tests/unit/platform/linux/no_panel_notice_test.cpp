#include "platform/linux/no_panel_notice.h"
#include "support/fake_notifier.h"
#include "support/test_clock.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace std::chrono_literals;

class NoPanelNoticeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMinuteWithoutAPanelIsToldOnce()
    {
        const platform::NoPanelNotice notice(m_clock, m_notifier, folder(), {});
        m_clock.advance(59s);
        QCOMPARE(m_notifier.posted.size(), 0);
        m_clock.advance(1s);
        QCOMPARE(m_notifier.posted.size(), 1);
        QCOMPARE(
            m_notifier.posted.first().identifier, QString(platform::NoPanelNotice::identifier));
        m_clock.advance(24h);
        QCOMPARE(m_notifier.posted.size(), 1);
        QTRY_VERIFY(m_clock.periods().empty());
    }

    void aPanelInTimeIsNothingToTell()
    {
        platform::NoPanelNotice notice(m_clock, m_notifier, folder(), {});
        m_clock.advance(59s);
        notice.panelCame();
        QVERIFY(m_clock.periods().empty());
        m_clock.advance(24h);
        QCOMPARE(m_notifier.posted.size(), 0);
        QVERIFY(!QFileInfo::exists(folder() + u'/' + platform::NoPanelNotice::toldFile));
    }

    void aPanelThatComesTooLateChangesNothing()
    {
        platform::NoPanelNotice notice(m_clock, m_notifier, folder(), {});
        m_clock.advance(10min);
        notice.panelCame();
        m_clock.advance(10min);
        QCOMPARE(m_notifier.posted.size(), 1);
    }

    void aSecondStartInTheSessionSaysNothing()
    {
        const platform::NoPanelNotice first(m_clock, m_notifier, folder(), {});
        m_clock.advance(1min);
        const platform::NoPanelNotice second(m_clock, m_notifier, folder(), {});
        m_clock.advance(1min);
        QCOMPARE(m_notifier.posted.size(), 1);

        // The next session has a folder of its own.
        const QTemporaryDir next;
        const platform::NoPanelNotice third(m_clock, m_notifier, next.path(), {});
        m_clock.advance(1min);
        QCOMPARE(m_notifier.posted.size(), 2);
    }

    void whereNothingCanBeKeptEachStartTells_data()
    {
        QTest::addColumn<QString>("place");
        QTest::newRow("no folder named") << QString();
        QTest::newRow("a folder that is not there") << u"/dev/null/session"_s;
    }
    void whereNothingCanBeKeptEachStartTells()
    {
        QFETCH(QString, place);
        for (int start = 1; start <= 2; ++start) {
            const platform::NoPanelNotice notice(m_clock, m_notifier, place, {});
            m_clock.advance(2min);
            QCOMPARE(m_notifier.posted.size(), start);
        }
    }

    void itSaysWhatToDoThere()
    {
        const auto gnome = platform::noPanelNotification({u"ubuntu"_s, u"GNOME"_s});
        QVERIFY(gnome.body.contains(u"AppIndicator"_s));
        const auto other = platform::noPanelNotification({u"i3"_s});
        QVERIFY(other.body.contains(u"add a status tray"_s));
        QVERIFY(!other.body.contains(u"GNOME"_s));
        for (const auto &notification : {gnome, other})
            QVERIFY(notification.body.contains(u"starting Brimwatch again"_s));
    }

    void init()
    {
        m_session = std::make_unique<QTemporaryDir>();
        m_notifier.posted.clear();
    }

private:
    QString folder() const { return m_session->path(); }

    test::TestClock m_clock{QDateTime(QDate(2026, 11, 16), QTime(9, 0), Qt::UTC)};
    test::FakeNotifier m_notifier;
    std::unique_ptr<QTemporaryDir> m_session;
};

QTEST_GUILESS_MAIN(NoPanelNoticeTest)
#include "no_panel_notice_test.moc"
