#include "cli/command_line.h"
#include "cli/exit_status.h"
#include "cli/fetch_library.h"
#include "cli/history/forms.h"
#include "cli/history/usage.h"
#include "cli/output/render.h"
#include "cli/terminal.h"
#include "cli/watch.h"
#include "platform/linux/bus/running_program.h"
#include "platform/linux/process_start.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDateTime>
#include <QProcess>

#include <csignal>

using namespace brimwatch;
using namespace brimwatch::cli;
using namespace Qt::Literals::StringLiterals;
using platform::ProgramError;
using platform::RunningProgram;

namespace {

/// Says why nothing was done.
ExitStatus failed(const QString &reason)
{
    writeError(reason);
    return ExitStatus::Offline;
}

/// Prints what was asked for.
ExitStatus print(const QString &text)
{
    return writeOut(text) == Written::Failed ? ExitStatus::Offline : ExitStatus::Success;
}

/// The state of the running program, once the program itself knows it.
Result<Status, ProgramError> askProgram(const RunningProgram &program)
{
    auto state = program.state();
    if (state && state->connection == platform::PublishedState::Connection::Connecting) {
        // It has just started: its first refresh is under way, and this joins it. However that
        // ends, the state says so.
        static_cast<void>(program.refresh());
        state = program.state();
    }
    return state.map([](const platform::PublishedState &known) {
        return Status{.state = known, .source = Status::Source::Program};
    });
}

Status askAnybody(const RunningProgram &program)
{
    const auto status = askProgram(program);
    if (status)
        return *status;
    if (status.error().kind != ProgramError::Kind::NotRunning)
        return offlineStatus(status.error().message);
    const auto outcome = fetchOnce();
    return outcome ? Status{.state = outcome->state, .source = Status::Source::Daemon}
                   : offlineStatus(outcome.error());
}

ExitStatus printStatus(const RunningProgram &program, const Options &options)
{
    const Status status = askAnybody(program);
    const auto written
        = writeOut(render(options, status, QDateTime::currentDateTime(), lookOfStandardOutput()));
    if (!status.isOnline())
        writeError(offlineReason(status));
    return written == Written::Failed ? ExitStatus::Offline : exitStatusOf(status);
}

ExitStatus watch(const QDBusConnection &bus, const Options &options)
{
    if (!bus.isConnected())
        return failed(u"there is no session bus on which to watch Brimwatch"_s);
    const Watch watching(bus, options);
    QObject::connect(
        &watching, &Watch::ended, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
    return watching.hasFailed() ? ExitStatus::Offline : ExitStatus::Success;
}

ExitStatus exitStatusOf(const Result<void, ProgramError> &done)
{
    return done ? ExitStatus::Success : failed(done.error().message);
}

ExitStatus printDiagnostics(const RunningProgram &program)
{
    auto report = program.diagnostics();
    if (!report && report.error().kind == ProgramError::Kind::NotRunning) {
        const auto outcome = fetchOnce();
        if (!outcome)
            return failed(outcome.error());
        report = outcome->report;
    }
    if (!report)
        return failed(report.error().message);
    return print(*report);
}

ExitStatus printCsv(const forecast::History &history)
{
    auto written = Written::All;
    writeHistoryCsv(history, [&written](const QString &text) {
        written = writeOut(text);
        return written == Written::All;
    });
    return written == Written::Failed ? ExitStatus::Offline : ExitStatus::Success;
}

QString render(Format format, const QList<BucketUsage> &usages, const QDateTime &now)
{
    switch (format) {
    case Format::Json:
        return renderHistoryJson(usages);
    case Format::Svg:
        return renderHistorySvg(usages, now);
    case Format::Html:
        return renderHistoryHtml(usages, now);
    default:
        return renderHistory(usages, now, lookOfStandardOutput());
    }
}

/// Opens it as the program opens pages, with xdg-open.
ExitStatus openPage(forecast::History history)
{
    const auto now = QDateTime::currentDateTime();
    const auto page = history.keepPage(renderHistoryHtml(usageOf(history, now), now).toUtf8());
    if (!page)
        return failed(u"the page cannot be written: %1"_s.arg(page.error()));
    if (!QProcess::startDetached(u"xdg-open"_s, {*page}))
        return failed(u"xdg-open cannot be started; the page is %1"_s.arg(*page));
    return ExitStatus::Success;
}

/// What a running program remembers goes too: at its next refresh, which is asked for.
ExitStatus clear(forecast::History history, const RunningProgram &program)
{
    const auto done = history.clear();
    if (!done)
        return failed(u"the history cannot be deleted: %1"_s.arg(done.error()));
    static_cast<void>(program.refresh());
    return ExitStatus::Success;
}

ExitStatus runHistory(const Options &options, const RunningProgram &program)
{
    const forecast::History history(forecast::historyFolder());
    switch (options.historyTask) {
    case HistoryTask::Open:
        return openPage(history);
    case HistoryTask::Clear:
        return clear(history, program);
    case HistoryTask::Score:
    case HistoryTask::Print:
        break;
    }
    // What can be read is printed all the same.
    const auto readable = history.check();
    const auto ended
        = [&readable](ExitStatus status) { return readable ? status : failed(readable.error()); };
    if (options.format == Format::Csv)
        return ended(printCsv(history));
    const auto now = QDateTime::currentDateTime();
    const auto usages = usageOf(history, now);
    if (options.historyTask == HistoryTask::Print)
        return ended(print(render(options.format, usages, now)));
    return ended(
        print(options.format == Format::Json ? renderScoreJson(usages)
                                             : renderScore(usages, lookOfStandardOutput())));
}

ExitStatus run(const Options &options)
{
    const auto bus = QDBusConnection::sessionBus();
    const RunningProgram program(bus);
    switch (options.command) {
    case Command::Refresh:
        return exitStatusOf(program.refresh());
    case Command::Toggle:
        return exitStatusOf(program.toggle());
    case Command::Settings:
        return exitStatusOf(program.showSettings());
    case Command::History:
        return runHistory(options, program);
    case Command::Diagnostics:
        return printDiagnostics(program);
    default:
        return options.watch ? watch(bus, options) : printStatus(program, options);
    }
}

} // namespace

int main(int argc, char **argv)
{
    platform::beginProcess();
    // A write then fails when nobody reads any more, instead of ending the process.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    detectTerminal();
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto options = parseCommandLine(arguments);
    if (!options) {
        writeError(options.error());
        writeError(u"try 'brimwatchctl --help'"_s);
        return static_cast<int>(ExitStatus::WrongUsage);
    }
    if (options->command == Command::Version || options->command == Command::Help) {
        return static_cast<int>(print(options->command == Command::Help
                ? helpText()
                : u"brimwatchctl "_s + QStringLiteral(BRIMWATCH_VERSION) + u'\n'));
    }
    if (options->watch)
        blockEndSignals();

    const QCoreApplication application(argc, argv);
    const ExitStatus status = run(*options);
    // Deliberate: no destructors, since all is written. In Qt 6.4 QtDBus's thread may still be
    // decoding a message, of types that they have removed already.
    std::_Exit(static_cast<int>(status));
}
