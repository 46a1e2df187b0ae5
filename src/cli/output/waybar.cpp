#include "cli/output/forms.h"
#include "cli/output/pango.h"
#include "forecast/outlook_text.h"
#include "model/percent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <algorithm>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

QString tooltipOf(const Status &status, const QDateTime &now)
{
    QStringList lines;
    for (const auto &group : status.state.groups) {
        lines.append("<b>"_L1 + group.name.toHtmlEscaped() + "</b>"_L1);
        for (const auto &bucket : group.buckets) {
            const QString times = timesText(bucket, now);
            lines.append(bucket.name.toHtmlEscaped() + ": "_L1
                + pangoColored(
                    model::percentWithOneDecimal(bucket.percentage), colorOf(bucket.tier))
                + (times.isEmpty() ? QString() : QString(", "_L1 + times.toHtmlEscaped())));
        }
    }
    if (!status.isOnline())
        lines.append(offlineReason(status).toHtmlEscaped());
    return lines.join(u'\n');
}

/// Whether a bucket runs out before its reset.
bool runsOut(const platform::PublishedState &state)
{
    const QString name = forecast::verdictName(forecast::Verdict::RunsOut);
    return std::any_of(
        state.groups.cbegin(), state.groups.cend(), [&name](const platform::PublishedGroup &group) {
            return std::any_of(group.buckets.cbegin(), group.buckets.cend(),
                [&name](const auto &bucket) { return bucket.outlook == name; });
        });
}

} // namespace

QString renderWaybar(const Status &status, const QDateTime &now)
{
    const auto &state = status.state;
    QJsonArray classes;
    if (!status.isOnline())
        classes.append(platform::connectionName(state.connection));
    if (state.lowest)
        classes.append(platform::tierName(state.lowest->tier));
    if (runsOut(state))
        classes.append(forecast::verdictName(forecast::Verdict::RunsOut));
    QJsonObject object{{u"text"_s, pangoTitle(status)}, {u"tooltip"_s, tooltipOf(status, now)},
        {u"class"_s, classes}};
    if (state.lowest)
        // The number of the label, which rounds as printf does.
        object.insert(
            u"percentage"_s, model::wholePercent(state.lowest->percentage).chopped(1).toInt());
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

} // namespace brimwatch::cli
