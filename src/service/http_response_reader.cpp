#include "service/http_response_reader.h"

#include <QList>

#include <algorithm>
#include <limits>
#include <utility>

namespace brimwatch::service {
namespace {

constexpr QByteArrayView protocol{"HTTP/1."};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// Whether a field's name may hold it: RFC 9110, section 5.6.2.
bool isTokenCharacter(char c)
{
    constexpr QByteArrayView others{"!#$%&'*+-.^_`|~"};
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || others.contains(c);
}

/// The length that a text says; the largest number when it is larger than that. Absent when the
/// text is no number.
std::optional<qint64> lengthIn(QByteArrayView text, int base)
{
    if (text.isEmpty())
        return std::nullopt;
    constexpr auto largest = std::numeric_limits<qint64>::max();
    qint64 length = 0;
    for (const char c : text) {
        int digit = 0;
        if (isDigit(c))
            digit = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else
            return std::nullopt;
        length = length > (largest - digit) / base ? largest : length * base + digit;
    }
    return length;
}

} // namespace

HttpResponseReader::State HttpResponseReader::feed(QByteArrayView bytes)
{
    while (m_state == State::Unfinished && !bytes.isEmpty()) {
        if (m_expected == Expected::LengthOfBody || m_expected == Expected::BodyToTheEnd
            || m_expected == Expected::ChunkData) {
            bytes = bytes.sliced(feedBody(bytes));
        } else {
            feedLine(bytes.front());
            bytes = bytes.sliced(1);
        }
    }
    return m_state;
}

HttpResponseReader::State HttpResponseReader::end()
{
    if (m_state == State::Unfinished)
        finish(m_expected == Expected::BodyToTheEnd ? State::Complete : State::Truncated);
    return m_state;
}

qsizetype HttpResponseReader::feedBody(QByteArrayView bytes)
{
    if (m_expected == Expected::BodyToTheEnd) {
        if (bytes.size() > m_limits.body - m_body.size())
            finish(State::TooLarge);
        else
            m_body += bytes;
        return bytes.size();
    }
    const auto size = static_cast<qsizetype>(std::min<qint64>(bytes.size(), m_left));
    m_body += bytes.first(size);
    m_left -= size;
    if (m_left == 0) {
        if (m_expected == Expected::ChunkData)
            m_expected = Expected::ChunkEnd;
        else
            finish(State::Complete);
    }
    return size;
}

void HttpResponseReader::feedLine(char c)
{
    if (m_expected == Expected::ChunkLine || m_expected == Expected::ChunkEnd) {
        // One byte of body can come with hundreds of bytes around it.
        if (++m_framingSize > m_limits.body + m_limits.chunkLine) {
            finish(State::TooLarge);
            return;
        }
        if (m_line.size() == m_limits.chunkLine && c != '\n') {
            finish(State::Malformed);
            return;
        }
    } else if (++m_headSize > m_limits.head) {
        finish(State::Malformed);
        return;
    }
    if (c != '\n') {
        m_line += c;
        // A server of another protocol may wait for more from us and never end.
        if (m_expected == Expected::StatusLine && m_line.size() <= protocol.size()
            && !protocol.startsWith(m_line))
            finish(State::Malformed);
        return;
    }
    readLine();
    m_line.resize(0); // Not clear(): the next line uses the memory again.
}

void HttpResponseReader::readLine()
{
    const bool framing = m_expected == Expected::ChunkLine || m_expected == Expected::ChunkEnd;
    if (!endLine(framing ? LineEnd::Strict : LineEnd::Lenient)) {
        finish(State::Malformed);
        return;
    }
    switch (m_expected) {
    case Expected::StatusLine:
        readStatusLine();
        break;
    case Expected::Field:
    case Expected::TrailerField:
        readFieldLine();
        break;
    case Expected::ChunkLine:
        readChunkLine();
        break;
    case Expected::ChunkEnd:
        if (m_line.isEmpty())
            m_expected = Expected::ChunkLine;
        else
            finish(State::Malformed);
        break;
    case Expected::LengthOfBody:
    case Expected::BodyToTheEnd:
    case Expected::ChunkData:
        Q_UNREACHABLE();
    }
}

/// Removes the carriage return. False when the line is malformed.
bool HttpResponseReader::endLine(LineEnd lineEnd)
{
    if (m_line.endsWith('\r'))
        m_line.chop(1);
    else if (lineEnd == LineEnd::Strict)
        return false;
    return !m_line.contains('\r') && !m_line.contains('\0');
}

void HttpResponseReader::readStatusLine()
{
    // "HTTP/1.1 200 OK"; the blank behind the number is required, and often missing.
    const QByteArrayView line(m_line);
    constexpr auto version = protocol.size();
    constexpr auto code = version + 2;
    constexpr auto reason = code + 3;
    const bool isWellFormed = line.size() >= reason && line.startsWith(protocol)
        && isDigit(line[version]) && line[version + 1] == ' ' && line[code] != '0'
        && std::all_of(line.begin() + code, line.begin() + reason, isDigit)
        && (line.size() == reason || line[reason] == ' ');
    if (!isWellFormed) {
        finish(State::Malformed);
        return;
    }
    m_oldProtocol = line[version] == '0';
    m_statusCode = static_cast<int>(*lengthIn(line.sliced(code, 3), 10));
    m_expected = Expected::Field;
}

void HttpResponseReader::readFieldLine()
{
    if (!m_line.isEmpty() && isBlank(m_line.front())) {
        if (m_field)
            *m_field += ' ' + m_line.trimmed();
        else
            finish(State::Malformed);
        return;
    }
    if (m_field)
        readField();
    m_field.reset();
    if (m_state != State::Unfinished)
        return;
    if (!m_line.isEmpty())
        m_field = m_line;
    else if (m_expected == Expected::TrailerField)
        finish(State::Complete);
    else
        endHead();
}

void HttpResponseReader::readField()
{
    const QByteArrayView field(*m_field);
    const auto colon = field.indexOf(':');
    if (colon <= 0 || !std::all_of(field.begin(), field.begin() + colon, isTokenCharacter)) {
        finish(State::Malformed);
        return;
    }
    // A trailer comes too late to set the length of the body.
    if (m_expected == Expected::TrailerField)
        return;
    const auto name = field.first(colon);
    const auto value = field.sliced(colon + 1);
    if (name.compare("Content-Length", Qt::CaseInsensitive) == 0)
        readContentLength(value);
    else if (name.compare("Transfer-Encoding", Qt::CaseInsensitive) == 0)
        readTransferEncoding(value);
}

void HttpResponseReader::readContentLength(QByteArrayView value)
{
    // A proxy may have joined several fields into one.
    const auto members = value.toByteArray().split(',');
    for (const QByteArray &member : members) {
        const auto length = lengthIn(member.trimmed(), 10);
        if (!length || (m_contentLength && *m_contentLength != *length)) {
            finish(State::Malformed);
            return;
        }
        m_contentLength = length;
    }
}

void HttpResponseReader::readTransferEncoding(QByteArrayView value)
{
    if (m_chunked || m_oldProtocol
        || value.trimmed().compare("chunked", Qt::CaseInsensitive) != 0) {
        finish(State::Malformed);
        return;
    }
    m_chunked = true;
}

void HttpResponseReader::endHead()
{
    if (m_contentLength && m_chunked) {
        finish(State::Malformed);
        return;
    }
    const auto length = std::exchange(m_contentLength, {});
    const bool chunked = std::exchange(m_chunked, false);
    if (m_statusCode < 200 && m_statusCode != 101) {
        m_expected = Expected::StatusLine;
        return;
    }
    m_status = m_statusCode;
    const bool bodiless = m_statusCode == 101 || m_statusCode == 204 || m_statusCode == 304;
    if (bodiless || length == 0) {
        finish(State::Complete);
    } else if (chunked) {
        m_expected = Expected::ChunkLine;
    } else if (!length) {
        m_expected = Expected::BodyToTheEnd;
    } else if (*length > m_limits.body) {
        finish(State::TooLarge);
    } else {
        m_left = *length;
        m_expected = Expected::LengthOfBody;
    }
}

void HttpResponseReader::readChunkLine()
{
    // A server should send no blanks before an extension, and a client has to accept them: RFC
    // 9112, section 7.1.1.
    const QByteArrayView line(m_line);
    const auto extension = line.indexOf(';');
    auto text = extension < 0 ? line : line.first(extension);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    const auto size = lengthIn(text, 16);
    if (!size) {
        finish(State::Malformed);
    } else if (*size > m_limits.body - m_body.size()) {
        finish(State::TooLarge);
    } else if (*size == 0) {
        m_expected = Expected::TrailerField;
    } else {
        m_left = *size;
        m_expected = Expected::ChunkData;
    }
}

void HttpResponseReader::finish(State state)
{
    m_state = state;
    if (state == State::TooLarge)
        m_body.clear();
    m_field.reset();
}

} // namespace brimwatch::service
