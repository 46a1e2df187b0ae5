#include "cli/exit_status.h"
#include "cli/output/forms.h"
#include "cli/output/template.h"
#include "model/percent.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::cli;
using platform::PublishedBucket;
using platform::PublishedState;

namespace {

const QDateTime now(QDate(2026, 11, 16), QTime(9, 0), Qt::UTC);

PublishedBucket bucket(const QString &name, const QString &window, double percentage,
    model::QuotaTier tier, std::optional<qint64> secondsToReset)
{
    return {.id = name,
        .name = name,
        .window = window,
        .fraction = percentage / 100,
        .percentage = percentage,
        .tier = tier,
        .resetTime
        = secondsToReset ? std::optional(now.toSecsSinceEpoch() + *secondsToReset) : std::nullopt};
}

Status sample()
{
    using model::QuotaTier;
    constexpr qint64 hour = 3600;
    Status status{.state = {}, .source = Status::Source::Program};
    auto &state = status.state;
    state.connection = PublishedState::Connection::Connected;
    state.port = 4711;
    state.lastUpdate = now.toSecsSinceEpoch() - 60;
    state.title = u"✦ 5h: 80% · W: 12%"_s;
    state.items = {{.text = u"5h: 80%"_s, .tier = QuotaTier::healthy},
        {.text = u"W: 12%"_s, .tier = QuotaTier::critical}};
    state.groups = {
        {.name = u"Gemini Models"_s,
            .family = u"gemini"_s,
            .buckets = {bucket(u"Five hours"_s, u"5h"_s, 80, QuotaTier::healthy, 2 * hour + 180),
                bucket(u"A week"_s, u"weekly"_s, 12.34, QuotaTier::critical, 50 * hour)}},
        {.name = u"Claude & <friends>"_s,
            .family = u"claude"_s,
            .buckets = {bucket(u"Five hours"_s, u"5h"_s, 40, QuotaTier::warning, std::nullopt)}}};
    state.lowest = state.groups[0].buckets[1];
    return status;
}

Status sampleOffline()
{
    auto status = sample();
    status.state.connection = PublishedState::Connection::Offline;
    status.state.port = 0;
    status.state.error = u"No daemon <here>"_s;
    return status;
}

QJsonObject parsed(const QString &line)
{
    return QJsonDocument::fromJson(line.toUtf8()).object();
}

} // namespace

class CliRenderingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textWithoutATerminalIsPlain()
    {
        QCOMPARE(renderText(sample(), now, {}),
            u"Gemini Models\n"
            "  Five hours   80.0%  resets in 2h 3m\n"
            "  A week       12.3%  resets in 2d 2h\n"
            "Claude & <friends>\n"
            "  Five hours   40.0%\n"_s);
    }

    void textOnATerminalHasBars()
    {
        QCOMPARE(renderText(sample(), now, {.bars = TextLook::Bars::Ascii, .width = 60}),
            u"Gemini Models\n"
            "  Five hours  #################----   80.0%  resets in 2h 3m\n"
            "  A week      ###------------------   12.3%  resets in 2d 2h\n"
            "Claude & <friends>\n"
            "  Five hours  ########-------------   40.0%\n"_s);
    }

    void textIsColoredByHealth()
    {
        const auto text
            = renderText(sample(), now, {.colors = true, .bars = TextLook::Bars::Blocks});
        QVERIFY(text.contains(u"\x1b[1mGemini Models\x1b[0m\n"_s));
        QVERIFY(text.contains(u"\x1b[32m 80.0%\x1b[0m"_s));
        QVERIFY(text.contains(u"\x1b[31m 12.3%\x1b[0m"_s));
        QVERIFY(text.contains(u"\x1b[33m 40.0%\x1b[0m"_s));
        QVERIFY(text.contains(u"█░"_s));
    }

    void textFitsTheTerminal_data()
    {
        QTest::addColumn<int>("width");
        for (const int width : {24, 30, 40, 60, 80, 120, 250})
            QTest::addRow("%d", width) << width;
    }
    void textFitsTheTerminal()
    {
        QFETCH(int, width);
        auto status = sample();
        status.state.groups[0].name = QString(190, u'n');
        status.state.groups[0].buckets[0].name = u"配額"_s.repeated(40);
        const auto lines
            = renderText(status, now, {.bars = TextLook::Bars::Ascii, .width = width}).split(u'\n');
        for (const auto &line : lines) {
            int columns = 0;
            for (const QChar c : line)
                columns += c.unicode() >= 0x3000 ? 2 : 1;
            QVERIFY2(columns <= width, qPrintable(line));
        }
    }

    void offlineTextSaysHowOldItIs()
    {
        const auto text = renderText(sampleOffline(), now, {});
        QVERIFY(text.endsWith(u"\nAs of "_s
            + QDateTime::fromSecsSinceEpoch(*sample().state.lastUpdate)
                .toString(u"yyyy-MM-dd HH:mm:ss"_s)
            + u'\n'));
        QCOMPARE(renderText(offlineStatus(u"gone"_s), now, {}), QString());
    }

    void aLineIsTheLabelAndWhyItIsOld()
    {
        QCOMPARE(renderLine(sample()), u"✦ 5h: 80% · W: 12%"_s);
        QCOMPARE(renderLine(sampleOffline()), u"✦ 5h: 80% · W: 12% (No daemon <here>)"_s);
        QCOMPARE(renderLine(offlineStatus(u"gone"_s)), u"gone"_s);
    }

    void jsonSaysAllThatIsKnown()
    {
        const auto json = parsed(renderJson(sample(), Layout::OneLine));
        QCOMPARE(json[u"schema"_s].toInt(), 1);
        QCOMPARE(json[u"source"_s].toString(), u"program"_s);
        QCOMPARE(json[u"state"_s].toString(), u"connected"_s);
        QCOMPARE(json[u"port"_s].toInt(), 4711);
        QCOMPARE(json[u"lastUpdate"_s].toInteger(), *sample().state.lastUpdate);
        QVERIFY(json[u"error"_s].isNull());
        QCOMPARE(json[u"lowest"_s].toObject()[u"percentage"_s].toDouble(), 12.34);
        const auto groups = json[u"groups"_s].toArray();
        QCOMPARE(groups.size(), 2);
        const auto claude = groups[1].toObject();
        QCOMPARE(claude[u"family"_s].toString(), u"claude"_s);
        QVERIFY(claude[u"buckets"_s].toArray()[0].toObject()[u"resetTime"_s].isNull());
    }

    void jsonIsOneLineWhereLinesAreRead()
    {
        QVERIFY(!renderJson(sample(), Layout::OneLine).contains(u'\n'));
        QVERIFY(renderJson(sample(), Layout::Block).contains(u'\n'));
        QCOMPARE(parsed(renderJson(sample(), Layout::OneLine)),
            parsed(renderJson(sample(), Layout::Block)));
    }

    void waybarGetsColorsATooltipAndClasses()
    {
        const auto json = parsed(renderWaybar(sample(), now));
        QCOMPARE(json[u"text"_s].toString(),
            u"✦ <span color=\"#33d473\">5h: 80%</span> · <span color=\"#ff655b\">W: 12%</span>"_s);
        QCOMPARE(json[u"class"_s].toArray(), (QJsonArray{u"critical"_s}));
        QCOMPARE(json[u"percentage"_s].toInt(), 12);
        QCOMPARE(json[u"tooltip"_s].toString(),
            u"<b>Gemini Models</b>\n"
            "Five hours: <span color=\"#33d473\">80.0%</span>, resets in 2h 3m\n"
            "A week: <span color=\"#ff655b\">12.3%</span>, resets in 2d 2h\n"
            "<b>Claude &amp; &lt;friends&gt;</b>\n"
            "Five hours: <span color=\"#ff9f2e\">40.0%</span>"_s);
    }

    void waybarsPercentageIsTheLabelsNumber()
    {
        auto status = sample();
        for (const double percentage : {0.5, 1.5, 42.5, 43.5, 99.5}) {
            status.state.lowest->percentage = percentage;
            QCOMPARE(
                QString::number(parsed(renderWaybar(status, now))[u"percentage"_s].toInt()) + u'%',
                model::wholePercent(percentage));
        }
    }

    void waybarGetsOldNumbersInGrey()
    {
        const auto json = parsed(renderWaybar(sampleOffline(), now));
        QCOMPARE(
            json[u"text"_s].toString(), u"<span color=\"#a9a9b0\">✦ 5h: 80% · W: 12%</span>"_s);
        QCOMPARE(json[u"class"_s].toArray(), (QJsonArray{u"offline"_s, u"critical"_s}));
        QVERIFY(json[u"tooltip"_s].toString().endsWith(u"\nNo daemon &lt;here&gt;"_s));
        const auto nothing = parsed(renderWaybar(offlineStatus(u"gone"_s), now));
        QCOMPARE(nothing[u"text"_s].toString(), u"<span color=\"#a9a9b0\">✦ –</span>"_s);
        QVERIFY(!nothing.contains(u"percentage"_s));
    }

    void i3blocksGetsABlock()
    {
        const QString title
            = u"✦ <span color=\"#33d473\">5h: 80%</span> · <span color=\"#ff655b\">W: 12%</span>"_s;
        QCOMPARE(renderI3blocks(sample(), Layout::OneLine), title);
        QCOMPARE(renderI3blocks(sample(), Layout::Block),
            title + u"\n<span color=\"#ff655b\">12%</span>\n#ff655b"_s);
        QCOMPARE(renderI3blocks(offlineStatus(u"gone"_s), Layout::Block),
            u"<span color=\"#a9a9b0\">✦ –</span>\n<span color=\"#a9a9b0\">–</span>\n#a9a9b0"_s);
    }

    void templatesAreFilledIn_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        const auto row = [](const QString &text, const QString &expected) {
            QTest::newRow(qPrintable(text)) << text << expected;
        };
        row(u""_s, u""_s);
        row(u"{title}"_s, u"✦ 5h: 80% · W: 12%"_s);
        row(u"{percentage}% {tier} {color}"_s, u"12% critical #ff655b"_s);
        row(u"{fraction} {name} {window} {countdown}"_s, u"0.1234 A week weekly 2d 2h"_s);
        row(u"{gemini.5h}|{gemini.weekly}|{claude.5h}"_s, u"80|12|40"_s);
        row(u"{gemini.5h.tier} {gemini.5h.countdown}"_s, u"healthy 2h 3m"_s);
        row(u"[{argon.5h}] {argon.5h.color}"_s, u"[] #a9a9b0"_s);
        row(u"[{claude.5h.countdown}{claude.5h.reset}]"_s, u"[]"_s);
        row(u"{state} {source} {port} [{error}]"_s, u"connected program 4711 []"_s);
        row(u"{{{tier}}}"_s, u"{critical}"_s);
        row(u"a\\nb\\tc\\\\n\\x"_s, u"a\nb\tc\\n\\x"_s);
        row(u"%{{F{color}}}{title}%{{F-}}"_s, u"%{F#ff655b}✦ 5h: 80% · W: 12%%{F-}"_s);
    }
    void templatesAreFilledIn()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        const auto parsed = Template::parse(text);
        QVERIFY2(parsed, parsed ? "" : qPrintable(parsed.error()));
        QCOMPARE(parsed->render(sample(), now), expected);
    }

    void malformedTemplatesAreRejected_data()
    {
        QTest::addColumn<QString>("text");
        for (const auto *text : {"{", "}", "{titel}", "{}", "{title", "{gemini}", "{gemini.}",
                 "{other.5h.colour}", "{gpt.5h}", "{a.b.c.d}", "{ title }"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void malformedTemplatesAreRejected()
    {
        QFETCH(QString, text);
        QVERIFY(!Template::parse(text));
    }

    void everyFieldCanBeInATemplate()
    {
        for (const auto &field : templateFields())
            QVERIFY2(Template::parse(u'{' + field + u'}'), qPrintable(field));
    }

    void theExitStatusIsThatOfTheLowestBucket()
    {
        auto status = sample();
        QCOMPARE(exitStatusOf(status), ExitStatus::Critical);
        status.state.lowest = status.state.groups[1].buckets[0];
        QCOMPARE(exitStatusOf(status), ExitStatus::Success);
        status.state.lowest.reset();
        QCOMPARE(exitStatusOf(status), ExitStatus::Success);
        QCOMPARE(exitStatusOf(sampleOffline()), ExitStatus::Offline);
        status.state.connection = PublishedState::Connection::Connecting;
        QCOMPARE(exitStatusOf(status), ExitStatus::Offline);
    }

    void anOutlookStandsBehindTheTimes()
    {
        auto status = sample();
        auto &bucket = status.state.groups[0].buckets[0];
        bucket.outlook = u"runs-out"_s;
        bucket.runOutTime = now.toSecsSinceEpoch() + 5400;
        bucket.runOutChance = 0.8;
        const auto text = [&status](const TextLook &look = {}) {
            return renderText(status, now, look).split(u'\n').at(1);
        };
        QVERIFY2(text().endsWith(u"resets in 2h 3m 0s  runs out around 10:30 AM"_s)
                || text().endsWith(u"resets in 2h 3m  runs out around 10:30 AM"_s),
            qPrintable(text()));
        // On a narrow terminal it is the first to go.
        const TextLook narrow{.bars = TextLook::Bars::Ascii, .width = 50};
        QVERIFY(!text(narrow).contains(u"runs out"_s));
        QVERIFY(text(narrow).contains(u"resets in"_s));
        const auto parse = [](const QString &form) { return *Template::parse(form); };
        QCOMPARE(
            parse(u"{gemini.5h.outlook} {gemini.5h.runout} {gemini.5h.used}"_s).render(status, now),
            u"runs-out 2026-11-16T10:30:00 20"_s);
        QCOMPARE(parse(u"{claude.5h.outlook}{claude.5h.runout}"_s).render(status, now), QString());
        const auto waybar = QJsonDocument::fromJson(renderWaybar(status, now).toUtf8()).object();
        QVERIFY(waybar["class"_L1].toArray().contains(u"runs-out"_s));
        QVERIFY(waybar["tooltip"_L1].toString().contains(u", runs out around 10:30 AM"_s));
        const auto json
            = QJsonDocument::fromJson(renderJson(status, Layout::OneLine).toUtf8()).object();
        const auto buckets = json["groups"_L1][0]["buckets"_L1];
        QCOMPARE(buckets[0]["outlook"_L1].toString(), u"runs-out"_s);
        QCOMPARE(buckets[0]["runOutTime"_L1].toInteger(), *bucket.runOutTime);
        QCOMPARE(buckets[0]["runOutChance"_L1].toDouble(), 0.8);
        QVERIFY(buckets[1]["outlook"_L1].isNull());
        QCOMPARE(json["schema"_L1].toInt(), 1);

        bucket.outlook = u"close"_s;
        QVERIFY(text().endsWith(u"  may run out"_s));
        bucket.outlook = u"lasts"_s;
        QVERIFY(text().contains(u"resets in"_s) && !text().contains(u"run"_s));
        bucket.outlook = u"used-up"_s;
        QVERIFY(text().contains(u"used up, full again in 2h 3m"_s));
        QVERIFY(!text().contains(u"resets"_s));
    }
};

QTEST_GUILESS_MAIN(CliRenderingTest)

#include "cli_rendering_test.moc"
