#include "service/quota_exchange.h"
#include "service/quota_request.h"
#include "service/tls/tls_errors.h"
#include "service/transport_error_text.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <cerrno>
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
        QTest::addColumn<TransportError>("error");
        QTest::addColumn<QString>("text");
        QTest::newRow("refused") << TransportError::Refused
                                 << u"Could not connect to the server."_s;
        QTest::newRow("lost") << TransportError::ConnectionLost
                              << u"The network connection was lost."_s;
        QTest::newRow("timed out") << TransportError::TimedOut << u"The request timed out."_s;
        QTest::newRow("unreachable")
            << TransportError::Unreachable << u"The server could not be reached."_s;
        QTest::newRow("TLS failed") << TransportError::TlsFailed
                                    << u"A secure connection to the server could not be made."_s;
        QTest::newRow("malformed")
            << TransportError::Malformed << u"The server's answer made no sense."_s;
        QTest::newRow("any other") << TransportError::Other << u"The request failed."_s;
    }
    void eachErrorHasItsWords()
    {
        QFETCH(TransportError, error);
        QFETCH(QString, text);
        QCOMPARE(transportErrorText(error), text);
    }

    void eachErrorOfTheSystemIsOneOfThose_data()
    {
        QTest::addColumn<int>("errorNumber");
        QTest::addColumn<TransportError>("error");
        QTest::newRow("refused") << ECONNREFUSED << TransportError::Refused;
        QTest::newRow("reset") << ECONNRESET << TransportError::ConnectionLost;
        QTest::newRow("broken pipe") << EPIPE << TransportError::ConnectionLost;
        QTest::newRow("timed out") << ETIMEDOUT << TransportError::TimedOut;
        QTest::newRow("out of reach") << EHOSTUNREACH << TransportError::Unreachable;
        QTest::newRow("no interface") << ENETUNREACH << TransportError::Unreachable;
        QTest::newRow("forbidden") << EACCES << TransportError::Unreachable;
        QTest::newRow("no port is left") << EADDRNOTAVAIL << TransportError::Unreachable;
        QTest::newRow("no descriptor is left") << EMFILE << TransportError::Unreachable;
        QTest::newRow("any other") << EINVAL << TransportError::Other;
    }
    void eachErrorOfTheSystemIsOneOfThose()
    {
        QFETCH(int, errorNumber);
        QFETCH(TransportError, error);
        QCOMPARE(transportErrorOf(errorNumber), error);
    }

    void eachErrorOfASocketIsOneOfThose_data()
    {
        QTest::addColumn<QAbstractSocket::SocketError>("socketError");
        QTest::addColumn<TransportError>("error");
        QTest::newRow("refused") << QAbstractSocket::ConnectionRefusedError
                                 << TransportError::Refused;
        QTest::newRow("closed") << QAbstractSocket::RemoteHostClosedError
                                << TransportError::ConnectionLost;
        QTest::newRow("timed out")
            << QAbstractSocket::SocketTimeoutError << TransportError::TimedOut;
        QTest::newRow("out of reach")
            << QAbstractSocket::NetworkError << TransportError::Unreachable;
        QTest::newRow("forbidden")
            << QAbstractSocket::SocketAccessError << TransportError::Unreachable;
        QTest::newRow("too many connections")
            << QAbstractSocket::SocketResourceError << TransportError::Unreachable;
        QTest::newRow("handshake")
            << QAbstractSocket::SslHandshakeFailedError << TransportError::TlsFailed;
        QTest::newRow("no TLS library")
            << QAbstractSocket::SslInternalError << TransportError::TlsFailed;
        QTest::newRow("an authority that is none")
            << QAbstractSocket::SslInvalidUserDataError << TransportError::TlsFailed;
        QTest::newRow("any other") << QAbstractSocket::UnknownSocketError << TransportError::Other;
    }
    void eachErrorOfASocketIsOneOfThose()
    {
        QFETCH(QAbstractSocket::SocketError, socketError);
        QFETCH(TransportError, error);
        QCOMPARE(transportErrorOf(socketError), error);
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

    // What real sockets do with TLS. What they do without it, quota_fetch_client_test holds.

    void aServerThatNeverShakesHands()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QCOMPARE(failureAt(secure(server.serverPort()), 200ms), u"The request timed out."_s);
    }

    void aPlainServerWhereASecureOneIsExpected()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        answerWith(server, [](QTcpSocket &socket) {
            socket.write("HTTP/1.1 400 Bad Request\r\nContent-Length: 0\r\n\r\n");
        });
        QCOMPARE(failureAt(secure(server.serverPort())),
            u"A secure connection to the server could not be made."_s);
    }

private:
    static QuotaRequest secure(quint16 port)
    {
        return {.port = port,
            .bytes = "POST / HTTP/1.1\r\nContent-Length: 2\r\n\r\n{}",
            .overTls = true};
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

    /// Why a request failed; empty when it did not.
    static QString failureAt(const QuotaRequest &request, std::chrono::milliseconds time = 20s)
    {
        QuotaExchange exchange(request, {.time = time, .body = 1000});
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
