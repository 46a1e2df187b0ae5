#include "cli/command_line.h"
#include "cli/fetch_library.h"
#include "cli/output.h"
#include "cli/status.h"
#include "cli/watch.h"
#include "platform/linux/bus/running_program.h"

#include <QCoreApplication>
#include <QDBusConnection>

#include <csignal>
#include <cstdlib>

using namespace brimwatch;
using namespace brimwatch::cli;
using namespace Qt::Literals::StringLiterals;
using platform::ProgramError;
using platform::RunningProgram;

namespace {

constexpr int fine = 0;
constexpr int offline = 2;
constexpr int wrongUsage = 3;

int wrong(const QString &what)
{
    writeError(what);
    writeError(u"try 'brimwatchctl --help'"_s);
    return wrongUsage;
}

/// Tells the state of the running program, once the program itself knows it.
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

int printStatus(const RunningProgram &program, const Options &options)
{
    // A template that is wrong is so before anybody is asked.
    if (const auto tried = render(options, {}, {}); !tried)
        return wrong(tried.error());
    const Status status = askAnybody(program);
    if (const auto text = render(options, status, lookOfStandardOutput()))
        static_cast<void>(writeOut(*text));
    if (!status.isOnline())
        writeError(status.state.error);
    return exitStatusOf(status);
}

int watch(const QDBusConnection &bus, const Options &options)
{
    if (const auto tried = render(options, {}, {}); !tried)
        return wrong(tried.error());
    if (!bus.isConnected()) {
        writeError(u"there is no session bus on which to watch Brimwatch"_s);
        return offline;
    }
    const Watch watching(bus, options);
    QObject::connect(&watching, &Watch::ended, QCoreApplication::instance(),
        [](int exitStatus) { QCoreApplication::exit(exitStatus); });
    return QCoreApplication::exec();
}

int outcomeOf(const Result<void, ProgramError> &done)
{
    if (done)
        return fine;
    writeError(done.error().message);
    return offline;
}

int printDiagnostics(const RunningProgram &program)
{
    auto report = program.diagnostics();
    if (!report && report.error().kind == ProgramError::Kind::NotRunning) {
        const auto outcome = fetchOnce();
        if (!outcome) {
            writeError(outcome.error());
            return offline;
        }
        report = outcome->report;
    }
    if (!report) {
        writeError(report.error().message);
        return offline;
    }
    static_cast<void>(writeOut(*report));
    return fine;
}

int run(const Options &options)
{
    const auto bus = QDBusConnection::sessionBus();
    const RunningProgram program(bus);
    switch (options.command) {
    case Command::Refresh:
        return outcomeOf(program.refresh());
    case Command::Toggle:
        return outcomeOf(program.toggle());
    case Command::Settings:
        return outcomeOf(program.showSettings());
    case Command::Diagnostics:
        return printDiagnostics(program);
    default:
        return options.watch ? watch(bus, options) : printStatus(program, options);
    }
}

} // namespace

int main(int argc, char **argv)
{
    // Writing then says that nobody reads any more.
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    rememberTerminal();
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const auto options = parseCommandLine(arguments);
    if (!options)
        return wrong(options.error());
    if (options->command == Command::Version || options->command == Command::Help) {
        static_cast<void>(writeOut(options->command == Command::Help
                ? helpText()
                : u"brimwatchctl "_s + QStringLiteral(BRIMWATCH_VERSION) + u'\n'));
        return fine;
    }
    if (options->watch)
        blockEndSignals();

    const QCoreApplication application(argc, argv);
    const int status = run(*options);
    // All is written. Not through the destructors: in Qt 6.4 the bus's thread may still be decoding
    // a message then, of types that are gone already.
    std::_Exit(status);
}
