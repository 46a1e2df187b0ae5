#include "cli/history/forms.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;
using std::chrono::sys_seconds;

namespace {

qint64 number(sys_seconds time)
{
    return time.time_since_epoch().count();
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonObject toJson(const WindowUsage &window, bool isUnderWay)
{
    QJsonArray course;
    for (const auto &point : window.course)
        course.append(QJsonArray{number(point.time), point.used});
    return {{u"start"_s, number(window.start)}, {u"reset"_s, number(window.reset)},
        {u"peak"_s, window.peak},
        {u"ranOut"_s, window.ranOut ? QJsonValue(number(*window.ranOut)) : QJsonValue()},
        {u"isUnderWay"_s, isUnderWay},
        {u"course"_s, isUnderWay ? QJsonValue(course) : QJsonValue()}};
}

} // namespace

QString renderHistoryJson(const QList<BucketUsage> &usages)
{
    QJsonArray buckets;
    for (const auto &usage : usages) {
        QJsonArray windows;
        for (qsizetype i = 0; i < usage.windows.size(); ++i)
            windows.append(
                toJson(usage.windows[i], usage.isUnderWay && i + 1 == usage.windows.size()));
        QJsonArray hours;
        // From Monday on, where the map of the hours begins with a Thursday.
        constexpr std::size_t monday = 96;
        for (std::size_t i = 0; i < usage.hours.size(); ++i)
            hours.append(usage.hours.at((monday + i) % usage.hours.size()));
        buckets.append(QJsonObject{{u"id"_s, usage.id}, {u"window"_s, orNull(usage.window)},
            {u"windows"_s, windows}, {u"hours"_s, hours}});
    }
    const QJsonObject object{{u"schema"_s, 1}, {u"buckets"_s, buckets}};
    return QString::fromUtf8(QJsonDocument(object).toJson());
}

void writeHistoryCsv(
    const forecast::History &history, const std::function<bool(const QString &)> &write)
{
    constexpr qsizetype piece = 64LL * 1024;
    QByteArray text = QByteArray(forecast::csvHeader) + '\n';
    bool goesOn = true;
    history.read([&](const forecast::HistoryRow &row) {
        if (!goesOn)
            return;
        text += forecast::csvLine(row) + '\n';
        if (text.size() >= piece) {
            goesOn = write(QString::fromUtf8(text));
            text.clear();
        }
    });
    if (goesOn)
        write(QString::fromUtf8(text));
}

} // namespace brimwatch::cli
