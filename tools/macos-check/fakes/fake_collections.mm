#include "fake_parts.h"

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
