// Whatever a discovery file says, the request has exactly our lines.
#include "discovery/daemon_info.h"
#include "fuzz.h"
#include "service/quota_request.h"

#include <QJsonDocument>

using namespace brimwatch;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray json(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto daemon = discovery::decodeDaemonInfo(json);
    if (!daemon)
        return 0;
    const auto again
        = discovery::decodeDaemonInfo(QJsonDocument(discovery::encode(*daemon)).toJson());
    fuzz::require(again && again->pid == daemon->pid && again->httpPort == daemon->httpPort
            && again->httpsPort == daemon->httpsPort,
        "an announcement that is written says the same when it is read");

    const auto request = service::quotaRequest(*daemon);
    if (!request)
        return 0;
    const auto port = daemon->httpPort ? daemon->httpPort : daemon->httpsPort;
    fuzz::require(port && request->port == *port, "the request goes to the port that is announced");
    fuzz::require(request->overTls == !daemon->httpPort, "the plain port comes first");

    const auto headEnd = request->bytes.indexOf("\r\n\r\n");
    fuzz::require(headEnd >= 0 && request->bytes.mid(headEnd + 4) == service::quotaRequestBody,
        "behind the first blank line is our body");
    const QByteArray head = request->bytes.left(headEnd);
    fuzz::require(!head.contains('\0') && head.count('\r') == head.count("\r\n")
            && head.count('\n') == head.count("\r\n"),
        "a line ends with CR LF alone");
    const QByteArrayList expected{
        "POST /exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary HTTP/1.1",
        "Host: 127.0.0.1:" + QByteArray::number(qint64{*port}), "Content-Type: application/json",
        "Connect-Protocol-Version: 1", "x-codeium-csrf-token: " + daemon->csrfToken->toUtf8(),
        // NOLINTNEXTLINE(bugprone-suspicious-missing-comma): one text.
        "User-Agent: Brimwatch/" BRIMWATCH_VERSION, "Accept-Encoding: identity",
        "Connection: close", "Content-Length: 2"};
    QByteArrayList lines;
    for (qsizetype start = 0; start <= head.size();) {
        auto end = head.indexOf("\r\n", start);
        end = end < 0 ? head.size() : end;
        lines.append(head.mid(start, end - start));
        start = end + 2;
    }
    // A port without its own place in an address is left out of the host: 80 of http.
    QByteArrayList withoutPort = expected;
    withoutPort[1] = "Host: 127.0.0.1";
    fuzz::require(lines == expected || lines == withoutPort, "the head has exactly our lines");
    return 0;
}
