// Random calls to the three interfaces of the program itself, on a bus of its own: it lives, and
// answers each of them.
#include "dbus/program/program_process.h"
#include "fuzz.h"
#include "platform/linux/bus/bus_names.h"
#include "platform/linux/bus/bus_state.h"
#include "random_properties.h"
#include "support/fake_watcher.h"
#include "support/private_display.h"
#include "support/sample_daemon_process.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QElapsedTimer>
#include <QFile>

#include <unistd.h>

using namespace brimwatch;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Member {
    const char *path;
    const char *interface;
    const char *name;
    const char *signature; ///< What it should be called with.
};

constexpr auto program = "/app/brimwatch/Brimwatch";
constexpr auto item = "/StatusNotifierItem";
constexpr auto menu = "/StatusNotifierItem/Menu";
constexpr auto programInterface = "app.brimwatch.Brimwatch1";
constexpr auto itemInterface = "org.kde.StatusNotifierItem";
constexpr auto menuInterface = "com.canonical.dbusmenu";
constexpr auto properties = "org.freedesktop.DBus.Properties";
constexpr auto introspectable = "org.freedesktop.DBus.Introspectable";

// All but Quit.
constexpr auto members = std::to_array<Member>({
    {.path = program, .interface = programInterface, .name = "Refresh", .signature = ""},
    {.path = program, .interface = programInterface, .name = "Show", .signature = ""},
    {.path = program, .interface = programInterface, .name = "Toggle", .signature = ""},
    {.path = program, .interface = programInterface, .name = "ShowSettings", .signature = ""},
    {.path = program, .interface = programInterface, .name = "Diagnostics", .signature = ""},
    {.path = program, .interface = properties, .name = "Get", .signature = "ss"},
    {.path = program, .interface = properties, .name = "GetAll", .signature = "s"},
    {.path = program, .interface = properties, .name = "Set", .signature = "ssv"},
    {.path = program, .interface = introspectable, .name = "Introspect", .signature = ""},
    {.path = item, .interface = itemInterface, .name = "Activate", .signature = "ii"},
    {.path = item, .interface = itemInterface, .name = "SecondaryActivate", .signature = "ii"},
    {.path = item, .interface = itemInterface, .name = "ContextMenu", .signature = "ii"},
    {.path = item, .interface = itemInterface, .name = "Scroll", .signature = "is"},
    {.path = item,
        .interface = itemInterface,
        .name = "ProvideXdgActivationToken",
        .signature = "s"},
    {.path = item,
        .interface = itemInterface,
        .name = "XAyatanaSecondaryActivate",
        .signature = "u"},
    {.path = item, .interface = properties, .name = "Get", .signature = "ss"},
    {.path = item, .interface = properties, .name = "GetAll", .signature = "s"},
    {.path = item, .interface = properties, .name = "Set", .signature = "ssv"},
    {.path = menu, .interface = menuInterface, .name = "GetLayout", .signature = "iiS"},
    {.path = menu, .interface = menuInterface, .name = "GetGroupProperties", .signature = "IS"},
    {.path = menu, .interface = menuInterface, .name = "GetProperty", .signature = "is"},
    {.path = menu, .interface = menuInterface, .name = "Event", .signature = "isvu"},
    {.path = menu, .interface = menuInterface, .name = "EventGroup", .signature = "v"},
    {.path = menu, .interface = menuInterface, .name = "AboutToShow", .signature = "i"},
    {.path = menu, .interface = menuInterface, .name = "AboutToShowGroup", .signature = "I"},
    {.path = menu, .interface = properties, .name = "GetAll", .signature = "s"},
});

/// An argument of the type that a letter stands for; S and I are lists of texts and numbers.
QVariant argument(fuzz::Input &input, char type)
{
    static const QStringList names{u"Title"_s, u"Groups"_s, u"Lowest"_s, u"IconPixmap"_s,
        u"ToolTip"_s, u"Menu"_s, u"label"_s, u"clicked"_s, u"hovered"_s,
        QLatin1String(programInterface), QLatin1String(itemInterface),
        QLatin1String(menuInterface)};
    const auto text = [&input] {
        const auto name = input.below(static_cast<int>(names.size()) + 1);
        return name < names.size() ? names[name] : input.text();
    };
    switch (type) {
    case 'i':
        return input.flag() ? input.number<int>() : input.below(8);
    case 'u':
        return input.number<uint>();
    case 's':
        return text();
    case 'v':
        return QVariant::fromValue(QDBusVariant(fuzz::randomVariant(input, 3)));
    case 'S': {
        QStringList list;
        for (int i = input.below(6); i > 0; --i)
            list.append(text());
        return list;
    }
    default: {
        QList<int> list;
        for (int i = input.below(200); i > 0; --i)
            list.append(input.below(12));
        return QVariant::fromValue(list);
    }
    }
}

/// The program with a panel, a daemon and a display.
class Session {
public:
    Session()
    {
        // Makes the list of maps known to QtDBus.
        platform::toBusProperties({});
        qDBusRegisterMetaType<QList<int>>();
        fuzz::require(m_daemon.start(), "a daemon runs");
        m_program.emplace();
        wait([this] { return !m_watcher.items().isEmpty(); },
            "the program has its item in the panel");
        // What answers everything else: it has a state.
        wait([this] { return call(members[0], {}).type() == QDBusMessage::ReplyMessage; },
            "the program knows quota");
    }

    QDBusMessage call(const Member &member, const QVariantList &arguments)
    {
        auto message
            = QDBusMessage::createMethodCall(platform::bus::service, QLatin1String(member.path),
                QLatin1String(member.interface), QLatin1String(member.name));
        message.setArguments(arguments);
        constexpr int longest = 60'000;
        const auto before = processorTime();
        // A watcher, as its signal is what wakes this thread.
        const QDBusPendingCallWatcher pending(m_caller.bus().asyncCall(message, longest));
        while (!pending.isFinished())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        fuzz::require(!m_program->hasEnded(), "the program lives");
        const auto reply = pending.reply();
        fuzz::require(
            reply.errorName() != "org.freedesktop.DBus.Error.NoReply"_L1, "the program answers");
        // Not by the clock: the machine may have something else to do.
        fuzz::require(processorTime() - before < 1, "an answer takes less than a second of work");
        return reply;
    }

private:
    template <typename Condition> void wait(Condition condition, const char *what)
    {
        QElapsedTimer timer;
        timer.start();
        while (!condition()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
            fuzz::require(!timer.hasExpired(test::timeout), what);
        }
    }

    /// Seconds that it has computed, as far as the system counts them.
    double processorTime() const
    {
        QFile file(u"/proc/%1/stat"_s.arg(m_program->pid()));
        fuzz::require(file.open(QIODevice::ReadOnly), "the program lives");
        const QByteArray stat = file.readAll();
        const auto fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
        return double(fields.value(11).toLongLong() + fields.value(12).toLongLong())
            / double(::sysconf(_SC_CLK_TCK));
    }

    test::PrivateDisplay m_display;
    test::FakeWatcher m_watcher;
    test::OtherProgram m_caller;
    test::SampleDaemonProcess m_daemon;
    std::optional<test::Program> m_program;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 0;
    static QCoreApplication application(count, nullptr);
    static Session session;

    fuzz::Input input(data, size);
    const auto &member = members.at(static_cast<std::size_t>(input.below(int(members.size()))));
    QVariantList arguments;
    const int manner = input.below(4);
    if (manner > 0) {
        for (const char *type = member.signature; *type != '\0'; ++type)
            arguments.append(argument(input, *type));
    }
    // Too few, too many, others.
    if (manner == 0 || manner == 3) {
        for (int i = input.below(5); i > 0; --i)
            arguments.append(fuzz::randomVariant(input, 3));
    }
    session.call(member, arguments);
    return 0;
}
