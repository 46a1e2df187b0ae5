// What the fakes share among themselves: how they record and object, the state that a fresh world
// clears, and what one of them looks up in another's objects.
#pragma once

#include "fake_appkit.h"
#include "runtime/mini_objc.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#pragma clang diagnostic ignored "-Wobjc-designated-initializers"
#pragma clang diagnostic ignored "-Wincomplete-implementation"
#pragma clang diagnostic ignored "-Wprotocol"
#pragma clang diagnostic ignored "-Wobjc-protocol-property-synthesis"
#pragma clang diagnostic ignored "-Wunused-parameter"
#pragma clang diagnostic ignored "-Wobjc-property-implementation"
#pragma clang diagnostic ignored "-Watomic-property-with-user-defined-accessor"
#pragma clang diagnostic ignored "-Wunused-property-ivar"
#pragma clang diagnostic ignored "-Wnullability"

extern "C" void objc_msgSend_for_tests(void) __asm__("objc_msgSend");

namespace fake {

void fail(const std::string &what); ///< An objection.
void record(const std::string &what); ///< A line of the journal.
void needMain(const char *what);
std::string number(double value);
std::string text(NSSize size);
std::string text(NSRect rect);
std::u16string to16(const std::string &s);
std::string to8(const std::u16string &s);
NSAppearance *appearanceNow(bool dark);

// Observers are not held, as on a Mac: one that is freed while it still observes is an objection.
struct Listener {
    void *center, *observer;
    SEL selector;
    std::string name;
    void *object;
};
struct Watch {
    void *object, *observer;
    std::string key;
    void *context;
};
struct Monitor {
    NSEventMask mask;
    void (^handler)(NSEvent *);
    id token;
};
extern std::vector<Listener> gListeners;
extern std::vector<Watch> gWatches;
extern std::vector<Monitor> gMonitors;
struct Tracking {
    void *view;
    NSTrackingArea *area;
};
struct EventHandler {
    uint32_t eventClass, eventID;
    void *handler; ///< Not held.
    SEL selector;
};
extern std::vector<Tracking> gTrackings;
extern std::vector<EventHandler> gEventHandlers;
extern NSAppearance *gDrawing;
extern NSColor *gFill;
extern NSImage *gDrawn;
extern NSGraphicsContext *gContext;
extern std::vector<NSGraphicsContext *> gSaved;
extern NSPanel *__weak gPanel;
extern NSStatusItem *__weak gItem;
extern NSPopover *__weak gPopover;

} // namespace fake

using namespace fake;

@interface NSError () {
@public
    std::string _text;
}
@end

@interface NSURL () {
@public
    std::string _u;
    bool _file;
}
@end

@interface NSColor () {
@public
    std::string _what;
    double _c[4];
    NSColor * (^_provider)(NSAppearance *);
    bool _resolved;
}
@end

@interface NSFont () {
@public
    double _size, _weight;
    bool _mono;
}
@end

@interface NSImage () {
@public
    std::string _symbol;
    double _points, _weight;
    bool _template, _flipped;
    NSSize _sz;
    BOOL (^_handler)(NSRect);
}
@end

@interface NSNumber () {
@public
    double _value;
    bool _boolean;
}
@end

@interface NSTrackingArea () {
@public
    NSUInteger _options;
    __unsafe_unretained id _owner;
}
@end

@interface NSView () {
@public
    std::vector<NSView *> _subs;
    __unsafe_unretained NSView *_super;
    __unsafe_unretained NSWindow *_win;
}
@end

@interface NSEvent () {
@public
    NSEventType _t;
    NSPoint _place;
}
@end

@interface NSWindow () {
@public
    std::string _name;
    NSRect _fr;
    NSUInteger _style;
    bool _visible;
    NSResponder *_first;
    NSView *_content;
}
@end

@interface NSApplication () {
@public
    NSArray *_w;
}
@end

@interface NSControl () {
@public
    NSEventMask _mask;
}
@end
