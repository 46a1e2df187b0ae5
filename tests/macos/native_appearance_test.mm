#include "checks.h"
#include "fakes/fake_appkit.h"
#include "platform/macos/native_appearance.h"
#include "platform/macos/native_symbols.h"

#include <limits>
#include <utility>

using namespace brimwatch::platform;
using brimwatch::test::near;

BRIMWATCH_SENTENCE(darkAquaIsDark)
{
    const NativeAppearance appearance([] { });
    CHECK(!appearance.isDark());
    fake::world().dark = true;
    CHECK(appearance.isDark());
}

BRIMWATCH_SENTENCE(colorsAreResolvedForTheAppearanceOfTheProgram)
{
    const NativeAppearance appearance([] { });
    CHECK((appearance.color(NativeColor::Label)
        == NativeRgba{.red = 0.25, .green = 0.375, .blue = 0.5, .alpha = 0.625}));
    fake::world().dark = true;
    CHECK((appearance.color(NativeColor::Label)
        == NativeRgba{.red = 0.5, .green = 0.625, .blue = 0.75, .alpha = 0.875}));
}

BRIMWATCH_SENTENCE(theHealthyGreenHasTwoForms)
{
    const NativeAppearance appearance([] { });
    CHECK((appearance.color(NativeColor::AdaptiveHealthyGreen)
        == NativeRgba{.red = 0.08, .green = 0.52, .blue = 0.26, .alpha = 1}));
    fake::world().dark = true;
    CHECK((appearance.color(NativeColor::AdaptiveHealthyGreen)
        == NativeRgba{.red = 0.20, .green = 0.83, .blue = 0.45, .alpha = 1}));
}

BRIMWATCH_SENTENCE(eachRoleIsTheSystemsOwnColor)
{
    const NativeAppearance appearance([] { });
    const std::vector<std::pair<NativeColor, std::string>> roles{
        {NativeColor::Label, "label"},
        {NativeColor::SecondaryLabel, "secondaryLabel"},
        {NativeColor::Separator, "separator"},
        {NativeColor::WindowBackground, "windowBackground"},
        {NativeColor::ControlBackground, "controlBackground"},
        {NativeColor::Accent, "controlAccent"},
        {NativeColor::SystemGreen, "systemGreen"},
        {NativeColor::AdaptiveHealthyGreen, "dynamic"},
        {NativeColor::SystemOrange, "systemOrange"},
        {NativeColor::SystemRed, "systemRed"},
        {NativeColor::Blue, "systemBlue"},
        {NativeColor::Purple, "systemPurple"},
        {NativeColor::White, "white"},
    };
    for (const auto &[color, name] : roles) {
        static_cast<void>(appearance.color(color));
        CHECK(fake::world().journal.back() == "resolve " + name);
    }
}

BRIMWATCH_SENTENCE(aColorThatCannotBeExpressedIsBlack)
{
    fake::world().colorsHaveNoSrgb = true;
    const NativeAppearance appearance([] { });
    CHECK((appearance.color(NativeColor::Accent)
        == NativeRgba{.red = 0, .green = 0, .blue = 0, .alpha = 1}));
}

BRIMWATCH_SENTENCE(theUsersWishForNoMotionIsTold)
{
    const NativeAppearance appearance([] { });
    CHECK(!appearance.reducesMotion());
    fake::world().reduceMotion = true;
    CHECK(appearance.reducesMotion());
}

BRIMWATCH_SENTENCE(eachKindOfChangeIsTold)
{
    int changes = 0;
    const NativeAppearance appearance([&changes] { ++changes; });
    fake::setDark(true);
    CHECK(changes == 1);
    fake::systemColorsChanged();
    CHECK(changes == 2);
    fake::displayOptionsChanged();
    CHECK(changes == 3);
}

BRIMWATCH_SENTENCE(anAppearanceThatIsGoneHearsNothing)
{
    int changes = 0;
    {
        const NativeAppearance appearance([&changes] { ++changes; });
        CHECK(fake::observers() == 3);
    }
    fake::setDark(true);
    fake::systemColorsChanged();
    fake::displayOptionsChanged();
    CHECK(changes == 0);
}

BRIMWATCH_SENTENCE(observationsThatAreNotOursGoToWhomTheyBelong)
{
    int changes = 0;
    const NativeAppearance appearance([&changes] { ++changes; });
    NSObject *observer = fake::keyObserver();
    CHECK(observer != nil);
    [observer observeValueForKeyPath:@"title" ofObject:nil change:nil context:nullptr];
    CHECK(changes == 0);
    CHECK(fake::recordedAt("super observes title") >= 0);
}

// ---- symbols ----

BRIMWATCH_SENTENCE(aSymbolExistsWhenItCanBeDrawn)
{
    fake::world().unknownSymbols = {"nope"};
    fake::world().rigidSymbols = {"stiff"};
    CHECK(hasSymbol("sparkles"));
    CHECK(!hasSymbol("nope"));
    CHECK(!hasSymbol("stiff"));
}

BRIMWATCH_SENTENCE(aSymbolIsAsLargeAsTheSystemDrawsIt)
{
    const NSSize expected = fake::symbolSizeAt(36);
    const NativeSize size
        = symbolSize({.name = "gearshape", .pointSize = 36, .weight = NativeWeight::Regular});
    CHECK(size.width == expected.width && size.height == expected.height);
    fake::world().unknownSymbols = {"nope"};
    const NativeSize none
        = symbolSize({.name = "nope", .pointSize = 36, .weight = NativeWeight::Regular});
    CHECK(none.width == 0 && none.height == 0);
}

BRIMWATCH_SENTENCE(aSymbolIsDrawnInOneColorAtTheScaleOfTheScreen)
{
    const NativeSymbol symbol{
        .name = "gearshape", .pointSize = 13, .weight = NativeWeight::Semibold};
    const auto pixels = drawSymbol(symbol, {.red = 1, .green = 0.5, .blue = 0, .alpha = 1}, 2);
    // 13.75 by 14.25 points.
    CHECK(pixels.width == 28 && pixels.height == 29);
    CHECK(pixels.rgba.size() == std::size_t{28} * 29 * 4);
    // The fakes cover the upper left quarter, with a smooth right edge. The numbers are those of
    // sRGB.
    const auto at = [&](int x, int y) { return &pixels.rgba[std::size_t(y * 28 + x) * 4]; };
    CHECK(at(0, 0)[0] == 255 && at(0, 0)[1] == 128 && at(0, 0)[2] == 0 && at(0, 0)[3] == 255);
    CHECK(at(12, 14)[3] == 255);
    CHECK(at(13, 14)[0] == 102 && at(13, 14)[1] == 51 && at(13, 14)[3] == 102);
    CHECK(at(14, 14)[3] == 0 && at(12, 15)[3] == 0 && at(27, 28)[3] == 0);
    CHECK(at(27, 28)[0] == 0);
}

BRIMWATCH_SENTENCE(aTransparentColorIsPremultiplied)
{
    const auto pixels
        = drawSymbol({.name = "gearshape", .pointSize = 13, .weight = NativeWeight::Regular},
            {.red = 1, .green = 1, .blue = 1, .alpha = 0.5}, 1);
    CHECK(pixels.rgba.at(0) == 128 && pixels.rgba.at(3) == 128);
}

BRIMWATCH_SENTENCE(theDrawingStateIsAsItWasBefore)
{
    static_cast<void>(
        drawSymbol({.name = "gearshape", .pointSize = 13, .weight = NativeWeight::Regular}, {}, 1));
    CHECK(NSGraphicsContext.currentContext == nil);
}

BRIMWATCH_SENTENCE(scalesThatMakeNoSenseDrawNothing)
{
    const NativeSymbol symbol{
        .name = "gearshape", .pointSize = 13, .weight = NativeWeight::Regular};
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double scale :
        {0.0, -1.0, 1000.0, infinity, std::numeric_limits<double>::quiet_NaN()}) {
        const auto pixels = drawSymbol(symbol, {}, scale);
        CHECK(pixels.width == 0 && pixels.height == 0 && pixels.rgba.empty());
    }
    fake::world().unknownSymbols = {"gearshape"};
    CHECK(drawSymbol(symbol, {}, 1).rgba.empty());
}
