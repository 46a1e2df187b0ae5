// The program's entry on macOS, whole but for the .mm files, which fake_native.cpp plays, and the
// views.
#include "app/views_library.h"
#include "platform/macos/mac_single_instance.h"
#include "support/sample_daemon_process.h"
#include "unit/platform/macos/fake_native.h"
#include "views/views_library.h"

#include <QGuiApplication>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <functional>
#include <string>

using namespace Qt::Literals::StringLiterals;
using namespace brimwatch;
using test::fakeNative;
using Texts = test::FakeNative::Texts;

/// main() of src/app/main_macos.cpp, which is built for this test under another name.
int brimwatchMain(int argc, char **argv);

namespace {

constexpr auto activation = "QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM";

/// What a run of the program has come to.
struct Run {
    int status = -1;
    bool wasApplicationMade = false;
    QByteArray activationWhenMade; ///< What the variable held by then.
    QString nameWhenMade;
    Texts madeBefore; ///< Of the system's things, before there was an application object.
    int viewsLoaded = 0;
};

Run *theRun = nullptr;
std::function<void()> theStory;

/// Qt calls it while the application object is made.
void applicationIsMade()
{
    if (theRun == nullptr)
        return; // That of the test itself.
    theRun->wasApplicationMade = true;
    theRun->activationWhenMade = qgetenv(activation);
    theRun->nameWhenMade = QCoreApplication::applicationName();
    theRun->madeBefore = fakeNative().made;
    QTimer::singleShot(0, QCoreApplication::instance(), [] {
        theStory();
        QCoreApplication::quit();
    });
}
Q_COREAPP_STARTUP_FUNCTION(applicationIsMade)

/// Runs the program with these arguments and, once its event loop runs, the story.
Run run(std::vector<std::string> arguments, std::function<void()> story)
{
    Run run;
    theRun = &run;
    theStory = std::move(story);
    std::vector<char *> argv;
    argv.reserve(arguments.size() + 1);
    for (auto &argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    run.status = brimwatchMain(static_cast<int>(arguments.size()), argv.data());
    theRun = nullptr;
    return run;
}

QString lockFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + u"/app.brimwatch.Brimwatch"_s;
}

} // namespace

namespace brimwatch::app {

/// In place of the library of the views.
platform::PopoverContentFactory viewsFromLibrary(
    const views::PopoverDependencies & /*dependencies*/)
{
    return []() -> std::unique_ptr<platform::PopoverContent> {
        ++theRun->viewsLoaded;
        return nullptr;
    };
}

} // namespace brimwatch::app

class MainMacosTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        fakeNative() = {};
        qunsetenv(activation);
    }
    void cleanup() { qInstallMessageHandler(nullptr); }

    void nothingActivatesTheProgram();
    void nothingIsShownBeforeLaunchingHasFinished();
    void theItemComesAfterThePolicyAndThePopoverAfterTheItem();
    void theSettingsAreReadFromTheUsersDefaults();
    void theDaemonIsAskedAgainAfterSleep();
    void aRequestFromOutsideOpensThePopover();
    void aSecondStartAsksTheFirstAndEnds();
    void theVersionIsToldWithoutAnApplication();
};

void MainMacosTest::nothingActivatesTheProgram()
{
    // Whatever the file is called.
    const auto result = run({"other"}, [] { });
    QCOMPARE(result.status, 0);
    QVERIFY(result.wasApplicationMade);
    // Qt reads it while its object is made; an empty one counts for nothing.
    QVERIFY(!result.activationWhenMade.isEmpty());
    QCOMPARE(result.nameWhenMade, u"Brimwatch"_s);
    // AppKit's object is made by Qt: nothing may ask for it before.
    QCOMPARE(result.madeBefore, Texts());
}

void MainMacosTest::nothingIsShownBeforeLaunchingHasFinished()
{
    Texts made;
    Texts calls;
    const auto result = run({"Brimwatch"}, [&] {
        made = fakeNative().made;
        calls = fakeNative().calls;
    });
    QCOMPARE(result.status, 0);
    QVERIFY(std::find(made.begin(), made.end(), "status item") == made.end());
    QVERIFY(std::find(made.begin(), made.end(), "popover") == made.end());
    QCOMPARE(calls, Texts());
}

void MainMacosTest::theItemComesAfterThePolicyAndThePopoverAfterTheItem()
{
    const auto result = run({"Brimwatch"}, [] {
        QVERIFY(fakeNative().launched);
        fakeNative().made.clear();
        fakeNative().launched();
        QCOMPARE(fakeNative().made,
            (Texts{"policy accessory", "windows closed", "status item", "popover"}));
        QVERIFY(!fakeNative().labels.empty());
        // It is placed at the item's button.
        QCOMPARE(fakeNative().popoverButton(), static_cast<void *>(&fakeNative()));
    });
    QCOMPARE(result.status, 0);
    QCOMPARE(result.viewsLoaded, 0);
}

void MainMacosTest::theSettingsAreReadFromTheUsersDefaults()
{
    // Without icon and models nothing is left of the label, and the icon comes back.
    fakeNative().symbols = {"sparkles"};
    fakeNative().defaults = {{"showIconInMenuBar", platform::NativeDefault(false)},
        {"lowQuotaThreshold", platform::NativeDefault(35.0)}};
    QSet<std::string> asked;
    const auto result = run({"Brimwatch"}, [&] {
        fakeNative().defaultsRead.clear();
        fakeNative().launched();
        for (const auto &key : fakeNative().defaultsRead)
            asked.insert(key);
    });
    QCOMPARE(result.status, 0);
    QVERIFY(asked.contains("showIconInMenuBar"));
    QVERIFY(asked.contains("refreshInterval"));
    // Reading stores nothing.
    QCOMPARE(fakeNative().defaults.size(), std::size_t{2});
}

void MainMacosTest::theDaemonIsAskedAgainAfterSleep()
{
    test::SampleDaemonProcess daemon;
    QVERIFY2(daemon.start(), qPrintable(daemon.errorText()));
    const auto requests
        = [&daemon] { return daemon.stats().value_or(decltype(daemon)::Stats()).requests; };
    const auto result = run({"Brimwatch"}, [&] {
        fakeNative().launched();
        QTRY_COMPARE(requests(), 1);
        QTRY_VERIFY(fakeNative().toolTips.size() > 1);
        fakeNative().woken();
        QTRY_COMPARE(requests(), 2);
    });
    QCOMPARE(result.status, 0);
}

void MainMacosTest::aRequestFromOutsideOpensThePopover()
{
    const auto result = run({"Brimwatch"}, [] {
        fakeNative().launched();
        fakeNative().askedToShow();
    });
    QCOMPARE(result.status, 0);
    QCOMPARE(result.viewsLoaded, 1);
}

void MainMacosTest::aSecondStartAsksTheFirstAndEnds()
{
    platform::MacSingleInstance first(lockFolder());
    QVERIFY(first.claim());
    const auto result = run({"Brimwatch"}, [] { });
    QCOMPARE(result.status, 0);
    QVERIFY(!result.wasApplicationMade);
    QCOMPARE(fakeNative().calls, Texts{"askOtherToShow"});
    QCOMPARE(fakeNative().made, Texts());
}

void MainMacosTest::theVersionIsToldWithoutAnApplication()
{
    platform::MacSingleInstance first(lockFolder());
    QVERIFY(first.claim());
    const auto result = run({"Brimwatch", "--version"}, [] { });
    QCOMPARE(result.status, 0);
    QVERIFY(!result.wasApplicationMade);
    QCOMPARE(fakeNative().calls, Texts());
}

// Not QTEST_MAIN: the application object is the program's.
QTEST_APPLESS_MAIN(MainMacosTest)
#include "main_macos_test.moc"
