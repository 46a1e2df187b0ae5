#include "dbus/desktop/fake_notification_server.h"
#include "platform/linux/desktop/application_icon.h"
#include "platform/linux/desktop/desktop_notifier.h"
#include "support/fake_bus.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;
using namespace std::chrono_literals;
using brimwatch::test::FakeBus;
using brimwatch::test::FakeNotificationServer;
using brimwatch::test::OtherProgram;
using Manners = FakeNotificationServer::Manners;

namespace {

constexpr int iconSide = 48;

Notification low(const QString &title)
{
    return {.identifier = u"low"_s, .title = title, .body = u"The body"_s};
}

Notification numbered(int number)
{
    return {.identifier = u"number-%1"_s.arg(number),
        .title = QString::number(number),
        .body = u"The body"_s};
}

/// Takes notifications on a fake bus, and does not answer for them.
class HoldingServer : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    explicit HoldingServer(QDBusConnection &bus)
    {
        bus.registerObject(
            u"/org/freedesktop/Notifications"_s, this, QDBusConnection::ExportAllSlots);
    }

    int calls = 0;

public Q_SLOTS:
    // NOLINTNEXTLINE(readability-convert-member-functions-to-static): a slot of the object.
    QStringList GetCapabilities() { return {u"body"_s}; }
    uint Notify(const QString & /*application*/, uint /*replaces*/, const QString & /*icon*/,
        const QString & /*title*/, const QString & /*body*/, const QStringList & /*actions*/,
        const QVariantMap & /*hints*/, int /*milliseconds*/)
    {
        ++calls;
        setDelayedReply(true);
        return 0;
    }
};

} // namespace

class DesktopNotifierTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { makeNotifier(); }
    void cleanup()
    {
        m_notifier.reset();
        m_server.reset();
    }

    void aNotificationCarriesItsTextsAndWhoSendsIt()
    {
        serve();
        m_notifier->post({.identifier = u"low"_s, .title = u"A & <b>"_s, .body = u"Body"_s});
        QTRY_COMPARE(m_server->calls.size(), 1);
        const auto &call = m_server->calls.constFirst();
        QCOMPARE(call.signature, u"susssasa{sv}i"_s);
        QCOMPARE(call.application, u"Brimwatch"_s);
        QCOMPARE(call.replaces, 0U);
        QCOMPARE(call.icon, u"app.brimwatch.Brimwatch"_s);
        QCOMPARE(call.title, u"A & <b>"_s); // Titles are never markup.
        QCOMPARE(call.body, u"Body"_s);
        QCOMPARE(call.expires, -1);
        QCOMPARE(call.hints.value(u"sound-name"_s).toString(), u"message-new-instant"_s);
        QCOMPARE(call.hints.value(u"desktop-entry"_s).toString(), u"app.brimwatch.Brimwatch"_s);
        QCOMPARE(call.hints.value(u"urgency"_s).typeId(), int(QMetaType::UChar));
        QCOMPARE(call.hints.value(u"urgency"_s).toInt(), 1);
    }

    void theIconIsSentAsRedGreenBlueAndAlpha()
    {
        serve();
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->calls.size(), 1);
        const auto data
            = m_server->calls.constFirst().hints.value(u"image-data"_s).value<QDBusArgument>();
        QCOMPARE(data.currentSignature(), u"(iiibiiay)"_s);
        int width = 0;
        int height = 0;
        int stride = 0;
        int bits = 0;
        int channels = 0;
        bool alpha = false;
        QByteArray bytes;
        data.beginStructure();
        data >> width >> height >> stride >> alpha >> bits >> channels >> bytes;
        data.endStructure();
        QCOMPARE(QSize(width, height), QSize(iconSide, iconSide));
        QCOMPARE(stride, 4 * iconSide);
        QVERIFY(alpha);
        QCOMPARE(bits, 8);
        QCOMPARE(channels, 4);
        QCOMPARE(bytes.size(), qsizetype(stride) * height);
        const QImage sent(reinterpret_cast<const uchar *>(bytes.constData()), width, height, stride,
            QImage::Format_RGBA8888);
        const QImage drawn = applicationIcon(iconSide).convertToFormat(QImage::Format_RGBA8888);
        QCOMPARE(sent, drawn);
        QCOMPARE(sent.pixelColor(0, 0).alpha(), 0);
        // Left of the sparkle the background, which is more blue than red.
        const QColor background = sent.pixelColor(iconSide / 8, iconSide / 2);
        QCOMPARE(background.alpha(), 255);
        QVERIFY(background.blue() > background.red());
        bool white = false;
        for (int x = 0; x < width; ++x)
            white = white || sent.pixelColor(x, height / 2) == QColor(Qt::white);
        QVERIFY(white);
    }

    void theNewerOneReplacesTheOlder()
    {
        serve(40);
        postAndSettle(low(u"1"_s));
        postAndSettle(low(u"2"_s));
        postAndSettle(low(u"3"_s));
        QCOMPARE(replaced(), QList<uint>({0, 40, 40}));
        QCOMPARE(m_notifier->known(), 1);
    }

    void theServersNewestNumberCounts()
    {
        serve();
        m_server->onNotify = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_server->answerHeld(7);
        m_notifier->post(low(u"2"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_server->answerHeld(9); // Not the number that was to be replaced.
        m_notifier->post(low(u"3"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        QCOMPARE(replaced(), QList<uint>({0, 7, 9}));
    }

    void otherIdentifiersAreOnTheirOwn()
    {
        serve(5);
        postAndSettle(numbered(1));
        postAndSettle(numbered(2));
        postAndSettle(numbered(1));
        postAndSettle(numbered(2));
        QCOMPARE(replaced(), QList<uint>({0, 0, 5, 6}));
    }

    void theNewestWaitsForTheAnswerToTheOlderAndReplacesIt()
    {
        serve();
        m_server->onNotify = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_notifier->post(low(u"2"_s));
        m_notifier->post(low(u"3"_s));
        settle();
        QCOMPARE(m_server->titles(), QStringList(u"1"_s));
        m_server->answerHeld(12);
        QTRY_COMPARE(m_server->titles(), QStringList({u"1"_s, u"3"_s}));
        QCOMPARE(m_server->calls.last().replaces, 12U);
    }

    void onesPostedInOneTurnBecomeTheNewest()
    {
        serve();
        m_notifier->post(low(u"1"_s));
        m_notifier->post(low(u"2"_s));
        QTRY_COMPARE(m_server->titles(), QStringList(u"2"_s));
        QCOMPARE(m_server->asked, 1);
    }

    void oneThatWasClosedIsNotReplaced()
    {
        serve(3);
        postAndSettle(low(u"1"_s));
        m_server->close(3);
        m_server->close(3); // Some servers say it twice.
        QTRY_COMPARE(m_notifier->known(), 0);
        postAndSettle(low(u"2"_s));
        QCOMPARE(replaced(), QList<uint>({0, 0}));
    }

    void aRestartedServerIsAskedAnewAndGetsNoOldNumber()
    {
        serve(3);
        postAndSettle(low(u"1"_s));
        m_server.reset();
        QTRY_COMPARE(m_notifier->known(), 0);
        serve(100);
        m_server->capabilities = {u"body"_s};
        m_notifier->post({.identifier = u"low"_s, .title = u"2"_s, .body = u"a & b"_s});
        QTRY_COMPARE(m_server->calls.size(), 1);
        QCOMPARE(m_server->calls.constFirst().replaces, 0U);
        QCOMPARE(m_server->calls.constFirst().body, u"a & b"_s);
        QCOMPARE(m_server->calls.constFirst().actions, QStringList());
    }

    void aServerThatTakesThePlaceOfALivingOneIsAskedAnewAndGetsNoOldNumber()
    {
        serve(3);
        postAndSettle(low(u"1"_s));
        const auto former = std::move(m_server);
        former->giveUpName();
        serve(100);
        m_server->capabilities = {u"body"_s};
        settle();
        m_notifier->post({.identifier = u"low"_s, .title = u"2"_s, .body = u"a & b"_s});
        QTRY_COMPARE(m_server->calls.size(), 1);
        QCOMPARE(m_server->calls.constFirst().replaces, 0U);
        QCOMPARE(m_server->calls.constFirst().body, u"a & b"_s);
        QCOMPARE(former->titles(), QStringList(u"1"_s));
    }

    void repliesNeedNotNameTheirSender()
    {
        // As from Qt 6.8 on; the whole test runs so.
        const auto answer = m_program.call(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
            u"org.freedesktop.DBus"_s, u"GetId"_s);
        QCOMPARE(answer.type(), QDBusMessage::ReplyMessage);
        QCOMPARE(answer.service(), QString());
    }

    void capabilitiesAreAskedOncePerServer()
    {
        serve();
        postAndSettle(numbered(1));
        postAndSettle(numbered(2));
        postAndSettle(numbered(1));
        QCOMPARE(m_server->asked, 1);
    }

    void bodiesAreEscapedAsTheServerReadsThem_data()
    {
        QTest::addColumn<QStringList>("capabilities");
        QTest::addColumn<Manners>("manners");
        QTest::addColumn<QString>("body");
        const QString source = u"a & b <i>c</i> &lt;"_s;
        QTest::newRow("markup") << QStringList{u"body"_s, u"body-markup"_s} << Manners::Answers
                                << u"a &amp; b &lt;i&gt;c&lt;/i&gt; &amp;lt;"_s;
        QTest::newRow("plain") << QStringList{u"body"_s} << Manners::Answers << source;
        QTest::newRow("nothing said") << QStringList() << Manners::Answers << source;
        QTest::newRow("refused") << QStringList() << Manners::Refuses
                                 << u"a and b ‹i›c‹/i› andlt;"_s;
        QTest::newRow("nonsense") << QStringList() << Manners::AnswersNonsense
                                  << u"a and b ‹i›c‹/i› andlt;"_s;
    }

    void bodiesAreEscapedAsTheServerReadsThem()
    {
        QFETCH(QStringList, capabilities);
        QFETCH(Manners, manners);
        QFETCH(QString, body);
        serve();
        m_server->capabilities = capabilities;
        m_server->onGetCapabilities = manners;
        m_notifier->post(
            {.identifier = u"low"_s, .title = u"T"_s, .body = u"a & b <i>c</i> &lt;"_s});
        QTRY_COMPARE(m_server->calls.size(), 1);
        QCOMPARE(m_server->calls.constFirst().body, body);
    }

    void aClickIsAskedForWhereTheServerKnowsActions()
    {
        serve();
        postAndSettle(low(u"1"_s));
        QCOMPARE(m_server->calls.constFirst().actions, QStringList({u"default"_s, u"Open"_s}));
    }

    void aClickActivatesAndNothingElseDoes()
    {
        serve(5);
        QSignalSpy activated(m_notifier.get(), &Notifier::activated);
        postAndSettle(numbered(1));
        postAndSettle(numbered(2));
        m_server->invoke(5, u"later"_s);
        m_server->invoke(0, u"default"_s);
        m_server->invoke(99, u"default"_s);
        m_server->signal(u"ActionInvoked"_s, {u"5"_s, u"default"_s});
        m_server->signal(u"ActionInvoked"_s, {5U});
        m_server->signal(u"ActionInvoked"_s, {});
        OtherProgram stranger;
        auto forged = QDBusMessage::createSignal(u"/org/freedesktop/Notifications"_s,
            u"org.freedesktop.Notifications"_s, u"ActionInvoked"_s);
        forged << 5U << u"default"_s;
        stranger.bus().send(forged);
        // The bus has passed it on before it answers the sender's next call.
        stranger.ownerOf(u"org.freedesktop.Notifications"_s);
        m_server->invoke(6, u"default"_s);
        QTRY_COMPARE(activated.size(), 1);
        QCOMPARE(activated.at(0).at(0).toString(), u"number-2"_s);

        m_server->close(5);
        m_server->invoke(5, u"default"_s);
        m_server->invoke(6, u"default"_s);
        QTRY_COMPARE(activated.size(), 2);
        QCOMPARE(activated.at(1).at(0).toString(), u"number-2"_s);
    }

    void whatIsPostedWithoutAServerWaitsForOne()
    {
        m_notifier->post(low(u"1"_s));
        settle();
        m_notifier->post(numbered(1));
        m_notifier->post(low(u"2"_s));
        settle();
        QCOMPARE(m_notifier->known(), 2);
        serve();
        QTRY_COMPARE(m_server->titles(), QStringList({u"1"_s, u"2"_s}));
    }

    void whatHasWaitedTooLongIsDropped()
    {
        makeNotifier({.server = 20ms});
        m_notifier->post(low(u"old"_s));
        QCOMPARE(m_notifier->known(), 1);
        QTRY_COMPARE(m_notifier->known(), 0);
        serve();
        settle();
        makeNotifier();
        postAndSettle(low(u"new"_s));
        QCOMPARE(m_server->titles(), QStringList(u"new"_s));
    }

    void aRefusalDropsTheNotificationAndTheNextStartsAfresh_data()
    {
        QTest::addColumn<Manners>("manners");
        QTest::newRow("an error") << Manners::Refuses;
        QTest::newRow("wrong types") << Manners::AnswersNonsense;
    }

    void aRefusalDropsTheNotificationAndTheNextStartsAfresh()
    {
        QFETCH(Manners, manners);
        serve(3);
        postAndSettle(low(u"1"_s));
        m_server->onNotify = manners;
        m_notifier->post(low(u"2"_s));
        QTRY_COMPARE(m_notifier->known(), 0);
        m_server->onNotify = Manners::Answers;
        postAndSettle(low(u"3"_s));
        QCOMPARE(m_server->titles(), QStringList({u"1"_s, u"2"_s, u"3"_s}));
        QCOMPARE(replaced(), QList<uint>({0, 3, 0}));
    }

    void whatAServerTookButDidNotAnswerGoesToTheNextServer()
    {
        serve();
        m_server->onNotify = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_server.reset();
        serve(50);
        QTRY_COMPARE(m_server->titles(), QStringList(u"1"_s));
        settle();
        postAndSettle(low(u"2"_s));
        QCOMPARE(replaced(), QList<uint>({0, 50}));
    }

    void newerNewsIsNotUndoneByAServerThatLeft()
    {
        serve();
        m_server->onNotify = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_notifier->post(low(u"2"_s));
        m_server.reset();
        serve();
        QTRY_COMPARE(m_server->titles(), QStringList(u"2"_s));
        settle();
        QCOMPARE(m_server->calls.size(), 1);
    }

    void aServerThatNeverSaysWhatItCanDoIsLeftForTheNext()
    {
        serve();
        m_server->onGetCapabilities = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->asked, 1);
        m_server.reset();
        serve();
        QTRY_COMPARE(m_server->titles(), QStringList(u"1"_s));
    }

    void aServerThatHangsHoldsUpNoOtherIdentifier()
    {
        serve();
        m_server->onNotify = Manners::Holds;
        m_notifier->post(numbered(1));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_server->onNotify = Manners::Answers;
        postAndSettle(numbered(2));
        QCOMPARE(m_server->titles(), QStringList({u"1"_s, u"2"_s}));
    }

    void aServerThatDoesNotAnswerInTimeCostsTheNotificationAlone()
    {
        makeNotifier({.answer = 20ms});
        serve();
        m_server->onNotify = Manners::Holds;
        // Again and again, as even what the server can do may come too late.
        QTRY_VERIFY((m_notifier->post(low(u"1"_s)), !m_server->held.isEmpty()));
        QTRY_COMPARE(m_notifier->known(), 0);
        const auto sent = m_server->calls.size();
        // Too late.
        while (!m_server->held.isEmpty())
            m_server->answerHeld(7);
        settle();
        m_server->onNotify = Manners::Answers;
        QTRY_VERIFY((m_notifier->post(low(u"2"_s)), m_server->calls.size() > sent));
        QCOMPARE(m_server->calls.at(sent).replaces, 0U);
        QCOMPARE(m_server->calls.at(sent).title, u"2"_s);
    }

    void whileTheBusDoesNotSayThatAServerHasGoneNoOtherIsAsked()
    {
        // Another server would show the notification a second time.
        FakeBus bus;
        HoldingServer server(bus.programs());
        bus.owners = {{u"org.freedesktop.Notifications"_s, u":1.5"_s}, {u":1.5"_s, u":1.5"_s}};
        m_notifier = std::make_unique<DesktopNotifier>(
            bus.connection(), sender(), DesktopNotifier::Timeouts{.server = 60s, .answer = 50ms});
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(server.calls, 1);
        const int before = bus.asked;
        bus.onGetNameOwner
            = {FakeBus::Manners::Holds, FakeBus::Manners::TimesOut, FakeBus::Manners::Answers};
        QTRY_COMPARE(m_notifier->known(), 0);
        QCOMPARE(bus.asked, before + 3);
        QCOMPARE(server.calls, 1);
    }

    void aSlowBusIsAskedForTheServerAgain()
    {
        FakeBus bus;
        HoldingServer server(bus.programs());
        bus.owners = {{u"org.freedesktop.Notifications"_s, u":1.5"_s}};
        bus.onGetNameOwner
            = {FakeBus::Manners::TimesOut, FakeBus::Manners::TimesOut, FakeBus::Manners::Answers};
        m_notifier = std::make_unique<DesktopNotifier>(
            bus.connection(), sender(), DesktopNotifier::Timeouts());
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(server.calls, 1);
    }

    void aServerThatNeverAnswersIsGivenUp()
    {
        makeNotifier({.server = 40ms, .answer = 20ms});
        serve();
        m_server->onGetCapabilities = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_notifier->known(), 0);
        QVERIFY(m_server->calls.isEmpty());
    }

    void onlySoManyAreOnTheirWayAtATime()
    {
        constexpr int many = 20;
        serve();
        m_server->onNotify = Manners::Holds;
        for (int i = 0; i < many; ++i)
            m_notifier->post(numbered(i));
        QTRY_COMPARE(m_server->held.size(), DesktopNotifier::mostOnTheirWay);
        settle();
        QCOMPARE(m_server->calls.size(), DesktopNotifier::mostOnTheirWay);
        m_server->onNotify = Manners::Answers;
        for (uint id = 100; !m_server->held.isEmpty(); ++id)
            m_server->answerHeld(id);
        QTRY_COMPARE(m_server->calls.size(), many);
    }

    void onlyTheNewestIdentifiersAreKnown()
    {
        constexpr int many = 1000;
        for (int i = 0; i < many; ++i)
            m_notifier->post(numbered(i));
        QCOMPARE(m_notifier->known(), DesktopNotifier::mostIdentifiers);
        serve();
        QTRY_COMPARE(m_server->calls.size(), DesktopNotifier::mostIdentifiers);
        settle();
        QCOMPARE(m_notifier->known(), DesktopNotifier::mostIdentifiers);
        QCOMPARE(m_server->titles().last(), u"999"_s);
        for (int i = 0; i < many; ++i)
            m_notifier->post(numbered(i));
        QCOMPARE(m_notifier->known(), DesktopNotifier::mostIdentifiers);
    }

    void aFloodOfSignalsChangesNothing()
    {
        constexpr uint many = 5000;
        serve(3);
        postAndSettle(low(u"1"_s));
        for (uint i = 0; i < many; ++i)
            m_server->close(1000 + i);
        m_server->signal(u"NotificationClosed"_s, {});
        m_server->signal(u"NotificationClosed"_s, {3U});
        m_server->signal(u"NotificationClosed"_s, {u"3"_s, 1U});
        m_server->signal(u"NotificationClosed"_s, {3, 1});
        m_server->signal(u"NotificationClosed"_s, {QString(1'000'000, u'x'), QVariantMap()});
        OtherProgram stranger;
        auto forged = QDBusMessage::createSignal(u"/org/freedesktop/Notifications"_s,
            u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s);
        forged << 3U << 1U;
        stranger.bus().send(forged);
        stranger.ownerOf(u"org.freedesktop.Notifications"_s);
        postAndSettle(low(u"2"_s));
        QCOMPARE(replaced(), QList<uint>({0, 3}));
        QCOMPARE(m_notifier->known(), 1);
    }

    void textsAreBoundedLinesWithoutControlCharacters()
    {
        serve();
        m_server->capabilities = {u"body"_s};
        m_notifier->post({.identifier = u"low"_s,
            .title = u"a\nb\tc"_s + QChar(0) + u"d\u2028e"_s,
            .body = QString(1'000'000, u'x')});
        QTRY_COMPARE(m_server->calls.size(), 1);
        QCOMPARE(m_server->calls.constFirst().title, u"a b c d e"_s);
        const QString body = m_server->calls.constFirst().body;
        QCOMPARE(body.size(), DesktopNotifier::longestBody);
        QVERIFY(body.endsWith(u'…'));

        // A cut through a character of two parts leaves none of it.
        m_notifier->post({.identifier = u"2"_s,
            .title = QString(DesktopNotifier::longestTitle - 2, u'x') + u"😀😀"_s,
            .body = {}});
        QTRY_COMPARE(m_server->calls.size(), 2);
        QCOMPARE(
            m_server->calls.at(1).title, QString(DesktopNotifier::longestTitle - 2, u'x') + u'…');
    }

    void withoutABusNothingHappens()
    {
        m_notifier = std::make_unique<DesktopNotifier>(QDBusConnection(u"no such connection"_s),
            sender(), DesktopNotifier::Timeouts{.server = 20ms});
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_notifier->known(), 0);
    }

    void answersAfterItsEndAreHarmless()
    {
        serve();
        m_server->onNotify = Manners::Holds;
        m_notifier->post(low(u"1"_s));
        QTRY_COMPARE(m_server->held.size(), 1);
        m_notifier.reset();
        m_server->answerHeld(1);
        m_server->close(1);
        settle();
    }

    void thereIsNoAuthorisationToAskFor()
    {
        serve();
        m_notifier->requestAuthorization();
        settle();
        QCOMPARE(m_server->asked, 0);
        QVERIFY(m_server->calls.isEmpty());
    }

    void theBusStartsAServerThatIsInstalled()
    {
        // A server in a process of its own, which says what it was told in a file.
        const QString told = QDir::homePath() + u"/told"_s;
        const QString services = QDir::homePath() + u"/services"_s;
        QVERIFY(QDir().mkpath(services));
        QFile file(services + u"/notifications.service"_s);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[D-BUS Service]\nName=org.freedesktop.Notifications\nExec="
            + QFile::encodeName(QCoreApplication::applicationFilePath()) + " --serve "
            + QFile::encodeName(told) + '\n');
        file.close();
        auto bus = QDBusConnection::sessionBus();
        bus.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s,
            u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, u"ReloadConfig"_s));

        m_notifier->post(low(u"Hello"_s));
        constexpr int timeout = 60'000; // Milliseconds, as QTest takes them.
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(told), timeout);
        QFile answer(told);
        QVERIFY(answer.open(QIODevice::ReadOnly));
        QCOMPARE(answer.readAll(), "Hello");
    }

private:
    static DesktopNotifier::Sender sender()
    {
        return {.name = u"Brimwatch"_s, .identifier = u"app.brimwatch.Brimwatch"_s, .icon = [] {
                    return applicationIcon(iconSide);
                }};
    }

    void makeNotifier(const DesktopNotifier::Timeouts &timeouts = {})
    {
        m_notifier
            = std::make_unique<DesktopNotifier>(QDBusConnection::sessionBus(), sender(), timeouts);
    }

    void serve(uint firstId = 1) { m_server = std::make_unique<FakeNotificationServer>(firstId); }

    /// Posts it, and waits until the answer to it has arrived.
    void postAndSettle(const Notification &notification)
    {
        const auto before = m_server->calls.size();
        m_notifier->post(notification);
        QTRY_COMPARE(m_server->calls.size(), before + 1);
        settle();
    }

    /// Until all that was on its way between server and notifier has arrived.
    void settle()
    {
        constexpr int turns = 3;
        for (int turn = 0; turn < turns; ++turn) {
            if (m_server)
                m_program.call(u"org.freedesktop.Notifications"_s,
                    u"/org/freedesktop/Notifications"_s, u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
            QDBusConnection::sessionBus().interface()->isServiceRegistered(u"any.name"_s);
            QCoreApplication::processEvents();
        }
    }

    QList<uint> replaced() const
    {
        QList<uint> ids;
        for (const auto &call : m_server->calls)
            ids.append(call.replaces);
        return ids;
    }

    OtherProgram m_program;
    std::unique_ptr<DesktopNotifier> m_notifier;
    std::unique_ptr<FakeNotificationServer> m_server;
};

int main(int argc, char **argv)
{
    const QGuiApplication application(argc, argv);
    const auto arguments = QCoreApplication::arguments();
    if (arguments.value(1) != "--serve"_L1) {
        DesktopNotifierTest test;
        return QTest::qExec(&test, argc, argv);
    }
    FakeNotificationServer server;
    server.onCall = [&server, told = arguments.value(2)] {
        QFile partial(told + u".part"_s);
        if (partial.open(QIODevice::WriteOnly)) {
            partial.write(server.titles().constLast().toUtf8());
            partial.close();
            partial.rename(told);
        }
        // Once the answer is sent.
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    };
    // Not for ever if nobody calls.
    QTimer::singleShot(60s, qApp, &QCoreApplication::quit);
    return QGuiApplication::exec();
}

#include "desktop_notifier_test.moc"
