#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/linux/appearance/system_colors.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch::platform;
using brimwatch::model::ColorToken;

namespace accent {

struct Accent {
    double red = 0;
    double green = 0;
    double blue = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const Accent &accent)
{
    argument.beginStructure();
    argument << accent.red << accent.green << accent.blue;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Accent &accent)
{
    argument.beginStructure();
    argument >> accent.red >> accent.green >> accent.blue;
    argument.endStructure();
    // NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter): the signature that Qt asks for
    return argument;
}

} // namespace accent
using accent::Accent;
Q_DECLARE_METATYPE(Accent)

namespace {

const auto appearanceSpace = u"org.freedesktop.appearance"_s;
const auto gnomeSpace = u"org.gnome.desktop.interface"_s;

/// The other end of the settings portal.
class FakePortal final : public QDBusVirtualObject {
public:
    FakePortal()
    {
        qDBusRegisterMetaType<Accent>();
        qDBusRegisterMetaType<QMap<QString, QVariantMap>>();
        m_bus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, this);
        m_bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }
    ~FakePortal() override
    {
        m_bus.unregisterService(u"org.freedesktop.portal.Desktop"_s);
        m_bus.unregisterObject(u"/org/freedesktop/portal/desktop"_s);
    }

    QString introspect(const QString & /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() != "ReadAll"_L1)
            return false;
        wasRead = true;
        connection.send(message.createReply(QVariant::fromValue(
            QMap<QString, QVariantMap>{{appearanceSpace, settings}, {gnomeSpace, gnomeSettings}})));
        return true;
    }
    void change(const QString &key, const QVariant &value, const QString &space = appearanceSpace)
    {
        auto signal = QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s,
            u"org.freedesktop.portal.Settings"_s, u"SettingChanged"_s);
        signal << space << key << QVariant::fromValue(QDBusVariant(value));
        m_bus.send(signal);
    }

    QVariantMap settings;
    QVariantMap gnomeSettings;
    bool wasRead = false;

private:
    QDBusConnection m_bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_s);
};

} // namespace

class SettingsPortalTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void darkAndLightAreFollowedLive()
    {
        FakePortal portal;
        portal.settings = {{u"color-scheme"_s, 1u}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        QTRY_VERIFY(appearance.isDark());
        portal.change(u"color-scheme"_s, 2u);
        QTRY_VERIFY(!appearance.isDark());
    }

    void theAccentIsTaken()
    {
        FakePortal portal;
        portal.settings = {
            {u"accent-color"_s, QVariant::fromValue(Accent{.red = 0.5, .green = 0.25, .blue = 1})}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        QTRY_COMPARE(appearance.color(ColorToken::Accent), (Rgba{0.5, 0.25, 1, 1}));
    }

    void anAccentOutOfRangeMeansNone()
    {
        FakePortal portal;
        portal.settings = {{u"color-scheme"_s, 1u},
            {u"accent-color"_s, QVariant::fromValue(Accent{.red = -1, .green = -1, .blue = -1})}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        QTRY_VERIFY(appearance.isDark());
        QCOMPARE(appearance.color(ColorToken::Accent),
            systemColor(ColorToken::Accent, Background::Dark));
    }

    void valuesOfAWrongTypeChangeNothing()
    {
        FakePortal portal;
        portal.settings = {{u"color-scheme"_s, u"dark"_s}, {u"accent-color"_s, u"red"_s}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        portal.change(
            u"accent-color"_s, QVariant::fromValue(Accent{.red = 1, .green = 0, .blue = 0}));
        QTRY_COMPARE(appearance.color(ColorToken::Accent), (Rgba{1, 0, 0, 1}));
        QVERIFY(!appearance.isDark());
    }

    void lessMotionIsFollowedLive()
    {
        FakePortal portal;
        portal.settings = {{u"reduced-motion"_s, 1u}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        QTRY_VERIFY(appearance.reducesMotion());
        portal.change(u"reduced-motion"_s, 0u);
        QTRY_VERIFY(!appearance.reducesMotion());
    }

    void gnomesAnimationSwitchIsFollowedLive()
    {
        FakePortal portal;
        portal.gnomeSettings = {{u"enable-animations"_s, false}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        QTRY_VERIFY(appearance.reducesMotion());
        portal.change(u"enable-animations"_s, true, gnomeSpace);
        QTRY_VERIFY(!appearance.reducesMotion());
    }

    void higherContrastShowsSecondaryTextAndLinesAsStronglyAsText()
    {
        FakePortal portal;
        portal.settings = {{u"contrast"_s, 1u}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        const auto label = appearance.color(ColorToken::Label);
        QTRY_COMPARE(appearance.color(ColorToken::SecondaryLabel), label);
        QCOMPARE(appearance.color(ColorToken::Separator), label);
        portal.change(u"contrast"_s, 0u);
        QTRY_COMPARE(appearance.color(ColorToken::SecondaryLabel),
            systemColor(ColorToken::SecondaryLabel, Background::Light));
    }

    void largerTextIsFollowedWhereNoXServerScalesIt()
    {
        FakePortal portal;
        portal.gnomeSettings = {{u"text-scaling-factor"_s, 1.5}};
        DesktopAppearance appearance(QDBusConnection::sessionBus(), nullptr, m_home.path());
        QTRY_COMPARE(appearance.textScale(), 1.5);
        portal.change(u"text-scaling-factor"_s, 100.0, gnomeSpace);
        QTRY_COMPARE(appearance.textScale(), 3.0);
    }

private:
    QTemporaryDir m_home;
};

QTEST_GUILESS_MAIN(SettingsPortalTest)
#include "settings_portal_test.moc"
