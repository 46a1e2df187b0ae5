#import "platform/macos/native_user_defaults.h"

#import "platform/macos/objc_support.h"

NS_ASSUME_NONNULL_BEGIN

namespace brimwatch::platform {
namespace {

struct Store {
    NSString *key;

    void operator()(std::monostate /*none*/) const
    {
        [NSUserDefaults.standardUserDefaults removeObjectForKey:key];
    }
    void operator()(bool value) const
    {
        [NSUserDefaults.standardUserDefaults setBool:value forKey:key];
    }
    void operator()(double value) const
    {
        [NSUserDefaults.standardUserDefaults setDouble:value forKey:key];
    }
    void operator()(const std::string &value) const
    {
        [NSUserDefaults.standardUserDefaults setObject:toNSString(value) forKey:key];
    }
};

} // namespace

NativeDefault userDefault(const std::string &key)
{
    id value = [NSUserDefaults.standardUserDefaults objectForKey:toNSString(key)];
    if ([value isKindOfClass:[NSString class]])
        return fromNSString(value);
    if (![value isKindOfClass:[NSNumber class]])
        return {};
    NSNumber *number = value;
    // A property list has a type of its own for true and false, which is a number to all else.
    if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID())
        return bool(number.boolValue);
    return number.doubleValue;
}

void setUserDefault(const std::string &key, const NativeDefault &value)
{
    std::visit(Store{toNSString(key)}, value);
}

} // namespace brimwatch::platform

NS_ASSUME_NONNULL_END
