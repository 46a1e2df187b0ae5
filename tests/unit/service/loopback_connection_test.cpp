#include "service/loopback_connection.h"

#include <QDir>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <algorithm>
#include <functional>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::service;

namespace {

class Listener final : public ConnectionListener {
public:
    void received(QByteArrayView bytes) override
    {
        ++pieces;
        largest = std::max(largest, bytes.size());
        answer.append(bytes);
        if (onReceived)
            onReceived();
    }
    void closed() override { ended = true; }
    void failed(const QString &reason) override
    {
        ended = true;
        error = reason;
    }

    QByteArray answer;
    qsizetype pieces = 0;
    qsizetype largest = 0;
    bool ended = false;
    QString error;
    std::function<void()> onReceived;
};

/// A server that hands its connections to the test.
class Server {
public:
    explicit Server(const QHostAddress &address = QHostAddress::LocalHost)
    {
        if (!server.listen(address))
            qFatal("cannot listen: %s", qPrintable(server.errorString()));
    }
    quint16 port() const { return server.serverPort(); }
    QTcpSocket *accept()
    {
        if (!QTest::qWaitFor([this] { return server.hasPendingConnections(); }))
            qFatal("nobody connects");
        return server.nextPendingConnection();
    }

    QTcpServer server;
};

/// With this the end of a connection is a reset.
void resetOnClose(const QTcpSocket &socket)
{
    const linger now{.l_onoff = 1, .l_linger = 0};
    if (::setsockopt(
            static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now)
        != 0)
        qFatal("no SO_LINGER");
}

qsizetype openDescriptors()
{
    return QDir(u"/dev/fd"_s).entryList(QDir::Files | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

class LoopbackConnectionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theRequestIsSentAndTheAnswerReceivedUntilItIsClosed()
    {
        Server server;
        const LoopbackConnection connection(server.port(), "question", m_listener);
        auto *socket = server.accept();
        QCOMPARE(socket->peerAddress(), QHostAddress(QHostAddress::LocalHost));
        QTRY_COMPARE(socket->bytesAvailable(), 8);
        QCOMPARE(socket->readAll(), QByteArray("question"));
        socket->write("answer");
        QTRY_COMPARE(m_listener.answer, QByteArray("answer"));
        QVERIFY(!m_listener.ended);
        socket->write(" and more");
        socket->disconnectFromHost();
        QTRY_VERIFY(m_listener.ended);
        QCOMPARE(m_listener.answer, QByteArray("answer and more"));
        QCOMPARE(m_listener.error, QString());
    }

    void nothingIsToldBeforeTheNextTurn()
    {
        const LoopbackConnection connection(unusedPort(), "x", m_listener);
        QVERIFY(!m_listener.ended);
        QTRY_VERIFY(m_listener.ended);
    }

    void aPortOnWhichNobodyListensRefuses()
    {
        const LoopbackConnection connection(unusedPort(), "x", m_listener);
        QTRY_VERIFY(m_listener.ended);
        QCOMPARE(m_listener.error, u"Could not connect to the server."_s);
    }

    void onlyIPv4LoopbackIsAsked()
    {
        Server server(QHostAddress::LocalHostIPv6);
        const LoopbackConnection connection(server.port(), "x", m_listener);
        QTRY_VERIFY(m_listener.ended);
        QCOMPARE(m_listener.error, u"Could not connect to the server."_s);
        QVERIFY(!server.server.hasPendingConnections());
    }

    void aRequestLargerThanTheBuffersIsSentCompletely()
    {
        Server server;
        const QByteArray request(32LL * 1024 * 1024, 'q');
        const LoopbackConnection connection(server.port(), request, m_listener);
        auto *socket = server.accept();
        // It waits while the server reads nothing.
        socket->setReadBufferSize(1024);
        qsizetype read = 0;
        const auto drain = [&] {
            read += socket->readAll().size();
            return read == request.size();
        };
        QTRY_VERIFY(socket->bytesAvailable() == 1024);
        QVERIFY(!drain());
        socket->setReadBufferSize(0);
        QVERIFY(QTest::qWaitFor(drain, 30000));
        QVERIFY(!m_listener.ended);
    }

    void anAnswerBeforeTheRequestIsReadIsReceived()
    {
        Server server;
        const LoopbackConnection connection(
            server.port(), QByteArray(32LL * 1024 * 1024, 'q'), m_listener);
        auto *socket = server.accept();
        socket->setReadBufferSize(1);
        socket->write("no");
        QTRY_COMPARE(m_listener.answer, QByteArray("no"));
        // With the rest unread this is a reset.
        socket->abort();
        QTRY_VERIFY(m_listener.ended);
        QCOMPARE(m_listener.error, QString());
    }

    void aResetEndsItAsAClose()
    {
        Server server;
        const LoopbackConnection connection(server.port(), "x", m_listener);
        auto *socket = server.accept();
        QTRY_COMPARE(socket->bytesAvailable(), 1);
        resetOnClose(*socket);
        socket->abort();
        QTRY_VERIFY(m_listener.ended);
        QCOMPARE(m_listener.error, QString());
    }

    void aLargeAnswerComesInPieces()
    {
        Server server;
        const LoopbackConnection connection(server.port(), "x", m_listener);
        auto *socket = server.accept();
        // Unread, it would make the end a reset.
        QTRY_COMPARE(socket->bytesAvailable(), 1);
        QCOMPARE(socket->readAll(), QByteArray("x"));
        const QByteArray answer(1024LL * 1024, 'a');
        socket->write(answer);
        socket->disconnectFromHost();
        QTRY_VERIFY(m_listener.ended);
        QCOMPARE(m_listener.answer, answer);
        QVERIFY(m_listener.largest <= 64LL * 1024);
    }

    void destroyedWithinItsCallItTellsNothingMore()
    {
        Server server;
        auto connection = std::make_unique<LoopbackConnection>(server.port(), "x", m_listener);
        m_listener.onReceived = [&connection] { connection.reset(); };
        auto *socket = server.accept();
        const QSignalSpy disconnected(socket, &QTcpSocket::disconnected);
        socket->write(QByteArray(1024LL * 1024, 'a'));
        QTRY_COMPARE(disconnected.size(), 1);
        QVERIFY(!connection);
        QCOMPARE(m_listener.pieces, 1);
        QVERIFY(!m_listener.ended);
    }

    void destroyedBeforeItConnectsItNeverDoes()
    {
        Server server;
        std::make_unique<LoopbackConnection>(server.port(), "x", m_listener).reset();
        QCoreApplication::processEvents();
        // A later one is the first that comes.
        const LoopbackConnection connection(server.port(), "second", m_listener);
        auto *socket = server.accept();
        QTRY_COMPARE(socket->bytesAvailable(), 6);
        QVERIFY(!server.server.hasPendingConnections());
    }

    void eachConnectionGivesItsDescriptorBack()
    {
        Server server;
        const auto before = openDescriptors();
        for (int i = 0; i < 50; ++i) {
            Listener listener;
            const LoopbackConnection connection(
                i % 2 != 0 ? server.port() : unusedPort(), "x", listener);
            if (i % 2 != 0) {
                const std::unique_ptr<QTcpSocket> socket(server.accept());
                socket->abort();
            }
            QTRY_VERIFY(listener.ended);
        }
        QTRY_COMPARE(openDescriptors(), before);
    }

    void withoutADescriptorLeftTheServerCannotBeReached()
    {
        rlimit limit{};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &limit), 0);
        const rlimit none{.rlim_cur = 0, .rlim_max = limit.rlim_max};
        const LoopbackConnection connection(1, "x", m_listener);
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &limit), 0);
        QVERIFY(m_listener.ended);
        QCOMPARE(m_listener.error, u"The server could not be reached."_s);
    }

    void init()
    {
        m_listener.answer.clear();
        m_listener.pieces = 0;
        m_listener.largest = 0;
        m_listener.ended = false;
        m_listener.error.clear();
        m_listener.onReceived = {};
    }

private:
    /// On which nobody listens.
    static quint16 unusedPort()
    {
        QTcpServer server;
        return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
    }

    Listener m_listener;
};

QTEST_GUILESS_MAIN(LoopbackConnectionTest)
#include "loopback_connection_test.moc"
