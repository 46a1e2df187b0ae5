#include "forecast/history.h"
#include "support/full_disk.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::forecast;
using namespace std::chrono_literals;
using std::chrono::seconds;
using std::chrono::sys_seconds;

namespace {

/// 2026-11-22 12:00 UTC.
constexpr sys_seconds noon{1795348800s};

HistoryRow row(sys_seconds time, double left = 0.5, const QString &bucket = u"gemini-5h"_s)
{
    return {.time = time, .bucket = bucket, .left = left, .reset = time + 1h};
}

} // namespace

class HistoryTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_folder.emplace().isValid());
        m_path = m_folder->filePath(u"state/history"_s);
    }
    void cleanup() { m_folder.reset(); }

    void whatIsAppendedIsRead()
    {
        History history(m_path);
        QVERIFY(history.isEmpty());
        QList<HistoryRow> rows{row(noon, 1), row(noon + 1min, 0.123456),
            row(noon + 2min, 0, u"a \"b\", c"_s),
            {.time = noon + 3min, .bucket = u"ü"_s, .left = 1, .reset = {}}};
        QVERIFY(history.append(rows.mid(0, 1)));
        QVERIFY(history.append(rows.mid(1)));
        QCOMPARE(read(history), rows);
        QVERIFY(!history.isEmpty());
        QCOMPARE(content(u"2026-11.csv"_s),
            QByteArray("time,bucket,left,reset\n"
                       "1795348800,gemini-5h,1,1795352400\n"
                       "1795348860,gemini-5h,0.123456,1795352460\n"
                       "1795348920,\"a \"\"b\"\", c\",0,1795352520\n"
                       "1795348980,\xc3\xbc,1,\n"));
        // By somebody else.
        QVERIFY(QFile::remove(m_path + u"/2026-11.csv"));
        QVERIFY(history.isEmpty());
    }

    void aMonthHasAFileOfItsOwnForItsOwnerAlone()
    {
        History history(m_path);
        QVERIFY(history.append({row(noon), row(noon + 20 * 24h)}));
        QVERIFY(history.keep("{}"));
        QCOMPARE(QDir(m_path).entryList(QDir::Files, QDir::Name),
            QStringList({u"2026-11.csv"_s, u"2026-12.csv"_s, u"forecasts.json"_s}));
        for (const auto &file : QDir(m_path).entryInfoList(QDir::Files)) {
            struct stat status = {};
            QCOMPARE(::stat(QFile::encodeName(file.filePath()).constData(), &status), 0);
            QCOMPARE(status.st_mode & 0777, 0600U);
        }
        QCOMPARE(history.kept(), QByteArray("{}"));
    }

    void linesThatAreNoRowsAreSkipped_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("nothing") << QByteArray("\n");
        QTest::newRow("words") << QByteArray("a,b,c,d\n");
        QTest::newRow("too few") << QByteArray("1795348800,x,0.5\n");
        QTest::newRow("too many") << QByteArray("1795348800,x,0.5,1795348800,1\n");
        QTest::newRow("no number") << QByteArray("1795348800,x,nan,1795348800\n");
        QTest::newRow("more than all") << QByteArray("1795348800,x,1.5,1795348800\n");
        QTest::newRow("less than nothing") << QByteArray("1795348800,x,-0.1,1795348800\n");
        QTest::newRow("before the epoch") << QByteArray("-5,x,0.5,1795348800\n");
        QTest::newRow("far away") << QByteArray("1795348800,x,0.5,99999999999999\n");
        QTest::newRow("open quote") << QByteArray("1795348800,\"x,0.5,1795348800\n");
        QTest::newRow("bytes") << QByteArray("\xff\x00,\x01,\n", 6);
        QTest::newRow("a long id") << "1795348800," + QByteArray(200, 'x') + ",0.5,1795348800\n";
        QTest::newRow("a long line") << QByteArray(1'000'000, ',') + '\n';
        QTest::newRow("torn at the end") << QByteArray("1795348860,gemini-5h,0.4");
    }
    void linesThatAreNoRowsAreSkipped()
    {
        QFETCH(QByteArray, line);
        History history(m_path);
        QVERIFY(history.append({row(noon)}));
        write(u"2026-11.csv"_s, content(u"2026-11.csv"_s) + line);
        QCOMPARE(read(history), QList<HistoryRow>{row(noon)});
        // What comes next is read, also behind a line that was torn.
        QVERIFY(history.append({row(noon + 5min)}));
        QCOMPARE(read(history), QList<HistoryRow>({row(noon), row(noon + 5min)}));
    }

    void otherFilesAreLeftAlone()
    {
        History history(m_path);
        QVERIFY(history.append({row(noon)}));
        write(u"notes.csv"_s, content(u"2026-11.csv"_s));
        QVERIFY(QDir(m_path).mkdir(u"2026-10.csv"_s));
        QCOMPARE(::mkfifo(QFile::encodeName(m_path + u"/2026-09.csv").constData(), 0600), 0);
        QCOMPARE(read(history).size(), 1);
        QVERIFY(history.clear());
        QVERIFY(QFile::exists(m_path + u"/notes.csv"));
        QVERIFY(history.isEmpty());
    }

    void aPipeInPlaceOfTheFileIsAnError()
    {
        QVERIFY(QDir().mkpath(m_path));
        QCOMPARE(::mkfifo(QFile::encodeName(m_path + u"/2026-11.csv").constData(), 0600), 0);
        QVERIFY(!History(m_path).append({row(noon)}));
    }

    void aFullDiskCostsTheLine()
    {
        History history(m_path);
        QVERIFY(history.append({row(noon)}));
        {
            const brimwatch::test::FullDisk disk;
            QVERIFY(!history.append({row(noon + 1min)}));
        }
        QVERIFY(history.append({row(noon + 2min)}));
        QCOMPARE(read(history), QList<HistoryRow>({row(noon), row(noon + 2min)}));
    }

    void whatIsOldIsThinnedToARowAnHour()
    {
        History history(m_path);
        const auto old = noon - 40 * 24h;
        const auto recent = noon - 34 * 24h;
        QList<HistoryRow> rows;
        for (int i = 0; i < 6; ++i)
            rows.append(row(old + i * 10min, 0.9 - 0.1 * i));
        rows.append(row(old + 55min, 1)); // Full again in the same hour.
        rows.append(row(old + 10min, 0.2, u"other"_s));
        rows.append(row(old + 61min, 0.95));
        rows.append(row(recent, 0.5));
        rows.append(row(recent + 1min, 0.4));
        QVERIFY(history.append(rows));
        QVERIFY(history.thin(noon));
        QCOMPARE(read(history), QList<HistoryRow>({rows[5], rows[7], rows[8], rows[9], rows[10]}));
        QCOMPARE(
            QFileInfo(m_path + u"/2026-10.csv").permissions() & 0x0077, QFileDevice::Permissions());
        const auto before = content(u"2026-10.csv"_s);
        QVERIFY(history.thin(noon));
        QCOMPARE(content(u"2026-10.csv"_s), before);
    }

    void clearingDeletesAll()
    {
        History history(m_path);
        QVERIFY(history.append({row(noon)}));
        QVERIFY(history.keep("{}"));
        QVERIFY(history.clear());
        QVERIFY(!QFile::exists(m_path));
        QVERIFY(history.kept().isEmpty());
        QVERIFY(history.clear());
    }

    void aMillionLinesAreRead()
    {
        QByteArray text;
        for (int i = 0; i < 1'000'000; ++i)
            text += QByteArray::number(1'793'000'000 + i) + ",gemini-5h,0.5,1795352400\n";
        QVERIFY(QDir().mkpath(m_path));
        write(u"2026-11.csv"_s, text);
        qsizetype rows = 0;
        History(m_path).read([&rows](const HistoryRow &) { ++rows; });
        QCOMPARE(rows, 1'000'000);
    }

    void twoProgramsTearNoLines()
    {
        History one(m_path);
        History other(m_path);
        for (int i = 0; i < 100; ++i) {
            QVERIFY(one.append({row(noon + i * 1s, 0.5)}));
            QVERIFY(other.append({row(noon + i * 1s, 0.4)}));
        }
        QCOMPARE(read(one).size(), 200);
    }

    void itIsInTheStateFolder()
    {
        qputenv("XDG_STATE_HOME", "/somewhere");
        QCOMPARE(historyFolder(), u"/somewhere/brimwatch/history"_s);
        qputenv("XDG_STATE_HOME", "relative");
        QCOMPARE(historyFolder(), QDir::homePath() + u"/.local/state/brimwatch/history"_s);
        qunsetenv("XDG_STATE_HOME");
        QCOMPARE(historyFolder(), QDir::homePath() + u"/.local/state/brimwatch/history"_s);
    }

private:
    static QList<HistoryRow> read(const History &history)
    {
        QList<HistoryRow> rows;
        history.read([&rows](const HistoryRow &one) { rows.append(one); });
        return rows;
    }
    QByteArray content(const QString &name) const
    {
        QFile file(m_path + u'/' + name);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const QString &name, const QByteArray &text) const
    {
        QFile file(m_path + u'/' + name);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(text), text.size());
    }

    std::optional<QTemporaryDir> m_folder;
    QString m_path;
};

QTEST_APPLESS_MAIN(HistoryTest)
#include "history_test.moc"
