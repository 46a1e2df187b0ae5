#include "service/quota_request.h"

#include <array>

namespace brimwatch::service {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The token as the header's bytes; absent when it cannot be one.
std::optional<QByteArray> tokenHeader(const std::optional<QString> &token)
{
    if (!token || token->isEmpty())
        return std::nullopt;
    QByteArray bytes = token->toUtf8();
    // These end a header field: what follows would be read as another one.
    constexpr std::array forbidden{'\r', '\n', '\0'};
    for (const char c : forbidden)
        if (bytes.contains(c))
            return std::nullopt;
    return bytes;
}

} // namespace

std::optional<QUrl> quotaUrl(const discovery::DaemonInfo &daemon)
{
    const auto port = daemon.askedPort();
    if (!port)
        return std::nullopt;
    QUrl url((daemon.httpPort ? u"http"_s : u"https"_s) % u"://127.0.0.1:"_s
            % QString::number(*port)
            % u"/exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary"_s,
        QUrl::StrictMode);
    if (!url.isValid())
        return std::nullopt;
    return url;
}

std::optional<QuotaRequest> quotaRequest(const discovery::DaemonInfo &daemon)
{
    const auto url = quotaUrl(daemon);
    const auto token = tokenHeader(daemon.csrfToken);
    if (!url || !token)
        return std::nullopt;

    const QByteArray lines = "POST " + url->path(QUrl::FullyEncoded).toLatin1()
        + " HTTP/1.1\r\n"
          "Host: "
        + url->authority(QUrl::FullyEncoded).toLatin1()
        + "\r\n"
          "Content-Type: application/json\r\n"
          "Connect-Protocol-Version: 1\r\n"
          "x-codeium-csrf-token: "
        + *token
        + "\r\n"
          "User-Agent: Brimwatch/" BRIMWATCH_VERSION "\r\n"
          "Accept-Encoding: identity\r\n"
          "Connection: close\r\n"
          "Content-Length: "
        + QByteArray::number(quotaRequestBody.size()) + "\r\n\r\n";
    return QuotaRequest{
        .port = static_cast<quint16>(url->port()),
        .bytes = lines + quotaRequestBody.toByteArray(),
        .overTls = !daemon.httpPort,
    };
}

} // namespace brimwatch::service
