#include "popover_bar.h"

using namespace brimwatch::platform;
using brimwatch::test::Bar;
using brimwatch::test::viewOf;

BRIMWATCH_SENTENCE(thePanelHasNoTitleAndActivatesNothing)
{
    Bar bar;
    // Borderless (0) and non-activating (128).
    CHECK(fake::recordedAt("panel style 128") >= 0);
    NSPanel *panel = fake::panel();
    CHECK(panel.level == NSPopUpMenuWindowLevel);
    CHECK(!panel.isReleasedWhenClosed);
    CHECK(!panel.hidesOnDeactivate);
    CHECK(panel.hasShadow && !panel.isOpaque && panel.backgroundColor != nil);
    CHECK(panel.delegate != nil);
    CHECK(panel.canBecomeKeyWindow);
}

BRIMWATCH_SENTENCE(thePanelsViewHasARoundedLayer)
{
    Bar bar;
    NSView *view = viewOf(bar.popover);
    CHECK(view != nil && view == fake::panel().contentView);
    CHECK(view.wantsLayer && view.layer.cornerRadius > 0 && view.layer.masksToBounds);
    CHECK(view.frame.size.width == 380 && view.frame.size.height == 490);
}

BRIMWATCH_SENTENCE(thePanelStandsBelowTheButtonWithinTheScreen)
{
    Bar bar;
    bar.popover.show();
    CHECK(bar.popover.isShown());
    // The button ends at 1462 of 1440, its lower edge at 879: right-aligned, four points below.
    CHECK(fake::recordedAt("panel.frameOrigin 1060,385") >= 0);
    CHECK(fake::recordedAt("panel.orderFrontRegardless")
        > fake::recordedAt("panel.frameOrigin 1060,385"));
}

BRIMWATCH_SENTENCE(onASecondScreenThePanelStandsWithinThatOne)
{
    // Left of the first one, and lower.
    fake::world().visibleFrame = NSMakeRect(-1920, -300, 1920, 1055);
    fake::world().itemOrigin = NSMakePoint(-60, 757);
    {
        Bar bar;
        bar.popover.show();
        // The button ends at 2: right-aligned with the screen's edge at 0.
        CHECK(fake::recordedAt("panel.frameOrigin -380,264") >= 0);
    }
    // Too far left: the screen's edge again.
    fake::world().itemOrigin = NSMakePoint(-1920, 757);
    Bar bar;
    bar.popover.show();
    CHECK(fake::recordedAt("panel.frameOrigin -1920,264") >= 0);
}

BRIMWATCH_SENTENCE(thePanelGetsTheKeyboard)
{
    Bar bar;
    NSView *content = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 380, 490)];
    [viewOf(bar.popover) addSubview:content];
    bar.popover.show();
    bar.popover.makeKey();
    const int key = fake::recordedAt("panel.makeKeyWindow");
    CHECK(key > fake::recordedAt("panel.orderFrontRegardless"));
    CHECK(fake::recordedAt("panel.makeFirstResponder") > key);
    CHECK(fake::recordedAt("panel refuses to be key") < 0);
    CHECK(fake::firstResponder(fake::panel()) == content);
    [content removeFromSuperview];
}

BRIMWATCH_SENTENCE(aClickOnAnotherProgramClosesThePanel)
{
    Bar bar;
    bar.popover.show();
    fake::clickOutside();
    CHECK(!bar.popover.isShown());
    CHECK(bar.closed == 1);
    bar.popover.show();
    fake::clickOutside(true);
    CHECK(!bar.popover.isShown());
    CHECK(bar.closed == 2);
    CHECK(fake::observers() == 1); // The pointer's.
}

BRIMWATCH_SENTENCE(aPanelThatLosesTheKeyboardClosesOnce)
{
    Bar bar;
    bar.popover.show();
    bar.popover.makeKey();
    [fake::panel().delegate windowDidResignKey:[NSNotification notificationWithName:@"resign"
                                                                             object:nil]];
    CHECK(!bar.popover.isShown());
    CHECK(bar.closed == 1);
    CHECK(fake::timesRecorded("panel.orderOut") == 1);
}

BRIMWATCH_SENTENCE(thePanelClosesWhenItIsTold)
{
    Bar bar;
    bar.popover.performClose();
    CHECK(bar.closed == 0);
    bar.popover.show();
    bar.popover.performClose();
    CHECK(bar.closed == 1);
    CHECK(!bar.popover.isShown());
    bar.popover.show();
    CHECK(bar.popover.isShown());
}

BRIMWATCH_SENTENCE(aPanelThatIsShownIsNotShownAgain)
{
    Bar bar;
    bar.popover.show();
    bar.popover.show();
    CHECK(fake::timesRecorded("panel.orderFrontRegardless") == 1);
    CHECK(fake::observers() == 2);
}

BRIMWATCH_SENTENCE(thePanelFollowsTheSizeOfItsContent)
{
    Bar bar;
    bar.popover.setContentSize(475, 612);
    CHECK(fake::recordedAt("panel.contentSize 475x612") >= 0);
}

BRIMWATCH_SENTENCE(aPanelThatGoesWhileItIsShownTellsNobody)
{
    int closed = 0;
    {
        NativeStatusItem item([] { });
        NativePopover popover(
            380, 490, [&item] { return item.button(); }, [&closed] { ++closed; }, nullptr);
        popover.show();
        popover.makeKey();
    }
    CHECK(closed == 0);
    CHECK(fake::observers() == 0);
}
