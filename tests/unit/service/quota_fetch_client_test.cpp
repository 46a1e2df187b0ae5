#include "service/quota_fetch_client.h"
#include "support/test_clock.h"
#include "unit/service/local_daemons.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QNetworkProxy>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include <functional>
#include <limits>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace brimwatch;
using namespace brimwatch::service;
using discovery::DaemonError;
using test::errorOf;
using test::SampleDaemonProcess;

namespace {

constexpr auto lost = "The network connection was lost."_L1;
constexpr auto malformed = "The server's answer made no sense."_L1;
constexpr auto timedOut = "The request timed out."_L1;

/// A daemon within the test, which decides itself what each whole request is answered with.
class ScriptedDaemon : public QObject {
public:
    using Answer = std::function<void(QTcpSocket &)>;

    explicit ScriptedDaemon(Answer answer)
        : m_answer(std::move(answer))
    {
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("cannot listen: %s", qPrintable(m_server.errorString()));
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (auto *socket = m_server.nextPendingConnection()) {
                ++connections;
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                    const QByteArray received = socket->readAll();
                    requests += received.count("POST ");
                    if (received.endsWith("{}"))
                        m_answer(*socket);
                });
            }
        });
    }

    quint16 port() const { return m_server.serverPort(); }

    qsizetype connections = 0;
    qsizetype requests = 0;

private:
    QTcpServer m_server;
    Answer m_answer;
};

ScriptedDaemon::Answer write(const QByteArray &bytes)
{
    return [bytes](QTcpSocket &socket) { socket.write(bytes); };
}

QByteArray withGroups(int count, const QByteArray &name)
{
    QByteArrayList groups;
    for (int i = 0; i < count; ++i)
        groups.append(R"({"displayName":")" + name + R"(","buckets":[]})");
    return R"({"groups":[)" + groups.join(',') + "]}";
}

// Without "Connection: close".
const QByteArray goodAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 13\r\n\r\n{\"groups\":[]}";

} // namespace

class QuotaFetchClientTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // First, before anything of this program asks securely.
    void theTlsLibraryIsNotLoadedForPlainHttp()
    {
        const QString file = u"/proc/self/maps"_s;
        if (!QFileInfo::exists(file))
            QSKIP("this system does not tell what a program has loaded");
        const auto mapped = [&file] {
            QFile maps(file);
            return maps.open(QIODevice::ReadOnly) ? maps.readAll() : QByteArray();
        };
        // The test itself uses Qt Network, and that of Debian 13 links libproxy, which links
        // libcurl, which links it.
        const QByteArray before = mapped();
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon), qPrintable(daemon.errorText()));
        QVERIFY(fetch().has_value());
        const QByteArray after = mapped();
        QVERIFY(after.contains("libbrimwatch.so"));
        QVERIFY(!after.contains("libbrimwatch-tls"));
        QVERIFY(!after.contains("/plugins/tls/"));
        QCOMPARE(after.contains("libssl"), before.contains("libssl"));
        QCOMPARE(after.contains("libcrypto"), before.contains("libcrypto"));
    }

    void init() { m_daemons.emplace(); }
    void cleanup()
    {
        m_daemons.reset();
        m_trusted.clear();
        m_limits = {};
        m_clock.setNow(m_now);
    }

    // What is sent

    void theRequestIsWhatTheDaemonExpectsAndIsSentOnce()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon), qPrintable(daemon.errorText()));
        QVERIFY(fetch().has_value());

        const auto stats = daemon.stats();
        QVERIFY(stats && stats->last);
        QCOMPARE(stats->requests, 1);
        QCOMPARE(stats->last->method, u"POST"_s);
        QCOMPARE(stats->last->path,
            u"/exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary"_s);
        QCOMPARE(stats->last->body, QByteArray("{}"));
        using Header = QPair<QByteArray, QByteArray>;
        const auto &headers = stats->last->headers;
        const auto first = headers.indexOf(Header("Content-Type", "application/json"));
        QVERIFY(first >= 0);
        QCOMPARE(headers.value(first + 1), Header("Connect-Protocol-Version", "1"));
        QCOMPARE(headers.value(first + 2), Header("x-codeium-csrf-token", daemon.token()));
        QCOMPARE(stats->last->header("User-Agent"), QByteArray("Brimwatch/" BRIMWATCH_VERSION));
        QCOMPARE(stats->last->header("Accept-Encoding"), QByteArray("identity"));
        QCOMPARE(stats->last->header("Content-Length"), QByteArray("2"));
        QCOMPARE(stats->last->header("Connection"), QByteArray("close"));
        QCOMPARE(stats->last->header("Host"), "127.0.0.1:" + QByteArray::number(daemon.httpPort()));
        for (const char *name : {"Cookie", "Authorization", "Proxy-Authorization", "Referer",
                 "If-None-Match", "If-Modified-Since", "Upgrade", "Expect"})
            QVERIFY2(!stats->last->header(name), name);
    }

    void theTokenIsSentVerbatim_data()
    {
        QTest::addColumn<QString>("token");
        QTest::newRow("ordinary") << u"3f0e-4b"_s;
        QTest::newRow("separators") << u"a: b; c, \"d\" \\ %41 {}"_s;
        QTest::newRow("other scripts") << u"tökèn ✦ \U0001F9E0"_s;
        QTest::newRow("long") << QString(4000, u'x');
    }
    void theTokenIsSentVerbatim()
    {
        QFETCH(QString, token);
        QByteArray received;
        // The bytes themselves: an HTTP library on the other side may repair them.
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&] {
            auto *socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [socket, &received] {
                received += socket->readAll();
                if (received.endsWith("{}"))
                    socket->write(goodAnswer);
            });
        });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, server.serverPort()}, {u"csrfToken"_s, token}}));
        QVERIFY(fetch().has_value());
        const QByteArray header = "\r\nx-codeium-csrf-token: " + token.toUtf8() + "\r\n";
        QVERIFY2(received.contains(header), received.constData());
    }

    void aTokenThatNoHeaderCanCarrySkipsTheCandidate_data()
    {
        QTest::addColumn<QString>("token");
        QTest::newRow("line feed") << u"a\nb"_s;
        QTest::newRow("carriage return") << u"a\rb"_s;
        QTest::newRow("a header of its own") << u"a\r\nX-Other: b"_s;
        QTest::newRow("line feed at the end") << u"a\n"_s;
        QTest::newRow("NUL") << u"a\0b"_s;
        QTest::newRow("empty") << QString();
    }
    void aTokenThatNoHeaderCanCarrySkipsTheCandidate()
    {
        QFETCH(QString, token);
        ScriptedDaemon daemon(write(goodAnswer));
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, token}}));
        QCOMPARE(errorOf(fetch()).kind, DaemonError::Kind::noDaemonFound);
        QCOMPARE(daemon.connections, 0);
    }

    void aCandidateWithoutATokenOrAPortIsSkippedForTheNext()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon), qPrintable(daemon.errorText()));
        QVERIFY(m_daemons->askLast(daemon.filePath()));
        ScriptedDaemon other(write(goodAnswer));
        QVERIFY(m_daemons->announce(u"ls_a.json"_s, {{u"httpPort"_s, other.port()}}));
        QVERIFY(m_daemons->announce(u"ls_b.json"_s, {{u"csrfToken"_s, u"t"_s}}));
        QVERIFY(
            m_daemons->announce(u"ls_c.json"_s, {{u"httpPort"_s, -1}, {u"csrfToken"_s, u"t"_s}}));
        // 16 bits of it are the port of the other.
        QVERIFY(m_daemons->announce(
            u"ls_d.json"_s, {{u"httpPort"_s, other.port() + 65'536}, {u"csrfToken"_s, u"t"_s}}));
        const auto result = fetch();
        QVERIFY(result.has_value());
        QCOMPARE(result->daemon.filePath, daemon.filePath());
        QCOMPARE(other.connections, 0);
    }

    void afterOneThatAnswersNoOtherIsAsked()
    {
        ScriptedDaemon older(write(goodAnswer));
        ScriptedDaemon newer(write(goodAnswer));
        const auto keys = [](quint16 port) {
            return QJsonObject{{u"httpPort"_s, port}, {u"csrfToken"_s, u"t"_s}};
        };
        QVERIFY(m_daemons->announce(u"ls_a.json"_s, keys(older.port())));
        QVERIFY(m_daemons->askLast(m_daemons->pathOf(u"ls_a.json"_s)));
        QVERIFY(m_daemons->announce(u"ls_b.json"_s, keys(newer.port())));
        const auto result = fetch();
        QVERIFY(result.has_value());
        QCOMPARE(result->daemon.httpPort, newer.port());
        QCOMPARE(newer.requests, 1);
        QCOMPARE(older.connections, 0);
    }

    void aCandidateWithBothPortsIsAskedOnThePlainOneOnly()
    {
        ScriptedDaemon plain(write(goodAnswer));
        ScriptedDaemon secure(write(goodAnswer));
        QVERIFY(m_daemons->announce(u"ls_a.json"_s,
            {{u"httpPort"_s, plain.port()}, {u"httpsPort"_s, secure.port()},
                {u"csrfToken"_s, u"t"_s}}));
        QVERIFY(fetch().has_value());
        QCOMPARE(plain.requests, 1);
        QCOMPARE(secure.connections, 0);
    }

    void noProxyIsUsed()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon), qPrintable(daemon.errorText()));
        ScriptedDaemon proxy(write(goodAnswer));
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, u"127.0.0.1"_s, proxy.port()));
        const auto result = fetch();
        QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
        QVERIFY(result.has_value());
        QCOMPARE(proxy.connections, 0);
    }

    void noRedirectIsFollowed()
    {
        SampleDaemonProcess other;
        QVERIFY2(m_daemons->start(other, {u"--file-name"_s, u"elsewhere"_s}),
            qPrintable(other.errorText()));
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon,
                     {u"--misbehave"_s, u"redirect"_s, u"--redirect-to"_s,
                         u"http://127.0.0.1:%1/"_s.arg(other.httpPort())}),
            qPrintable(daemon.errorText()));
        QCOMPARE(errorOf(fetch()).kind, DaemonError::Kind::noDaemonFound);
        QCOMPARE(daemon.stats()->requests, 1);
        QCOMPARE(other.stats()->requests, 0);
    }

    void aCookieIsNotBroughtBack()
    {
        ScriptedDaemon daemon([](QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\nSet-Cookie: a=b\r\nContent-Length: 13\r\n\r\n"
                         "{\"groups\":[]}");
        });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        QVERIFY(fetch(client).has_value());

        QVERIFY(QFile::remove(m_daemons->pathOf(u"ls_a.json"_s)));
        SampleDaemonProcess next;
        QVERIFY2(m_daemons->start(next), qPrintable(next.errorText()));
        QVERIFY(fetch(client).has_value());
        QVERIFY(!next.stats()->last->header("Cookie"));
    }

    // What comes back

    void bothShapesOfABodyGiveTheSameSummary()
    {
        const QByteArray groups = R"({"groups":[{"displayName":"Gemini","buckets":[]}]})";
        QTemporaryDir folder;
        const QString summary = folder.filePath(u"summary"_s);
        const model::QuotaSummary expected{
            .groups = {model::QuotaGroup{.displayName = u"Gemini"_s}}};
        const QByteArray envelope = "{\"response\":" + groups + '}';
        for (const QByteArray &body : {groups, envelope}) {
            QFile file(summary);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(body);
            file.close();
            SampleDaemonProcess daemon;
            QVERIFY2(m_daemons->start(daemon, {u"--summary"_s, summary}),
                qPrintable(daemon.errorText()));
            const auto result = fetch();
            QVERIFY2(result.has_value(), body.constData());
            QCOMPARE(result->summary, expected);
        }
    }

    void aSuccessNamesTheDaemonAndIsNoted()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(
            m_daemons->start(daemon, {u"--shape"_s, u"bare"_s}), qPrintable(daemon.errorText()));
        QVERIFY(!m_daemons->discovery().lastSuccessfulUpdate());
        const auto result = fetch();
        QVERIFY(result.has_value());
        QCOMPARE(result->daemon.httpPort, daemon.httpPort());
        QCOMPARE(result->daemon.filePath, daemon.filePath());
        QCOMPARE(result->summary.groups.size(), 3);
        QCOMPARE(m_daemons->discovery().lastSuccessfulUpdate(), m_now);
    }

    void aFailureLeavesTheTimeOfTheLastSuccess()
    {
        m_daemons->discovery().setLastSuccessfulUpdate(m_now.addDays(-1));
        QCOMPARE(errorOf(fetch()).kind, DaemonError::Kind::noDaemonFound);
        QCOMPARE(m_daemons->discovery().lastSuccessfulUpdate(), m_now.addDays(-1));
    }

    void aMissingDirectoryIsAnErrorOfItsOwn()
    {
        QTemporaryDir home;
        discovery::DaemonDiscoveryService discovery(home.path());
        QuotaFetchClient client(discovery, m_clock);
        QCOMPARE(errorOf(fetch(client)), (DaemonError{DaemonError::Kind::directoryNotFound}));
        QCOMPARE(errorOf(fetch(client, m_now)),
            (DaemonError{.kind = DaemonError::Kind::directoryNotFound, .lastUpdate = m_now}));
    }

    void anEmptyDirectoryMeansNoDaemon()
    {
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        QCOMPARE(errorOf(fetch(client, m_now)),
            (DaemonError{.kind = DaemonError::Kind::noDaemonFound, .lastUpdate = m_now}));
    }

    // Daemons that fail

    void aDaemonThatMisbehavesFailsAsItShould_data()
    {
        QTest::addColumn<QString>("misbehaviour");
        QTest::addColumn<QString>("reason"); // Null: it counts as none.
        for (const char *kind : {"refuse-token", "status-500", "status-500-hang", "status-204",
                 "redirect", "rubbish-body", "empty-body", "connect-error-body", "gzip", "huge",
                 "flood-chunks", "flood-tiny-chunks"})
            QTest::newRow(kind) << QString::fromLatin1(kind) << QString();
        for (const char *kind : {"close-early", "close-mid-body"})
            QTest::newRow(kind) << QString::fromLatin1(kind) << QString(lost);
        for (const char *kind : {"rubbish", "huge-header", "flood-header", "flood-continue"})
            QTest::newRow(kind) << QString::fromLatin1(kind) << QString(malformed);
        for (const char *kind : {"hang", "dribble", "dribble-header"})
            QTest::newRow(kind) << QString::fromLatin1(kind) << QString(timedOut);
    }
    void aDaemonThatMisbehavesFailsAsItShould()
    {
        QFETCH(QString, misbehaviour);
        QFETCH(QString, reason);
        SampleDaemonProcess daemon;
        QVERIFY2(
            m_daemons->start(daemon, misbehaving(misbehaviour)), qPrintable(daemon.errorText()));
        // Bytes come faster than the time allowed, so that only a bound on the whole ends it.
        if (reason == timedOut)
            m_limits.attempt = 300ms;
        qint64 asked = 0;
        do {
            const auto error = errorOf(fetch(m_now));
            QCOMPARE(error.kind,
                reason.isNull() ? DaemonError::Kind::noDaemonFound
                                : DaemonError::Kind::daemonUnreachable);
            QCOMPARE(error.message, reason);
            QCOMPARE(error.lastUpdate, m_now);
            asked = daemon.stats()->requests;
        } while (reason == timedOut && asked == 0 && allowTwiceTheTime());
        QCOMPARE(asked, 1);
    }

    void aDaemonThatMisbehavesIsPassedOver_data() { aDaemonThatMisbehavesFailsAsItShould_data(); }
    void aDaemonThatMisbehavesIsPassedOver()
    {
        QFETCH(QString, misbehaviour);
        QFETCH(QString, reason);
        SampleDaemonProcess bad;
        QVERIFY2(m_daemons->start(bad, misbehaving(misbehaviour)), qPrintable(bad.errorText()));
        SampleDaemonProcess good;
        QVERIFY2(m_daemons->start(good), qPrintable(good.errorText()));
        QVERIFY(m_daemons->askLast(good.filePath()));
        if (reason == timedOut)
            m_limits.attempt = 300ms;
        std::optional<FetchResult> result;
        do {
            result = fetch();
        } while (reason == timedOut && (!result->has_value() || bad.stats()->requests == 0)
            && allowTwiceTheTime());
        QVERIFY(result->has_value());
        QCOMPARE((*result)->daemon.httpPort, good.httpPort());
        if (reason != timedOut) {
            QCOMPARE(bad.stats()->requests, 1);
            QCOMPARE(good.stats()->requests, 1);
        }
    }

    void twoDaemonsThatBothFailCountAsNone()
    {
        SampleDaemonProcess first;
        QVERIFY2(
            m_daemons->start(first, misbehaving(u"status-500"_s)), qPrintable(first.errorText()));
        SampleDaemonProcess second;
        QVERIFY2(
            m_daemons->start(second, misbehaving(u"status-500"_s)), qPrintable(second.errorText()));
        const auto error = errorOf(fetch(m_now));
        QCOMPARE(
            error, (DaemonError{.kind = DaemonError::Kind::noDaemonFound, .lastUpdate = m_now}));
        QCOMPARE(first.stats()->requests, 1);
        QCOMPARE(second.stats()->requests, 1);
    }

    void aDaemonHas4SecondsAndABodyOf1MiB()
    {
        QCOMPARE(QuotaFetchClient::Limits{}.attempt, 4000ms);
        QCOMPARE(QuotaFetchClient::Limits{}.body, 1024LL * 1024);
    }

    void withoutOtherLimitsADaemonHas4Seconds()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(
            m_daemons->start(daemon, misbehaving(u"dribble"_s)), qPrintable(daemon.errorText()));
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(errorOf(fetch(client)).message, timedOut);
        QVERIFY2(timer.elapsed() >= 3999, qPrintable(QString::number(timer.elapsed())));
    }

    // Daemons that send without end

    void aFloodEndsWithTheFetchAndLeavesTheNextOneAlone_data()
    {
        QTest::addColumn<QString>("flood");
        for (const char *flood :
            {"flood-header", "flood-continue", "flood-chunks", "flood-tiny-chunks"})
            QTest::newRow(flood) << QString::fromLatin1(flood);
    }
    void aFloodEndsWithTheFetchAndLeavesTheNextOneAlone()
    {
        QFETCH(QString, flood);
        SampleDaemonProcess bad;
        QVERIFY2(m_daemons->start(bad, misbehaving(flood)), qPrintable(bad.errorText()));
        SampleDaemonProcess good;
        QVERIFY2(m_daemons->start(good), qPrintable(good.errorText()));
        QVERIFY(m_daemons->askLast(good.filePath()));
        // No time-out: it is the amount that ends it.
        m_limits.attempt = 10min;
        QuotaFetchClient client(m_daemons->discovery(), m_clock, m_limits);
        for (int round = 1; round <= 3; ++round) {
            const auto result = fetch(client);
            QVERIFY2(result.has_value(), qPrintable(errorOf(result).message));
            QCOMPARE(result->daemon.httpPort, good.httpPort());
            QTRY_COMPARE(bad.stats()->floods, 0);
            QCOMPARE(bad.stats()->requests, round);
            // The body, as much again around its chunks, and what the system holds on both sides
            // of a connection.
            const qint64 most = 2 * m_limits.body + 16LL * 1024 * 1024;
            QVERIFY2(bad.stats()->flooded <= round * most,
                qPrintable(QString::number(bad.stats()->flooded)));
        }
    }

    void aFloodWithinItsLimitsEndsWithTheDeadline_data()
    {
        QTest::addColumn<bool>("overTls");
        QTest::newRow("plain") << false;
        QTest::newRow("over TLS") << true;
    }
    void aFloodWithinItsLimitsEndsWithTheDeadline()
    {
        QFETCH(bool, overTls);
        auto options = misbehaving(u"flood-tiny-chunks"_s);
        if (overTls) {
            useCertificates();
            m_trusted = authority();
            options += secure(u"signed"_s);
        }
        SampleDaemonProcess bad;
        QVERIFY2(m_daemons->start(bad, options), qPrintable(bad.errorText()));
        m_limits.body = std::numeric_limits<qint64>::max() / 4;
        m_limits.attempt = 200ms;
        QCOMPARE(errorOf(fetch()).message, timedOut);

        SampleDaemonProcess good;
        QVERIFY2(m_daemons->start(good), qPrintable(good.errorText()));
        QVERIFY(m_daemons->askLast(good.filePath()));
        bool answered = false;
        do {
            QuotaFetchClient client(m_daemons->discovery(), m_clock, m_limits, m_trusted);
            answered = fetch(client).has_value() && fetch(client).has_value();
            // The client is still there; the connections are not.
            QTRY_COMPARE(bad.stats()->floods, 0);
        } while (!answered && allowTwiceTheTime());
        QVERIFY(answered);
    }

    void aFloodLeavesOthersTheirTurn()
    {
        test::LocalDaemons others;
        SampleDaemonProcess bad;
        QVERIFY2(m_daemons->start(bad, misbehaving(u"flood-tiny-chunks"_s)),
            qPrintable(bad.errorText()));
        SampleDaemonProcess good;
        QVERIFY2(others.start(good), qPrintable(good.errorText()));
        m_limits.body = std::numeric_limits<qint64>::max() / 4;
        m_limits.attempt = 10min;
        QuotaFetchClient other(others.discovery(), m_clock);
        QFuture<FetchResult> flooded;
        {
            QuotaFetchClient client(m_daemons->discovery(), m_clock, m_limits);
            flooded = client.fetchQuotaSummary({});
            QTRY_COMPARE(bad.stats()->floods, 1);
            QVERIFY(fetch(other).has_value());
            QVERIFY(!flooded.isFinished());
        }
        QVERIFY(flooded.isFinished());
        QTRY_COMPARE(bad.stats()->floods, 0);
    }

    void anAnswerThatEndsBeforeItsTimeIsLost_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("within the status") << QByteArray("HTTP/1.1 2");
        QTest::newRow("within the header") << QByteArray("HTTP/1.1 200 OK\r\nContent-");
        QTest::newRow("before the body")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 13\r\n\r\n");
        QTest::newRow("within the body")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n{\"groups\":[]}");
        QTest::newRow("between chunks") << QByteArray(
            "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nd\r\n{\"groups\":[]}\r\n");
    }
    void anAnswerThatEndsBeforeItsTimeIsLost()
    {
        QFETCH(QByteArray, bytes);
        ScriptedDaemon daemon([bytes](QTcpSocket &socket) {
            socket.write(bytes);
            socket.disconnectFromHost();
        });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QCOMPARE(errorOf(fetch()).message, lost);
        QCOMPARE(daemon.requests, 1);
    }

    void aRequestIsNotRepeatedWhenTheDaemonClosesEarly()
    {
        ScriptedDaemon daemon([](QTcpSocket &socket) { socket.abort(); });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        // The second daemon answers well after a repetition would have arrived.
        SampleDaemonProcess second;
        QVERIFY2(m_daemons->start(second), qPrintable(second.errorText()));
        QVERIFY(m_daemons->askLast(second.filePath()));
        QVERIFY(fetch().has_value());
        QCOMPARE(daemon.requests, 1);
        QCOMPARE(daemon.connections, 1);
    }

    void aConnectionLeftOpenIsNotUsedAgain()
    {
        ScriptedDaemon daemon(write(goodAnswer));
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        for (int i = 1; i <= 5; ++i) {
            QVERIFY(fetch(client).has_value());
            QCOMPARE(daemon.connections, i);
            QCOMPARE(daemon.requests, i);
        }
    }

    void aRefusalIsTheSameWithOneDaemonOrTwo()
    {
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, test::closedPort()}, {u"csrfToken"_s, u"t"_s}}));
        QVERIFY(m_daemons->announce(
            u"ls_b.json"_s, {{u"httpPort"_s, test::closedPort()}, {u"csrfToken"_s, u"t"_s}}));
        const auto error = errorOf(fetch());
        QCOMPARE(error.kind, DaemonError::Kind::daemonUnreachable);
        QCOMPARE(error.message, u"Could not connect to the server."_s);
    }

    void afterOneThatRefusesTheNextIsAsked()
    {
        SampleDaemonProcess good;
        QVERIFY2(m_daemons->start(good), qPrintable(good.errorText()));
        QVERIFY(m_daemons->askLast(good.filePath()));
        QVERIFY(m_daemons->announce(
            u"ls_b.json"_s, {{u"httpPort"_s, test::closedPort()}, {u"csrfToken"_s, u"t"_s}}));
        const auto result = fetch();
        QVERIFY(result.has_value());
        QCOMPARE(result->daemon.filePath, good.filePath());
    }

    void theLatestTransportErrorCountsEvenBeforeADaemonThatAnswersSomethingElse()
    {
        SampleDaemonProcess closing;
        QVERIFY2(m_daemons->start(closing, {u"--misbehave"_s, u"close-early"_s}),
            qPrintable(closing.errorText()));
        const QString refusing = m_daemons->pathOf(u"ls_b.json"_s);
        QVERIFY(m_daemons->announce(
            u"ls_b.json"_s, {{u"httpPort"_s, test::closedPort()}, {u"csrfToken"_s, u"t"_s}}));
        QVERIFY(m_daemons->askLast(refusing));
        SampleDaemonProcess failing;
        QVERIFY2(m_daemons->start(failing, {u"--misbehave"_s, u"status-500"_s}),
            qPrintable(failing.errorText()));
        QVERIFY(m_daemons->askLast(failing.filePath()));
        const auto daemons = m_daemons->discovery().discoverDaemons();
        QCOMPARE(daemons.value(1).filePath, refusing);
        QCOMPARE(daemons.value(2).filePath, failing.filePath());
        const auto error = errorOf(fetch());
        QCOMPARE(error.kind, DaemonError::Kind::daemonUnreachable);
        QCOMPARE(error.message, u"Could not connect to the server."_s);
        QCOMPARE(failing.stats()->requests, 1);
    }

    void aDaemonThatDiesAfterItWasDiscoveredIsUnreachable()
    {
        SampleDaemonProcess dying;
        QVERIFY2(m_daemons->start(dying), qPrintable(dying.errorText()));
        QVERIFY(m_daemons->askLast(dying.filePath()));
        // Asked first; the other has been discovered, and is gone by the time of its turn.
        ScriptedDaemon first([&dying](QTcpSocket &socket) {
            dying.kill();
            socket.write("HTTP/1.1 500 Internal Server Error\r\nContent-Length: 0\r\n\r\n");
        });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, first.port()}, {u"csrfToken"_s, u"t"_s}}));
        const auto error = errorOf(fetch());
        QCOMPARE(first.requests, 1);
        QCOMPARE(error.kind, DaemonError::Kind::daemonUnreachable);
        QCOMPARE(error.message, u"Could not connect to the server."_s);
    }

    void aDaemonThatMovesIsFoundAgain()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon), qPrintable(daemon.errorText()));
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        QVERIFY(fetch(client).has_value());
        const auto before = daemon.httpPort();
        QVERIFY(daemon.move());
        const auto result = fetch(client);
        QVERIFY(result.has_value());
        QVERIFY(result->daemon.httpPort != before);
        QCOMPARE(result->daemon.httpPort, daemon.httpPort());
    }

    void onlyTheStatus200Counts_data()
    {
        QTest::addColumn<QByteArray>("status");
        for (const char *status : {"101 X", "201 Created", "206 Partial Content", "300 X", "304 X",
                 "307 X", "400 X", "403 X", "404 X", "407 X", "503 X", "999 X"})
            QTest::newRow(status) << QByteArray(status);
        QTest::newRow("401 with a challenge")
            << QByteArray("401 X\r\nWWW-Authenticate: Basic realm=\"x\"");
    }
    void onlyTheStatus200Counts()
    {
        QFETCH(QByteArray, status);
        ScriptedDaemon daemon(
            write("HTTP/1.1 " + status + "\r\nContent-Length: 13\r\n\r\n{\"groups\":[]}"));
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QCOMPARE(errorOf(fetch()).kind, DaemonError::Kind::noDaemonFound);
        QCOMPARE(daemon.requests, 1);
    }

    void anInterimAnswerIsNotTheAnswer()
    {
        ScriptedDaemon daemon(
            write("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 103 X\r\nA: b\r\n\r\n" + goodAnswer));
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QVERIFY(fetch().has_value());
    }

    void anAnswerInChunksIsPutTogether()
    {
        ScriptedDaemon daemon(write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                    "5\r\n{\"gro\r\n8;a=b\r\nups\":[]}\r\n0\r\n\r\n"));
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QVERIFY(fetch().has_value());
    }

    void aBodyOfExactlyTheLimitIsReadAndOneMoreByteRefusesIt()
    {
        m_limits.body = 1000;
        for (const int size : {1000, 1001}) {
            const QByteArray body = QByteArray("{\"groups\":[]}").leftJustified(size, ' ');
            ScriptedDaemon daemon([body](QTcpSocket &socket) {
                socket.write("HTTP/1.1 200 OK\r\n\r\n" + body);
                socket.disconnectFromHost();
            });
            QVERIFY(m_daemons->announce(
                u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
            QCOMPARE(fetch().has_value(), size == 1000);
        }
    }

    void theSameBytesAreDecodedOnce()
    {
        QByteArray name = "One";
        ScriptedDaemon daemon([&name](QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\n\r\n" + withGroups(1, name));
            socket.disconnectFromHost();
        });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        const auto first = fetch(client);
        const auto same = fetch(client);
        QVERIFY(first && same);
        QVERIFY(same->summary.groups.isSharedWith(first->summary.groups));
        name = "Two";
        const auto other = fetch(client);
        QVERIFY(other.has_value());
        QCOMPARE(other->summary.groups.constFirst().displayName, u"Two"_s);
    }

    void aLargeAnswerIsDecodedAsASmallOne()
    {
        constexpr int groups = 10'000;
        for (const bool isWhole : {true, false}) {
            ScriptedDaemon daemon([isWhole](QTcpSocket &socket) {
                socket.write("HTTP/1.1 200 OK\r\n\r\n" + withGroups(groups, "A name")
                    + (isWhole ? "" : "}"));
                socket.disconnectFromHost();
            });
            QVERIFY(m_daemons->announce(
                u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
            const auto result = fetch();
            QCOMPARE(result.has_value(), isWhole);
            if (isWhole)
                QCOMPARE(result->summary.groups.size(), groups);
            else
                QCOMPARE(errorOf(result).kind, DaemonError::Kind::noDaemonFound);
        }
    }

    // Overlaps and ends

    void fetchesThatOverlapKnowNothingOfEachOther()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon), qPrintable(daemon.errorText()));
        QuotaFetchClient client(m_daemons->discovery(), m_clock);
        const auto first = client.fetchQuotaSummary({});
        const auto second = client.fetchQuotaSummary({});
        QTRY_VERIFY(first.isFinished() && second.isFinished());
        QVERIFY(first.result().has_value());
        QVERIFY(second.result().has_value());
        QCOMPARE(daemon.stats()->requests, 2);
    }

    void aLargeAnswerOfAClientThatIsGoneIsHarmless()
    {
        bool isSent = false;
        ScriptedDaemon daemon([&isSent](QTcpSocket &socket) {
            connect(&socket, &QTcpSocket::disconnected, &socket, [&isSent] { isSent = true; });
            socket.write("HTTP/1.1 200 OK\r\n\r\n" + withGroups(10'000, "A name"));
            socket.disconnectFromHost();
        });
        QVERIFY(m_daemons->announce(
            u"ls_a.json"_s, {{u"httpPort"_s, daemon.port()}, {u"csrfToken"_s, u"t"_s}}));
        QFuture<FetchResult> future;
        {
            QuotaFetchClient client(m_daemons->discovery(), m_clock);
            future = client.fetchQuotaSummary({});
            QTRY_VERIFY(isSent || future.isFinished());
        }
        QVERIFY(future.isFinished());
    }

    void aFetchThatItsClientLeavesBehindEndsAsNoDaemonFound()
    {
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon, {u"--misbehave"_s, u"hang"_s}),
            qPrintable(daemon.errorText()));
        QFuture<FetchResult> future;
        {
            QuotaFetchClient client(m_daemons->discovery(), m_clock);
            future = client.fetchQuotaSummary(m_now);
            QTRY_COMPARE(daemon.stats()->requests, 1);
        }
        QVERIFY(future.isFinished());
        QCOMPARE(errorOf(future.result()),
            (DaemonError{.kind = DaemonError::Kind::noDaemonFound, .lastUpdate = m_now}));
    }

    // Over https

    void aDaemonWithATrustedCertificateIsAskedSecurely()
    {
        useCertificates();
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon, secure(u"signed"_s)), qPrintable(daemon.errorText()));
        m_trusted = authority();
        const auto result = fetch();
        QVERIFY2(result.has_value(), qPrintable(errorOf(result).message));
        QCOMPARE(result->daemon.httpsPort, daemon.httpsPort());
        QVERIFY(!result->daemon.httpPort);
        QCOMPARE(daemon.stats()->requests, 1);
    }

    void aDaemonWhoseCertificateIsWantingIsUnreachable_data()
    {
        QTest::addColumn<QString>("certificate");
        QTest::addColumn<bool>("authorityTrusted");
        QTest::addColumn<QString>("reason");
        QTest::newRow("unknown authority")
            << u"signed"_s << false << u"its certificate is not trusted."_s;
        QTest::newRow("self-signed")
            << u"self-signed"_s << true << u"its certificate is not trusted."_s;
        QTest::newRow("other name")
            << u"other-name"_s << true << u"its certificate is for another server."_s;
        QTest::newRow("expired") << u"expired"_s << true << u"its certificate has expired."_s;
    }
    void aDaemonWhoseCertificateIsWantingIsUnreachable()
    {
        QFETCH(QString, certificate);
        QFETCH(bool, authorityTrusted);
        QFETCH(QString, reason);
        useCertificates();
        SampleDaemonProcess daemon;
        QVERIFY2(m_daemons->start(daemon, secure(certificate)), qPrintable(daemon.errorText()));
        if (authorityTrusted)
            m_trusted = authority();
        const auto error = errorOf(fetch());
        QCOMPARE(error.kind, DaemonError::Kind::daemonUnreachable);
        QCOMPARE(error.message,
            QString(u"A secure connection to the server could not be made: " + reason));
        // The token stays here.
        QCOMPARE(daemon.stats()->requests, 0);
    }

private:
    static QStringList misbehaving(const QString &misbehaviour)
    {
        QStringList options{u"--misbehave"_s, misbehaviour, u"--dribble-interval"_s, u"20"_s};
        if (misbehaviour == "redirect"_L1)
            options += {u"--redirect-to"_s, u"http://127.0.0.1:9/"_s};
        return options;
    }

    /// For a machine so slow that the time was over before the daemon had read the request. False
    /// when it has had enough.
    bool allowTwiceTheTime()
    {
        m_limits.attempt *= 2;
        return m_limits.attempt < 20s;
    }

    void useCertificates()
    {
        if (m_certificates)
            return;
        m_certificates.emplace();
        QProcess script;
        script.start(QStringLiteral(BRIMWATCH_MAKE_CERTIFICATES), {m_certificates->path()});
        QVERIFY(script.waitForFinished());
        QCOMPARE(script.exitCode(), 0);
    }

    QStringList secure(const QString &certificate) const
    {
        return {u"--https-only"_s, u"--certificate"_s,
            m_certificates->filePath(certificate + u".pem"), u"--key"_s,
            m_certificates->filePath(certificate + u".key")};
    }

    QByteArray authority() const
    {
        QFile file(m_certificates->filePath(u"ca.pem"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Fetches with a client of its own that has the test's limits and authorities.
    FetchResult fetch(const std::optional<QDateTime> &lastUpdated = {})
    {
        QuotaFetchClient client(m_daemons->discovery(), m_clock, m_limits, m_trusted);
        return fetch(client, lastUpdated);
    }

    static FetchResult fetch(
        QuotaFetchClient &client, const std::optional<QDateTime> &lastUpdated = {})
    {
        const auto future = client.fetchQuotaSummary(lastUpdated);
        if (!QTest::qWaitFor([&future] { return future.isFinished(); }, 30000))
            qFatal("the fetch does not end");
        return future.result();
    }

    const QDateTime m_now{QDate(2026, 11, 16), QTime(4, 59, 24), Qt::UTC};
    test::TestClock m_clock{m_now};
    std::optional<test::LocalDaemons> m_daemons;
    QuotaFetchClient::Limits m_limits;
    QByteArray m_trusted;
    std::optional<QTemporaryDir> m_certificates;
};

QTEST_GUILESS_MAIN(QuotaFetchClientTest)
#include "quota_fetch_client_test.moc"
