#include "unix_signals.h"

#include <QSocketNotifier>

#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace brimwatch::sample {

namespace {

volatile std::sig_atomic_t writingEnd = -1;

// Async-signal-safe: it may run between any two instructions of the program.
extern "C" void passOn(int signalNumber)
{
    const int before = errno;
    const auto byte = static_cast<unsigned char>(signalNumber);
    [[maybe_unused]] const auto written = ::write(writingEnd, &byte, 1);
    errno = before;
}

} // namespace

UnixSignals::UnixSignals(std::initializer_list<int> signalNumbers, QObject *parent)
    : QObject(parent)
{
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        qFatal("no pipe for signals");
    writingEnd = ends[1];
    auto *notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this,
        [this, descriptor = ends[0]] { readNext(descriptor); });

    struct sigaction action{};
    action.sa_handler = passOn;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : signalNumbers)
        sigaction(number, &action, nullptr);
}

void UnixSignals::readNext(int descriptor)
{
    unsigned char byte = 0;
    if (::read(descriptor, &byte, 1) == 1)
        Q_EMIT received(byte);
}

} // namespace brimwatch::sample
