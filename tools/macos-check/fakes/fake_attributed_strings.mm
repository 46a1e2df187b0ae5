#include "fake_parts.h"

// Attributes are kept per UTF-16 unit.
const NSAttributedStringKey NSFontAttributeName = @"font",
                            NSForegroundColorAttributeName = @"color",
                            NSAttachmentAttributeName = @"attachment";
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

namespace fake {
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
} // namespace fake
