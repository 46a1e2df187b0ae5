// brimwatch-forecast-replay: reads a trace from standard input and writes what the forecast would
// have said at each of its readings, each as soon as its reading has come. README.md has the two
// formats.

#include "forecast/bucket_forecast.h"
#include "forecast/csv.h"

#include <QByteArray>
#include <QString>

#include <cstdio>
#include <iostream>
#include <map>
#include <optional>
#include <string>

using namespace brimwatch::forecast;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr auto traceHeader = "time,bucket,window,left,reset";
constexpr auto forecastHeader = "time,bucket,chance,verdict,runout\n";

QByteArray nameOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Lasts:
        return "lasts";
    case Verdict::Close:
        return "close";
    case Verdict::RunsOut:
        return "runs-out";
    case Verdict::UsedUp:
        return "used-up";
    case Verdict::Silent:
        break;
    }
    return {};
}

void write(const QByteArray &text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
    std::fflush(stdout);
}

class Replay {
public:
    /// The answer to one row of a trace; absent when it is none.
    std::optional<QByteArray> answer(const QByteArray &line)
    {
        constexpr qsizetype columns = 5;
        const auto fields = csvFields(line);
        if (!fields || fields->size() != columns)
            return std::nullopt;
        const auto &row = *fields;
        const auto time = csvTime(row[0]);
        const auto left = csvNumber(row[3]);
        const auto reset = csvTime(row[4]);
        if (!time || !left || (!reset && !row[4].isEmpty()))
            return std::nullopt;
        Outlook outlook;
        const auto *kind = windowKind(QString::fromUtf8(row[2]));
        if (kind != nullptr && reset) {
            auto &forecast = m_forecasts.try_emplace(row[1], *kind).first->second;
            outlook = forecast.see({.time = *time, .left = *left, .reset = *reset});
        }
        constexpr int decimals = 4;
        return row[0] + ',' + csvField(row[1]) + ','
            + (outlook.chance ? QByteArray::number(*outlook.chance, 'f', decimals) : QByteArray())
            + ',' + nameOf(outlook.verdict) + ','
            + (outlook.runOut
                    ? QByteArray::number(qlonglong{outlook.runOut->time_since_epoch().count()})
                    : QByteArray())
            + '\n';
    }

private:
    std::map<QByteArray, BucketForecast> m_forecasts;
};

} // namespace

int main(int argc, char ** /*argv*/)
{
    if (argc > 1) {
        std::fputs("Usage: brimwatch-forecast-replay < TRACE > FORECAST\n", stderr);
        return 2;
    }
    std::string line;
    if (!std::getline(std::cin, line) || QByteArray::fromStdString(line).trimmed() != traceHeader) {
        std::fprintf(stderr, "brimwatch-forecast-replay: the first line is not %s\n", traceHeader);
        return 1;
    }
    write(forecastHeader);
    Replay replay;
    for (long number = 2; std::getline(std::cin, line); ++number) {
        const auto answer = replay.answer(QByteArray::fromStdString(line).trimmed());
        if (!answer) {
            std::fprintf(
                stderr, "brimwatch-forecast-replay: line %ld is no row of a trace\n", number);
            return 1;
        }
        write(*answer);
    }
    return 0;
}
