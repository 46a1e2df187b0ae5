#include "unit/platform/macos/fake_native.h"

#include "platform/macos/native_application.h"
#include "platform/macos/native_information.h"
#include "platform/macos/native_notifier.h"
#include "platform/macos/native_pasteboard.h"
#include "platform/macos/native_popover.h"
#include "platform/macos/native_status_item.h"
#include "platform/macos/native_workspace.h"

#include <algorithm>
#include <utility>

namespace brimwatch::test {

FakeNative &fakeNative()
{
    static FakeNative fake;
    return fake;
}

platform::NativeRgba fakeColor(platform::NativeColor color)
{
    return {.red = static_cast<int>(color) / 100.0, .green = 0.5, .blue = 0.25, .alpha = 0.75};
}

} // namespace brimwatch::test

namespace brimwatch::platform {

using test::fakeColor;
using test::fakeNative;

namespace {

bool contains(const std::vector<std::string> &texts, const std::string &text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

void tell(std::string call)
{
    fakeNative().calls.push_back(std::move(call));
}

} // namespace

// ---- the item ----

struct NativeStatusItem::Objects { };

NativeStatusItem::NativeStatusItem(std::function<void()> clicked)
{
    fakeNative().made.emplace_back("status item");
    fakeNative().click = std::move(clicked);
}

NativeStatusItem::~NativeStatusItem()
{
    fakeNative().click = nullptr;
}

// NOLINTBEGIN(readability-convert-member-functions-to-static): the real ones have objects.
bool NativeStatusItem::hasButton() const
{
    return fakeNative().hasButton;
}

void NativeStatusItem::setLabel(const NativeLabel &label)
{
    fakeNative().labels.push_back(label);
}

void NativeStatusItem::setToolTip(const std::string &text)
{
    fakeNative().toolTips.push_back(text);
}

void NativeStatusItem::setAccessibilityLabel(const std::string &text)
{
    fakeNative().accessibilityLabels.push_back(text);
}

void *NativeStatusItem::button() const
{
    return fakeNative().hasButton ? &fakeNative() : nullptr;
}

// ---- the popover ----

struct NativePopover::Objects { };

NativePopover::NativePopover(double width, double height, std::function<void *()> button,
    std::function<void()> didClose, Hovered hovered)
{
    fakeNative().made.emplace_back("popover");
    fakeNative().popoverCalls.push_back(
        "made " + std::to_string(int(width)) + "x" + std::to_string(int(height)));
    fakeNative().popoverButton = std::move(button);
    fakeNative().popoverDidClose = std::move(didClose);
    fakeNative().hover = std::move(hovered);
}

NativePopover::~NativePopover() = default;

std::uintptr_t NativePopover::contentView() const
{
    return 4711;
}

void NativePopover::setContentSize(double width, double height)
{
    fakeNative().popoverCalls.push_back(
        "size " + std::to_string(int(width)) + "x" + std::to_string(int(height)));
}

bool NativePopover::isShown() const
{
    return fakeNative().shown;
}

void NativePopover::show()
{
    fakeNative().popoverCalls.emplace_back("show");
    fakeNative().shown
        = fakeNative().popoverButton() != nullptr && !fakeNative().popoverFailsToOpen;
}

void NativePopover::makeKey()
{
    fakeNative().popoverCalls.emplace_back("makeKey");
}

void NativePopover::performClose()
{
    fakeNative().popoverCalls.emplace_back("performClose");
    if (std::exchange(fakeNative().shown, false))
        fakeNative().popoverDidClose();
}

// ---- notifications ----

struct NativeNotifier::Objects { };

NativeNotifier::NativeNotifier(std::function<void(const std::string &)> activated)
{
    fakeNative().made.emplace_back("notifier");
    fakeNative().chooseNotification = std::move(activated);
}

NativeNotifier::~NativeNotifier() = default;

void NativeNotifier::requestAuthorization()
{
    tell("requestAuthorization");
}

void NativeNotifier::post(
    const std::string &identifier, const std::string &title, const std::string &body)
{
    tell("post " + identifier + "|" + title + "|" + body);
}

// ---- the login item ----

NativeLoginItem::Status NativeLoginItem::status() const
{
    return fakeNative().loginStatus;
}

std::optional<std::string> NativeLoginItem::registerItem()
{
    tell("register");
    return fakeNative().loginFailure;
}

std::optional<std::string> NativeLoginItem::unregisterItem()
{
    tell("unregister");
    return fakeNative().loginFailure;
}

void NativeLoginItem::openSystemSettings()
{
    tell("openSystemSettings");
}

// ---- the program ----

struct NativeApplication::Objects { };

NativeApplication::NativeApplication()
{
    fakeNative().made.emplace_back("application");
}

NativeApplication::~NativeApplication() = default;

void NativeApplication::whenLaunched(std::function<void()> launched)
{
    fakeNative().launched = std::move(launched);
}

void NativeApplication::whenWoken(std::function<void()> woken)
{
    fakeNative().woken = std::move(woken);
}

void NativeApplication::whenAskedToShow(std::function<void()> asked)
{
    fakeNative().askedToShow = std::move(asked);
}

void NativeApplication::askOtherToShow()
{
    tell("askOtherToShow");
}

void NativeApplication::becomeAccessory()
{
    fakeNative().made.emplace_back("policy accessory");
    tell("becomeAccessory");
}

void NativeApplication::closeWindows()
{
    fakeNative().made.emplace_back("windows closed");
    tell("closeWindows");
}

void NativeApplication::terminate()
{
    tell("terminate");
}

NativeInformation nativeInformation()
{
    return {.version = fakeNative().version,
        .build = fakeNative().build,
        .systemVersion = fakeNative().systemVersion};
}

NativeDefault userDefault(const std::string &key)
{
    fakeNative().defaultsRead.push_back(key);
    const auto found = fakeNative().defaults.find(key);
    return found == fakeNative().defaults.end() ? NativeDefault() : found->second;
}

void setUserDefault(const std::string &key, const NativeDefault &value)
{
    fakeNative().defaults[key] = value;
}

// ---- pasteboard, workspace, log ----

void setPasteboardText(const std::string &text)
{
    tell("pasteboard " + text);
}

bool openFirstExisting(const std::vector<std::string> &paths)
{
    return std::any_of(paths.begin(), paths.end(), [](const std::string &path) {
        tell("exists " + path);
        if (!contains(fakeNative().files, path))
            return false;
        tell("open " + path);
        return true;
    });
}

void openAddress(const std::string &address)
{
    tell("open " + address);
}

void writeSystemLog(NativeLogLevel level, const std::string &category, const std::string &text)
{
    fakeNative().log.push_back(
        std::to_string(static_cast<int>(level)) + " " + category + " " + text);
}

// ---- appearance, symbols ----

struct NativeAppearance::Objects { };

NativeAppearance::NativeAppearance(std::function<void()> changed)
{
    fakeNative().made.emplace_back("appearance");
    fakeNative().appearanceChanged = std::move(changed);
}

NativeAppearance::~NativeAppearance() = default;

bool NativeAppearance::isDark() const
{
    return fakeNative().dark;
}

NativeRgba NativeAppearance::color(NativeColor color) const
{
    return fakeColor(color);
}

bool NativeAppearance::reducesMotion() const
{
    return fakeNative().reducesMotion;
}
// NOLINTEND(readability-convert-member-functions-to-static)

bool hasSymbol(const std::string &name)
{
    return contains(fakeNative().symbols, name);
}

NativeSize symbolSize(const NativeSymbol &symbol)
{
    if (!hasSymbol(symbol.name))
        return {};
    // The bolder, the wider.
    return {.width = symbol.pointSize + 2.0 * static_cast<int>(symbol.weight),
        .height = symbol.pointSize};
}

NativePixels drawSymbol(const NativeSymbol &symbol, const NativeRgba &color, double scale)
{
    const NativeSize size = symbolSize(symbol);
    if (size.width * scale > largestSymbolSide)
        return {};
    NativePixels pixels{.width = static_cast<int>(size.width * scale),
        .height = static_cast<int>(size.height * scale),
        .rgba = {}};
    if (pixels.width <= 0 || pixels.height <= 0)
        return {};
    fakeNative().drawnColor = color;
    fakeNative().drawnWeight = symbol.weight;
    // Green counts the columns.
    for (int y = 0; y < pixels.height; ++y) {
        for (int x = 0; x < pixels.width; ++x)
            pixels.rgba.insert(pixels.rgba.end(), {200, static_cast<std::uint8_t>(x), 50, 255});
    }
    return pixels;
}

} // namespace brimwatch::platform
