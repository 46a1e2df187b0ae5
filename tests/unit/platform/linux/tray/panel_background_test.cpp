#include "platform/linux/tray/panel_background.h"
#include "support/fake_appearance.h"

#include <QTest>

using namespace brimwatch;
using namespace brimwatch::platform;

namespace {

constexpr std::uint32_t full = 65535;

QImage filled(QRgb color)
{
    QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

} // namespace

class PanelBackgroundTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itIsDarkWhileNothingIsKnown()
    {
        m_appearance.setDark(false);
        QCOMPARE(PanelBackground(m_appearance).value(), Background::Dark);
    }

    void thePixelsDecideWhereThePanelAnnouncesNothing()
    {
        PanelBackground background(m_appearance);
        background.setPixels(filled(0xfff0f0f0));
        QCOMPARE(background.value(), Background::Light);
        background.setSymbolColors({full, full});
        QCOMPARE(background.value(), Background::Light);
        background.setPixels(filled(0xff204060));
        QCOMPARE(background.value(), Background::Dark);
    }

    void theSymbolsDecideOverThePixels()
    {
        PanelBackground background(m_appearance);
        background.setPixels(filled(0xfff0f0f0));
        background.setSymbolColors({full, full, full});
        QCOMPARE(background.value(), Background::Dark);
        background.setSymbolColors({});
        QCOMPARE(background.value(), Background::Light);
    }

    void theMeanOfThePixelsDecides()
    {
        PanelBackground background(m_appearance);
        QImage mostlyDark = filled(0xff000000);
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < mostlyDark.width(); ++x)
                mostlyDark.setPixel(x, y, 0xffffffff);
        }
        background.setPixels(mostlyDark);
        QCOMPARE(background.value(), Background::Dark);
    }

    void onlyAPanelOfTheThemesKindFollowsTheTheme()
    {
        m_appearance.setDark(true);
        PanelBackground follows(m_appearance);
        follows.setSymbolColors({full, full, full});
        PanelBackground stays(m_appearance);
        stays.setSymbolColors({0, 0, 0});
        m_appearance.setDark(false);
        follows.followTheme();
        stays.followTheme();
        QCOMPARE(follows.value(), Background::Light);
        QCOMPARE(stays.value(), Background::Light);
        m_appearance.setDark(true);
        follows.followTheme();
        stays.followTheme();
        QCOMPARE(follows.value(), Background::Dark);
        QCOMPARE(stays.value(), Background::Light);
    }

private:
    test::FakeAppearance m_appearance;
};

QTEST_APPLESS_MAIN(PanelBackgroundTest)
#include "panel_background_test.moc"
