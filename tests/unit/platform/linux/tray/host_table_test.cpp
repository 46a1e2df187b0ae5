#include "platform/linux/tray/host_table.h"

#include <QTest>

#include <optional>

namespace brimwatch::platform {

using namespace Qt::Literals::StringLiterals;

namespace {

TrayManagerFacts manager(const QString &executable)
{
    return {.executable = executable};
}

WatcherFacts watcher(const QString &executable, std::optional<bool> hasHost = true)
{
    return {.executable = executable, .hasHost = hasHost};
}

TrayFacts bothKnown(std::optional<WatcherFacts> watcher, std::optional<TrayManagerFacts> manager)
{
    return {.watcherKnown = true, .watcher = std::move(watcher), .manager = std::move(manager)};
}

const auto xfceTray = u"/usr/lib/x86_64-linux-gnu/xfce4/panel/wrapper-2.0"_s;

} // namespace

class HostTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void panelsOfBothProtocolsEmbedTheWideLabel_data();
    void panelsOfBothProtocolsEmbedTheWideLabel();
    void watchersAreKnownByTheirPrograms_data();
    void watchersAreKnownByTheirPrograms();
    void barsThatOnlyEmbedAreToldApart_data();
    void barsThatOnlyEmbedAreToldApart();
    void withNobodyThereIsNothingToWaitFor();
    void aTrayManagerKnownToBeRightDoesNotWaitForTheBus();
    void anUnknownTrayManagerWaitsForTheBus();
    void aPanelOfBothProtocolsIsGivenTimeForItsTrayManager();
    void aWatcherWithoutAHostGivesWayToATrayManager();
    void aWatcherThatHasNotSaidWhetherItHasAHostIsGivenTime();
    void aWatcherAloneIsNotAskedForItsHost();
    void aKnownTrayManagerWinsOverAnUnknownWatcher();
    void programsAreKnownByWholePathComponents();
    void aProgramReplacedByAnUpgradeIsStillKnown();
};

void HostTableTest::panelsOfBothProtocolsEmbedTheWideLabel_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("host");
    QTest::newRow("XFCE") << xfceTray << u"xfce4-panel"_s;
    QTest::newRow("MATE") << u"/usr/lib/mate-panel/notification-area-applet"_s << u"mate-panel"_s;
    QTest::newRow("GNOME") << u"/usr/bin/gnome-shell"_s << u"gnome-shell"_s;
}

void HostTableTest::panelsOfBothProtocolsEmbedTheWideLabel()
{
    QFETCH(const QString, executable);
    QFETCH(const QString, host);
    const HostChoice expected{.host = host, .presentation = PresentationKind::XembedWide};
    QCOMPARE(chooseHost(bothKnown(watcher(executable), manager(executable))), expected);
    // A manager whose program the system hides is the known watcher's.
    QCOMPARE(chooseHost(bothKnown(watcher(executable), manager({}))), expected);
}

void HostTableTest::watchersAreKnownByTheirPrograms_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("host");
    QTest::addColumn<PresentationKind>("presentation");
    QTest::newRow("waybar") << u"/usr/bin/waybar"_s << u"waybar"_s << PresentationKind::SniWide;
    QTest::newRow("Plasma 5") << u"/usr/bin/kded5"_s << u"plasma"_s << PresentationKind::SniBadge;
    QTest::newRow("Plasma 6") << u"/usr/bin/kded6"_s << u"plasma"_s << PresentationKind::SniBadge;
    QTest::newRow("LXQt") << u"/usr/bin/lxqt-panel"_s << u"lxqt-panel"_s
                          << PresentationKind::SniBadge;
    QTest::newRow("swaybar") << u"/usr/bin/swaybar"_s << u"swaybar"_s << PresentationKind::SniBadge;
    QTest::newRow("another") << u"/opt/panel/bin/panel"_s << u"unknown"_s
                             << PresentationKind::SniPortable;
    QTest::newRow("hidden") << QString() << u"unknown"_s << PresentationKind::SniPortable;
}

void HostTableTest::watchersAreKnownByTheirPrograms()
{
    QFETCH(const QString, executable);
    QFETCH(const QString, host);
    QFETCH(const PresentationKind, presentation);
    const HostChoice expected{.host = host, .presentation = presentation};
    QCOMPARE(chooseHost(bothKnown(watcher(executable), {})), expected);
    // Beside the tray manager that the same desktop may bring, which shows squares at best.
    QCOMPARE(chooseHost(bothKnown(watcher(executable), manager(u"/usr/bin/xembedsniproxy"_s))),
        expected);
}

void HostTableTest::barsThatOnlyEmbedAreToldApart_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("host");
    QTest::addColumn<PresentationKind>("presentation");
    QTest::newRow("trayer") << u"/usr/bin/trayer"_s << u"trayer"_s << PresentationKind::XembedWide;
    QTest::newRow("i3bar") << u"/usr/bin/i3bar"_s << u"i3bar"_s << PresentationKind::XembedBadge;
    QTest::newRow("polybar") << u"polybar"_s << u"polybar"_s << PresentationKind::XembedBadge;
    QTest::newRow("LXQt without its watcher")
        << u"/usr/bin/lxqt-panel"_s << u"lxqt-panel"_s << PresentationKind::XembedBadge;
    QTest::newRow("another") << u"/usr/bin/stalonetray"_s << u"unknown"_s
                             << PresentationKind::XembedWide;
}

void HostTableTest::barsThatOnlyEmbedAreToldApart()
{
    QFETCH(const QString, executable);
    QFETCH(const QString, host);
    QFETCH(const PresentationKind, presentation);
    QCOMPARE(chooseHost(bothKnown({}, manager(executable))),
        (HostChoice{.host = host, .presentation = presentation}));
}

void HostTableTest::withNobodyThereIsNothingToWaitFor()
{
    QCOMPARE(chooseHost(bothKnown({}, {})), HostChoice{});
}

void HostTableTest::aTrayManagerKnownToBeRightDoesNotWaitForTheBus()
{
    const HostChoice choice = chooseHost(
        {.watcherKnown = false, .watcher = {}, .manager = manager(u"/usr/bin/trayer"_s)});
    QCOMPARE(choice.presentation, PresentationKind::XembedWide);
    QVERIFY(choice.settled);
}

void HostTableTest::anUnknownTrayManagerWaitsForTheBus()
{
    const HostChoice choice
        = chooseHost({.watcherKnown = false, .watcher = {}, .manager = manager(u"/bin/bar"_s)});
    QCOMPARE(choice.presentation, PresentationKind::XembedWide);
    QVERIFY(!choice.settled);
}

void HostTableTest::aPanelOfBothProtocolsIsGivenTimeForItsTrayManager()
{
    const HostChoice choice = chooseHost(bothKnown(watcher(xfceTray), {}));
    QCOMPARE(choice.host, u"xfce4-panel"_s);
    // A picture as wide as the label would be squeezed there.
    QCOMPARE(choice.presentation, PresentationKind::SniPortable);
    QVERIFY(!choice.settled);
}

void HostTableTest::aWatcherWithoutAHostGivesWayToATrayManager()
{
    QCOMPARE(
        chooseHost(bothKnown(watcher(u"/usr/bin/kded5"_s, false), manager(u"/usr/bin/i3bar"_s))),
        (HostChoice{.host = u"i3bar"_s, .presentation = PresentationKind::XembedBadge}));
}

void HostTableTest::aWatcherThatHasNotSaidWhetherItHasAHostIsGivenTime()
{
    const HostChoice choice = chooseHost(
        bothKnown(watcher(u"/usr/bin/kded5"_s, std::nullopt), manager(u"/usr/bin/i3bar"_s)));
    QCOMPARE(choice.presentation, PresentationKind::SniBadge);
    QVERIFY(!choice.settled);
}

void HostTableTest::aWatcherAloneIsNotAskedForItsHost()
{
    for (const std::optional<bool> hasHost : {std::optional<bool>(), std::optional(false)}) {
        const HostChoice choice = chooseHost(bothKnown(watcher(u"/usr/bin/kded5"_s, hasHost), {}));
        QCOMPARE(choice.presentation, PresentationKind::SniBadge);
        QVERIFY(choice.settled);
    }
}

void HostTableTest::aKnownTrayManagerWinsOverAnUnknownWatcher()
{
    QCOMPARE(chooseHost(bothKnown(watcher(u"/usr/bin/other"_s), manager(u"/usr/bin/trayer"_s))),
        (HostChoice{.host = u"trayer"_s, .presentation = PresentationKind::XembedWide}));
}

void HostTableTest::programsAreKnownByWholePathComponents()
{
    QCOMPARE(chooseHost(bothKnown(watcher(u"/usr/bin/mywaybar"_s), {})).host, u"unknown"_s);
    QCOMPARE(chooseHost(bothKnown(watcher(u"/usr/bin/waybar/x"_s), {})).host, u"unknown"_s);
    QCOMPARE(
        chooseHost(bothKnown(watcher(u"/opt/other/panel/wrapper-2.0"_s), {})).host, u"unknown"_s);
}

void HostTableTest::aProgramReplacedByAnUpgradeIsStillKnown()
{
    QCOMPARE(chooseHost(bothKnown(watcher(u"/usr/bin/waybar (deleted)"_s), {})).host, u"waybar"_s);
}

} // namespace brimwatch::platform

QTEST_APPLESS_MAIN(brimwatch::platform::HostTableTest)
#include "host_table_test.moc"
