#include "dbus/program/accessibility_bus.h"
#include "support/fake_watcher.h"
#include "support/private_display.h"
#include "support/sample_daemon_process.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>

#include <xcb/xcb.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string_view>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::AccessibilityBus;
using test::AccessibleNode;

namespace {

constexpr int timeout = 30'000; // Milliseconds; nothing that works comes near it.

QString quoted(const QString &text)
{
    return u'"' + text + u'"';
}

/// The states worth a word: of those that nearly everything has, that it has them not.
QStringList notableStates(const AccessibleNode &node)
{
    QStringList states = node.states;
    // Qt 6.4 does not hand on that a check box is checkable, Qt 6.8 does.
    for (const QString &state :
        {u"enabled"_s, u"sensitive"_s, u"visible"_s, u"showing"_s, u"checkable"_s})
        states.removeAll(state);
    if (!node.is(u"sensitive"_s))
        states.append(u"disabled"_s);
    if (!node.is(u"showing"_s))
        states.append(u"not in sight"_s);
    return states;
}

/// A line a node, what is inside it indented below it.
QString dump(const AccessibleNode &node, qsizetype depth = 0)
{
    QString line = QString(depth * 2, u' ') + node.role + u' ' + quoted(node.name);
    if (const auto states = notableStates(node); !states.isEmpty())
        line += " ["_L1 + states.join(", "_L1) + u']';
    if (node.range) {
        line += " value "_L1 + QString::number(node.range->value) + " from "_L1
            + QString::number(node.range->least) + " to "_L1
            + QString::number(node.range->greatest);
        if (node.range->step > 0)
            line += " by "_L1 + QString::number(node.range->step);
    }
    if (!node.text.isEmpty())
        line += " text "_L1 + quoted(node.text);
    // Qt 6.4 describes a window by its name, of which a screen reader says nothing more.
    if (!node.description.isEmpty() && node.description != node.name)
        line += " described as "_L1 + quoted(node.description);
    if (!node.actions.isEmpty())
        line += " does "_L1 + node.actions.join(", "_L1);
    line += u'\n';
    for (const AccessibleNode &child : node.children)
        line += dump(child, depth + 1);
    return line;
}

/// The same with a mark for what no two runs have in common.
QString withoutChance(QString text)
{
    const auto replace = [&text](const QString &pattern, const QString &by) {
        text.replace(QRegularExpression(pattern), by);
    };
    replace(u"\\(Port \\d+\\)"_s, u"(Port <port>)"_s);
    replace(u"\"Port: \\d+\""_s, u"\"Port: <port>\""_s);
    replace(u"\\(PID \\d+\\)"_s, u"(PID <pid>)"_s);
    replace(u"\"Brimwatch v\\d[^\"]*\""_s, u"\"Brimwatch v<version>\""_s);
    replace(u"\"Last Update: [^\"]*\\d:\\d\\d:\\d\\d[^\"]*\""_s, u"\"Last Update: <moment>\""_s);
    replace(u"described as \"[^\"]*\\d:\\d\\d[^\"]*\""_s, u"described as \"<moment>\""_s);
    return text;
}

QString legend()
{
    return u"# A line an object, in the order of reading, and indented below it what it holds:\n"
           "#     role \"name\" [states] value described as \"description\" does actions\n"
           "# Not in sight: scrolled away. <port>, <pid>, <version> and <moment> (a time of day, "
           "with its\n"
           "# date or without) stand for what no two runs have in common.\n"_s;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool write(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

/// Where two texts part.
QString firstDifference(const QString &wanted, const QString &found)
{
    const auto wantedLines = wanted.split(u'\n');
    const auto foundLines = found.split(u'\n');
    qsizetype line = 0;
    while (line < wantedLines.size() && wantedLines.value(line) == foundLines.value(line))
        ++line;
    return "line "_L1 + QString::number(line + 1) + "\nwanted: "_L1 + wantedLines.value(line)
        + "\nfound:  "_L1 + foundLines.value(line) + "\nof\n"_L1 + found;
}

/// The screen, as it is drawn.
class Screen {
public:
    Screen()
        : m_connection(xcb_connect(nullptr, nullptr))
    {
    }
    ~Screen() { xcb_disconnect(m_connection); }
    Q_DISABLE_COPY_MOVE(Screen)

    /// The pixels of a rectangle of left, top, width and height; empty where there is none.
    QByteArray pixels(const QList<int> &place) const
    {
        const auto *setup = xcb_get_setup(m_connection);
        const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP,
            xcb_setup_roots_iterator(setup).data->root, static_cast<qint16>(place.value(0)),
            static_cast<qint16>(place.value(1)), static_cast<quint16>(place.value(2)),
            static_cast<quint16>(place.value(3)), ~0U);
        const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> image(
            xcb_get_image_reply(m_connection, cookie, nullptr), &std::free);
        if (!image)
            return {};
        return {reinterpret_cast<const char *>(xcb_get_image_data(image.get())),
            xcb_get_image_data_length(image.get())};
    }

    /// The window that the clipboard's content is asked of; 0 without one.
    xcb_window_t clipboardOwner() const
    {
        constexpr std::string_view name = "CLIPBOARD";
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(
                m_connection, xcb_intern_atom(m_connection, 0, name.size(), name.data()), nullptr),
            &std::free);
        if (!atom)
            return XCB_NONE;
        const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
            xcb_get_selection_owner_reply(
                m_connection, xcb_get_selection_owner(m_connection, atom->atom), nullptr),
            &std::free);
        return owner ? owner->owner : XCB_NONE;
    }

private:
    xcb_connection_t *m_connection;
};

/// What another program pastes.
QString pasted()
{
    QProcess reader;
    reader.start(u"xclip"_s, {u"-o"_s, u"-selection"_s, u"clipboard"_s});
    return reader.waitForFinished(timeout) ? QString::fromUtf8(reader.readAllStandardOutput())
                                           : QString();
}

/// A program that runs for as long as this lives.
class Running {
public:
    explicit Running(const QString &command) { m_process.start(command, QStringList()); }
    ~Running()
    {
        m_process.kill();
        m_process.waitForFinished(timeout);
    }
    Q_DISABLE_COPY_MOVE(Running)

    bool isStarted() { return m_process.waitForStarted(timeout); }

private:
    QProcess m_process;
};

/// The program, started in a home of its own, with its popover open.
class Session {
public:
    explicit Session(const AccessibilityBus &bus)
        : m_bus(bus)
    {
    }
    ~Session()
    {
        if (!end())
            m_program.kill();
        // The next one shall find the bus empty.
        static_cast<void>(QTest::qWaitFor([this] { return m_bus.programs().isEmpty(); }, timeout));
    }
    Q_DISABLE_COPY_MOVE(Session)

    QString inHome(const QString &path) const { return m_home.filePath(path); }

    /// Ends the program, as a session does.
    bool end()
    {
        m_program.terminate();
        return m_program.state() == QProcess::NotRunning || m_program.waitForFinished(timeout);
    }

    /// A daemon that answers quota that resets in 2 hours, 3 minutes and up to 59 seconds.
    bool startDaemon(const QStringList &options = {})
    {
        return writeQuota(hours(2) + minutes(3) + seconds(59))
            && m_daemon.start(options
                + QStringList{u"--directory"_s, inHome(u".gemini/antigravity/daemon"_s),
                    u"--token"_s, u"0123456789abcdef"_s, u"--summary"_s, summaryFile()});
    }
    test::SampleDaemonProcess &daemon() { return m_daemon; }

    /// Has the daemon answer quota that resets this long from now.
    bool writeQuota(std::chrono::seconds fiveHour)
    {
        const auto now = QDateTime::currentDateTimeUtc();
        const auto bucket = [&now](const QString &id, const QString &name, const QString &window,
                                double fraction, std::chrono::seconds left) {
            return QJsonObject{{u"bucketId"_s, id}, {u"displayName"_s, name}, {u"window"_s, window},
                {u"remainingFraction"_s, fraction},
                {u"resetTime"_s, now.addSecs(left.count()).toString(Qt::ISODateWithMs)}};
        };
        const auto fiveHours = [&](const QString &id, double fraction) {
            return bucket(id, u"5 hour limit"_s, u"5h"_s, fraction, fiveHour);
        };
        const QJsonArray gemini{fiveHours(u"gemini-5h"_s, 0.425),
            bucket(u"gemini-weekly"_s, u"Weekly limit"_s, u"weekly"_s, 0.9,
                days(4) + hours(6) + minutes(30))};
        const QJsonArray groups{
            QJsonObject{{u"displayName"_s, u"Gemini"_s},
                {u"description"_s, u"Quota that these models share"_s}, {u"buckets"_s, gemini}},
            QJsonObject{{u"displayName"_s, u"Claude & GPT"_s},
                {u"buckets"_s, QJsonArray{fiveHours(u"claude-5h"_s, 0.08)}}}};
        m_quotaAge.start();
        return write(summaryFile(), QJsonDocument(QJsonObject{{u"groups"_s, groups}}).toJson());
    }

    /// Has the program show what the daemon answers now.
    bool refresh() const
    {
        const auto before = m_daemon.stats();
        return before
            && QTest::qWaitFor(
                [&] {
                    // It ignores presses while it refreshes.
                    const auto button = one(u"push button"_s, u"Refresh Quota"_s);
                    if (!button || !m_bus.act(*button, u"Press"_s))
                        return false;
                    const auto now = m_daemon.stats();
                    return now && now->requests > before->requests;
                },
                timeout);
    }

    /// Should the quota's minute be about to end, gives it a new one.
    void renewQuota()
    {
        constexpr int longest = 30'000;
        if (!m_quotaAge.hasExpired(longest))
            return;
        QVERIFY(writeQuota(hours(2) + minutes(3) + seconds(59)));
        QVERIFY(refresh());
    }

    /// Starts the program and clicks its item, as a panel would.
    bool open()
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.remove(u"QT_QPA_PLATFORM"_s);
        environment.insert(u"HOME"_s, m_home.path());
        // Qt 6.8 warns when a reader asks for what has gone meanwhile, as ours does while it waits;
        // where warnings are fatal that would end the program.
        environment.insert(u"QT_LOGGING_RULES"_s, u"qt.accessibility.atspi.warning=false"_s);
        m_program.setProcessEnvironment(environment);
        m_program.setProcessChannelMode(QProcess::ForwardedChannels);
        m_program.start(QStringLiteral(BRIMWATCH_PROGRAM), QStringList());
        return QTest::qWaitFor([this] { return !m_watcher.senders().isEmpty(); }, timeout)
            && click() && await([](const AccessibleNode &all) {
                   return all.find(u"push button"_s, u"Quit"_s) != nullptr;
               });
    }
    bool click()
    {
        const auto answer = m_panel.call(m_watcher.senders().constFirst(), u"/StatusNotifierItem"_s,
            u"org.kde.StatusNotifierItem"_s, u"Activate"_s, {600, 0});
        return answer.type() == QDBusMessage::ReplyMessage;
    }

    /// Waits until what is shown fulfils the condition.
    bool await(const std::function<bool(const AccessibleNode &)> &condition) const
    {
        return QTest::qWaitFor(
            [&] {
                const auto all = m_bus.read(program);
                return all && condition(*all);
            },
            timeout);
    }
    bool awaitOne(const QString &role, const QString &name) const
    {
        return await([&](const AccessibleNode &all) { return all.find(role, name) != nullptr; });
    }
    std::optional<AccessibleNode> one(const QString &role, const QString &name) const
    {
        const auto all = m_bus.read(program);
        const auto *node = all ? all->find(role, name) : nullptr;
        return node != nullptr ? std::optional(*node) : std::nullopt;
    }

    /// Has a control do an action, as soon as it is there.
    bool act(const QString &role, const QString &name, const QString &action) const
    {
        return QTest::qWaitFor(
            [&] {
                const auto node = one(role, name);
                return node && m_bus.act(*node, action);
            },
            timeout);
    }

    /// Waits until the settings file has the line.
    bool awaitStored(const QByteArray &line) const
    {
        return QTest::qWaitFor(
            [&] {
                return contents(inHome(u".config/brimwatch/brimwatch.conf"_s))
                    .split('\n')
                    .contains(line);
            },
            timeout);
    }

    static inline const QString program = u"Brimwatch"_s;

private:
    using days = std::chrono::days;
    using hours = std::chrono::hours;
    using minutes = std::chrono::minutes;
    using seconds = std::chrono::seconds;

    QString summaryFile() const { return inHome(u"summary.json"_s); }

    const AccessibilityBus &m_bus;
    QTemporaryDir m_home;
    test::FakeWatcher m_watcher;
    test::OtherProgram m_panel;
    test::SampleDaemonProcess m_daemon;
    QProcess m_program;
    QElapsedTimer m_quotaAge;
};

} // namespace

/// What a screen reader is told of the program, over a real accessibility bus. The dumps of what it
/// reads are in tests/data/accessibility; with BRIMWATCH_REWRITE_DUMPS set they are written anew.
class AccessibilityTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDashboardReadsAsItsDump();
    void theLoadingStateReadsAsItsDump();
    void theOfflineStateReadsAsItsDump();
    void theSettingsReadAsTheirDump();
    void theSettingsWithTheirNotesReadAsTheirDump();
    void anOpenPickerReadsAsItsDump_data();
    void anOpenPickerReadsAsItsDump();
    void whatAScreenReaderDoesIsStored();
    void aCopiedReportOutlivesThePopoverAndTheProgram();
    void aClosedPopoverIsNotRead();
    void whileOnlySecondsPassNothingIsTold();

private:
    /// Waits until what is read is the dump of that name. `renew` is called before each reading.
    void compare(
        const QString &name, const QString &title, const std::function<void()> &renew = [] { });

    AccessibilityBus m_bus;
};

void AccessibilityTest::compare(
    const QString &name, const QString &title, const std::function<void()> &renew)
{
    const QString path = QStringLiteral(BRIMWATCH_ACCESSIBILITY_DATA) + u'/' + name;
    const auto read = [&] {
        renew();
        const auto all = m_bus.read(Session::program);
        return all ? "# "_L1 + title + "\n#\n"_L1 + legend() + u'\n' + withoutChance(dump(*all))
                   : QString();
    };
    QString found;
    if (qEnvironmentVariableIsSet("BRIMWATCH_REWRITE_DUMPS")) {
        // The same twice: nothing is under way.
        QVERIFY(QTest::qWaitFor(
            [&] {
                const QString before = std::exchange(found, read());
                return !found.isEmpty() && found == before;
            },
            timeout));
        QVERIFY(write(path, found.toUtf8()));
    }
    const QString wanted = QString::fromUtf8(contents(path));
    QVERIFY2(!wanted.isEmpty(), qPrintable(path));
    const bool agrees = QTest::qWaitFor(
        [&] {
            // What changes while it is read reads as nothing, which shows no difference.
            if (const QString now = read(); !now.isEmpty())
                found = now;
            return found == wanted;
        },
        timeout);
    QVERIFY2(agrees, qPrintable(name + ", "_L1 + firstDifference(wanted, found)));
}

void AccessibilityTest::theDashboardReadsAsItsDump()
{
    Session session(m_bus);
    QVERIFY(session.startDaemon());
    QVERIFY(session.open());
    QVERIFY(session.awaitOne(u"list"_s, u"Claude & GPT, 1 bucket"_s));
    compare(u"dashboard.txt"_s, u"The dashboard, with two groups of models."_s,
        [&] { session.renewQuota(); });
}

void AccessibilityTest::theLoadingStateReadsAsItsDump()
{
    Session session(m_bus);
    QVERIFY(session.open());
    QVERIFY(session.awaitOne(u"push button"_s, u"Retry Connection"_s));
    QVERIFY(session.startDaemon({u"--misbehave"_s, u"hang"_s}));
    // Each try ends some seconds later; what is read must be read before.
    compare(u"loading.txt"_s, u"The dashboard while the first quota is asked for."_s, [&] {
        if (const auto retry = session.one(u"push button"_s, u"Retry Connection"_s))
            m_bus.act(*retry, u"Press"_s);
    });
}

void AccessibilityTest::theOfflineStateReadsAsItsDump()
{
    Session session(m_bus);
    QVERIFY(session.open());
    QVERIFY(session.awaitOne(u"push button"_s, u"Retry Connection"_s));
    compare(u"offline.txt"_s, u"The dashboard without a daemon."_s);
}

void AccessibilityTest::theSettingsReadAsTheirDump()
{
    Session session(m_bus);
    QVERIFY(session.startDaemon());
    QVERIFY(session.open());
    QVERIFY(session.awaitOne(u"list"_s, u"Claude & GPT, 1 bucket"_s));
    QVERIFY(session.act(u"push button"_s, u"Preferences"_s, u"Press"_s));
    QVERIFY(session.awaitOne(u"check box"_s, u"Start at Login"_s));
    compare(u"settings.txt"_s, u"The settings as they are at first, with a daemon."_s);
}

void AccessibilityTest::theSettingsWithTheirNotesReadAsTheirDump()
{
    Session session(m_bus);
    QVERIFY(QDir().mkpath(session.inHome(u".config/autostart"_s)));
    QVERIFY(write(session.inHome(u".config/autostart/app.brimwatch.Brimwatch.desktop"_s),
        "[Desktop Entry]\nType=Application\nName=Brimwatch\nHidden=true\nExec="
            + QByteArray(BRIMWATCH_PROGRAM) + "\n"));
    QVERIFY(session.open());
    QVERIFY(session.act(u"push button"_s, u"Preferences"_s, u"Press"_s));
    QVERIFY(session.act(u"check box"_s, u"Gemini"_s, u"Toggle"_s));
    QVERIFY(session.act(u"check box"_s, u"Notify when quota drops low"_s, u"Toggle"_s));
    compare(u"settings-with-notes.txt"_s,
        u"The settings with no model shown, no alerts, no daemon, and switched off at login by the desktop."_s);
}

void AccessibilityTest::anOpenPickerReadsAsItsDump_data()
{
    QTest::addColumn<QString>("closed");
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<QByteArray>("stored");
    QTest::addRow("label-style") << u"Label Style: Letters (G, A, C)"_s
                                 << u"Short Names (Gem, Arg, Cla)"_s
                                 << u"Label Style: Short Names (Gem, Arg, Cla)"_s
                                 << QByteArray("toolbarLabelStyle=shortName");
    QTest::addRow("refresh-interval")
        << u"Check Quota Every: 1 minute"_s << u"5 minutes"_s << u"Check Quota Every: 5 minutes"_s
        << QByteArray("refreshInterval=300");
}

void AccessibilityTest::anOpenPickerReadsAsItsDump()
{
    QFETCH(QString, closed);
    QFETCH(QString, option);
    QFETCH(QString, chosen);
    QFETCH(QByteArray, stored);
    Session session(m_bus);
    QVERIFY(session.open());
    QVERIFY(session.act(u"push button"_s, u"Preferences"_s, u"Press"_s));
    QVERIFY(session.awaitOne(u"combo box"_s, closed));
    QVERIFY(session.act(u"combo box"_s, closed, u"Press"_s));
    QVERIFY(session.awaitOne(u"list item"_s, option));
    compare(QString::fromLatin1(QTest::currentDataTag()) + "-open.txt"_L1,
        "The settings with an open list: "_L1 + closed);

    QVERIFY(session.act(u"list item"_s, option, u"Press"_s));
    QVERIFY(session.awaitOne(u"combo box"_s, chosen));
    QVERIFY(session.await(
        [&](const AccessibleNode &all) { return all.find(u"list item"_s, option) == nullptr; }));
    QVERIFY(session.awaitStored(stored));
}

void AccessibilityTest::whatAScreenReaderDoesIsStored()
{
    Session session(m_bus);
    QVERIFY(session.open());
    QVERIFY(session.act(u"push button"_s, u"Preferences"_s, u"Press"_s));
    for (const QString &action : {u"Toggle"_s, u"Press"_s}) {
        const auto argon = session.one(u"check box"_s, u"Argon"_s);
        const bool before = argon && argon->is(u"checked"_s);
        QVERIFY(session.act(u"check box"_s, u"Argon"_s, action));
        QVERIFY(session.awaitStored("showArgonInToolbar="_ba + (before ? "false" : "true")));
        const auto after = session.one(u"check box"_s, u"Argon"_s);
        QVERIFY(after);
        QCOMPARE(after->is(u"checked"_s), !before);
    }

    const QString threshold = u"Alert Threshold in percent"_s;
    const auto value = [&] {
        const auto slider = session.one(u"slider"_s, threshold);
        return slider && slider->range ? slider->range->value : 0;
    };
    QCOMPARE(value(), 20.);
    QVERIFY(session.act(u"slider"_s, threshold, u"Increase"_s));
    QVERIFY(session.awaitStored("lowQuotaThreshold=25"));
    QCOMPARE(value(), 25.);
    QVERIFY(session.act(u"slider"_s, threshold, u"Decrease"_s));
    QVERIFY(session.awaitStored("lowQuotaThreshold=20"));
    QCOMPARE(value(), 20.);
    const auto slider = session.one(u"slider"_s, threshold);
    QVERIFY(slider);
    QVERIFY(m_bus.setValue(*slider, 41));
    QVERIFY(session.awaitStored("lowQuotaThreshold=40"));
    QCOMPARE(value(), 40.);

    QVERIFY(session.act(u"push button"_s, u"Done"_s, u"Press"_s));
    QVERIFY(session.awaitOne(u"push button"_s, u"Open Antigravity"_s));
}

void AccessibilityTest::aCopiedReportOutlivesThePopoverAndTheProgram()
{
    Session session(m_bus);
    QVERIFY(session.startDaemon());
    QVERIFY(session.open());
    QVERIFY(session.act(u"push button"_s, u"Preferences"_s, u"Press"_s));
    QVERIFY(session.act(u"push button"_s, u"Copy Diagnostics"_s, u"Press"_s));
    QTRY_VERIFY_WITH_TIMEOUT(
        pasted().startsWith("--- Brimwatch Diagnostics ---\nApp Version: "_L1), timeout);
    const QString report = pasted();
    QVERIFY(report.contains("\nDaemon CSRF: 0123456789abcdef\n"_L1));

    QVERIFY(session.click());
    QVERIFY(session.await([](const AccessibleNode &all) {
        return all.find(u"push button"_s, u"Quit App"_s) == nullptr;
    }));
    QCOMPARE(pasted(), report);

    // A manager of the clipboard takes over what it finds.
    const Screen screen;
    const auto ours = screen.clipboardOwner();
    QVERIFY(ours != XCB_NONE);
    Running manager(u"xclipboard"_s);
    QVERIFY(manager.isStarted());
    QTRY_VERIFY_WITH_TIMEOUT(
        screen.clipboardOwner() != ours && screen.clipboardOwner() != XCB_NONE, timeout);
    QVERIFY(session.end());
    QCOMPARE(pasted(), report);
}

void AccessibilityTest::aClosedPopoverIsNotRead()
{
    Session session(m_bus);
    QVERIFY(session.open());
    QVERIFY(session.click());
    QVERIFY(session.await([](const AccessibleNode &all) { return all.children.isEmpty(); }));
}

void AccessibilityTest::whileOnlySecondsPassNothingIsTold()
{
    // What was updated "just now" is told in seconds after five of them.
    constexpr int ticks = 8;
    constexpr int tries = 20;
    m_bus.listen();
    const Screen screen;
    Session session(m_bus);
    QVERIFY(session.startDaemon());
    QVERIFY(session.open());
    QVERIFY(session.awaitOne(u"list"_s, u"Claude & GPT, 1 bucket"_s));

    const QString row = u"Gemini, 5 hour limit, 42.5 percent left, resets in 40m"_s;
    for (int i = 0; i < tries; ++i) {
        // Less than an hour, so that the countdown on the screen has seconds.
        QVERIFY(session.writeQuota(std::chrono::minutes(40) + std::chrono::seconds(59)));
        QVERIFY(session.refresh());
        // The listener hears.
        QVERIFY(!m_bus.heard().isEmpty());
        const auto item = session.one(u"list item"_s, row);
        // A minute went by, on a machine that is busy elsewhere.
        if (!item)
            continue;
        const QList<int> place = m_bus.extents(*item);
        const auto requests = session.daemon().stats();
        QVERIFY(requests);
        m_bus.heard();
        int seen = 0;
        QByteArray last = screen.pixels(place);
        QVERIFY(!last.isEmpty());
        const bool ticked = QTest::qWaitFor(
            [&] {
                const QByteArray now = screen.pixels(place);
                if (now != last)
                    ++seen;
                last = now;
                return seen >= ticks;
            },
            timeout);
        QVERIFY2(ticked, "the countdown on the screen stands still");
        const auto told = m_bus.heard();
        const auto requestsThen = session.daemon().stats();
        QVERIFY(requestsThen);
        // More than seconds has passed: the timer refreshed, or a minute is over.
        if (requestsThen->requests != requests->requests || !session.one(u"list item"_s, row))
            continue;
        QCOMPARE(told.join(u'\n'), QString());
        return;
    }
    QFAIL("the machine is too busy for eight ticks in a minute");
}

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    AccessibilityTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "accessibility_test.moc"
