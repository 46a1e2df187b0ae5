#include "checks.h"
#include "fakes/fake_appkit.h"
#include "platform/macos/native_login_item.h"

using namespace brimwatch::platform;

BRIMWATCH_SENTENCE(eachOfTheSystemsFourStatusesIsTold)
{
    using Status = NativeLoginItem::Status;
    const NativeLoginItem item;
    fake::world().loginStatus = SMAppServiceStatusNotRegistered;
    CHECK(item.status() == Status::NotRegistered);
    fake::world().loginStatus = SMAppServiceStatusEnabled;
    CHECK(item.status() == Status::Enabled);
    fake::world().loginStatus = SMAppServiceStatusRequiresApproval;
    CHECK(item.status() == Status::RequiresApproval);
    fake::world().loginStatus = SMAppServiceStatusNotFound;
    CHECK(item.status() == Status::NotFound);
    fake::world().loginStatus = static_cast<SMAppServiceStatus>(17);
    CHECK(item.status() == Status::NotFound);
}

BRIMWATCH_SENTENCE(registeringAndUnregisteringAskTheMainProgramsService)
{
    NativeLoginItem item;
    CHECK(!item.registerItem());
    CHECK(fake::recordedAt("register") == 0 && fake::recordedAt("unregister") < 0);
    CHECK(item.status() == NativeLoginItem::Status::Enabled);
    CHECK(!item.unregisterItem());
    CHECK(fake::recordedAt("unregister") == 1);
    CHECK(item.status() == NativeLoginItem::Status::NotRegistered);
}

BRIMWATCH_SENTENCE(successMayStillLackTheUsersApproval)
{
    fake::world().loginStatusAfterRegistering = SMAppServiceStatusRequiresApproval;
    NativeLoginItem item;
    CHECK(!item.registerItem());
    CHECK(item.status() == NativeLoginItem::Status::RequiresApproval);
}

BRIMWATCH_SENTENCE(aFailureSaysWhatTheSystemSays)
{
    fake::world().loginError = "Operation not permitted";
    NativeLoginItem item;
    CHECK(item.registerItem() == std::optional<std::string>("Operation not permitted"));
    CHECK(item.unregisterItem() == std::optional<std::string>("Operation not permitted"));
    CHECK(item.status() == NativeLoginItem::Status::NotRegistered);
}

BRIMWATCH_SENTENCE(aFailureWithoutAWordIsStillOne)
{
    fake::world().loginErrorIsSilent = true;
    NativeLoginItem item;
    CHECK(item.registerItem() == std::optional<std::string>(""));
    CHECK(item.unregisterItem() == std::optional<std::string>(""));
}

BRIMWATCH_SENTENCE(theSystemsSettingsOpenAtTheLoginItems)
{
    NativeLoginItem item;
    item.openSystemSettings();
    CHECK(fake::world().loginSettingsOpened == 1);
}
