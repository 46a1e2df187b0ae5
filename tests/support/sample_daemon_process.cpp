#include "support/sample_daemon_process.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSslSocket>

#include <algorithm>
#include <csignal>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int timeout = 30'000; // Milliseconds; nothing that works comes near it.

SampleDaemonProcess::Request requestIn(const QJsonObject &object)
{
    SampleDaemonProcess::Request request{
        .method = object["method"_L1].toString(),
        .path = object["path"_L1].toString(),
        .headers = {},
        .body = object["body"_L1].toString().toUtf8(),
    };
    const auto headers = object["headerList"_L1].toArray();
    for (const auto header : headers) {
        const auto pair = header.toArray();
        request.headers.append({pair[0].toString().toLatin1(), pair[1].toString().toLatin1()});
    }
    return request;
}

} // namespace

std::optional<QByteArray> SampleDaemonProcess::Request::header(const QByteArray &name) const
{
    const auto found = std::find_if(headers.cbegin(), headers.cend(), [&name](const auto &header) {
        return header.first.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == headers.cend() ? std::nullopt : std::optional(found->second);
}

QString SampleDaemonProcess::program()
{
    return QStringLiteral(BRIMWATCH_SAMPLE_DAEMON);
}

SampleDaemonProcess::~SampleDaemonProcess()
{
    if (m_process.state() != QProcess::NotRunning && !terminate())
        kill();
}

bool SampleDaemonProcess::start(const QStringList &options)
{
    m_logLines.clear();
    // Should the test crash, its end of the daemon's standard input closes, and the daemon ends
    // too.
    m_process.start(program(), options + QStringList{u"--end-with-stdin"_s});
    return waitForReadyLine();
}

QByteArray SampleDaemonProcess::token() const
{
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll())["csrfToken"_L1].toString().toUtf8();
}

QStringList SampleDaemonProcess::logLines()
{
    m_process.waitForReadyRead(0);
    readLines();
    return m_logLines;
}

std::optional<SampleDaemonProcess::Stats> SampleDaemonProcess::stats() const
{
    QSslSocket socket;
    if (m_httpPort != 0) {
        socket.connectToHost(u"127.0.0.1"_s, m_httpPort);
        socket.waitForConnected(timeout);
    } else {
        socket.setPeerVerifyMode(QSslSocket::VerifyNone);
        socket.connectToHostEncrypted(u"127.0.0.1"_s, m_httpsPort);
        socket.waitForEncrypted(timeout);
    }
    socket.write("GET /__stats HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");

    const QDeadlineTimer deadline(timeout);
    QByteArray answer;
    while (!deadline.hasExpired()) {
        const auto bodyStart = answer.indexOf("\r\n\r\n") + 4;
        // The daemon announces no length that its body does not have; whole JSON is a whole body.
        if (bodyStart >= 4) {
            const auto document = QJsonDocument::fromJson(answer.mid(bodyStart));
            if (document.isObject()) {
                Stats stats{
                    .requests = document["requests"_L1].toInteger(),
                    .connections = document["connections"_L1].toInteger(),
                    .floods = document["floods"_L1].toInteger(),
                    .flooded = document["flooded"_L1].toInteger(),
                    .last = {},
                };
                if (document["last"_L1].isObject())
                    stats.last = requestIn(document["last"_L1].toObject());
                return stats;
            }
        }
        if (!socket.waitForReadyRead(int(deadline.remainingTime())))
            break;
        answer += socket.readAll();
    }
    return {};
}

bool SampleDaemonProcess::move()
{
    // A process id of 0 would be our own group.
    return pid() > 0 && ::kill(pid_t(pid()), SIGUSR1) == 0 && waitForReadyLine();
}

bool SampleDaemonProcess::terminate()
{
    if (m_process.state() == QProcess::NotRunning)
        return false;
    m_process.terminate();
    const bool ended = m_process.waitForFinished(timeout);
    readLines();
    return ended && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
}

void SampleDaemonProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(timeout);
}

bool SampleDaemonProcess::waitForReadyLine()
{
    const QDeadlineTimer deadline(timeout);
    readLines();
    while (m_readyLinesSeen == m_readyLines && !deadline.hasExpired()) {
        if (!m_process.waitForReadyRead(int(deadline.remainingTime())))
            break;
        readLines();
    }
    if (m_readyLinesSeen == m_readyLines) {
        m_errorText = m_process.state() == QProcess::NotRunning
            ? m_process.errorString() + ": "_L1
                + QString::fromLocal8Bit(m_process.readAllStandardError())
            : u"the daemon runs, and does not say that it is ready"_s;
        return false;
    }
    ++m_readyLinesSeen;
    return true;
}

void SampleDaemonProcess::readLines()
{
    while (m_process.canReadLine()) {
        const auto line = QString::fromLocal8Bit(m_process.readLine()).trimmed();
        if (line.startsWith("ready "_L1))
            readReadyLine(line);
        else
            m_logLines.append(line);
    }
}

void SampleDaemonProcess::readReadyLine(const QString &line)
{
    static const QRegularExpression form(
        u"^ready(?: http=(?<http>\\d+)| https=(?<https>\\d+)) file=(?<file>.*) pid=\\d+$"_s);
    const auto match = form.match(line);
    m_httpPort = match.captured(u"http"_s).toUShort();
    m_httpsPort = match.captured(u"https"_s).toUShort();
    m_filePath = match.captured(u"file"_s);
    ++m_readyLines;
}

} // namespace brimwatch::test
