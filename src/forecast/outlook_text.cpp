#include "forecast/outlook_text.h"

#include "core/clock.h"
#include "model/quota_records.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace brimwatch::forecast {

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using std::chrono::seconds;

namespace {

constexpr auto names = std::to_array<std::pair<Verdict, QLatin1StringView>>({
    {Verdict::Lasts, "lasts"_L1},
    {Verdict::Close, "close"_L1},
    {Verdict::RunsOut, "runs-out"_L1},
    {Verdict::UsedUp, "used-up"_L1},
});

bool isWeek(QStringView window)
{
    return window == "weekly"_L1;
}

QString runOutWords(const OutlookText &text, const QDateTime &now, const DateStyles &styles)
{
    if (!text.runOut)
        return u"runs out"_s;
    if (text.runOut == text.reset)
        return u"runs out shortly before the reset"_s;
    const auto moment = inZoneOf(now, *text.runOut);
    const auto away = seconds(now.secsTo(moment));
    if (!isWeek(text.window)) {
        return away < 30min ? u"runs out within half an hour"_s
                            : QString("runs out around "_L1 + styles.timeShortened(moment));
    }
    if (away < 12h)
        return u"runs out within half a day"_s;
    constexpr int noon = 12;
    const QString day = QLocale(QLocale::English).dayName(moment.date().dayOfWeek());
    return "runs out around "_L1 + day
        + (moment.time().hour() < noon ? " morning"_L1 : " evening"_L1);
}

} // namespace

RoundedOutlook rounded(
    const Outlook &outlook, QStringView window, std::optional<std::chrono::sys_seconds> reset)
{
    RoundedOutlook result{.verdict = outlook.verdict};
    if (outlook.chance) {
        constexpr double steps = 20;
        result.chance = std::round(*outlook.chance * steps) / steps;
    }
    if (outlook.runOut) {
        // Half a quarter of an hour to either side; of the week the hour in which it is, as half a
        // day must not become the next one.
        const seconds step = isWeek(window) ? seconds(1h) : seconds(15min);
        const seconds half = isWeek(window) ? 0s : step / 2;
        const auto since = outlook.runOut->time_since_epoch() + half;
        result.runOut = std::chrono::sys_seconds(since - since % step);
        if (reset && (*outlook.runOut >= *reset || *result.runOut >= *reset))
            result.runOut = reset;
    }
    return result;
}

QString verdictName(Verdict verdict)
{
    const auto *row = std::find_if(names.begin(), names.end(),
        [verdict](const auto &candidate) { return candidate.first == verdict; });
    return row == names.end() ? QString() : QString(row->second);
}

Verdict verdictNamed(QStringView name)
{
    const auto *row = std::find_if(names.begin(), names.end(),
        [name](const auto &candidate) { return candidate.second == name; });
    return row == names.end() ? Verdict::Silent : row->first;
}

OutlookText textOf(const model::QuotaBucket &bucket, const Outlook &outlook)
{
    const auto moment = [](std::chrono::sys_seconds time) {
        return QDateTime::fromSecsSinceEpoch(time.time_since_epoch().count());
    };
    const QString window = bucket.window.value_or(QString());
    const auto parsed = bucket.parsedResetDate();
    const auto reset = parsed
        ? std::optional(std::chrono::sys_seconds(seconds(parsed->toSecsSinceEpoch())))
        : std::nullopt;
    const auto published = rounded(outlook, window, reset);
    return {.verdict = published.verdict,
        .window = window,
        .runOut = published.runOut ? std::optional(moment(*published.runOut)) : std::nullopt,
        .reset = reset ? std::optional(moment(*reset)) : std::nullopt,
        .chance = published.chance};
}

QString OutlookText::words(const QDateTime &now, const DateStyles &styles) const
{
    switch (verdict) {
    case Verdict::RunsOut:
        return runOutWords(*this, now, styles);
    case Verdict::UsedUp:
        if (!reset || *reset <= now)
            return u"used up"_s;
        return "used up, full again in "_L1
            + model::withoutSeconds(model::countdownText(now, *reset));
    case Verdict::Silent:
    case Verdict::Lasts:
    case Verdict::Close:
        break;
    }
    return {};
}

} // namespace brimwatch::forecast
