#include "dbus/desktop/fake_notification_server.h"
#include "dbus/program/program_process.h"
#include "dbus/tray/fake_tray_manager.h"
#include "months/measures.h"
#include "months/planned_daemon.h"
#include "months/played_clock.h"
#include "platform/linux/bus/bus_names.h"
#include "support/private_display.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusPendingCall>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <sched.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace brimwatch::test {
namespace {

constexpr auto refreshInterval = 60s;
// The timer of the refresh is coarse: it may be late by a twentieth.
constexpr auto step = refreshInterval * 11 / 10;
constexpr auto requestTimeout = 4s;
// After which a popover that nobody uses lets its content go.
constexpr auto contentKept = 5min;
constexpr QPoint elsewhere(50, 650);
constexpr int lowThreshold = 20;

bool hasOwnMounts = false;

/// Waits for the condition while the test's own half of the desktop works. It comes, or the test
/// ends.
template <typename Condition> void waitFor(const char *what, Condition condition)
{
    // Wakes the loop for conditions that bring no event.
    QTimer wake;
    wake.start(1ms);
    QElapsedTimer since;
    since.start();
    while (!condition()) {
        if (since.elapsed() > timeout)
            qFatal("waited for %s in vain", what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

/// The program's clocks, in the file that it maps.
class Clock {
public:
    Clock()
    {
        QFile file(path());
        if (!file.open(QIODevice::ReadWrite | QIODevice::Truncate)
            || !file.resize(sizeof(PlayedClock)))
            qFatal("cannot write %s", qPrintable(path()));
        void *const memory = ::mmap(
            nullptr, sizeof(PlayedClock), PROT_READ | PROT_WRITE, MAP_SHARED, file.handle(), 0);
        if (memory == MAP_FAILED)
            qFatal("cannot map %s", qPrintable(path()));
        m_clock = static_cast<PlayedClock *>(memory);
    }
    ~Clock() { ::munmap(m_clock, sizeof(PlayedClock)); }
    Q_DISABLE_COPY_MOVE(Clock)

    static QString path() { return QDir::home().filePath(u"clock"_s); }

    void advance(std::chrono::nanoseconds by) { m_clock->awake += by.count(); }
    void suspend(std::chrono::nanoseconds by) { m_clock->asleep += by.count(); }
    QDateTime now() const
    {
        const std::chrono::nanoseconds added(m_clock->awake + m_clock->asleep);
        return QDateTime::currentDateTimeUtc().addMSecs(
            std::chrono::duration_cast<std::chrono::milliseconds>(added).count());
    }

private:
    PlayedClock *m_clock = nullptr;
};

/// What the program tells on the bus.
class Told final : public QObject {
    Q_OBJECT

public:
    Told()
    {
        m_program.bus().connect(platform::bus::service, platform::bus::path,
            u"org.freedesktop.DBus.Properties"_s, u"PropertiesChanged"_s, this,
            SLOT(hear(QDBusMessage)));
    }

    QString title() const { return m_properties.value(u"Title"_s).toString(); }
    QString state() const { return m_properties.value(u"State"_s).toString(); }
    qlonglong lastUpdate() const { return m_properties.value(u"LastUpdate"_s).toLongLong(); }
    OtherProgram &program() { return m_program; }
    QString owner() { return m_program.ownerOf(platform::bus::service); }

    /// Returns when the program has done what it had to do.
    void join()
    {
        m_program.call(platform::bus::service, platform::bus::path,
            u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
            {QString(platform::bus::interface), u"Version"_s});
    }
    QDBusPendingCall call(const QString &member)
    {
        return m_program.bus().asyncCall(QDBusMessage::createMethodCall(
            platform::bus::service, platform::bus::path, platform::bus::interface, member));
    }

private Q_SLOTS:
    void hear(const QDBusMessage &signal)
    {
        m_properties.insert(qdbus_cast<QVariantMap>(signal.arguments().value(1)));
    }

private:
    OtherProgram m_program;
    QVariantMap m_properties;
};

/// A bucket of the plan's daemon.
struct Bucket {
    QByteArray id;
    QByteArray window;
    std::chrono::seconds length;
    int left = 100; ///< Percent.
    QDateTime reset = {};
    bool isLow = false; ///< And the user knows.
};

/// What has happened.
struct Counts {
    qint64 refreshes = 0;
    qint64 failures = 0;
    qint64 openings = 0;
    qint64 alerts = 0;
    qint64 moves = 0;
    qint64 panels = 0;
    qint64 servers = 0;
    qint64 zones = 0;
    qint64 suspends = 0;
};

class Months {
public:
    Months(std::chrono::hours length, unsigned seed)
        : m_length(length)
        , m_random(seed)
        , m_daemon(QDir::home().filePath(u".gemini/antigravity/daemon"_s))
    {
    }

    /// Whether all that has to hold did.
    bool play();

private:
    int upTo(int most) { return std::uniform_int_distribution(0, most)(m_random); }
    bool oneIn(int many) { return upTo(many - 1) == 0; }

    void startPanel();
    void startServer();
    void use(Bucket &bucket, int most);
    void offerQuota();
    QString expectedTitle() const;
    void start();
    void refresh();
    void fail();
    void settleAlerts();
    void suspend();
    void changeZone();
    void openAndClose();
    void openSettings();
    int popovers();
    void happen();
    void everythingOnce();
    qint64 growthByLongIds();
    Measures rest();
    bool report(const Measures &first, const Measures &last) const;

    std::chrono::hours m_length;
    std::mt19937 m_random;
    Clock m_clock;
    QDateTime m_begin;
    PlannedDaemon m_daemon;
    Told m_told;
    OtherProgram m_logind;
    Pointer m_pointer;
    platform::XConnection m_x;
    std::unique_ptr<FakeTrayManager> m_panel;
    std::unique_ptr<FakeNotificationServer> m_server;
    std::unique_ptr<Program> m_program;
    Bucket m_fiveHours{.id = "gemini-5h", .window = "5h", .length = 5h};
    Bucket m_week{.id = "gemini-weekly", .window = "weekly", .length = 168h};
    int m_failing = 0; ///< How many refreshes the daemon goes on as it is.
    QStringList m_due; ///< Titles of the alerts of the plan, in their order.
    QStringList m_given;
    Counts m_counts;
};

void Months::startPanel()
{
    m_panel.reset();
    m_panel = std::make_unique<FakeTrayManager>();
    waitFor("the item in the panel", [this] { return !m_panel->docked().isEmpty(); });
    // A new panel has its time to settle.
    m_clock.advance(1s);
    waitFor("the item's width", [this] { return m_panel->slot().width() > 50; });
}

void Months::startServer()
{
    m_server.reset();
    m_server = std::make_unique<FakeNotificationServer>();
    m_server->onCall = [this] {
        const auto &title = m_server->calls.constLast().title;
        if (title.startsWith("Brimwatch Alert"_L1))
            m_given.append(title);
    };
}

void Months::use(Bucket &bucket, int most)
{
    const QDateTime now = m_clock.now();
    if (!bucket.reset.isValid() || bucket.reset <= now) {
        bucket.left = 100;
        bucket.reset = now.addSecs(bucket.length.count());
    } else {
        bucket.left = std::max(0, bucket.left - upTo(most));
    }
}

void Months::offerQuota()
{
    const auto json = [](const Bucket &bucket) -> QByteArray {
        return R"({"bucketId":")" + bucket.id + R"(","displayName":"Limit","window":")"
            + bucket.window + R"(","remainingFraction":)" + QByteArray::number(bucket.left / 100.0)
            + R"(,"resetTime":")" + bucket.reset.toString(Qt::ISODate).toLatin1() + R"("})";
    };
    m_daemon.body = R"({"response":{"groups":[{"displayName":"Gemini Models","buckets":[)"
        + json(m_fiveHours) + ',' + json(m_week) + "]}]}}";
}

QString Months::expectedTitle() const
{
    return u"5h: %1% · W: %2%"_s.arg(m_fiveHours.left).arg(m_week.left);
}

void Months::start()
{
    auto environment = Program::usual();
    environment.remove(u"TZ"_s);
    environment.insert(u"LD_PRELOAD"_s, QStringLiteral(BRIMWATCH_PLAYED_CLOCK));
    environment.insert(u"BRIMWATCH_PLAYED_CLOCK"_s, Clock::path());
    environment.insert(
        u"DBUS_SYSTEM_BUS_ADDRESS"_s, qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    m_begin = m_clock.now();
    if (!m_logind.takeName(u"org.freedesktop.login1"_s))
        qFatal("the bus has a logind already");
    use(m_fiveHours, 0);
    use(m_week, 0);
    offerQuota();
    m_daemon.start();
    startServer();
    m_panel = std::make_unique<FakeTrayManager>();
    const QString program
        = qEnvironmentVariable("BRIMWATCH_MONTHS_PROGRAM", QStringLiteral(BRIMWATCH_PROGRAM));
    m_program = std::make_unique<Program>(environment, program);
    waitFor("the first quota", [this] { return m_told.state() == "connected"_L1; });
    waitFor("the item in the panel", [this] { return !m_panel->docked().isEmpty(); });
}

/// Lets a minute pass, in which the program's own timer asks the daemon.
void Months::refresh()
{
    use(m_fiveHours, oneIn(8) ? 4 : 0);
    use(m_week, oneIn(100) ? 2 : 0);
    offerQuota();
    const auto before = m_told.lastUpdate();
    m_clock.advance(step);
    waitFor("the refresh", [&] { return m_told.lastUpdate() > before; });
    waitFor("the label", [this] { return m_told.title().contains(expectedTitle()); });
    ++m_counts.refreshes;
    settleAlerts();
}

/// The same where the daemon does not answer as it should.
void Months::fail()
{
    const auto before = m_daemon.requests;
    m_clock.advance(step);
    // It ends when the refresh of that minute has, or another after it.
    const auto ended = m_told.call(u"Refresh"_s);
    qint64 hung = before;
    while (!ended.isFinished()) {
        waitFor("an end or a request", [&] {
            return ended.isFinished()
                || (m_daemon.manners == PlannedDaemon::Manners::Hangs && m_daemon.requests > hung);
        });
        hung = m_daemon.requests;
        if (!ended.isFinished())
            m_clock.advance(requestTimeout + 1s);
    }
    if (!ended.isError())
        qFatal("a refresh succeeded that could not");
    waitFor("the state", [this] { return m_told.state() == "offline"_L1; });
    ++m_counts.refreshes;
    ++m_counts.failures;
}

/// Notes which alerts are due now, and waits for them.
void Months::settleAlerts()
{
    for (Bucket *bucket : {&m_fiveHours, &m_week}) {
        const bool isLow = bucket->left <= lowThreshold;
        if (isLow && !bucket->isLow)
            m_due.append(u"Brimwatch Alert: %1.0% Remaining"_s.arg(bucket->left));
        bucket->isLow = isLow;
    }
    waitFor("the alerts", [this] { return m_given.size() >= m_due.size(); });
    m_counts.alerts = m_given.size();
}

void Months::suspend()
{
    const auto announce = [this](bool start) {
        auto signal = QDBusMessage::createSignal(u"/org/freedesktop/login1"_s,
            u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s);
        signal << start;
        m_logind.bus().send(signal);
    };
    announce(true);
    m_clock.suspend(std::chrono::hours(1 + upTo(12)));
    use(m_fiveHours, 0);
    use(m_week, 0);
    offerQuota();
    const auto before = m_told.lastUpdate();
    announce(false);
    waitFor("the refresh after a suspend", [&] { return m_told.lastUpdate() > before; });
    waitFor("the label", [this] { return m_told.title().contains(expectedTitle()); });
    settleAlerts();
    ++m_counts.refreshes;
    ++m_counts.suspends;
}

void Months::changeZone()
{
    constexpr std::array zones{"Asia/Kolkata", "America/Phoenix", "Europe/Berlin", "Pacific/Apia",
        "America/New_York", "Etc/UTC"};
    static bool isCovered = false;
    if (!hasOwnMounts)
        return;
    if (isCovered)
        ::umount2("/etc/localtime", MNT_DETACH);
    const QByteArray zone
        = "/usr/share/zoneinfo/"_ba + zones.at(static_cast<std::size_t>(upTo(zones.size() - 1)));
    isCovered = ::mount(zone.constData(), "/etc/localtime", nullptr, MS_BIND, nullptr) == 0;
    if (!isCovered)
        qFatal("cannot change the time zone");
    ++m_counts.zones;
}

/// How many windows of the popover's size are to be seen.
int Months::popovers()
{
    constexpr int leastWidth = 300;
    xcb_connection_t *c = m_x.connection();
    const platform::XcbPointer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(c, xcb_query_tree(c, m_x.screen()->root), nullptr));
    int count = 0;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto window = xcb_query_tree_children(tree.get())[i];
        const platform::XcbPointer<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, window), nullptr));
        const platform::XcbPointer<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr));
        constexpr int panelHeight = 400;
        if (attributes && geometry && attributes->map_state == XCB_MAP_STATE_VIEWABLE
            && geometry->width >= leastWidth && geometry->height > panelHeight)
            ++count;
    }
    return count;
}

void Months::openAndClose()
{
    // Clicks right after a close do not count.
    m_told.join();
    m_clock.advance(1s);
    m_pointer.moveTo(m_panel->slot().center());
    m_pointer.click(1);
    waitFor("the popover", [this] { return popovers() == 1; });
    ++m_counts.openings;
    if (oneIn(20) && m_daemon.manners == PlannedDaemon::Manners::Answers && m_daemon.isRunning())
        refresh();
    if (oneIn(2)) {
        m_clock.advance(1s);
        m_pointer.click(1);
    } else {
        m_pointer.moveTo(elsewhere);
        // The popover may not have the pointer yet: then nobody hears the click.
        QElapsedTimer since;
        since.start();
        qint64 clicks = 0;
        waitFor("the popover's end", [&] {
            constexpr qint64 pause = 500;
            if (since.elapsed() >= clicks * pause) {
                ++clicks;
                m_pointer.click(1);
            }
            return popovers() == 0;
        });
    }
    waitFor("the popover's end", [this] { return popovers() == 0; });
    m_pointer.moveTo(elsewhere);
}

void Months::openSettings()
{
    m_told.call(u"ShowSettings"_s);
    waitFor("the settings", [this] { return popovers() == 1; });
    m_told.call(u"Toggle"_s);
    waitFor("the settings' end", [this] { return popovers() == 0; });
    ++m_counts.openings;
}

/// A minute of the plan.
void Months::happen()
{
    const bool wasFailing = m_failing > 0;
    if (wasFailing)
        --m_failing;
    if (wasFailing && m_failing == 0) {
        m_daemon.manners = PlannedDaemon::Manners::Answers;
        if (!m_daemon.isRunning()) {
            m_daemon.start();
            ++m_counts.moves;
        }
    } else if (m_failing == 0 && oneIn(60)) {
        m_failing = 1 + upTo(4);
        if (const int kind = upTo(PlannedDaemon::kinds); kind == 0)
            m_daemon.stop(oneIn(2));
        else if (kind < PlannedDaemon::kinds)
            m_daemon.manners = static_cast<PlannedDaemon::Manners>(kind);
        else
            m_daemon.stop(true);
    } else if (m_failing == 0 && oneIn(120)) {
        m_daemon.start();
        ++m_counts.moves;
    }
    if (m_failing > 0)
        fail();
    else
        refresh();
    if (oneIn(300)) {
        startPanel();
        ++m_counts.panels;
    }
    if (oneIn(300)) {
        startServer();
        ++m_counts.servers;
    }
    if (oneIn(700))
        changeZone();
    if (m_failing == 0 && oneIn(900))
        suspend();
    if (oneIn(160)) {
        for (int opening = upTo(15); opening >= 0; --opening)
            openAndClose();
        openSettings();
    }
}

/// So that what is made with its first use is made.
void Months::everythingOnce()
{
    refresh();
    for (int kind = 1; kind < PlannedDaemon::kinds; ++kind) {
        m_daemon.manners = static_cast<PlannedDaemon::Manners>(kind);
        fail();
    }
    m_daemon.manners = PlannedDaemon::Manners::Answers;
    m_daemon.stop(true);
    fail();
    m_daemon.start();
    m_fiveHours.left = 10;
    refresh();
    startPanel();
    startServer();
    changeZone();
    for (int opening = 0; opening < 10; ++opening)
        openAndClose();
    openSettings();
    suspend();
}

/// By how many KiB the program grows with 200 answers, each with an id of its own that is as long
/// as an answer may be. All of them are low.
qint64 Months::growthByLongIds()
{
    constexpr int warm = 5;
    constexpr int answers = 200;
    constexpr qsizetype length = 1'000'000;
    qint64 before = 0;
    for (int number = 0; number < warm + answers; ++number) {
        if (number == warm)
            before = privateMemory(m_program->pid());
        m_daemon.body = R"({"response":{"groups":[{"displayName":"Gemini Models","buckets":[)"
                        R"({"bucketId":")"
            + QByteArray::number(number).leftJustified(length, 'x')
            + R"(","displayName":"Limit","window":"5h","remainingFraction":0.1}]}]}})";
        const auto updated = m_told.lastUpdate();
        m_due.append(u"Brimwatch Alert: 10.0% Remaining"_s);
        m_clock.advance(step);
        waitFor("the refresh", [&] { return m_told.lastUpdate() > updated; });
        waitFor("the alert", [this] { return m_given.size() >= m_due.size(); });
    }
    m_told.join();
    return privateMemory(m_program->pid()) - before;
}

/// Waits until nothing of the last use is left, and measures.
Measures Months::rest()
{
    m_failing = 0;
    m_daemon.manners = PlannedDaemon::Manners::Answers;
    if (!m_daemon.isRunning())
        m_daemon.start();
    // What an answer took at its largest is given back with the popover's content.
    openAndClose();
    m_told.join();
    m_clock.advance(contentKept + 1min);
    for (int minute = 0; minute < 10; ++minute)
        refresh();
    return measure(m_program->pid(), m_told.owner(), m_told.program());
}

bool Months::report(const Measures &first, const Measures &last) const
{
    constexpr qint64 slack = 1024; // KiB of memory.
    bool isGood = true;
    const auto check = [&isGood](bool holds, const QString &what) {
        std::printf("%s: %s\n", holds ? "ok" : "FAILED", qPrintable(what));
        isGood = isGood && holds;
    };
    for (auto each = last.cbegin(); each != last.cend(); ++each) {
        const qint64 before = first.value(each.key());
        const bool isMemory = each.key() == "memory"_L1;
        check(each.value() >= 0 && each.value() <= before + (isMemory ? slack : 0),
            u"%1: %2 at first, %3 at last"_s.arg(each.key()).arg(before).arg(each.value()));
    }
    check(last.value(u"children"_s) == 0, u"no child is left"_s);
    check(m_given == m_due,
        u"%1 alerts were due and %2 given"_s.arg(m_due.size()).arg(m_given.size()));
    check(m_told.title().contains(expectedTitle()), "the label says "_L1 + expectedTitle());
    return isGood;
}

bool Months::play()
{
    QElapsedTimer real;
    real.start();
    start();
    const qint64 growth = growthByLongIds();
    constexpr qint64 mostGrowth = 10LL * 1024;
    std::printf("%s: %lld KiB more after 200 answers with ids of a megabyte\n",
        growth <= mostGrowth ? "ok" : "FAILED", static_cast<long long>(growth));
    everythingOnce();
    constexpr qint64 firstHour = 60;
    while (m_counts.refreshes < firstHour)
        happen();
    const Measures first = rest();
    const QDateTime end = m_begin.addSecs(std::chrono::seconds(m_length).count());
    constexpr qint64 secondsOfWeek = 7LL * 86'400;
    qint64 weeks = 0;
    while (m_clock.now() < end) {
        happen();
        if (const auto now = m_begin.secsTo(m_clock.now()) / secondsOfWeek; now > weeks) {
            weeks = now;
            std::printf("week %lld: %lld KiB\n", static_cast<long long>(weeks),
                static_cast<long long>(rest().value(u"memory"_s)));
            std::fflush(stdout);
        }
    }
    const Measures last = rest();
    int drawn = 0;
    waitFor("the drawn label", [&] {
        const QImage picture = m_panel->picture();
        drawn = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x)
                drawn += picture.pixelColor(x, y).alpha() > 0 ? 1 : 0;
        }
        return drawn > 0;
    });
    std::printf(
        "%.1f days in %lld s: %lld refreshes, %lld of them failed, %lld openings, %lld alerts, "
        "%lld moves of the daemon, %lld panels, %lld notification servers, %lld time zones, "
        "%lld suspends\n",
        static_cast<double>(m_begin.secsTo(m_clock.now())) / 86'400.0,
        static_cast<long long>(real.elapsed() / 1000), static_cast<long long>(m_counts.refreshes),
        static_cast<long long>(m_counts.failures), static_cast<long long>(m_counts.openings),
        static_cast<long long>(m_counts.alerts), static_cast<long long>(m_counts.moves),
        static_cast<long long>(m_counts.panels), static_cast<long long>(m_counts.servers),
        static_cast<long long>(m_counts.zones), static_cast<long long>(m_counts.suspends));
    return report(first, last) && growth <= mostGrowth;
}

} // namespace
} // namespace brimwatch::test

int main(int argc, char **argv)
{
    // Before anything has threads: time zones that nobody else sees.
    brimwatch::test::hasOwnMounts = ::unshare(CLONE_NEWNS) == 0
        && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    const brimwatch::test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    const int hours = qEnvironmentVariableIntValue("BRIMWATCH_MONTHS_HOURS");
    const int seed = qEnvironmentVariableIntValue("BRIMWATCH_MONTHS_SEED");
    std::printf("seed %d\n", seed);
    std::fflush(stdout);
    constexpr int usualHours = 6;
    brimwatch::test::Months months(
        std::chrono::hours(hours > 0 ? hours : usualHours), static_cast<unsigned>(seed));
    return months.play() ? 0 : 1;
}

#include "months_test.moc"
