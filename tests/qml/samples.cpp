#include "qml/samples.h"

#include <QTimeZone>

namespace brimwatch::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr qint64 minute = 60;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;

QString repeated(const QString &word, qsizetype length)
{
    return word.repeated(length / word.size() + 1).left(length);
}

} // namespace

QDateTime sampleNow()
{
    return {QDate(2026, 11, 16), QTime(12, 0), QTimeZone::utc()};
}

discovery::DaemonInfo sampleDaemon()
{
    return {.pid = 4711,
        .httpPort = 42424,
        .lsVersion = u"1.11.3"_s,
        .csrfToken = u"0f8fad5b-d9cb-469f-a165-70867728950e"_s};
}

model::QuotaBucket sampleBucket(const QString &id, const QString &name,
    const std::optional<QString> &window, double fraction, std::optional<qint64> resetIn)
{
    model::QuotaBucket bucket;
    bucket.bucketId = id;
    bucket.displayName = name;
    bucket.window = window;
    bucket.remainingFraction = fraction;
    if (resetIn)
        bucket.resetTime = sampleNow().addSecs(*resetIn).toString(Qt::ISODate);
    return bucket;
}

model::QuotaSummary sampleSummary()
{
    return {.groups = {
                {.displayName = u"Gemini Models"_s,
                    .description = u"Quota for Gemini 3 Pro and Gemini 3 Flash."_s,
                    .buckets = {sampleBucket(u"gemini-5h"_s, u"Five-hour limit"_s, u"5h"_s, 0.804,
                                    2 * hour + 3 * minute + 9),
                        sampleBucket(u"gemini-weekly"_s, u"Weekly limit"_s, u"weekly"_s, 0.552,
                            2 * day + 5 * hour)}},
                {.displayName = u"Gemini 3 Pro (Argon)"_s,
                    .buckets = {sampleBucket(
                        u"argon-5h"_s, u"Five-hour limit"_s, u"5h"_s, 0.128, 12 * minute + 5)}},
                {.displayName = u"Claude and GPT models"_s,
                    .description = u"Shared by all models of other makers."_s,
                    .buckets
                    = {sampleBucket(u"3p-5h"_s, u"Five-hour limit"_s, u"5h"_s, 1.0, std::nullopt),
                        sampleBucket(u"3p-weekly"_s, u"Weekly limit"_s, u"weekly"_s, 0.425,
                            6 * day + 23 * hour)}},
            }};
}

model::QuotaSummary lowSummary()
{
    return {.groups
        = {{.displayName = u"Gemini Models"_s,
               .description = u""_s,
               .buckets = {sampleBucket(u"gemini-5h"_s, u"Five-hour limit"_s, u"5h"_s, 0, 59),
                   sampleBucket(u"gemini-weekly"_s, u"Weekly limit"_s, u"weekly"_s, 0.02, hour - 1),
                   sampleBucket(
                       u"gemini-day"_s, u"Daily limit"_s, std::nullopt, 0.2, -5 * minute)}},
            {.displayName = u"Experiments"_s, .buckets = {}}}};
}

model::QuotaSummary manyGroups(int count)
{
    model::QuotaSummary summary;
    for (int i = 1; i <= count; ++i) {
        const QString name = u"Group %1"_s.arg(i);
        summary.groups.append({.displayName = name,
            .buckets = {sampleBucket(name, u"Bucket of group %1"_s.arg(i), u"5h"_s,
                static_cast<double>(i % 11) / 10, 7LL * i * minute)}});
    }
    return summary;
}

model::QuotaSummary longNames()
{
    constexpr qsizetype length = 300;
    auto bucket = sampleBucket(u"long"_s, repeated(u"A bucket with a long name "_s, length),
        repeated(u"window"_s, length), 0.333, 400 * day);
    return {
        .groups = {{.displayName = repeated(u"GeminiWithoutAnySpaces"_s, length),
                       .description = repeated(u"A description that goes on and on. "_s, length),
                       .buckets = {bucket}},
            {.displayName = repeated(u"Claude with spaces "_s, length), .buckets = {bucket}}}};
}

model::QuotaSummary oddNames()
{
    return {.groups
        = {{.displayName = u"<b>Gemini</b> & <i>friends</i> &amp; more"_s,
               .description = u"<a href=\"http://example.com\">click</a>\nsecond line"_s,
               .buckets
               = {sampleBucket(u"html"_s, u"<h1>5 & 10</h1>"_s, u"<u>5h</u>"_s, 0.75, 3 * hour)}},
            {.displayName = u"نماذج كلود Claude"_s,
                .description = u"حصة مشتركة لجميع النماذج"_s,
                .buckets
                = {sampleBucket(u"rtl"_s, u"الحد الأسبوعي"_s, u"أسبوعي"_s, 0.45, 30 * hour)}},
            {.displayName = u"🚀 Rockets 👩‍👩‍👧‍👦 🇫🇷"_s,
                .buckets = {sampleBucket(u"emoji"_s, u"🧠 deep thought 🧠"_s, u"⏱"_s, 0.6, 90)}}}};
}

} // namespace brimwatch::test
