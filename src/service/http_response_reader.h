#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace brimwatch::service {

/// Reads one HTTP/1 answer to a POST, in pieces of any size. Knows no socket.
///
/// It follows RFC 9112, strictly where lengths are concerned, and never takes more than its limits:
/// - Interim answers (1xx) are skipped. 101 is final: no other protocol was asked for.
/// - A line of the head may end with a bare line feed; a line between chunks may not. A carriage
///   return or NUL within a line is malformed.
/// - A folded field is one field with a blank for the fold. A fold before the first field is
///   malformed, and so is a name that is no token.
/// - Content-Length may be repeated with the same value. Different values, and values that are no
///   plain number, are malformed; so is Content-Length beside Transfer-Encoding.
/// - Transfer-Encoding must be "chunked", once and in HTTP/1.1: nothing else was asked for.
/// - 204 and 304 have no body. Without a length the body ends with the connection.
/// - A Content-Encoding is not decoded.
///
/// Bytes behind the end of the answer are ignored.
class HttpResponseReader {
public:
    struct Limits {
        /// Of the body, all chunks together. The lines between chunks may take up as much again.
        qint64 body;
        /// Of all other lines together: interim answers, the head, the trailer.
        qsizetype head = qsizetype{64} * 1024;
        /// Of the line before a chunk, with its size and its extensions.
        qsizetype chunkLine = 256;
    };

    enum class State {
        Unfinished, ///< More bytes are needed.
        Complete,
        Truncated, ///< The connection ended before the answer did.
        Malformed, ///< Not HTTP, or with more head than a limit allows.
        TooLarge, ///< The body is larger than the limit, by its length or by what came. Nothing is
                  ///< kept of it.
    };

    explicit HttpResponseReader(Limits limits)
        : m_limits(limits)
    {
    }

    /// Takes the next bytes. A state other than Unfinished is final.
    State feed(QByteArrayView bytes);

    /// The connection ended.
    State end();

    State state() const { return m_state; }

    /// The status, once the head of the final answer is read. It stays when the body fails.
    std::optional<int> status() const { return m_status; }

    /// The body as far as it was read.
    const QByteArray &body() const { return m_body; }

private:
    enum class Expected {
        StatusLine,
        Field, ///< Or the empty line that ends them.
        LengthOfBody, ///< A body of known length.
        BodyToTheEnd,
        ChunkLine,
        ChunkData,
        ChunkEnd, ///< The line end behind a chunk.
        TrailerField,
    };
    enum class LineEnd { Lenient, Strict };

    void feedLine(char c);
    qsizetype feedBody(QByteArrayView bytes);
    void readLine();
    bool endLine(LineEnd lineEnd);
    void readStatusLine();
    void readFieldLine();
    void readField();
    void readContentLength(QByteArrayView value);
    void readTransferEncoding(QByteArrayView value);
    void endHead();
    void readChunkLine();
    void finish(State state);

    Limits m_limits;
    State m_state = State::Unfinished;
    Expected m_expected = Expected::StatusLine;
    QByteArray m_line; ///< As far as it was read.
    qsizetype m_headSize = 0;
    qint64 m_framingSize = 0;

    int m_statusCode = 0; ///< Of the head that is being read.
    bool m_oldProtocol = false; ///< HTTP/1.0
    std::optional<QByteArray> m_field; ///< The last one, which the next line may continue.
    std::optional<qint64> m_contentLength;
    bool m_chunked = false;

    std::optional<int> m_status;
    qint64 m_left = 0; ///< Of the body or the chunk.
    QByteArray m_body;
};

} // namespace brimwatch::service
