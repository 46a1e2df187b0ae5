#include "months/planned_daemon.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTcpSocket>

#include <utility>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray answerOf(const QByteArray &status, const QByteArray &body)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: application/json\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

} // namespace

PlannedDaemon::PlannedDaemon(QString folder)
    : m_folder(std::move(folder))
{
    if (!QDir().mkpath(m_folder))
        qFatal("cannot make %s", qPrintable(m_folder));
    connect(&m_server, &QTcpServer::newConnection, this, &PlannedDaemon::accept);
}

void PlannedDaemon::start()
{
    stop(false);
    if (!m_server.listen(QHostAddress::LocalHost))
        qFatal("cannot listen: %s", qPrintable(m_server.errorString()));
    // As many names as the daemon has lives would fill the folder, which is not what is tested.
    m_file = m_folder + u"/ls_%1.json"_s.arg(++m_starts % 5);
    QFile file(m_file + ".new"_L1);
    if (!file.open(QIODevice::WriteOnly)
        || file.write(R"({"pid":)" + QByteArray::number(QCoreApplication::applicationPid())
               + R"(,"httpPort":)" + QByteArray::number(m_server.serverPort())
               + R"(,"csrfToken":"planned","lsVersion":"1.2.3"})")
            < 0)
        qFatal("cannot write %s", qPrintable(file.fileName()));
    file.close();
    QFile::remove(m_file);
    if (!QFile::rename(file.fileName(), m_file))
        qFatal("cannot write %s", qPrintable(m_file));
}

void PlannedDaemon::stop(bool crashes)
{
    m_server.close();
    const auto callers = m_read.keys();
    for (QTcpSocket *caller : callers)
        caller->abort();
    if (!crashes && !m_file.isEmpty())
        QFile::remove(m_file);
}

void PlannedDaemon::accept()
{
    while (QTcpSocket *caller = m_server.nextPendingConnection()) {
        m_read.insert(caller, {});
        connect(caller, &QTcpSocket::readyRead, this, [this, caller] { read(*caller); });
        connect(caller, &QTcpSocket::disconnected, this, [this, caller] {
            m_read.remove(caller);
            caller->deleteLater();
        });
        read(*caller);
    }
}

void PlannedDaemon::read(QTcpSocket &caller)
{
    QByteArray &text = m_read[&caller];
    text += caller.readAll();
    const auto end = text.indexOf("\r\n\r\n");
    if (end < 0)
        return;
    const QByteArray head = text.left(end).toLower();
    const auto at = head.indexOf("content-length:");
    const QByteArray length = at < 0 ? QByteArray() : head.mid(at + 15).split('\r').first();
    if (text.size() < end + 4 + length.trimmed().toLongLong())
        return;
    ++requests;
    text.clear();
    answer(caller);
}

void PlannedDaemon::answer(QTcpSocket &caller) const
{
    switch (manners) {
    case Manners::Hangs:
        return;
    case Manners::Answers:
        caller.write(answerOf("200 OK", body));
        break;
    case Manners::Fails:
        caller.write(answerOf("500 Internal Server Error", R"({"code":"internal"})"));
        break;
    case Manners::Babbles:
        caller.write(answerOf("200 OK", "<html>no quota here</html>"));
        break;
    case Manners::Lies:
        caller.write(
            answerOf("200 OK", R"({"response":{"groups":[{"displayName":7,"buckets":{}}]}})"));
        break;
    case Manners::Floods:
        caller.write(answerOf("200 OK", body + QByteArray(qsizetype{2} * 1024 * 1024, ' ')));
        break;
    case Manners::Truncates: {
        const QByteArray whole = answerOf("200 OK", body);
        caller.write(whole.left(whole.size() - body.size() / 2));
        break;
    }
    case Manners::Closes:
        break;
    }
    caller.disconnectFromHost();
}

} // namespace brimwatch::test
