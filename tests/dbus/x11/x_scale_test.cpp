#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/x_scale.h"
#include "platform/linux/x11/xsettings.h"
#include "support/private_display.h"
#include "support/settings_manager.h"

#include <QSignalSpy>
#include <QTest>

#include <cstdint>
#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;
using test::SettingsManager;

namespace {

/// What a desktop announces of its resolution, in 1024ths of a dot an inch.
int units(double dpi)
{
    return static_cast<int>(dpi * 1024);
}

void writeResources(const QByteArray &resources)
{
    const XConnection x;
    xcb_change_property(x.connection(), XCB_PROP_MODE_REPLACE, x.screen()->root,
        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(resources.size()),
        resources.constData());
    x.selectionOwner(XCB_ATOM_PRIMARY); // It is written when this is answered.
}

} // namespace

/// The scale of a desktop that announces it as X11 desktops do, on a real X server.
class XScaleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { writeResources({}); }

    void theScaleIsThatOfTextsAndNoLessThanThatOfWindows_data()
    {
        QTest::addColumn<QVariantMap>("settings");
        QTest::addColumn<double>("scale");
        QTest::addColumn<int>("windowFactor");

        const auto dpi = u"Xft/DPI"_s;
        const auto factor = u"Gdk/WindowScalingFactor"_s;
        QTest::newRow("nothing") << QVariantMap() << 1.0 << 1;
        QTest::newRow("as usual") << QVariantMap{{dpi, units(96)}, {factor, 1}} << 1.0 << 1;
        QTest::newRow("1.25") << QVariantMap{{dpi, units(120)}} << 1.25 << 1;
        QTest::newRow("1.5") << QVariantMap{{dpi, units(144)}, {factor, 1}} << 1.5 << 1;
        QTest::newRow("2") << QVariantMap{{dpi, units(192)}, {factor, 2}} << 2.0 << 2;
        QTest::newRow("3") << QVariantMap{{dpi, units(288)}, {factor, 3}} << 3.0 << 3;
        QTest::newRow("large text at 2") << QVariantMap{{dpi, units(240)}, {factor, 2}} << 2.5 << 2;
        QTest::newRow("windows alone") << QVariantMap{{factor, 2}} << 2.0 << 2;
        QTest::newRow("small text at 2") << QVariantMap{{dpi, units(144)}, {factor, 2}} << 2.0 << 2;
        QTest::newRow("small text") << QVariantMap{{dpi, units(72)}} << 1.0 << 1;
        // What settings daemons announce where the user has set nothing.
        QTest::newRow("unset") << QVariantMap{{dpi, -1}, {factor, 0}} << 1.0 << 1;
        QTest::newRow("negative") << QVariantMap{{dpi, units(-192)}, {factor, -2}} << 1.0 << 1;
        QTest::newRow("absurd") << QVariantMap{{dpi, std::numeric_limits<int>::max()},
            {factor, std::numeric_limits<int>::max()}}
                                << 8.0 << 8;
        QTest::newRow("no numbers")
            << QVariantMap{{dpi, u"large"_s}, {factor, u"two"_s}} << 1.0 << 1;
    }
    void theScaleIsThatOfTextsAndNoLessThanThatOfWindows()
    {
        QFETCH(QVariantMap, settings);
        QFETCH(double, scale);
        QFETCH(int, windowFactor);
        settings.insert(u"Net/ThemeName"_s, u"Adwaita"_s);
        const SettingsManager manager(settings);
        XConnection x;
        const XSettings xSettings(x);
        QTRY_COMPARE(xSettings.value(u"Net/ThemeName"_s).toString(), u"Adwaita"_s);
        const XScale read(x, xSettings);
        QCOMPARE(read.value(), scale);
        QCOMPARE(read.windowFactor(), windowFactor);
    }

    void withoutSettingsTheResourcesTell_data()
    {
        QTest::addColumn<QByteArray>("resources");
        QTest::addColumn<double>("scale");

        QTest::newRow("192") << QByteArray("Xcursor.size:\t24\nXft.dpi:\t192\n") << 2.0;
        QTest::newRow("first line") << QByteArray("Xft.dpi: 120\nXft.antialias: 1\n") << 1.25;
        QTest::newRow("another name") << QByteArray("aXft.dpi: 192\nXft.dpix: 192\n") << 1.0;
        QTest::newRow("no number") << QByteArray("Xft.dpi: high\n") << 1.0;
        QTest::newRow("not finite") << QByteArray("Xft.dpi: inf\n") << 1.0;
        QTest::newRow("not a number") << QByteArray("Xft.dpi: nan\n") << 1.0;
        QTest::newRow("below zero") << QByteArray("Xft.dpi: -192\n") << 1.0;
        QTest::newRow("absurd") << QByteArray("Xft.dpi: 1e9\n") << 8.0;
    }
    void withoutSettingsTheResourcesTell()
    {
        QFETCH(QByteArray, resources);
        QFETCH(double, scale);
        writeResources(resources);
        XConnection x;
        const XSettings settings(x);
        QCOMPARE(XScale(x, settings).value(), scale);
    }

    void theSettingsWinOverTheResources()
    {
        writeResources("Xft.dpi: 96\n");
        const SettingsManager manager({{u"Xft/DPI"_s, units(192)}});
        XConnection x;
        const XSettings settings(x);
        QTRY_COMPARE(XScale(x, settings).value(), 2.0);
    }

    void theSettingsAreFollowedLive()
    {
        SettingsManager manager({{u"Xft/DPI"_s, units(96)}});
        XConnection x;
        const XSettings settings(x);
        const XScale scale(x, settings);
        const QSignalSpy changed(&scale, &XScale::changed);
        manager.change({{u"Xft/DPI"_s, units(192)}, {u"Gdk/WindowScalingFactor"_s, 2}});
        QTRY_COMPARE(scale.value(), 2.0);
        QVERIFY(!changed.isEmpty());
        QCOMPARE(scale.windowFactor(), 2);
    }
};

int main(int argc, char **argv)
{
    const test::PrivateDisplay display;
    const QCoreApplication application(argc, argv);
    XScaleTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "x_scale_test.moc"
