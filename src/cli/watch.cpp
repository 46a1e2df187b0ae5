#include "cli/watch.h"

#include "cli/output/render.h"
#include "cli/status.h"
#include "cli/terminal.h"

#include <QDateTime>
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
    connect(new QSocketNotifier(descriptor, QSocketNotifier::Read, this),
        &QSocketNotifier::activated, this, &Watch::ended);
    // A pipe reports an exception when its reader has gone: between two changes nothing is written,
    // so no write fails.
    connect(new QSocketNotifier(STDOUT_FILENO, QSocketNotifier::Exception, this),
        &QSocketNotifier::activated, this, &Watch::ended);
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
    const QString line = render(m_options, status, QDateTime::currentDateTime(), {});
    if (line == m_printed)
        return;
    m_printed = line;
    m_written = writeOut(line);
    // Queued: the first line is written before anybody listens.
    if (m_written != Written::All)
        QMetaObject::invokeMethod(this, &Watch::ended, Qt::QueuedConnection);
}

} // namespace brimwatch::cli
