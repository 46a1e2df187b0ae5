#include "options.h"
#include "sample_daemon.h"
#include "unix_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <unistd.h>

#include <array>
#include <csignal>
#include <iostream>

using namespace brimwatch::sample;

namespace {

constexpr int usageStatus = 2;

int complain(const QString &reason)
{
    std::cerr << "brimwatch-sample-daemon: " << reason.toStdString() << '\n' << std::flush;
    return EXIT_FAILURE;
}

void endWithStandardInput(QCoreApplication &application)
{
    auto *notifier = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [] {
        std::array<char, 256> ignored{};
        if (::read(STDIN_FILENO, ignored.data(), ignored.size()) <= 0)
            QCoreApplication::quit();
    });
}

int serve(QCoreApplication &application, const Options &options)
{
    // Otherwise SIGPIPE would end the daemon before it removes its discovery file.
    std::signal(SIGPIPE, SIG_IGN);

    SampleDaemon daemon(options);
    const UnixSignals signalsOfTheSystem{SIGTERM, SIGINT, SIGUSR1};
    QObject::connect(&signalsOfTheSystem, &UnixSignals::received, &application, [&](int number) {
        if (number != SIGUSR1)
            QCoreApplication::quit();
        else if (const auto moved = daemon.move(); !moved)
            QCoreApplication::exit(complain(moved.error()));
    });
    if (options.endWithStdin)
        endWithStandardInput(application);

    if (const auto started = daemon.start(); !started)
        return complain(started.error());
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const auto parsed = parseOptions(QCoreApplication::arguments());
    if (!parsed) {
        complain(parsed.error().message);
        std::cerr << "Try --help." << '\n' << std::flush;
        return usageStatus;
    }
    if (const auto *help = std::get_if<HelpWanted>(&*parsed)) {
        std::cout << help->text.toStdString() << std::flush;
        return EXIT_SUCCESS;
    }
    return serve(application, std::get<Options>(*parsed));
}
