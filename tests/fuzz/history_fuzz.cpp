// Whatever stands in the files of the history: it is read without harm, forecasts stay within their
// bounds, and each form of it is what its readers expect.
#include "cli/history/forms.h"
#include "cli/history/usage.h"
#include "forecast/bucket_forecast.h"
#include "forecast/history.h"
#include "fuzz.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <cmath>
#include <vector>

using namespace brimwatch;
using namespace std::chrono_literals;
using forecast::BucketForecast;
using forecast::History;
using forecast::HistoryRow;

namespace {

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    fuzz::require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
        "there is a place to write");
}

bool isShare(double number)
{
    return number >= 0 && number <= 1;
}

std::vector<HistoryRow> rowsOf(const History &history)
{
    std::vector<HistoryRow> rows;
    history.read([&rows](const HistoryRow &row) {
        fuzz::require(isShare(row.left) && fuzz::isOneLine(row.bucket)
                && row.bucket.size() <= History::longestBucketId,
            "a row is within its bounds");
        rows.push_back(row);
    });
    return rows;
}

void forecastFrom(
    const forecast::WindowKind &kind, const QJsonObject &kept, const std::vector<HistoryRow> &rows)
{
    auto restored = BucketForecast::fromJson(kind, kept);
    BucketForecast forecast = restored ? *restored : BucketForecast(kind);
    for (const auto &row : rows) {
        if (!row.reset)
            continue;
        const auto outlook
            = forecast.see({.time = row.time, .left = row.left, .reset = *row.reset});
        fuzz::require(!outlook.chance || isShare(*outlook.chance), "a chance is from 0 to 1");
        fuzz::require(
            !outlook.runOut || (*outlook.runOut >= row.time && *outlook.runOut <= *row.reset),
            "it runs out between now and the reset");
    }
    fuzz::require(BucketForecast::fromJson(kind, forecast.toJson()).has_value(),
        "what is kept is understood");
}

void requireXml(const QString &document)
{
    QXmlStreamReader reader(document);
    while (!reader.atEnd())
        reader.readNext();
    fuzz::require(!reader.hasError(), "a page is well-formed");
}

void printed(const History &history, const QDateTime &now, int width)
{
    const auto usages = cli::usageOf(history, now);
    for (const auto &usage : usages) {
        for (const double use : usage.hours)
            fuzz::require(std::isfinite(use) && use >= 0, "hours have uses");
        fuzz::require(usage.windows.size() <= cli::mostWindowsBefore + 1, "windows are bounded");
        for (const auto &window : usage.windows)
            fuzz::require(isShare(window.peak), "a peak is a share");
    }
    const cli::TextLook look{.colors = false, .bars = cli::TextLook::Bars::Ascii, .width = width};
    const auto lines = cli::renderHistory(usages, now, look).split(QLatin1Char('\n'));
    for (const auto &line : lines)
        fuzz::require(fuzz::isOneLine(line), "text has no control characters");
    requireXml(cli::renderHistoryHtml(usages, now));
    requireXml(cli::renderHistorySvg(usages, now));
    for (const auto &json : {cli::renderHistoryJson(usages), cli::renderScoreJson(usages)})
        fuzz::require(QJsonDocument::fromJson(json.toUtf8()).isObject(), "JSON is an object");
    cli::renderScore(usages, look);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    static const QString path = folder.filePath(QStringLiteral("history"));
    fuzz::require(QDir().mkpath(path), "there is a place to write");

    fuzz::Input input(data, size);
    const int width = 20 + input.below(100);
    const auto seconds = input.number<std::uint32_t>();
    const QByteArray kept = input.bytes();
    write(path + QStringLiteral("/2026-11.csv"), input.rest());
    write(path + QStringLiteral("/forecasts.json"), kept);

    History history(path);
    const auto now = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    const auto rows = rowsOf(history);
    const auto json = QJsonDocument::fromJson(kept).object();
    for (const auto &name : {QStringLiteral("5h"), QStringLiteral("weekly")})
        forecastFrom(*forecast::windowKind(name), json, rows);
    printed(history, now, width);

    const QString other = folder.filePath(QStringLiteral("again"));
    History again(other);
    fuzz::require(again.clear() && again.append(QList<HistoryRow>(rows.begin(), rows.end())),
        "rows are written");
    fuzz::require(rowsOf(again).size() == rows.size(), "what is written is read");
    fuzz::require(again.thin(std::chrono::sys_seconds(std::chrono::seconds(seconds))).has_value()
            && rowsOf(again).size() <= rows.size(),
        "what is thinned is less");
    return 0;
}
