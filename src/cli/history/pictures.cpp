#include "cli/history/pictures.h"

#include "cli/history/words.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

// The plot within a picture: room for the labels at the left and below.
constexpr double left = 40;
constexpr double right = pictureWidth - 4;
constexpr double top = 8;
constexpr double bottom = 128;
constexpr int plotHeight = 152; ///< Of the picture, with one line of labels.

QString coordinate(double value)
{
    return QString::number(value, 'f', 1);
}

double yOf(double share)
{
    return bottom - std::clamp(share, 0.0, 1.0) * (bottom - top);
}

QString line(double x1, double y1, double x2, double y2, QLatin1StringView style)
{
    return uR"(<line class="%5" x1="%1" y1="%2" x2="%3" y2="%4"/>)"_s.arg(
        coordinate(x1), coordinate(y1), coordinate(x2), coordinate(y2), style);
}

using Anchor = QLatin1StringView;
constexpr Anchor atStart("start");
constexpr Anchor atMiddle("middle");
constexpr Anchor atEnd("end");

QString label(double x, double y, Anchor anchor, const QString &text)
{
    return uR"(<text x="%1" y="%2" text-anchor="%3">)"_s.arg(coordinate(x), coordinate(y), anchor)
        + text.toHtmlEscaped() + "</text>"_L1;
}

/// Lines at nothing, half and all, with their labels.
QString axis()
{
    QString content;
    for (const double share : {0.0, 0.5, 1.0})
        content += line(left, yOf(share), right, yOf(share), "grid"_L1)
            + label(left - 6, yOf(share) + 4, atEnd, percentOf(share));
    return content;
}

/// "used" or, where all was used, "out".
QLatin1StringView styleOf(const WindowUsage &window)
{
    return window.ranOut ? "out"_L1 : "used"_L1;
}

} // namespace

Picture coursePicture(const WindowUsage &window, const QDateTime &now)
{
    const sys_seconds until(seconds(now.toSecsSinceEpoch()));
    const std::chrono::duration<double> length = std::max(window.reset - window.start, seconds(1));
    const auto xOf = [&](sys_seconds time) {
        return left + std::clamp((time - window.start) / length, 0.0, 1.0) * (right - left);
    };
    QString path;
    for (const auto &point : window.course)
        path += (path.isEmpty() ? "M"_L1 : " L"_L1) + coordinate(xOf(point.time)) + u' '
            + coordinate(yOf(point.used));
    path += " L"_L1 + coordinate(xOf(until)) + u' ' + coordinate(yOf(usedAt(window, until)));
    const QString area = path + " L"_L1 + coordinate(xOf(until)) + u' ' + coordinate(bottom)
        + " L"_L1 + coordinate(xOf(window.start)) + u' ' + coordinate(bottom) + " Z"_L1;
    const auto style = styleOf(window);
    return {.title = u"This window"_s,
        .description = courseWords(window, now),
        .height = plotHeight,
        .content = axis() + line(left, bottom, right, top, "even"_L1)
            + uR"(<path class="%1 area" d="%2"/><path class="%1 course" d="%3"/>)"_s.arg(
                style, area, path)
            + label(left, bottom + 18, atStart, momentText(window.start, now))
            + label(right, bottom + 18, atEnd, momentText(window.reset, now))};
}

Picture windowsPicture(
    const BucketUsage &usage, const QList<WindowUsage> &windows, const QDateTime &now)
{
    constexpr double firstLine = 18;
    constexpr double secondLine = 31;
    const bool isWeek = usage.window == "weekly"_L1;
    constexpr double slot = (right - left) / mostWindowsBefore;
    QString content = axis();
    QStringList words;
    for (qsizetype i = 0; i < windows.size(); ++i) {
        const auto &window = windows[i];
        const double x = left + slot * static_cast<double>(i);
        content += uR"(<rect class="%1 bar" x="%2" y="%3" width="%4" height="%5"/>)"_s.arg(
            styleOf(window), coordinate(x + 5), coordinate(yOf(window.peak)), coordinate(slot - 10),
            coordinate(bottom - yOf(window.peak)));
        const auto start = momentOf(window.start, now);
        const auto below = [&](double y, const QString &text) {
            content += label(x + slot / 2, bottom + y, atMiddle, text);
        };
        if (isWeek) {
            below(firstLine, start.date().toString(u"MM-dd"_s));
        } else {
            below(firstLine,
                QLocale(QLocale::English).dayName(start.date().dayOfWeek(), QLocale::ShortFormat));
            below(secondLine, start.time().toString(u"HH:mm"_s));
        }
        words.append(momentText(window.start, now) + ": "_L1 + windowWords(window));
    }
    return {.title = u"Windows before"_s,
        .description = words.join("; "_L1),
        .height = isWeek ? plotHeight : plotHeight + 13,
        .content = content};
}

Picture hoursPicture(const BucketUsage &usage)
{
    constexpr int hoursOfDay = 24;
    constexpr double cell = (right - left) / hoursOfDay;
    constexpr double firstRow = 16;
    const double most = *std::max_element(usage.hours.begin(), usage.hours.end());
    if (most <= 0)
        return {};
    QString content;
    for (int hour = 0; hour < hoursOfDay; hour += 6)
        content += label(left + cell * hour, firstRow - 5, atStart, QString::number(hour));
    for (int day = 1; day <= 7; ++day) {
        const double y = firstRow + cell * (day - 1);
        content += label(left - 6, y + cell - 3, atEnd,
            QLocale(QLocale::English).dayName(day, QLocale::ShortFormat));
        for (int hour = 0; hour < hoursOfDay; ++hour) {
            const double use = usage.hours.at(hourIndex(day, hour));
            const QString place = uR"(x="%1" y="%2" width="%3" height="%3")"_s.arg(
                coordinate(left + cell * hour), coordinate(y), coordinate(cell - 1));
            content += "<rect class='rest' "_L1 + place + "/>"_L1;
            if (use > 0.02 * most)
                content += uR"(<rect class="used" fill-opacity="%1" )"_s.arg(
                               QString::number(0.15 + 0.85 * use / most, 'f', 2))
                    + place + "/>"_L1;
        }
    }
    return {.title = u"Hours of the week"_s,
        .description = hoursWords(usage),
        .height = static_cast<int>(firstRow + cell * 7) + 4,
        .content = content};
}

QString pictureStyle()
{
    // Without variables: viewers of pictures know none, and stay light.
    const auto colors = [](QLatin1StringView ground, QLatin1StringView ink, QLatin1StringView quiet,
                            QLatin1StringView grid, QLatin1StringView used, QLatin1StringView out) {
        return uR"(
body { background: %1; color: %2; }
figure p, .when, th { color: %3; }
th, td { border-top: 1px solid %4; }
svg text { fill: %3; }
svg .name, svg .caption { fill: %2; }
.ground { fill: %1; }
.grid { stroke: %4; }
.even { stroke: %3; }
.used { fill: %5; stroke: %5; }
.out { fill: %6; stroke: %6; }
.rest { fill: %4; }
)"_s.arg(ground, ink, quiet, grid, used, out);
    };
    return colors(
               "#ffffff"_L1, "#1d1d1f"_L1, "#5f5f66"_L1, "#dcdce0"_L1, "#1a7f4b"_L1, "#c0261f"_L1)
        + "@media screen and (prefers-color-scheme: dark) {"_L1
        + colors("#1c1c1e"_L1, "#f2f2f5"_L1, "#a8a8b0"_L1, "#3a3a40"_L1, "#4cd083"_L1, "#ff6b61"_L1)
        + uR"(}
svg text { font: 11px system-ui, sans-serif; }
.even { stroke-dasharray: 3 4; }
.used.area, .out.area { fill-opacity: 0.18; stroke: none; }
.used.course, .out.course { fill: none; stroke-width: 2; stroke-linejoin: round; }
rect.used, rect.out { stroke: none; }
.rest { fill-opacity: 0.5; }
)"_s;
}

} // namespace brimwatch::cli
