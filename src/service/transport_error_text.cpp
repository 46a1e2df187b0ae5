#include "service/transport_error_text.h"

#include <algorithm>
#include <array>

namespace brimwatch::service {
namespace {

using namespace Qt::Literals::StringLiterals;

struct TransportErrorText {
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QLatin1StringView text;
};

constexpr auto transportErrorTexts = std::to_array<TransportErrorText>({
    {.error = QNetworkReply::ConnectionRefusedError, .text = "Could not connect to the server."_L1},
    {.error = QNetworkReply::RemoteHostClosedError, .text = "The network connection was lost."_L1},
    // What a connection lost before the answer ends with when the request is not to be repeated.
    {.error = QNetworkReply::ContentReSendError, .text = "The network connection was lost."_L1},
    {.error = QNetworkReply::TemporaryNetworkFailureError,
        .text = "The network connection was lost."_L1},
    {.error = QNetworkReply::TimeoutError, .text = "The request timed out."_L1},
    {.error = QNetworkReply::OperationCanceledError, .text = "The request was cancelled."_L1},
    {.error = QNetworkReply::HostNotFoundError, .text = "The server could not be found."_L1},
    {.error = QNetworkReply::NetworkSessionFailedError, .text = "There is no network."_L1},
    // The library keeps none of its own for a host or network out of reach.
    {.error = QNetworkReply::UnknownNetworkError, .text = "The server could not be reached."_L1},
    {.error = QNetworkReply::SslHandshakeFailedError,
        .text = "A secure connection to the server could not be made."_L1},
    {.error = QNetworkReply::ProtocolFailure, .text = "The server's answer made no sense."_L1},
    {.error = QNetworkReply::ProtocolUnknownError,
        .text = "The server cannot be asked in this way."_L1},
    {.error = QNetworkReply::ProxyConnectionRefusedError,
        .text = "Could not connect to the proxy server."_L1},
});

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

QString transportErrorText(QNetworkReply::NetworkError error)
{
    const auto *row = std::find_if(transportErrorTexts.begin(), transportErrorTexts.end(),
        [error](const TransportErrorText &candidate) { return candidate.error == error; });
    if (row == transportErrorTexts.end())
        return u"The request failed."_s;
    return row->text;
}

QString certificateFaultText(const QList<QSslError> &faults)
{
    // In the order of the faults, the order of the table only tells them apart.
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
