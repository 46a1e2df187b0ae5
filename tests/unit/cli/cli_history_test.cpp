#include "cli/history/forms.h"
#include "cli/history/usage.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::cli;
using namespace std::chrono_literals;
using std::chrono::sys_seconds;

namespace {

/// Monday 2026-11-16 0:00 UTC.
constexpr sys_seconds monday{1794787200s};
const QDateTime now(QDate(2026, 11, 17), QTime(11, 30), Qt::UTC);

constexpr TextLook braille{.colors = false, .bars = TextLook::Bars::Blocks, .width = 80};
constexpr TextLook ascii{.colors = false, .bars = TextLook::Bars::Ascii, .width = 80};

bool isAscii(const QString &text)
{
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x80; });
}

/// The names of all elements with this attribute, or of all.
QStringList elements(const QString &document, const QString &attribute = {})
{
    QStringList names;
    QXmlStreamReader reader(document);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement
            && (attribute.isEmpty() || reader.attributes().hasAttribute(attribute)))
            names.append(reader.name().toString());
    }
    return reader.hasError() ? QStringList{reader.errorString()} : names;
}

} // namespace

class CliHistoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): there is only one thread.
        QVERIFY(std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr);
    }
    void init()
    {
        QVERIFY(m_folder.emplace().isValid());
        m_history.emplace(m_folder->filePath(u"history"_s));
        QVERIFY(m_history->keep(R"({"buckets":{"five":{"kind":"5h"}}})"));
        add(9h, 1, 14h);
        add(9h + 30min, 0.9, 14h);
        add(11h, 0.5, 14h);
        add(12h, 0, 14h);
        add(33h, 0.99, 38h);
        add(35h, 0.4, 38h);
    }

    void windowsHavePeakAndWhetherTheyRanOut()
    {
        const auto usages = usageOf(*m_history, now);
        QCOMPARE(usages.size(), 1);
        QCOMPARE(usages[0].window, u"5h"_s);
        QVERIFY(usages[0].isUnderWay);
        QCOMPARE(usages[0].windows.size(), 2);
        QCOMPARE(usages[0].windows[0].start, monday + 9h);
        QCOMPARE(usages[0].windows[0].peak, 1.0);
        QCOMPARE(usages[0].windows[0].ranOut, std::optional(monday + 12h));
        QCOMPARE(usages[0].windows[1].peak, 0.6);
        QVERIFY(!usages[0].windows[1].ranOut);
        QCOMPARE(usedAt(usages[0].windows[1], monday + 34h), 0.3);
        QCOMPARE(goneOf(usages[0].windows[1], now), 0.5);
        // Monday is the fifth day of the epoch's week; half of the quota was used from 11 to 12.
        QCOMPARE(usages[0].hours.at(4 * 24 + 11), 0.5);
    }

    void daysAndHoursAreThoseOfTheUser()
    {
        const auto there = now.toOffsetFromUtc(-3 * 3600);
        const auto usages = usageOf(*m_history, there);
        QCOMPARE(usages[0].hours.at(4 * 24 + 8), 0.5);
        QVERIFY(renderHistory(usages, there, {}).contains(u"Nov 16, 2026 at 6:00 AM"_s));
    }

    void whereNothingIsKeptTheResetsTellTheWindow_data()
    {
        QTest::addColumn<int>("hours");
        QTest::addColumn<QString>("window");
        QTest::newRow("five hours") << 5 << u"5h"_s;
        QTest::newRow("a part of them") << 3 << u"5h"_s;
        QTest::newRow("a week") << 7 * 24 << u"weekly"_s;
        QTest::newRow("a part of it") << 5 * 24 << u"weekly"_s;
        QTest::newRow("a day") << 24 << QString();
        QTest::newRow("minutes") << 1 << QString();
        QTest::newRow("a month") << 30 * 24 << QString();
    }
    void whereNothingIsKeptTheResetsTellTheWindow()
    {
        QFETCH(int, hours);
        QFETCH(QString, window);
        QVERIFY(m_history->append({{.time = monday,
            .bucket = u"other"_s,
            .left = 0.5,
            .reset = monday + std::chrono::hours(hours)}}));
        const auto usages = usageOf(*m_history, now);
        QCOMPARE(usages.size(), 2);
        QCOMPARE(usages[1].window, window);
        if (window.isEmpty()) {
            QVERIFY(usages[1].windows.isEmpty());
            QVERIFY(
                renderHistory(usages, now, {}).contains(u"other\n  Its window is not known\n"_s));
        }
    }

    void eightWindowsAreKeptBesideTheOneUnderWay()
    {
        for (int i = 0; i < 20; ++i)
            add(-6h * (20 - i) - 1h, 1 - 0.01 * i, -6h * (20 - i) + 4h);
        const History sorted = sortedHistory();
        const auto usages = usageOf(sorted, now);
        QCOMPARE(usages[0].windows.size(), 1 + mostWindowsBefore);
        QCOMPARE(usages[0].windows.constLast().peak, 0.6);
    }

    void theTextTellsBoth()
    {
        const auto usages = usageOf(*m_history, now);
        const QString plain = renderHistory(usages, now, {});
        QCOMPARE(plain,
            u"five (five hours)\n"
            "  60% used, resets in 2h 30m, evenly used it would be 50%\n"
            "  Windows before\n"
            "    Nov 16, 2026 at 9:00 AM  100%  ran out 2h 0m before the reset\n"_s);
        const QString drawn = renderHistory(usages, now, braille);
        const auto lines = drawn.split(u'\n');
        // Six rows of sixty characters.
        for (int row = 2; row < 8; ++row) {
            QCOMPARE(lines[row].size(), 67);
            QVERIFY(lines[row][7].unicode() >= 0x2800 && lines[row][7].unicode() < 0x2900);
        }
        QVERIFY2(lines.contains(u"  Mon   ·········▒▓█············"_s), qPrintable(drawn));
        QVERIFY2(
            drawn.contains(u"Nov 16, 2026 at 9:00 AM  ███████████  100%  ran out 2h 0m before"_s),
            qPrintable(drawn));
        // Half of the window has gone: the course ends there, the even line does not.
        QCOMPARE(lines[2].last(1), u"⠁"_s);
        QCOMPARE(lines[7].last(1), u"⠀"_s);
    }

    void aTerminalThatIsNotUtf8GetsPicturesInAscii()
    {
        const QString drawn = renderHistory(usageOf(*m_history, now), now, ascii);
        QVERIFY2(isAscii(drawn), qPrintable(drawn));
        QVERIFY(drawn.contains(u"  Mon   .........+*#............\n"_s));
        QVERIFY(drawn.contains(u'*'));
    }

    void linesFitNarrowTerminals_data()
    {
        QTest::addColumn<int>("width");
        for (const int width : {20, 24, 30, 40, 53, 60, 79, 80, 200})
            QTest::addRow("%d", width) << width;
    }
    void linesFitNarrowTerminals()
    {
        QFETCH(int, width);
        const auto usages = usageOf(*m_history, now);
        for (auto look : {braille, ascii}) {
            look.width = width;
            for (const auto &line : renderHistory(usages, now, look).split(u'\n'))
                QVERIFY2(line.size() <= width, qPrintable(line));
        }
    }

    void colorsAreThoseOfTheTiers()
    {
        auto look = braille;
        look.colors = true;
        const QString text = renderHistory(usageOf(*m_history, now), now, look);
        QVERIFY(text.startsWith(u"\x1b[1mfive (five hours)\x1b[0m\n"_s));
        // 60 % used is a warning, 100 % critical.
        QVERIFY(text.contains(u"  100% \x1b[33m"_s));
        QVERIFY(text.contains(u"\x1b[31m100%\x1b[0m"_s));
        QVERIFY(!renderHistory(usageOf(*m_history, now), now, braille).contains(u'\x1b'));
    }

    void whatIsUsedUpSaysWhenItIsFullAgain()
    {
        add(35h + 15min, 0, 38h);
        QVERIFY(renderHistory(usageOf(*m_history, now), now, {})
                .contains(u"  used up, full again in 2h 30m\n"_s));
    }

    void afterTheResetNoWindowIsUnderWay()
    {
        const auto usages = usageOf(*m_history, now.addDays(1));
        QVERIFY(!usages[0].isUnderWay);
        QCOMPARE(usages[0].windows.size(), 2);
        QVERIFY(renderHistory(usages, now.addDays(1), braille)
                .startsWith(u"five (five hours)\n  Windows before\n"_s));
    }

    void withoutHistoryEachFormSaysSo()
    {
        const forecast::History none(m_folder->filePath(u"none"_s));
        const auto usages = usageOf(none, now);
        QVERIFY(usages.isEmpty());
        QCOMPARE(renderHistory(usages, now, braille), u"No history yet\n"_s);
        QVERIFY(renderHistoryHtml(usages, now).contains(u"No history yet"_s));
        QVERIFY(renderHistorySvg(usages, now).contains(u"No history yet"_s));
        QCOMPARE(QJsonDocument::fromJson(renderHistoryJson(usages).toUtf8()).object(),
            QJsonObject({{u"schema"_s, 1}, {u"buckets"_s, QJsonArray()}}));
        QCOMPARE(csvOf(none), u"time,bucket,left,reset\n"_s);
        QVERIFY(renderScore(usages, {}).contains(u"No window with a forecast"_s));
    }

    void jsonHasTheWindows()
    {
        const auto json
            = QJsonDocument::fromJson(renderHistoryJson(usageOf(*m_history, now)).toUtf8());
        const auto bucket = json["buckets"_L1][0];
        QCOMPARE(bucket["window"_L1].toString(), u"5h"_s);
        const auto windows = bucket["windows"_L1];
        QCOMPARE(windows[0]["peak"_L1].toDouble(), 1.0);
        QCOMPARE(
            windows[0]["ranOut"_L1].toInteger(), qint64{(monday + 12h).time_since_epoch().count()});
        QVERIFY(windows[0]["course"_L1].isNull());
        QVERIFY(windows[1]["ranOut"_L1].isNull());
        QVERIFY(windows[1]["isUnderWay"_L1].toBool());
        QCOMPARE(windows[1]["course"_L1].toArray().size(), 2);
        // From Monday on.
        QCOMPARE(bucket["hours"_L1].toArray().size(), 168);
        QCOMPARE(bucket["hours"_L1][11].toDouble(), 0.5);
    }

    void csvHasAllRows()
    {
        const auto lines = csvOf(*m_history).trimmed().split(u'\n');
        QCOMPARE(lines.size(), 7);
        QCOMPARE(lines[0], u"time,bucket,left,reset"_s);
        QCOMPARE(lines[2], u"1794821400,five,0.9,1794837600"_s);
        int pieces = 0;
        writeHistoryCsv(*m_history, [&pieces](const QString &) { return ++pieces > 1; });
        QCOMPARE(pieces, 1);
    }

    void theSvgIsOneDocumentThatSaysWhatItShows()
    {
        const QString svg = renderHistorySvg(usageOf(*m_history, now), now);
        const auto names = elements(svg);
        QCOMPARE(names.constFirst(), u"svg"_s);
        QCOMPARE(names.count(u"svg"_s), 1);
        QCOMPARE(names.count(u"path"_s), 2);
        QVERIFY(svg.contains(u"60% used, resets in 2h 30m"_s));
        QVERIFY(svg.contains(u"most is used on Mondays from 11:00 to 12:00"_s));
        QVERIFY(svg.contains(u"prefers-color-scheme: dark"_s));
    }

    void theHtmlLoadsAndRunsNothing()
    {
        const QString html = renderHistoryHtml(usageOf(*m_history, now), now);
        const auto names = elements(html);
        QCOMPARE(names.constFirst(), u"html"_s);
        for (const auto *name : {"script", "link", "img", "iframe", "image", "use"})
            QVERIFY2(!names.contains(QLatin1StringView(name)), name);
        for (const auto *attribute : {"href", "src", "onload", "onclick"})
            QCOMPARE(elements(html, QLatin1StringView(attribute)), QStringList());
        QVERIFY(html.contains(u"default-src 'none'"_s));
        QVERIFY(!html.contains(u"url("_s) && !html.contains(u"@import"_s));
        QVERIFY(html.contains(u"prefers-color-scheme: dark"_s));
    }

    void eachPictureOfTheHtmlHasATextForScreenReaders()
    {
        const QString html = renderHistoryHtml(usageOf(*m_history, now), now);
        const auto names = elements(html);
        QCOMPARE(names.count(u"svg"_s), 3);
        QCOMPARE(names.count(u"desc"_s), 3);
        QCOMPARE(elements(html, u"aria-labelledby"_s), QStringList(3, u"svg"_s));
        QVERIFY(html.contains(u"60% used, resets in 2h 30m, evenly used it would be 50%</desc>"_s));
        QVERIFY(html.contains(u"Nov 16, 2026 at 9:00 AM: 100% used, ran out 2h 0m before the "
                              "reset</desc>"_s));
        // The windows are a table as well.
        QVERIFY(html.contains(u"<tr><td>Nov 16, 2026 at 9:00 AM</td><td>100% used, ran out 2h 0m "
                              "before the reset</td></tr>"_s));
    }

    void namesAreTextInEachForm()
    {
        const QString name = u"<script>&\"'\u202e,"_s + QChar(0xffff);
        QVERIFY(
            m_history->append({{.time = monday, .bucket = name, .left = 0.5, .reset = monday + 5h},
                {.time = monday, .bucket = u"x\x1b[2J\ny"_s, .left = 0.5, .reset = monday + 5h}}));
        const auto usages = usageOf(*m_history, now);
        QCOMPARE(usages.size(), 2);
        QVERIFY(!elements(renderHistoryHtml(usages, now)).contains(u"script"_s));
        QVERIFY(elements(renderHistoryHtml(usages, now)).contains(u"section"_s));
        QVERIFY(elements(renderHistorySvg(usages, now)).contains(u"rect"_s));
        QVERIFY(!renderHistory(usages, now, braille).contains(u'\x1b'));
        QVERIFY(!csvOf(*m_history).contains(u'\x1b'));
    }

    void theScoreCountsWindowsSeenToTheirEnd()
    {
        const History history = officeWeeks();
        const auto usages = usageOf(history, now);
        const auto &score = usages[0].score;
        // Twenty windows on working days of the last five weeks, each fifth of which ran out.
        QCOMPARE(score.windows, 25);
        QCOMPARE(score.ranOut, 5);
        QVERIFY(score.warnedInTime >= 4);
        QVERIFY(score.warnedInVain <= 4);
        QVERIFY(score.squares / score.windows < 0.16);
        const QString text = renderScore(usages, {});
        QVERIFY2(text.contains(u"  Windows that ran out    5 of 25\n"_s), qPrintable(text));
        QVERIFY(text.contains(u"  Brier score             0."_s));
        QVERIFY(text.contains(u", always saying 20% would have 0.160\n"_s));
        std::int64_t chances = 0;
        for (const auto &tenth : score.tenths)
            chances += tenth.chances;
        const auto scores
            = QJsonDocument::fromJson(renderScoreJson(usages).toUtf8())["scores"_L1].toArray();
        QCOMPARE(scores.size(), 2);
        QCOMPARE(scores[0]["windows"_L1].toInt(), 25);
        QVERIFY(scores[0]["isEnough"_L1].toBool());
        std::int64_t written = 0;
        for (const auto &tenth : scores[0]["tenths"_L1].toArray())
            written += tenth["forecasts"_L1].toInteger();
        QCOMPARE(written, chances);
        QVERIFY(!scores[1]["isEnough"_L1].toBool());
        QVERIFY(scores[1]["brier"_L1].isNull());
    }

    void withFewWindowsTheScoreSaysThatTheyAreTooFew()
    {
        const auto usages = usageOf(*m_history, now);
        QCOMPARE(usages[0].score.windows, 1);
        const QString text = renderScore(usages, {});
        QVERIFY(text.contains(u"  Windows that ran out    1 of 1\n"_s));
        QVERIFY(text.contains(u"  Too few windows to say how often the forecast is right\n"_s));
        QVERIFY(!text.contains(u"Brier"_s));
    }

    void aWindowUnderWayIsNotScored()
    {
        QCOMPARE(usageOf(*m_history, now)[0].score.windows, 1);
        QCOMPARE(usageOf(*m_history, now.addDays(1))[0].score.windows, 2);
        // Nor one that is too old: of that a row an hour is left.
        QCOMPARE(usageOf(*m_history, now.addDays(60))[0].score.windows, 0);
    }

    void aClockThatWasSetBackIsHarmless()
    {
        add(33h + 30min, 0.8, 38h);
        add(34h, 0.7, 38h);
        const auto usages = usageOf(*m_history, now);
        const auto &course = usages[0].windows.constLast().course;
        QVERIFY(std::ranges::is_sorted(
            course, [](const auto &a, const auto &b) { return a.time < b.time; }));
        for (const double hour : usages[0].hours)
            QVERIFY(hour >= 0 && std::isfinite(hour));
    }

    void itsMemoryIsBounded()
    {
        QList<forecast::HistoryRow> rows;
        for (int i = 0; i < 2000; ++i)
            rows.append({.time = monday + std::chrono::seconds(i),
                .bucket = u"bucket %1"_s.arg(i),
                .left = 0.5,
                .reset = monday + 5h});
        for (int i = 0; i < 18'000; ++i)
            rows.append({.time = monday + 33h + std::chrono::seconds(i),
                .bucket = u"five"_s,
                .left = 1 - i / 18'001.0,
                .reset = monday + 38h});
        QVERIFY(m_history->append(rows));
        const auto usages = usageOf(*m_history, now);
        QCOMPARE(usages.size(), 256);
        for (const auto &usage : usages) {
            for (const auto &window : usage.windows)
                QVERIFY(window.course.size() < 1100);
        }
    }

private:
    using History = forecast::History;

    static QString csvOf(const History &history)
    {
        QString csv;
        writeHistoryCsv(history, [&csv](const QString &text) {
            csv += text;
            return true;
        });
        return csv;
    }

    void add(std::chrono::seconds since, double left, std::chrono::seconds reset)
    {
        QVERIFY(m_history->append({{.time = monday + since,
            .bucket = u"five"_s,
            .left = left,
            .reset = monday + reset}}));
    }

    /// All rows in the order of time, in a folder of their own.
    History sortedHistory() const
    {
        QList<forecast::HistoryRow> rows;
        m_history->read([&rows](const auto &row) { rows.append(row); });
        std::ranges::sort(rows, {}, &forecast::HistoryRow::time);
        History history(m_folder->filePath(u"sorted"_s));
        if (!history.append(rows))
            qFatal("no history");
        return history;
    }

    /// Five weeks before now, with a window each working day. Each fifth runs out after four hours.
    History officeWeeks() const
    {
        QList<forecast::HistoryRow> rows;
        int count = 0;
        for (auto day = monday - 33 * 24h; day < monday; day += 24h) {
            if ((day - monday) / 24h % 7 < -6 || (day - monday) / 24h % 7 == -5)
                continue;
            if (count == 25)
                break;
            const bool runsOut = ++count % 5 == 0;
            const auto begin = day + 9h;
            for (int minute = 0; minute <= 240; minute += 5)
                rows.append({.time = begin + std::chrono::minutes(minute),
                    .bucket = u"five"_s,
                    .left = std::max(0.0, 1 - minute / (runsOut ? 240.0 : 800.0)),
                    .reset = begin + 5h});
        }
        History history(m_folder->filePath(u"weeks"_s));
        if (!history.append(rows))
            qFatal("no history");
        return history;
    }

    std::optional<QTemporaryDir> m_folder;
    std::optional<History> m_history;
};

QTEST_APPLESS_MAIN(CliHistoryTest)
#include "cli_history_test.moc"
