#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

namespace brimwatch::service {

/// Reads one HTTP/1 answer to a POST, in whatever pieces it comes. Knows no socket.
///
/// It is RFC 9112 read strictly where lengths are concerned, and never takes more than its limits:
/// - Interim answers (1xx) are skipped. 101 is none: nobody asked for another protocol.
/// - A line of the head may end with a bare line feed; framing between chunks may not. A carriage
///   return or NUL within a line makes no sense.
/// - A folded field is one field with a blank for the fold; a fold before the first field makes no
///   sense, and neither does a name that is no token.
/// - Content-Length may be repeated if all say the same. Contradicting ones, and what is not a
///   plain number, make no sense; so does Content-Length beside Transfer-Encoding.
/// - Transfer-Encoding is "chunked", once and in HTTP/1.1, or the answer makes no sense: nothing
///   else was asked for.
/// - 204 and 304 have no body. Without a length the body ends with the connection.
/// - A Content-Encoding is not undone: the body is what came.
///
/// What comes behind the answer's end is ignored.
class HttpResponseReader {
public:
    struct Limits {
        /// Largest body, with chunks put together. As much again may be spent on what stands
        /// between chunks.
        qint64 body;
        /// For all lines that are no part of the body: interim answers, the head, the trailer.
        qsizetype head = qsizetype{64} * 1024;
        /// For the line before a chunk: its size and what extensions there are.
        qsizetype chunkLine = 256;
    };

    enum class State {
        Unfinished, ///< More has to come.
        Whole,
        Cut, ///< The connection ended before the answer did.
        Senseless, ///< Not HTTP, or with more head than a limit allows.
        TooLong, ///< Of a body beyond the limit, announced or sent. Nothing is kept of it.
    };

    explicit HttpResponseReader(Limits limits)
        : m_limits(limits)
    {
    }

    /// Takes the next bytes. Once the state is not Unfinished, nothing changes it.
    State feed(QByteArrayView bytes);

    /// The connection ended: no more comes.
    State end();

    State state() const { return m_state; }

    /// The status, once the head has come; interim answers have none. Stays what it is when the
    /// body fails.
    std::optional<int> status() const { return m_status; }

    /// The body as far as it came.
    const QByteArray &body() const { return m_body; }

private:
    enum class Expected {
        StatusLine,
        Field, ///< Or the empty line that ends them.
        LengthOfBody, ///< So many bytes of body.
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
    void conclude(State state);

    Limits m_limits;
    State m_state = State::Unfinished;
    Expected m_expected = Expected::StatusLine;
    QByteArray m_line; ///< As far as it came.
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
