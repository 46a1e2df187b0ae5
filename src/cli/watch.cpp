#include "cli/watch.h"

#include "cli/output.h"
#include "cli/status.h"

#include <QSocketNotifier>

#include <pthread.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <utility>

namespace brimwatch::cli {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::chrono::milliseconds pauseBetweenLines{200};

sigset_t endSignals()
{
    sigset_t signals{};
    sigemptyset(&signals);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&signals, number);
    return signals;
}

} // namespace

void blockEndSignals()
{
    const sigset_t signals = endSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

Watch::Watch(QDBusConnection bus, Options options)
    : m_options(std::move(options))
    , m_follower(std::move(bus))
{
    const sigset_t signals = endSignals();
    const int descriptor = ::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    const auto end = [this] { Q_EMIT ended(0); };
    connect(new QSocketNotifier(descriptor, QSocketNotifier::Read, this),
        &QSocketNotifier::activated, this, end);
    // A pipe tells so when its reader has gone: between two changes nothing is written.
    connect(new QSocketNotifier(STDOUT_FILENO, QSocketNotifier::Exception, this),
        &QSocketNotifier::activated, this, end);
    connect(&m_follower, &platform::ProgramFollower::changed, this, &Watch::change);
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseBetweenLines);
    connect(&m_pause, &QTimer::timeout, this, [this] {
        if (std::exchange(m_changed, false))
            change();
    });
}

void Watch::change()
{
    if (m_pause.isActive()) {
        m_changed = true;
        return;
    }
    m_pause.start();
    print();
}

void Watch::print()
{
    const auto &state = m_follower.state();
    const Status status = state ? Status{.state = *state, .source = Status::Source::Program}
                                : offlineStatus(u"Brimwatch is not running"_s);
    const auto text = render(m_options, status, {});
    if (!text) {
        writeError(text.error());
        Q_EMIT ended(3);
        return;
    }
    if (*text == m_printed)
        return;
    m_printed = *text;
    if (!writeOut(*text))
        Q_EMIT ended(0);
}

} // namespace brimwatch::cli
