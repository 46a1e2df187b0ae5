#include "checks.h"
#include "fakes/fake_appkit.h"
#include "platform/macos/native_notifier.h"

#include <memory>

using namespace brimwatch::platform;

BRIMWATCH_SENTENCE(theUserIsAskedForAlertsAndSound)
{
    NativeNotifier notifier([](const std::string &) { });
    CHECK(fake::world().authorizationRequests == 0);
    notifier.requestAuthorization();
    CHECK(fake::world().authorizationRequests == 1);
    // Sound has number 2 and alert 4; no badge.
    CHECK(fake::world().authorizationOptions == 6);
}

BRIMWATCH_SENTENCE(aNotificationIsPostedAtOnceWithTheDefaultSound)
{
    NativeNotifier notifier([](const std::string &) { });
    notifier.post("low_quota_gemini-5h", "Brimwatch Alert: 8.0% Remaining",
        "5h has dropped to 8.0%. Fully refreshes in 1h 0m.");
    CHECK(fake::world().posted.size() == 1);
    const auto &posted = fake::world().posted.at(0);
    CHECK(posted.identifier == "low_quota_gemini-5h");
    CHECK(posted.title == "Brimwatch Alert: 8.0% Remaining");
    CHECK(posted.body == "5h has dropped to 8.0%. Fully refreshes in 1h 0m.");
    CHECK(posted.sound == "default");
    CHECK(posted.trigger.empty());
    CHECK(!posted.hasCompletionHandler);
}

BRIMWATCH_SENTENCE(postingDoesNotWaitForThePermission)
{
    NativeNotifier notifier([](const std::string &) { });
    notifier.post("a", "b", "c");
    CHECK(fake::world().authorizationRequests == 0);
    CHECK(fake::world().posted.size() == 1);
}

BRIMWATCH_SENTENCE(textsThatAreNoTextArePostedAsReplacementCharacters)
{
    NativeNotifier notifier([](const std::string &) { });
    notifier.post("a", "\xff", "\xc3\x28");
    CHECK(fake::world().posted.at(0).title == "\uFFFD");
    CHECK(fake::world().posted.at(0).body == "\uFFFD");
}

BRIMWATCH_SENTENCE(aChosenNotificationIsReportedOnTheMainThread)
{
    std::vector<std::string> chosen;
    bool onMain = false;
    NativeNotifier notifier([&](const std::string &identifier) {
        chosen.push_back(identifier);
        onMain = fake::world().onMain;
    });
    fake::chooseNotification("low_quota_gemini-5h");
    CHECK(chosen == std::vector<std::string>{"low_quota_gemini-5h"});
    CHECK(onMain);
}

BRIMWATCH_SENTENCE(aDismissedNotificationIsNotReportedAsChosen)
{
    int chosen = 0;
    NativeNotifier notifier([&](const std::string &) { ++chosen; });
    fake::chooseNotification("low_quota_gemini-5h", true);
    CHECK(chosen == 0);
}

BRIMWATCH_SENTENCE(alertsAreShownAlsoWhileWeAreInFront)
{
    NativeNotifier notifier([](const std::string &) { });
    // Sound (2), list (8) and banner (16).
    CHECK(fake::presentationOptions() == 26);
}

BRIMWATCH_SENTENCE(anAnswerThatComesAfterTheNotifierIsGoneIsHarmless)
{
    int chosen = 0;
    auto notifier = std::make_unique<NativeNotifier>([&](const std::string &) { ++chosen; });
    // Before the answer comes, in the same queue.
    fake::world().mainQueue.push_back([&] { notifier.reset(); });
    fake::chooseNotification("low_quota_gemini-5h");
    CHECK(chosen == 0);
}

BRIMWATCH_SENTENCE(withoutABundleTheCenterIsLeftAlone)
{
    fake::world().bundleIdentifier.clear();
    NativeNotifier notifier([](const std::string &) { });
    notifier.requestAuthorization();
    notifier.post("a", "b", "c");
    CHECK(fake::world().authorizationRequests == 0);
    CHECK(fake::world().posted.empty());
}
