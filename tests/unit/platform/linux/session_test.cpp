#include "platform/linux/session.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;

class SessionTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            qunsetenv(name);
    }

    void theEnvironmentIsRead()
    {
        const auto nothing = SessionEnvironment::read();
        QVERIFY(!nothing.hasX11 && !nothing.hasWayland && !nothing.hasLayerShell);
        QVERIFY(!nothing.chosenPlatform);

        qputenv("DISPLAY", ":65000");
        qputenv("WAYLAND_DISPLAY", "no-compositor-of-that-name");
        qputenv("QT_QPA_PLATFORM", "offscreen");
        const auto all = SessionEnvironment::read();
        QVERIFY(!all.hasX11 && !all.hasWayland && !all.hasLayerShell);
        QCOMPARE(all.chosenPlatform, std::optional<QByteArray>("offscreen"));
    }

    void anEmptyVariableIsAsGoodAsNone()
    {
        for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            qputenv(name, "");
        const auto environment = SessionEnvironment::read();
        QVERIFY(!environment.hasX11 && !environment.hasWayland && !environment.chosenPlatform);
    }

    void aPluginNeedsItsDisplay_data()
    {
        QTest::addColumn<QByteArray>("chosen");
        QTest::addColumn<bool>("hasX11");
        QTest::addColumn<bool>("hasWayland");
        QTest::addColumn<bool>("isThere");
        QTest::newRow("nothing") << QByteArray() << false << false << false;
        QTest::newRow("X11") << QByteArray() << true << false << true;
        QTest::newRow("Wayland") << QByteArray() << false << true << true;
        QTest::newRow("xcb on X11") << QByteArray("xcb") << true << false << true;
        QTest::newRow("xcb on Wayland") << QByteArray("xcb") << false << true << false;
        QTest::newRow("wayland on X11") << QByteArray("wayland-egl") << true << false << false;
        QTest::newRow("wayland on Wayland") << QByteArray("wayland") << false << true << true;
        QTest::newRow("either") << QByteArray("wayland;xcb") << true << false << true;
        QTest::newRow("either of none") << QByteArray("wayland;xcb") << false << false << false;
        QTest::newRow("another") << QByteArray("offscreen") << false << false << true;
    }
    void aPluginNeedsItsDisplay()
    {
        QFETCH(QByteArray, chosen);
        QFETCH(bool, hasX11);
        QFETCH(bool, hasWayland);
        SessionEnvironment environment{
            .hasX11 = hasX11, .hasWayland = hasWayland, .chosenPlatform = {}};
        if (!chosen.isEmpty())
            environment.chosenPlatform = chosen;
        QTEST(environment.isDisplayThere(), "isThere");
    }

    void theUsersChoiceOfAnotherPlatformIsKept()
    {
        SessionEnvironment environment{.hasX11 = true, .hasWayland = true, .chosenPlatform = {}};
        QVERIFY(environment.mayUseWayland());
        for (const char *wayland : {"wayland", "wayland;xcb", "wayland-egl"}) {
            environment.chosenPlatform = wayland;
            QVERIFY2(environment.mayUseWayland(), wayland);
        }
        for (const char *other : {"xcb", "offscreen", "xcb;wayland"}) {
            environment.chosenPlatform = other;
            QVERIFY2(!environment.mayUseWayland(), other);
        }
        QVERIFY(!SessionEnvironment({.hasX11 = true, .chosenPlatform = {}}).mayUseWayland());
    }

    void thePlatformPluginSuitsTheSession_data()
    {
        QTest::addColumn<SessionEnvironment>("environment");
        QTest::addColumn<QByteArray>("plugins");
        QTest::newRow("nothing") << SessionEnvironment() << QByteArray();
        QTest::newRow("X11") << SessionEnvironment{.hasX11 = true, .chosenPlatform = {}}
                             << QByteArray("xcb");
        QTest::newRow("Wayland") << SessionEnvironment{.hasWayland = true, .chosenPlatform = {}}
                                 << QByteArray("wayland");
        QTest::newRow("Xwayland") << SessionEnvironment{.hasX11 = true,
            .hasWayland = true,
            .chosenPlatform = {}} << QByteArray("xcb;wayland");
        QTest::newRow("layer shell")
            << SessionEnvironment{.hasWayland = true, .chosenPlatform = {}, .hasLayerShell = true}
            << QByteArray("wayland;xcb");
        QTest::newRow("layer shell and Xwayland") << SessionEnvironment{.hasX11 = true,
            .hasWayland = true,
            .chosenPlatform = {},
            .hasLayerShell = true} << QByteArray("wayland;xcb");
        QTest::newRow("chosen by the user") << SessionEnvironment{.hasX11 = true,
            .hasWayland = true,
            .chosenPlatform = "wayland",
            .hasLayerShell = true} << QByteArray();
    }
    void thePlatformPluginSuitsTheSession()
    {
        QFETCH(SessionEnvironment, environment);
        QTEST(environment.platformPlugins(), "plugins");
    }

    void thePluginThatQtLoadedSettlesTheKind_data()
    {
        QTest::addColumn<bool>("hasWayland");
        QTest::addColumn<QString>("plugin");
        QTest::addColumn<bool>("isLayerShellBound");
        QTest::addColumn<SessionKind>("kind");
        QTest::newRow("X11") << false << u"xcb"_s << false << SessionKind::X11;
        QTest::newRow("Xwayland") << true << u"xcb"_s << false << SessionKind::Xwayland;
        QTest::newRow("layer shell") << true << u"wayland"_s << true << SessionKind::LayerShell;
        QTest::newRow("Wayland") << true << u"wayland"_s << false << SessionKind::PlainWindow;
        QTest::newRow("neither") << false << u"offscreen"_s << false << SessionKind::PlainWindow;
    }
    void thePluginThatQtLoadedSettlesTheKind()
    {
        QFETCH(bool, hasWayland);
        QFETCH(QString, plugin);
        QFETCH(bool, isLayerShellBound);
        const SessionEnvironment environment{.hasWayland = hasWayland, .chosenPlatform = {}};
        QTEST(sessionKind(environment, plugin, isLayerShellBound), "kind");
    }
};

QTEST_GUILESS_MAIN(SessionTest)
#include "session_test.moc"
