// All that cuts or cleans texts: no longer than it may be, no control characters, the same when it
// is done again.
#include "core/plain_text.h"
#include "core/redactor.h"
#include "fuzz.h"
#include "model/family_names.h"
#include "model/iso8601.h"
#include "model/quota_records.h"

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const bool asUnits = input.flag();
    const qsizetype longest = 1 + input.number<std::uint8_t>();
    const QString secret = input.text();
    const QString text = asUnits ? input.units() : QString::fromUtf8(input.rest());

    const QString cut = truncated(text, longest);
    fuzz::require(cut.size() <= longest && text.startsWith(cut), "a truncated text is a beginning");
    fuzz::require(truncated(cut, longest) == cut, "truncating again changes nothing");
    fuzz::require(!text.isValidUtf16() || cut.isValidUtf16(), "no character is cut through");

    const QString line = asOneLine(text, longest);
    fuzz::require(line.size() <= longest, "a line is within its bound");
    fuzz::require(fuzz::isOneLine(line), "a line has no control characters");
    fuzz::require(asOneLine(line, longest) == line, "a line stays as it is");
    fuzz::require(!text.isValidUtf16() || line.isValidUtf16(), "no character is cut through");
    fuzz::require(line == line.trimmed() || line.endsWith(u'…'), "a line has no blanks around it");

    const Redactor redactor(secret, u"/home/somebody"_s);
    const QString redacted = redactor.redacted(text);
    // What a replacement puts there may itself be what a secret of such characters looks like.
    if (secret.size() >= 4 && !secret.contains(u'~') && !secret.contains(u'…')) {
        fuzz::require(!redacted.contains(secret), "a secret is hidden");
        const QString redactedLine = redactor.line(text, longest);
        fuzz::require(!redactedLine.contains(secret), "a secret is hidden in a line");
        fuzz::require(redactedLine.size() <= longest && fuzz::isOneLine(redactedLine),
            "a redacted line is a line");
    }

    fuzz::require(!model::containsIgnoringCase(text, u"gemini"_s) || text.size() >= 6,
        "a part is no longer than the whole");
    model::lowerCasedContains(text, u"gemini"_s);
    const model::QuotaBucket bucket{.bucketId = text, .displayName = text, .window = text};
    fuzz::require(
        !text.isValidUtf16() || bucket.windowText().isValidUtf16(), "an upper-case text is valid");
    if (const auto moment = model::parseInternetDateTime(text)) {
        fuzz::require(moment->isValid() && moment->date().year() >= 1582, "a moment is one");
        const QString written = moment->toString(Qt::ISODateWithMs);
        fuzz::require(
            model::parseInternetDateTime(written) == moment, "a moment that is written is read");
    }
    return 0;
}
