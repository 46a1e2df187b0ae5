#include "support/service_fixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::service;
using Status = platform::LoginItem::Status;

Q_DECLARE_METATYPE(Status)

namespace {

/// What happened, in its order: what was asked of the platform, and what was logged.
QStringList *happened = nullptr;

void writeDown(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    QString level = u"message"_s;
    if (type == QtInfoMsg)
        level = u"info"_s;
    else if (type == QtCriticalMsg)
        level = u"error"_s;
    happened->append(level + u' ' + QString::fromLatin1(context.category) + u": "_s + message);
}

const QString registered
    = u"info LaunchAtLogin: Successfully registered app for launch at login."_s;
const QString unregistered
    = u"info LaunchAtLogin: Successfully unregistered app from launch at login."_s;
const QString diskFull = u"error LaunchAtLogin: Failed to update launch at login: Disk full: ä"_s;

} // namespace

class LaunchAtLoginServiceTest : public QObject {
    Q_OBJECT

public:
    // A failure is logged as one, which must not end this program. Before its first message.
    static void initMain() { qputenv("QT_FATAL_WARNINGS", "0"); }

private Q_SLOTS:
    void init()
    {
        m_log.clear();
        happened = &m_log;
        m_previousHandler = qInstallMessageHandler(writeDown);
    }
    void cleanup()
    {
        qInstallMessageHandler(m_previousHandler);
        happened = nullptr;
    }

    void theStateIsReadAtConstruction_data() { states(); }
    void theStateIsReadAtConstruction()
    {
        QFETCH(Status, status);
        QFETCH(bool, isEnabled);
        QFETCH(bool, requiresApproval);
        test::FakeLoginItem item;
        item.log = &m_log;
        item.held = status;
        const LaunchAtLoginService service(item);
        QCOMPARE(service.isEnabled(), isEnabled);
        QCOMPARE(service.requiresApproval(), requiresApproval);
        QCOMPARE(m_log, QStringList());
    }

    void aChangeMadeElsewhereIsSeenWithTheNextRefresh_data() { states(); }
    void aChangeMadeElsewhereIsSeenWithTheNextRefresh()
    {
        QFETCH(Status, status);
        QFETCH(bool, isEnabled);
        QFETCH(bool, requiresApproval);
        test::FakeLoginItem item;
        item.log = &m_log;
        item.held = Status::enabled;
        LaunchAtLoginService service(item);
        item.held = status;
        QVERIFY(service.isEnabled());
        QVERIFY(!service.requiresApproval());
        service.refresh();
        QCOMPARE(service.isEnabled(), isEnabled);
        QCOMPARE(service.requiresApproval(), requiresApproval);
        QCOMPARE(m_log, QStringList());
    }

    void enablingWhatIsEnabledAsksNothingOfThePlatform()
    {
        test::FakeLoginItem item;
        item.log = &m_log;
        item.held = Status::requiresApproval;
        LaunchAtLoginService service(item);
        item.held = Status::enabled;
        service.setEnabled(true);
        QVERIFY(service.isEnabled());
        QVERIFY(!service.requiresApproval());
        QCOMPARE(m_log, QStringList());
    }

    void disablingWhatIsNotRegisteredAsksNothingOfThePlatform()
    {
        test::FakeLoginItem item;
        item.log = &m_log;
        item.held = Status::requiresApproval;
        LaunchAtLoginService service(item);
        item.held = Status::notRegistered;
        service.setEnabled(false);
        QVERIFY(!service.isEnabled());
        QVERIFY(!service.requiresApproval());
        QCOMPARE(m_log, QStringList());
    }

    void aChangeGoesToThePlatformAndItsStateIsReadAfterwards_data()
    {
        QTest::addColumn<Status>("before");
        QTest::addColumn<bool>("wanted");
        QTest::addColumn<Status>("afterwards");
        QTest::addColumn<QString>("failure");
        QTest::addColumn<QStringList>("log");
        QTest::addColumn<bool>("isEnabled");
        QTest::addColumn<bool>("requiresApproval");
        const QString on = u"register"_s;
        const QString off = u"unregister"_s;
        const QString settings = u"settings"_s;
        const QString bad = u"Disk full: ä"_s;
        QTest::newRow("enable") << Status::notRegistered << true << Status::enabled << QString()
                                << QStringList{on, registered} << true << false;
        QTest::newRow("enable, nowhere to be found")
            << Status::notFound << true << Status::enabled << QString()
            << QStringList{on, registered} << true << false;
        QTest::newRow("enable, awaiting approval")
            << Status::requiresApproval << true << Status::enabled << QString()
            << QStringList{on, registered} << true << false;
        QTest::newRow("enable, approval is asked for")
            << Status::notRegistered << true << Status::requiresApproval << QString()
            << QStringList{on, registered, settings} << true << true;
        QTest::newRow("enable, approval is still missing")
            << Status::requiresApproval << true << Status::requiresApproval << QString()
            << QStringList{on, registered, settings} << true << true;
        QTest::newRow("enable fails") << Status::notRegistered << true << Status::notRegistered
                                      << bad << QStringList{on, diskFull} << false << false;
        QTest::newRow("enable fails for want of approval")
            << Status::notRegistered << true << Status::requiresApproval << bad
            << QStringList{on, diskFull, settings} << true << true;
        QTest::newRow("enable fails, nowhere to be found")
            << Status::notFound << true << Status::notFound << bad << QStringList{on, diskFull}
            << false << false;
        QTest::newRow("disable") << Status::enabled << false << Status::notRegistered << QString()
                                 << QStringList{off, unregistered} << false << false;
        QTest::newRow("disable, awaiting approval")
            << Status::requiresApproval << false << Status::notRegistered << QString()
            << QStringList{off, unregistered} << false << false;
        QTest::newRow("disable, nowhere to be found")
            << Status::notFound << false << Status::notFound << QString()
            << QStringList{off, unregistered} << false << false;
        QTest::newRow("disable fails") << Status::enabled << false << Status::enabled << bad
                                       << QStringList{off, diskFull} << true << false;
        QTest::newRow("disable fails, awaiting approval")
            << Status::requiresApproval << false << Status::requiresApproval << bad
            << QStringList{off, diskFull, settings} << true << true;
    }
    void aChangeGoesToThePlatformAndItsStateIsReadAfterwards()
    {
        QFETCH(Status, before);
        QFETCH(bool, wanted);
        QFETCH(Status, afterwards);
        QFETCH(QString, failure);
        QFETCH(QStringList, log);
        QFETCH(bool, isEnabled);
        QFETCH(bool, requiresApproval);
        test::FakeLoginItem item;
        item.log = &m_log;
        item.held = before;
        item.afterwards = afterwards;
        item.failure = failure;
        LaunchAtLoginService service(item);
        service.setEnabled(wanted);
        QCOMPARE(m_log, log);
        QCOMPARE(service.isEnabled(), isEnabled);
        QCOMPARE(service.requiresApproval(), requiresApproval);
    }

    void theSystemsSettingsOpenWhenAskedFor()
    {
        test::FakeLoginItem item;
        item.log = &m_log;
        LaunchAtLoginService service(item);
        service.openSystemSettings();
        QCOMPARE(m_log, QStringList{u"settings"_s});
    }

    void eachValueIsAnnouncedBeforeAndAfterItIsSet()
    {
        test::FakeLoginItem item;
        item.log = &m_log;
        LaunchAtLoginService service(item);
        item.held = Status::requiresApproval;
        const auto state = [&service]() -> QString {
            return (service.requiresApproval() ? u"approval "_s : u"- "_s)
                + (service.isEnabled() ? u"enabled"_s : u"-"_s);
        };
        connect(&service, &LaunchAtLoginService::objectWillChange, this,
            [this, state] { m_log += u"will: "_s + state(); });
        connect(&service, &LaunchAtLoginService::changed, this,
            [this, state] { m_log += u"did: "_s + state(); });
        service.refresh();
        QCOMPARE(m_log,
            QStringList({u"will: - -"_s, u"did: approval -"_s, u"will: approval -"_s,
                u"did: approval enabled"_s}));
    }

    void aChangeInVainIsAnnouncedSoThatASwitchGoesBack()
    {
        test::FakeLoginItem item;
        item.log = &m_log;
        item.failure = u"no"_s;
        item.afterwards = Status::notRegistered;
        LaunchAtLoginService service(item);
        const QSignalSpy changed(&service, &LaunchAtLoginService::changed);
        service.setEnabled(true);
        QVERIFY(!service.isEnabled());
        QVERIFY(!changed.isEmpty());
    }

    void theQuotaServiceForwardsTheSwitchAndAnnouncesItsChanges()
    {
        test::ServiceParts parts;
        test::FakeLoginItem item;
        item.log = &m_log;
        item.afterwards = Status::requiresApproval;
        LaunchAtLoginService service(item);
        QuotaService quotaService({.clock = parts.clock,
            .fetching = parts.fetching,
            .settings = parts.settings,
            .launchAtLogin = &service});
        bool enabledBefore = true;
        connect(&quotaService, &QuotaService::objectWillChange, this,
            [&] { enabledBefore = enabledBefore && quotaService.launchAtLogin(); });
        const QSignalSpy after(&quotaService, &QuotaService::launchAtLoginChanged);

        quotaService.setLaunchAtLogin(true);
        QVERIFY(quotaService.launchAtLogin());
        QVERIFY2(!enabledBefore, "announced only after the change");
        QVERIFY(!after.isEmpty());
        QCOMPARE(m_log, QStringList({u"register"_s, registered, u"settings"_s}));

        item.afterwards = Status::notRegistered;
        quotaService.setLaunchAtLogin(false);
        QVERIFY(!quotaService.launchAtLogin());
    }

private:
    static void states()
    {
        QTest::addColumn<Status>("status");
        QTest::addColumn<bool>("isEnabled");
        QTest::addColumn<bool>("requiresApproval");
        QTest::newRow("not registered") << Status::notRegistered << false << false;
        QTest::newRow("enabled") << Status::enabled << true << false;
        QTest::newRow("requires approval") << Status::requiresApproval << true << true;
        QTest::newRow("not found") << Status::notFound << false << false;
    }

    QStringList m_log;
    QtMessageHandler m_previousHandler = nullptr;
};

QTEST_GUILESS_MAIN(LaunchAtLoginServiceTest)
#include "launch_at_login_service_test.moc"
