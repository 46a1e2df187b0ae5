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

/// A length, which may be larger than any limit: then the largest number stands for it. Absent when
/// it is none.
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
        conclude(m_expected == Expected::BodyToTheEnd ? State::Whole : State::Cut);
    return m_state;
}

qsizetype HttpResponseReader::feedBody(QByteArrayView bytes)
{
    if (m_expected == Expected::BodyToTheEnd) {
        if (bytes.size() > m_limits.body - m_body.size())
            conclude(State::TooLong);
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
            conclude(State::Whole);
    }
    return size;
}

void HttpResponseReader::feedLine(char c)
{
    if (m_expected == Expected::ChunkLine || m_expected == Expected::ChunkEnd) {
        // One byte of body can cost hundreds that are none.
        if (++m_framingSize > m_limits.body + m_limits.chunkLine) {
            conclude(State::TooLong);
            return;
        }
        if (m_line.size() == m_limits.chunkLine && c != '\n') {
            conclude(State::Senseless);
            return;
        }
    } else if (++m_headSize > m_limits.head) {
        conclude(State::Senseless);
        return;
    }
    if (c != '\n') {
        m_line += c;
        // Who speaks another protocol may wait for us to say more.
        if (m_expected == Expected::StatusLine && m_line.size() <= protocol.size()
            && !protocol.startsWith(m_line))
            conclude(State::Senseless);
        return;
    }
    readLine();
    m_line.resize(0); // Not clear(): the next line wants the memory again.
}

void HttpResponseReader::readLine()
{
    const bool framing = m_expected == Expected::ChunkLine || m_expected == Expected::ChunkEnd;
    if (!endLine(framing ? LineEnd::Strict : LineEnd::Lenient)) {
        conclude(State::Senseless);
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
            conclude(State::Senseless);
        break;
    case Expected::LengthOfBody:
    case Expected::BodyToTheEnd:
    case Expected::ChunkData:
        Q_UNREACHABLE();
    }
}

/// Takes the carriage return off. False when the line is none.
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
    // "HTTP/1.1 200 OK"; the blank behind the number belongs there, and is often left out.
    const QByteArrayView line(m_line);
    constexpr auto version = protocol.size();
    constexpr auto code = version + 2;
    constexpr auto reason = code + 3;
    const bool sense = line.size() >= reason && line.startsWith(protocol) && isDigit(line[version])
        && line[version + 1] == ' ' && line[code] != '0'
        && std::all_of(line.begin() + code, line.begin() + reason, isDigit)
        && (line.size() == reason || line[reason] == ' ');
    if (!sense) {
        conclude(State::Senseless);
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
            conclude(State::Senseless);
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
        conclude(State::Whole);
    else
        endHead();
}

void HttpResponseReader::readField()
{
    const QByteArrayView field(*m_field);
    const auto colon = field.indexOf(':');
    if (colon <= 0 || !std::all_of(field.begin(), field.begin() + colon, isTokenCharacter)) {
        conclude(State::Senseless);
        return;
    }
    // It is too late for a trailer to say how long the body is.
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
    // Something on the way may have put several into one field.
    const auto members = value.toByteArray().split(',');
    for (const QByteArray &member : members) {
        const auto length = lengthIn(member.trimmed(), 10);
        if (!length || (m_contentLength && *m_contentLength != *length)) {
            conclude(State::Senseless);
            return;
        }
        m_contentLength = length;
    }
}

void HttpResponseReader::readTransferEncoding(QByteArrayView value)
{
    if (m_chunked || m_oldProtocol
        || value.trimmed().compare("chunked", Qt::CaseInsensitive) != 0) {
        conclude(State::Senseless);
        return;
    }
    m_chunked = true;
}

void HttpResponseReader::endHead()
{
    if (m_contentLength && m_chunked) {
        conclude(State::Senseless);
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
        conclude(State::Whole);
    } else if (chunked) {
        m_expected = Expected::ChunkLine;
    } else if (!length) {
        m_expected = Expected::BodyToTheEnd;
    } else if (*length > m_limits.body) {
        conclude(State::TooLong);
    } else {
        m_left = *length;
        m_expected = Expected::LengthOfBody;
    }
}

void HttpResponseReader::readChunkLine()
{
    // Blanks before an extension are bad manners, and to be borne.
    const QByteArrayView line(m_line);
    const auto extension = line.indexOf(';');
    auto text = extension < 0 ? line : line.first(extension);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    const auto size = lengthIn(text, 16);
    if (!size) {
        conclude(State::Senseless);
    } else if (*size > m_limits.body - m_body.size()) {
        conclude(State::TooLong);
    } else if (*size == 0) {
        m_expected = Expected::TrailerField;
    } else {
        m_left = *size;
        m_expected = Expected::ChunkData;
    }
}

void HttpResponseReader::conclude(State state)
{
    m_state = state;
    if (state == State::TooLong)
        m_body.clear();
    m_field.reset();
}

} // namespace brimwatch::service
