#include "cli/history/forms.h"
#include "cli/output/columns.h"
#include "model/percent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

/// With fewer windows, or when all ended alike, a share of them says nothing.
constexpr int leastWindows = 10;
/// With fewer forecasts in a tenth, nothing can be said of whether its chances were right.
constexpr std::int64_t leastChances = 20;

constexpr std::array<QLatin1StringView, 2> kinds{"5h"_L1, "weekly"_L1};

ForecastScore scoreOf(const QList<BucketUsage> &usages, QLatin1StringView window)
{
    ForecastScore score;
    for (const auto &usage : usages) {
        if (usage.window == window)
            score.add(usage.score);
    }
    return score;
}

bool isEnough(const ForecastScore &score)
{
    return score.windows >= leastWindows && score.ranOut > 0 && score.ranOut < score.windows;
}

double shareThatRanOut(const ForecastScore &score)
{
    return static_cast<double>(score.ranOut) / score.windows;
}

/// What saying always the same chance, the best one, would be wrong by.
double squaresOfBase(const ForecastScore &score)
{
    const double base = shareThatRanOut(score);
    return base * (1 - base);
}

QString percent(double share)
{
    constexpr double all = 100;
    return model::wholePercent(share * all);
}

QString ofThem(int some, int all)
{
    return QString::number(some) + " of "_L1 + QString::number(all);
}

QString textOf(const ForecastScore &score, QLatin1StringView window, const TextLook &look)
{
    const bool isWeek = window == "weekly"_L1;
    const QString name = isWeek ? u"Week"_s : u"Five hours"_s;
    QString text = (look.colors ? escapeBold + name + escapeEnd : name) + u'\n';
    if (score.windows == 0)
        return text + "  No window with a forecast has been seen to its end yet\n"_L1;
    text += "  Windows that ran out    "_L1 + ofThem(score.ranOut, score.windows) + u'\n';
    if (score.ranOut > 0)
        text += "  Warned of in time       "_L1 + ofThem(score.warnedInTime, score.ranOut)
            + (isWeek ? ", at least 6 hours before\n"_L1 : ", at least 15 minutes before\n"_L1);
    if (score.ranOut < score.windows)
        text += "  Warned of in vain       "_L1
            + ofThem(score.warnedInVain, score.windows - score.ranOut) + " that lasted\n"_L1;
    if (!isEnough(score))
        return text + "  Too few windows to say how often the forecast is right\n"_L1;
    text += "  Brier score             "_L1 + QString::number(score.squares / score.windows, 'f', 3)
        + ", always saying "_L1 + percent(shareThatRanOut(score)) + " would have "_L1
        + QString::number(squaresOfBase(score), 'f', 3) + u'\n';
    text += "  Chance said  Ran out  Forecasts\n"_L1;
    for (const auto &tenth : score.tenths) {
        if (tenth.chances == 0)
            continue;
        const auto count = static_cast<double>(tenth.chances);
        text += "  "_L1 + percent(tenth.said / count).rightJustified(11) + "  "_L1
            + (tenth.chances < leastChances
                    ? u"too few"_s
                    : percent(static_cast<double>(tenth.ranOut) / count).rightJustified(7))
            + "  "_L1 + QString::number(tenth.chances).rightJustified(9) + u'\n';
    }
    return text;
}

QJsonObject toJson(const ForecastScore &score, QLatin1StringView window)
{
    QJsonArray tenths;
    for (const auto &tenth : score.tenths) {
        const auto count = static_cast<double>(tenth.chances);
        tenths.append(QJsonObject{{u"forecasts"_s, qint64{tenth.chances}},
            {u"said"_s, tenth.chances > 0 ? QJsonValue(tenth.said / count) : QJsonValue()},
            {u"ranOut"_s,
                tenth.chances > 0 ? QJsonValue(static_cast<double>(tenth.ranOut) / count)
                                  : QJsonValue()}});
    }
    const bool hasAny = score.windows > 0;
    return {{u"window"_s, QString(window)}, {u"windows"_s, score.windows},
        {u"ranOut"_s, score.ranOut}, {u"warnedInTime"_s, score.warnedInTime},
        {u"warnedInVain"_s, score.warnedInVain}, {u"isEnough"_s, isEnough(score)},
        {u"brier"_s, hasAny ? QJsonValue(score.squares / score.windows) : QJsonValue()},
        {u"brierOfBase"_s, hasAny ? QJsonValue(squaresOfBase(score)) : QJsonValue()},
        {u"tenths"_s, tenths}};
}

} // namespace

QString renderScore(const QList<BucketUsage> &usages, const TextLook &look)
{
    QString text
        = u"What the forecasts of the last five weeks would have said, and what happened\n"_s;
    if (look.bars != TextLook::Bars::None && columnsOf(text) > look.width)
        text = u"The last five weeks\n"_s;
    for (const auto window : kinds)
        text += u'\n' + textOf(scoreOf(usages, window), window, look);
    return text;
}

QString renderScoreJson(const QList<BucketUsage> &usages)
{
    QJsonArray scores;
    for (const auto window : kinds)
        scores.append(toJson(scoreOf(usages, window), window));
    return QString::fromUtf8(
        QJsonDocument(QJsonObject{{u"schema"_s, 1}, {u"scores"_s, scores}}).toJson());
}

} // namespace brimwatch::cli
