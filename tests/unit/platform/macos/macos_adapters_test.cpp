#include "model/label_composition.h"
#include "platform/macos/mac_appearance.h"
#include "platform/macos/mac_application_presence.h"
#include "platform/macos/mac_information.h"
#include "platform/macos/mac_log.h"
#include "platform/macos/mac_login_item.h"
#include "platform/macos/mac_notifier.h"
#include "platform/macos/mac_opener.h"
#include "platform/macos/mac_pasteboard.h"
#include "platform/macos/mac_popover.h"
#include "platform/macos/mac_single_instance.h"
#include "platform/macos/mac_status_item.h"
#include "platform/macos/mac_symbols.h"
#include "platform/macos/mac_user_defaults.h"
#include "service/settings.h"
#include "unit/platform/macos/fake_native.h"

#include <QGuiApplication>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>
#include <QUrl>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::fakeNative;
using Texts = test::FakeNative::Texts;

namespace {

Q_LOGGING_CATEGORY(launchLog, "LaunchAtLogin", QtDebugMsg)

model::LabelInput letters()
{
    return {.items = {{.model = model::ToolbarModel::gemini,
                          .bucket = {},
                          .text = u"G 5h: 80%"_s,
                          .formattedValue = u"5h: 80%"_s,
                          .color = model::ColorToken::SystemGreen,
                          .nsColor = model::ColorToken::AdaptiveHealthyGreen},
                {.model = model::ToolbarModel::gemini,
                    .bucket = {},
                    .text = u"G W: 55%"_s,
                    .formattedValue = u"W: 55%"_s,
                    .color = model::ColorToken::SystemOrange,
                    .nsColor = model::ColorToken::SystemOrange}},
        .labelStyle = u"letter"_s};
}

model::LabelComposition composed(const model::LabelInput &input)
{
    return model::composeLabel(input, {}, [](const QString &) { return true; });
}

class FakeContent final : public platform::PopoverContent {
public:
    explicit FakeContent(QStringList &calls)
        : m_calls(calls)
    {
        m_window.resize(380, 490);
    }
    ~FakeContent() override { m_calls.append(u"gone"_s); }
    FakeContent(const FakeContent &) = delete;
    FakeContent &operator=(const FakeContent &) = delete;
    FakeContent(FakeContent &&) = delete;
    FakeContent &operator=(FakeContent &&) = delete;

    QWindow &window() override { return m_window; }
    QSize size() const override { return m_window.size(); }
    void setTranslucent(bool translucent) override
    {
        m_calls.append(translucent ? u"translucent"_s : u"opaque"_s);
    }
    QMargins shadow() const override { return {}; }
    void setShown(bool shown) override { m_calls.append(shown ? u"shown"_s : u"hidden"_s); }
    void showSettings() override { m_calls.append(u"settings"_s); }

private:
    QStringList &m_calls;
    QWindow m_window;
};

} // namespace

class MacosAdaptersTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { fakeNative() = {}; }

    // ---- the item ----
    void theWorkedExampleReachesTheMenuBar();
    void theWorkedExampleInSymbolsReachesTheMenuBar();
    void anIconAloneHasNoTitle();
    void withoutAnIconThereIsNoImage();
    void aLabelThatIsShownIsNotSentAgain();
    void theDescriptionIsAToolTipAndALabelForReaders();
    void aClickIsReportedWithoutAPlace();
    void aMissingButtonIsTold();
    void everyColorOfOursHasItsOwnInTheSystem();

    // ---- the popover ----
    void nothingIsLoadedBeforeItIsAskedFor();
    void whatIsLetGoIsLoadedAgainInTheSamePlace();
    void theContentStandsInThePopoversView();
    void itShowsWhatIsUpToDate();
    void aCloseFromOutsideIsToldAndHidesTheContent();
    void aLateCloseDoesNotBlankWhatWasOpenedAgain();
    void withoutAButtonTheContentStaysHidden();
    void anOpeningThatFailsLeavesTheContentHidden();
    void thePointerReachesTheContentWhileAnotherProgramIsInFront();
    void withoutContentNothingIsShown();
    void withoutAWindowForTheViewNothingIsShown();
    void itOpensAtTheButtonAlsoWhenNobodyClicked();
    void onlyAShownPopoverTakesTheKeyboard();
    void itFollowsTheSizeOfTheContent();
    void theSettingsAreTurnedToOnceLoaded();
    void theContentGoesBeforeWhatItStandsIn();

    // ---- the rest ----
    void notificationsPassThroughBothWays();
    void theFourStatusesOfTheLoginItemAreKept();
    void theLoginItemsFailureIsASentence();
    void copiedTextReachesThePasteboard();
    void theIdeIsLookedForInItsFourPlacesInOrder();
    void foldersAreOpenedAsFilesAndPagesAsAddresses();
    void theAppearanceIsTheSystems();
    void changesOfTheAppearanceArePassedOn();
    void theVersionsAreTheBundles();
    void theProgramIsAnAccessoryThatOutlivesItsWindows();
    void theEndOfLaunchingIsPassedOn();
    void wakesAndSecondStartsArePassedOn();
    void qtIsKeptFromActivatingTheProgram();
    void onlyTheFirstProcessClaimsTheLock();
    void withoutAFolderForTheLockEachStartIsTheFirst();
    void defaultsKeepTheirKinds();
    void theSettingsAreInTheUsersDefaults();
    void symbolsHaveTheSizeThatWasPromised();
    void aSymbolKeepsWeightAndTransparency();
    void aSymbolBetweenTwoPixelsHasRoomAndATransparentRest();
    void aSymbolThatIsMissingIsNull();
    void messagesGoToTheSystemsLog();
};

void MacosAdaptersTest::theWorkedExampleReachesTheMenuBar()
{
    using platform::NativeColor;
    platform::MacStatusItem item;
    item.setLabel(composed(letters()));
    QCOMPARE(fakeNative().labels.size(), std::size_t{1});
    const platform::NativeLabel expected{
        .image = platform::NativeLabelImage{.symbol
            = {.name = "sparkles", .pointSize = 12, .weight = platform::NativeWeight::Semibold},
            .accessibilityDescription = "Gemini",
            .paddingLeft = 4,
            .paddingRight = 2,
            .paddingVertical = 2},
        .imagePosition = platform::NativeImagePosition::Leading,
        .fontSize = 12,
        .title = {platform::NativeTextRun{.text = " ", .color = std::nullopt},
            platform::NativeTextRun{
                .text = "G 5h: 80%", .color = NativeColor::AdaptiveHealthyGreen},
            platform::NativeTextRun{.text = " \u00B7 ", .color = NativeColor::SecondaryLabel},
            platform::NativeTextRun{.text = "G W: 55%", .color = NativeColor::SystemOrange}}};
    QVERIFY(fakeNative().labels.front() == expected);
}

void MacosAdaptersTest::theWorkedExampleInSymbolsReachesTheMenuBar()
{
    auto input = letters();
    input.labelStyle = u"icon"_s;
    platform::MacStatusItem item;
    item.setLabel(composed(input));
    const auto &title = fakeNative().labels.at(0).title;
    QCOMPARE(title.size(), std::size_t{6});
    const platform::NativeSymbolRun sparkles{.symbol
        = {.name = "sparkles", .pointSize = 10, .weight = platform::NativeWeight::Semibold}};
    QVERIFY(title.at(1) == platform::NativeRun(sparkles));
    QVERIFY(title.at(4) == platform::NativeRun(sparkles));
    QCOMPARE(std::get<platform::NativeTextRun>(title.at(2)).text, std::string(" 5h: 80%"));
}

void MacosAdaptersTest::anIconAloneHasNoTitle()
{
    platform::MacStatusItem item;
    item.setLabel(composed({}));
    const auto &label = fakeNative().labels.at(0);
    QVERIFY(label.image.has_value());
    QVERIFY(label.imagePosition == platform::NativeImagePosition::Only);
    QVERIFY(label.title.empty());
}

void MacosAdaptersTest::withoutAnIconThereIsNoImage()
{
    auto input = letters();
    input.showIcon = false;
    platform::MacStatusItem item;
    item.setLabel(composed(input));
    const auto &label = fakeNative().labels.at(0);
    QVERIFY(!label.image);
    QCOMPARE(std::get<platform::NativeTextRun>(label.title.at(0)).text, std::string("G 5h: 80%"));
}

void MacosAdaptersTest::aLabelThatIsShownIsNotSentAgain()
{
    platform::MacStatusItem item;
    item.setLabel({});
    QCOMPARE(fakeNative().labels.size(), std::size_t{1});
    item.setLabel(composed(letters()));
    item.setLabel(composed(letters()));
    QCOMPARE(fakeNative().labels.size(), std::size_t{2});
    item.setDescription({.title = u"a"_s, .lines = {}});
    item.setDescription({.title = u"a"_s, .lines = {}});
    QCOMPARE(fakeNative().toolTips.size(), std::size_t{1});
}

void MacosAdaptersTest::theDescriptionIsAToolTipAndALabelForReaders()
{
    platform::MacStatusItem item;
    item.setDescription(
        {.title = u"G 5h: 80%"_s, .lines = {u"Gemini, 5h: 80.0%"_s, u"Gemini, Weekly: 55.0%"_s}});
    QCOMPARE(fakeNative().toolTips, Texts{"Gemini, 5h: 80.0%\nGemini, Weekly: 55.0%"});
    QCOMPARE(fakeNative().accessibilityLabels, Texts{"G 5h: 80%"});
}

void MacosAdaptersTest::aClickIsReportedWithoutAPlace()
{
    platform::MacStatusItem item;
    const QSignalSpy clicks(&item, &platform::StatusItem::clicked);
    fakeNative().click();
    QCOMPARE(clicks.size(), 1);
    QVERIFY(!item.place());
}

void MacosAdaptersTest::aMissingButtonIsTold()
{
    const platform::MacStatusItem item;
    QVERIFY(item.hasButton());
    QVERIFY(item.button() != nullptr);
    fakeNative().hasButton = false;
    QVERIFY(!item.hasButton());
    QCOMPARE(item.button(), nullptr);
}

void MacosAdaptersTest::everyColorOfOursHasItsOwnInTheSystem()
{
    const auto tokens = QMetaEnum::fromType<model::ColorToken>();
    for (int i = 0; i < tokens.keyCount(); ++i) {
        const auto color = platform::nativeColor(static_cast<model::ColorToken>(tokens.value(i)));
        // The same roles in the same order.
        QCOMPARE(static_cast<int>(color), tokens.value(i));
    }
}

namespace {

/// The popover with fakes for everything around it.
struct PopoverStage {
    QStringList calls;
    int loads = 0;
    bool contentLoads = true;
    bool windowIsThere = true;
    QPointer<QWindow> container;
    std::uintptr_t view = 0;
    QPointer<QWindow> content;

    platform::MacPopover popover{[this]() -> std::unique_ptr<platform::PopoverContent> {
                                     ++loads;
                                     if (!contentLoads)
                                         return nullptr;
                                     auto made = std::make_unique<FakeContent>(calls);
                                     content = &made->window();
                                     return made;
                                 },
        [] { return fakeNative().hasButton ? &fakeNative() : nullptr; },
        [this](std::uintptr_t asked) -> std::unique_ptr<QWindow> {
            view = asked;
            if (!windowIsThere)
                return nullptr;
            auto window = std::make_unique<QWindow>();
            // What stands for a view is never without one of the window system.
            window->create();
            container = window.get();
            return window;
        }};
};

} // namespace

void MacosAdaptersTest::whatIsLetGoIsLoadedAgainInTheSamePlace()
{
    PopoverStage stage;
    stage.popover.show({});
    stage.popover.release();
    QVERIFY(stage.content);
    stage.popover.performClose();
    stage.popover.release();
    QVERIFY(!stage.content);
    QVERIFY(stage.container);
    stage.popover.showSettings();
    const auto *container = stage.container.get();
    stage.popover.show({});
    QCOMPARE(stage.loads, 2);
    QCOMPARE(stage.container.get(), container);
    QCOMPARE(stage.content->parent(), stage.container.get());
}

void MacosAdaptersTest::nothingIsLoadedBeforeItIsAskedFor()
{
    PopoverStage stage;
    QCOMPARE(stage.loads, 0);
    QCOMPARE(fakeNative().popoverCalls, Texts{"made 380x490"});
    stage.popover.prepare();
    stage.popover.prepare();
    QCOMPARE(stage.loads, 1);
    QVERIFY(!stage.popover.isShown());
}

void MacosAdaptersTest::theContentStandsInThePopoversView()
{
    PopoverStage stage;
    stage.popover.prepare();
    QCOMPARE(stage.view, std::uintptr_t{4711});
    QCOMPARE(stage.content->parent(), stage.container.get());
    QCOMPARE(stage.content->position(), QPoint(0, 0));
}

void MacosAdaptersTest::itShowsWhatIsUpToDate()
{
    PopoverStage stage;
    stage.popover.show({});
    QVERIFY(stage.popover.isShown());
    QCOMPARE(stage.calls, QStringList{u"shown"_s});
    QVERIFY(stage.content->isVisible());
    stage.popover.show({});
    QCOMPARE(stage.calls, QStringList{u"shown"_s});
}

void MacosAdaptersTest::aCloseFromOutsideIsToldAndHidesTheContent()
{
    PopoverStage stage;
    const QSignalSpy closes(&stage.popover, &platform::Popover::didClose);
    stage.popover.show({});
    fakeNative().shown = false;
    fakeNative().popoverDidClose();
    QCOMPARE(closes.size(), 1);
    QCOMPARE(stage.calls, (QStringList{u"shown"_s, u"hidden"_s}));
    QVERIFY(!stage.content->isVisible());
    stage.popover.show({});
    QVERIFY(stage.content->isVisible());
    stage.popover.performClose();
    QCOMPARE(closes.size(), 2);
    QCOMPARE(stage.loads, 1);
}

void MacosAdaptersTest::aLateCloseDoesNotBlankWhatWasOpenedAgain()
{
    PopoverStage stage;
    const QSignalSpy closes(&stage.popover, &platform::Popover::didClose);
    stage.popover.show({});
    // The animation of the close begins, and ends after the popover was opened again.
    fakeNative().shown = false;
    stage.popover.show({});
    stage.calls.clear();
    fakeNative().popoverDidClose();
    QCOMPARE(closes.size(), 1);
    QCOMPARE(stage.calls, QStringList());
    QVERIFY(stage.content->isVisible());
}

void MacosAdaptersTest::anOpeningThatFailsLeavesTheContentHidden()
{
    PopoverStage stage;
    fakeNative().popoverFailsToOpen = true;
    stage.popover.show({});
    QVERIFY(!stage.popover.isShown());
    QCOMPARE(stage.calls, (QStringList{u"shown"_s, u"hidden"_s}));
    QVERIFY(!stage.content->isVisible());
    fakeNative().popoverFailsToOpen = false;
    stage.popover.show({});
    QVERIFY(stage.content->isVisible());
}

void MacosAdaptersTest::thePointerReachesTheContentWhileAnotherProgramIsInFront()
{
    class Events final : public QObject {
    public:
        QStringList seen;

    private:
        bool eventFilter(QObject * /*window*/, QEvent *event) override
        {
            if (event->type() == QEvent::MouseMove) {
                const auto *move = dynamic_cast<QMouseEvent *>(event);
                seen.append(u"%1,%2"_s.arg(move->position().x()).arg(move->position().y()));
            } else if (event->type() == QEvent::Leave) {
                seen.append(u"leave"_s);
            }
            return false;
        }
    } events;
    PopoverStage stage;
    fakeNative().hover(platform::NativePoint{.x = 1, .y = 2}); // Nothing is loaded yet.
    stage.popover.show({});
    stage.content->installEventFilter(&events);
    fakeNative().hover(platform::NativePoint{.x = 20.5, .y = 10});
    fakeNative().hover(std::nullopt);
    QCOMPARE(events.seen, (QStringList{u"20.5,10"_s, u"leave"_s}));
}

void MacosAdaptersTest::withoutAButtonTheContentStaysHidden()
{
    fakeNative().hasButton = false;
    PopoverStage stage;
    stage.popover.show({});
    QVERIFY(!stage.popover.isShown());
    QCOMPARE(stage.calls, (QStringList{u"shown"_s, u"hidden"_s}));
    QVERIFY(!stage.content->isVisible());
}

void MacosAdaptersTest::withoutContentNothingIsShown()
{
    PopoverStage stage;
    stage.contentLoads = false;
    stage.popover.show({});
    stage.popover.makeKey();
    stage.popover.showSettings();
    QVERIFY(!stage.popover.isShown());
    QCOMPARE(fakeNative().popoverCalls, Texts{"made 380x490"});
}

void MacosAdaptersTest::withoutAWindowForTheViewNothingIsShown()
{
    PopoverStage stage;
    stage.windowIsThere = false;
    stage.popover.show({});
    QVERIFY(!stage.popover.isShown());
    QCOMPARE(stage.calls, QStringList{u"gone"_s});
}

void MacosAdaptersTest::itOpensAtTheButtonAlsoWhenNobodyClicked()
{
    PopoverStage stage;
    stage.popover.showUnclicked(std::nullopt);
    QVERIFY(stage.popover.isShown());
}

void MacosAdaptersTest::onlyAShownPopoverTakesTheKeyboard()
{
    PopoverStage stage;
    stage.popover.makeKey();
    QCOMPARE(
        std::count(fakeNative().popoverCalls.begin(), fakeNative().popoverCalls.end(), "makeKey"),
        0);
    stage.popover.show({});
    stage.popover.makeKey();
    QCOMPARE(fakeNative().popoverCalls.back(), std::string("makeKey"));
}

void MacosAdaptersTest::itFollowsTheSizeOfTheContent()
{
    PopoverStage stage;
    stage.popover.prepare();
    QCOMPARE(fakeNative().popoverCalls.back(), std::string("size 380x490"));
    stage.content->resize(475, 612);
    QCOMPARE(fakeNative().popoverCalls.back(), std::string("size 475x612"));
    stage.content->resize(500, 612);
    QCOMPARE(fakeNative().popoverCalls.back(), std::string("size 500x612"));
    stage.content->resize(500, 400);
    QCOMPARE(fakeNative().popoverCalls.back(), std::string("size 500x400"));
}

void MacosAdaptersTest::theSettingsAreTurnedToOnceLoaded()
{
    PopoverStage stage;
    stage.popover.showSettings();
    QVERIFY(stage.calls.isEmpty());
    stage.popover.prepare();
    stage.popover.showSettings();
    QCOMPARE(stage.calls, QStringList{u"settings"_s});
}

void MacosAdaptersTest::theContentGoesBeforeWhatItStandsIn()
{
    QStringList calls;
    {
        const auto factory = [&calls]() -> std::unique_ptr<platform::PopoverContent> {
            return std::make_unique<FakeContent>(calls);
        };
        platform::MacPopover popover(
            factory, [] { return &fakeNative(); },
            [&calls](std::uintptr_t) {
                auto window = std::make_unique<QWindow>();
                window->create();
                QObject::connect(window.get(), &QObject::destroyed,
                    [&calls] { calls.append(u"container gone"_s); });
                return window;
            });
        popover.show({});
    }
    QCOMPARE(calls, (QStringList{u"shown"_s, u"gone"_s, u"container gone"_s}));
}

void MacosAdaptersTest::notificationsPassThroughBothWays()
{
    platform::MacNotifier notifier;
    const QSignalSpy activated(&notifier, &platform::Notifier::activated);
    notifier.requestAuthorization();
    notifier.post({.identifier = u"low_quota_gemini-5h"_s,
        .title = u"Brimwatch Alert: 8.0% Remaining"_s,
        .body = u"5h"_s});
    QCOMPARE(fakeNative().calls,
        (Texts{"requestAuthorization",
            "post low_quota_gemini-5h|Brimwatch Alert: 8.0% Remaining|5h"}));
    fakeNative().chooseNotification("low_quota_gemini-5h");
    QCOMPARE(activated.size(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), u"low_quota_gemini-5h"_s);
}

void MacosAdaptersTest::theFourStatusesOfTheLoginItemAreKept()
{
    using Native = platform::NativeLoginItem::Status;
    using Status = platform::LoginItem::Status;
    const platform::MacLoginItem item;
    fakeNative().loginStatus = Native::NotRegistered;
    QVERIFY(item.status() == Status::notRegistered);
    fakeNative().loginStatus = Native::Enabled;
    QVERIFY(item.status() == Status::enabled);
    fakeNative().loginStatus = Native::RequiresApproval;
    QVERIFY(item.status() == Status::requiresApproval);
    fakeNative().loginStatus = Native::NotFound;
    QVERIFY(item.status() == Status::notFound);
}

void MacosAdaptersTest::theLoginItemsFailureIsASentence()
{
    platform::MacLoginItem item;
    QVERIFY(item.registerItem().has_value());
    QVERIFY(item.unregisterItem().has_value());
    fakeNative().loginFailure = "Operation not permitted";
    QCOMPARE(item.registerItem().error(), u"Operation not permitted"_s);
    QCOMPARE(item.unregisterItem().error(), u"Operation not permitted"_s);
    item.openSystemSettings();
    QCOMPARE(fakeNative().calls,
        (Texts{"register", "unregister", "register", "unregister", "openSystemSettings"}));
}

void MacosAdaptersTest::copiedTextReachesThePasteboard()
{
    platform::MacPasteboard().setText(u"Réport\n"_s);
    QCOMPARE(fakeNative().calls, Texts{"pasteboard R\u00e9port\n"});
}

void MacosAdaptersTest::theIdeIsLookedForInItsFourPlacesInOrder()
{
    platform::MacOpener opener;
    QVERIFY(!opener.openAntigravity());
    QCOMPARE(fakeNative().calls,
        (Texts{"exists /Applications/Antigravity IDE.app",
            "exists /Applications/Antigravity-IDE.app", "exists /Applications/Antigravity.app",
            "exists /Applications/Google Antigravity.app"}));
    fakeNative().files = {"/Applications/Antigravity.app"};
    QVERIFY(opener.openAntigravity());
    QCOMPARE(fakeNative().calls.back(), std::string("open /Applications/Antigravity.app"));
}

void MacosAdaptersTest::foldersAreOpenedAsFilesAndPagesAsAddresses()
{
    platform::MacOpener opener;
    fakeNative().files = {"/Users/a b/.gemini"};
    opener.openUrl(QUrl::fromLocalFile(u"/Users/a b/.gemini"_s));
    opener.openUrl(QUrl::fromLocalFile(u"/Users/none"_s));
    opener.openUrl(QUrl(u"http://127.0.0.1:4711/"_s));
    opener.openUrl(QUrl(u"mailto:a@b.example?subject=Brimwatch&body=a%20b%0Ab"_s));
    QCOMPARE(fakeNative().calls,
        (Texts{"exists /Users/a b/.gemini", "open /Users/a b/.gemini", "exists /Users/none",
            "open http://127.0.0.1:4711/",
            "open mailto:a@b.example?subject=Brimwatch&body=a%20b%0Ab"}));
}

void MacosAdaptersTest::theAppearanceIsTheSystems()
{
    const platform::MacAppearance appearance;
    QVERIFY(!appearance.isDark());
    QVERIFY(!appearance.reducesMotion());
    fakeNative().dark = true;
    fakeNative().reducesMotion = true;
    QVERIFY(appearance.isDark());
    QVERIFY(appearance.reducesMotion());
    QVERIFY(appearance.fontFamily().isEmpty());
    QCOMPARE(appearance.textScale(), 1.0);
    const auto native = test::fakeColor(platform::NativeColor::Purple);
    QVERIFY((appearance.color(model::ColorToken::Purple)
        == platform::Rgba{
            .red = native.red, .green = native.green, .blue = native.blue, .alpha = native.alpha}));
}

void MacosAdaptersTest::changesOfTheAppearanceArePassedOn()
{
    const platform::MacAppearance appearance;
    const QSignalSpy changes(&appearance, &platform::Appearance::changed);
    fakeNative().appearanceChanged();
    QCOMPARE(changes.size(), 1);
}

void MacosAdaptersTest::theVersionsAreTheBundles()
{
    fakeNative().systemVersion = "Version 13.6 (Build 22G120)";
    QVERIFY(!platform::macAppInformation().version);
    QVERIFY(!platform::macAppInformation().build);
    fakeNative().version = "0.1.0";
    fakeNative().build = "12";
    const auto information = platform::macAppInformation();
    QCOMPARE(information.version, std::optional(u"0.1.0"_s));
    QCOMPARE(information.build, std::optional(u"12"_s));
    QCOMPARE(information.systemVersion, u"Version 13.6 (Build 22G120)"_s);
}

void MacosAdaptersTest::theProgramIsAnAccessoryThatOutlivesItsWindows()
{
    QGuiApplication::setQuitOnLastWindowClosed(true);
    platform::MacApplicationPresence presence;
    presence.becomeAccessory();
    QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
    presence.closeWindows();
    presence.terminate();
    QCOMPARE(fakeNative().calls, (Texts{"becomeAccessory", "closeWindows", "terminate"}));
}

void MacosAdaptersTest::theEndOfLaunchingIsPassedOn()
{
    int launches = 0;
    platform::MacApplicationPresence presence;
    presence.whenLaunched([&launches] { ++launches; });
    fakeNative().launched();
    QCOMPARE(launches, 1);
}

void MacosAdaptersTest::wakesAndSecondStartsArePassedOn()
{
    int wakes = 0;
    int requests = 0;
    platform::MacApplicationPresence presence;
    presence.whenWoken([&wakes] { ++wakes; });
    presence.whenAskedToShow([&requests] { ++requests; });
    fakeNative().woken();
    QCOMPARE(wakes, 1);
    QCOMPARE(requests, 0);
    fakeNative().askedToShow();
    QCOMPARE(requests, 1);
}

void MacosAdaptersTest::qtIsKeptFromActivatingTheProgram()
{
    qunsetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
    platform::keepQtFromActivating();
    // Qt takes an empty one for none.
    QVERIFY(!qEnvironmentVariableIsEmpty("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM"));
}

void MacosAdaptersTest::onlyTheFirstProcessClaimsTheLock()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"made/app.brimwatch.Brimwatch"_s);
    std::optional<platform::MacSingleInstance> first(path);
    platform::MacSingleInstance second(path);
    QVERIFY(first->claim());
    QVERIFY(first->claim());
    QVERIFY(!second.claim());
    platform::MacSingleInstance::askOther();
    QCOMPARE(fakeNative().calls, Texts{"askOtherToShow"});
    first.reset();
    QVERIFY(second.claim());
}

void MacosAdaptersTest::withoutAFolderForTheLockEachStartIsTheFirst()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    platform::MacSingleInstance first(file.fileName() + u"/folder"_s);
    platform::MacSingleInstance second(file.fileName() + u"/folder"_s);
    QVERIFY(first.claim());
    QVERIFY(second.claim());
}

void MacosAdaptersTest::defaultsKeepTheirKinds()
{
    using platform::NativeDefault;
    platform::MacUserDefaults defaults;
    QVERIFY(!defaults.value("none").isValid());
    defaults.setValue("bool", false);
    defaults.setValue("number", 35.5);
    defaults.setValue("text", u"r\u00f6misch"_s);
    QVERIFY((fakeNative().defaults
        == std::map<std::string, NativeDefault>{{"bool", NativeDefault(false)},
            {"number", NativeDefault(35.5)},
            {"text", NativeDefault(std::string("r\u00f6misch"))}}));
    QCOMPARE(defaults.value("bool"), QVariant(false));
    QCOMPARE(defaults.value("number"), QVariant(35.5));
    QCOMPARE(defaults.value("text"), QVariant(u"r\u00f6misch"_s));
}

void MacosAdaptersTest::theSettingsAreInTheUsersDefaults()
{
    platform::MacUserDefaults defaults;
    service::SettingsStore store(defaults);
    QCOMPARE(store.value(service::settings::lowQuotaThreshold), 20.0);
    store.setValue(service::settings::lowQuotaThreshold, 35);
    store.setValue(service::settings::showWeeklyInMenuBar, false);
    store.setValue(service::settings::toolbarLabelStyle, u"icon"_s);
    QCOMPARE(fakeNative().defaults.size(), std::size_t{3});
    QCOMPARE(store.value(service::settings::lowQuotaThreshold), 35.0);
    QCOMPARE(store.value(service::settings::showWeeklyInMenuBar), false);
    QCOMPARE(store.value(service::settings::toolbarLabelStyle), u"icon"_s);
    store.flush();
    // What people write with the command `defaults`.
    fakeNative().defaults["lowQuotaThreshold"] = std::string("40");
    fakeNative().defaults["showWeeklyInMenuBar"] = 1.0;
    fakeNative().defaults["toolbarLabelStyle"] = true;
    QCOMPARE(store.value(service::settings::lowQuotaThreshold), 40.0);
    QCOMPARE(store.value(service::settings::showWeeklyInMenuBar), true);
    QCOMPARE(store.value(service::settings::toolbarLabelStyle), u"letter"_s);
}

void MacosAdaptersTest::symbolsHaveTheSizeThatWasPromised()
{
    fakeNative().symbols = {"gearshape"};
    const platform::MacSymbols symbols;
    QVERIFY(symbols.has(u"gearshape"_s));
    QCOMPARE(symbols.size(u"gearshape"_s, 12), QSizeF(12, 12));
    const QImage image = symbols.image({.name = u"gearshape"_s,
        .pointSize = 12,
        .weight = platform::SymbolWeight::Bold,
        .color = QColor::fromRgbF(1, 0.5F, 0),
        .devicePixelRatio = 2});
    QCOMPARE(image.size(), QSize(24, 24));
    QCOMPARE(image.devicePixelRatio(), 2.0);
    // The bold one is 36 pixels wide: its middle is drawn.
    QCOMPARE(image.pixelColor(0, 12), QColor(200, 6, 50));
    QCOMPARE(image.pixelColor(12, 12), QColor(200, 18, 50));
    QVERIFY(qAbs(fakeNative().drawnColor.green - 0.5) < 0.01);
}

void MacosAdaptersTest::aSymbolKeepsWeightAndTransparency()
{
    using platform::NativeWeight;
    using platform::SymbolWeight;
    fakeNative().symbols = {"gearshape"};
    const std::vector<std::pair<SymbolWeight, NativeWeight>> weights{
        {SymbolWeight::Regular, NativeWeight::Regular},
        {SymbolWeight::Medium, NativeWeight::Medium},
        {SymbolWeight::Semibold, NativeWeight::Semibold}, {SymbolWeight::Bold, NativeWeight::Bold}};
    for (const auto &[ours, native] : weights) {
        QVERIFY(!platform::MacSymbols()
                .image({.name = u"gearshape"_s,
                    .pointSize = 12,
                    .weight = ours,
                    .color = QColor::fromRgbF(1, 1, 1, 0.25F)})
                .isNull());
        QVERIFY(fakeNative().drawnWeight == native);
        QVERIFY(qAbs(fakeNative().drawnColor.alpha - 0.25) < 0.01);
    }
}

void MacosAdaptersTest::aSymbolBetweenTwoPixelsHasRoomAndATransparentRest()
{
    fakeNative().symbols = {"gearshape"};
    const QImage image = platform::MacSymbols().image({.name = u"gearshape"_s,
        .pointSize = 12.25,
        .weight = platform::SymbolWeight::Regular,
        .color = Qt::white,
        .devicePixelRatio = 2});
    // 24.5 pixels, of which the fake draws 24.
    QCOMPARE(image.size(), QSize(25, 25));
    QCOMPARE(image.pixelColor(23, 23).alpha(), 255);
    QCOMPARE(image.pixelColor(24, 24).alpha(), 0);
}

void MacosAdaptersTest::aSymbolThatIsMissingIsNull()
{
    const platform::MacSymbols symbols;
    QVERIFY(!symbols.has(u"nope"_s));
    QVERIFY(symbols.size(u"nope"_s, 12).isEmpty());
    QVERIFY(symbols.image({.name = u"nope"_s, .pointSize = 12, .color = Qt::black}).isNull());
    fakeNative().symbols = {"gearshape"};
    QVERIFY(symbols
            .image({.name = u"gearshape"_s,
                .pointSize = 12,
                .color = Qt::black,
                .devicePixelRatio = 1e6})
            .isNull());
}

void MacosAdaptersTest::messagesGoToTheSystemsLog()
{
    const auto before = qInstallMessageHandler(nullptr);
    platform::logToTheSystem();
    qCInfo(launchLog, "Successfully registered app for launch at login.");
    qCCritical(launchLog, "Failed to update launch at login: %s", "no");
    qCDebug(launchLog, "debug");
    const auto handler = qInstallMessageHandler(before);
    // The tests run with fatal warnings.
    handler(QtWarningMsg, QMessageLogContext(nullptr, 0, nullptr, "qml"), u"warning"_s);
    handler(QtFatalMsg, {}, u"fatal"_s);
    QCOMPARE(fakeNative().log,
        (Texts{"1 LaunchAtLogin Successfully registered app for launch at login.",
            "2 LaunchAtLogin Failed to update launch at login: no", "0 LaunchAtLogin debug",
            "2 qml warning", "3 default fatal"}));
}

QTEST_MAIN(MacosAdaptersTest)
#include "macos_adapters_test.moc"
