#include "service/quota_exchange.h"
#include "service/transport_error_text.h"
#include "unit/local_daemons.h"

#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <functional>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace brimwatch;
using namespace brimwatch::service;

class TransportErrorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachErrorHasItsWords_data()
    {
        QTest::addColumn<QNetworkReply::NetworkError>("error");
        QTest::addColumn<QString>("text");
        QTest::newRow("refused") << QNetworkReply::ConnectionRefusedError
                                 << u"Could not connect to the server."_s;
        QTest::newRow("closed") << QNetworkReply::RemoteHostClosedError
                                << u"The network connection was lost."_s;
        QTest::newRow("closed before the answer")
            << QNetworkReply::ContentReSendError << u"The network connection was lost."_s;
        QTest::newRow("interrupted")
            << QNetworkReply::TemporaryNetworkFailureError << u"The network connection was lost."_s;
        QTest::newRow("timed out") << QNetworkReply::TimeoutError << u"The request timed out."_s;
        QTest::newRow("cancelled")
            << QNetworkReply::OperationCanceledError << u"The request was cancelled."_s;
        QTest::newRow("not found")
            << QNetworkReply::HostNotFoundError << u"The server could not be found."_s;
        QTest::newRow("unreachable")
            << QNetworkReply::UnknownNetworkError << u"The server could not be reached."_s;
        QTest::newRow("no network")
            << QNetworkReply::NetworkSessionFailedError << u"There is no network."_s;
        QTest::newRow("TLS") << QNetworkReply::SslHandshakeFailedError
                             << u"A secure connection to the server could not be made."_s;
        QTest::newRow("protocol") << QNetworkReply::ProtocolFailure
                                  << u"The server's answer made no sense."_s;
        QTest::newRow("scheme") << QNetworkReply::ProtocolUnknownError
                                << u"The server cannot be asked in this way."_s;
        QTest::newRow("proxy") << QNetworkReply::ProxyConnectionRefusedError
                               << u"Could not connect to the proxy server."_s;
        QTest::newRow("any other")
            << QNetworkReply::UnknownContentError << u"The request failed."_s;
    }
    void eachErrorHasItsWords()
    {
        QFETCH(QNetworkReply::NetworkError, error);
        QFETCH(QString, text);
        QCOMPARE(transportErrorText(error), text);
    }

    void eachCertificateFaultHasItsWords_data()
    {
        QTest::addColumn<QList<QSslError>>("faults");
        QTest::addColumn<QString>("text");
        QTest::newRow("self-signed") << QList{QSslError(QSslError::SelfSignedCertificate)}
                                     << u"its certificate is not trusted."_s;
        QTest::newRow("unknown authority")
            << QList{QSslError(QSslError::UnableToGetLocalIssuerCertificate),
                   QSslError(QSslError::CertificateUntrusted)}
            << u"its certificate is not trusted."_s;
        QTest::newRow("expired") << QList{QSslError(QSslError::CertificateExpired)}
                                 << u"its certificate has expired."_s;
        QTest::newRow("too early") << QList{QSslError(QSslError::CertificateNotYetValid)}
                                   << u"its certificate is not valid yet."_s;
        QTest::newRow("other name") << QList{QSslError(QSslError::HostNameMismatch)}
                                    << u"its certificate is for another server."_s;
        QTest::newRow("none") << QList{QSslError(QSslError::NoPeerCertificate)}
                              << u"it has no certificate."_s;
        QTest::newRow("revoked") << QList{QSslError(QSslError::CertificateRevoked)}
                                 << u"its certificate was revoked."_s;
        QTest::newRow("the first with words of its own")
            << QList{QSslError(QSslError::SelfSignedCertificate),
                   QSslError(QSslError::HostNameMismatch), QSslError(QSslError::CertificateExpired)}
            << u"its certificate is for another server."_s;
    }
    void eachCertificateFaultHasItsWords()
    {
        QFETCH(QList<QSslError>, faults);
        QFETCH(QString, text);
        QCOMPARE(certificateFaultText(faults),
            QString(u"A secure connection to the server could not be made: " + text));
    }

    // What real sockets do

    void nobodyListening()
    {
        QCOMPARE(failureAt(addressOf(u"http"_s, test::closedPort())),
            u"Could not connect to the server."_s);
    }

    void aServerThatNeverAnswers()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QCOMPARE(failureAt(addressOf(u"http"_s, server.serverPort()), 200ms),
            u"The request timed out."_s);
    }

    void aServerThatNeverShakesHands()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QCOMPARE(failureAt(addressOf(u"https"_s, server.serverPort()), 200ms),
            u"The request timed out."_s);
    }

    void aServerThatClosesAtOnce()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        answerWith(server, [](QTcpSocket &socket) { socket.abort(); });
        QCOMPARE(failureAt(addressOf(u"http"_s, server.serverPort())),
            u"The network connection was lost."_s);
    }

    void aServerThatClosesWithinItsAnswer()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        answerWith(server, [](QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{");
            socket.disconnectFromHost();
        });
        QCOMPARE(failureAt(addressOf(u"http"_s, server.serverPort())),
            u"The network connection was lost."_s);
    }

    void aPlainServerWhereASecureOneIsExpected()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        answerWith(server, [](QTcpSocket &socket) {
            socket.write("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n");
        });
        QCOMPARE(failureAt(addressOf(u"https"_s, server.serverPort())),
            u"A secure connection to the server could not be made."_s);
    }

    void aSchemeThatNobodySpeaks()
    {
        QCOMPARE(
            failureAt(addressOf(u"nonsense"_s, 1)), u"The server cannot be asked in this way."_s);
    }

private:
    static QUrl addressOf(const QString &scheme, quint16 port)
    {
        return {scheme + u"://127.0.0.1:" + QString::number(port) + u'/'};
    }

    void answerWith(QTcpServer &server, const std::function<void(QTcpSocket &)> &answer)
    {
        connect(&server, &QTcpServer::newConnection, this, [this, &server, answer] {
            auto *socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [socket, answer] {
                socket->readAll();
                answer(*socket);
            });
        });
    }

    /// Why a request to that address failed; empty when it did not.
    static QString failureAt(const QUrl &url, std::chrono::milliseconds time = 20s)
    {
        QNetworkAccessManager network;
        network.setProxy(QNetworkProxy::NoProxy);
        QNetworkRequest request(url);
        request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
        request.setRawHeader("Content-Length", "2");
        request.setRawHeader("Content-Type", "application/json");
        QuotaExchange exchange(network, request, {.time = time, .body = 1000});
        std::optional<QuotaExchange::Outcome> outcome;
        connect(&exchange, &QuotaExchange::finished, &exchange,
            [&outcome](const QuotaExchange::Outcome &result) { outcome = result; });
        if (!QTest::qWaitFor([&outcome] { return outcome.has_value(); }, 30000))
            qFatal("the request does not end");
        const auto *failed = std::get_if<QuotaExchange::Failed>(&*outcome);
        return failed != nullptr ? failed->reason : QString();
    }
};

QTEST_GUILESS_MAIN(TransportErrorTest)
#include "transport_error_test.moc"
