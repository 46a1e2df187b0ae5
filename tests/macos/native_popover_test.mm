#include "popover_bar.h"

#include <memory>

using namespace brimwatch::platform;
using brimwatch::test::Bar;
using brimwatch::test::viewOf;

BRIMWATCH_SENTENCE(thePopoverIsTransientAnimatedAndAsLargeAsItsContent)
{
    Bar bar;
    NSPopover *popover = fake::popover();
    CHECK(popover.behavior == NSPopoverBehaviorTransient);
    CHECK(popover.animates);
    CHECK(popover.contentSize.width == 380 && popover.contentSize.height == 490);
    CHECK(popover.delegate != nil);
    CHECK(!bar.popover.isShown());
}

BRIMWATCH_SENTENCE(theHostedViewHasALayer)
{
    Bar bar;
    NSView *view = fake::popover().contentViewController.view;
    CHECK(view != nil && view.wantsLayer);
    CHECK(view == viewOf(bar.popover));
    CHECK(view.frame.size.width == 380 && view.frame.size.height == 490);
}

BRIMWATCH_SENTENCE(itHangsBelowTheWholeOfTheButton)
{
    Bar bar;
    bar.popover.show();
    CHECK(bar.popover.isShown());
    // The lower edge has number 1.
    CHECK(fake::recordedAt("popover.show 0,0 60x22 edge 1 of the button") >= 0);
}

BRIMWATCH_SENTENCE(itsWindowGetsTheKeyboardAfterItIsShown)
{
    Bar bar;
    NSView *content = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 380, 490)];
    [viewOf(bar.popover) addSubview:content];
    bar.popover.show();
    bar.popover.makeKey();
    const int shown = fake::recordedAt("popover.show 0,0 60x22 edge 1 of the button");
    const int key = fake::recordedAt("popover window.makeKeyWindow");
    const int responder = fake::recordedAt("popover window.makeFirstResponder");
    CHECK(shown >= 0 && key > shown && responder > key);
    CHECK(fake::firstResponder(viewOf(bar.popover).window) == content);
    [content removeFromSuperview];
}

BRIMWATCH_SENTENCE(withoutContentTheWindowStillGetsTheKeyboard)
{
    Bar bar;
    bar.popover.show();
    bar.popover.makeKey();
    CHECK(fake::recordedAt("popover window.makeKeyWindow") >= 0);
    CHECK(fake::recordedAt("popover window.makeFirstResponder") < 0);
}

BRIMWATCH_SENTENCE(whatIsNotShownTakesNoKeyboard)
{
    Bar bar;
    bar.popover.makeKey();
    CHECK(fake::recordedAt("popover window.makeKeyWindow") < 0);
}

BRIMWATCH_SENTENCE(itClosesWithPerformCloseAndSaysSo)
{
    Bar bar;
    bar.popover.show();
    bar.popover.performClose();
    CHECK(fake::recordedAt("popover.performClose") >= 0);
    CHECK(!bar.popover.isShown());
    fake::pump();
    CHECK(bar.closed == 1);
}

BRIMWATCH_SENTENCE(aClickElsewhereClosesItAndItSaysSo)
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
}

BRIMWATCH_SENTENCE(aPressOnTheItemClosesItBeforeTheActionComes)
{
    int closedAtTheClick = -1;
    int closed = 0;
    NativeStatusItem item([&] { closedAtTheClick = closed; });
    NativePopover popover(
        380, 490, [&item] { return item.button(); }, [&closed] { ++closed; }, nullptr);
    popover.show();
    fake::clickStatusItem();
    CHECK(closedAtTheClick == 1);
}

BRIMWATCH_SENTENCE(itOpensAgainAfterItHasClosed)
{
    Bar bar;
    bar.popover.show();
    bar.popover.performClose();
    fake::pump();
    bar.popover.show();
    CHECK(bar.popover.isShown());
    CHECK(fake::timesRecorded("popover.show 0,0 60x22 edge 1 of the button") == 2);
}

BRIMWATCH_SENTENCE(oneThatIsShownIsNotShownAgain)
{
    Bar bar;
    bar.popover.show();
    bar.popover.show();
    CHECK(fake::timesRecorded("popover.show 0,0 60x22 edge 1 of the button") == 1);
}

BRIMWATCH_SENTENCE(itFollowsTheSizeOfItsContent)
{
    Bar bar;
    bar.popover.setContentSize(475, 612);
    CHECK(fake::popover().contentSize.width == 475 && fake::popover().contentSize.height == 612);
}

BRIMWATCH_SENTENCE(aPopoverThatGoesWhileItIsShownTellsNobody)
{
    for (const bool slowly : {true, false}) {
        fake::world().closesSlowly = slowly;
        int closed = 0;
        {
            NativeStatusItem item([] { });
            NativePopover popover(
                380, 490, [&item] { return item.button(); }, [&closed] { ++closed; }, nullptr);
            popover.show();
        }
        fake::pump();
        CHECK(closed == 0);
        CHECK(fake::recordedAt("popover.close") >= 0);
    }
}

BRIMWATCH_SENTENCE(aPopoverThatGoesWhileItClosesTellsNobody)
{
    int closed = 0;
    {
        NativeStatusItem item([] { });
        NativePopover popover(
            380, 490, [&item] { return item.button(); }, [&closed] { ++closed; }, nullptr);
        popover.show();
        popover.performClose();
    }
    fake::pump();
    CHECK(closed == 0);
}

BRIMWATCH_SENTENCE(theContentIsNotItsToEnd)
{
    NSView *content = [[NSView alloc] initWithFrame:NSMakeRect(0, 0, 380, 490)];
    @autoreleasepool {
        Bar bar;
        [viewOf(bar.popover) addSubview:content];
        CHECK(content.superview == viewOf(bar.popover));
    }
    CHECK(content.superview == nil);
}

BRIMWATCH_SENTENCE(aCloseIsToldAfterItsAnimationWhateverWasOpenedMeanwhile)
{
    Bar bar;
    bar.popover.show();
    bar.popover.performClose();
    CHECK(!bar.popover.isShown());
    bar.popover.show();
    CHECK(bar.closed == 0);
    fake::pump();
    CHECK(bar.closed == 1);
    CHECK(bar.popover.isShown());
    CHECK(viewOf(bar.popover).window != nil);
}

BRIMWATCH_SENTENCE(anOpeningThatFailsIsNotShown)
{
    Bar bar;
    fake::world().popoverFailsToOpen = true;
    bar.popover.show();
    CHECK(!bar.popover.isShown());
    fake::world().popoverFailsToOpen = false;
    bar.popover.show();
    CHECK(bar.popover.isShown());
}
