#include "misbehaviour.h"

#include <QSslSocket>
#include <QTcpSocket>
#include <QTimer>

#define ZLIB_CONST // Else zlib declares its input as if it wrote there.
#include <zlib.h>

#include <algorithm>

namespace brimwatch::sample {

using namespace Qt::Literals::StringLiterals;

const QList<MisbehaviourName> &misbehaviourNames()
{
    static const QList<MisbehaviourName> names{
        {.name = u"refuse-token"_s,
            .what = u"answer 401 whatever the token"_s,
            .misbehaviour = Misbehaviour::RefuseToken},
        {.name = u"status-500"_s,
            .what = u"answer 500 with a Connect error"_s,
            .misbehaviour = Misbehaviour::Status500},
        {.name = u"status-500-hang"_s,
            .what = u"answer 500 with a body that never ends"_s,
            .misbehaviour = Misbehaviour::Status500Hang},
        {.name = u"status-204"_s,
            .what = u"answer 204 without a body"_s,
            .misbehaviour = Misbehaviour::Status204},
        {.name = u"redirect"_s,
            .what = u"answer 302 to --redirect-to"_s,
            .misbehaviour = Misbehaviour::Redirect},
        {.name = u"hang"_s,
            .what = u"read the request and never answer"_s,
            .misbehaviour = Misbehaviour::Hang},
        {.name = u"dribble"_s,
            .what = u"answer 200, then a body of one byte a second that never ends"_s,
            .misbehaviour = Misbehaviour::Dribble},
        {.name = u"dribble-header"_s,
            .what = u"send a header of one byte a second that never ends"_s,
            .misbehaviour = Misbehaviour::DribbleHeader},
        {.name = u"close-early"_s,
            .what = u"close after reading the request"_s,
            .misbehaviour = Misbehaviour::CloseEarly},
        {.name = u"close-mid-body"_s,
            .what = u"close after half of the body"_s,
            .misbehaviour = Misbehaviour::CloseMidBody},
        {.name = u"rubbish"_s,
            .what = u"answer with what is not HTTP, and close"_s,
            .misbehaviour = Misbehaviour::Rubbish},
        {.name = u"rubbish-body"_s,
            .what = u"answer 200 with what is not JSON"_s,
            .misbehaviour = Misbehaviour::RubbishBody},
        {.name = u"empty-body"_s,
            .what = u"answer 200 with an empty body"_s,
            .misbehaviour = Misbehaviour::EmptyBody},
        {.name = u"connect-error-body"_s,
            .what = u"answer 200 with a Connect error"_s,
            .misbehaviour = Misbehaviour::ConnectErrorBody},
        {.name = u"huge"_s,
            .what = u"answer properly, with blanks behind it up to 64 MiB"_s,
            .misbehaviour = Misbehaviour::Huge},
        {.name = u"huge-header"_s,
            .what = u"answer properly, with a header field of 8 MiB"_s,
            .misbehaviour = Misbehaviour::HugeHeader},
        {.name = u"flood-header"_s,
            .what = u"send header fields without end, as fast as they are taken"_s,
            .misbehaviour = Misbehaviour::FloodHeader},
        {.name = u"flood-continue"_s,
            .what = u"say \"100 Continue\" without end, as fast as it is taken"_s,
            .misbehaviour = Misbehaviour::FloodContinue},
        {.name = u"flood-chunks"_s,
            .what = u"answer 200 with chunks of 64 KiB without end, as fast as they are taken"_s,
            .misbehaviour = Misbehaviour::FloodChunks},
        {.name = u"flood-tiny-chunks"_s,
            .what = u"the same with chunks of one byte"_s,
            .misbehaviour = Misbehaviour::FloodTinyChunks},
        {.name = u"gzip"_s,
            .what = u"answer properly, in a gzip encoding that nobody asked for"_s,
            .misbehaviour = Misbehaviour::Gzip},
    };
    return names;
}

std::optional<Misbehaviour> misbehaviourNamed(const QString &name)
{
    const auto &names = misbehaviourNames();
    const auto found = std::find_if(
        names.cbegin(), names.cend(), [&name](const auto &known) { return known.name == name; });
    return found == names.cend() ? std::nullopt : std::optional(found->misbehaviour);
}

void dribble(QTcpSocket *socket, const QByteArray &atOnce, const QByteArray &slowly, char filler,
    std::chrono::milliseconds interval)
{
    socket->write(atOnce);
    auto *timer = new QTimer(socket);
    QObject::connect(timer, &QTimer::timeout, socket, [=, sent = qsizetype(0)]() mutable {
        const char byte = sent < slowly.size() ? slowly.at(sent) : filler;
        ++sent;
        socket->write(&byte, 1);
    });
    QObject::connect(socket, &QTcpSocket::disconnected, timer, &QTimer::stop);
    timer->start(interval);
}

void stream(
    QTcpSocket *socket, const QByteArray &head, char filler, qint64 filling, const QByteArray &tail)
{
    constexpr qsizetype chunkSize = 256LL * 1024;

    socket->write(head);
    const auto pump = [=, chunk = QByteArray(chunkSize, filler), left = filling]() mutable {
        // Writing may announce written bytes in its turn, which comes back here: hence the check
        // each time round.
        while (left > 0 && socket->bytesToWrite() < chunkSize && socket->isOpen()) {
            const auto size = std::min(left, qint64(chunk.size()));
            left -= size;
            socket->write(chunk.constData(), size);
            if (left == 0)
                socket->write(tail);
        }
    };
    // An object of its own, so that the answer to a later request on this connection finds no pump
    // at work.
    auto *work = new QObject(socket);
    QObject::connect(socket, &QTcpSocket::bytesWritten, work, pump);
}

void flood(QTcpSocket *socket, const QByteArray &head, const QByteArray &piece)
{
    constexpr qsizetype ahead = 256LL * 1024;

    // Little pieces would cost this side more than the other.
    const QByteArray pieces = piece.repeated(std::max<qsizetype>(ahead / piece.size(), 1));
    auto *work = new QObject(socket);
    const auto *secure = qobject_cast<QSslSocket *>(socket);
    // What a secure socket has encrypted counts as written long before anybody takes it.
    const auto pump = [socket, secure, pieces] {
        const auto waiting
            = socket->bytesToWrite() + (secure != nullptr ? secure->encryptedBytesToWrite() : 0);
        if (waiting < ahead && socket->state() == QAbstractSocket::ConnectedState)
            socket->write(pieces);
    };
    if (secure != nullptr)
        QObject::connect(secure, &QSslSocket::encryptedBytesWritten, work, pump);
    else
        QObject::connect(socket, &QTcpSocket::bytesWritten, work, pump);
    socket->write(head);
}

void sendAndClose(QTcpSocket *socket, const QByteArray &bytes)
{
    if (!bytes.isEmpty())
        socket->write(bytes);
    socket->disconnectFromHost();
}

QByteArray gzipped(const QByteArray &bytes)
{
    constexpr int gzipWindow = MAX_WBITS + 16;
    constexpr int defaultMemory = 8;

    z_stream deflater{};
    if (deflateInit2(&deflater, Z_DEFAULT_COMPRESSION, Z_DEFLATED, gzipWindow, defaultMemory,
            Z_DEFAULT_STRATEGY)
        != Z_OK)
        qFatal("zlib gave no compressor");
    QByteArray result(qsizetype(deflateBound(&deflater, uLong(bytes.size()))), '\0');
    deflater.next_in = reinterpret_cast<const Bytef *>(bytes.constData());
    deflater.avail_in = uInt(bytes.size());
    deflater.next_out = reinterpret_cast<Bytef *>(result.data());
    deflater.avail_out = uInt(result.size());
    [[maybe_unused]] const int outcome = deflate(&deflater, Z_FINISH);
    Q_ASSERT(outcome == Z_STREAM_END);
    result.truncate(qsizetype(deflater.total_out));
    deflateEnd(&deflater);
    return result;
}

} // namespace brimwatch::sample
