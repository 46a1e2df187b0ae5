#include "popover_bar.h"

// What holds of the system's popover and of a panel of our own alike.

using namespace brimwatch::platform;
using brimwatch::test::Bar;
using brimwatch::test::viewOf;

BRIMWATCH_SENTENCE(withoutAButtonItDoesNotShow)
{
    fake::world().statusItemHasButton = false;
    Bar bar;
    bar.popover.show();
    CHECK(!bar.popover.isShown());
}

BRIMWATCH_SENTENCE(thePointerIsFollowedWhileAnotherProgramIsInFront)
{
    Bar bar;
    bar.popover.setContentSize(380, 490);
    bar.popover.show();
    fake::enterView(viewOf(bar.popover), NSMakePoint(20, 480));
    fake::movePointer(viewOf(bar.popover), NSMakePoint(30, 470));
    fake::leaveView(viewOf(bar.popover));
    CHECK((bar.hovers
        == std::vector<std::optional<NativePoint>>{
            NativePoint{.x = 20, .y = 10}, NativePoint{.x = 30, .y = 20}, std::nullopt}));
}

BRIMWATCH_SENTENCE(thePointerIsQtsWhileTheProgramIsInFront)
{
    Bar bar;
    bar.popover.show();
    fake::world().active = true;
    fake::enterView(viewOf(bar.popover), NSMakePoint(20, 480));
    fake::movePointer(viewOf(bar.popover), NSMakePoint(30, 470));
    fake::leaveView(viewOf(bar.popover));
    CHECK(bar.hovers.empty());
    // It became so with the pointer inside: what was entered is left.
    fake::world().active = false;
    fake::movePointer(viewOf(bar.popover), NSMakePoint(30, 470));
    fake::world().active = true;
    fake::leaveView(viewOf(bar.popover));
    CHECK(bar.hovers.size() == 2 && !bar.hovers.back());
}
