#include "app/remote_access.h"
#include "platform/linux/bus/bus_names.h"
#include "platform/linux/bus/bus_service.h"
#include "platform/linux/bus/bus_state.h"
#include "service/diagnostics.h"
#include "support/fake_watcher.h"
#include "support/quota_samples.h"
#include "support/service_fixture.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace std::chrono_literals;
using platform::BusService;

namespace {

/// Another program that reads the object and writes down each PropertiesChanged.
class Reader : public QObject {
    Q_OBJECT

public:
    Reader()
    {
        m_program.bus().connect(bus(), platform::bus::path, u"org.freedesktop.DBus.Properties"_s,
            u"PropertiesChanged"_s, this, SLOT(hear(QDBusMessage)));
        m_program.ownerOf(bus());
    }

    static QString bus() { return QDBusConnection::sessionBus().baseService(); }

    QDBusMessage call(const QString &member, const QVariantList &arguments = {})
    {
        return m_program.call(message(member, arguments));
    }
    QDBusPendingCall start(const QString &member)
    {
        return m_program.bus().asyncCall(message(member, {}));
    }
    QVariantMap properties()
    {
        const auto answer = m_program.call(bus(), platform::bus::path,
            u"org.freedesktop.DBus.Properties"_s, u"GetAll"_s, {QString(platform::bus::interface)});
        return qdbus_cast<QVariantMap>(answer.arguments().value(0));
    }
    /// What the signals so far said has changed, in their order.
    QList<QVariantMap> changes()
    {
        // Messages of one sender arrive in their order.
        properties();
        QCoreApplication::processEvents();
        return m_changes;
    }
    void forget() { m_changes.clear(); }
    test::OtherProgram &program() { return m_program; }

private Q_SLOTS:
    void hear(const QDBusMessage &signal)
    {
        QCOMPARE(signal.arguments().value(0).toString(), QString(platform::bus::interface));
        m_changes.append(qdbus_cast<QVariantMap>(signal.arguments().value(1)));
    }

private:
    static QDBusMessage message(const QString &member, const QVariantList &arguments)
    {
        auto call = QDBusMessage::createMethodCall(
            bus(), platform::bus::path, platform::bus::interface, member);
        call.setArguments(arguments);
        return call;
    }

    test::OtherProgram m_program;
    QList<QVariantMap> m_changes;
};

QStringList sortedKeys(const QVariantMap &map)
{
    return map.keys();
}

} // namespace

/// The object on a real bus, with the service behind it and another program before it.
class BusServiceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture.emplace();
        m_bus = std::make_unique<BusService>(QDBusConnection::sessionBus(), u"1.2.3"_s, u":7"_s);
        m_diagnostics = std::make_unique<service::Diagnostics>(m_fixture->service,
            platform::AppInformation{
                .version = u"1.2.3"_s, .build = {}, .systemVersion = u"Debian"_s},
            m_fixture->folder.path());
        m_access = std::make_unique<app::RemoteAccess>(
            m_fixture->service, *m_diagnostics, *m_bus, u"/home/someone"_s);
        m_reader = std::make_unique<Reader>();
    }
    void cleanup()
    {
        m_access.reset();
        m_diagnostics.reset();
        m_fixture.reset();
        m_bus.reset();
        m_reader.reset();
    }

    void theStateIsReadAsItsXmlSays()
    {
        answer(0.5, 0.15);
        const auto properties = m_reader->properties();
        QCOMPARE(sortedKeys(properties),
            (QStringList{u"Display"_s, u"Error"_s, u"Groups"_s, u"Items"_s, u"LastUpdate"_s,
                u"Lowest"_s, u"Port"_s, u"State"_s, u"Title"_s, u"Version"_s}));
        QCOMPARE(properties[u"Version"_s], QVariant(u"1.2.3"_s));
        QCOMPARE(properties[u"Display"_s], QVariant(u":7"_s));
        QCOMPARE(properties[u"State"_s], QVariant(u"connected"_s));
        QCOMPARE(properties[u"Port"_s], QVariant(4711U));
        QCOMPARE(properties[u"LastUpdate"_s], QVariant(m_fixture->clock.now().toSecsSinceEpoch()));
        QCOMPARE(properties[u"Error"_s], QVariant(u""_s));
        QCOMPARE(properties[u"Title"_s], QVariant(m_fixture->service.menuBarTitle()));
        const auto lowest = qdbus_cast<QVariantMap>(properties[u"Lowest"_s]);
        QCOMPARE(lowest[u"percentage"_s], QVariant(15.0));
        QCOMPARE(lowest[u"tier"_s], QVariant(u"critical"_s));
        const auto groups = qdbus_cast<QList<QVariantMap>>(properties[u"Groups"_s]);
        QCOMPARE(groups.size(), 1);
        QCOMPARE(groups[0][u"family"_s], QVariant(u"gemini"_s));
        const auto buckets = qdbus_cast<QList<QVariantMap>>(groups[0][u"buckets"_s]);
        QCOMPARE(buckets.size(), 2);
        QCOMPARE(buckets[0][u"window"_s], QVariant(u"5h"_s));
        QCOMPARE(buckets[0][u"fraction"_s], QVariant(0.5));
        QVERIFY(!buckets[0].contains(u"reset-time"_s));
        for (const auto &key : {u"outlook"_s, u"run-out-time"_s, u"run-out-chance"_s})
            QVERIFY(!buckets[0].contains(key));
    }

    void whatGoesOverTheBusComesBackTheSame()
    {
        answer(0.5, 0.15, u"2026-11-16T12:00:00Z"_s);
        const auto state = platform::fromBusProperties(m_reader->properties());
        QCOMPARE(state.connection, platform::PublishedState::Connection::Connected);
        QCOMPARE(state.groups.size(), 1);
        QCOMPARE(state.groups[0].buckets.size(), 2);
        QVERIFY(state.groups[0].buckets[0].resetTime.has_value());
        QVERIFY(state.lowest);
        QCOMPARE(*state.lowest, state.groups[0].buckets[1]);
        QVERIFY(platform::fromBusProperties(platform::toBusProperties(state)) == state);
        auto warned = state;
        warned.groups[0].buckets[0].outlook = u"runs-out"_s;
        warned.groups[0].buckets[0].runOutTime = 1794837600;
        warned.groups[0].buckets[0].runOutChance = 0.8;
        QVERIFY(platform::fromBusProperties(platform::toBusProperties(warned)) == warned);
    }

    void aRefreshIsToldOnceHoweverMuchItChanges()
    {
        answer(0.5, 0.4);
        QCOMPARE(m_reader->changes().size(), 1);
        QCOMPARE(sortedKeys(m_reader->changes()[0]),
            (QStringList{u"Groups"_s, u"Items"_s, u"LastUpdate"_s, u"Lowest"_s, u"Port"_s,
                u"State"_s, u"Title"_s}));
        m_reader->forget();

        m_fixture->clock.setNow(m_fixture->clock.now().addSecs(5));
        m_fixture->service.refresh();
        answer(0.45, 0.4);
        const auto changes = m_reader->changes();
        QCOMPARE(changes.size(), 1);
        QCOMPARE(sortedKeys(changes[0]),
            (QStringList{u"Groups"_s, u"Items"_s, u"LastUpdate"_s, u"Title"_s}));
    }

    void timeThatPassesIsNotTold()
    {
        answer(0.5, 0.4);
        QCOMPARE(m_reader->changes().size(), 1);
        m_reader->forget();
        m_fixture->clock.advance(30s);
        QCoreApplication::processEvents();
        QVERIFY(m_reader->changes().isEmpty());
    }

    void anOfflineDaemonIsToldOnceHoweverOftenItIsAsked()
    {
        for (int i = 0; i < 5; ++i) {
            QTRY_VERIFY(m_fixture->fetching.isWaiting());
            m_fixture->fail();
            QTRY_VERIFY(!m_fixture->service.isRefreshing());
            m_reader->changes();
            m_fixture->service.refresh();
        }
        const auto changes = m_reader->changes();
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes[0][u"State"_s], QVariant(u"offline"_s));
        QVERIFY(!changes[0][u"Error"_s].toString().isEmpty());
    }

    void aSettingThatChangesTheLabelIsTold()
    {
        answer(0.4, 0.5);
        m_reader->changes();
        m_reader->forget();
        m_fixture->service.setShowWeeklyInMenuBar(false);
        const auto changes = m_reader->changes();
        QCOMPARE(changes.size(), 1);
        QCOMPARE(sortedKeys(changes[0]), (QStringList{u"Items"_s, u"Title"_s}));
        m_fixture->service.setLowQuotaThreshold(30);
        QCOMPARE(m_reader->changes().size(), 1);
    }

    void callsDuringARefreshJoinIt()
    {
        answer(0.5, 0.4);
        const auto asked = m_fixture->fetching.asked.size();
        const auto first = m_reader->start(u"Refresh"_s);
        QTRY_VERIFY(m_fixture->fetching.isWaiting());
        const auto second = m_reader->start(u"Refresh"_s);
        const auto third = m_reader->start(u"Refresh"_s);
        m_reader->properties();
        QVERIFY(!first.isFinished() && !second.isFinished() && !third.isFinished());
        answer(0.3, 0.2);
        QTRY_VERIFY(first.isFinished() && second.isFinished() && third.isFinished());
        for (const auto &call : {first, second, third})
            QCOMPARE(call.reply().type(), QDBusMessage::ReplyMessage);
        QCOMPARE(m_fixture->fetching.asked.size(), asked + 1);
    }

    void thePropertiesAreCurrentWhenARefreshAnswers()
    {
        answer(0.5, 0.4);
        m_reader->changes();
        m_reader->forget();
        const auto call = m_reader->start(u"Refresh"_s);
        QTRY_VERIFY(m_fixture->fetching.isWaiting());
        m_fixture->clock.setNow(m_fixture->clock.now().addSecs(5));
        answer(0.3, 0.2);
        QTRY_VERIFY(call.isFinished());
        QCOMPARE(m_reader->changes().size(), 1);
        QCOMPARE(qdbus_cast<QVariantMap>(m_reader->properties()[u"Lowest"_s])[u"percentage"_s],
            QVariant(20.0));
    }

    void aRefreshThatFailsAnswersWithTheReason()
    {
        // Joins the refresh that the service starts with: an answer to a later call has come after.
        const auto call = m_reader->start(u"Refresh"_s);
        m_reader->properties();
        m_fixture->fail({.kind = discovery::DaemonError::Kind::daemonUnreachable,
            .message = u"The request timed out."_s,
            .lastUpdate = {}});
        QTRY_VERIFY(call.isFinished());
        QCOMPARE(call.error().name(), QString(platform::bus::refreshFailed));
        QVERIFY(call.error().message().contains(u"The request timed out."_s));
        QCOMPARE(m_reader->properties()[u"Error"_s].toString(), call.error().message());
    }

    void aFloodOfRefreshesIsRefusedAboveItsShare()
    {
        QTRY_VERIFY(m_fixture->fetching.isWaiting());
        constexpr int flood = 10'000;
        QList<QDBusPendingCall> calls;
        for (int i = 0; i < flood; ++i)
            calls.append(m_reader->start(u"Refresh"_s));
        Reader other;
        const auto friendly = other.start(u"Refresh"_s);
        const auto open = [&calls] {
            return std::ranges::count_if(
                calls, [](const QDBusPendingCall &call) { return !call.isFinished(); });
        };
        QTRY_COMPARE_WITH_TIMEOUT(open(), BusService::mostWaitingOfOneCaller, 60'000);
        // Who is not flooding still gets an answer.
        QVERIFY(!friendly.isFinished());
        QCOMPARE(m_fixture->fetching.asked.size(), 1U);
        answer(0.5, 0.4);
        QTRY_COMPARE(open(), 0);
        QTRY_VERIFY(friendly.isFinished());
        QCOMPARE(friendly.reply().type(), QDBusMessage::ReplyMessage);
        qsizetype refused = 0;
        for (const auto &call : std::as_const(calls)) {
            if (call.isError()) {
                QCOMPARE(call.error().type(), QDBusError::LimitsExceeded);
                ++refused;
            }
        }
        QCOMPARE(refused, flood - BusService::mostWaitingOfOneCaller);
        QCOMPARE(m_fixture->fetching.asked.size(), 1U);
    }

    void theDaemonIsAskedAtMostOnceASecondForOthers()
    {
        answer(0.5, 0.4);
        const auto asked = m_fixture->fetching.asked.size();
        QElapsedTimer since;
        since.start();
        const auto first = m_reader->start(u"Refresh"_s);
        answer(0.5, 0.3);
        QTRY_VERIFY(first.isFinished());
        const auto second = m_reader->start(u"Refresh"_s);
        QTRY_VERIFY(m_fixture->fetching.isWaiting());
        QVERIFY(since.elapsed() >= 1000);
        QCOMPARE(m_fixture->fetching.asked.size(), asked + 2);
        answer(0.5, 0.2);
        QTRY_VERIFY(second.isFinished());
        QVERIFY(!second.isError());
    }

    void requestsReachTheProgramOnceForAllThatCame_data()
    {
        QTest::addColumn<QString>("member");
        for (const auto *member : {"Show", "Toggle", "ShowSettings", "Quit"})
            QTest::newRow(member) << QString::fromLatin1(member);
    }
    void requestsReachTheProgramOnceForAllThatCame()
    {
        QFETCH(QString, member);
        QSignalSpy shown(m_bus.get(), &platform::RemoteControl::showRequested);
        QSignalSpy toggled(m_bus.get(), &platform::RemoteControl::toggleRequested);
        QSignalSpy settings(m_bus.get(), &platform::RemoteControl::showSettingsRequested);
        QSignalSpy quit(m_bus.get(), &platform::RemoteControl::quitRequested);
        QCOMPARE(m_reader->call(member).type(), QDBusMessage::ReplyMessage);
        const auto counts = [&] {
            return QList<qsizetype>{shown.size(), toggled.size(), settings.size(), quit.size()};
        };
        const auto once
            = [&member](const QString &called) -> qsizetype { return member == called ? 1 : 0; };
        QList<qsizetype> expected{
            once(u"Show"_s), once(u"Toggle"_s), once(u"ShowSettings"_s), once(u"Quit"_s)};
        QTRY_COMPARE(counts(), expected);
    }

    void wrongCallsAreRefused_data()
    {
        QTest::addColumn<QString>("member");
        QTest::addColumn<QVariantList>("arguments");
        QTest::newRow("an argument too many") << u"Refresh"_s << QVariantList{u"x"_s};
        QTest::newRow("a number for nothing") << u"Show"_s << QVariantList{7};
        QTest::newRow("a long text") << u"Quit"_s << QVariantList{QString(1'000'000, u'x')};
        QTest::newRow("no such method") << u"Configure"_s << QVariantList{};
        // What only this process calls is not on the bus.
        QTest::newRow("a signal of ours") << u"quitRequested"_s << QVariantList{};
        QTest::newRow("a slot of any object") << u"deleteLater"_s << QVariantList{};
    }
    void wrongCallsAreRefused()
    {
        QFETCH(QString, member);
        QFETCH(QVariantList, arguments);
        QSignalSpy quit(m_bus.get(), &platform::RemoteControl::quitRequested);
        QSignalSpy shown(m_bus.get(), &platform::RemoteControl::showRequested);
        const auto answer = m_reader->call(member, arguments);
        QCOMPARE(answer.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(QDBusError(answer).type(), QDBusError::UnknownMethod);
        m_reader->properties();
        QVERIFY(quit.isEmpty() && shown.isEmpty());
    }

    void nothingCanBeWritten()
    {
        const QString title = m_reader->properties()[u"Title"_s].toString();
        const auto answer = m_reader->program().call(Reader::bus(), platform::bus::path,
            u"org.freedesktop.DBus.Properties"_s, u"Set"_s,
            {QString(platform::bus::interface), u"Title"_s,
                QVariant::fromValue(QDBusVariant(u"x"_s))});
        QCOMPARE(answer.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(m_reader->properties()[u"Title"_s].toString(), title);
    }

    void theReportHoldsTheTokensBeginningAlone()
    {
        answer(0.5, 0.4);
        const auto report = m_reader->call(u"Diagnostics"_s).arguments().value(0).toString();
        QVERIFY(report.startsWith(u"--- Brimwatch Diagnostics ---\n"_s));
        QVERIFY(report.contains(u"Daemon CSRF: 12345678...\n"_s));
        QVERIFY(!report.contains(u"123456789"_s));
    }

    void whatComesFromTheBusIsBoundedAndPlain()
    {
        QList<QVariantMap> buckets;
        for (int i = 0; i < 1000; ++i)
            buckets.append({{u"name"_s, QString(1000, u'x')}, {u"fraction"_s, u"a text"_s},
                {u"percentage"_s, 1e300}, {u"tier"_s, 7}});
        QList<QVariantMap> groups;
        for (int i = 0; i < 1000; ++i)
            groups.append({{u"name"_s, u"\x1b[2Jred\n"_s},
                {u"buckets"_s, QVariant::fromValue(buckets.mid(0, 10))}});
        const auto state = platform::fromBusProperties({{u"State"_s, 5}, {u"Port"_s, u"x"_s},
            {u"Title"_s, QString(100'000, u'x')}, {u"LastUpdate"_s, 1.5},
            {u"Groups"_s, QVariant::fromValue(groups)}, {u"Lowest"_s, u"none"_s}});
        QCOMPARE(state.connection, platform::PublishedState::Connection::Connecting);
        QCOMPARE(state.port, 0);
        QCOMPARE(state.title.size(), platform::PublishedState::longestText);
        QVERIFY(!state.lastUpdate);
        QVERIFY(!state.lowest);
        QCOMPARE(state.groups.size(), platform::PublishedState::mostGroups);
        QVERIFY(!state.groups[0].name.contains(u'\x1b'));
        qsizetype count = 0;
        for (const auto &group : state.groups)
            count += group.buckets.size();
        QCOMPARE(count, platform::PublishedState::mostBuckets);
        QCOMPARE(state.groups[0].buckets[0].percentage, 100.0);
        QCOMPARE(state.groups[0].buckets[0].fraction, 0.0);
        QCOMPARE(state.groups[0].buckets[0].tier, model::QuotaTier::critical);
    }

private:
    /// Answers the fetch that waits, with the Gemini quota.
    void answer(double fiveHours, double weekly, const std::optional<QString> &reset = {})
    {
        auto group = model::sampleGroup(u"Gemini Models"_s, fiveHours, weekly);
        group.buckets[0].resetTime = reset;
        group.buckets[1].resetTime = reset;
        m_fixture->answer(model::QuotaSummary{.groups = {group}},
            {.httpPort = 4711, .csrfToken = u"1234567890-a-secret"_s});
    }

    std::optional<test::ServiceFixture> m_fixture;
    std::unique_ptr<BusService> m_bus;
    std::unique_ptr<service::Diagnostics> m_diagnostics;
    std::unique_ptr<app::RemoteAccess> m_access;
    std::unique_ptr<Reader> m_reader;
};

QTEST_GUILESS_MAIN(BusServiceTest)

#include "bus_service_test.moc"
