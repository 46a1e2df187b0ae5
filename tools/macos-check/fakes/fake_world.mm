#include "fake_parts.h"

namespace fake {
void fail(const std::string &what)
{
    world().objections.push_back(what);
}
void record(const std::string &what)
{
    world().journal.push_back(what);
}
void needMain(const char *what)
{
    if (!world().onMain)
        fail(std::string(what) + " off the main thread");
}
std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}
std::string text(NSSize size)
{
    return number(size.width) + "x" + number(size.height);
}
std::string text(NSRect rect)
{
    return number(rect.origin.x) + "," + number(rect.origin.y) + " " + text(rect.size);
}
static World *gWorld;
World &world()
{
    if (!gWorld)
        gWorld = new World;
    return *gWorld;
}
std::string str(NSString *s)
{
    return s == nil ? std::string() : std::string(s.UTF8String);
}
NSString *ns(const std::string &s)
{
    return [[NSString alloc] initWithBytes:s.data() length:s.size() encoding:NSUTF8StringEncoding];
}
void reset()
{
    delete gWorld;
    gWorld = nullptr;
    gWatches.clear();
    gListeners.clear();
    gMonitors.clear();
    gTrackings.clear();
    gEventHandlers.clear();
    gSaved.clear();
    gContext = nil;
    gDrawn = nil;
    gFill = nil;
    gDrawing = nil;
    NSApplication.sharedApplication->_w = nil;
}
void pump()
{
    auto &q = world().mainQueue;
    while (!q.empty()) {
        auto f = std::move(q.front());
        q.erase(q.begin());
        @autoreleasepool {
            f();
        }
    }
}
int recordedAt(const std::string &line)
{
    const auto &j = world().journal;
    const auto it = std::find(j.begin(), j.end(), line);
    return it == j.end() ? -1 : int(it - j.begin());
}
int timesRecorded(const std::string &line)
{
    return int(std::count(world().journal.begin(), world().journal.end(), line));
}
} // namespace fake
