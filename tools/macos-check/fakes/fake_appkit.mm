// See fake_appkit.h.
#include "fake_appkit.h"

#include "runtime/mini_objc.h"

#import <os/log.h>

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

static void fail(const std::string &what)
{
    fake::world().objections.push_back(what);
}
static void tell(const std::string &what)
{
    fake::world().journal.push_back(what);
}
static void needMain(const char *what)
{
    if (!fake::world().onMain)
        fail(std::string(what) + " off the main thread");
}
static std::string number(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}
static std::string text(NSSize size)
{
    return number(size.width) + "x" + number(size.height);
}
static std::string text(NSRect rect)
{
    return number(rect.origin.x) + "," + number(rect.origin.y) + " " + text(rect.size);
}

// ---- NSObject ------------------------------------------------------------------------
@implementation NSObject
+ (instancetype)alloc
{
    return (__bridge_transfer id)mini_alloc((__bridge void *)self);
}
+ (instancetype)new
{
    return [[self alloc] init];
}
+ (Class)class
{
    return self;
}
- (Class)class
{
    return (__bridge Class)mini_class_of((__bridge void *)self);
}
- (instancetype)init
{
    return self;
}
- (instancetype)self
{
    return self;
}
- (void)dealloc
{
    mini_dispose((__bridge void *)self);
}
- (BOOL)isKindOfClass:(Class)c
{
    return mini_is_kind((__bridge void *)self, (__bridge void *)c);
}
- (BOOL)respondsToSelector:(SEL)s
{
    return mini_responds((__bridge void *)self, (const char *)(void *)s);
}
- (BOOL)isEqual:(id)o
{
    return self == o;
}
- (NSUInteger)hash
{
    return (NSUInteger)(__bridge void *)self;
}
- (NSString *)description
{
    return fake::ns(mini_class_name((__bridge void *)self.class));
}
- (id)copy
{
    return [(id<NSCopying>)self copyWithZone:nil];
}
- (id)mutableCopy
{
    return [(id<NSMutableCopying>)self mutableCopyWithZone:nil];
}
@end

// ---- strings -------------------------------------------------------------------------
static bool validUtf8(const std::string &s)
{
    for (size_t i = 0; i < s.size();) {
        const auto c = (unsigned char)s[i];
        const int n = c < 0x80           ? 1
            : (c >> 5) == 6 && c > 0xC1  ? 2
            : (c >> 4) == 14             ? 3
            : (c >> 3) == 30 && c < 0xF5 ? 4
                                         : 0;
        if (n == 0 || i + (size_t)n > s.size())
            return false;
        for (int k = 1; k < n; ++k)
            if (((unsigned char)s[i + (size_t)k] >> 6) != 2)
                return false;
        i += (size_t)n;
    }
    return true;
}
static std::u16string to16(const std::string &s)
{
    std::u16string o;
    for (size_t i = 0; i < s.size();) {
        const auto c = (unsigned char)s[i];
        const int n = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : 4;
        char32_t v = n == 1 ? c : c & (0xFF >> (n + 1));
        for (int k = 1; k < n; ++k)
            v = v << 6 | ((unsigned char)s[i + (size_t)k] & 0x3F);
        if (v < 0x10000)
            o += (char16_t)v;
        else {
            v -= 0x10000;
            o += (char16_t)(0xD800 + (v >> 10));
            o += (char16_t)(0xDC00 + (v & 0x3FF));
        }
        i += (size_t)n;
    }
    return o;
}
static std::string to8(const std::u16string &s)
{
    std::string o;
    for (size_t i = 0; i < s.size(); ++i) {
        char32_t v = s[i];
        if (v >= 0xD800 && v < 0xDC00 && i + 1 < s.size())
            v = 0x10000 + ((v - 0xD800) << 10) + (s[++i] - 0xDC00u);
        if (v < 0x80)
            o += (char)v;
        else if (v < 0x800) {
            o += (char)(0xC0 | v >> 6);
            o += (char)(0x80 | (v & 63));
        } else if (v < 0x10000) {
            o += (char)(0xE0 | v >> 12);
            o += (char)(0x80 | (v >> 6 & 63));
            o += (char)(0x80 | (v & 63));
        } else {
            o += (char)(0xF0 | v >> 18);
            o += (char)(0x80 | (v >> 12 & 63));
            o += (char)(0x80 | (v >> 6 & 63));
            o += (char)(0x80 | (v & 63));
        }
    }
    return o;
}
@interface FakeString : NSString {
@public
    std::string _s;
}
@end
// What @"…" is: laid out by the compiler, so no ivars of our own.
@interface FakeImmortalString : NSString
@end
struct ConstantLayout {
    void *isa;
    int flags;
    const char *data;
    long length;
};
static std::map<const void *, std::string> &constants()
{
    static auto *m = new std::map<const void *, std::string>;
    return *m;
}
@implementation NSString
+ (instancetype)alloc
{
    if (self == [NSString class])
        return (id)[FakeString alloc];
    return [super alloc];
}
- (instancetype)init
{
    return self;
}
- (instancetype)initWithBytes:(const void *)b length:(NSUInteger)n encoding:(NSStringEncoding)e
{
    std::string s((const char *)b, n);
    if (b == nullptr && n != 0)
        fail("NSString initWithBytes: null");
    // Nothing is in ASCII that is beyond it.
    if (e != NSUTF8StringEncoding
        && std::any_of(s.begin(), s.end(), [](char c) { return (c & 0x80) != 0; }))
        return nil;
    if (!validUtf8(s))
        return nil;
    ((FakeString *)self)->_s = s;
    return self;
}
- (NSUInteger)length
{
    return to16(self.UTF8String).size();
}
- (BOOL)isEqualToString:(NSString *)o
{
    return o != nil && std::strcmp(self.UTF8String, o.UTF8String) == 0;
}
- (BOOL)isEqual:(id)o
{
    return self == o
        || (o != nil && [o isKindOfClass:[NSString class]] && [self isEqualToString:o]);
}
- (NSUInteger)hash
{
    return std::hash<std::string>()(self.UTF8String);
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
- (NSString *)description
{
    return self;
}
@end
@implementation FakeString
- (const char *)UTF8String
{
    return _s.c_str();
}
@end
@implementation FakeImmortalString
- (const char *)UTF8String
{
    auto *c = (const ConstantLayout *)(__bridge const void *)self;
    if ((c->flags & 0x10) == 0)
        return c->data; // 0x7c8: bytes, 0x7d0: UTF-16
    auto &s = constants()[c];
    if (s.empty())
        s = to8(std::u16string((const char16_t *)(const void *)c->data, (size_t)c->length));
    return s.c_str();
}
@end
__asm__(".globl __CFConstantStringClassReference\n.set __CFConstantStringClassReference, "
        "OBJC_CLASS_$_FakeImmortalString\n");
extern "C" void *OBJC_CLASS_$_FakeImmortalString[];

// ---- collections ---------------------------------------------------------------------
@interface NSArray () {
@public
    std::vector<id> _v;
}
@end
@implementation NSArray
+ (instancetype)arrayWithObjects:(const id[])o count:(NSUInteger)n
{
    NSArray *a = [[self alloc] init];
    for (NSUInteger i = 0; i < n; ++i) {
        if (o[i] == nil)
            fail("nil in an array literal");
        a->_v.push_back(o[i]);
    }
    return a;
}
- (NSUInteger)count
{
    return _v.size();
}
- (id)objectAtIndexedSubscript:(NSUInteger)i
{
    return _v.at(i);
}
- (id)firstObject
{
    return _v.empty() ? nil : _v.front();
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState *)st
                                  objects:(id __unsafe_unretained[])b
                                    count:(NSUInteger)n
{
    NSUInteger k = 0;
    static unsigned long never = 0;
    st->mutationsPtr = &never;
    st->itemsPtr = b;
    while (k < n && st->state < _v.size())
        b[k++] = _v[st->state++];
    return k;
}
@end
@interface NSDictionary () {
@public
    std::vector<std::pair<id, id>> _v;
}
@end
@implementation NSDictionary
+ (instancetype)dictionaryWithObjects:(const id[])o
                              forKeys:(const id<NSCopying>[])k
                                count:(NSUInteger)n
{
    NSDictionary *d = [[self alloc] init];
    for (NSUInteger i = 0; i < n; ++i) {
        if (o[i] == nil || k[i] == nil) {
            fail("nil in a dictionary literal");
            continue;
        }
        d->_v.emplace_back(k[i], o[i]);
    }
    return d;
}
- (NSUInteger)count
{
    return _v.size();
}
- (id)objectForKey:(id)k
{
    for (auto &[a, b] : _v)
        if ([a isEqual:k])
            return b;
    return nil;
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end

// ---- attributed strings: attributes kept per UTF-16 unit ----
@interface NSAttributedString () {
@public
    std::u16string _t;
    std::vector<NSDictionary *> _a;
}
@end
@implementation NSAttributedString
- (instancetype)initWithString:(NSString *)s attributes:(NSDictionary *)a
{
    if (s == nil) {
        fail("NSAttributedString initWithString: nil");
        return self;
    }
    _t = to16(s.UTF8String);
    _a.assign(_t.size(), a);
    return self;
}
- (instancetype)initWithString:(NSString *)s
{
    return [self initWithString:s attributes:nil];
}
- (NSUInteger)length
{
    return _t.size();
}
- (NSString *)string
{
    return fake::ns(to8(_t));
}
- (id)copyWithZone:(NSZone *)z
{
    NSAttributedString *c = [[NSAttributedString alloc] init];
    c->_t = _t;
    c->_a = _a;
    return c;
}
+ (NSAttributedString *)attributedStringWithAttachment:(NSTextAttachment *)a
{
    return [[self alloc] initWithString:@"\uFFFC" attributes:@{NSAttachmentAttributeName : a}];
}
@end
@implementation NSMutableAttributedString
- (void)appendAttributedString:(NSAttributedString *)o
{
    if (o == nil) {
        fail("appendAttributedString: nil");
        return;
    }
    _t += o->_t;
    _a.insert(_a.end(), o->_a.begin(), o->_a.end());
}
@end

// ---- small Foundation ----
@interface NSError () {
@public
    std::string _text;
}
@end
@implementation NSError
- (NSString *)localizedDescription
{
    return fake::ns(_text);
}
@end
@implementation NSNumber
@end
@interface NSURL () {
@public
    std::string _u;
    bool _file;
}
@end
@implementation NSURL
+ (instancetype)URLWithString:(NSString *)s
{
    const std::string u = fake::str(s);
    if (s == nil || u.empty() || u.find(' ') != std::string::npos)
        return nil;
    NSURL *r = [[self alloc] init];
    r->_u = u;
    return r;
}
+ (NSURL *)fileURLWithPath:(NSString *)p
{
    if (p == nil)
        fail("fileURLWithPath: nil");
    NSURL *r = [[self alloc] init];
    r->_u = "file://" + fake::str(p);
    r->_file = true;
    return r;
}
- (NSString *)absoluteString
{
    return fake::ns(_u);
}
@end
@implementation NSFileManager
+ (NSFileManager *)defaultManager
{
    static NSFileManager *m = [[self alloc] init];
    return m;
}
- (BOOL)fileExistsAtPath:(NSString *)p
{
    tell("exists " + fake::str(p));
    return fake::world().files.contains(fake::str(p));
}
@end
@implementation NSBundle
+ (NSBundle *)mainBundle
{
    static NSBundle *b = [[self alloc] init];
    return b;
}
- (NSString *)bundleIdentifier
{
    return fake::world().bundleIdentifier.empty() ? nil : fake::ns(fake::world().bundleIdentifier);
}
- (id)objectForInfoDictionaryKey:(NSString *)k
{
    if (fake::world().bundleNumbers.contains(fake::str(k)))
        return [[NSNumber alloc] init];
    auto &i = fake::world().bundleTexts;
    auto it = i.find(fake::str(k));
    return it == i.end() ? nil : fake::ns(it->second);
}
@end
@implementation NSProcessInfo
+ (NSProcessInfo *)processInfo
{
    static NSProcessInfo *p = [[self alloc] init];
    return p;
}
- (NSString *)operatingSystemVersionString
{
    return fake::ns(fake::world().osVersion);
}
@end
@interface NSNotification () {
@public
    NSString *_n;
    id _o;
}
@end
@implementation NSNotification
+ (instancetype)notificationWithName:(NSString *)n object:(id)o
{
    NSNotification *x = [[self alloc] init];
    x->_n = n;
    x->_o = o;
    return x;
}
- (NSNotificationName)name
{
    return _n;
}
- (id)object
{
    return _o;
}
@end
// Observers are not held, as on a Mac: one that went without a word is an objection.
namespace {
struct Listener {
    void *center, *observer;
    SEL selector;
    std::string name;
    void *object;
};
std::vector<Listener> gListeners;
} // namespace
extern "C" void objc_msgSend_for_tests(void) __asm__("objc_msgSend");
@implementation NSNotificationCenter
+ (NSNotificationCenter *)defaultCenter
{
    static NSNotificationCenter *c = [[self alloc] init];
    return c;
}
- (void)addObserver:(id)o selector:(SEL)s name:(NSNotificationName)n object:(id)obj
{
    if (![o respondsToSelector:s])
        fail("addObserver: of somebody without that method");
    gListeners.push_back(
        {(__bridge void *)self, (__bridge void *)o, s, fake::str(n), (__bridge void *)obj});
}
- (void)removeObserver:(id)o
{
    std::erase_if(gListeners, [&](const Listener &l) {
        return l.center == (__bridge void *)self && l.observer == (__bridge void *)o;
    });
}
- (void)postNotificationName:(NSNotificationName)n object:(id)obj
{
    const auto copy = gListeners;
    NSNotification *note = [NSNotification notificationWithName:n object:obj];
    for (const auto &l : copy)
        if (l.center == (__bridge void *)self && l.name == fake::str(n)
            && (l.object == nullptr || l.object == (__bridge void *)obj))
            ((void (*)(void *, SEL, void *))(void *)objc_msgSend_for_tests)(
                l.observer, l.selector, (__bridge void *)note);
}
@end

// ---- key-value observing, which insists on balance ----
namespace {
struct Watch {
    void *object, *observer;
    std::string key;
    void *context;
};
std::vector<Watch> gWatches;
} // namespace
@implementation NSObject (NSKeyValueObserving)
- (void)addObserver:(NSObject *)o
         forKeyPath:(NSString *)k
            options:(NSKeyValueObservingOptions)opt
            context:(void *)c
{
    gWatches.push_back({(__bridge void *)self, (__bridge void *)o, fake::str(k), c});
}
- (void)removeObserver:(NSObject *)o forKeyPath:(NSString *)k context:(void *)c
{
    for (auto it = gWatches.begin(); it != gWatches.end(); ++it)
        if (it->object == (__bridge void *)self && it->observer == (__bridge void *)o
            && it->key == fake::str(k) && it->context == c) {
            gWatches.erase(it);
            return;
        }
    fail("removeObserver: of one that does not observe");
}
- (void)observeValueForKeyPath:(NSString *)k
                      ofObject:(id)o
                        change:(NSDictionary *)ch
                       context:(void *)c
{
    tell("super observes " + fake::str(k));
}
@end
static void onDispose(void *o)
{
    for (auto &w : gWatches)
        if (w.object == o || w.observer == o)
            fail("an observed or observing object has gone while its observation of " + w.key
                + " lasts");
    for (auto &l : gListeners)
        if (l.observer == o)
            fail("an observer of " + l.name + " has gone without a word");
}

// ---- appearance, colour, font ----
@interface NSAppearance () {
@public
    bool _dark;
}
@end
static NSAppearance *gDrawing;
static NSAppearance *appearanceNow(bool dark)
{
    NSAppearance *a = [[NSAppearance alloc] init];
    a->_dark = dark;
    return a;
}
@implementation NSAppearance
- (NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray *)names
{
    // What is asked for matters: a dark one can only be answered when dark aqua is among the names.
    NSString *best = nil;
    for (NSString *n in names) {
        if ([n isEqualToString:NSAppearanceNameDarkAqua] && _dark)
            return n;
        if ([n isEqualToString:NSAppearanceNameAqua])
            best = n;
    }
    return best;
}
- (void)performAsCurrentDrawingAppearance:(void(NS_NOESCAPE ^)(void))b
{
    NSAppearance *old = gDrawing;
    gDrawing = self;
    b();
    gDrawing = old;
}
@end
@implementation NSColorSpace
+ (NSColorSpace *)sRGBColorSpace
{
    static NSColorSpace *s = [[self alloc] init];
    return s;
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
static NSColor *gFill;
static double component(bool dark, int i)
{
    return (dark ? 0.5 : 0.25) + 0.125 * i;
}
@implementation NSColor
+ (NSColor *)colorWithRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a
{
    NSColor *c = [[self alloc] init];
    const double v[] = {r, g, b, a};
    std::copy(v, v + 4, c->_c);
    c->_what = "rgb " + number(r) + " " + number(g) + " " + number(b) + " " + number(a);
    return c;
}
+ (NSColor *)colorWithSRGBRed:(CGFloat)r green:(CGFloat)g blue:(CGFloat)b alpha:(CGFloat)a
{
    NSColor *c = [self colorWithRed:r green:g blue:b alpha:a];
    c->_what = "s" + c->_what;
    return c;
}
+ (NSColor *)colorWithName:(NSString *)n dynamicProvider:(NSColor * (^)(NSAppearance *))p
{
    tell("dynamic color");
    NSColor *c = [[self alloc] init];
    c->_provider = p;
    return c;
}
static NSColor *named(const char *name)
{
    NSColor *c = [[NSColor alloc] init];
    c->_what = name;
    return c;
}
+ (NSColor *)labelColor
{
    return named("label");
}
+ (NSColor *)secondaryLabelColor
{
    return named("secondaryLabel");
}
+ (NSColor *)separatorColor
{
    return named("separator");
}
+ (NSColor *)windowBackgroundColor
{
    return named("windowBackground");
}
+ (NSColor *)controlBackgroundColor
{
    return named("controlBackground");
}
+ (NSColor *)controlAccentColor
{
    return named("controlAccent");
}
+ (NSColor *)systemRedColor
{
    return named("systemRed");
}
+ (NSColor *)systemOrangeColor
{
    return named("systemOrange");
}
+ (NSColor *)systemGreenColor
{
    return named("systemGreen");
}
+ (NSColor *)systemBlueColor
{
    return named("systemBlue");
}
+ (NSColor *)systemPurpleColor
{
    return named("systemPurple");
}
+ (NSColor *)whiteColor
{
    return named("white");
}
+ (NSColor *)clearColor
{
    return named("clear");
}
- (NSColor *)colorUsingColorSpace:(NSColorSpace *)s
{
    if (fake::world().colorsHaveNoSrgb)
        return nil;
    if (gDrawing == nil) {
        fail("a colour resolved outside of any appearance");
        return nil;
    }
    tell("resolve " + (_provider ? std::string("dynamic") : _what));
    NSColor *c = [[NSColor alloc] init];
    if (_provider) {
        NSColor *p = _provider(gDrawing);
        std::copy(p->_c, p->_c + 4, c->_c);
    } else
        for (int i = 0; i < 4; ++i)
            c->_c[i] = component(gDrawing->_dark, i);
    c->_resolved = true;
    return c;
}
- (CGFloat)one:(int)i
{
    if (!_resolved)
        fail("a component of a colour in no known space");
    return _c[i];
}
- (CGFloat)redComponent
{
    return [self one:0];
}
- (CGFloat)greenComponent
{
    return [self one:1];
}
- (CGFloat)blueComponent
{
    return [self one:2];
}
- (CGFloat)alphaComponent
{
    return [self one:3];
}
- (void)set
{
    gFill = self;
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end
@interface NSFont () {
@public
    double _size, _weight;
    bool _mono;
}
@end
const NSFontWeight NSFontWeightRegular = 0, NSFontWeightMedium = 0.23, NSFontWeightSemibold = 0.3,
                   NSFontWeightBold = 0.4;
@implementation NSFont
+ (NSFont *)monospacedDigitSystemFontOfSize:(CGFloat)s weight:(NSFontWeight)w
{
    NSFont *f = [[self alloc] init];
    f->_size = s;
    f->_weight = w;
    f->_mono = true;
    return f;
}
- (CGFloat)pointSize
{
    return _size;
}
- (CGFloat)capHeight
{
    return _size * 0.75;
}
@end

// ---- images, drawing ----
@interface NSImageSymbolConfiguration () {
@public
    double _points, _weight;
}
@end
@implementation NSImageSymbolConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)s weight:(NSFontWeight)w
{
    NSImageSymbolConfiguration *c = [[self alloc] init];
    c->_points = s;
    c->_weight = w;
    return c;
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
static NSImage *gDrawn;
static NSRect gDrawnIn;
@interface NSBitmapImageRep () {
@public
    std::vector<unsigned char> _bytes;
    long _w, _h, _row;
    bool _covered;
}
@end
@interface NSGraphicsContext () {
@public
    NSBitmapImageRep *_bitmap;
}
@end
static NSGraphicsContext *gContext;
static std::vector<NSGraphicsContext *> gSaved;
@implementation NSImage
@synthesize accessibilityDescription = _ad;
+ (instancetype)imageWithSystemSymbolName:(NSString *)n accessibilityDescription:(NSString *)d
{
    needMain("imageWithSystemSymbolName");
    if (n == nil || fake::world().unknownSymbols.contains(fake::str(n)))
        return nil;
    NSImage *i = [[self alloc] init];
    i->_symbol = fake::str(n);
    i->_sz = NSMakeSize(16, 16);
    i.accessibilityDescription = d;
    return i;
}
+ (NSImage *)imageWithSize:(NSSize)s flipped:(BOOL)f drawingHandler:(BOOL (^)(NSRect))h
{
    NSImage *i = [[self alloc] init];
    i->_sz = s;
    i->_flipped = f;
    i->_handler = h;
    return i;
}
- (NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)c
{
    if (fake::world().rigidSymbols.contains(_symbol))
        return nil;
    NSImage *i = [[NSImage alloc] init];
    i->_symbol = _symbol;
    i->_points = c->_points;
    i->_weight = c->_weight;
    i->_sz = fake::symbolSizeAt(c->_points);
    i.accessibilityDescription = self.accessibilityDescription;
    return i;
}
- (NSSize)size
{
    return _sz;
}
- (void)setSize:(NSSize)s
{
    _sz = s;
}
- (BOOL)isTemplate
{
    return _template;
}
- (void)setTemplate:(BOOL)t
{
    _template = t;
}
- (void)drawInRect:(NSRect)r
{
    gDrawn = self;
    gDrawnIn = r;
    if (gContext == nil)
        return;
    NSBitmapImageRep *b = gContext->_bitmap;
    // The picture of a symbol: its upper left quarter, so that which way is up shows.
    const NSSize s = b.size;
    for (long y = 0; y < b->_h; ++y)
        for (long x = 0; x < b->_w; ++x)
            if (x * 2 < b->_w && y * 2 < b->_h)
                b->_bytes[size_t(y * b->_row + x * 4 + 3)] = 255;
    if (r.origin.x != 0 || r.origin.y != 0 || r.size.width != s.width || r.size.height != s.height)
        fail("a symbol not drawn over the whole bitmap: " + text(r) + " of " + text(s));
}
@end
@implementation NSImageRep
@end
@implementation NSBitmapImageRep
- (instancetype)initWithBitmapDataPlanes:(unsigned char **)p
                              pixelsWide:(NSInteger)w
                              pixelsHigh:(NSInteger)h
                           bitsPerSample:(NSInteger)b
                         samplesPerPixel:(NSInteger)n
                                hasAlpha:(BOOL)a
                                isPlanar:(BOOL)pl
                          colorSpaceName:(NSString *)c
                             bytesPerRow:(NSInteger)row
                            bitsPerPixel:(NSInteger)bits
{
    tell("bitmap " + number(double(w)) + "x" + number(double(h)) + " " + fake::str(c));
    if (p != nullptr || b != 8 || n != 4 || !a || pl || bits != 0 || row != 0) {
        fail("a bitmap of a kind that the fakes do not know");
        return nil;
    }
    _w = w;
    _h = h;
    _row = (w * 4 + 63) / 64 * 64; // Rows are longer than their pixels, as they may be.
    _bytes.assign(size_t(_row * h), 0);
    self.size = NSMakeSize(double(w), double(h));
    return self;
}
- (unsigned char *)bitmapData
{
    return _bytes.data();
}
- (NSInteger)bytesPerRow
{
    return _row;
}
@end
@implementation NSGraphicsContext
+ (NSGraphicsContext *)graphicsContextWithBitmapImageRep:(NSBitmapImageRep *)b
{
    NSGraphicsContext *c = [[self alloc] init];
    c->_bitmap = b;
    return c;
}
+ (NSGraphicsContext *)currentContext
{
    return gContext;
}
+ (void)setCurrentContext:(NSGraphicsContext *)c
{
    gContext = c;
}
+ (void)saveGraphicsState
{
    gSaved.push_back(gContext);
}
+ (void)restoreGraphicsState
{
    if (gSaved.empty()) {
        fail("restoreGraphicsState without a saved one");
        return;
    }
    gContext = gSaved.back();
    gSaved.pop_back();
}
@end
extern "C" void NSRectFillUsingOperation(NSRect r, NSCompositingOperation o)
{
    if (gContext == nil || gFill == nil) {
        fail("a fill of nothing");
        return;
    }
    NSBitmapImageRep *b = gContext->_bitmap;
    for (size_t i = 0; i < b->_bytes.size(); i += 4) {
        const double under = b->_bytes[i + 3] / 255.0;
        const double a = gFill->_c[3] * (o == NSCompositingOperationSourceIn ? under : 1);
        for (int k = 0; k < 3; ++k)
            b->_bytes[i + size_t(k)] = (unsigned char)(gFill->_c[k] * a * 255 + 0.5);
        b->_bytes[i + 3] = (unsigned char)(a * 255 + 0.5);
    }
}
@implementation NSTextAttachment
@end
@implementation CALayer
@end

// ---- views ----
@implementation NSResponder
@end
@interface NSView () {
@public
    std::vector<NSView *> _subs;
    __unsafe_unretained NSView *_super;
    __unsafe_unretained NSWindow *_win;
}
@end
@implementation NSView
@synthesize accessibilityLabel = _al, appearance = _ap, wantsLayer = _wl, layer = _ly;
- (instancetype)initWithFrame:(NSRect)f
{
    self.frame = f;
    self.bounds = NSMakeRect(0, 0, f.size.width, f.size.height);
    return self;
}
- (NSAppearance *)effectiveAppearance
{
    return appearanceNow(fake::world().dark);
}
- (NSView *)superview
{
    return _super;
}
- (NSWindow *)window
{
    return _super ? _super.window : _win;
}
- (NSArray *)subviews
{
    return [NSArray arrayWithObjects:_subs.data() count:_subs.size()];
}
- (void)setWantsLayer:(BOOL)w
{
    _wl = w;
    if (w && _ly == nil)
        _ly = [[CALayer alloc] init];
}
- (void)addSubview:(NSView *)v
{
    needMain("addSubview");
    if (v == nil) {
        fail("addSubview: nil");
        return;
    }
    [v removeFromSuperview];
    _subs.push_back(v);
    v->_super = self;
}
- (void)removeFromSuperview
{
    if (NSView *s = _super) {
        _super = nil;
        std::erase(s->_subs, self);
    }
}
- (NSRect)convertRect:(NSRect)r toView:(NSView *)v
{
    return NSMakeRect(r.origin.x + self.frame.origin.x, r.origin.y + self.frame.origin.y,
        r.size.width, r.size.height);
}
- (void)dealloc
{
    for (NSView *v : _subs)
        v->_super = nil;
}
@end
@implementation NSControl {
@public
    NSEventMask _mask;
}
- (NSInteger)sendActionOn:(NSEventMask)m
{
    tell("sendActionOn " + number(double(m)));
    _mask = m;
    return 0;
}
@end
@implementation NSButton
- (void)setImage:(NSImage *)i
{
    tell(i ? "button.image" : "button.image nil");
    _image = i;
}
- (void)setImagePosition:(NSCellImagePosition)p
{
    tell("button.imagePosition " + number(double(p)));
    _imagePosition = p;
}
- (void)setAttributedTitle:(NSAttributedString *)t
{
    if (t == nil)
        fail("attributedTitle nil");
    tell("button.attributedTitle");
    _attributedTitle = t;
}
@end
@implementation NSStatusBarButton
@end
@implementation NSViewController
- (instancetype)initWithNibName:(NSString *)n bundle:(NSBundle *)b
{
    if (n != nil)
        fail("a view controller with a nib");
    return self;
}
@end
namespace {
struct Monitor {
    NSEventMask mask;
    void (^handler)(NSEvent *);
    id token;
};
std::vector<Monitor> gMonitors;
} // namespace
@interface NSEvent () {
@public
    NSEventType _t;
}
@end
@implementation NSEvent
- (NSEventType)type
{
    return _t;
}
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)m handler:(void (^)(NSEvent *))h
{
    id token = [[NSObject alloc] init];
    gMonitors.push_back({m, h, token});
    return token;
}
+ (void)removeMonitor:(id)t
{
    if (std::erase_if(gMonitors, [&](const Monitor &m) { return m.token == t; }) != 1)
        fail("removeMonitor: of one that does not monitor");
}
@end

// ---- windows ----
@implementation NSScreen
- (NSRect)visibleFrame
{
    return NSMakeRect(0, 0, 1440, 870);
}
@end
static NSPanel *__weak gPanel;
static NSWindow *__weak gKey;
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
@implementation NSWindow
- (instancetype)initWithContentRect:(NSRect)r
                          styleMask:(NSWindowStyleMask)s
                            backing:(NSBackingStoreType)b
                              defer:(BOOL)d
{
    needMain("a window");
    _fr = r;
    _style = s;
    _name = "window";
    self.releasedWhenClosed = YES; // As the system has it for windows made in code.
    return self;
}
- (void)dealloc
{
    if (_content)
        _content->_win = nil;
}
- (NSRect)frame
{
    return _fr;
}
- (NSView *)contentView
{
    return _content;
}
- (void)setContentView:(NSView *)v
{
    if (_content)
        _content->_win = nil;
    _content = v;
    v->_win = self;
}
- (NSScreen *)screen
{
    static NSScreen *s = [[NSScreen alloc] init];
    return s;
}
- (BOOL)canBecomeKeyWindow
{
    return (_style & NSWindowStyleMaskTitled) != 0;
}
- (void)makeKeyWindow
{
    tell(_name + ".makeKeyWindow");
    if (!self.canBecomeKeyWindow && _name != "popover window") {
        tell(_name + " refuses to be key");
        return;
    }
    if (!_visible)
        tell(_name + " is not there");
    gKey = self;
}
- (BOOL)makeFirstResponder:(NSResponder *)r
{
    tell(_name + ".makeFirstResponder");
    _first = r;
    return YES;
}
- (void)orderFrontRegardless
{
    tell(_name + ".orderFrontRegardless");
    _visible = true;
}
- (void)orderOut:(id)s
{
    tell(_name + ".orderOut" + (s ? " with a sender" : ""));
    _visible = false;
    if (gKey == self) {
        gKey = nil;
        id<NSWindowDelegate> d = self.delegate;
        if ([(NSObject *)d respondsToSelector:@selector(windowDidResignKey:)])
            [d windowDidResignKey:[NSNotification notificationWithName:@"resign" object:self]];
    }
}
- (void)close
{
    tell(_name + ".close");
    _visible = false;
}
- (void)setContentSize:(NSSize)s
{
    tell(_name + ".contentSize " + text(s));
    _fr.size = s;
}
- (void)setFrameOrigin:(NSPoint)p
{
    tell(_name + ".frameOrigin " + number(p.x) + "," + number(p.y));
    _fr.origin = p;
}
- (NSRect)convertRectToScreen:(NSRect)r
{
    return NSMakeRect(
        r.origin.x + _fr.origin.x, r.origin.y + _fr.origin.y, r.size.width, r.size.height);
}
@end
@implementation NSPanel
- (instancetype)initWithContentRect:(NSRect)r
                          styleMask:(NSWindowStyleMask)s
                            backing:(NSBackingStoreType)b
                              defer:(BOOL)d
{
    self = [super initWithContentRect:r styleMask:s backing:b defer:d];
    _name = "panel";
    tell("panel style " + number(double(s)));
    gPanel = self;
    return self;
}
@end

// ---- status bar ----
static NSStatusItem *__weak gItem;
static NSPopover *__weak gPopover;
@interface NSStatusItem () {
@public
    NSStatusBarButton *_b;
    NSWindow *_barWindow;
}
@end
@implementation NSStatusItem
- (NSStatusBarButton *)button
{
    return _b;
}
@end
@implementation NSStatusBar {
@public
    std::vector<NSStatusItem *> _items;
}
+ (NSStatusBar *)systemStatusBar
{
    static NSStatusBar *b = [[self alloc] init];
    return b;
}
- (NSStatusItem *)statusItemWithLength:(CGFloat)l
{
    needMain("statusItemWithLength");
    tell("statusItemWithLength " + number(l));
    NSStatusItem *i = [[NSStatusItem alloc] init];
    if (fake::world().statusItemHasButton) {
        i->_b = [[NSStatusBarButton alloc] initWithFrame:NSMakeRect(2, 1, 60, 22)];
        i->_barWindow = [[NSWindow alloc] initWithContentRect:NSMakeRect(1400, 878, 60, 22)
                                                    styleMask:0
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO];
        i->_b->_win = i->_barWindow;
    }
    _items.push_back(i); // It stays there until it is removed.
    gItem = i;
    return i;
}
- (void)removeStatusItem:(NSStatusItem *)i
{
    if (std::erase(_items, i) != 1)
        fail("removeStatusItem: of one that is not in the bar");
}
@end

// ---- popover ----
@interface NSPopover () {
@public
    bool _sh;
    NSWindow *_window;
}
@end
@implementation NSPopover
@synthesize contentSize = _cs, behavior = _bh, animates = _an, contentViewController = _vc;
- (instancetype)init
{
    gPopover = self;
    return self;
}
- (BOOL)isShown
{
    return _sh;
}
- (void)setContentSize:(NSSize)s
{
    tell("popover.contentSize " + text(s));
    _cs = s;
}
- (void)setBehavior:(NSPopoverBehavior)b
{
    tell("popover.behavior " + number(double(b)));
    _bh = b;
}
- (void)setAnimates:(BOOL)a
{
    tell(a ? "popover.animates" : "popover.animates not");
    _an = a;
}
- (void)setContentViewController:(NSViewController *)c
{
    tell("popover.contentViewController");
    _vc = c;
    _cs = c.view.frame.size;
}
- (void)showRelativeToRect:(NSRect)r ofView:(NSView *)v preferredEdge:(NSRectEdge)e
{
    needMain("showRelativeToRect");
    NSView *content = self.contentViewController.view;
    if (v == nil || content == nil) {
        fail("a popover shown without a view");
        return;
    }
    if (v.window == nil)
        fail("a popover shown beside a view without a window");
    tell("popover.show " + text(r) + " edge " + number(double(e))
        + (v == gItem.button ? " of the button" : " of another view"));
    _sh = true;
    _window = [[NSWindow alloc] initWithContentRect:content.frame
                                          styleMask:0
                                            backing:NSBackingStoreBuffered
                                              defer:NO];
    _window->_name = "popover window";
    _window->_visible = true;
    _window.contentView = content;
}
- (void)closed
{
    _window = nil;
    id<NSPopoverDelegate> d = self.delegate;
    if ([(NSObject *)d respondsToSelector:@selector(popoverDidClose:)])
        [d popoverDidClose:[NSNotification notificationWithName:@"NSPopoverDidClose" object:self]];
}
- (void)close
{
    tell("popover.close");
    if (!_sh)
        return;
    _sh = false;
    NSPopover *me = self;
    if (fake::world().closesSlowly)
        fake::world().mainQueue.push_back([me] { [me closed]; }); // After the animation.
    else
        [self closed];
}
- (void)performClose:(id)s
{
    tell("popover.performClose");
    [self close];
}
@end

// ---- application, workspace, pasteboard, login item ----
@interface NSApplication () {
@public
    NSArray *_w;
}
@end
@implementation NSApplication
+ (NSApplication *)sharedApplication
{
    static NSApplication *a = [[self alloc] init];
    return a;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)p
{
    tell("activationPolicy " + number(double(p)));
    return YES;
}
- (NSAppearance *)effectiveAppearance
{
    return appearanceNow(fake::world().dark);
}
- (NSArray *)windows
{
    if (_w == nil) {
        NSWindow *a = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                                  styleMask:1
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO];
        NSWindow *b = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                                  styleMask:1
                                                    backing:NSBackingStoreBuffered
                                                      defer:NO];
        a->_name = "first";
        b->_name = "second";
        _w = @[ a, b ];
    }
    return _w;
}
- (void)terminate:(id)s
{
    tell(s ? "terminate with a sender" : "terminate");
}
@end
@implementation NSWorkspace
+ (NSWorkspace *)sharedWorkspace
{
    static NSWorkspace *w = [[self alloc] init];
    return w;
}
- (NSNotificationCenter *)notificationCenter
{
    static NSNotificationCenter *c = [[NSNotificationCenter alloc] init];
    return c;
}
- (BOOL)accessibilityDisplayShouldReduceMotion
{
    return fake::world().reduceMotion;
}
- (BOOL)openURL:(NSURL *)u
{
    if (u == nil) {
        fail("openURL: nil");
        return NO;
    }
    fake::world().opened.push_back((u->_file ? "file " : "address ") + fake::str(u.absoluteString));
    return YES;
}
@end
@implementation NSPasteboard
+ (NSPasteboard *)generalPasteboard
{
    static NSPasteboard *p = [[self alloc] init];
    return p;
}
- (NSInteger)clearContents
{
    tell("clearContents");
    fake::world().pasteboard.clear();
    return 1;
}
- (BOOL)setString:(NSString *)s forType:(NSString *)t
{
    tell("setString " + fake::str(t));
    if (!s) {
        fail("setString: nil");
        return NO;
    }
    fake::world().pasteboard += fake::str(s);
    return YES;
}
@end
@implementation SMAppService
+ (SMAppService *)mainAppService
{
    static SMAppService *s = [[self alloc] init];
    return s;
}
- (SMAppServiceStatus)status
{
    return fake::world().loginStatus;
}
- (BOOL)become:(SMAppServiceStatus)s error:(NSError **)e
{
    auto &w = fake::world();
    if (w.loginErrorIsSilent)
        return NO;
    // What stands behind the pointer after a success means nothing.
    NSError *x = [[NSError alloc] init];
    x->_text = w.loginError.empty() ? "not to be read" : w.loginError;
    if (e)
        *e = x;
    if (!w.loginError.empty())
        return NO;
    w.loginStatus = s;
    return YES;
}
- (BOOL)registerAndReturnError:(NSError **)e
{
    tell("register");
    return [self become:fake::world().loginStatusAfterRegistering error:e];
}
- (BOOL)unregisterAndReturnError:(NSError **)e
{
    tell("unregister");
    return [self become:SMAppServiceStatusNotRegistered error:e];
}
+ (void)openSystemSettingsLoginItems
{
    ++fake::world().loginSettingsOpened;
}
@end

// ---- notifications ----
// Handlers come on a queue of the system's own.
static void elsewhere(void (^b)(void))
{
    fake::world().onMain = false;
    b();
    fake::world().onMain = true;
}
@implementation UNNotificationSound
+ (UNNotificationSound *)defaultSound
{
    static UNNotificationSound *s = [[self alloc] init];
    return s;
}
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end
@implementation UNNotificationContent
- (id)copyWithZone:(NSZone *)z
{
    return self;
}
@end
@implementation UNMutableNotificationContent
@synthesize title = _mt, body = _mb, sound = _ms;
@end
@interface UNNotificationRequest () {
@public
    NSString *_i;
    UNNotificationContent *_c;
    bool _triggered;
}
@end
@implementation UNNotificationRequest
+ (instancetype)requestWithIdentifier:(NSString *)i
                              content:(UNNotificationContent *)c
                              trigger:(UNNotificationTrigger *)t
{
    UNNotificationRequest *r = (UNNotificationRequest *)[self alloc];
    r->_i = i;
    r->_c = c;
    r->_triggered = t != nil;
    return r;
}
- (NSString *)identifier
{
    return _i;
}
- (UNNotificationContent *)content
{
    return _c;
}
@end
@implementation UNNotification {
@public
    UNNotificationRequest *_rq;
}
- (UNNotificationRequest *)request
{
    return _rq;
}
@end
@implementation UNNotificationResponse {
@public
    UNNotification *_n;
    NSString *_act;
}
- (UNNotification *)notification
{
    return _n;
}
- (NSString *)actionIdentifier
{
    return _act;
}
@end
static UNUserNotificationCenter *theCenter()
{
    static UNUserNotificationCenter *c
        = (UNUserNotificationCenter *)[UNUserNotificationCenter alloc];
    return c;
}
@implementation UNUserNotificationCenter
+ (UNUserNotificationCenter *)currentNotificationCenter
{
    if (fake::world().bundleIdentifier.empty())
        fail("the notification center of a process without a bundle");
    return theCenter();
}
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)o
                      completionHandler:(void (^)(BOOL, NSError *))h
{
    ++fake::world().authorizationRequests;
    fake::world().authorizationOptions = o;
    if (h == nil)
        fail("requestAuthorization without a handler");
    else
        elsewhere(^{ h(NO, nil); });
}
- (void)addNotificationRequest:(UNNotificationRequest *)r
         withCompletionHandler:(void (^)(NSError *))h
{
    fake::world().posted.push_back(
        {fake::str(r.identifier), fake::str(r.content.title), fake::str(r.content.body),
            r.content.sound == UNNotificationSound.defaultSound ? "default"
                : r.content.sound                               ? "other"
                                                                : "",
            r->_triggered ? "later" : "", h != nil});
}
@end
NSString *const UNNotificationDefaultActionIdentifier = @"the default action";
NSString *const UNNotificationDismissActionIdentifier = @"the dismiss action";
const NSAppearanceName NSAppearanceNameAqua = @"aqua", NSAppearanceNameDarkAqua = @"dark aqua";
const NSAttributedStringKey NSFontAttributeName = @"font",
                            NSForegroundColorAttributeName = @"color",
                            NSAttachmentAttributeName = @"attachment";
const NSPasteboardType NSPasteboardTypeString = @"string";
const NSColorSpaceName NSCalibratedRGBColorSpace = @"calibrated rgb";
const NSNotificationName NSSystemColorsDidChangeNotification = @"system colors",
                         NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
    = @"display options",
                         NSApplicationDidFinishLaunchingNotification = @"did finish launching";

// ---- C functions ----
@interface FakeImmortalQueue : NSObject
@end
@implementation FakeImmortalQueue
@end
@interface FakeLog : NSObject {
@public
    std::string _subsystem, _category;
}
@end
@implementation FakeLog
@end
extern "C" {
extern void *OBJC_CLASS_$_FakeImmortalQueue[];
struct dispatch_queue_s {
    void *isa;
} _dispatch_main_q = {OBJC_CLASS_$_FakeImmortalQueue};
void dispatch_async(dispatch_queue_t q, dispatch_block_t b)
{
    dispatch_block_t c = b;
    fake::world().mainQueue.push_back([c] { c(); });
}
// The name with which ARC is told that it owns what it gets.
os_log_t os_log_create(const char *subsystem, const char *category)
{
    if (!subsystem || !category)
        fail("os_log_create without a name");
    FakeLog *l = [[FakeLog alloc] init];
    l->_subsystem = subsystem;
    l->_category = category;
    return (os_log_t)l;
}
bool os_log_type_enabled(os_log_t, os_log_type_t)
{
    return true;
}
void _os_log_impl(
    void *, os_log_t log, os_log_type_t type, const char *format, uint8_t *buffer, uint32_t size)
{
    fake::LogLine line;
    line.type = type;
    line.format = format;
    line.subsystem = ((FakeLog *)log)->_subsystem;
    line.category = ((FakeLog *)log)->_category;
    // Two bytes of head, then each argument: a byte of flags, one of size, the value; of a text its
    // address.
    if (size == 2 + 2 + 8 && buffer[3] == 8) {
        const char *t;
        std::memcpy(&t, buffer + 4, sizeof t);
        line.text = t;
    }
    fake::world().log.push_back(line);
}
}

namespace fake {
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
__attribute__((constructor(200))) static void start()
{
    mini_immortal(OBJC_CLASS_$_FakeImmortalString);
    mini_immortal(OBJC_CLASS_$_FakeImmortalQueue);
    mini_on_dispose = onDispose;
}
void reset()
{
    delete gWorld;
    gWorld = nullptr;
    gWatches.clear();
    gListeners.clear();
    gMonitors.clear();
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
int told(const std::string &line)
{
    const auto &j = world().journal;
    const auto it = std::find(j.begin(), j.end(), line);
    return it == j.end() ? -1 : int(it - j.begin());
}
int timesTold(const std::string &line)
{
    return int(std::count(world().journal.begin(), world().journal.end(), line));
}
NSStatusItem *statusItem()
{
    return gItem;
}
NSPopover *popover()
{
    return gPopover;
}
NSPanel *panel()
{
    return gPanel;
}
int statusItemsInBar()
{
    return int(NSStatusBar.systemStatusBar->_items.size());
}
long observers()
{
    return long(gWatches.size() + gListeners.size() + gMonitors.size());
}
id keyObserver()
{
    return gWatches.empty() ? nil : (__bridge id)gWatches.front().observer;
}
id notificationDelegate()
{
    return theCenter().delegate;
}
NSSize symbolSizeAt(double points)
{
    return NSMakeSize(points + 1, points + 2);
}
void setDark(bool dark)
{
    world().dark = dark;
    const auto copy = gWatches;
    for (const auto &w : copy)
        if (w.key == "effectiveAppearance"
            && w.object == (__bridge void *)NSApplication.sharedApplication)
            [(__bridge NSObject *)w.observer observeValueForKeyPath:ns(w.key)
                                                           ofObject:(__bridge id)w.object
                                                             change:nil
                                                            context:w.context];
}
void systemColorsChanged()
{
    [NSNotificationCenter.defaultCenter postNotificationName:NSSystemColorsDidChangeNotification
                                                      object:nil];
}
void displayOptionsChanged()
{
    [NSWorkspace.sharedWorkspace.notificationCenter
        postNotificationName:NSWorkspaceAccessibilityDisplayOptionsDidChangeNotification
                      object:nil];
}
void finishLaunching()
{
    [NSNotificationCenter.defaultCenter
        postNotificationName:NSApplicationDidFinishLaunchingNotification
                      object:NSApplication.sharedApplication];
}
static void press(NSEventType type)
{
    NSPopover *p = gPopover;
    if (p.isShown && p.behavior == NSPopoverBehaviorTransient) {
        [p close];
        pump();
    }
}
static void pressOutside(NSEventType type)
{
    press(type);
    const auto copy = gMonitors;
    NSEvent *e = [[NSEvent alloc] init];
    e->_t = type;
    for (const auto &m : copy)
        if (m.mask >> type & 1)
            m.handler(e);
}
void clickStatusItem(bool right)
{
    press(right ? NSEventTypeRightMouseDown : NSEventTypeLeftMouseDown);
    NSStatusBarButton *b = gItem.button;
    if (b == nil
        || (((NSControl *)b)->_mask >> (right ? NSEventTypeRightMouseUp : NSEventTypeLeftMouseUp)
               & 1)
            == 0)
        return;
    id target = b.target;
    const SEL action = b.action;
    if (target != nil && action != nullptr)
        ((void (*)(void *, SEL, void *))(void *)objc_msgSend_for_tests)(
            (__bridge void *)target, action, (__bridge void *)b);
}
void clickOutside()
{
    pressOutside(NSEventTypeLeftMouseDown);
}
void chooseNotification(const std::string &identifier, bool dismiss)
{
    UNNotificationResponse *r = [[UNNotificationResponse alloc] init];
    r->_n = [[UNNotification alloc] init];
    r->_n->_rq = [UNNotificationRequest
        requestWithIdentifier:ns(identifier)
                      content:(UNNotificationContent *)[[UNNotificationContent alloc] init]
                      trigger:nil];
    r->_act
        = dismiss ? UNNotificationDismissActionIdentifier : UNNotificationDefaultActionIdentifier;
    auto done = std::make_shared<int>(0);
    bool asked = false;
    @autoreleasepool { // Nothing of ours keeps the delegate alive afterwards.
        id<UNUserNotificationCenterDelegate> d = theCenter().delegate;
        asked = [(NSObject *)d respondsToSelector:@selector
            (userNotificationCenter:didReceiveNotificationResponse:withCompletionHandler:)];
        if (asked)
            elsewhere(^{
                [d userNotificationCenter:theCenter()
                    didReceiveNotificationResponse:r
                             withCompletionHandler:^{ ++*done; }];
            });
    }
    pump();
    if (asked && *done != 1)
        fail("the answer to a notification was completed " + std::to_string(*done) + " times");
}
long presentationOptions()
{
    __block long options = -1;
    id<UNUserNotificationCenterDelegate> d = theCenter().delegate;
    if ([(NSObject *)d respondsToSelector:@selector(userNotificationCenter:
                                                   willPresentNotification:withCompletionHandler:)])
        [d userNotificationCenter:theCenter()
            willPresentNotification:[[UNNotification alloc] init]
              withCompletionHandler:^(UNNotificationPresentationOptions o) { options = long(o); }];
    return options;
}
static NSColor *resolved(NSColor *c, bool dark)
{
    return c && c->_provider ? c->_provider(appearanceNow(dark)) : c;
}
std::vector<Run> runs(NSAttributedString *a, bool dark)
{
    std::vector<Run> out;
    NSDictionary *last = nil;
    for (size_t i = 0; i < a->_t.size(); ++i) {
        NSDictionary *d = a->_a[i];
        if (i == 0 || d != last || a->_t[i] == 0xFFFC) {
            Run r;
            r.attributes = d.count;
            if (NSFont *f = [d objectForKey:NSFontAttributeName]) {
                r.fontSize = f->_size;
                r.fontWeight = f->_weight;
                r.monospacedDigits = f->_mono;
            }
            if (NSColor *c = resolved([d objectForKey:NSForegroundColorAttributeName], dark))
                r.color = c->_what;
            NSTextAttachment *t = [d objectForKey:NSAttachmentAttributeName];
            if (t.image) {
                r.symbol = t.image->_symbol;
                r.symbolSize = t.image->_points;
                r.symbolWeight = t.image->_weight;
                r.symbolIsTemplate = t.image->_template;
                r.bounds = t.bounds;
            }
            out.push_back(r);
            last = d;
        }
        if (a->_t[i] != 0xFFFC) {
            const bool two = a->_t[i] >= 0xD800 && a->_t[i] < 0xDC00 && i + 1 < a->_t.size();
            out.back().text += to8(a->_t.substr(i, two ? 2 : 1));
            i += two;
        }
    }
    return out;
}
Picture picture(NSImage *i)
{
    Picture p;
    if (i == nil)
        return p;
    p.symbol = i->_symbol;
    p.description = str(i.accessibilityDescription);
    p.pointSize = i->_points;
    p.weight = i->_weight;
    p.isTemplate = i->_template;
    p.flipped = i->_flipped;
    p.drawnByUs = i->_handler != nil;
    p.size = i->_sz;
    if (i->_handler) {
        gDrawn = nil;
        p.drew = i->_handler(NSMakeRect(0, 0, i->_sz.width, i->_sz.height));
        if (gDrawn) {
            p.drawnSymbol = gDrawn->_symbol;
            p.drawnIn = gDrawnIn;
            p.pointSize = gDrawn->_points;
            p.weight = gDrawn->_weight;
        }
        gDrawn = nil;
    }
    return p;
}
} // namespace fake
