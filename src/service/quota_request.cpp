#include "service/quota_request.h"

#include <QSslConfiguration>

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
    // These end a header: what follows would be read as one of its own.
    constexpr std::array unspeakable{'\r', '\n', '\0'};
    for (const char c : unspeakable)
        if (bytes.contains(c))
            return std::nullopt;
    return bytes;
}

/// A connection left open is closed soon, and not used again: its daemon may have gone meanwhile,
/// and what is sent on a connection that is being closed is lost.
void keepNoConnection(QNetworkRequest &request)
{
    request.setRawHeader("Connection", "close");
    request.setAttribute(QNetworkRequest::ConnectionCacheExpiryTimeoutSecondsAttribute, 0);
    // A daemon may not heed the header, and the library closes with a delay. It finds open
    // connections by address and this name, which is otherwise for certificates: over https it must
    // stay.
    if (request.url().scheme() == "http"_L1) {
        static int number = 0;
        request.setPeerVerifyName(u"request-"_s + QString::number(++number));
    }
}

QSslConfiguration secureConfiguration(const QList<QSslCertificate> &trusted)
{
    auto configuration = QSslConfiguration::defaultConfiguration();
    // Naming any authority ends the loading of the system's on demand, so that they have to be
    // named as well.
    if (!trusted.isEmpty())
        configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + trusted);
    return configuration;
}

} // namespace

std::optional<QUrl> quotaUrl(const discovery::DaemonInfo &daemon)
{
    const auto port = daemon.httpPort ? daemon.httpPort : daemon.httpsPort;
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

std::optional<QNetworkRequest> quotaRequest(
    const discovery::DaemonInfo &daemon, const QList<QSslCertificate> &trusted)
{
    const auto url = quotaUrl(daemon);
    const auto token = tokenHeader(daemon.csrfToken);
    if (!url || !token)
        return std::nullopt;

    QNetworkRequest request(*url);
    request.setRawHeader("Content-Type", "application/json");
    request.setRawHeader("Connect-Protocol-Version", "1");
    request.setRawHeader("x-codeium-csrf-token", *token);
    request.setRawHeader("User-Agent", "Brimwatch/" BRIMWATCH_VERSION);
    request.setRawHeader("Content-Length", QByteArray::number(quotaRequestBody.size()));
    // With a header of our own the library neither asks for compression nor undoes any.
    request.setRawHeader("Accept-Encoding", "identity");

    request.setAttribute(
        QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::AuthenticationReuseAttribute, QNetworkRequest::Manual);
    request.setAttribute(
        QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    keepNoConnection(request);
    // The body cannot be read a second time: see QuotaExchange.
    request.setAttribute(QNetworkRequest::DoNotBufferUploadDataAttribute, true);
    if (!daemon.httpPort)
        request.setSslConfiguration(secureConfiguration(trusted));
    return request;
}

} // namespace brimwatch::service
