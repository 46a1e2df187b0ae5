#include "service/loopback_connection.h"

#include "service/transport_error_text.h"

#include <QMetaObject>
#include <QSocketNotifier>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace brimwatch::service {
namespace {

/// Received in one turn of the event loop at most.
constexpr qsizetype readAtATime = 64LL * 1024;

/// What of the system differs: on one a flag of each call keeps a connection that was closed from
/// ending the program with a signal, on the other an option of the socket.
#ifdef MSG_NOSIGNAL
constexpr int sendFlags = MSG_NOSIGNAL;
#else
constexpr int sendFlags = 0;
#endif

bool isSetUp(int descriptor)
{
#ifdef SO_NOSIGPIPE
    const int on = 1;
    if (::setsockopt(descriptor, SOL_SOCKET, SO_NOSIGPIPE, &on, sizeof on) != 0)
        return false;
#endif
    // NOLINTBEGIN(cppcoreguidelines-pro-type-vararg): there is no other form of this call
    return ::fcntl(descriptor, F_SETFD, FD_CLOEXEC) == 0
        && ::fcntl(descriptor, F_SETFL, O_NONBLOCK) == 0;
    // NOLINTEND(cppcoreguidelines-pro-type-vararg)
}

/// The call was interrupted or has nothing to do: it is repeated when the socket is ready again.
bool isTemporary(int errorNumber)
{
    return errorNumber == EAGAIN || errorNumber == EWOULDBLOCK || errorNumber == EINTR;
}

/// The daemon has closed its end. What it sent before may still be read.
bool isClosedByPeer(int errorNumber)
{
    return errorNumber == EPIPE || errorNumber == ECONNRESET;
}

} // namespace

LoopbackConnection::LoopbackConnection(
    quint16 port, QByteArray request, ConnectionListener &listener)
    : m_port(port)
    , m_unsent(std::move(request))
    , m_listener(listener)
{
    // Queued: a connection within the machine can fail at once, before anyone listens.
    QMetaObject::invokeMethod(this, &LoopbackConnection::open, Qt::QueuedConnection);
}

LoopbackConnection::~LoopbackConnection()
{
    close();
}

void LoopbackConnection::open()
{
    m_descriptor = ::socket(AF_INET, SOCK_STREAM, 0);
    if (m_descriptor < 0 || !isSetUp(m_descriptor)) {
        fail(errno);
        return;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(m_port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0
        && errno != EINPROGRESS) {
        fail(errno);
        return;
    }
    m_writable = new QSocketNotifier(m_descriptor, QSocketNotifier::Write, this);
    connect(m_writable, &QSocketNotifier::activated, this, &LoopbackConnection::handleWritable);
    m_readable = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    m_readable->setEnabled(false);
    connect(m_readable, &QSocketNotifier::activated, this, &LoopbackConnection::handleReadable);
}

void LoopbackConnection::handleWritable()
{
    if (!m_connected) {
        int errorNumber = 0;
        socklen_t size = sizeof errorNumber;
        if (::getsockopt(m_descriptor, SOL_SOCKET, SO_ERROR, &errorNumber, &size) != 0)
            errorNumber = errno;
        if (errorNumber != 0) {
            fail(errorNumber);
            return;
        }
        m_connected = true;
        m_readable->setEnabled(true);
    }
    send();
}

void LoopbackConnection::send()
{
    const auto sent = ::send(
        m_descriptor, m_unsent.constData(), static_cast<std::size_t>(m_unsent.size()), sendFlags);
    if (sent >= 0)
        m_unsent.remove(0, sent);
    else if (isClosedByPeer(errno))
        // It may have answered before it read all of the request.
        m_unsent.clear();
    else if (!isTemporary(errno)) {
        fail(errno);
        return;
    }
    m_writable->setEnabled(!m_unsent.isEmpty());
}

void LoopbackConnection::handleReadable()
{
    QByteArray bytes(readAtATime, Qt::Uninitialized);
    const auto count
        = ::recv(m_descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()), 0);
    // Nothing follows the calls of the listener, which may destroy this.
    if (count > 0) {
        m_listener.received(QByteArrayView(bytes.constData(), count));
    } else if (count == 0 || isClosedByPeer(errno)) {
        close();
        m_listener.closed();
    } else if (!isTemporary(errno)) {
        fail(errno);
    }
}

void LoopbackConnection::fail(int errorNumber)
{
    close();
    m_listener.failed(transportErrorText(transportErrorOf(errorNumber)));
}

void LoopbackConnection::close()
{
    for (QSocketNotifier *notifier : {m_readable, m_writable}) {
        if (notifier != nullptr) {
            notifier->setEnabled(false);
            // This may run within its signal. Without a parent, as the connection may be gone
            // first.
            notifier->setParent(nullptr);
            notifier->deleteLater();
        }
    }
    m_readable = nullptr;
    m_writable = nullptr;
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

} // namespace brimwatch::service
