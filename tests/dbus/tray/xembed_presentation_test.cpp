#include "dbus/tray/fake_tray_manager.h"
#include "dbus/tray/item_samples.h"
#include "platform/linux/symbols/svg_symbols.h"
#include "platform/linux/tray/xembed_presentation.h"
#include "platform/linux/x11/x_connection.h"
#include "platform/linux/x11/x_scale.h"
#include "platform/linux/x11/xsettings.h"
#include "support/fake_appearance.h"
#include "support/private_display.h"
#include "support/settings_manager.h"

#include <QGuiApplication>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

#include <memory>

namespace brimwatch::platform {

using namespace test;
using model::ColorToken;

namespace {

constexpr int left = 1;
constexpr int middle = 2;
constexpr int right = 3;
constexpr int wheelUp = 4;
constexpr QPoint elsewhere(50, 650);

/// The rectangle of what is drawn.
QRect inkOf(const QImage &image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

/// The rectangle of the green text.
QRect greenOf(const QImage &image)
{
    const QColor green = toColor(systemColor(ColorToken::AdaptiveHealthyGreen, Background::Dark));
    QRect text;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            constexpr int mostly = 128;
            if (color.alpha() >= mostly && std::abs(color.hue() - green.hue()) < 4)
                text |= QRect(x, y, 1, 1);
        }
    }
    return text;
}

/// What a desktop announces that enlarges its windows by `factor`, and its texts by `scale`.
QVariantMap scaled(double scale, int factor)
{
    constexpr double usual = 96.0 * 1024;
    return {
        {u"Xft/DPI"_s, static_cast<int>(usual * scale)}, {u"Gdk/WindowScalingFactor"_s, factor}};
}

QWindow *shownToolTip()
{
    const auto windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (window->type() == Qt::ToolTip && window->isExposed())
            return window;
    }
    return nullptr;
}

/// The sample with "80" in green over "55" in orange where there is no room for it.
PresentedItem withBadge()
{
    PresentedItem item = test::sampleItem();
    item.label.badge.numbers = {{.text = u"80"_s, .color = ColorToken::AdaptiveHealthyGreen},
        {.text = u"55"_s, .color = ColorToken::SystemOrange}};
    return item;
}

} // namespace

class XembedPresentationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void thePanelTakesTheItemOnce();
    void theLabelIsDrawnInItsColoursOnATransparentBackground();
    void withoutATransparentVisualThePanelsBackgroundStaysBehindTheLabel();
    void onAnOpaqueLightPanelTheLabelIsDark();
    void thePanelsOwnSymbolsTellLightFromDark();
    void coloursFromBeforeThePanelHasReadItsThemeDoNotCount();
    void aPanelOfTheThemesKindFollowsTheTheme();
    void aPanelOfAnotherKindThanTheThemeStaysAsItIs();
    void faintTextsAreAsStrongAsTheUserWants();
    void aHigherSlotIsDrawnAnewInItsMiddle();
    void aSlotLargerThanARequestIsDrawnWhole();
    void aLabelThatGrowsGetsAWiderSlot();
    void aLabelThatShrinksGetsANarrowerSlot();
    void theLabelIsAsLargeAsTheDesktopDrawsItsTexts_data();
    void theLabelIsAsLargeAsTheDesktopDrawsItsTexts();
    void largeTextStaysWithinTheHeightOfThePanel();
    void theLabelFollowsTheDesktopsScale();
    void aPanelThatCountsInLargerUnitsGivesAFittingSlot_data();
    void aPanelThatCountsInLargerUnitsGivesAFittingSlot();
    void onlyLargerWindowsAskForMoreHeight();
    void aPanelThatScalesWhatIsAskedForStillGivesAFittingSlot();
    void otherPanelsMayShrinkBelowTheHeightThatTheyGave();
    void aLabelWhoseNumbersShrinkKeepsItsSlot();
    void aSlotThatStaysTooNarrowShowsTheSquare();
    void aSlotThatStaysTooNarrowShowsTheNumbers();
    void aWideWindowInASquareOneShowsTheNumbers();
    void theBadgeAsksForASquare();
    void aSlotThatIsWidenedLaterShowsTheLabelAgain();
    void damageIsRepaired();
    void aNewLabelStandsOnThePanelsNewColour();
    void sizesThatNoWindowHasTakeNothingDown();
    void endsThatOthersTellOfAreNone();
    void aPanelThatNeverTakesTheItemIsNoHarm();
    void aVisualThatTheServerDoesNotHaveIsNotUsed();
    void theSameItemIsNotDrawnAgain();
    void anotherDescriptionAloneIsNotDrawn();
    void leftAndRightClicksCountWhenTheButtonIsLetGo();
    void theMiddleButtonAndTheWheelDoNothing();
    void lettingGoOutsideIsNoClick();
    void lettingGoHereOfAPressElsewhereIsNoClick();
    void clicksThatTheWindowManagerSendsCount_data();
    void clicksThatTheWindowManagerSendsCount();
    void theEndOfThePanelIsReportedOnce();
    void itemsLeftOnTheScreenByAnEndingPanelAreTakenAway();
    void beingThrownOutIsReportedOnce();
    void theWindowIsGoneWithThePresentation();
    void aRestingPointerShowsTheDescriptionBesideTheItem();
    void theToolTipHasEveryLineOfTheFullestDescription();
    void theToolTipIsWideEnoughForAForecast();
    void aPressTakesTheDescriptionAwayUntilThePointerHasLeft();
    void theDescriptionGoesWithTheItem();

private:
    void dock(const FakeTrayManager::Manners &manners = {}, XembedForm form = XembedForm::Wide);
    QPoint itemCentre() { return m_manager->slot().center(); }
    /// Until the panel's half and ours have nothing more to say to each other.
    void settle();
    bool isDrawn(Background background = Background::Dark)
    {
        const QImage picture = m_manager->picture();
        return countPixels(picture, ColorToken::AdaptiveHealthyGreen, background) > 0
            && countPixels(picture, ColorToken::SystemOrange, background) > 0;
    }
    bool isMarked(QColor color)
    {
        return m_manager->picture().pixelColor(0, 0).rgb() == color.rgb();
    }

    SvgSymbols m_symbols;
    LabelPainter m_painter{m_symbols};
    FakeAppearance m_appearance{Background::Dark};
    Pointer m_pointer;
    std::unique_ptr<XConnection> m_x;
    std::unique_ptr<XSettings> m_settings;
    std::unique_ptr<XScale> m_scale;
    std::unique_ptr<FakeTrayManager> m_manager;
    std::unique_ptr<XembedPresentation> m_item;
    std::unique_ptr<QSignalSpy> m_registered;
    std::unique_ptr<QSignalSpy> m_pressed;
    std::unique_ptr<QSignalSpy> m_clicked;
    std::unique_ptr<QSignalSpy> m_lost;
};

void XembedPresentationTest::init()
{
    m_pointer.moveTo(elsewhere);
    m_x = std::make_unique<XConnection>();
    QVERIFY(m_x->isValid());
    m_settings = std::make_unique<XSettings>(*m_x);
    m_scale = std::make_unique<XScale>(*m_x, *m_settings);
}

void XembedPresentationTest::cleanup()
{
    m_appearance.contrast = Contrast::Usual;
    m_appearance.setDark(true);
    m_registered.reset();
    m_clicked.reset();
    m_pressed.reset();
    m_lost.reset();
    m_item.reset();
    m_manager.reset();
    m_scale.reset();
    m_settings.reset();
    m_x.reset();
}

void XembedPresentationTest::dock(const FakeTrayManager::Manners &manners, XembedForm form)
{
    m_manager = std::make_unique<FakeTrayManager>(manners);
    m_item = std::make_unique<XembedPresentation>(
        form, *m_x, m_manager->window(), m_painter, m_appearance, *m_scale);
    m_registered = std::make_unique<QSignalSpy>(m_item.get(), &Presentation::registered);
    m_pressed = std::make_unique<QSignalSpy>(m_item.get(), &Presentation::pressed);
    m_clicked = std::make_unique<QSignalSpy>(m_item.get(), &Presentation::clicked);
    m_lost = std::make_unique<QSignalSpy>(m_item.get(), &Presentation::lost);
    m_item->present(sampleItem());
}

void XembedPresentationTest::settle()
{
    constexpr int rounds = 3;
    for (int i = 0; i < rounds; ++i) {
        m_x->selectionOwner(XCB_ATOM_PRIMARY);
        m_manager->connection().selectionOwner(XCB_ATOM_PRIMARY);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
}

void XembedPresentationTest::thePanelTakesTheItemOnce()
{
    dock();
    QTRY_COMPARE(m_registered->count(), 1);
    QTRY_VERIFY(isDrawn());
    settle();
    QCOMPARE(m_manager->docked().size(), 1);
    QCOMPARE(m_registered->count(), 1);
    QCOMPARE(m_lost->count(), 0);
    QCOMPARE(m_manager->slot().height(), 28);
    QCOMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
}

void XembedPresentationTest::theLabelIsDrawnInItsColoursOnATransparentBackground()
{
    dock();
    QTRY_VERIFY(isDrawn());
    const QImage picture = m_manager->picture();
    QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(picture.pixelColor(picture.width() - 1, picture.height() - 1).alpha(), 0);
}

void XembedPresentationTest::withoutATransparentVisualThePanelsBackgroundStaysBehindTheLabel()
{
    dock({.transparent = false,
        .symbols = {},
        .background = QColor(0x20, 0x40, 0x60),
        .program = {}});
    QTRY_VERIFY(isDrawn());
    const QImage picture = m_manager->picture();
    QCOMPARE(picture.pixelColor(0, 0), QColor(0x20, 0x40, 0x60));
    QCOMPARE(
        picture.pixelColor(picture.width() - 1, picture.height() - 1), QColor(0x20, 0x40, 0x60));
}

void XembedPresentationTest::onAnOpaqueLightPanelTheLabelIsDark()
{
    dock({.transparent = false,
        .symbols = {},
        .background = QColor(0xf0, 0xf0, 0xf0),
        .program = {}});
    QTRY_VERIFY(isDrawn(Background::Light));
    QVERIFY(!isDrawn(Background::Dark));
}

void XembedPresentationTest::thePanelsOwnSymbolsTellLightFromDark()
{
    dock({.symbols = QColor(0x2e, 0x34, 0x36), .program = {}});
    QTRY_VERIFY(isDrawn(Background::Light));
    m_manager->setSymbols(Qt::white);
    QTRY_VERIFY(isDrawn(Background::Dark));
    QVERIFY(!isDrawn(Background::Light));
}

void XembedPresentationTest::coloursFromBeforeThePanelHasReadItsThemeDoNotCount()
{
    dock({.symbols = QColor(0x2e, 0x34, 0x36), .program = {}});
    QTRY_VERIFY(isDrawn(Background::Light));
    m_manager->setColors({Qt::black, Qt::red, Qt::yellow, Qt::green});
    QTRY_VERIFY(isDrawn(Background::Dark));
    m_manager->setColors({Qt::black, QColor(0xcc, 0, 0), Qt::yellow, Qt::green});
    QTRY_VERIFY(isDrawn(Background::Light));
}

void XembedPresentationTest::aPanelOfTheThemesKindFollowsTheTheme()
{
    m_appearance.setDark(false);
    dock({.symbols = QColor(0x2e, 0x34, 0x36), .program = {}});
    QTRY_VERIFY(isDrawn(Background::Light));
    m_appearance.setDark(true);
    QTRY_VERIFY(isDrawn(Background::Dark));
    m_appearance.setDark(false);
    QTRY_VERIFY(isDrawn(Background::Light));
}

void XembedPresentationTest::aPanelOfAnotherKindThanTheThemeStaysAsItIs()
{
    m_appearance.setDark(false);
    dock({.symbols = Qt::white, .program = {}});
    QTRY_VERIFY(isDrawn(Background::Dark));
    m_appearance.setDark(true);
    m_appearance.setDark(false);
    settle();
    QVERIFY(isDrawn(Background::Dark));
}

void XembedPresentationTest::faintTextsAreAsStrongAsTheUserWants()
{
    PresentedItem item = sampleItem();
    item.label.image.reset();
    item.label.title = {model::TextRun{.text = u"HHEE##||"_s, .color = ColorToken::SecondaryLabel}};
    dock();
    m_item->present(item);
    const auto drawnAs = [this](ColorToken token) {
        return countPixels(m_manager->picture(), token, Background::Dark);
    };
    QTRY_VERIFY(drawnAs(ColorToken::SecondaryLabel) > 0);
    QCOMPARE(drawnAs(ColorToken::Label), 0);
    m_appearance.setContrast(Contrast::Higher);
    QTRY_VERIFY(drawnAs(ColorToken::Label) > 0);
    QCOMPARE(drawnAs(ColorToken::SecondaryLabel), 0);
}

void XembedPresentationTest::aHigherSlotIsDrawnAnewInItsMiddle()
{
    dock();
    QTRY_VERIFY(isDrawn());
    const QSize higher(m_manager->slot().width() + 60, 48);
    m_manager->setSlotSize(higher);
    QTRY_COMPARE(m_manager->picture().size(), higher);
    QTRY_VERIFY(isDrawn());
    const QRect ink = inkOf(m_manager->picture());
    QVERIFY2(
        ink.left() > 25 && ink.right() < higher.width() - 25, "not in the middle of the width");
    QVERIFY2(ink.top() > 10 && ink.bottom() < 38, "not in the middle of the height");
}

void XembedPresentationTest::aSlotLargerThanARequestIsDrawnWhole()
{
    const QColor background(0x20, 0x40, 0x60);
    dock({.transparent = false, .symbols = {}, .background = background, .program = {}});
    QTRY_VERIFY(isDrawn());
    // 262140 bytes go into a request.
    const QSize large(800, 350);
    m_manager->setSlotSize(large);
    QTRY_COMPARE(m_manager->picture().size(), large);
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->picture().pixelColor(0, 0), background);
    QCOMPARE(m_manager->picture().pixelColor(799, 349), background);
}

void XembedPresentationTest::aLabelThatGrowsGetsAWiderSlot()
{
    dock();
    QTRY_VERIFY(isDrawn());
    const int before = m_manager->slot().width();
    m_item->present(sampleItem(u"Gem 5h: 100%"_s, u"Gem W: 100%"_s));
    QTRY_VERIFY(m_manager->slot().width() > before + 20);
    QCOMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    QTRY_VERIFY(isDrawn());
    // To the end: the orange run is the last one.
    QTRY_VERIFY(inkOf(m_manager->picture()).right() > m_manager->slot().width() - 12);
    QCOMPARE(m_manager->docked().size(), 1);
}

void XembedPresentationTest::aLabelThatShrinksGetsANarrowerSlot()
{
    dock();
    QTRY_VERIFY(isDrawn());
    const int before = m_manager->slot().width();
    m_item->present(sampleItem(u"80%"_s, u"55%"_s));
    QTRY_VERIFY(m_manager->slot().width() < before - 10);
    QTRY_VERIFY(isDrawn());
}

void XembedPresentationTest::aLabelWhoseNumbersShrinkKeepsItsSlot()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_item->present(sampleItem(u"5h: 100%"_s));
    const QSize narrow = m_manager->slot().size();
    QTRY_VERIFY(m_manager->slot().width() > narrow.width());
    const QRect wide = m_manager->slot();
    m_item->present(sampleItem(u"5h: 7%"_s));
    settle();
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->slot(), wide);
}

void XembedPresentationTest::theLabelIsAsLargeAsTheDesktopDrawsItsTexts_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("factor");
    QTest::newRow("1") << 1.0 << 1;
    QTest::newRow("1.25") << 1.25 << 1;
    QTest::newRow("1.5") << 1.5 << 1;
    QTest::newRow("2") << 2.0 << 2;
    QTest::newRow("3") << 3.0 << 3;
}

void XembedPresentationTest::theLabelIsAsLargeAsTheDesktopDrawsItsTexts()
{
    QFETCH(double, scale);
    QFETCH(int, factor);
    dock();
    QTRY_VERIFY(isDrawn());
    const QRect usual = greenOf(m_manager->picture());
    m_item.reset();
    m_manager.reset();

    const SettingsManager settings(scaled(scale, factor));
    QTRY_COMPARE(m_scale->value(), scale);
    dock({.symbols = {}, .height = static_cast<int>(28 * scale), .program = {}});
    QTRY_VERIFY(isDrawn());
    QTRY_COMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    const QRect text = greenOf(m_manager->picture());
    // Both are whole pixels, and so are the sizes of fonts.
    QVERIFY2(std::abs(text.height() - usual.height() * scale) <= scale + 1,
        qPrintable(u"%1 high, and %2 at scale 1"_s.arg(text.height()).arg(usual.height())));
    QVERIFY(std::abs(text.width() - usual.width() * scale) <= 4 * scale);
    // In the middle of the panel.
    QVERIFY(std::abs(text.top() + text.bottom() + 1 - m_manager->slot().height()) <= 2 * scale);
}

void XembedPresentationTest::largeTextStaysWithinTheHeightOfThePanel()
{
    const SettingsManager settings(scaled(3, 1));
    QTRY_COMPARE(m_scale->value(), 3.0);
    dock();
    QTRY_VERIFY(isDrawn());
    QTRY_COMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    const QRect text = greenOf(m_manager->picture());
    QVERIFY2(text.top() >= 4 && text.bottom() < 28 - 4, "the text touches the panel's edges");
    QVERIFY2(text.height() > 12, "there is room for larger text");
}

void XembedPresentationTest::theLabelFollowsTheDesktopsScale()
{
    SettingsManager settings(scaled(1, 1));
    dock({.symbols = {}, .height = 56, .program = {}});
    QTRY_VERIFY(isDrawn());
    settle();
    const QRect before = greenOf(m_manager->picture());
    settings.change(scaled(2, 2));
    QTRY_VERIFY(greenOf(m_manager->picture()).height() > before.height() * 3 / 2);
    QTRY_COMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    settings.change(scaled(1, 1));
    QTRY_COMPARE(greenOf(m_manager->picture()).height(), before.height());
    QCOMPARE(m_manager->docked().size(), 1);
}

void XembedPresentationTest::aPanelThatCountsInLargerUnitsGivesAFittingSlot_data()
{
    QTest::addColumn<QString>("text");
    // Of every width.
    for (const auto &text : {u""_s, u"i"_s, u"ii"_s, u"iii"_s, u"iiii"_s, u"W"_s, u"m"_s})
        QTest::addRow("behind '%s'", qPrintable(text)) << text;
}

void XembedPresentationTest::aPanelThatCountsInLargerUnitsGivesAFittingSlot()
{
    QFETCH(QString, text);
    const SettingsManager settings(scaled(3, 3));
    QTRY_COMPARE(m_scale->windowFactor(), 3);
    dock({.symbols = {}, .height = 84, .unit = 3, .program = {}});
    m_item->present(sampleItem(text + u"5h: 80%"_s));
    QTRY_VERIFY(isDrawn());
    settle();
    QTRY_COMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    QCOMPARE(m_manager->slot().width() % 3, 0);
}

void XembedPresentationTest::onlyLargerWindowsAskForMoreHeight()
{
    SettingsManager settings(scaled(2, 1));
    QTRY_COMPARE(m_scale->value(), 2.0);
    dock();
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->hintedSize().height(), 22);
    m_item.reset();
    m_manager.reset();

    settings.change(scaled(2, 2));
    QTRY_COMPARE(m_scale->windowFactor(), 2);
    dock();
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->hintedSize().height(), 44);
}

void XembedPresentationTest::aPanelThatScalesWhatIsAskedForStillGivesAFittingSlot()
{
    dock({.symbols = {}, .height = 40, .proportional = true, .program = {}});
    QTRY_VERIFY(isDrawn());
    QTRY_COMPARE(m_manager->hintedSize().height(), 40);
    QTRY_COMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    QTRY_VERIFY(inkOf(m_manager->picture()).left() < 6);
}

void XembedPresentationTest::otherPanelsMayShrinkBelowTheHeightThatTheyGave()
{
    dock({.symbols = {}, .height = 40, .program = {}});
    QTRY_VERIFY(isDrawn());
    settle();
    QVERIFY(m_manager->hintedSize().height() <= 22);
}

void XembedPresentationTest::aSlotThatStaysTooNarrowShowsTheSquare()
{
    dock({.symbols = {}, .widest = 28, .program = {}});
    QTRY_COMPARE(m_registered->count(), 1);
    // The sparkle in the middle, no run of text.
    QTRY_VERIFY(countPixels(m_manager->picture(), ColorToken::Label, Background::Dark) > 20);
    QTRY_VERIFY(!inkOf(m_manager->picture()).isEmpty()
        && std::abs(inkOf(m_manager->picture()).center().x() - 14) <= 1);
    QCOMPARE(
        countPixels(m_manager->picture(), ColorToken::AdaptiveHealthyGreen, Background::Dark), 0);
}

void XembedPresentationTest::aSlotThatStaysTooNarrowShowsTheNumbers()
{
    dock({.symbols = {}, .widest = 28, .program = {}});
    m_item->present(withBadge());
    QTRY_VERIFY(
        countPixels(m_manager->picture(), ColorToken::AdaptiveHealthyGreen, Background::Dark) > 20);
    QVERIFY(countPixels(m_manager->picture(), ColorToken::SystemOrange, Background::Dark) > 20);
}

void XembedPresentationTest::aWideWindowInASquareOneShowsTheNumbers()
{
    dock({.symbols = {}, .squares = true, .program = {}});
    m_item->present(withBadge());
    QTRY_VERIFY(
        countPixels(m_manager->picture(), ColorToken::AdaptiveHealthyGreen, Background::Dark) > 20);
    QVERIFY(countPixels(m_manager->picture(), ColorToken::SystemOrange, Background::Dark) > 20);
    QCOMPARE(m_manager->slot().size(), QSize(28, 28));
    m_manager->setSquareSize({300, 28});
    QTRY_VERIFY(m_manager->picture().width() > 40);
    QTRY_VERIFY(isDrawn());
}

void XembedPresentationTest::theBadgeAsksForASquare()
{
    dock({.symbols = {}, .height = 24, .program = {}}, XembedForm::Badge);
    QTRY_COMPARE(m_registered->count(), 1);
    m_item->present(withBadge());
    QTRY_COMPARE(m_manager->slot().size(), QSize(24, 24));
    QTRY_VERIFY(
        countPixels(m_manager->picture(), ColorToken::AdaptiveHealthyGreen, Background::Dark) > 20);
    QVERIFY(countPixels(m_manager->picture(), ColorToken::SystemOrange, Background::Dark) > 20);
}

void XembedPresentationTest::aSlotThatIsWidenedLaterShowsTheLabelAgain()
{
    dock({.symbols = {}, .widest = 28, .program = {}});
    QTRY_VERIFY(!inkOf(m_manager->picture()).isEmpty()
        && std::abs(inkOf(m_manager->picture()).center().x() - 14) <= 1);
    m_manager->setSlotSize({300, 28});
    QTRY_VERIFY(isDrawn());
}

void XembedPresentationTest::damageIsRepaired()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_manager->damage();
    QTRY_VERIFY(isDrawn());
}

void XembedPresentationTest::aNewLabelStandsOnThePanelsNewColour()
{
    dock({.transparent = false,
        .symbols = {},
        .background = QColor(0x20, 0x40, 0x60),
        .program = {}});
    QTRY_VERIFY(isDrawn());
    settle();
    m_manager->setBackground(Qt::white);
    // Two connections: the server may otherwise see to our reading first.
    settle();
    m_item->present(sampleItem(u"5h: 79%"_s));
    QTRY_VERIFY(isDrawn(Background::Light));
    QCOMPARE(m_manager->picture().pixelColor(0, 0), QColor(Qt::white));
}

void XembedPresentationTest::sizesThatNoWindowHasTakeNothingDown()
{
    dock({.symbols = {}, .proportional = true, .program = {}});
    QTRY_VERIFY(isDrawn());
    settle();
    const QSize asked = m_manager->hintedSize();
    constexpr int most = 65535;
    for (const QSize size : {QSize(0, 0), QSize(most, most), QSize(0, most), QSize(most, 0)}) {
        m_manager->sendSize(size);
        settle();
    }
    m_manager->sendSize(m_manager->slot().size());
    settle();
    m_manager->damage();
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->hintedSize(), asked);
    QCOMPARE(m_lost->count(), 0);
}

void XembedPresentationTest::endsThatOthersTellOfAreNone()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_manager->sendEnds();
    settle();
    QCOMPARE(m_lost->count(), 0);
    m_item->present(sampleItem(u"5h: 100%"_s));
    QTRY_COMPARE(m_manager->slot().width(), m_manager->hintedSize().width());
    QTRY_VERIFY(isDrawn());
    // Nor is the window left behind.
    m_item.reset();
    QTRY_COMPARE(m_manager->slot(), QRect());
}

void XembedPresentationTest::aPanelThatNeverTakesTheItemIsNoHarm()
{
    dock({.symbols = {}, .docks = false, .program = {}});
    for (const QString &text : {u"5h: 79%"_s, u"5h: 100%"_s, u"5h: 7%"_s}) {
        m_item->present(sampleItem(text));
        settle();
    }
    QVERIFY(m_manager->docked().isEmpty());
    QVERIFY(!m_item->place());
    QCOMPARE(m_registered->count(), 0);
    QCOMPARE(m_lost->count(), 0);
    m_manager.reset();
    QTRY_COMPARE(m_lost->count(), 1);
}

void XembedPresentationTest::aVisualThatTheServerDoesNotHaveIsNotUsed()
{
    const QColor background(0x20, 0x40, 0x60);
    constexpr xcb_visualid_t nobodys = 0xdeadbeef;
    dock({.symbols = {}, .background = background, .visual = nobodys, .program = {}});
    QTRY_VERIFY(isDrawn());
    QCOMPARE(m_manager->picture().pixelColor(0, 0), background);
}

void XembedPresentationTest::theSameItemIsNotDrawnAgain()
{
    dock();
    QTRY_VERIFY(isDrawn());
    settle();
    m_manager->mark(Qt::magenta);
    QVERIFY(isMarked(Qt::magenta));
    m_item->present(sampleItem());
    settle();
    QVERIFY(isMarked(Qt::magenta));
    // The mark would not have survived a drawing.
    m_item->present(sampleItem(u"5h: 79%"_s));
    QTRY_VERIFY(!isMarked(Qt::magenta));
}

void XembedPresentationTest::anotherDescriptionAloneIsNotDrawn()
{
    dock();
    QTRY_VERIFY(isDrawn());
    settle();
    m_manager->mark(Qt::magenta);
    PresentedItem item = sampleItem();
    item.description.lines.append(u"resets in 2h 10m"_s);
    m_item->present(item);
    settle();
    QVERIFY(isMarked(Qt::magenta));
}

void XembedPresentationTest::leftAndRightClicksCountWhenTheButtonIsLetGo()
{
    dock();
    QTRY_VERIFY(isDrawn());
    const QPoint place = itemCentre() + QPoint(7, 3);
    m_pointer.moveTo(place);
    for (const int button : {left, right}) {
        m_pointer.press(button);
        QTRY_COMPARE(m_pressed->count(), 1);
        m_pressed->clear();
        settle();
        QCOMPARE(m_clicked->count(), 0);
        m_pointer.release(button);
        QTRY_COMPARE(m_clicked->count(), 1);
        settle();
        QCOMPARE(m_clicked->count(), 1);
        const auto anchor = m_clicked->takeFirst().first().value<ItemAnchor>();
        QCOMPARE(anchor.pointer, place);
        QCOMPARE(anchor.bounds, m_manager->slot());
    }
}

void XembedPresentationTest::theMiddleButtonAndTheWheelDoNothing()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_pointer.moveTo(itemCentre());
    m_pointer.click(middle);
    m_pointer.click(wheelUp);
    settle();
    QCOMPARE(m_pressed->count(), 0);
    QCOMPARE(m_clicked->count(), 0);
    m_pointer.click(left);
    QTRY_COMPARE(m_clicked->count(), 1);
}

void XembedPresentationTest::lettingGoOutsideIsNoClick()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_pointer.moveTo(itemCentre());
    m_pointer.press(left);
    m_pointer.moveTo(elsewhere);
    m_pointer.release(left);
    settle();
    QCOMPARE(m_clicked->count(), 0);
    // Nor does the press stay behind.
    m_pointer.press(left);
    m_pointer.moveTo(itemCentre());
    m_pointer.release(left);
    settle();
    QCOMPARE(m_clicked->count(), 0);
}

void XembedPresentationTest::lettingGoHereOfAPressElsewhereIsNoClick()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_pointer.press(left);
    m_pointer.moveTo(itemCentre());
    m_pointer.release(left);
    settle();
    QCOMPARE(m_clicked->count(), 0);
    m_pointer.click(left);
    QTRY_COMPARE(m_clicked->count(), 1);
}

void XembedPresentationTest::clicksThatTheWindowManagerSendsCount_data()
{
    QTest::addColumn<bool>("squares");
    QTest::addColumn<QPoint>("local");
    QTest::newRow("within a whole label") << false << QPoint(5, 6);
    QTest::newRow("in the hidden middle of a cut one") << true << QPoint(50, 6);
}

void XembedPresentationTest::clicksThatTheWindowManagerSendsCount()
{
    QFETCH(const bool, squares);
    QFETCH(const QPoint, local);
    dock({.symbols = {}, .squares = squares, .program = {}});
    QTRY_VERIFY(!inkOf(m_manager->picture()).isEmpty());
    XConnection sender;
    for (const std::uint8_t type :
        {std::uint8_t{XCB_BUTTON_PRESS}, std::uint8_t{XCB_BUTTON_RELEASE}}) {
        xcb_button_press_event_t event{};
        event.response_type = type;
        event.detail = left;
        event.event = m_manager->docked().last();
        event.root = sender.screen()->root;
        event.event_x = static_cast<std::int16_t>(local.x());
        event.event_y = static_cast<std::int16_t>(local.y());
        event.root_x = 305;
        event.root_y = 16;
        xcb_send_event(sender.connection(), 0, event.event, XCB_EVENT_MASK_BUTTON_PRESS,
            reinterpret_cast<const char *>(&event));
    }
    sender.flush();
    QTRY_COMPARE(m_clicked->count(), 1);
    QCOMPARE(m_clicked->first().first().value<ItemAnchor>().pointer, QPoint(305, 16));
}

void XembedPresentationTest::theEndOfThePanelIsReportedOnce()
{
    dock();
    QTRY_COMPARE(m_registered->count(), 1);
    m_manager.reset();
    QTRY_COMPARE(m_lost->count(), 1);
    m_item->present(sampleItem(u"5h: 10%"_s));
    m_x->selectionOwner(XCB_ATOM_PRIMARY);
    QCoreApplication::processEvents();
    QCOMPARE(m_lost->count(), 1);
}

void XembedPresentationTest::itemsLeftOnTheScreenByAnEndingPanelAreTakenAway()
{
    dock({.symbols = {}, .savesItems = true, .program = {}});
    QTRY_COMPARE(m_registered->count(), 1);
    const xcb_window_t window = m_manager->docked().last();
    m_manager.reset();
    QTRY_COMPARE(m_lost->count(), 1);
    const XcbPointer<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        m_x->connection(), xcb_get_window_attributes(m_x->connection(), window), nullptr));
    QVERIFY(!attributes || attributes->map_state == XCB_MAP_STATE_UNMAPPED);
}

void XembedPresentationTest::beingThrownOutIsReportedOnce()
{
    dock();
    QTRY_COMPARE(m_registered->count(), 1);
    m_manager->throwOut();
    QTRY_COMPARE(m_lost->count(), 1);
    settle();
    QCOMPARE(m_lost->count(), 1);
}

void XembedPresentationTest::theWindowIsGoneWithThePresentation()
{
    dock();
    QTRY_COMPARE(m_registered->count(), 1);
    m_item.reset();
    QTRY_COMPARE(m_manager->slot(), QRect());
}

void XembedPresentationTest::aRestingPointerShowsTheDescriptionBesideTheItem()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_pointer.moveTo(itemCentre());
    QTRY_VERIFY(shownToolTip());
    const QRect text = shownToolTip()->geometry();
    const QRect item = m_manager->slot();
    QVERIFY(text.top() > item.bottom() && text.top() < item.bottom() + 20);
    QVERIFY(text.left() < item.right() && text.right() > item.left());
    QVERIFY(QRect(0, 0, 1280, 720).contains(text));
    // A further line shows at once.
    PresentedItem item2 = sampleItem();
    item2.description.lines.append(u"a third line"_s);
    m_item->present(item2);
    QTRY_VERIFY(shownToolTip() && shownToolTip()->height() > text.height());
    m_pointer.moveTo(elsewhere);
    QTRY_VERIFY(!shownToolTip());
}

void XembedPresentationTest::theToolTipHasEveryLineOfTheFullestDescription()
{
    dock();
    QTRY_VERIFY(isDrawn());
    PresentedItem item = sampleItem();
    item.description.lines = {u"bucket"_s};
    m_item->present(item);
    m_pointer.moveTo(itemCentre());
    QTRY_VERIFY(shownToolTip());
    const int ofOneLine = shownToolTip()->height();
    item.description.lines.append(u"bucket"_s);
    m_item->present(item);
    QTRY_VERIFY(shownToolTip() && shownToolTip()->height() > ofOneLine);
    const int lineHeight = shownToolTip()->height() - ofOneLine;

    constexpr int most = ItemDescription::mostLines;
    while (item.description.lines.size() < most - 1)
        item.description.lines.append(QString(u'W').repeated(ItemDescription::longestLine));
    item.description.lines.append(u"Offline since 10:00"_s);
    m_item->present(item);
    QTRY_COMPARE(
        shownToolTip() ? shownToolTip()->height() : 0, ofOneLine + (most - 1) * lineHeight);
    QVERIFY(QRect(0, 0, 1280, 720).contains(shownToolTip()->geometry()));
}

void XembedPresentationTest::theToolTipIsWideEnoughForAForecast()
{
    dock();
    QTRY_VERIFY(isDrawn());
    PresentedItem item = sampleItem();
    const QString line = u"Claude and GPT models, Five-hour limit: 10.0%, resets in 1h 59m"_s;
    item.description.lines = {line + ", runs out within half an hour"_L1};
    m_item->present(item);
    m_pointer.moveTo(itemCentre());
    QTRY_VERIFY(shownToolTip());
    const int width = shownToolTip()->width();
    // Nothing is cut: one letter more takes more room.
    item.description.lines = {item.description.lines.first() + u'M'};
    m_item->present(item);
    QTRY_VERIFY(shownToolTip() && shownToolTip()->width() > width);
}

void XembedPresentationTest::aPressTakesTheDescriptionAwayUntilThePointerHasLeft()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_pointer.moveTo(itemCentre());
    QTRY_VERIFY(shownToolTip());
    m_pointer.click(left);
    QTRY_VERIFY(!shownToolTip());
    QTRY_COMPARE(m_clicked->count(), 1);
    m_pointer.moveTo(elsewhere);
    settle();
    m_pointer.moveTo(itemCentre());
    QTRY_VERIFY(shownToolTip());
}

void XembedPresentationTest::theDescriptionGoesWithTheItem()
{
    dock();
    QTRY_VERIFY(isDrawn());
    m_pointer.moveTo(itemCentre());
    QTRY_VERIFY(shownToolTip());
    m_manager.reset();
    QTRY_VERIFY(!shownToolTip());
}

} // namespace brimwatch::platform

int main(int argc, char **argv)
{
    const brimwatch::test::PrivateDisplay display;
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    brimwatch::platform::XembedPresentationTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "xembed_presentation_test.moc"
