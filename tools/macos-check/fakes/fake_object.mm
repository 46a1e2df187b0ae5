#include "fake_parts.h"

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
