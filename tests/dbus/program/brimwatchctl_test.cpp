#include "dbus/program/program_process.h"
#include "platform/linux/bus/bus_names.h"
#include "support/fake_watcher.h"
#include "support/private_display.h"
#include "support/sample_daemon_process.h"

#include <QCoreApplication>
#include <QDBusMetaType>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <algorithm>
#include <csignal>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::Program;
using test::timeout;

namespace {

/// What brimwatchctl wrote, and how it ended.
struct Ended {
    int status = -1; ///< -1: by a signal, or not at all.
    QString output;
    QString errors;
};

/// A terminal session has no display.
QProcessEnvironment terminal()
{
    auto environment = Program::usual();
    environment.remove(u"DISPLAY"_s);
    return environment;
}

QProcessEnvironment terminalWithoutBus()
{
    auto environment = Program::withoutBus();
    environment.remove(u"DISPLAY"_s);
    return environment;
}

Ended run(const QString &program, const QStringList &arguments,
    const QProcessEnvironment &environment = terminal())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.waitForFinished(timeout);
    return {.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
        .output = QString::fromUtf8(process.readAllStandardOutput()),
        .errors = QString::fromUtf8(process.readAllStandardError())};
}

QString ctl()
{
    return QStringLiteral(BRIMWATCH_CTL);
}

Ended ask(const QStringList &arguments, const QProcessEnvironment &environment = terminal())
{
    return run(ctl(), arguments, environment);
}

QJsonObject json(const QString &text)
{
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

QByteArray quota(double fiveHours)
{
    return R"({"response":{"groups":[{"displayName":"Gemini Models","buckets":[{"bucketId":"g",)"
           R"("displayName":"Five hours","window":"5h","remainingFraction":)"
        + QByteArray::number(fiveHours) + R"(,"resetTime":"2099-01-01T00:00:00Z"}]}]}})";
}

/// brimwatchctl status --watch, and the lines that it has printed.
class Watching {
public:
    explicit Watching(const QStringList &arguments)
    {
        m_process.setProcessEnvironment(terminal());
        m_process.start(ctl(), QStringList{u"status"_s, u"--watch"_s} + arguments);
        m_process.waitForStarted(timeout);
    }
    ~Watching()
    {
        m_process.kill();
        m_process.waitForFinished(timeout);
    }
    Watching(const Watching &) = delete;
    Watching &operator=(const Watching &) = delete;
    Watching(Watching &&) = delete;
    Watching &operator=(Watching &&) = delete;

    QStringList lines()
    {
        while (m_process.canReadLine())
            m_lines.append(QString::fromUtf8(m_process.readLine()).chopped(1));
        return m_lines;
    }
    QString lastLine() { return lines().isEmpty() ? QString() : m_lines.constLast(); }
    qint64 pid() const { return m_process.processId(); }
    /// Its exit status once it has ended; -1 until then, and when a signal ended it.
    int exitStatus()
    {
        return m_process.state() == QProcess::NotRunning
                && m_process.exitStatus() == QProcess::NormalExit
            ? m_process.exitCode()
            : -1;
    }

private:
    QProcess m_process;
    QStringList m_lines;
};

} // namespace

/// brimwatchctl as a user has it: with the program and without, with a daemon and without.
class BrimwatchctlTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QTRY_VERIFY_WITH_TIMEOUT(owner().isEmpty(), timeout);
        test::emptyHome();
    }

    void withoutTheProgramItAsksTheDaemonOnce()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        for (const auto &environment : {terminal(), terminalWithoutBus()}) {
            const auto before = daemon.stats()->requests;
            const auto ended = ask({u"status"_s, u"--format"_s, u"json"_s}, environment);
            QCOMPARE(ended.errors, QString());
            QCOMPARE(ended.status, 0);
            const auto state = json(ended.output);
            QCOMPARE(state[u"source"_s].toString(), u"daemon"_s);
            QCOMPARE(state[u"state"_s].toString(), u"connected"_s);
            QCOMPARE(state[u"lowest"_s].toObject()[u"percentage"_s].toDouble(), 75.0);
            QCOMPARE(daemon.stats()->requests, before + 1);
        }
        QVERIFY(owner().isEmpty());
    }

    void withTheProgramItAsksNobodyElse()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
        // The first one joins the refresh that the start began.
        QCOMPARE(ask({u"status"_s, u"--template"_s, u"{source}"_s}).output, u"program\n"_s);
        const auto before = daemon.stats()->requests;
        const auto ended = ask({u"status"_s, u"--template"_s, u"{source} {gemini.5h}"_s});
        QCOMPARE(ended.output, u"program 75\n"_s);
        QCOMPARE(ended.errors, QString());
        QCOMPARE(daemon.stats()->requests, before);
    }

    void withNobodyToAskItIsOffline()
    {
        const auto ended = ask({u"status"_s});
        QCOMPARE(ended.status, 2);
        QCOMPARE(ended.output, QString());
        QVERIFY(ended.errors.startsWith(u"brimwatchctl: "_s));
        QVERIFY(ended.errors.contains(u"Antigravity daemon directory not found"_s));
        for (const auto *command : {"refresh", "toggle", "settings"}) {
            const auto refused = ask({QString::fromLatin1(command)});
            QCOMPARE(refused.status, 2);
            QCOMPARE(refused.errors, u"brimwatchctl: Brimwatch is not running\n"_s);
        }
    }

    void theExitStatusTellsTheHealth_data()
    {
        QTest::addColumn<double>("fraction");
        QTest::addColumn<int>("status");
        QTest::newRow("healthy") << 0.8 << 0;
        QTest::newRow("warning") << 0.3 << 0;
        QTest::newRow("critical") << 0.1 << 1;
    }
    void theExitStatusTellsTheHealth()
    {
        QFETCH(double, fraction);
        QFETCH(int, status);
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, fraction));
        for (const auto *format : {"text", "json", "waybar", "i3blocks"})
            QCOMPARE(ask({u"status"_s, u"--format"_s, QString::fromLatin1(format)}).status, status);
    }

    void wrongUsageIsSaidOnStandardError()
    {
        for (const auto &arguments : {QStringList{}, {u"configure"_s}, {u"status"_s, u"-x"_s},
                 {u"status"_s, u"--template"_s, u"{titel}"_s},
                 {u"status"_s, u"--watch"_s, u"--template"_s, u"{"_s}}) {
            const auto ended = ask(arguments);
            QCOMPARE(ended.status, 3);
            QCOMPARE(ended.output, QString());
            QVERIFY(ended.errors.startsWith(u"brimwatchctl: "_s));
        }
        QCOMPARE(ask({u"--version"_s}).output, u"brimwatchctl " BRIMWATCH_VERSION "\n"_s);
        QVERIFY(ask({u"--help"_s}).output.startsWith(u"Usage: brimwatchctl "_s));
    }

    void jsonIsAsItsSchemaSays()
    {
        const auto check = [](const QString &output) {
            const QString file = QDir::homePath() + "/instance.json"_L1;
            QVERIFY(write(file, output.toUtf8()));
            const auto ended = run(u"/usr/bin/python3"_s,
                {u"-m"_s, u"jsonschema"_s, u"-i"_s, file, QStringLiteral(BRIMWATCH_SCHEMA)});
            QVERIFY2(ended.status == 0, qPrintable(ended.errors + ended.output + output));
        };
        const QStringList command{u"status"_s, u"--format"_s, u"json"_s};
        check(ask(command).output);
        for (const auto *scenario : {"normal", "empty", "many", "long-names", "odd-names", "low"}) {
            test::SampleDaemonProcess daemon;
            QVERIFY(daemon.start({u"--scenario"_s, QString::fromLatin1(scenario)}));
            const Program program;
            QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
            check(ask(command).output);
            QVERIFY(daemon.terminate());
            QCOMPARE(ask({u"refresh"_s}).status, 2);
            const auto offline = ask(command);
            QCOMPARE(json(offline.output)[u"state"_s].toString(), u"offline"_s);
            check(offline.output);
        }
        // What the schema does not describe is found.
        const QString bad = QDir::homePath() + "/bad.json"_L1;
        QVERIFY(write(bad, R"({"schema": 1})"));
        QVERIFY(run(u"/usr/bin/python3"_s,
                    {u"-m"_s, u"jsonschema"_s, u"-i"_s, bad, QStringLiteral(BRIMWATCH_SCHEMA)})
                    .status
            != 0);
    }

    void refreshWaitsAndSaysWhatWentWrong()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
        QCOMPARE(ask({u"refresh"_s}).status, 0);
        QVERIFY(writeSummary(0.5));
        QCOMPARE(ask({u"refresh"_s}).status, 0);
        const QStringList percentage{u"status"_s, u"--template"_s, u"{percentage}"_s};
        QCOMPARE(ask(percentage).output, u"50\n"_s);
        QVERIFY(daemon.terminate());
        const auto ended = ask({u"refresh"_s});
        QCOMPARE(ended.status, 2);
        QVERIFY(ended.errors.startsWith(u"brimwatchctl: "_s));
        const auto status = ask(percentage);
        QCOMPARE(status.status, 2);
        QCOMPARE(status.output, u"50\n"_s);
        QCOMPARE(status.errors, ended.errors);
    }

    void diagnosticsHoldTheTokensBeginningAlone()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(daemon.start({u"--token"_s, u"token-that-nobody-may-see"_s}));
        const auto check = [](const Ended &ended) {
            QCOMPARE(ended.status, 0);
            QVERIFY(ended.output.startsWith(u"--- Brimwatch Diagnostics ---\n"_s));
            QVERIFY(ended.output.contains(u"Daemon CSRF: token-th...\n"_s));
            QVERIFY(!ended.output.contains(u"token-that"_s));
        };
        check(ask({u"diagnostics"_s}));
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
        QCOMPARE(ask({u"refresh"_s}).status, 0);
        check(ask({u"diagnostics"_s}));
    }

    void aProgramThatHangsIsSaidToHang()
    {
        Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
        program.send(SIGSTOP);
        const auto ended = ask({u"status"_s});
        QCOMPARE(ended.status, 2);
        QCOMPARE(ended.errors, u"brimwatchctl: Brimwatch is running, but it does not answer\n"_s);
    }

    void askingStartsNobodyButOpeningDoes()
    {
        const QString services = QDir::homePath() + "/services"_L1;
        QVERIFY(QDir().mkpath(services));
        QVERIFY(QFile::copy(QStringLiteral(BRIMWATCH_SERVICE_FILE),
            services + "/app.brimwatch.Brimwatch.service"_L1));
        test::OtherProgram other;
        const QString bus = u"org.freedesktop.DBus"_s;
        QCOMPARE(other.call(bus, u"/org/freedesktop/DBus"_s, bus, u"ReloadConfig"_s).type(),
            QDBusMessage::ReplyMessage);
        qDBusRegisterMetaType<QMap<QString, QString>>();
        // What the bus starts has the display of whoever told it.
        other.call(bus, u"/org/freedesktop/DBus"_s, bus, u"UpdateActivationEnvironment"_s,
            {QVariant::fromValue(
                QMap<QString, QString>{{u"DISPLAY"_s, qEnvironmentVariable("DISPLAY")},
                    {u"QT_QPA_PLATFORM"_s, u"xcb"_s}, {u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s}})});
        for (const auto *command : {"status", "refresh", "diagnostics"})
            ask({QString::fromLatin1(command)});
        QVERIFY(owner().isEmpty());
        QCOMPARE(ask({u"toggle"_s}).status, 0);
        QVERIFY(!owner().isEmpty());
        other.call(
            platform::bus::service, platform::bus::path, platform::bus::interface, u"Quit"_s);
        QTRY_VERIFY_WITH_TIMEOUT(owner().isEmpty(), timeout);

        // The bus remembers the display of a session that has ended.
        const auto activateOn = [&](const QString &x11) {
            other.call(bus, u"/org/freedesktop/DBus"_s, bus, u"UpdateActivationEnvironment"_s,
                {QVariant::fromValue(QMap<QString, QString>{{u"DISPLAY"_s, x11},
                    {u"WAYLAND_DISPLAY"_s, u"gone"_s}, {u"QT_QPA_PLATFORM"_s, QString()}})});
        };
        activateOn({});
        const auto refused = ask({u"toggle"_s});
        QCOMPARE(refused.status, 2);
        QCOMPARE(refused.errors,
            u"brimwatchctl: Process app.brimwatch.Brimwatch exited with status 1\n"_s);
        activateOn(qEnvironmentVariable("DISPLAY"));
        const auto opened = ask({u"toggle"_s});
        QCOMPARE(opened.errors, QString());
        QCOMPARE(opened.status, 0);
        other.call(
            platform::bus::service, platform::bus::path, platform::bus::interface, u"Quit"_s);
    }

    void watchPrintsALinePerChange()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        Watching watching({u"--template"_s, u"{state} {percentage} {error}"_s});
        QTRY_COMPARE_WITH_TIMEOUT(
            watching.lines(), (QStringList{u"offline  Brimwatch is not running"_s}), timeout);
        {
            const Program program;
            QTRY_COMPARE_WITH_TIMEOUT(watching.lastLine(), u"connected 75 "_s, timeout);
            const auto count = watching.lines().size();
            // Nothing that this template shows has changed.
            QCOMPARE(ask({u"refresh"_s}).status, 0);
            QVERIFY(writeSummary(0.5));
            QCOMPARE(ask({u"refresh"_s}).status, 0);
            QTRY_COMPARE_WITH_TIMEOUT(watching.lastLine(), u"connected 50 "_s, timeout);
            QCOMPARE(watching.lines().size(), count + 1);
        }
        QTRY_COMPARE_WITH_TIMEOUT(
            watching.lastLine(), u"offline  Brimwatch is not running"_s, timeout);
        const Program again;
        QTRY_COMPARE_WITH_TIMEOUT(watching.lastLine(), u"connected 50 "_s, timeout);
        ::kill(static_cast<pid_t>(watching.pid()), SIGINT);
        QTRY_COMPARE_WITH_TIMEOUT(watching.exitStatus(), 0, timeout);
    }

    void watchEndsWhenNobodyReads()
    {
        // Nothing changes behind the first line, so nothing is written that could fail.
        const auto ended = run(u"/bin/bash"_s,
            {u"-c"_s, u"\"$0\" status --watch | head -n 1; echo \"${PIPESTATUS[0]}\""_s, ctl()});
        QCOMPARE(ended.output, u"Brimwatch is not running\n0\n"_s);
        QCOMPARE(ended.errors, QString());
    }

    void aReaderThatLeavesEarlyIsNoFailure()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(daemon.start({u"--scenario"_s, u"many"_s}));
        const auto ended = run(u"/bin/bash"_s,
            {u"-c"_s, u"\"$0\" status --format json | true; echo \"${PIPESTATUS[0]}\""_s, ctl()});
        QVERIFY2(ended.output == u"0\n"_s || ended.output == u"1\n"_s, qPrintable(ended.output));
        QCOMPARE(ended.errors, QString());
    }

    void whatCannotBeWrittenIsSaid_data()
    {
        QTest::addColumn<QString>("arguments");
        for (const auto *arguments : {"status", "status --format json", "status --watch",
                 "diagnostics", "--version", "--help"})
            QTest::newRow(arguments) << QString::fromLatin1(arguments);
    }
    void whatCannotBeWrittenIsSaid()
    {
        QFETCH(QString, arguments);
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        const auto write = [&](const QString &redirection) {
            return run(u"/bin/bash"_s, {u"-c"_s, u"\"$0\" "_s + arguments + redirection, ctl()});
        };
        const auto full = write(u" >/dev/full"_s);
        QCOMPARE(full.errors,
            u"brimwatchctl: cannot write to standard output: No space left on device\n"_s);
        QCOMPARE(full.status, 2);
        // Nor does a file of our own take its place.
        const auto closed = write(u" >&-"_s);
        QCOMPARE(closed.errors,
            u"brimwatchctl: cannot write to standard output: Bad file descriptor\n"_s);
        QCOMPARE(closed.status, 2);
    }

    void commandsWithoutOutputNeedNone()
    {
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
        for (const auto *command : {"toggle", "toggle", "settings"}) {
            const auto ended = run(u"/bin/bash"_s,
                {u"-c"_s, u"exec \"$0\" "_s + QString::fromLatin1(command) + u" <&- >&- 2>&-"_s,
                    ctl()});
            QCOMPARE(ended.status, 0);
        }
    }

    void theHistoryNeedsNeitherProgramNorBus()
    {
        const auto empty = ask({u"history"_s}, terminalWithoutBus());
        QCOMPARE(empty.status, 0);
        QCOMPARE(empty.output, u"No history yet\n"_s);
        {
            test::SampleDaemonProcess daemon;
            QVERIFY(startDaemon(daemon, 0.75));
            const Program program;
            QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
            QCOMPARE(ask({u"refresh"_s}).status, 0);
        }
        for (const auto *format : {"text", "json", "csv", "svg", "html"}) {
            const auto ended = ask(
                {u"history"_s, u"--format"_s, QLatin1StringView(format)}, terminalWithoutBus());
            QCOMPARE(ended.status, 0);
            QVERIFY2(ended.output.contains(u"five hours"_s) || ended.output.contains(u",g,0.75,"_s)
                    || json(ended.output)[u"buckets"_s][0][u"id"_s] == u"g"_s,
                qPrintable(ended.output));
            QCOMPARE(ended.errors, QString());
        }
        const auto score
            = ask({u"history"_s, u"--score"_s, u"--format"_s, u"json"_s}, terminalWithoutBus());
        QCOMPARE(json(score.output)[u"scores"_s].toArray().size(), 2);
    }

    void clearingTheHistoryMakesARunningProgramForget()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!owner().isEmpty(), timeout);
        QCOMPARE(ask({u"refresh"_s}).status, 0);
        QVERIFY(writeSummary(0.5));
        QCOMPARE(ask({u"refresh"_s}).status, 0);
        const QStringList rows{u"history"_s, u"--format"_s, u"csv"_s};
        const auto ofGemini = [&rows] { return ask(rows).output.count(u",g,"_s); };
        QCOMPARE(ofGemini(), 2);
        const auto ended = ask({u"history"_s, u"--clear"_s});
        QCOMPARE(ended.status, 0);
        QCOMPARE(ended.output + ended.errors, QString());
        // What the program sees from then on is a new beginning.
        QCOMPARE(ofGemini(), 1);
        QVERIFY(ask(rows).output.contains(u",g,0.5,"_s));
    }

    void clearingNeedsNoProgramAndDeletesAll()
    {
        QVERIFY(writeHistory());
        const QString folder = historyFolder();
        QCOMPARE(ask({u"history"_s, u"--clear"_s}, terminalWithoutBus()).status, 0);
        QVERIFY(!QFileInfo::exists(folder));
        QCOMPARE(ask({u"history"_s, u"--clear"_s}, terminalWithoutBus()).status, 0);
    }

    void aHistoryThatCannotBeReadIsSaid()
    {
        QVERIFY(writeHistory());
        const QString other = historyFolder() + "/2026-12.csv"_L1;
        QVERIFY(QDir().mkpath(historyFolder()));
        QVERIFY(QFile::link(u"/dev/zero"_s, other));
        const auto ended = ask({u"history"_s, u"--format"_s, u"csv"_s}, terminalWithoutBus());
        QCOMPARE(ended.status, 2);
        QVERIFY(ended.output.contains(u"1795348800,gemini-5h,0.5,1795352400\n"_s));
        QCOMPARE(
            ended.errors, QString("brimwatchctl: the history cannot be read: "_L1 + other + u'\n'));
    }

    void aLongHistoryMayBeCutByItsReader()
    {
        QVERIFY(writeHistory());
        QFile file(historyFolder() + "/2026-11.csv"_L1);
        QVERIFY(file.open(QIODevice::Append));
        for (int i = 0; i < 100'000; ++i)
            file.write("1795348801,gemini-5h,0.4,1795352400\n");
        file.close();
        const auto ended = run(u"/bin/bash"_s,
            {u"-c"_s, u"set -o pipefail; \"$0\" history --format csv | head -n 1"_s, ctl()},
            terminalWithoutBus());
        QCOMPARE(ended.status, 0);
        QCOMPARE(ended.output, u"time,bucket,left,reset\n"_s);
        QCOMPARE(ended.errors, QString());
    }

    void thePageIsOpenedForItsOwnerAlone()
    {
        QVERIFY(writeHistory());
        const QString folder = QDir::homePath() + "/openers"_L1;
        QVERIFY(QDir().mkpath(folder));
        const QString opened = folder + "/opened"_L1;
        auto environment = terminalWithoutBus();
        environment.insert(u"PATH"_s, folder);
        const QStringList command{u"history"_s, u"--open"_s};
        const auto missing = ask(command, environment);
        QCOMPARE(missing.status, 2);
        const QString page = historyFolder() + "/usage.html"_L1;
        QCOMPARE(missing.errors,
            QString("brimwatchctl: xdg-open cannot be started; the page is "_L1 + page + u'\n'));

        const QString opener = folder + "/xdg-open"_L1;
        QVERIFY(write(opener, "#!/bin/sh\necho \"$1\" >'" + opened.toUtf8() + "'\n"));
        QVERIFY(
            QFile::setPermissions(opener, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(ask(command, environment).status, 0);
        const auto content = [](const QString &path) {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QTRY_COMPARE_WITH_TIMEOUT(content(opened), (page + u'\n').toUtf8(), timeout);
        QVERIFY(content(page).contains("gemini-5h"));
        const auto forOwner
            = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
        QCOMPARE(QFile::permissions(page), forOwner);
        // The next one takes its place, and none stays when the history is cleared.
        QCOMPARE(ask(command, environment).status, 0);
        QCOMPARE(QDir(historyFolder()).entryList({u"*.html*"_s}, QDir::Files).size(), 1);
        QCOMPARE(ask({u"history"_s, u"--clear"_s}, terminalWithoutBus()).status, 0);
        QVERIFY(!QFileInfo::exists(page));
    }

    void watchEndsBySignalWithoutAnError_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGINT") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGHUP") << SIGHUP;
    }
    void watchEndsBySignalWithoutAnError()
    {
        QFETCH(int, signal);
        Watching watching({});
        QTRY_VERIFY_WITH_TIMEOUT(!watching.lines().isEmpty(), timeout);
        ::kill(static_cast<pid_t>(watching.pid()), signal);
        QTRY_COMPARE_WITH_TIMEOUT(watching.exitStatus(), 0, timeout);
    }

    void aFileNameCannotWriteLinesOrEscapeSequences()
    {
        const QDir folder(QDir::homePath() + "/.gemini/antigravity/daemon"_L1);
        QVERIFY(QDir().mkpath(folder.path()));
        QVERIFY(write(folder.filePath(u"ls_\x1b[2J\nbrimwatchctl: forged.json"_s), "no JSON"));
        const auto ended = ask({u"status"_s});
        QCOMPARE(ended.errors.count(u'\n'), 1);
        QVERIFY2(!ended.errors.contains(u'\x1b'), qPrintable(ended.errors));
    }

    void watchLoadsNeitherGuiNorNetwork()
    {
        Watching watching({});
        QTRY_VERIFY_WITH_TIMEOUT(!watching.lines().isEmpty(), timeout);
        QFile maps(u"/proc/%1/maps"_s.arg(watching.pid()));
        QVERIFY(maps.open(QIODevice::ReadOnly));
        const QByteArray loaded = maps.readAll();
        QVERIFY(loaded.contains("libQt6DBus"));
        for (const auto *library : {"libQt6Gui", "libQt6Network", "libbrimwatch"})
            QVERIFY2(!loaded.contains(library), library);
    }

    void aTerminalGetsColoursUnlessItWantsNone()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY(startDaemon(daemon, 0.75));
        auto environment = terminal();
        environment.insert(u"TERM"_s, u"xterm"_s);
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        const auto shown = [](const QProcessEnvironment &in) {
            return run(u"script"_s,
                {u"-qec"_s, u"stty cols 60; '%1' status"_s.arg(ctl()), u"/dev/null"_s}, in)
                .output;
        };
        const QString coloured = shown(environment);
        QVERIFY2(coloured.contains(u"\x1b[32m"_s), qPrintable(coloured));
        QVERIFY(coloured.contains(u"█"_s));
        environment.insert(u"NO_COLOR"_s, u"1"_s);
        const QString plain = shown(environment);
        QVERIFY2(!plain.contains(u'\x1b'), qPrintable(plain));
        QVERIFY(plain.contains(u"█"_s));
        const auto lines = plain.split(u"\r\n"_s);
        QVERIFY(std::all_of(
            lines.cbegin(), lines.cend(), [](const QString &line) { return line.size() <= 60; }));
        environment.insert(u"LC_ALL"_s, u"C"_s);
        // Of such a locale Qt 6.8 warns.
        environment.remove(u"QT_FATAL_WARNINGS"_s);
        const QString ascii = shown(environment);
        QVERIFY2(ascii.contains(u"##--"_s), qPrintable(ascii));
        const auto piped = ask({u"status"_s});
        QVERIFY(!piped.output.contains(u'\x1b') && !piped.output.contains(u"█"_s));
        QVERIFY(piped.output.contains(u"75.0%"_s));
    }

private:
    static QString owner()
    {
        test::OtherProgram other;
        return other.ownerOf(platform::bus::service);
    }

    static bool write(const QString &path, const QByteArray &text)
    {
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    }
    static QString historyFolder()
    {
        return QDir::homePath() + "/.local/state/brimwatch/history"_L1;
    }
    static bool writeHistory()
    {
        return QDir().mkpath(historyFolder())
            && write(historyFolder() + "/2026-11.csv"_L1,
                "time,bucket,left,reset\n1795348800,gemini-5h,0.5,1795352400\n");
    }
    static QString summaryFile() { return QDir::homePath() + "/summary.json"_L1; }
    static bool writeSummary(double fiveHours) { return write(summaryFile(), quota(fiveHours)); }
    static bool startDaemon(test::SampleDaemonProcess &daemon, double fiveHours)
    {
        return writeSummary(fiveHours) && daemon.start({u"--summary"_s, summaryFile()});
    }
};

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    BrimwatchctlTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "brimwatchctl_test.moc"
