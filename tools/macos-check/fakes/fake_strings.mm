#include "fake_parts.h"

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
std::u16string fake::to16(const std::string &s)
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
std::string fake::to8(const std::u16string &s)
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

__attribute__((constructor(200))) static void start()
{
    mini_immortal(OBJC_CLASS_$_FakeImmortalString);
}
