// The least that a program costs that asks a daemon once a minute: Qt's event loop on a display,
// one coarse timer, one request over a socket whose answer is read and thrown away.
//
//   bare_poll PORT TOKEN

#include <QGuiApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>

namespace {

void ask(int port, const QByteArray &token)
{
    const int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (descriptor < 0
        || ::connect(descriptor, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        std::abort();
    const QByteArray request
        = "POST /exa.language_server_pb.LanguageServerService/RetrieveUserQuotaSummary HTTP/1.1\r\n"
          "Host: 127.0.0.1\r\nContent-Type: application/json\r\nConnect-Protocol-Version: 1\r\n"
          "x-codeium-csrf-token: "
        + token + "\r\nConnection: close\r\nContent-Length: 2\r\n\r\n{}";
    if (::write(descriptor, request.constData(), static_cast<std::size_t>(request.size()))
        != request.size())
        std::abort();
    auto *notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier, descriptor] {
        std::array<char, 65536> answer;
        if (::read(descriptor, answer.data(), answer.size()) > 0)
            return;
        notifier->setEnabled(false);
        notifier->deleteLater();
        ::close(descriptor);
    });
}

} // namespace

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    if (argc != 3)
        return 2;
    QTimer timer;
    timer.setTimerType(Qt::CoarseTimer);
    timer.callOnTimeout([argv] { ask(std::atoi(argv[1]), argv[2]); });
    timer.start(60'000);
    ask(std::atoi(argv[1]), argv[2]);
    return QGuiApplication::exec();
}
