// Fakes of what our macOS layer asks of the system, for tests on Linux. They record what they are
// asked, let a test play the user and the system, and object to what would be an exception on a
// Mac. They model what the documentation says, as we understand it; they are not AppKit.
#pragma once

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>
#import <UserNotifications/UserNotifications.h>

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace fake {

struct Posted {
    std::string identifier, title, body, sound, trigger;
    bool hasCompletionHandler = false;
};

struct LogLine {
    int type = 0;
    std::string subsystem, category, format, text;
};

/// What the system is like, for a test to change, and what has happened, for it to look at.
struct World {
    std::string bundleIdentifier = "app.brimwatch.Brimwatch";
    std::map<std::string, std::string> bundleTexts; ///< Values of the information dictionary.
    std::set<std::string> bundleNumbers; ///< Keys whose values are no text.
    std::string osVersion = "Version 13.6 (Build 22G120)";
    bool dark = false;
    bool reduceMotion = false;
    std::set<std::string> unknownSymbols; ///< There is none of that name.
    std::set<std::string> rigidSymbols; ///< It takes no configuration.
    std::set<std::string> files;
    bool statusItemHasButton = true;
    NSPoint itemOrigin = {1400, 878}; ///< Of its window, on all screens together.
    NSRect visibleFrame = {{0, 0}, {1440, 870}}; ///< Of the screen with the item.
    SMAppServiceStatus loginStatus = SMAppServiceStatusNotRegistered;
    SMAppServiceStatus loginStatusAfterRegistering = SMAppServiceStatusEnabled;
    std::string loginError; ///< Not empty: registering and unregistering fail with it.
    bool loginErrorIsSilent = false; ///< They fail and say nothing.
    bool colorsHaveNoSrgb = false;
    bool closesSlowly = true; ///< The popover is gone when the main queue has run.
    bool popoverFailsToOpen = false; ///< It has begun to open, and is not there.
    bool active = false; ///< We are the program in front.
    /// The domain of the bundle in the user's defaults, as the command `defaults` would write it:
    /// "bool 1", "number 20", "text letter", "other".
    std::map<std::string, std::string> defaults;

    /// What was asked in order, as "object.what arguments".
    std::vector<std::string> journal;
    std::vector<std::string> objections; ///< What would have been an exception, or worse.
    std::vector<std::string> opened;
    std::vector<Posted> posted;
    std::vector<LogLine> log;
    std::string pasteboard;
    unsigned long authorizationOptions = 0;
    int authorizationRequests = 0;
    int loginSettingsOpened = 0;
    std::vector<std::function<void()>> mainQueue;
    bool onMain = true;
};

World &world();
/// A fresh world.
void reset();
/// Runs the main queue until it is empty.
void pump();
/// Whether the journal holds that line, and at which place; -1 when not.
int recordedAt(const std::string &line);
/// How often the journal holds that line.
int timesRecorded(const std::string &line);

// ---- the user and the system ----
void setDark(bool dark);
/// As the system announces that colours or accessibility options have changed.
void systemColorsChanged();
void displayOptionsChanged();
void finishLaunching();
void wake();
/// The user opens the program that runs already.
void reopen();
/// Another process posts a notification to all.
void postDistributed(const std::string &name);
/// A click on the item: the transient popover closes with the press, the action comes with the
/// release.
void clickStatusItem(bool right = false);
void clickOutside(bool right = false);
/// The pointer comes into a view, moves, or leaves it; from the view's lower left corner.
void enterView(NSView *view, NSPoint place);
void movePointer(NSView *view, NSPoint place);
void leaveView(NSView *view);
void chooseNotification(const std::string &identifier, bool dismiss = false);
/// What the system asks before it shows one of ours while we are in front; -1 when nobody answers.
long presentationOptions();

// ---- what is there ----
NSStatusItem *statusItem();
NSPopover *popover();
NSPanel *panel();
/// Who gets the keys of a window; nil when that is the window itself.
NSResponder *firstResponder(NSWindow *window);
int statusItemsInBar();
/// Of keys, of notifications, of events outside, of pointers and of being reopened, together.
long observers();
id notificationDelegate();
id keyObserver(); ///< The object that observes a key; nil when none does.
std::string str(NSString *string);
NSString *ns(const std::string &string);

/// A piece of an attributed string with the same attributes throughout. Colours are resolved for
/// the appearance asked for.
struct Run {
    std::string text, symbol;
    double fontSize = 0, fontWeight = 0;
    bool monospacedDigits = false;
    std::string color;
    double symbolSize = 0, symbolWeight = 0;
    bool symbolIsTemplate = false;
    CGRect bounds = {};
    std::size_t attributes = 0; ///< How many.
};
std::vector<Run> runs(NSAttributedString *string, bool dark);

/// What an image is of, and how.
struct Picture {
    std::string symbol, description;
    double pointSize = 0, weight = 0;
    bool isTemplate = false, flipped = false, drawnByUs = false;
    NSSize size = {};
    /// Where our drawing puts which symbol, and whether it says that it drew.
    std::string drawnSymbol;
    NSRect drawnIn = {};
    bool drew = false;
};
Picture picture(NSImage *image);
/// A symbol's own size at a point size, which is what tests may count with.
NSSize symbolSizeAt(double pointSize);

} // namespace fake
