// Dates and times of any locale, also of what is none: written to the end.
#include "core/date_styles.h"
#include "fuzz.h"

#include <QDateTime>
#include <QTimeZone>

#include <memory>

using namespace brimwatch;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    fuzz::Input input(data, size);
    const auto seconds
        = input.number<std::int64_t>() % 253'402'300'799; // Up to the year 9999, either way.
    const int offset = input.number<std::int16_t>() % (14 * 3600);
    const bool byEnvironment = input.flag();
    const QByteArray locale = input.bytes();

    // Making formats takes a thousand times as long as using them, so the last ones are kept.
    static QString last;
    static std::unique_ptr<DateStyles> styles;
    QString name = QString::fromUtf8(locale);
    if (byEnvironment) {
        qputenv("LC_ALL", locale);
        name = userDateLocale();
    }
    if (!styles || name != last) {
        styles = std::make_unique<DateStyles>(name);
        last = name;
    }
    const auto date = QDateTime::fromSecsSinceEpoch(seconds, Qt::OffsetFromUTC, offset);
    for (const QString &text :
        {styles->timeShortened(date), styles->dateAbbreviatedTimeShortened(date),
            styles->dateAbbreviatedTimeStandard(date)}) {
        fuzz::require(!text.isEmpty() && text.size() < 200, "a date is a short text");
        fuzz::require(text.isValidUtf16(), "a date is valid UTF-16");
    }
    fuzz::require(styles->timeShortened({}).isEmpty(), "what is no date is no text");
    return 0;
}
