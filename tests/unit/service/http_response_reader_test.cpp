#include "service/http_response_reader.h"

#include <QMap>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <optional>
#include <utility>

using namespace brimwatch::service;

using State = HttpResponseReader::State;

namespace {

constexpr qint64 bodyLimit = 1000;
constexpr qsizetype headLimit = 2000;
constexpr qsizetype chunkLineLimit = 64;

/// What came of an answer, in every respect.
struct Outcome {
    State state = State::Unfinished;
    std::optional<int> status;
    QByteArray body;

    bool operator==(const Outcome &) const = default;

    // Found by QCOMPARE alone.
    [[maybe_unused]] friend char *toString(const Outcome &outcome)
    {
        const QByteArray text = "state " + QByteArray::number(static_cast<int>(outcome.state))
            + ", status " + QByteArray::number(outcome.status.value_or(0)) + ", "
            + QByteArray::number(outcome.body.size()) + " bytes of body: " + outcome.body.left(60);
        return qstrdup(text.constData());
    }
};

Outcome came(State state, std::optional<int> status = {}, const QByteArray &body = {})
{
    return {.state = state, .status = status, .body = body};
}

enum class Then { StaysOpen, Closes };

template <typename SizeOfNext>
Outcome readInPieces(const QByteArray &bytes, Then then, SizeOfNext sizeOfNext)
{
    HttpResponseReader reader({.body = bodyLimit, .head = headLimit, .chunkLine = chunkLineLimit});
    QByteArrayView rest(bytes);
    while (!rest.isEmpty()) {
        const auto size = std::min<qsizetype>(sizeOfNext(), rest.size());
        reader.feed(rest.first(size));
        rest = rest.sliced(size);
    }
    if (then == Then::Closes)
        reader.end();
    return {.state = reader.state(), .status = reader.status(), .body = reader.body()};
}

Outcome readWhole(const QByteArray &bytes, Then then)
{
    return readInPieces(bytes, then, [&bytes] { return bytes.size(); });
}

Outcome readByteByByte(const QByteArray &bytes, Then then)
{
    return readInPieces(bytes, then, [] { return qsizetype{1}; });
}

const QByteArray ok = "HTTP/1.1 200 OK\r\n";
const QByteArray okChunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";

} // namespace

class HttpResponseReaderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAnswerIsReadTheSameInWhateverPiecesItComes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<Outcome>("expected");
        const auto open = [](const char *name, const QByteArray &bytes, const Outcome &expected) {
            QTest::newRow(name) << bytes << false << expected;
        };
        const auto closed = [](const char *name, const QByteArray &bytes, const Outcome &expected) {
            QTest::newRow(name) << bytes << true << expected;
        };
        const auto complete
            = [](const QByteArray &body) { return came(State::Complete, 200, body); };
        const auto malformed = came(State::Malformed);
        const auto unfinished = came(State::Unfinished);
        const auto truncated = came(State::Truncated);

        // Lengths
        open("a length", ok + "Content-Length: 2\r\n\r\n{}", complete("{}"));
        open("no body", ok + "Content-Length: 0\r\n\r\n", complete(""));
        open("more than the length", ok + "Content-Length: 2\r\n\r\n{}{}", complete("{}"));
        open("less than the length", ok + "Content-Length: 3\r\n\r\n{}",
            came(State::Unfinished, 200, "{}"));
        closed("closed before the length", ok + "Content-Length: 3\r\n\r\n{}",
            came(State::Truncated, 200, "{}"));
        closed("closed behind the head", ok + "Content-Length: 3\r\n\r\n",
            came(State::Truncated, 200, ""));
        open("the same length twice", ok + "Content-Length: 2\r\ncontent-length:2\r\n\r\n{}",
            complete("{}"));
        open("the same length in one field", ok + "Content-Length: 2, 2\r\n\r\n{}", complete("{}"));
        open("other lengths", ok + "Content-Length: 2\r\nContent-Length: 3\r\n\r\n{}", malformed);
        open("other lengths in one field", ok + "Content-Length: 2, 3\r\n\r\n{}", malformed);
        for (const char *length : {"-2", "+2", "0x2", "2.0", "", "2 2", "two", "2,", "\x02"})
            open(qPrintable(QString::fromLatin1("the length '%1'").arg(QLatin1StringView(length))),
                ok + "Content-Length: " + length + "\r\n\r\n{}", malformed);
        open("leading zeros", ok + "Content-Length: 0002\r\n\r\n{}", complete("{}"));
        open("blanks around", ok + "Content-Length: \t 2 \t\r\n\r\n{}", complete("{}"));
        open("a length of the limit",
            ok + "Content-Length: 1000\r\n\r\n" + QByteArray(bodyLimit, 'x'),
            complete(QByteArray(bodyLimit, 'x')));
        open("a length beyond the limit", ok + "Content-Length: 1001\r\n\r\n",
            came(State::TooLarge, 200, ""));
        open("a length beyond all numbers",
            ok + "Content-Length: 99999999999999999999999999\r\n\r\n{}",
            came(State::TooLarge, 200, ""));
        open("a length that a small number would wrap to",
            ok + "Content-Length: 18446744073709551618\r\n\r\n{}", came(State::TooLarge, 200, ""));

        // To the end of the connection
        open("no length", ok + "\r\n{}", came(State::Unfinished, 200, "{}"));
        closed("no length, and closed", ok + "\r\n{}", complete("{}"));
        closed("no length and no body", ok + "\r\n", complete(""));
        closed("HTTP/1.0", "HTTP/1.0 200 OK\r\n\r\n{}", complete("{}"));
        closed("the limit to the end", ok + "\r\n" + QByteArray(bodyLimit, 'x'),
            complete(QByteArray(bodyLimit, 'x')));
        open("beyond the limit to the end", ok + "\r\n" + QByteArray(bodyLimit + 1, 'x'),
            came(State::TooLarge, 200, ""));

        // Chunks
        open("chunks", okChunked + "1\r\n{\r\n1\r\n}\r\n0\r\n\r\n", complete("{}"));
        open("no chunks", okChunked + "0\r\n\r\n", complete(""));
        open("hexadecimal sizes", okChunked + "a\r\n0123456789\r\nB\r\nabcdefghijk\r\n0\r\n\r\n",
            complete("0123456789abcdefghijk"));
        open("zeros before a size", okChunked + "0002\r\n{}\r\n000\r\n\r\n", complete("{}"));
        open("extensions", okChunked + "2;a=b;c=\"d\"\r\n{}\r\n0 ; e\r\n\r\n", complete("{}"));
        open("a trailer", okChunked + "2\r\n{}\r\n0\r\nA: b\r\nContent-Length: 7\r\n\r\n",
            complete("{}"));
        open("a folded trailer", okChunked + "2\r\n{}\r\n0\r\nA: b\r\n c\r\n\r\n", complete("{}"));
        open("what is no trailer", okChunked + "2\r\n{}\r\n0\r\n{}\r\n\r\n",
            came(State::Malformed, 200, "{}"));
        open("the case of the coding",
            ok + "transfer-encoding:\tCHUNKED \r\n\r\n2\r\n{}\r\n0\r\n\r\n", complete("{}"));
        closed(
            "closed between chunks", okChunked + "2\r\n{}\r\n", came(State::Truncated, 200, "{}"));
        closed("closed within a chunk", okChunked + "3\r\n{}", came(State::Truncated, 200, "{}"));
        closed("closed within a size", okChunked + "3", came(State::Truncated, 200, ""));
        closed("closed before the trailer's end", okChunked + "2\r\n{}\r\n0\r\n",
            came(State::Truncated, 200, "{}"));
        for (const char *size : {"", "g", "-1", "+1", "0x1", "1 1", " 1", ";a", "1\r"})
            open(qPrintable(QString::fromLatin1("the size '%1'").arg(QLatin1StringView(size))),
                okChunked + size + "\r\n{\r\n0\r\n\r\n", came(State::Malformed, 200, ""));
        open("a bare line feed behind a size", okChunked + "2\n{}\r\n0\r\n\r\n",
            came(State::Malformed, 200, ""));
        open("a bare line feed behind a chunk", okChunked + "2\r\n{}\n0\r\n\r\n",
            came(State::Malformed, 200, "{}"));
        open("a chunk longer than its size", okChunked + "1\r\n{}\r\n0\r\n\r\n",
            came(State::Malformed, 200, "{"));
        open("chunks of the limit",
            okChunked + "3e7\r\n" + QByteArray(999, 'x') + "\r\n1\r\nx\r\n0\r\n\r\n",
            complete(QByteArray(bodyLimit, 'x')));
        open("chunks beyond the limit", okChunked + "3e7\r\n" + QByteArray(999, 'x') + "\r\n2\r\n",
            came(State::TooLarge, 200, ""));
        open("a size beyond all numbers", okChunked + "fffffffffffffffffffffffffff\r\n",
            came(State::TooLarge, 200, ""));
        open("a size that a small number would wrap to", okChunked + "10000000000000002\r\n{}\r\n",
            came(State::TooLarge, 200, ""));
        open("a size line of the limit",
            okChunked + "2;" + QByteArray(chunkLineLimit - 3, 'x') + "\r\n{}\r\n0\r\n\r\n",
            complete("{}"));
        open("a size line beyond the limit", okChunked + "2;" + QByteArray(chunkLineLimit - 1, 'x'),
            came(State::Malformed, 200, ""));
        open("more between the chunks than within",
            okChunked + QByteArray("1;" + QByteArray(50, 'x') + "\r\nx\r\n").repeated(20),
            came(State::TooLarge, 200, ""));

        // Contradictions
        open("a length and chunks",
            ok + "Content-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n",
            malformed);
        open("chunks and a length",
            ok + "Transfer-Encoding: chunked\r\nContent-Length: 2\r\n\r\n2\r\n{}\r\n0\r\n\r\n",
            malformed);
        open("chunked twice",
            ok + "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n", malformed);
        for (const char *coding : {"gzip, chunked", "chunked, chunked", "identity", "gzip", ""})
            open(qPrintable(QString::fromLatin1("the coding '%1'").arg(QLatin1StringView(coding))),
                ok + "Transfer-Encoding: " + coding + "\r\n\r\n", malformed);
        open("chunks in HTTP/1.0", "HTTP/1.0 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n",
            malformed);

        // Statuses
        open("another status", "HTTP/1.1 500 Oh\r\nContent-Length: 2\r\n\r\n{}",
            came(State::Complete, 500, "{}"));
        open("the status before the body", "HTTP/1.1 500 Oh\r\n\r\n",
            came(State::Unfinished, 500, ""));
        open("a status of no reason", "HTTP/1.1 200 \r\nContent-Length: 2\r\n\r\n{}",
            complete("{}"));
        open("a status without a blank", "HTTP/1.1 200\r\nContent-Length: 2\r\n\r\n{}",
            complete("{}"));
        open("a reason in another script", "HTTP/1.1 200 \xC3\xB6\r\nContent-Length: 0\r\n\r\n",
            complete(""));
        open("204 has no body", "HTTP/1.1 204 No Content\r\nContent-Length: 5\r\n\r\n",
            came(State::Complete, 204, ""));
        open("304 has no body", "HTTP/1.1 304 X\r\nTransfer-Encoding: chunked\r\n\r\n",
            came(State::Complete, 304, ""));
        open("another protocol", "HTTP/1.1 101 Switching Protocols\r\nUpgrade: x\r\n\r\n\1\2\3",
            came(State::Complete, 101, ""));
        for (const char *line :
            {"HTTP/1.1 20 OK", "HTTP/1.1 2000 OK", "HTTP/1.1 2x0 OK", "HTTP/1.1 099 OK",
                "HTTP/1.1  200 OK", "HTTP/1.1 -20 OK", "HTTP/1.12 200 OK", "HTTP/1. 200 OK",
                "HTTP/2.0 200 OK", "HTTP/2 200 OK", "http/1.1 200 OK", " HTTP/1.1 200 OK",
                "ICY 200 OK", "HTTP/1.1", "HTTP/1.1200 OK", "HTTP/1.1 200\tOK", ""})
            open(qPrintable(
                     QString::fromLatin1("the status line '%1'").arg(QLatin1StringView(line))),
                QByteArray(line) + "\r\n\r\n", malformed);
        open("another protocol that waits for us", "220 m", malformed);
        open("the beginning of a status line", "HTTP/1.", unfinished);
        closed("nothing", "", truncated);
        closed("closed within the status line", "HTTP/1.1 2", truncated);
        closed("closed within the head", ok + "Content-", truncated);
        closed("closed before the head's end", ok + "Content-Length: 0\r\n", truncated);

        // Interim answers
        open("100 before the answer",
            "HTTP/1.1 100 Continue\r\n\r\n" + ok + "Content-Length: 2\r\n\r\n{}", complete("{}"));
        open("interim answers with fields",
            "HTTP/1.1 103 Early Hints\r\nLink: x\r\nContent-Length: 9\r\n\r\n"
            "HTTP/1.1 199 X\r\nTransfer-Encoding: chunked\r\n\r\n"
                + ok + "Content-Length: 2\r\n\r\n{}",
            complete("{}"));
        open("an interim answer alone", "HTTP/1.1 100 Continue\r\n\r\n", unfinished);
        closed("closed behind an interim answer", "HTTP/1.1 100 Continue\r\n\r\n", truncated);
        open("a body behind an interim answer", "HTTP/1.1 100 Continue\r\n\r\n{}", malformed);
        open("interim answers without end", QByteArray("HTTP/1.1 100 X\r\n\r\n").repeated(112),
            malformed);

        // Fields
        open("bare line feeds", "HTTP/1.1 200 OK\nContent-Length: 2\nA: b\n\n{}", complete("{}"));
        open("a folded field", ok + "Content-Length:\r\n 2\r\nA: b\r\n\tc\r\n  \r\n\r\n{}",
            complete("{}"));
        open("a fold between two lengths", ok + "Content-Length: 2\r\n 2\r\n\r\n{}", malformed);
        open("a fold before the first field", ok + " A: b\r\n\r\n", malformed);
        open("fields of no value", ok + "A:\r\nB: \r\nContent-Length: 2\r\n\r\n{}", complete("{}"));
        open("a name of another", ok + "X-Content-Length: 9\r\nContent-Length: 2\r\n\r\n{}",
            complete("{}"));
        for (const char *field : {"A", ": b", "A : b", "A b: c", "(A): b", "\xC3\xB6: b", "A\r: b",
                 "A: b\rc", "A: b\r\r"})
            open(qPrintable(QString::fromLatin1("the field '%1'").arg(QString::fromUtf8(field))),
                ok + field + "\r\nContent-Length: 2\r\n\r\n{}", malformed);
        open("a NUL in a field", ok + QByteArray("A: b\0c\r\n", 8) + "\r\n", malformed);
        open("a NUL in the status line", QByteArray("HTTP/1.1 200 \0\r\n\r\n", 18), malformed);
        const QByteArray end = "\r\nContent-Length: 2\r\n\r\n";
        const QByteArray filler(headLimit - ok.size() - end.size() - 3, 'x');
        open("a head of the limit", ok + "A: " + filler + end + "{}", complete("{}"));
        open("a head beyond the limit", ok + "A: x" + filler + end + "{}", malformed);
        open("a field without end", ok + "A: " + QByteArray(headLimit, 'x'), malformed);
        open("a status line without end", "HTTP/1.1 200 " + QByteArray(headLimit, 'x'), malformed);
        open("fields without end", ok + QByteArray("A: b\r\n").repeated(400), malformed);
        open("trailers without end", okChunked + "0\r\n" + QByteArray("A: b\r\n").repeated(400),
            came(State::Malformed, 200, ""));
        open("a compressed body",
            ok + "Content-Encoding: gzip\r\nContent-Length: 2\r\n\r\n\x1f\x8b",
            complete("\x1f\x8b"));
    }
    void anAnswerIsReadTheSameInWhateverPiecesItComes()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const bool, closes);
        QFETCH(const Outcome, expected);
        const auto then = closes ? Then::Closes : Then::StaysOpen;
        QCOMPARE(readWhole(bytes, then), expected);
        QCOMPARE(readByteByByte(bytes, then), expected);
        for (qsizetype first = 1; first < bytes.size(); ++first) {
            qsizetype next = first;
            const auto inTwo = [&next, &bytes] { return std::exchange(next, bytes.size()); };
            QCOMPARE(readInPieces(bytes, then, inTwo), expected);
        }
    }

    void whatComesAfterTheEndChangesNothing()
    {
        HttpResponseReader reader({.body = bodyLimit});
        QCOMPARE(reader.feed(QByteArray(ok + "Content-Length: 2\r\n\r\n{}")), State::Complete);
        QCOMPARE(reader.feed("HTTP/1.1 500 Oh\r\n\r\n"), State::Complete);
        QCOMPARE(reader.end(), State::Complete);
        QCOMPARE(reader.status(), 200);
        QCOMPARE(reader.body(), QByteArray("{}"));

        HttpResponseReader truncated({.body = bodyLimit});
        QCOMPARE(truncated.end(), State::Truncated);
        QCOMPARE(truncated.feed(QByteArray(ok + "Content-Length: 0\r\n\r\n")), State::Truncated);
        QVERIFY(!truncated.status());
    }

    void aHeadMayHave64KiB()
    {
        const QByteArray end = "\r\nContent-Length: 0\r\n\r\n";
        const QByteArray filler(qsizetype{64} * 1024 - ok.size() - end.size() - 3, 'x');
        HttpResponseReader within({.body = bodyLimit});
        QCOMPARE(within.feed(QByteArray(ok + "A: " + filler + end)), State::Complete);
        HttpResponseReader beyond({.body = bodyLimit});
        QCOMPARE(beyond.feed(QByteArray(ok + "A: x" + filler + end)), State::Malformed);
    }

    /// Answers spoilt at random, the same ones each time.
    void aSpoiltAnswerIsReadTheSameInWhateverPiecesItComes()
    {
        const QList<QByteArray> answers{
            "HTTP/1.1 100 Continue\r\n\r\n" + ok + "Content-Length: 2\r\nA: b\r\n c\r\n\r\n{}",
            okChunked + "1\r\n{\r\n1;a=b\r\n}\r\n0\r\nA: b\r\n\r\n",
            "HTTP/1.0 200 OK\nServer: x\n\n{\"groups\":[]}",
        };
        const QList<QByteArray> spoilers{"\r", "\n", "\r\n", "\r\n\r\n", QByteArray(1, '\0'), " ",
            ":", ";", ",", "0", "9", "f", "Content-Length: 1\r\n", "Transfer-Encoding: chunked\r\n",
            "HTTP/1.1 ", "\xff", QByteArray(70, '1'), QByteArray(1100, 'x')};
        QRandomGenerator random(20261121);
        const auto below = [&random](qsizetype end) {
            return static_cast<qsizetype>(random.bounded(static_cast<quint64>(end)));
        };
        QMap<State, int> seen;
        for (int round = 0; round < 20000; ++round) {
            QByteArray bytes = answers.at(below(answers.size()));
            for (auto faults = 1 + below(3); faults > 0 && !bytes.isEmpty(); --faults) {
                const auto at = below(bytes.size());
                bytes.replace(at, below(std::min<qsizetype>(4, bytes.size() - at) + 1),
                    spoilers.at(below(spoilers.size())));
            }
            const auto then = below(2) == 0 ? Then::StaysOpen : Then::Closes;
            const auto whole = readWhole(bytes, then);
            QVERIFY2(whole.body.size() <= bodyLimit, bytes.toPercentEncoding());
            QVERIFY2(readByteByByte(bytes, then) == whole, bytes.toPercentEncoding());
            const auto inSome = readInPieces(bytes, then, [&] { return 1 + below(40); });
            QVERIFY2(inSome == whole, bytes.toPercentEncoding());
            ++seen[whole.state];
        }
        // All of them, or the faults are not of the kinds that matter.
        QCOMPARE(seen.size(), 5);
    }
};

QTEST_GUILESS_MAIN(HttpResponseReaderTest)
#include "http_response_reader_test.moc"
