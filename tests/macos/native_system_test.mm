#include "checks.h"
#include "fakes/fake_appkit.h"
#include "platform/macos/native_application.h"
#include "platform/macos/native_information.h"
#include "platform/macos/native_log.h"
#include "platform/macos/native_pasteboard.h"
#include "platform/macos/native_user_defaults.h"
#include "platform/macos/native_workspace.h"

using namespace brimwatch::platform;

// ---- the program as a whole ----

BRIMWATCH_SENTENCE(anAccessoryHasNumberOne)
{
    NativeApplication application;
    application.becomeAccessory();
    CHECK(fake::recordedAt("activationPolicy 1") == 0);
}

BRIMWATCH_SENTENCE(eachWindowIsOrderedOutAndThenClosed)
{
    NativeApplication application;
    application.closeWindows();
    CHECK((fake::world().journal
        == std::vector<std::string>{
            "first.orderOut", "first.close", "second.orderOut", "second.close"}));
}

BRIMWATCH_SENTENCE(terminatingIsTheApplicationsOwn)
{
    NativeApplication application;
    application.terminate();
    CHECK((fake::world().journal == std::vector<std::string>{"terminate"}));
}

BRIMWATCH_SENTENCE(theEndOfLaunchingIsToldOnce)
{
    int launched = 0;
    NativeApplication application;
    application.whenLaunched([&launched] { ++launched; });
    CHECK(launched == 0);
    fake::finishLaunching();
    fake::finishLaunching();
    CHECK(launched == 1);
    CHECK(fake::observers() == 0);
}

BRIMWATCH_SENTENCE(aProgramThatIsGoneIsNotLaunched)
{
    int launched = 0;
    {
        NativeApplication application;
        application.whenLaunched([&launched] { ++launched; });
    }
    fake::finishLaunching();
    CHECK(launched == 0);
}

BRIMWATCH_SENTENCE(whoAsksLastIsTold)
{
    int first = 0;
    int second = 0;
    NativeApplication application;
    application.whenLaunched([&first] { ++first; });
    application.whenLaunched([&second] { ++second; });
    fake::finishLaunching();
    CHECK(first == 0 && second == 1);
}

BRIMWATCH_SENTENCE(eachWakeFromSleepIsTold)
{
    int woken = 0;
    {
        NativeApplication application;
        application.whenWoken([&woken] { ++woken; });
        fake::wake();
        fake::wake();
        CHECK(woken == 2);
    }
    fake::wake();
    CHECK(woken == 2);
}

BRIMWATCH_SENTENCE(aSecondProcessAsksForThePopover)
{
    int asked = 0;
    NativeApplication application;
    NativeApplication::askOtherToShow();
    CHECK(fake::recordedAt("distribute app.brimwatch.Brimwatch.show at once") == 0);
    application.whenAskedToShow([&asked] { ++asked; });
    NativeApplication::askOtherToShow();
    fake::postDistributed("app.brimwatch.Brimwatch.show");
    CHECK(asked == 2);
    fake::postDistributed("com.example.show");
    CHECK(asked == 2);
}

BRIMWATCH_SENTENCE(openingTheProgramAgainAsksForThePopover)
{
    int asked = 0;
    {
        NativeApplication application;
        application.whenAskedToShow([] { });
        application.whenAskedToShow([&asked] { ++asked; });
        fake::reopen();
        fake::reopen();
        CHECK(asked == 2);
    }
    fake::reopen();
    CHECK(asked == 2);
    CHECK(fake::observers() == 0);
}

// ---- what the user has chosen ----

BRIMWATCH_SENTENCE(aDefaultHasTheKindThatItWasStoredWith)
{
    setUserDefault("showWeeklyInMenuBar", false);
    setUserDefault("notifyOnLowQuota", true);
    setUserDefault("lowQuotaThreshold", 35.5);
    setUserDefault("toolbarLabelStyle", std::string("r\u00f6misch"));
    CHECK((fake::world().defaults
        == std::map<std::string, std::string>{{"showWeeklyInMenuBar", "bool 0"},
            {"notifyOnLowQuota", "bool 1"}, {"lowQuotaThreshold", "number 35.5"},
            {"toolbarLabelStyle", "text r\u00f6misch"}}));
    CHECK(userDefault("showWeeklyInMenuBar") == NativeDefault(false));
    CHECK(userDefault("notifyOnLowQuota") == NativeDefault(true));
    CHECK(userDefault("lowQuotaThreshold") == NativeDefault(35.5));
    CHECK(userDefault("toolbarLabelStyle") == NativeDefault(std::string("r\u00f6misch")));
}

BRIMWATCH_SENTENCE(aDefaultThatIsMissingOrOfAnotherKindIsNothing)
{
    CHECK(userDefault("refreshInterval") == NativeDefault());
    fake::world().defaults["refreshInterval"] = "other";
    CHECK(userDefault("refreshInterval") == NativeDefault());
    setUserDefault("refreshInterval", 10.0);
    setUserDefault("refreshInterval", {});
    CHECK(fake::world().defaults.empty());
}

BRIMWATCH_SENTENCE(whatTheDefaultsCommandWritesIsRead)
{
    fake::world().defaults = {{"a", "number 1"}, {"b", "text 1"}, {"c", "bool 1"}, {"d", "text "}};
    CHECK(userDefault("a") == NativeDefault(1.0));
    CHECK(userDefault("b") == NativeDefault(std::string("1")));
    CHECK(userDefault("c") == NativeDefault(true));
    CHECK(userDefault("d") == NativeDefault(std::string()));
}

// ---- what it knows of itself ----

BRIMWATCH_SENTENCE(theVersionsAreTheBundlesOwn)
{
    fake::world().bundleTexts
        = {{"CFBundleShortVersionString", "0.1.0"}, {"CFBundleVersion", "12"}};
    const auto information = nativeInformation();
    CHECK(information.version == std::optional<std::string>("0.1.0"));
    CHECK(information.build == std::optional<std::string>("12"));
    CHECK(information.systemVersion == "Version 13.6 (Build 22G120)");
}

BRIMWATCH_SENTENCE(versionsThatAreMissingOrNoTextAreAbsent)
{
    CHECK(!nativeInformation().version && !nativeInformation().build);
    fake::world().bundleNumbers = {"CFBundleShortVersionString", "CFBundleVersion"};
    CHECK(!nativeInformation().version && !nativeInformation().build);
}

// ---- pasteboard and workspace ----

BRIMWATCH_SENTENCE(thePasteboardIsClearedBeforeItIsGivenText)
{
    fake::world().pasteboard = "old";
    setPasteboardText("--- Brimwatch Diagnostics ---\n");
    CHECK((fake::world().journal == std::vector<std::string>{"clearContents", "setString string"}));
    CHECK(fake::world().pasteboard == "--- Brimwatch Diagnostics ---\n");
}

BRIMWATCH_SENTENCE(theFirstProgramThatExistsIsOpened)
{
    fake::world().files = {"/Applications/B.app", "/Applications/C.app"};
    CHECK(openFirstExisting({"/Applications/A.app", "/Applications/B.app", "/Applications/C.app"}));
    CHECK((fake::world().opened == std::vector<std::string>{"file file:///Applications/B.app"}));
    CHECK((fake::world().journal
        == std::vector<std::string>{"exists /Applications/A.app", "exists /Applications/B.app"}));
}

BRIMWATCH_SENTENCE(whereNoneExistsNothingIsOpened)
{
    CHECK(!openFirstExisting({"/Applications/A.app"}));
    CHECK(!openFirstExisting({}));
    CHECK(fake::world().opened.empty());
}

BRIMWATCH_SENTENCE(anAddressIsOpenedAsItStands)
{
    openAddress("mailto:support@brimwatch.example?subject=Brimwatch&body=a%0Ab");
    openAddress("http://127.0.0.1:4711/");
    CHECK((fake::world().opened
        == std::vector<std::string>{
            "address mailto:support@brimwatch.example?subject=Brimwatch&body=a%0Ab",
            "address http://127.0.0.1:4711/"}));
}

BRIMWATCH_SENTENCE(whatIsNoAddressOpensNothing)
{
    openAddress("");
    openAddress("no address");
    CHECK(fake::world().opened.empty());
}

// ---- the log ----

BRIMWATCH_SENTENCE(aLineIsLoggedUnderTheProgramsIdentifierAndItsCategory)
{
    writeSystemLog(
        NativeLogLevel::Info, "LaunchAtLogin", "Successfully registered app for launch at login.");
    CHECK(fake::world().log.size() == 1);
    const auto &line = fake::world().log.at(0);
    CHECK(line.subsystem == "app.brimwatch.Brimwatch");
    CHECK(line.category == "LaunchAtLogin");
    CHECK(line.text == "Successfully registered app for launch at login.");
}

BRIMWATCH_SENTENCE(theSystemHidesNothingOfALine)
{
    writeSystemLog(NativeLogLevel::Error, "LaunchAtLogin", "100 %s");
    CHECK(fake::world().log.at(0).format == "%{public}s");
    CHECK(fake::world().log.at(0).text == "100 %s");
}

BRIMWATCH_SENTENCE(eachLevelHasTheSystemsNumber)
{
    for (const auto level :
        {NativeLogLevel::Debug, NativeLogLevel::Info, NativeLogLevel::Error, NativeLogLevel::Fault})
        writeSystemLog(level, "c", "t");
    CHECK(fake::world().log.at(0).type == 2);
    CHECK(fake::world().log.at(1).type == 1);
    CHECK(fake::world().log.at(2).type == 16);
    CHECK(fake::world().log.at(3).type == 17);
}

BRIMWATCH_SENTENCE(withoutABundleTheLogStillHasAName)
{
    fake::world().bundleIdentifier.clear();
    writeSystemLog(NativeLogLevel::Info, "c", "t");
    CHECK(fake::world().log.at(0).subsystem == "brimwatch");
}
