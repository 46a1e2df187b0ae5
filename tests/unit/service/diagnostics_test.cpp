#include "platform/wording.h"
#include "service/diagnostics.h"
#include "support/service_fixture.h"

#include <QTest>
#include <QUrlQuery>

#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::service;
using discovery::DaemonInfo;

namespace {

const QDateTime start{QDate(2026, 11, 16), QTime(4, 59, 24), Qt::UTC};
const QString noDaemonText
    = u"No running Antigravity daemon found. Make sure Antigravity is open (Last update: Never)."_s;

} // namespace

class DiagnosticsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture.emplace(start); }
    void cleanup() { m_fixture.reset(); }

    void theVersionNamesTheBuildIfItHasOne_data()
    {
        using Text = std::optional<QString>;
        QTest::addColumn<Text>("version");
        QTest::addColumn<Text>("build");
        QTest::addColumn<QString>("text");
        QTest::newRow("both") << Text(u"2.3.4"_s) << Text(u"567"_s) << u"Brimwatch v2.3.4 (567)"_s;
        QTest::newRow("no build") << Text(u"2.3.4"_s) << Text() << u"Brimwatch v2.3.4"_s;
        QTest::newRow("empty build")
            << Text(u"2.3.4"_s) << Text(QString()) << u"Brimwatch v2.3.4"_s;
        QTest::newRow("no version") << Text() << Text(u"567"_s) << u"Brimwatch v1.0.0 (567)"_s;
        QTest::newRow("neither") << Text() << Text() << u"Brimwatch v1.0.0"_s;
    }
    void theVersionNamesTheBuildIfItHasOne()
    {
        QFETCH(std::optional<QString>, version);
        QFETCH(std::optional<QString>, build);
        QFETCH(QString, text);
        const Diagnostics one(
            m_fixture->service, {.version = version, .build = build, .systemVersion = {}}, {});
        QCOMPARE(one.appVersionString(), text);
    }

    void aReportBeforeTheFirstAnswer()
    {
        QCOMPARE(report(),
            QString(u"--- Brimwatch Diagnostics ---\n"
                    "App Version: Brimwatch v0.1.0 (12)\n"_s
                + platform::wording().systemVersionLabel
                + u": Some Linux 12, kernel 6.1\n"
                  "Launch at Login: Disabled\n"
                  "Toolbar Models: Gemini\n"
                  "Toolbar Label Style: letter\n"
                  "Connection Status: Connecting...\n"
                  "Daemon: No active daemon detected\n"
                  "Last Update: Never\n"_s));
        QVERIFY(!report().contains(u"Daemon PID"_s));
        QCOMPARE(diagnostics().daemonRows(), QList<DiagnosticLine>());
    }

    void aReportWithADaemonHasTenLinesAndTheWholeToken()
    {
        m_fixture->service.setLaunchAtLogin(true);
        m_fixture->service.setShowArgonInToolbar(true);
        m_fixture->service.setShowClaudeInToolbar(true);
        m_fixture->service.setToolbarLabelStyle(u"shortName"_s);
        succeed({.pid = 4711,
            .httpsPort = 43,
            .httpPort = 42,
            .lsVersion = u"1.2.3"_s,
            .csrfToken = u"0123456789-abc+/="_s});
        QCOMPARE(report(),
            QString(u"--- Brimwatch Diagnostics ---\n"
                    "App Version: Brimwatch v0.1.0 (12)\n"_s
                + platform::wording().systemVersionLabel
                + u": Some Linux 12, kernel 6.1\n"
                  "Launch at Login: Enabled\n"
                  "Toolbar Models: Gemini, Argon, Claude\n"
                  "Toolbar Label Style: shortName\n"
                  "Connection Status: Connected (Port 42)\n"
                  "Daemon PID: 4711\n"
                  "Daemon Port: 42\n"
                  "Daemon Version: 1.2.3\n"
                  "Daemon CSRF: 0123456789-abc+/=\n"
                  "Last Update: Nov 16, 2026 at 4:59:24 AM\n"_s));
        QCOMPARE(diagnostics().daemonRows(),
            (QList<DiagnosticLine>{{u"Status"_s, u"Active (PID 4711)"_s}, {u"Port"_s, u"42"_s},
                {u"Version"_s, u"1.2.3"_s}, {u"CSRF"_s, u"01234567..."_s}}));
    }

    void whatTheDaemonDoesNotSayIsSaidInItsStead()
    {
        succeed({});
        const QString text = report();
        QVERIFY2(text.contains(u"\nDaemon PID: 0\nDaemon Port: 0\nDaemon Version: N/A\n"
                               "Daemon CSRF: N/A\nLast Update: "_s),
            qPrintable(text));
        QCOMPARE(diagnostics().daemonRows(),
            (QList<DiagnosticLine>{{u"Status"_s, u"Active (PID 0)"_s}, {u"Port"_s, u"0"_s},
                {u"Version"_s, u"Unknown"_s}}));
    }

    void aDaemonWithOnlyASecurePortShowsThat()
    {
        succeed({.httpsPort = 43});
        QVERIFY(report().contains(u"\nDaemon Port: 43\n"_s));
        QCOMPARE(diagnostics().daemonRows().at(1), (DiagnosticLine{u"Port"_s, u"43"_s}));
    }

    void theModelsStandInTheirOrderOrThereAreNone()
    {
        m_fixture->service.setShowGeminiInToolbar(false);
        QVERIFY(report().contains(u"\nToolbar Models: None\n"_s));
        m_fixture->service.setShowClaudeInToolbar(true);
        QVERIFY(report().contains(u"\nToolbar Models: Claude\n"_s));
        m_fixture->service.setShowGeminiInToolbar(true);
        QVERIFY(report().contains(u"\nToolbar Models: Gemini, Claude\n"_s));
    }

    void theStoredLabelStyleStandsThereWhateverItIs()
    {
        m_fixture->service.setToolbarLabelStyle(u"no such style"_s);
        QVERIFY(report().contains(u"\nToolbar Label Style: no such style\n"_s));
    }

    void noValueMakesALineOrAnEscapeSequenceOfItsOwn()
    {
        m_fixture->service.setToolbarLabelStyle(u"full\nDaemon: forged\x1b[2J"_s);
        succeed({.lsVersion = u"1.0\r\nDaemon CSRF: forged\u2028\x9b"_s});
        const QString text = report();
        QVERIFY2(
            text.contains(u"\nToolbar Label Style: full Daemon: forged [2J\n"_s), qPrintable(text));
        QVERIFY2(text.contains(u"\nDaemon Version: 1.0 Daemon CSRF: forged\n"_s), qPrintable(text));
        QCOMPARE(diagnostics().daemonRows().at(2).value, u"1.0 Daemon CSRF: forged"_s);
    }

    void aLongValueIsTruncated()
    {
        succeed({.lsVersion = QString(qsizetype{100} * 1024, u'1')});
        QVERIFY(report().size() < 8000);
    }

    void theLastErrorStandsThereWhileThereIsOne()
    {
        m_fixture->fail();
        const QString text = report();
        QVERIFY2(text.endsWith(u"\nDaemon: No active daemon detected\nLast Error: "_s + noDaemonText
                     + u"\nLast Update: Never\n"_s),
            qPrintable(text));
        QVERIFY(text.contains(u"\nConnection Status: "_s + noDaemonText + u'\n'));

        m_fixture->service.refresh();
        QVERIFY(!report().contains(u"Last Error"_s));
        m_fixture->answer(model::QuotaSummary{}, {.pid = 5});
        QVERIFY(!report().contains(u"Last Error"_s));

        // The daemon that was there last is still told of.
        m_fixture->service.refresh();
        m_fixture->fail({.kind = discovery::DaemonError::Kind::noDaemonFound});
        QVERIFY(report().contains(u"\nDaemon PID: 5\n"_s));
        QVERIFY(report().contains(u"\nLast Error: "_s));
    }

    void aTokenIsCutAfterEightCharacters_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("text");
        QTest::newRow("longer") << u"123456789"_s << u"12345678..."_s;
        QTest::newRow("as long") << u"12345678"_s << u"12345678..."_s;
        QTest::newRow("shorter") << u"123"_s << u"123..."_s;
        QTest::newRow("empty") << QString() << u"..."_s;
        QTest::newRow("wide characters")
            << u"🧠🧠🧠🧠🧠🧠🧠e\u0301🧠"_s << u"🧠🧠🧠🧠🧠🧠🧠e\u0301..."_s;
    }
    void aTokenIsCutAfterEightCharacters()
    {
        QFETCH(QString, token);
        QFETCH(QString, text);
        QCOMPARE(truncatedToken(token), text);
        succeed({.csrfToken = token});
        QCOMPARE(diagnostics().daemonRows().constLast(), (DiagnosticLine{u"CSRF"_s, text}));
        QVERIFY(report().contains(u"\nDaemon CSRF: "_s + token + u'\n'));
    }

    void theMailToSupportHoldsTheReport()
    {
        succeed({.pid = 1, .csrfToken = u"a+b/c==&d"_s});
        const QUrl url = diagnostics().supportMailUrl();
        QVERIFY(url.isValid());
        QCOMPARE(url.scheme(), u"mailto"_s);
        QCOMPARE(url.path(), QStringLiteral(BRIMWATCH_SUPPORT_ADDRESS));
        using Items = QList<std::pair<QString, QString>>;
        QCOMPARE(QUrlQuery(url).queryItems(QUrl::FullyDecoded),
            (Items{{u"subject"_s, u"Brimwatch"_s},
                {u"body"_s,
                    u"Hi Brimwatch Support,\n\n[Please describe your issue or feedback here]\n\n\n"_s
                        + report()}}));
    }

    void theDaemonsFolderIsInTheUsersHome()
    {
        QCOMPARE(diagnostics().daemonFolderUrl(),
            QUrl(u"file:///home/me%20too/.gemini/antigravity/daemon"_s));
    }

private:
    Diagnostics diagnostics() const
    {
        return {m_fixture->service,
            {.version = u"0.1.0"_s,
                .build = u"12"_s,
                .systemVersion = u"Some Linux 12, kernel 6.1"_s},
            u"/home/me too"_s};
    }
    QString report() const { return diagnostics().generateDiagnosticInfo(); }

    void succeed(const DaemonInfo &daemon)
    {
        m_fixture->answer(model::QuotaSummary{}, daemon);
        QVERIFY(m_fixture->service.activeDaemon());
    }
    std::optional<test::ServiceFixture> m_fixture;
};

QTEST_GUILESS_MAIN(DiagnosticsTest)
#include "diagnostics_test.moc"
