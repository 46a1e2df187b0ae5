#include "platform/linux/bus/bus_calls.h"
#include "support/fake_bus.h"

#include <QTest>

#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;
using namespace brimwatch::platform;
using brimwatch::test::FakeBus;
using Manners = FakeBus::Manners;

class BusCallsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anAnswerTellsWhoGaveIt_data();
    void anAnswerTellsWhoGaveIt();
    void theOwnerOfANameIsFound_data();
    void theOwnerOfANameIsFound();
    void withoutABusNobodyOwnsAName();
};

void BusCallsTest::anAnswerTellsWhoGaveIt_data()
{
    using bus::CallOutcome;
    QTest::addColumn<QString>("error");
    QTest::addColumn<CallOutcome>("outcome");
    const auto row = [](const char *name, CallOutcome outcome) {
        QTest::newRow(name) << QString::fromLatin1(name) << outcome;
    };
    QTest::newRow("a reply") << QString() << CallOutcome::Replied;
    row("org.freedesktop.DBus.Error.Failed", CallOutcome::Replied);
    row("org.freedesktop.DBus.Error.UnknownMethod", CallOutcome::Replied);
    row("org.freedesktop.DBus.Error.AccessDenied", CallOutcome::Replied);
    row("org.example.ErrorOfItsOwn", CallOutcome::Replied);
    row("org.freedesktop.DBus.Error.ServiceUnknown", CallOutcome::NobodyThere);
    row("org.freedesktop.DBus.Error.NameHasNoOwner", CallOutcome::NobodyThere);
    row("org.freedesktop.DBus.Error.Disconnected", CallOutcome::NobodyThere);
    row("org.freedesktop.DBus.Error.NoServer", CallOutcome::NobodyThere);
    row("org.freedesktop.DBus.Error.NoReply", CallOutcome::NoReply);
    row("org.freedesktop.DBus.Error.Timeout", CallOutcome::NoReply);
    row("org.freedesktop.DBus.Error.TimedOut", CallOutcome::NoReply);
}

void BusCallsTest::anAnswerTellsWhoGaveIt()
{
    QFETCH(QString, error);
    QFETCH(bus::CallOutcome, outcome);
    const auto call = QDBusMessage::createMethodCall(u"a.b"_s, u"/"_s, u"a.b"_s, u"Method"_s);
    QCOMPARE(bus::outcomeOf(
                 error.isEmpty() ? call.createReply() : call.createErrorReply(error, u"text"_s)),
        outcome);
}

void BusCallsTest::theOwnerOfANameIsFound_data()
{
    QTest::addColumn<Manners>("manners");
    QTest::addColumn<QString>("name");
    QTest::addColumn<std::optional<QString>>("owner");
    QTest::newRow("owned") << Manners::Answers << u"a.owned.name"_s << std::optional(u":1.5"_s);
    QTest::newRow("not owned") << Manners::Answers << u"another.name"_s << std::optional(u""_s);
    QTest::newRow("the bus is slow")
        << Manners::Holds << u"a.owned.name"_s << std::optional<QString>();
}

void BusCallsTest::theOwnerOfANameIsFound()
{
    QFETCH(Manners, manners);
    QFETCH(QString, name);
    FakeBus fake;
    fake.owners = {{u"a.owned.name"_s, u":1.5"_s}};
    fake.onGetNameOwner = {manners};
    int answers = 0;
    std::optional<QString> found;
    const auto timeout = manners == Manners::Holds ? 20ms : 20s;
    bus::findOwner(fake.connection(), name, this, timeout, [&](const auto &owner) {
        ++answers;
        found = owner;
    });
    QTRY_COMPARE(answers, 1);
    QTEST(found, "owner");
}

void BusCallsTest::withoutABusNobodyOwnsAName()
{
    std::optional<QString> found;
    bus::findOwner(QDBusConnection(u"no bus"_s), u"a.name"_s, this, 20s,
        [&found](const auto &owner) { found = owner; });
    QTRY_COMPARE(found, std::optional(u""_s));
}

QTEST_GUILESS_MAIN(BusCallsTest)
#include "bus_calls_test.moc"
