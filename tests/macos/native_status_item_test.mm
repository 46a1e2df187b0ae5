#include "checks.h"
#include "fakes/fake_appkit.h"
#include "platform/macos/native_status_item.h"

#include <optional>

using namespace brimwatch::platform;
using brimwatch::test::near;

namespace {

constexpr double medium = 0.23;
constexpr double semibold = 0.3;
const std::string dot = " \u00B7 ";

NativeLabelImage sparkle()
{
    return {.symbol = {.name = "sparkles", .pointSize = 12, .weight = NativeWeight::Semibold},
        .accessibilityDescription = "Gemini",
        .paddingLeft = 4,
        .paddingRight = 2,
        .paddingVertical = 2};
}

NativeRun text(const std::string &string, std::optional<NativeColor> color)
{
    return NativeTextRun{.text = string, .color = color};
}

NativeRun symbol(const std::string &name)
{
    return NativeSymbolRun{{.name = name, .pointSize = 10, .weight = NativeWeight::Semibold}};
}

NativeLabel iconOnly()
{
    return {.image = sparkle(),
        .imagePosition = NativeImagePosition::Only,
        .fontSize = 12,
        .title = {}};
}

/// "G 5h: 80%" healthy and "G W: 55%" not so, in letters.
NativeLabel letters()
{
    return {.image = sparkle(),
        .imagePosition = NativeImagePosition::Leading,
        .fontSize = 12,
        .title = {text(" ", std::nullopt), text("G 5h: 80%", NativeColor::AdaptiveHealthyGreen),
            text(dot, NativeColor::SecondaryLabel), text("G W: 55%", NativeColor::SystemOrange)}};
}

/// The same as symbols.
NativeLabel symbols()
{
    return {.image = sparkle(),
        .imagePosition = NativeImagePosition::Leading,
        .fontSize = 12,
        .title = {text(" ", std::nullopt), symbol("sparkles"),
            text(" 5h: 80%", NativeColor::AdaptiveHealthyGreen),
            text(dot, NativeColor::SecondaryLabel), symbol("sparkles"),
            text(" W: 55%", NativeColor::SystemOrange)}};
}

std::vector<fake::Run> titleOf(const NativeLabel &label, bool dark = false)
{
    NativeStatusItem item([] { });
    item.setLabel(label);
    return fake::runs(fake::statusItem().button.attributedTitle, dark);
}

bool isLabelText(const fake::Run &run, const std::string &text, const std::string &color)
{
    return run.text == text && run.color == color && run.fontSize == 12 && run.fontWeight == medium
        && run.monospacedDigits && run.attributes == 2 && run.symbol.empty();
}

bool isGap(const fake::Run &run)
{
    return run.text == " " && run.attributes == 0;
}

bool isSymbol(const fake::Run &run, const std::string &name)
{
    const NSSize size = fake::symbolSizeAt(10);
    // The cap height of the fakes is three quarters of the font's size.
    return run.symbol == name && run.text.empty() && run.symbolSize == 10
        && run.symbolWeight == semibold && run.symbolIsTemplate && run.attributes == 1
        && run.bounds.origin.x == 0 && near(run.bounds.origin.y, (9 - size.height) / 2)
        && run.bounds.size.width == size.width && run.bounds.size.height == size.height;
}

} // namespace

BRIMWATCH_SENTENCE(theItemHasTheLengthOfItsLabel)
{
    NativeStatusItem item([] { });
    CHECK(fake::recordedAt("statusItemWithLength -1") == 0);
    CHECK(fake::statusItemsInBar() == 1);
    CHECK(item.hasButton());
    CHECK(item.button() == (__bridge void *)fake::statusItem().button);
}

BRIMWATCH_SENTENCE(bothButtonsOfTheMouseSendTheActionWhenTheyAreLetGo)
{
    int clicks = 0;
    NativeStatusItem item([&clicks] { ++clicks; });
    // Left mouse up and right mouse up.
    CHECK(fake::recordedAt("sendActionOn 20") >= 0);
    fake::clickStatusItem();
    CHECK(clicks == 1);
    fake::clickStatusItem(true);
    CHECK(clicks == 2);
}

BRIMWATCH_SENTENCE(theActionGoesToOurTargetWithTheButton)
{
    NativeStatusItem item([] { });
    NSStatusBarButton *button = fake::statusItem().button;
    CHECK(button.action == @selector(statusItemClicked:));
    CHECK([button.target respondsToSelector:@selector(statusItemClicked:)]);
}

BRIMWATCH_SENTENCE(anItemThatIsGoneIsNotClicked)
{
    int clicks = 0;
    NSStatusBarButton *button = nil;
    {
        NativeStatusItem item([&clicks] { ++clicks; });
        button = fake::statusItem().button;
        CHECK(button.target != nil);
    }
    CHECK(button.target == nil);
    CHECK(fake::statusItemsInBar() == 0);
    CHECK(clicks == 0);
}

BRIMWATCH_SENTENCE(withoutAButtonNothingIsDone)
{
    fake::world().statusItemHasButton = false;
    NativeStatusItem item([] { });
    const auto before = fake::world().journal.size();
    item.setLabel(letters());
    item.setToolTip("tip");
    item.setAccessibilityLabel("label");
    CHECK(!item.hasButton());
    CHECK(item.button() == nullptr);
    CHECK(fake::world().journal.size() == before);
}

BRIMWATCH_SENTENCE(theSparkleStandsInATransparentFrame)
{
    NativeStatusItem item([] { });
    item.setLabel(iconOnly());
    const auto picture = fake::picture(fake::statusItem().button.image);
    const NSSize inner = fake::symbolSizeAt(12);
    CHECK(picture.drawnByUs);
    CHECK(!picture.flipped);
    CHECK(picture.isTemplate);
    CHECK(picture.description == "Gemini");
    CHECK(picture.size.width == inner.width + 6 && picture.size.height == inner.height + 4);
    CHECK(picture.drew);
    CHECK(
        picture.drawnSymbol == "sparkles" && picture.pointSize == 12 && picture.weight == semibold);
    CHECK(picture.drawnIn.origin.x == 4 && picture.drawnIn.origin.y == 2);
    CHECK(picture.drawnIn.size.width == inner.width && picture.drawnIn.size.height == inner.height);
}

BRIMWATCH_SENTENCE(theIconAloneHasAnEmptyTitle)
{
    NativeStatusItem item([] { });
    item.setLabel(letters());
    item.setLabel(iconOnly());
    NSStatusBarButton *button = fake::statusItem().button;
    CHECK(button.image != nil);
    CHECK(button.imagePosition == NSImageOnly);
    CHECK(button.attributedTitle != nil && button.attributedTitle.length == 0);
}

BRIMWATCH_SENTENCE(theImageLeadsTheText)
{
    NativeStatusItem item([] { });
    item.setLabel(letters());
    CHECK(fake::statusItem().button.imagePosition == NSImageLeading);
    CHECK(fake::statusItem().button.image != nil);
}

BRIMWATCH_SENTENCE(theLettersStandInTheirHealthColors)
{
    const auto title = titleOf(letters());
    CHECK(title.size() == 4);
    CHECK(isGap(title.at(0)));
    CHECK(isLabelText(title.at(1), "G 5h: 80%", "srgb 0.08 0.52 0.26 1"));
    CHECK(isLabelText(title.at(2), dot, "secondaryLabel"));
    CHECK(isLabelText(title.at(3), "G W: 55%", "systemOrange"));
}

BRIMWATCH_SENTENCE(theHealthyGreenFollowsTheMenuBar)
{
    CHECK(titleOf(letters(), false).at(1).color == "srgb 0.08 0.52 0.26 1");
    CHECK(titleOf(letters(), true).at(1).color == "srgb 0.2 0.83 0.45 1");
}

BRIMWATCH_SENTENCE(theHealthyGreenIsMadeOnce)
{
    titleOf(letters());
    titleOf(letters());
    CHECK(fake::timesRecorded("dynamic color") <= 1);
}

BRIMWATCH_SENTENCE(symbolsStandCentredOnTheCapitals)
{
    const auto title = titleOf(symbols());
    CHECK(title.size() == 6);
    CHECK(isGap(title.at(0)));
    CHECK(isSymbol(title.at(1), "sparkles"));
    CHECK(isLabelText(title.at(2), " 5h: 80%", "srgb 0.08 0.52 0.26 1"));
    CHECK(isLabelText(title.at(3), dot, "secondaryLabel"));
    CHECK(isSymbol(title.at(4), "sparkles"));
    CHECK(isLabelText(title.at(5), " W: 55%", "systemOrange"));
}

BRIMWATCH_SENTENCE(withoutAnIconTheTitleStartsWithTheFirstItem)
{
    NativeLabel label = letters();
    label.image.reset();
    label.title.erase(label.title.begin());
    NativeStatusItem item([] { });
    item.setLabel(iconOnly());
    item.setLabel(label);
    NSStatusBarButton *button = fake::statusItem().button;
    CHECK(button.image == nil);
    // "Image only" would hide the title along with the image that is not there.
    CHECK(button.imagePosition == NSNoImage);
    CHECK(isLabelText(
        fake::runs(button.attributedTitle, false).at(0), "G 5h: 80%", "srgb 0.08 0.52 0.26 1"));
}

BRIMWATCH_SENTENCE(oneItemHasNoSeparator)
{
    const auto title = titleOf({.image = std::nullopt,
        .imagePosition = NativeImagePosition::Only,
        .fontSize = 12,
        .title = {text("G 5h: 80%", NativeColor::SystemRed)}});
    CHECK(title.size() == 1);
    CHECK(isLabelText(title.at(0), "G 5h: 80%", "systemRed"));
}

BRIMWATCH_SENTENCE(withoutColorsTheTextHasTheLabelsAndTheSeparatorStaysSecondary)
{
    const auto title = titleOf({.image = std::nullopt,
        .imagePosition = NativeImagePosition::Only,
        .fontSize = 12,
        .title = {text("G 5h: 80%", NativeColor::Label), text(dot, NativeColor::SecondaryLabel),
            text("G W: 55%", NativeColor::Label)}});
    CHECK(isLabelText(title.at(0), "G 5h: 80%", "label"));
    CHECK(isLabelText(title.at(1), dot, "secondaryLabel"));
    CHECK(isLabelText(title.at(2), "G W: 55%", "label"));
}

BRIMWATCH_SENTENCE(withoutTheSparkleTheImageStaysAndTheTitleIsBuilt)
{
    for (auto missing : {&fake::World::unknownSymbols, &fake::World::rigidSymbols}) {
        NativeStatusItem item([] { });
        item.setLabel(iconOnly());
        NSStatusBarButton *button = fake::statusItem().button;
        NSImage *const before = button.image;
        (fake::world().*missing).insert("sparkles");
        item.setLabel(letters());
        CHECK(before != nil && button.image == before);
        CHECK(button.imagePosition == NSImageOnly);
        CHECK(fake::runs(button.attributedTitle, false).size() == 4);
        (fake::world().*missing).clear();
    }
}

BRIMWATCH_SENTENCE(aModelsSymbolThatIsMissingLeavesNoHole)
{
    fake::world().unknownSymbols.insert("cpu");
    const auto title = titleOf({.image = std::nullopt,
        .imagePosition = NativeImagePosition::Only,
        .fontSize = 12,
        .title = {symbol("cpu"), text(" 5h: 80%", NativeColor::Label)}});
    CHECK(title.size() == 1);
    CHECK(isLabelText(title.at(0), " 5h: 80%", "label"));
}

BRIMWATCH_SENTENCE(everyLabelReplacesTheWholeOfTheOneBefore)
{
    NativeStatusItem item([] { });
    item.setLabel(letters());
    item.setLabel(symbols());
    item.setLabel(letters());
    CHECK(fake::runs(fake::statusItem().button.attributedTitle, false).size() == 4);
}

BRIMWATCH_SENTENCE(textsBeyondTheLatinAlphabetAreKept)
{
    const auto title = titleOf({.image = std::nullopt,
        .imagePosition = NativeImagePosition::Only,
        .fontSize = 12,
        .title = {text("\u2726 5h \U0001F600", NativeColor::Label)}});
    CHECK(isLabelText(title.at(0), "\u2726 5h \U0001F600", "label"));
}

BRIMWATCH_SENTENCE(bytesThatAreNoTextBecomeTheReplacementCharacter)
{
    const auto title = titleOf({.image = std::nullopt,
        .imagePosition = NativeImagePosition::Only,
        .fontSize = 12,
        .title = {text("\xff\xfe", NativeColor::Label)}});
    CHECK(isLabelText(title.at(0), "\uFFFD", "label"));
}

BRIMWATCH_SENTENCE(anItemThatIsLetGoLeavesNothingOfItsButton)
{
    NSStatusBarButton *__weak button = nil;
    @autoreleasepool {
        NativeStatusItem item([] { });
        button = fake::statusItem().button;
        CHECK(item.button() != nullptr);
    }
    CHECK(button == nil);
}

BRIMWATCH_SENTENCE(toolTipAndAccessibilityLabelComeAndGo)
{
    NativeStatusItem item([] { });
    NSStatusBarButton *button = fake::statusItem().button;
    item.setToolTip("Gemini, Weekly: 55.0%");
    item.setAccessibilityLabel("G 5h: 80%");
    CHECK(fake::str(button.toolTip) == "Gemini, Weekly: 55.0%");
    CHECK(fake::str(button.accessibilityLabel) == "G 5h: 80%");
    item.setToolTip({});
    item.setAccessibilityLabel({});
    CHECK(button.toolTip == nil);
    CHECK(button.accessibilityLabel == nil);
}
