#include "answers.h"

#include <QDateTime>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMetaEnum>
#include <QSslSocket>
#include <QTcpSocket>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <iostream>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;

using Status = QHttpServerResponder::StatusCode;

namespace {

constexpr auto quotaPath
    = "/exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary"_L1;
constexpr auto statisticsPath = "/__stats"_L1;
constexpr auto chunked = "Transfer-Encoding: chunked\r\n\r\n";
constexpr auto jsonType = "application/json";

// Far beyond what any caller should swallow.
constexpr qint64 hugeBody = 64LL * 1024 * 1024;
constexpr qint64 hugeHeader = 8LL * 1024 * 1024;

QString methodName(QHttpServerRequest::Method method)
{
    return QString::fromLatin1(
        QMetaEnum::fromType<QHttpServerRequest::Method>().valueToKey(int(method)))
        .toUpper();
}

QString pathOf(const QHttpServerRequest &request)
{
    return request.url().toString(QUrl::RemoveScheme | QUrl::RemoveAuthority | QUrl::FullyEncoded);
}

/// Whether the header is there exactly once, with exactly this value. Header names know no case.
bool carries(const QHttpServerRequest &request, const char *name, const QByteArray &value)
{
    const auto headers = request.headers();
    const auto named = [name](const auto &header) {
        return header.first.compare(name, Qt::CaseInsensitive) == 0;
    };
    const auto found = std::find_if(headers.cbegin(), headers.cend(), named);
    return found != headers.cend() && found->second == value
        && std::count_if(headers.cbegin(), headers.cend(), named) == 1;
}

QByteArray statusLine(const char *status)
{
    return QByteArray("HTTP/1.1 ") + status + "\r\nContent-Type: application/json\r\n";
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

void Answers::answer(const QHttpServerRequest &request, QHttpServerResponder &&responder)
{
    auto ours = std::move(responder);
    if (request.method() == QHttpServerRequest::Method::Get
        && request.url().path() == statisticsPath) {
        sendStatistics(ours);
        return;
    }

    remember(request);
    const auto reply = replyTo(request);
    if (m_options.misbehaviour && shouldMisbehave())
        misbehave(*m_options.misbehaviour, reply, ours);
    else
        send(ours, reply);
}

void Answers::remember(const QHttpServerRequest &request)
{
    ++m_requests;
    const auto method = methodName(request.method());
    const auto path = pathOf(request);
    QJsonObject headers;
    QJsonArray headerList;
    const auto received = request.headers();
    for (const auto &[name, value] : received) {
        const auto key = QString::fromLatin1(name);
        headers.insert(key, QString::fromLatin1(value));
        headerList.append(QJsonArray{key, QString::fromLatin1(value)});
    }
    m_last = {
        {u"method"_s, method},
        {u"path"_s, path},
        {u"headers"_s, headers},
        {u"headerList"_s, headerList},
        {u"body"_s, QString::fromUtf8(request.body())},
    };
    if (m_options.log) {
        const std::chrono::duration<double, std::milli> time
            = std::chrono::steady_clock::now().time_since_epoch();
        std::cout << "request " << m_requests << ' ' << method.toStdString() << ' '
                  << path.toStdString() << " at " << std::fixed << std::setprecision(3)
                  << time.count() << '\n'
                  << std::flush;
    }
}

void Answers::sendStatistics(QHttpServerResponder &responder)
{
    constexpr auto notCounted = "brimwatchNotCounted";
    auto *socket = responder.socket();
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
    send(responder,
        {.status = Status::Ok, .body = QJsonDocument(statistics).toJson(QJsonDocument::Compact)});
}

Answers::Reply Answers::errorReply(Status status, const char *code, const QString &message)
{
    const QJsonObject error{
        {u"code"_s, QString::fromLatin1(code)},
        {u"message"_s, message},
    };
    return {.status = status, .body = QJsonDocument(error).toJson(QJsonDocument::Compact)};
}

void Answers::send(QHttpServerResponder &responder, const Reply &reply)
{
    responder.write(reply.body, QByteArray(jsonType), reply.status);
}

Answers::Reply Answers::replyTo(const QHttpServerRequest &request) const
{
    if (request.url().path() != quotaPath)
        return errorReply(Status::NotFound, "unimplemented", u"there is no such procedure"_s);
    if (request.method() != QHttpServerRequest::Method::Post)
        return errorReply(
            Status::MethodNotAllowed, "unimplemented", u"the procedure is called with POST"_s);
    if (!carries(request, "Content-Type", jsonType))
        return errorReply(Status::UnsupportedMediaType, "invalid_argument",
            u"Content-Type must be application/json"_s);
    if (!carries(request, "Connect-Protocol-Version", "1"))
        return errorReply(
            Status::BadRequest, "invalid_argument", u"Connect-Protocol-Version must be 1"_s);
    if (!carries(request, "x-codeium-csrf-token", m_token))
        return errorReply(Status::Unauthorized, "unauthenticated", u"invalid CSRF token"_s);
    if (request.body() != "{}")
        return errorReply(
            Status::BadRequest, "invalid_argument", u"the message must be an empty object"_s);
    return quotaReply();
}

Answers::Reply Answers::quotaReply() const
{
    if (m_options.summaryFile) {
        QFile file(*m_options.summaryFile);
        if (!file.open(QIODevice::ReadOnly))
            return errorReply(Status::InternalServerError, "internal", file.errorString());
        return {.status = Status::Ok, .body = file.readAll()};
    }
    auto content = m_quota.summaryAt(QDateTime::currentDateTimeUtc());
    if (m_options.shape == Shape::Envelope)
        content = {{u"response"_s, content}};
    return {.status = Status::Ok, .body = QJsonDocument(content).toJson(QJsonDocument::Compact)};
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

bool Answers::shouldMisbehave() const
{
    // A move comes after the last of the counted requests, every other misbehaviour with each of
    // them.
    if (m_options.misbehaviour == Misbehaviour::Move)
        return m_requests == m_options.misbehaviourCount.value_or(1);
    return !m_options.misbehaviourCount || m_requests <= *m_options.misbehaviourCount;
}

void Answers::misbehave(
    Misbehaviour kind, const Reply &properReply, QHttpServerResponder &responder)
{
    auto *socket = responder.socket();
    const auto &body = properReply.body;
    switch (kind) {
    case Misbehaviour::RefuseToken:
        send(responder,
            errorReply(Status::Unauthorized, "unauthenticated", u"invalid CSRF token"_s));
        break;
    case Misbehaviour::Status500:
        send(responder,
            errorReply(Status::InternalServerError, "internal", u"something went wrong"_s));
        break;
    case Misbehaviour::Status500Hang:
        dribble(socket, statusLine("500 Internal Server Error") + "\r\n", body, ' ',
            m_options.dribbleInterval);
        break;
    case Misbehaviour::Status204:
        responder.write(Status::NoContent);
        break;
    case Misbehaviour::Redirect:
        responder.write({{"Location", m_options.redirectTo.toEncoded()}}, Status::Found);
        break;
    case Misbehaviour::Hang:
        break;
    case Misbehaviour::Dribble:
        dribble(socket, statusLine("200 OK") + "\r\n", body, ' ', m_options.dribbleInterval);
        break;
    case Misbehaviour::DribbleHeader:
        dribble(socket, "HTTP/1.1 200 OK\r\n", "X-Slow: ", 'x', m_options.dribbleInterval);
        break;
    case Misbehaviour::CloseEarly:
        sendAndClose(socket, {});
        break;
    case Misbehaviour::CloseMidBody:
        sendAndClose(socket,
            statusLine("200 OK") + contentLength(body.size()) + body.first(body.size() / 2));
        break;
    case Misbehaviour::Rubbish:
        sendAndClose(socket, "\x16\x03\0 SSH-2.0-teapot\r\n220 mail\r\n\r\n\xff\xfe"_ba);
        break;
    case Misbehaviour::RubbishBody:
        send(responder,
            {.status = Status::Ok, .body = "<!doctype html><title>It works!</title>{\"groups\":"});
        break;
    case Misbehaviour::EmptyBody:
        send(responder, {.status = Status::Ok, .body = {}});
        break;
    case Misbehaviour::ConnectErrorBody:
        send(responder, errorReply(Status::Ok, "unavailable", u"quota is not known yet"_s));
        break;
    case Misbehaviour::Huge:
        stream(socket, statusLine("200 OK") + contentLength(hugeBody) + body, ' ',
            hugeBody - body.size(), {});
        break;
    case Misbehaviour::HugeHeader:
        stream(socket, statusLine("200 OK") + "X-Filler: ", 'x', hugeHeader,
            "\r\n" + contentLength(body.size()) + body);
        break;
    case Misbehaviour::FloodHeader:
        countFlood(socket);
        flood(socket, statusLine("200 OK"), "X-Filler: 0123456789abcdef\r\n");
        break;
    case Misbehaviour::FloodContinue:
        countFlood(socket);
        flood(socket, "HTTP/1.1 100 Continue\r\n\r\n", "HTTP/1.1 100 Continue\r\n\r\n");
        break;
    case Misbehaviour::FloodChunks:
        countFlood(socket);
        flood(socket, statusLine("200 OK") + chunked,
            "10000\r\n" + QByteArray(0x10000, ' ') + "\r\n");
        break;
    case Misbehaviour::FloodTinyChunks:
        countFlood(socket);
        flood(socket, statusLine("200 OK") + chunked, "1\r\n \r\n");
        break;
    case Misbehaviour::Gzip: {
        const auto packed = gzipped(body);
        socket->write(statusLine("200 OK") + "Content-Encoding: gzip\r\n"
            + contentLength(packed.size()) + packed);
        break;
    }
    case Misbehaviour::Move:
        send(responder, properReply);
        Q_EMIT moveDue();
        break;
    }
}

} // namespace brimwatch::sample
