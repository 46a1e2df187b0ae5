#include "fake_parts.h"

#import <os/log.h>

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
// ARC knows by the name that it owns the result.
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

__attribute__((constructor(200))) static void start()
{
    mini_immortal(OBJC_CLASS_$_FakeImmortalQueue);
}
