#include "service/tls/tls_errors.h"

#include <algorithm>
#include <array>

namespace brimwatch::service {
namespace {

using namespace Qt::Literals::StringLiterals;

struct CertificateFaultText {
    QSslError::SslError fault = QSslError::NoError;
    QLatin1StringView text;
};

constexpr auto certificateFaultTexts = std::to_array<CertificateFaultText>({
    {.fault = QSslError::CertificateExpired,
        .text
        = "A secure connection to the server could not be made: its certificate has expired."_L1},
    {.fault = QSslError::CertificateNotYetValid,
        .text
        = "A secure connection to the server could not be made: its certificate is not valid yet."_L1},
    {.fault = QSslError::HostNameMismatch,
        .text
        = "A secure connection to the server could not be made: its certificate is for another server."_L1},
    {.fault = QSslError::NoPeerCertificate,
        .text = "A secure connection to the server could not be made: it has no certificate."_L1},
    {.fault = QSslError::CertificateRevoked,
        .text
        = "A secure connection to the server could not be made: its certificate was revoked."_L1},
});

constexpr auto notTrusted
    = "A secure connection to the server could not be made: its certificate is not trusted."_L1;

} // namespace

TransportError transportErrorOf(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::ConnectionRefusedError:
        return TransportError::Refused;
    case QAbstractSocket::RemoteHostClosedError:
        return TransportError::ConnectionLost;
    case QAbstractSocket::SocketTimeoutError:
        return TransportError::TimedOut;
    // The host is out of reach, a firewall forbids the connection, or there are too many.
    case QAbstractSocket::NetworkError:
    case QAbstractSocket::SocketAccessError:
    case QAbstractSocket::SocketResourceError:
        return TransportError::Unreachable;
    // The latter two: there is no TLS library, or it rejects its configuration.
    case QAbstractSocket::SslHandshakeFailedError:
    case QAbstractSocket::SslInternalError:
    case QAbstractSocket::SslInvalidUserDataError:
        return TransportError::TlsFailed;
    default:
        return TransportError::Other;
    }
}

QString certificateFaultText(const QList<QSslError> &faults)
{
    // The order of the faults decides, not that of the table.
    for (const QSslError &fault : faults) {
        const auto *row = std::find_if(certificateFaultTexts.begin(), certificateFaultTexts.end(),
            [&fault](const CertificateFaultText &candidate) {
                return candidate.fault == fault.error();
            });
        if (row != certificateFaultTexts.end())
            return row->text;
    }
    return notTrusted;
}

} // namespace brimwatch::service
