// An HTTP answer says the same in any split, and never more than its limits allow.
#include "fuzz.h"
#include "service/http_response_reader.h"

#include <algorithm>
#include <optional>

using namespace brimwatch;
using service::HttpResponseReader;
using State = HttpResponseReader::State;

namespace {

constexpr HttpResponseReader::Limits limits{.body = 300, .head = 600, .chunkLine = 40};

struct Outcome {
    State state;
    std::optional<int> status;
    QByteArray body;

    bool operator==(const Outcome &) const = default;
};

template <typename SizeOfNext>
Outcome outcome(QByteArrayView bytes, bool closes, SizeOfNext sizeOfNext)
{
    HttpResponseReader reader(limits);
    while (!bytes.isEmpty()) {
        const auto size = std::min<qsizetype>(sizeOfNext(), bytes.size());
        reader.feed(bytes.first(size));
        fuzz::require(reader.body().size() <= limits.body, "the body is within its limit");
        bytes = bytes.sliced(size);
    }
    if (closes)
        reader.end();
    return {.state = reader.state(), .status = reader.status(), .body = reader.body()};
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const bool closes = input.flag();
    auto split = input.number<std::uint8_t>();
    const QByteArray bytes = input.rest();

    const auto whole = outcome(bytes, closes, [&] { return bytes.size(); });
    const auto single = outcome(bytes, closes, [] { return qsizetype{1}; });
    const auto pieces = outcome(bytes, closes, [&split] {
        split = static_cast<std::uint8_t>(split * 37 + 11);
        return qsizetype{1} + split % 23;
    });
    fuzz::require(whole == single && whole == pieces, "an answer says the same in any split");
    if (whole.state == State::Complete) {
        fuzz::require(whole.status && *whole.status >= 100 && *whole.status <= 999,
            "a complete answer has a status");
    }
    fuzz::require(
        !closes || whole.state != State::Unfinished, "the end of a connection ends the answer");
    fuzz::require(whole.state != State::TooLarge || whole.body.isEmpty(),
        "of what is too large nothing is kept");
    return 0;
}
