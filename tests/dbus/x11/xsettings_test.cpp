#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/xsettings.h"
#include "support/private_display.h"
#include "support/settings_manager.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;
using model::ColorToken;
using test::SettingsManager;

/// A desktop that announces its look by the XSETTINGS protocol, on a real X server.
class XSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThemeIsFollowedLive()
    {
        SettingsManager manager({{u"Net/ThemeName"_s, u"Adwaita-dark"_s}});
        DesktopAppearance &look = appearance();
        QTRY_VERIFY(look.isDark());
        manager.change({{u"Net/ThemeName"_s, u"Adwaita"_s}});
        QTRY_VERIFY(!look.isDark());
    }

    void theAnimationSwitchIsFollowedLive()
    {
        SettingsManager manager({{u"Gtk/EnableAnimations"_s, 0}});
        DesktopAppearance &look = appearance();
        QTRY_VERIFY(look.reducesMotion());
        manager.change({{u"Gtk/EnableAnimations"_s, 1}});
        QTRY_VERIFY(!look.reducesMotion());
    }

    void aThemeOfHighContrastIsFollowedLive()
    {
        SettingsManager manager({{u"Net/ThemeName"_s, u"HighContrast"_s}});
        DesktopAppearance &look = appearance();
        QTRY_COMPARE(look.color(ColorToken::SecondaryLabel), look.color(ColorToken::Label));
        manager.change({{u"Net/ThemeName"_s, u"Adwaita"_s}});
        QTRY_VERIFY(!(look.color(ColorToken::SecondaryLabel) == look.color(ColorToken::Label)));
    }

    void theFontIsFollowedLive()
    {
        SettingsManager manager({{u"Gtk/FontName"_s, u"Cantarell 11"_s}});
        DesktopAppearance &look = appearance();
        QTRY_COMPARE(look.fontFamily(), u"Cantarell"_s);
        manager.change({{u"Gtk/FontName"_s, u"Noto Sans Bold 10"_s}});
        QTRY_COMPARE(look.fontFamily(), u"Noto Sans"_s);
    }

    void aManagerThatGoesAndAnotherThatComesAreFollowed()
    {
        DesktopAppearance &look = appearance();
        {
            SettingsManager first({{u"Net/ThemeName"_s, u"Adwaita-dark"_s}});
            QTRY_VERIFY(look.isDark());
        }
        QTRY_VERIFY(!look.isDark());
        SettingsManager second({{u"Net/ThemeName"_s, u"Yaru-dark"_s}});
        QTRY_VERIFY(look.isDark());
    }

    void aManagerThatIsReplacedBeforeItsEndIsSeenLeavesNoSettings()
    {
        auto first = std::make_unique<SettingsManager>(QVariantMap{
            {u"Net/ThemeName"_s, u"Adwaita-dark"_s}, {u"Gtk/FontName"_s, u"Cantarell 11"_s}});
        DesktopAppearance &look = appearance();
        QTRY_VERIFY(look.isDark());
        // The server may give the second one the same window number.
        first.reset();
        const SettingsManager second({{u"Gtk/FontName"_s, u"Noto Sans 10"_s}});
        QTRY_COMPARE(look.fontFamily(), u"Noto Sans"_s);
        QVERIFY(!look.isDark());
    }

    void aManagerThatHandsOverWhileItLivesLeavesNoSettings()
    {
        const SettingsManager first({{u"Net/ThemeName"_s, u"Adwaita-dark"_s}});
        DesktopAppearance &look = appearance();
        QTRY_VERIFY(look.isDark());
        const SettingsManager second({{u"Net/ThemeName"_s, u"Adwaita"_s}});
        QTRY_VERIFY(!look.isDark());
    }

    void theSettingsGoWithTheServer()
    {
        const QByteArray display = qgetenv("DISPLAY");
        test::PrivateDisplay server;
        const auto manager = std::make_unique<SettingsManager>(
            QVariantMap{{u"Net/ThemeName"_s, u"Adwaita-dark"_s}});
        DesktopAppearance &look = appearance();
        qputenv("DISPLAY", display);
        QTRY_VERIFY(look.isDark());
        server.stop();
        QTRY_VERIFY(!look.isDark());
    }

    void cleanup()
    {
        m_appearance.reset();
        m_settings.reset();
        m_x.reset();
    }

private:
    DesktopAppearance &appearance()
    {
        m_x = std::make_unique<XConnection>();
        m_settings = std::make_unique<XSettings>(*m_x);
        m_appearance = std::make_unique<DesktopAppearance>(
            QDBusConnection(u"none"_s), m_settings.get(), m_home.path());
        return *m_appearance;
    }

    QTemporaryDir m_home;
    std::unique_ptr<XConnection> m_x;
    std::unique_ptr<XSettings> m_settings;
    std::unique_ptr<DesktopAppearance> m_appearance;
};

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    XSettingsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "xsettings_test.moc"
