#include "answers.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSslSocket>
#include <QTcpSocket>

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>
#include <optional>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto quotaPath = "/exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary";
constexpr auto statisticsPath = "/__stats";
constexpr auto chunked = "Transfer-Encoding: chunked\r\n\r\n";
constexpr auto jsonType = "application/json";
constexpr auto ok = "200 OK";
constexpr auto unauthorized = "401 Unauthorized";
constexpr auto internalServerError = "500 Internal Server Error";

// Far beyond what any caller should swallow.
constexpr qint64 hugeBody = 64LL * 1024 * 1024;
constexpr qint64 hugeHeader = 8LL * 1024 * 1024;

/// Takes the next request from the socket, once all of it has come.
std::optional<Request> takeRequest(QTcpSocket &socket)
{
    const QByteArray received = socket.peek(socket.bytesAvailable());
    const auto headSize = received.indexOf("\r\n\r\n");
    if (headSize < 0)
        return std::nullopt;
    const auto lines = received.first(headSize).split('\n');
    const auto words = lines.constFirst().split(' ');
    Request request{.method = words.value(0), .target = words.value(1)};
    qsizetype bodySize = 0;
    for (const auto &line : lines.sliced(1)) {
        const auto name = line.left(line.indexOf(':'));
        const auto value = line.mid(name.size() + 1).trimmed();
        request.headers.append({name, value});
        if (name.compare("Content-Length", Qt::CaseInsensitive) == 0)
            bodySize = std::max<qsizetype>(0, value.toLongLong());
    }
    const auto size = headSize + 4 + bodySize;
    if (received.size() < size)
        return std::nullopt;
    request.body = received.mid(headSize + 4, bodySize);
    socket.skip(size);
    return request;
}

/// Whether the header is there exactly once, with exactly this value. Header names know no case.
bool carries(const Request &request, const char *name, const QByteArray &value)
{
    const auto &headers = request.headers;
    const auto named = [name](const auto &header) {
        return header.first.compare(name, Qt::CaseInsensitive) == 0;
    };
    const auto found = std::find_if(headers.cbegin(), headers.cend(), named);
    return found != headers.cend() && found->second == value
        && std::count_if(headers.cbegin(), headers.cend(), named) == 1;
}

QByteArray statusLine(const QByteArray &status)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: application/json\r\n";
}

QByteArray contentLength(qint64 length)
{
    return "Content-Length: " + QByteArray::number(length) + "\r\n\r\n";
}

} // namespace

Answers::Answers(const Options &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_quota(options.scenario, options.speed, QDateTime::currentDateTimeUtc())
{
}

void Answers::serve(QTcpSocket *socket)
{
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    const auto answerAll = [this, socket] {
        while (const auto request = takeRequest(*socket))
            answer(*request, socket);
    };
    connect(socket, &QTcpSocket::readyRead, this, answerAll);
    answerAll(); // What came during the TLS handshake.
}

void Answers::answer(const Request &request, QTcpSocket *socket)
{
    if (request.method == "GET" && request.path() == statisticsPath) {
        sendStatistics(socket);
        return;
    }

    remember(request);
    const auto reply = replyTo(request);
    if (m_options.misbehaviour)
        misbehave(*m_options.misbehaviour, reply, socket);
    else
        send(socket, reply);
}

void Answers::remember(const Request &request)
{
    ++m_requests;
    QJsonArray headers;
    for (const auto &[name, value] : request.headers)
        headers.append(QJsonArray{QString::fromLatin1(name), QString::fromLatin1(value)});
    m_last = {
        {u"method"_s, QString::fromLatin1(request.method)},
        {u"path"_s, QString::fromLatin1(request.target)},
        {u"headerList"_s, headers},
        {u"body"_s, QString::fromUtf8(request.body)},
    };
    if (m_options.log) {
        const std::chrono::duration<double, std::milli> time
            = std::chrono::steady_clock::now().time_since_epoch();
        std::cout << "request " << m_requests << ' ' << request.method.toStdString() << ' '
                  << request.target.toStdString() << " at " << std::fixed << std::setprecision(3)
                  << time.count() << '\n'
                  << std::flush;
    }
}

void Answers::sendStatistics(QTcpSocket *socket)
{
    constexpr auto notCounted = "brimwatchNotCounted";
    if (!socket->property(notCounted).toBool()) {
        socket->setProperty(notCounted, true);
        --m_connections;
    }
    QJsonObject statistics{
        {u"requests"_s, m_requests},
        {u"connections"_s, m_connections},
        {u"floods"_s, m_floods},
        {u"flooded"_s, m_flooded},
    };
    if (!m_last.isEmpty())
        statistics.insert(u"last"_s, m_last);
    send(socket, {.status = ok, .body = QJsonDocument(statistics).toJson(QJsonDocument::Compact)});
}

Answers::Reply Answers::errorReply(
    const QByteArray &status, const char *code, const QString &message)
{
    const QJsonObject error{
        {u"code"_s, QString::fromLatin1(code)},
        {u"message"_s, message},
    };
    return {.status = status, .body = QJsonDocument(error).toJson(QJsonDocument::Compact)};
}

void Answers::send(QTcpSocket *socket, const Reply &reply)
{
    socket->write(statusLine(reply.status) + contentLength(reply.body.size()) + reply.body);
}

Answers::Reply Answers::replyTo(const Request &request) const
{
    if (request.path() != quotaPath)
        return errorReply("404 Not Found", "unimplemented", u"there is no such procedure"_s);
    if (request.method != "POST")
        return errorReply(
            "405 Method Not Allowed", "unimplemented", u"the procedure is called with POST"_s);
    if (!carries(request, "Content-Type", jsonType))
        return errorReply("415 Unsupported Media Type", "invalid_argument",
            u"Content-Type must be application/json"_s);
    if (!carries(request, "Connect-Protocol-Version", "1"))
        return errorReply(
            "400 Bad Request", "invalid_argument", u"Connect-Protocol-Version must be 1"_s);
    if (!carries(request, "x-codeium-csrf-token", m_token))
        return errorReply(unauthorized, "unauthenticated", u"invalid CSRF token"_s);
    if (request.body != "{}")
        return errorReply(
            "400 Bad Request", "invalid_argument", u"the message must be an empty object"_s);
    return quotaReply();
}

Answers::Reply Answers::quotaReply() const
{
    if (m_options.summaryFile) {
        QFile file(*m_options.summaryFile);
        if (!file.open(QIODevice::ReadOnly))
            return errorReply(internalServerError, "internal", file.errorString());
        return {.status = ok, .body = file.readAll()};
    }
    auto content = m_quota.summaryAt(QDateTime::currentDateTimeUtc());
    if (m_options.shape == Shape::Envelope)
        content = {{u"response"_s, content}};
    return {.status = ok, .body = QJsonDocument(content).toJson(QJsonDocument::Compact)};
}

void Answers::countFlood(QTcpSocket *socket)
{
    ++m_floods;
    connect(socket, &QTcpSocket::disconnected, this, [this] { --m_floods; });
    const auto count = [this](qint64 bytes) { m_flooded += bytes; };
    if (auto *secure = qobject_cast<QSslSocket *>(socket))
        connect(secure, &QSslSocket::encryptedBytesWritten, this, count);
    else
        connect(socket, &QTcpSocket::bytesWritten, this, count);
}

void Answers::misbehave(Misbehaviour kind, const Reply &properReply, QTcpSocket *socket)
{
    const auto &body = properReply.body;
    switch (kind) {
    case Misbehaviour::RefuseToken:
        send(socket, errorReply(unauthorized, "unauthenticated", u"invalid CSRF token"_s));
        break;
    case Misbehaviour::Status500:
        send(socket, errorReply(internalServerError, "internal", u"something went wrong"_s));
        break;
    case Misbehaviour::Status500Hang:
        dribble(
            socket, statusLine(internalServerError) + "\r\n", body, ' ', m_options.dribbleInterval);
        break;
    case Misbehaviour::Status204:
        socket->write("HTTP/1.1 204 No Content\r\n\r\n");
        break;
    case Misbehaviour::Redirect:
        socket->write("HTTP/1.1 302 Found\r\nLocation: " + m_options.redirectTo.toEncoded() + "\r\n"
            + contentLength(0));
        break;
    case Misbehaviour::Hang:
        break;
    case Misbehaviour::Dribble:
        dribble(socket, statusLine(ok) + "\r\n", body, ' ', m_options.dribbleInterval);
        break;
    case Misbehaviour::DribbleHeader:
        dribble(socket, "HTTP/1.1 200 OK\r\n", "X-Slow: ", 'x', m_options.dribbleInterval);
        break;
    case Misbehaviour::CloseEarly:
        sendAndClose(socket, {});
        break;
    case Misbehaviour::CloseMidBody:
        sendAndClose(
            socket, statusLine(ok) + contentLength(body.size()) + body.first(body.size() / 2));
        break;
    case Misbehaviour::Rubbish:
        sendAndClose(socket, "\x16\x03\0 SSH-2.0-teapot\r\n220 mail\r\n\r\n\xff\xfe"_ba);
        break;
    case Misbehaviour::RubbishBody:
        send(socket, {.status = ok, .body = "<!doctype html><title>It works!</title>{\"groups\":"});
        break;
    case Misbehaviour::EmptyBody:
        send(socket, {.status = ok, .body = {}});
        break;
    case Misbehaviour::ConnectErrorBody:
        send(socket, errorReply(ok, "unavailable", u"quota is not known yet"_s));
        break;
    case Misbehaviour::Huge:
        stream(socket, statusLine(ok) + contentLength(hugeBody) + body, ' ', hugeBody - body.size(),
            {});
        break;
    case Misbehaviour::HugeHeader:
        stream(socket, statusLine(ok) + "X-Filler: ", 'x', hugeHeader,
            "\r\n" + contentLength(body.size()) + body);
        break;
    case Misbehaviour::FloodHeader:
        countFlood(socket);
        flood(socket, statusLine(ok), "X-Filler: 0123456789abcdef\r\n");
        break;
    case Misbehaviour::FloodContinue:
        countFlood(socket);
        flood(socket, "HTTP/1.1 100 Continue\r\n\r\n", "HTTP/1.1 100 Continue\r\n\r\n");
        break;
    case Misbehaviour::FloodChunks:
        countFlood(socket);
        flood(socket, statusLine(ok) + chunked, "10000\r\n" + QByteArray(0x10000, ' ') + "\r\n");
        break;
    case Misbehaviour::FloodTinyChunks:
        countFlood(socket);
        flood(socket, statusLine(ok) + chunked, "1\r\n \r\n");
        break;
    case Misbehaviour::Gzip: {
        const auto packed = gzipped(body);
        socket->write(
            statusLine(ok) + "Content-Encoding: gzip\r\n" + contentLength(packed.size()) + packed);
        break;
    }
    }
}

} // namespace brimwatch::sample
