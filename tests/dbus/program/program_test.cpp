#include "dbus/desktop/fake_notification_server.h"
#include "dbus/program/program_process.h"
#include "platform/linux/bus/bus_names.h"
#include "platform/linux/bus/bus_state.h"
#include "support/fake_watcher.h"
#include "support/private_display.h"
#include "support/sample_daemon_process.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>
#include <xcb/xcb.h>

#include <csignal>
#include <cstdlib>
#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;

namespace {

using test::Program;
using test::timeout;

/// Another program, which calls ours.
class Caller {
public:
    QDBusMessage call(const QString &member) { return m_program.call(message(member)); }
    QDBusPendingCall start(const QString &member)
    {
        return m_program.bus().asyncCall(message(member));
    }
    QVariantMap properties()
    {
        const auto answer = m_program.call(platform::bus::service, platform::bus::path,
            u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, {QString(platform::bus::interface)});
        return qdbus_cast<QVariantMap>(answer.arguments().value(0));
    }
    QString state() { return properties().value(u"State"_s).toString(); }
    QString owner() { return m_program.ownerOf(platform::bus::service); }

private:
    static QDBusMessage message(const QString &member)
    {
        auto call = QDBusMessage::createMethodCall(
            platform::bus::service, platform::bus::path, platform::bus::interface, member);
        call.setAutoStartService(false);
        return call;
    }

    test::OtherProgram m_program;
};

/// A reply of the X server, which libxcb allocates with malloc().
template <typename T> std::unique_ptr<T, decltype(&std::free)> owned(T *reply)
{
    return {reply, &std::free};
}

/// How many windows of the popover's size are to be seen.
int popovers()
{
    constexpr int leastWidth = 300;
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto tree
        = owned(xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    int count = 0;
    for (int i = 0; tree && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const auto window = xcb_query_tree_children(tree.get())[i];
        const auto attributes = owned(xcb_get_window_attributes_reply(
            connection, xcb_get_window_attributes(connection, window), nullptr));
        const auto geometry = owned(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
        if (attributes && geometry && attributes->map_state == XCB_MAP_STATE_VIEWABLE
            && geometry->width >= leastWidth)
            ++count;
    }
    xcb_disconnect(connection);
    return count;
}

QByteArray quota(double fiveHours, const QByteArray &name = "Gemini Models",
    const QByteArray &bucketName = "Five hours")
{
    return R"({"response":{"groups":[{"displayName":")" + name
        + R"(","buckets":[{"bucketId":"gemini-5h","displayName":")" + bucketName
        + R"(","window":"5h",)"
          R"("remainingFraction":)"
        + QByteArray::number(fiveHours) + "}]}]}}";
}

} // namespace

/// The real program and a sample daemon, on a display and a bus of their own.
class ProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { test::emptyHome(); }

    void itOpensAndClosesThePopoverForOthers()
    {
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        QCOMPARE(popovers(), 0);
        QCOMPARE(m_caller.call(u"Toggle"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
        QCOMPARE(m_caller.call(u"Show"_s).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(m_caller.call(u"Toggle"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 0, timeout);
        QCOMPARE(m_caller.call(u"ShowSettings"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
    }

    void whatIsOnlyNeededForThePopoverOrForTlsIsLoadedWithIt()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        const Program program;
        QTRY_COMPARE_WITH_TIMEOUT(m_caller.state(), u"connected"_s, timeout);
        const auto isMapped = [&program](const QByteArray &library) {
            QFile maps(u"/proc/%1/maps"_s.arg(program.pid()));
            return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(library);
        };
        QVERIFY(isMapped("libbrimwatch.so"));
        for (const auto *library : {"libQt6Network", "libQt6Qml", "libQt6Quick", "libssl",
                 "libbrimwatch-tls", "libbrimwatch-views"})
            QVERIFY2(!isMapped(library), library);
        QCOMPARE(m_caller.call(u"Show"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_VERIFY_WITH_TIMEOUT(isMapped("libbrimwatch-views"), timeout);
        QVERIFY(!isMapped("libbrimwatch-tls"));
    }

    void itAsksTheDaemonWhenTheMachineIsBackFromSuspend()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        // One bus is both: the session's and the system's.
        auto environment = Program::usual();
        environment.insert(
            u"DBUS_SYSTEM_BUS_ADDRESS"_s, qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
        test::OtherProgram logind;
        QVERIFY(logind.takeName(u"org.freedesktop.login1"_s));
        const Program program(environment);
        QTRY_COMPARE_WITH_TIMEOUT(m_caller.state(), u"connected"_s, timeout);
        const auto before = daemon.stats()->requests;
        const auto announce = [&logind] {
            auto signal = QDBusMessage::createSignal(u"/org/freedesktop/login1"_s,
                u"org.freedesktop.login1.Manager"_s, u"PrepareForSleep"_s);
            signal << false;
            return logind.bus().send(signal);
        };
        // It may be said before the program listens.
        QTRY_VERIFY_WITH_TIMEOUT(announce() && daemon.stats()->requests > before, timeout);
    }

    void upgradedBeforeThePopoverIsLoadedItGoesOnAsTheNewProgram()
    {
        const QString path = QDir::home().filePath(u"brimwatch"_s);
        const QString upgrade = QDir::home().filePath(u"brimwatch.new"_s);
        QVERIFY(QFile::copy(QStringLiteral(BRIMWATCH_PROGRAM), path));
        QVERIFY(QFile::copy(QStringLiteral(BRIMWATCH_PROGRAM), upgrade));
        // A copy finds no libraries beside itself.
        auto environment = Program::usual();
        environment.insert(u"LD_LIBRARY_PATH"_s, QStringLiteral(BRIMWATCH_LIBRARIES));
        Program program(environment, path);
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        const QString owner = m_caller.owner();
        const QString link = u"/proc/%1/exe"_s.arg(program.pid());
        QCOMPARE(QFile::symLinkTarget(link), path);

        // As package managers do.
        QCOMPARE(::rename(qPrintable(upgrade), qPrintable(path)), 0);
        QVERIFY(QFile::symLinkTarget(link) != path);
        QCOMPARE(m_caller.call(u"Toggle"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
        QVERIFY(!program.hasEnded());
        QCOMPARE(QFile::symLinkTarget(link), path);
        QVERIFY(m_caller.owner() != owner);
        QCOMPARE(m_caller.call(u"Toggle"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 0, timeout);
    }

    void aDisplayThatIsGoneIsSaidInOneLine_data()
    {
        QTest::addColumn<QString>("x11");
        QTest::addColumn<QString>("wayland");
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("said");
        const QString none = u"no display: neither DISPLAY nor WAYLAND_DISPLAY is set"_s;
        const QString noX11 = u"no X server answers on display ':65000'"_s;
        const QString noWayland = u"no compositor answers on Wayland display 'gone'"_s;
        QTest::newRow("none") << u""_s << u""_s << u""_s << none;
        QTest::newRow("X11") << u":65000"_s << u""_s << u""_s << noX11;
        QTest::newRow("Wayland") << u""_s << u"gone"_s << u""_s << noWayland;
        QTest::newRow("both") << u":65000"_s << u"gone"_s << u""_s
                              << QString(noX11 + ", and no compositor on 'gone'"_L1);
        QTest::newRow("Wayland is asked for")
            << qEnvironmentVariable("DISPLAY") << u"gone"_s << u"wayland"_s << noWayland;
        QTest::newRow("X11 is asked for") << u":65000"_s << u"gone"_s << u"xcb"_s << noX11;
        QTest::newRow("X11 is asked for, and unset")
            << u""_s << u"gone"_s << u"xcb"_s << u"no display for QT_QPA_PLATFORM 'xcb'"_s;
    }
    void aDisplayThatIsGoneIsSaidInOneLine()
    {
        QFETCH(QString, x11);
        QFETCH(QString, wayland);
        QFETCH(QString, platform);
        QFETCH(QString, said);
        auto environment = Program::usual();
        // An empty variable is as good as none.
        environment.insert(u"DISPLAY"_s, x11);
        environment.insert(u"WAYLAND_DISPLAY"_s, wayland);
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        Program program(environment);
        QVERIFY(program.waitForEnd());
        QCOMPARE(program.errors(), QString("brimwatch: "_L1 + said + u'\n'));
        QCOMPARE(program.exitCode(), 1);
    }

    void aCompositorThatIsGoneLeavesTheXServer()
    {
        auto environment = Program::usual();
        environment.insert(u"WAYLAND_DISPLAY"_s, u"gone"_s);
        Program program(environment);
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty() || program.hasEnded(), timeout);
        QCOMPARE(m_caller.call(u"Toggle"_s).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
        QVERIFY(!program.hasEnded());
        QCOMPARE(program.errors(), QString());
    }

    void closedStandardDescriptorsAreNoFilesOfOurs()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        auto environment = Program::usual();
        // Lines of a log, on standard error.
        environment.insert(u"QT_LOGGING_RULES"_s, u"brimwatch.*=true"_s);
        environment.insert(u"QT_FATAL_WARNINGS"_s, u"0"_s);
        Program program(environment, u"/bin/bash"_s,
            {u"-c"_s, u"exec \"$0\" <&- >&- 2>&-"_s, QStringLiteral(BRIMWATCH_PROGRAM)});
        QTRY_COMPARE_WITH_TIMEOUT(m_caller.state(), u"connected"_s, timeout);
        for (const auto *descriptor : {"0", "1", "2"})
            QCOMPARE(
                QFile::symLinkTarget(
                    u"/proc/%1/fd/%2"_s.arg(program.pid()).arg(QString::fromLatin1(descriptor))),
                u"/dev/null"_s);
        QVERIFY(daemon.terminate());
        QCOMPARE(m_caller.call(u"Refresh"_s).type(), QDBusMessage::ErrorMessage);
        QCOMPARE(m_caller.state(), u"offline"_s);
        QVERIFY(!program.hasEnded());
    }

    void itEndsWhenOthersSaySo()
    {
        Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        QCOMPARE(m_caller.call(u"Quit"_s).type(), QDBusMessage::ReplyMessage);
        QVERIFY(program.waitForEnd());
        QCOMPARE(program.exitCode(), 0);
    }

    void itsStateFollowsTheDaemon()
    {
        QVERIFY(writeSummary(quota(0.75)));
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start({u"--summary"_s, summaryFile()}), qPrintable(daemon.errorText()));
        const Program program;
        QTRY_COMPARE_WITH_TIMEOUT(m_caller.state(), u"connected"_s, timeout);
        auto state = platform::fromBusProperties(m_caller.properties());
        QCOMPARE(state.port, daemon.httpPort());
        QVERIFY(state.lowest);
        QCOMPARE(state.lowest->percentage, 75.0);

        QVERIFY(writeSummary(quota(0.25)));
        QCOMPARE(m_caller.call(u"Refresh"_s).type(), QDBusMessage::ReplyMessage);
        state = platform::fromBusProperties(m_caller.properties());
        QCOMPARE(state.lowest->percentage, 25.0);

        QVERIFY(daemon.terminate());
        const auto answer = m_caller.call(u"Refresh"_s);
        QCOMPARE(answer.errorName(), QString(platform::bus::refreshFailed));
        state = platform::fromBusProperties(m_caller.properties());
        QCOMPARE(state.connection, platform::PublishedState::Connection::Offline);
        QCOMPARE(state.error, answer.errorMessage());
        QCOMPARE(state.groups.size(), 1);
    }

    void aSecondStartOpensThePopoverOfTheFirst()
    {
        Program first;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        const QString owner = m_caller.owner();
        Program second;
        QVERIFY(second.waitForEnd());
        QCOMPARE(second.exitCode(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
        QCOMPARE(m_caller.owner(), owner);
        QVERIFY(!first.hasEnded());

        // Where it is open already it stays.
        Program third;
        QVERIFY(third.waitForEnd());
        QCOMPARE(third.exitCode(), 0);
        QCOMPARE(popovers(), 1);
    }

    void aSecondStartOnAnotherDisplayNamesTheOneWithThePopover()
    {
        const QString first = qEnvironmentVariable("DISPLAY");
        const Program program;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        // Another screen of one display is the same display.
        auto environment = Program::usual();
        environment.insert(u"DISPLAY"_s, first + ".0"_L1);
        Program second(environment);
        QVERIFY(second.waitForEnd());
        QCOMPARE(second.errors(), u"brimwatch: already running; its popover is open now\n"_s);

        const auto back = qScopeGuard([&] { qputenv("DISPLAY", first.toLocal8Bit()); });
        const test::PrivateDisplay other;
        QVERIFY(qEnvironmentVariable("DISPLAY") != first);
        Program third;
        QVERIFY(third.waitForEnd());
        const QString said = third.errors();
        const int status = third.exitCode();
        qputenv("DISPLAY", first.toLocal8Bit());
        QCOMPARE(said,
            QString("brimwatch: already running on display '"_L1 + first
                + "'; its popover is open there\n"_L1));
        QCOMPARE(status, 0);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
    }

    void startsAtTheSameTimeLeaveOneProgram()
    {
        QList<std::shared_ptr<Program>> starts;
        constexpr int count = 4;
        for (int i = 0; i < count; ++i)
            starts.append(std::make_shared<Program>());
        const auto running = [&starts] {
            return std::ranges::count_if(
                starts, [](const auto &start) { return !start->hasEnded(); });
        };
        QTRY_COMPARE_WITH_TIMEOUT(running(), 1, timeout);
        for (const auto &start : std::as_const(starts)) {
            if (start->hasEnded())
                QCOMPARE(start->exitCode(), 0);
        }
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
    }

    void aSecondStartSaysSoWhenTheFirstHangs()
    {
        Program first;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        first.send(SIGSTOP);
        Program second;
        QVERIFY(second.waitForEnd());
        QCOMPARE(second.exitCode(), 1);
        QCOMPARE(second.errors(), u"brimwatch: already running, but it does not answer\n"_s);
        first.send(SIGCONT);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
        QVERIFY(!first.hasEnded());
    }

    void aStartAfterACrashIsTheFirst()
    {
        Program first;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        first.crash();
        QTRY_VERIFY_WITH_TIMEOUT(m_caller.owner().isEmpty(), timeout);
        Program second;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        QVERIFY(!second.hasEnded());
    }

    void withoutABusALockFileKeepsTheOneProgram()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        const auto asked = [&daemon] { return daemon.stats()->requests; };
        Program first(Program::withoutBus());
        QTRY_COMPARE_WITH_TIMEOUT(asked(), 1, timeout);
        Program second(Program::withoutBus());
        QVERIFY(second.waitForEnd());
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(second.errors().startsWith(u"brimwatch: already running; "_s));
        QCOMPARE(asked(), 1);
        QVERIFY(!first.hasEnded());

        first.crash();
        Program third(Program::withoutBus());
        QTRY_COMPARE_WITH_TIMEOUT(asked(), 2, timeout);
        QVERIFY(!third.hasEnded());
    }

    void aStartWithoutABusFindsAFirstThatHasOne()
    {
        Program first;
        QTRY_VERIFY_WITH_TIMEOUT(!m_caller.owner().isEmpty(), timeout);
        // A program that starts after the bus has gone finds the same.
        Program second(Program::withoutBus());
        QVERIFY(second.waitForEnd());
        QCOMPARE(second.exitCode(), 0);
        QVERIFY(second.errors().startsWith(u"brimwatch: already running; "_s));
        QVERIFY(!first.hasEnded());
    }

    void whatStandsInTheLocksPlaceStopsNobody()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkpath(u"brimwatch.lock/full"_s));
        auto environment = Program::withoutBus();
        environment.insert(u"XDG_RUNTIME_DIR"_s, folder.path());
        Program program(environment);
        QTRY_VERIFY_WITH_TIMEOUT(daemon.stats()->requests == 1 || program.hasEnded(), timeout);
        QVERIFY2(!program.hasEnded(), qPrintable(program.errors()));
    }

    void aBusThatIsBackIsRejoined()
    {
        const QTemporaryDir folder;
        const QString address = u"unix:path="_s + folder.filePath(u"bus"_s);
        auto environment = Program::usual();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
        QProcess bus;
        const auto startBus = [&] {
            bus.start(u"dbus-daemon"_s,
                {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--print-address"_s,
                    u"--address="_s + address});
            return bus.waitForReadyRead(timeout);
        };
        const auto hasProgram = [&] {
            const QString name = u"look"_s;
            const bool has = QDBusConnection::connectToBus(address, name)
                                 .interface()
                                 ->isServiceRegistered(platform::bus::service)
                                 .value();
            QDBusConnection::disconnectFromBus(name);
            return has;
        };
        QVERIFY(startBus());
        Program first(environment);
        const qint64 pid = first.pid();
        QTRY_VERIFY_WITH_TIMEOUT(hasProgram(), timeout);
        bus.kill();
        QVERIFY(bus.waitForFinished(timeout));
        QVERIFY(startBus());
        QTRY_VERIFY_WITH_TIMEOUT(hasProgram(), timeout);
        QVERIFY(!first.hasEnded());
        QCOMPARE(first.pid(), pid);
        QCOMPARE(popovers(), 0);
        // A second start finds the first again.
        Program second(environment);
        QVERIFY(second.waitForEnd());
        QCOMPARE(second.exitCode(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(popovers(), 1, timeout);
        QVERIFY(!first.hasEnded());
        first.send(SIGTERM);
        QVERIFY(first.waitForEnd());
        bus.terminate();
        QVERIFY(bus.waitForFinished(timeout));
    }

    void aRuntimeFolderThatHoldsNoLockStopsNobody()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        auto environment = Program::withoutBus();
        environment.insert(u"XDG_RUNTIME_DIR"_s, u"/nowhere"_s);
        const Program program(environment);
        QTRY_COMPARE_WITH_TIMEOUT(daemon.stats()->requests, 1, timeout);
    }

    void aFloodOfCallsLeavesItAsItWas()
    {
        test::SampleDaemonProcess daemon;
        QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
        const Program program;
        QTRY_COMPARE_WITH_TIMEOUT(m_caller.state(), u"connected"_s, timeout);
        const auto flood = [this](const QString &member) {
            constexpr int calls = 10'000;
            QList<QDBusPendingCall> pending;
            for (int i = 0; i < calls; ++i)
                pending.append(m_caller.start(member));
            for (const auto &call : std::as_const(pending)) {
                QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), timeout);
                if (call.isError())
                    QCOMPARE(call.error().type(), QDBusError::LimitsExceeded);
            }
        };
        flood(u"Refresh"_s);
        const auto asked = daemon.stats()->requests;
        const auto before = program.memory();
        QElapsedTimer since;
        since.start();
        for (int i = 0; i < 3; ++i)
            flood(u"Refresh"_s);
        // At most one a second, and one at each end.
        QVERIFY(daemon.stats()->requests - asked <= since.elapsed() / 1000 + 2);
        constexpr qint64 slack = 4LL * 1024 * 1024;
        const auto grown = program.memory() - before;
        QVERIFY2(grown <= slack, qPrintable(u"grew by %1 bytes"_s.arg(grown)));
        QCOMPARE(m_caller.state(), u"connected"_s);
    }

    void neitherTokenNorHomeIsOnTheBus()
    {
        const QByteArray token = "token-that-nobody-may-see";
        const QByteArray home = QDir::homePath().toUtf8();
        const QByteArray name = token + " at " + home + "/x";
        QVERIFY(writeSummary(quota(0.1, "Gemini " + name, "Limit " + name)));
        test::SampleDaemonProcess daemon;
        QVERIFY2(
            daemon.start({u"--summary"_s, summaryFile(), u"--token"_s, QString::fromLatin1(token)}),
            qPrintable(daemon.errorText()));
        QProcess monitor;
        monitor.start(u"dbus-monitor"_s, {u"--session"_s});
        QVERIFY(monitor.waitForStarted(timeout));
        QByteArray log;
        const auto logged = [&monitor, &log](const QByteArray &text) {
            log += monitor.readAllStandardOutput();
            return log.contains(text);
        };
        // It listens once it has logged a call.
        QTRY_VERIFY_WITH_TIMEOUT((m_caller.owner(), logged("GetNameOwner")), timeout);

        // All who listen: a server for the alert that is due, a panel that reads title and tooltip.
        test::FakeNotificationServer server;
        test::FakeWatcher watcher;
        const Program program;
        QTRY_COMPARE_WITH_TIMEOUT(m_caller.state(), u"connected"_s, timeout);
        QVERIFY(m_caller.call(u"Diagnostics"_s)
                .arguments()
                .value(0)
                .toString()
                .contains(u"Daemon CSRF: token-th...\n"_s));
        QTRY_COMPARE_WITH_TIMEOUT(server.calls.size(), 1, timeout);
        QVERIFY(server.calls.constFirst().body.startsWith(u"Limit … at ~/x has dropped to "_s));
        QTRY_VERIFY_WITH_TIMEOUT(!watcher.items().isEmpty(), timeout);
        test::FakeHost panel(watcher.items().constFirst(), u"/StatusNotifierItem"_s,
            u"org.kde.StatusNotifierItem"_s, {});
        const auto toolTip = [&panel] {
            const auto argument = panel.readAll().value(u"ToolTip"_s).value<QDBusArgument>();
            QString icon;
            QString title;
            argument.beginStructure();
            argument >> icon;
            argument.beginArray();
            argument.endArray();
            argument >> title;
            argument.endStructure();
            return title;
        };
        QTRY_VERIFY_WITH_TIMEOUT(
            toolTip().startsWith(u"Gemini … at ~/x, Limit … at ~/x: "_s), timeout);
        QVERIFY(daemon.terminate());
        QCOMPARE(m_caller.call(u"Refresh"_s).type(), QDBusMessage::ErrorMessage);
        QTRY_VERIFY_WITH_TIMEOUT(logged("RefreshFailed"), timeout);
        QVERIFY(log.contains("PropertiesChanged"));
        QVERIFY(log.contains("Gemini … at ~/x"));
        QVERIFY(!log.contains(token));
        // Other services of the bus are started with paths; ours have none.
        QVERIFY(!log.contains(QByteArray(home + "/x")));
        QVERIFY(!log.contains(QByteArray(home + "/.gemini")));
        monitor.terminate();
        monitor.waitForFinished(timeout);
    }

private:
    static QString summaryFile() { return QDir::homePath() + "/summary.json"_L1; }

    static bool writeSummary(const QByteArray &json)
    {
        QFile file(summaryFile());
        return file.open(QIODevice::WriteOnly) && file.write(json) == json.size();
    }

    Caller m_caller;
};

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    ProgramTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "program_test.moc"
