#include "platform/linux/appearance/desktop_appearance.h"
#include "platform/linux/appearance/system_colors.h"
#include "platform/linux/x11/xsettings.h"
#include "support/xsettings_property.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using namespace brimwatch::platform;
using model::ColorToken;

namespace {

/// Relative luminance, as the web's accessibility guidelines define it.
double luminance(const Rgba &color)
{
    const auto linear
        = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const Rgba &a, const Rgba &b)
{
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

/// A property with a text and a number.
QByteArray settingsProperty()
{
    return test::xSettingsProperty(
        {{u"Net/ThemeName"_s, u"Adwaita-dark"_s}, {u"Xft/DPI"_s, 98304}});
}

} // namespace

class AppearanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void textIsLegibleOnItsBackgrounds_data()
    {
        QTest::addColumn<ColorToken>("token");
        QTest::addColumn<double>("least");
        QTest::newRow("label") << ColorToken::Label << 7.0;
        QTest::newRow("secondary label") << ColorToken::SecondaryLabel << 4.5;
        QTest::newRow("green") << ColorToken::SystemGreen << 4.5;
        QTest::newRow("adaptive green") << ColorToken::AdaptiveHealthyGreen << 4.2;
        QTest::newRow("orange") << ColorToken::SystemOrange << 4.5;
        QTest::newRow("red") << ColorToken::SystemRed << 4.5;
        QTest::newRow("accent") << ColorToken::Accent << 4.5;
    }
    void textIsLegibleOnItsBackgrounds()
    {
        QFETCH(ColorToken, token);
        QFETCH(double, least);
        for (const Background background : {Background::Light, Background::Dark}) {
            for (const ColorToken behind :
                {ColorToken::WindowBackground, ColorToken::ControlBackground}) {
                const double value
                    = contrast(systemColor(token, background), systemColor(behind, background));
                QVERIFY2(value >= least, qPrintable(QString::number(value)));
            }
        }
    }

    void theAdaptiveGreenIsTheDesignsPair()
    {
        QCOMPARE(systemColor(ColorToken::AdaptiveHealthyGreen, Background::Dark),
            (Rgba{0.20, 0.83, 0.45, 1}));
        QCOMPARE(systemColor(ColorToken::AdaptiveHealthyGreen, Background::Light),
            (Rgba{0.08, 0.52, 0.26, 1}));
    }

    void theTwoGreensDiffer()
    {
        for (const Background background : {Background::Light, Background::Dark})
            QVERIFY(!(systemColor(ColorToken::AdaptiveHealthyGreen, background)
                == systemColor(ColorToken::SystemGreen, background)));
    }

    void greenCountsMostForHowBrightAColorIs()
    {
        QVERIFY(isBright({1, 1, 1, 1}));
        QVERIFY(!isBright({0, 0, 0, 1}));
        QVERIFY(isBright({0, 0.75, 0, 1}));
        QVERIFY(!isBright({1, 0, 1, 1}));
        QVERIFY(!isBright({0.49, 0.49, 0.49, 1}));
        QVERIFY(isBright({0.51, 0.51, 0.51, 1}));
    }

    void xSettingsAreRead()
    {
        const auto values = parseXSettings(settingsProperty());
        QCOMPARE(values.size(), 2);
        QCOMPARE(values.value(u"Net/ThemeName"_s).toString(), u"Adwaita-dark"_s);
        QCOMPARE(values.value(u"Xft/DPI"_s).toInt(), 98304);
    }

    void truncatedXSettingsGiveWhatCameBefore()
    {
        const QByteArray complete = settingsProperty();
        for (qsizetype length = 0; length < complete.size(); ++length)
            QVERIFY(parseXSettings(complete.left(length)).size() < 2);
        QCOMPARE(
            parseXSettings(complete.left(complete.size() - 1)).value(u"Net/ThemeName"_s).toString(),
            u"Adwaita-dark"_s);
    }

    void bytesThatAreNoXSettingsGiveNone()
    {
        QVERIFY(parseXSettings(QByteArray(64, '\xff')).isEmpty());
        QVERIFY(parseXSettings(QByteArray(1024, 'x')).isEmpty());
    }

    void fontFamilies_data()
    {
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("family");
        QTest::newRow("GNOME") << u"Cantarell 11"_s << u"Cantarell"_s;
        QTest::newRow("two words") << u"Noto Sans 10"_s << u"Noto Sans"_s;
        QTest::newRow("style") << u"DejaVu Sans Bold Oblique 9.5"_s << u"DejaVu Sans"_s;
        QTest::newRow("no size") << u"Sans"_s << u"Sans"_s;
        QTest::newRow("a number is its name") << u"10"_s << u"10"_s;
        QTest::newRow("KDE") << u"Noto Sans,10,-1,5,50,0,0,0,0,0"_s << u"Noto Sans"_s;
        QTest::newRow("nothing") << QString() << QString();
    }
    void fontFamilies()
    {
        QFETCH(QString, description);
        QFETCH(QString, family);
        QCOMPARE(familyOfFontDescription(description), family);
    }

    void aDesktopThatSaysNothingIsLight()
    {
        const QTemporaryDir home;
        const DesktopAppearance appearance(noBus(), nullptr, home.path());
        QVERIFY(!appearance.isDark());
        QCOMPARE(appearance.textScale(), 1.0);
        QCOMPARE(
            appearance.color(ColorToken::Label), systemColor(ColorToken::Label, Background::Light));
    }

    void kdesColorsFontAndAccentAreFollowed()
    {
        const QTemporaryDir home;
        writeKde(home,
            "[Colors:Window]\nBackgroundNormal=32,35,38\n[General]\nAccentColor=61,174,233\nfont="
            "Hack,10,-1,5,50,0,0,0,0,0\n");
        DesktopAppearance appearance(noBus(), nullptr, home.path());
        QVERIFY(appearance.isDark());
        QCOMPARE(appearance.fontFamily(), u"Hack"_s);
        QCOMPARE(
            appearance.color(ColorToken::Accent), (Rgba{61 / 255.0, 174 / 255.0, 233 / 255.0, 1}));
        QSignalSpy changed(&appearance, &Appearance::changed);
        writeKde(home, "[Colors:Window]\nBackgroundNormal=239,240,241\n");
        QTRY_VERIFY(!appearance.isDark());
        QVERIFY(!changed.isEmpty());
    }

    void aKdeFileOfNonsenseChangesNothing()
    {
        const QTemporaryDir home;
        writeKde(home,
            "[Colors:Window\nBackgroundNormal=999,-1,x\nAccentColor=\xff\n[General]\nAccentColor=1,"
            "2\n");
        const DesktopAppearance appearance(noBus(), nullptr, home.path());
        QVERIFY(!appearance.isDark());
        QCOMPARE(appearance.color(ColorToken::Accent),
            systemColor(ColorToken::Accent, Background::Light));
    }

    void kdesAnimationSpeedCanMeanNoMotion_data()
    {
        QTest::addColumn<QByteArray>("factor");
        QTest::addColumn<bool>("reduced");
        QTest::newRow("none") << QByteArray("0") << true;
        QTest::newRow("none, as a fraction") << QByteArray("0.0") << true;
        QTest::newRow("slow") << QByteArray("2") << false;
        QTest::newRow("no number") << QByteArray("fast") << false;
    }
    void kdesAnimationSpeedCanMeanNoMotion()
    {
        QFETCH(QByteArray, factor);
        QFETCH(bool, reduced);
        const QTemporaryDir home;
        writeKde(home, "[KDE]\nAnimationDurationFactor=" + factor + "\n");
        const DesktopAppearance appearance(noBus(), nullptr, home.path());
        QCOMPARE(appearance.reducesMotion(), reduced);
    }

private:
    static QDBusConnection noBus() { return QDBusConnection(u"none"_s); }

    static void writeKde(const QTemporaryDir &home, const QByteArray &content)
    {
        QFile file(home.filePath(u"kdeglobals"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
};

QTEST_GUILESS_MAIN(AppearanceTest)
#include "appearance_test.moc"
