#include "support/sample_daemon_process.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHostAddress>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using brimwatch::test::SampleDaemonProcess;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int timeout = 30'000; // Milliseconds.
constexpr auto quotaPath = "/exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary";

struct Answer {
    int status = 0; ///< 0: no HTTP came.
    QByteArray head;
    QByteArray body;

    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }

    QByteArray header(const QByteArray &name) const
    {
        for (const auto &line : head.split('\n')) {
            const auto colon = line.indexOf(':');
            if (line.left(colon).compare(name, Qt::CaseInsensitive) == 0)
                return line.mid(colon + 1).trimmed();
        }
        return {};
    }
};

/// The request as the quota is asked for, whose parts a test can change.
struct Question {
    QByteArray method = "POST";
    QByteArray path = quotaPath;
    QByteArray contentType = "application/json";
    QByteArray protocolVersion = "1";
    QByteArray token = "";
    QByteArray body = "{}";
    QByteArray moreHeaders = "";

    QByteArray bytes() const
    {
        return method + ' ' + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Type: " + contentType
            + "\r\nConnect-Protocol-Version: " + protocolVersion
            + "\r\nx-codeium-csrf-token: " + token + "\r\n" + moreHeaders
            + "Content-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body;
    }
};

Answer parsed(const QByteArray &received)
{
    const auto headEnd = received.indexOf("\r\n\r\n");
    if (!received.startsWith("HTTP/1.1 ") || headEnd < 0)
        return {.status = 0, .head = {}, .body = received};
    return {.status = received.mid(9, 3).toInt(),
        .head = received.first(headEnd),
        .body = received.mid(headEnd + 4)};
}

/// Reads until the announced length has come, or, without one, until the other side closes.
Answer receive(QTcpSocket &socket)
{
    const QDeadlineTimer deadline(timeout);
    QByteArray received;
    qsizetype whole = -1;
    do {
        received += socket.readAll();
        if (whole < 0 && received.contains("\r\n\r\n")) {
            const auto answer = parsed(received);
            const auto length = answer.header("Content-Length");
            if (!length.isEmpty())
                whole = answer.head.size() + 4 + length.toLongLong();
            else if (answer.status == 204)
                whole = received.size();
        }
    } while ((whole < 0 || received.size() < whole)
        && socket.waitForReadyRead(int(deadline.remainingTime())));
    return parsed(received + socket.readAll());
}

std::unique_ptr<QTcpSocket> sendTo(quint16 port, const QByteArray &bytes)
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    socket->waitForConnected(timeout);
    socket->write(bytes);
    socket->waitForBytesWritten(timeout);
    return socket;
}

Answer ask(quint16 port, const Question &question)
{
    const auto socket = sendTo(port, question.bytes());
    return receive(*socket);
}

/// Sends it the request for the quota.
std::unique_ptr<QTcpSocket> sendTo(const SampleDaemonProcess &daemon)
{
    return sendTo(daemon.httpPort(), Question{.token = daemon.token()}.bytes());
}

Answer ask(const SampleDaemonProcess &daemon)
{
    return receive(*sendTo(daemon));
}

bool isQuota(const Answer &answer)
{
    return answer.status == 200 && answer.json()["response"_L1]["groups"_L1].toArray().size() == 3;
}

QJsonObject announced(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

class StartedDaemon : public SampleDaemonProcess {
public:
    explicit StartedDaemon(const QStringList &options = {})
    {
        if (!start(options))
            qFatal("%s", qPrintable(errorText()));
    }
};

QString rowName()
{
    return QString::fromLatin1(QTest::currentDataTag());
}

struct Ended {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

/// The daemon, run to its end.
Ended runToEnd(const QStringList &arguments)
{
    QProcess process;
    process.start(SampleDaemonProcess::program(), arguments);
    if (!process.waitForFinished(timeout) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {.status = process.exitCode(),
        .output = process.readAllStandardOutput(),
        .errors = process.readAllStandardError()};
}

} // namespace

class SampleDaemonTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void announcesItselfInTheHomeFolder();
    void announcesWhatItIsToldTo();
    void givesEveryRunAnotherToken();
    void answersTheQuotaRequest_data();
    void answersTheQuotaRequest();
    void refusesWhatIsNotTheQuotaRequest_data();
    void refusesWhatIsNotTheQuotaRequest();
    void letsQuotaFallAndReset();
    void tellsTheChosenScenario_data();
    void tellsTheChosenScenario();
    void servesTheBytesOfAFile();
    void listensOnTheLoopbackAddressAlone();

    void tellsWhatCameOverTheWire();
    void countsConnectionsThatSaidNothing();
    void logsRequestsWhenAsked();

    void answersWithTheWrongThing_data();
    void answersWithTheWrongThing();
    void redirectsWhereItIsTold();
    void hangsAfterReadingTheRequest();
    void dribblesABodyWithoutEnd_data();
    void dribblesABodyWithoutEnd();
    void dribblesAHeaderWithoutEnd();
    void closesEarly();
    void closesInTheMiddleOfTheBody();
    void answersWithWhatIsNotHttp();
    void answersWithAHugeBodyOrHeader();
    void floodsWithoutEnd_data();
    void floodsWithoutEnd();
    void answersInGzipUnasked();
    void movesWhenItIsSignalled();
    void keepsItsTokenAndSchemeWhenItMoves();
    void answersWhatComesInPieces();

    void servesHttpsWithACertificate_data();
    void servesHttpsWithACertificate();

    void removesItsFileWhenItEnds_data();
    void removesItsFileWhenItEnds();
    void leavesItsFileWhenItIsKilled();
    void endsWithItsStandardInput();
    void refusesAWrongCommandLine_data();
    void refusesAWrongCommandLine();
    void saysWhatItCannotDo_data();
    void saysWhatItCannotDo();
    void explainsEveryOption();

private:
    QString certificate(const char *name) const
    {
        return m_folder.filePath(QString::fromLatin1(name) + ".pem"_L1);
    }
    QStringList httpsOptions(const char *certificateName) const
    {
        return {u"--https-only"_s, u"--certificate"_s, certificate(certificateName), u"--key"_s,
            m_folder.filePath(QString::fromLatin1(certificateName) + ".key"_L1)};
    }

    QTemporaryDir m_folder;
};

void SampleDaemonTest::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QProcess process;
    process.start(QStringLiteral(BRIMWATCH_MAKE_CERTIFICATES), {m_folder.path()});
    QVERIFY(process.waitForFinished(timeout));
    QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
    QVERIFY(QDir(m_folder.path()).entryList({u"openssl.*"_s}).isEmpty());
}

void SampleDaemonTest::announcesItselfInTheHomeFolder()
{
    StartedDaemon daemon;

    const auto path
        = u"%1/.gemini/antigravity/daemon/ls_%2.json"_s.arg(QDir::homePath()).arg(daemon.pid());
    QCOMPARE(daemon.filePath(), path);
    // Qt adds the rights of the user who asks.
    const QFile::Permissions usersOwn = QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
    QCOMPARE(QFileInfo(path).permissions() & ~usersOwn, QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files),
        (QStringList{QFileInfo(path).fileName()}));

    const auto content = announced(path);
    QCOMPARE(content["pid"_L1].toInteger(), daemon.pid());
    QCOMPARE(content["httpPort"_L1].toInteger(), qint64(daemon.httpPort()));
    QVERIFY(!content.contains("httpsPort"_L1));
    QVERIFY(!content["lsVersion"_L1].toString().isEmpty());
    QCOMPARE(content["csrfToken"_L1].toString().size(), 64);
}

void SampleDaemonTest::announcesWhatItIsToldTo()
{
    const auto directory = m_folder.filePath(u"some where/else"_s);
    StartedDaemon daemon(
        {u"--directory"_s, directory, u"--file-name"_s, u"hub_x.json"_s, u"--token"_s, u"t"_s});
    QCOMPARE(daemon.filePath(), directory + "/hub_x.json"_L1);
    QCOMPARE(daemon.token(), "t");
    QVERIFY(isQuota(ask(daemon.httpPort(), {.token = "t"})));
}

void SampleDaemonTest::givesEveryRunAnotherToken()
{
    StartedDaemon one;
    StartedDaemon other;
    QVERIFY(one.token() != other.token());
    QCOMPARE(ask(one.httpPort(), {.token = other.token()}).status, 401);
}

void SampleDaemonTest::answersTheQuotaRequest_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("enveloped");
    QTest::newRow("without an option") << QStringList{} << true;
    QTest::newRow("envelope") << QStringList{u"--shape"_s, u"envelope"_s} << true;
    QTest::newRow("bare") << QStringList{u"--shape"_s, u"bare"_s} << false;
}

void SampleDaemonTest::answersTheQuotaRequest()
{
    QFETCH(const QStringList, options);
    QFETCH(const bool, enveloped);
    StartedDaemon daemon(options + QStringList{u"--speed"_s, u"0"_s});
    const auto answer = ask(daemon);
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.header("Content-Type"), "application/json");

    const auto body = answer.json();
    QCOMPARE(body.contains("response"_L1), enveloped);
    const auto summary = enveloped ? body["response"_L1].toObject() : body;
    const auto bucket = summary["groups"_L1][0]["buckets"_L1][0];
    QCOMPARE(summary["groups"_L1][0]["displayName"_L1].toString(), u"Gemini Models"_s);
    QCOMPARE(bucket["remainingFraction"_L1].toDouble(), 0.80);
    QCOMPARE(bucket["window"_L1].toString(), u"5h"_s);
    QVERIFY(QDateTime::fromString(bucket["resetTime"_L1].toString(), Qt::ISODateWithMs)
        > QDateTime::currentDateTimeUtc());
}

void SampleDaemonTest::refusesWhatIsNotTheQuotaRequest_data()
{
    QTest::addColumn<Question>("question");
    QTest::addColumn<int>("status");
    QTest::newRow("another method") << Question{.method = "PUT", .token = "right"} << 405;
    QTest::newRow("another path") << Question{.path = "/", .token = "right"} << 404;
    QTest::newRow("another type") << Question{.contentType = "application/proto", .token = "right"}
                                  << 415;
    QTest::newRow("a type with a parameter")
        << Question{.contentType = "application/json; charset=utf-8", .token = "right"} << 415;
    QTest::newRow("another protocol") << Question{.protocolVersion = "2", .token = "right"} << 400;
    QTest::newRow("another token") << Question{.token = "wrong"} << 401;
    QTest::newRow("a token in other letters") << Question{.token = "Right"} << 401;
    QTest::newRow("no token") << Question{.token = ""} << 401;
    QTest::newRow("a token that comes twice")
        << Question{.token = "right", .moreHeaders = "X-Codeium-Csrf-Token: right\r\n"} << 401;
    QTest::newRow("another body") << Question{.token = "right", .body = "{ }"} << 400;
    QTest::newRow("no body") << Question{.token = "right", .body = ""} << 400;
}

void SampleDaemonTest::refusesWhatIsNotTheQuotaRequest()
{
    QFETCH(const Question, question);
    StartedDaemon daemon({u"--token"_s, u"right"_s});
    const auto answer = ask(daemon.httpPort(), question);
    QTEST(answer.status, "status");
    QVERIFY(answer.json()["code"_L1].isString());
    QVERIFY(answer.json()["message"_L1].isString());
}

void SampleDaemonTest::letsQuotaFallAndReset()
{
    StartedDaemon daemon({u"--speed"_s, u"20000"_s});
    const auto fraction = [&daemon] {
        return ask(daemon)
            .json()["response"_L1]["groups"_L1][0]["buckets"_L1][0]["remainingFraction"_L1]
            .toDouble(-1);
    };
    double last = fraction();
    // Down, up, and down again: one step at a time, and none is taken back.
    int steps = 0;
    const auto hasGoneThreeSteps = [&] {
        const double now = fraction();
        if (steps == 1 ? now > last : now < last)
            ++steps;
        last = now;
        return steps >= 3;
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasGoneThreeSteps(), timeout);
}

void SampleDaemonTest::tellsTheChosenScenario_data()
{
    QTest::addColumn<int>("groups");
    QTest::addColumn<double>("firstFraction");
    QTest::addColumn<QString>("partOfAName");
    QTest::newRow("normal") << 3 << 0.80 << u"Claude & GPT"_s;
    QTest::newRow("empty") << 0 << -1.0 << QString();
    QTest::newRow("many") << 50 << 0.80 << u"Model family 50"_s;
    QTest::newRow("long-names") << 3 << 0.80 << u"Argon Models"_s + QString(288, u'm');
    QTest::newRow("odd-names") << 3 << 0.80 << u"<b>Argon</b> & "_s;
    QTest::newRow("low") << 3 << 0.08 << u"Gemini"_s;
}

void SampleDaemonTest::tellsTheChosenScenario()
{
    QFETCH(const int, groups);
    QFETCH(const double, firstFraction);
    QFETCH(const QString, partOfAName);
    StartedDaemon daemon({u"--speed"_s, u"0"_s, u"--scenario"_s, rowName()});
    const auto received = ask(daemon).json()["response"_L1]["groups"_L1].toArray();
    QCOMPARE(received.size(), groups);
    QCOMPARE(received[0]["buckets"_L1][0]["remainingFraction"_L1].toDouble(-1), firstFraction);
    QString names;
    for (const auto group : received)
        names += group["displayName"_L1].toString();
    QVERIFY(names.contains(partOfAName));
}

void SampleDaemonTest::servesTheBytesOfAFile()
{
    const auto path = m_folder.filePath(u"summary"_s);
    QVERIFY(writeFile(path, "{\"groups\":[]}\n\xff"));
    StartedDaemon daemon({u"--summary"_s, path});
    QCOMPARE(ask(daemon).body, "{\"groups\":[]}\n\xff");

    QVERIFY(writeFile(path, "anew"));
    QCOMPARE(ask(daemon).body, "anew");

    QVERIFY(QFile::remove(path));
    QCOMPARE(ask(daemon).status, 500);
}

void SampleDaemonTest::listensOnTheLoopbackAddressAlone()
{
    StartedDaemon daemon;
    // This machine too, yet not the one address that the daemon listens on.
    QTcpSocket socket;
    socket.connectToHost(QHostAddress(u"127.0.0.2"_s), daemon.httpPort());
    QVERIFY(!socket.waitForConnected(timeout));
    QCOMPARE(socket.error(), QAbstractSocket::ConnectionRefusedError);
}

void SampleDaemonTest::tellsWhatCameOverTheWire()
{
    StartedDaemon daemon({u"--token"_s, u"right"_s});
    const auto before = daemon.stats();
    QVERIFY(before);
    QCOMPARE(before->requests, 0);
    QCOMPARE(before->connections, 0);
    QVERIFY(!before->last);

    const QByteArray path = QByteArray(quotaPath) + "?a=%20b";
    ask(daemon.httpPort(),
        {.path = path,
            .token = "right",
            .body = "{ }",
            .moreHeaders = "X-TwIce: 1\r\nx-twice: 2\r\n"});
    ask(daemon.httpPort(),
        {.method = "PATCH",
            .path = path,
            .token = "right",
            .body = "é",
            .moreHeaders = "X-TwIce: 1\r\nx-twice: 2\r\n"});
    const auto after = daemon.stats();
    QVERIFY(after);
    QCOMPARE(after->requests, 2);
    QCOMPARE(after->connections, 2);
    QVERIFY(after->last);
    QCOMPARE(after->last->method, u"PATCH"_s);
    QCOMPARE(after->last->path, QString::fromLatin1(path));
    QCOMPARE(after->last->body, "é");
    QCOMPARE(after->last->header("X-Codeium-CSRF-Token"), QByteArray("right"));
    QVERIFY(!after->last->header("Cookie"));

    const QList<QPair<QByteArray, QByteArray>> headers{
        {"Host", "127.0.0.1"},
        {"Content-Type", "application/json"},
        {"Connect-Protocol-Version", "1"},
        {"x-codeium-csrf-token", "right"},
        {"X-TwIce", "1"},
        {"x-twice", "2"},
        {"Content-Length", "2"},
    };
    QCOMPARE(after->last->headers, headers);
}

void SampleDaemonTest::countsConnectionsThatSaidNothing()
{
    StartedDaemon daemon;
    const auto silent = sendTo(daemon.httpPort(), {});
    QTRY_COMPARE_WITH_TIMEOUT(daemon.stats().value().connections, 1, timeout);
    QCOMPARE(daemon.stats().value().requests, 0);
}

void SampleDaemonTest::logsRequestsWhenAsked()
{
    StartedDaemon daemon({u"--log"_s});
    ask(daemon);
    ask(daemon.httpPort(), {.method = "DELETE", .path = "/x"});
    QTRY_COMPARE_WITH_TIMEOUT(daemon.logLines().size(), 2, timeout);
    static const QRegularExpression line(u"^request (\\d) (\\S+) (\\S+) at (\\d+\\.\\d{3})$"_s);
    const auto first = line.match(daemon.logLines().first());
    const auto second = line.match(daemon.logLines().last());
    QCOMPARE(first.capturedTexts().mid(1, 3),
        (QStringList{u"1"_s, u"POST"_s, QString::fromLatin1(quotaPath)}));
    QCOMPARE(second.capturedTexts().mid(1, 3), (QStringList{u"2"_s, u"DELETE"_s, u"/x"_s}));
    QCOMPARE_LT(first.captured(4).toDouble(), second.captured(4).toDouble());
}

void SampleDaemonTest::answersWithTheWrongThing_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("partOfTheBody");
    QTest::newRow("refuse-token") << 401 << QByteArray("unauthenticated");
    QTest::newRow("status-500") << 500 << QByteArray("internal");
    QTest::newRow("status-204") << 204 << QByteArray();
    QTest::newRow("rubbish-body") << 200 << QByteArray("<!doctype html>");
    QTest::newRow("empty-body") << 200 << QByteArray();
    QTest::newRow("connect-error-body") << 200 << QByteArray(R"({"code":"unavailable")");
}

void SampleDaemonTest::answersWithTheWrongThing()
{
    QFETCH(const QByteArray, partOfTheBody);
    StartedDaemon daemon({u"--misbehave"_s, rowName()});
    for (int time = 0; time < 2; ++time) {
        const auto answer = ask(daemon);
        QTEST(answer.status, "status");
        QVERIFY2(answer.body.startsWith(partOfTheBody) || answer.body.contains(partOfTheBody),
            answer.body.constData());
        QCOMPARE(answer.body.isEmpty(), partOfTheBody.isEmpty());
    }
}

void SampleDaemonTest::redirectsWhereItIsTold()
{
    StartedDaemon daemon(
        {u"--misbehave"_s, u"redirect"_s, u"--redirect-to"_s, u"http://127.0.0.1:9/over/there"_s});
    const auto answer = ask(daemon);
    QCOMPARE(answer.status, 302);
    QCOMPARE(answer.header("Location"), "http://127.0.0.1:9/over/there");
}

void SampleDaemonTest::hangsAfterReadingTheRequest()
{
    StartedDaemon daemon({u"--misbehave"_s, u"hang"_s});
    const auto waiting = sendTo(daemon);
    QTRY_COMPARE_WITH_TIMEOUT(daemon.stats().value().requests, 1, timeout);
    // Later callers are heard while the first waits, and it is not turned away either.
    QVERIFY(!waiting->waitForReadyRead(0));
    QCOMPARE(waiting->state(), QAbstractSocket::ConnectedState);
}

void SampleDaemonTest::dribblesABodyWithoutEnd_data()
{
    QTest::addColumn<QByteArray>("statusLine");
    QTest::newRow("dribble") << QByteArray("HTTP/1.1 200 OK\r\n");
    QTest::newRow("status-500-hang") << QByteArray("HTTP/1.1 500 Internal Server Error\r\n");
}

void SampleDaemonTest::dribblesABodyWithoutEnd()
{
    QFETCH(const QByteArray, statusLine);
    const auto path = m_folder.filePath(u"short"_s);
    QVERIFY(writeFile(path, "{\"groups\":[]}"));
    StartedDaemon daemon(
        {u"--summary"_s, path, u"--misbehave"_s, rowName(), u"--dribble-interval"_s, u"20"_s});

    const auto socket = sendTo(daemon);
    QByteArray received;
    int pieces = 0;
    // The whole body has come, and blanks beyond it, and no length was announced that could end it.
    while (!received.endsWith("{\"groups\":[]}  ")) {
        QVERIFY(socket->waitForReadyRead(timeout));
        received += socket->readAll();
        ++pieces;
    }
    QVERIFY(received.startsWith(statusLine));
    QVERIFY(!received.contains("Content-Length"));
    QVERIFY(pieces > 1);
    QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);

    // A caller who goes is no reason to go too.
    socket->abort();
    QTRY_VERIFY_WITH_TIMEOUT(daemon.stats().has_value(), timeout);
    QVERIFY(daemon.terminate());
}

void SampleDaemonTest::dribblesAHeaderWithoutEnd()
{
    StartedDaemon daemon({u"--misbehave"_s, u"dribble-header"_s, u"--dribble-interval"_s, u"5"_s});
    const auto socket = sendTo(daemon);
    QByteArray received;
    while (!received.endsWith("X-Slow: xxxxxxxx")) {
        QVERIFY(socket->waitForReadyRead(timeout));
        received += socket->readAll();
    }
    QCOMPARE(received.count("\r\n"), 1);
    QCOMPARE(socket->state(), QAbstractSocket::ConnectedState);
}

void SampleDaemonTest::closesEarly()
{
    StartedDaemon daemon({u"--misbehave"_s, u"close-early"_s});
    const auto socket = sendTo(daemon);
    QVERIFY(socket->state() == QAbstractSocket::UnconnectedState
        || socket->waitForDisconnected(timeout));
    QCOMPARE(socket->readAll(), "");
    QCOMPARE(daemon.stats().value().requests, 1);
}

void SampleDaemonTest::closesInTheMiddleOfTheBody()
{
    StartedDaemon daemon({u"--misbehave"_s, u"close-mid-body"_s});
    const auto socket = sendTo(daemon);
    const auto answer = receive(*socket);
    QCOMPARE(answer.status, 200);
    QVERIFY(answer.body.startsWith("{\"response\":"));
    QCOMPARE(answer.body.size(), answer.header("Content-Length").toLongLong() / 2);
    QCOMPARE(socket->state(), QAbstractSocket::UnconnectedState);
}

void SampleDaemonTest::answersWithWhatIsNotHttp()
{
    StartedDaemon daemon({u"--misbehave"_s, u"rubbish"_s});
    const auto answer = ask(daemon);
    QCOMPARE(answer.status, 0);
    QVERIFY(!answer.body.isEmpty());
    QVERIFY(!answer.body.contains("HTTP"));
    QVERIFY(daemon.terminate());
}

void SampleDaemonTest::answersWithAHugeBodyOrHeader()
{
    StartedDaemon body({u"--misbehave"_s, u"huge"_s});
    const auto withBody = ask(body);
    QCOMPARE(withBody.body.size(), 64 * 1024 * 1024);
    QVERIFY(isQuota(withBody));

    StartedDaemon header({u"--misbehave"_s, u"huge-header"_s});
    const auto withHeader = ask(header);
    QCOMPARE(withHeader.header("X-Filler").size(), 8 * 1024 * 1024);
    QVERIFY(isQuota(withHeader));
}

void SampleDaemonTest::floodsWithoutEnd_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("piece");
    const QByteArray chunked = "Transfer-Encoding: chunked\r\n\r\n";
    QTest::newRow("flood-header") << QByteArray() << QByteArray("X-Filler: 0123456789abcdef\r\n");
    QTest::newRow("flood-continue") << QByteArray() << QByteArray("HTTP/1.1 100 Continue\r\n\r\n");
    QTest::newRow("flood-chunks") << chunked << "10000\r\n" + QByteArray(0x10000, ' ') + "\r\n";
    QTest::newRow("flood-tiny-chunks") << chunked << QByteArray("1\r\n \r\n");
}

void SampleDaemonTest::floodsWithoutEnd()
{
    QFETCH(const QByteArray, head);
    QFETCH(const QByteArray, piece);
    StartedDaemon daemon({u"--misbehave"_s, rowName()});
    const auto socket = sendTo(daemon);
    QByteArray received;
    while (received.size() < 32LL * 1024 * 1024) {
        QVERIFY(socket->bytesAvailable() > 0 || socket->waitForReadyRead(timeout));
        received += socket->readAll();
    }
    // Behind the head there is nothing else.
    const auto start = received.indexOf(QByteArray(head + piece));
    QVERIFY(start >= 0);
    const QByteArrayView flood = QByteArrayView(received).sliced(start + head.size());
    for (qsizetype at = 0; at + piece.size() <= flood.size(); at += piece.size())
        QVERIFY(flood.sliced(at, piece.size()) == piece);
    QCOMPARE(daemon.stats().value().floods, 1);
    QVERIFY(daemon.stats().value().flooded >= received.size());

    socket->abort();
    QTRY_COMPARE_WITH_TIMEOUT(daemon.stats().value().floods, 0, timeout);
    QVERIFY(daemon.terminate());
}

void SampleDaemonTest::answersInGzipUnasked()
{
    const auto path = m_folder.filePath(u"to pack"_s);
    const QByteArray content = "{\"groups\":[]}" + QByteArray(5000, ' ');
    QVERIFY(writeFile(path, content));
    StartedDaemon daemon({u"--summary"_s, path, u"--misbehave"_s, u"gzip"_s});
    const auto answer = ask(daemon);
    QCOMPARE(answer.status, 200);
    QCOMPARE(answer.header("Content-Encoding"), "gzip");
    QVERIFY(answer.body.size() < content.size());

    QProcess gzip;
    gzip.start(u"gzip"_s, {u"-dc"_s});
    gzip.write(answer.body);
    gzip.closeWriteChannel();
    QVERIFY(gzip.waitForFinished(timeout));
    QCOMPARE(gzip.exitCode(), 0);
    QCOMPARE(gzip.readAllStandardOutput(), content);
}

void SampleDaemonTest::movesWhenItIsSignalled()
{
    StartedDaemon daemon({u"--file-name"_s, u"ls_demo.json"_s});
    const auto port = daemon.httpPort();
    const auto file = daemon.filePath();
    const auto token = daemon.token();
    const auto kept = sendTo(port, Question{.token = token}.bytes());
    QVERIFY(isQuota(receive(*kept)));

    QVERIFY(daemon.move());
    QVERIFY(daemon.httpPort() != port);
    QCOMPARE(QFileInfo(daemon.filePath()).fileName(), u"ls_demo_2.json"_s);
    QVERIFY(!QFile::exists(file));
    QVERIFY(daemon.token() != token);
    QVERIFY(
        kept->state() == QAbstractSocket::UnconnectedState || kept->waitForDisconnected(timeout));
    QTcpSocket late;
    late.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    QVERIFY(!late.waitForConnected(timeout));
    QVERIFY(isQuota(ask(daemon)));
    QCOMPARE(daemon.stats().value().requests, 2);

    QVERIFY(daemon.move());
    QCOMPARE(QFileInfo(daemon.filePath()).fileName(), u"ls_demo_3.json"_s);
    QVERIFY(daemon.terminate());
    QVERIFY(QDir(QFileInfo(daemon.filePath()).path()).entryList(QDir::Files).isEmpty());
}

void SampleDaemonTest::keepsItsTokenAndSchemeWhenItMoves()
{
    StartedDaemon daemon(httpsOptions("signed") + QStringList{u"--token"_s, u"same"_s});
    const auto port = daemon.httpsPort();
    QVERIFY(daemon.move());
    QVERIFY(daemon.httpsPort() != 0 && daemon.httpsPort() != port);
    QCOMPARE(daemon.httpPort(), 0);
    QCOMPARE(daemon.token(), "same");
    QVERIFY(daemon.stats());
}

void SampleDaemonTest::answersWhatComesInPieces()
{
    StartedDaemon daemon;
    const auto bytes = Question{.token = daemon.token()}.bytes();
    // Whole requests, and the first half of one.
    const auto socket = sendTo(daemon.httpPort(), bytes + bytes + bytes.first(bytes.size() / 2));
    QTRY_COMPARE_WITH_TIMEOUT(daemon.stats().value().requests, 2, timeout);
    socket->write(bytes.sliced(bytes.size() / 2));
    socket->waitForBytesWritten(timeout);
    QByteArray received;
    while (received.count("HTTP/1.1 200 OK\r\n") < 3) {
        QVERIFY(socket->bytesAvailable() > 0 || socket->waitForReadyRead(timeout));
        received += socket->readAll();
    }
    QCOMPARE(daemon.stats().value().requests, 3);
    QCOMPARE(daemon.stats().value().connections, 1);
}

void SampleDaemonTest::servesHttpsWithACertificate_data()
{
    QTest::addColumn<QSslError::SslError>("error");
    QTest::newRow("signed") << QSslError::NoError;
    QTest::newRow("self-signed") << QSslError::SelfSignedCertificate;
    QTest::newRow("other-name") << QSslError::HostNameMismatch;
    QTest::newRow("expired") << QSslError::CertificateExpired;
}

void SampleDaemonTest::servesHttpsWithACertificate()
{
    QFETCH(const QSslError::SslError, error);
    StartedDaemon daemon(httpsOptions(QTest::currentDataTag()));
    QCOMPARE(daemon.httpPort(), 0);
    const auto content = announced(daemon.filePath());
    QVERIFY(!content.contains("httpPort"_L1));
    QCOMPARE(content["httpsPort"_L1].toInteger(), qint64(daemon.httpsPort()));

    QSslSocket socket;
    auto configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslCertificate::fromPath(certificate("ca")));
    socket.setSslConfiguration(configuration);
    socket.connectToHostEncrypted(u"127.0.0.1"_s, daemon.httpsPort());
    QCOMPARE(socket.waitForEncrypted(timeout), error == QSslError::NoError);
    if (error != QSslError::NoError) {
        QList<QSslError::SslError> errors;
        const auto met = socket.sslHandshakeErrors();
        for (const auto &one : met)
            errors.append(one.error());
        QVERIFY(errors.contains(error));
        return;
    }
    socket.write(Question{.token = daemon.token()}.bytes());
    QVERIFY(isQuota(receive(socket)));
    const auto stats = daemon.stats();
    QVERIFY(stats);
    QCOMPARE(stats->requests, 1);
    QCOMPARE(stats->connections, 1);
}

void SampleDaemonTest::removesItsFileWhenItEnds_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void SampleDaemonTest::removesItsFileWhenItEnds()
{
    QFETCH(const int, signalNumber);
    QProcess process;
    process.start(SampleDaemonProcess::program(),
        {u"--directory"_s, m_folder.path(), u"--file-name"_s, u"ls_signal.json"_s});
    const auto file = m_folder.filePath(u"ls_signal.json"_s);
    QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), timeout);
    QVERIFY(QFile::exists(file));
    QCOMPARE(::kill(pid_t(process.processId()), signalNumber), 0);
    QVERIFY(process.waitForFinished(timeout));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(!QFile::exists(file));
}

void SampleDaemonTest::leavesItsFileWhenItIsKilled()
{
    StartedDaemon daemon({u"--directory"_s, m_folder.path()});
    const auto pid = pid_t(daemon.pid());
    daemon.kill();
    QVERIFY(QFile::exists(daemon.filePath()));
    QCOMPARE(::kill(pid, 0), -1);
    QVERIFY(!daemon.terminate());
    QVERIFY(!daemon.move());
}

void SampleDaemonTest::endsWithItsStandardInput()
{
    QProcess process;
    process.start(SampleDaemonProcess::program(),
        {u"--directory"_s, m_folder.path(), u"--file-name"_s, u"ls_input.json"_s,
            u"--end-with-stdin"_s});
    QTRY_VERIFY_WITH_TIMEOUT(process.canReadLine(), timeout);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(timeout));
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(!QFile::exists(m_folder.filePath(u"ls_input.json"_s)));
}

void SampleDaemonTest::refusesAWrongCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    const auto row = [](const QStringList &arguments) {
        QTest::newRow(qPrintable(arguments.join(u' '))) << arguments;
    };
    row({u"--unknown"_s});
    row({u"-x"_s});
    row({u"argument"_s});
    row({u"--token"_s});
    row({u"--file-name"_s, u"../up.json"_s});
    row({u"--file-name"_s, QString()});
    row({u"--shape"_s, u"round"_s});
    row({u"--scenario"_s, u"Normal"_s});
    row({u"--speed"_s, u"-1"_s});
    row({u"--speed"_s, u"nan"_s});
    row({u"--speed"_s, u"inf"_s});
    row({u"--misbehave"_s, u"a-little"_s});
    row({u"--misbehave"_s, u"redirect"_s});
    row({u"--misbehave"_s, u"redirect"_s, u"--redirect-to"_s, u"/relative"_s});
    row({u"--redirect-to"_s, u"http://127.0.0.1/"_s});
    row({u"--dribble-interval"_s, u"0"_s});
    row({u"--https-only"_s});
    row({u"--https-only"_s, u"--certificate"_s, u"c"_s});
    row({u"--key"_s, u"k"_s});
}

void SampleDaemonTest::refusesAWrongCommandLine()
{
    QFETCH(const QStringList, arguments);
    const auto ended = runToEnd(arguments);
    QCOMPARE(ended.status, 2);
    QCOMPARE(ended.output, "");
    QVERIFY(ended.errors.startsWith("brimwatch-sample-daemon: "));
    QVERIFY(ended.errors.endsWith("Try --help.\n"));
}

void SampleDaemonTest::saysWhatItCannotDo_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("reason");
    const auto aFile = certificate("ca");
    const auto nothing = m_folder.filePath(u"nothing"_s);
    const auto path = [](const QString &name) { return name.toLocal8Bit(); };
    QTest::newRow("no such summary")
        << QStringList{u"--summary"_s, nothing} << "cannot read " + path(nothing);
    QTest::newRow("no such folder, nor can it be made") << QStringList{u"--directory"_s,
        aFile + "/below"_L1} << "cannot make the folder " + path(aFile) + "/below";
    QTest::newRow("no such certificate") << QStringList{u"--https-only"_s, u"--certificate"_s,
        nothing, u"--key"_s, aFile} << "cannot read " + path(nothing);
    QTest::newRow("not a certificate") << QStringList{u"--https-only"_s, u"--certificate"_s,
        m_folder.filePath(u"ca.key"_s), u"--key"_s, m_folder.filePath(u"ca.key"_s)}
                                       << QByteArray("there is no certificate in ");
    QTest::newRow("not a key") << QStringList{u"--https-only"_s, u"--certificate"_s, aFile,
        u"--key"_s, aFile} << QByteArray("there is no private key in ");
}

void SampleDaemonTest::saysWhatItCannotDo()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QByteArray, reason);
    const auto ended = runToEnd(arguments);
    QCOMPARE(ended.status, 1);
    QCOMPARE(ended.output, "");
    QVERIFY2(ended.errors.startsWith(QByteArray("brimwatch-sample-daemon: " + reason)),
        ended.errors.constData());

    SampleDaemonProcess daemon;
    QVERIFY(!daemon.start(arguments));
    QVERIFY(daemon.errorText().contains(QString::fromLocal8Bit(reason)));
}

void SampleDaemonTest::explainsEveryOption()
{
    const auto ended = runToEnd({u"--help"_s});
    QCOMPARE(ended.status, 0);
    QCOMPARE(ended.errors, "");
    for (const auto *word : {"--directory", "--file-name", "--token", "--https-only",
             "--certificate", "--key", "--shape", "--scenario", "--summary", "--speed",
             "--misbehave ", "--redirect-to", "--dribble-interval", "--log", "--end-with-stdin",
             "SIGUSR1", "/__stats", "refuse-token", "status-500 ", "status-500-hang", "status-204",
             "redirect ", "hang ", "dribble ", "dribble-header", "close-early", "close-mid-body",
             "rubbish ", "rubbish-body", "empty-body", "connect-error-body", "huge ", "huge-header",
             "flood-header", "flood-continue", "flood-chunks", "flood-tiny-chunks", "gzip"})
        QVERIFY2(ended.output.contains(word), word);
}

QTEST_GUILESS_MAIN(SampleDaemonTest)
#include "sample_daemon_test.moc"
